// The main window's part in what was left half-written: kept when the program ends, offered after the login.
#include <QLocale>
#include <algorithm>
#include <iterator>
#include <utility>

#include "app/frmMDI.h"
#include "app/sectioncolumn.h"
#include "kit/dateentry.h"
#include "kit/failure.h"
#include "shell/draftoffer.h"

namespace bmr::app {

void frmMDI::CollectDrafts() {
    if (!quitting_ && session_.DatabaseOpen) drafts_ = TakeBegun();
}

std::vector<custody::Draft> frmMDI::TakeBegun() {
    std::vector<custody::Draft> begun;
    if (form_) begun = form_->Drafts();
    if (continuing_ != 0 && !begun.empty() && form_->Editing()) begun.front().id = continuing_;
    for (auto& [code, drafts] : left_)
        std::ranges::move(drafts, std::back_inserter(begun));
    left_.clear();
    return begun;
}

void frmMDI::KeepBegun() {
    kit::TellFailure(session_, custody::StoreDrafts(session_, TakeBegun()),
                     tr("What you had begun to write could not be kept."));
}

void frmMDI::OfferDrafts() {
    if (!session_.DatabaseOpen) return;
    for (custody::Draft& draft : custody::LoadDrafts(session_)) {
        if (!parts_.sections.contains(draft.section)) continue;
        OfferDraft(draft);
        if (session_.ending || !session_.DatabaseOpen) return;
    }
}

void frmMDI::OfferDraft(custody::Draft& draft) {
    const custody::DraftBase base = custody::BaseOf(session_, draft);
    const Answer answer = session_.ports.prompter.Ask(shell::DraftOffer(
        session_, draft, base, SectionName(draft.section).toStdString(), kit::FactsOf(QLocale())));
    if (session_.ending) return;
    continuing_ = draft.id;
    if (answer == Answer::No) ForgetDraft();
    if (answer == Answer::Yes) {
        if (base == custody::DraftBase::Gone) draft.key = store::kNewRecord;
        ContinueDraft(draft);
    }
    continuing_ = 0;
}

void frmMDI::ContinueDraft(const custody::Draft& draft) {
    if (session_.SectionCode != draft.section) optSection_Click(draft.section);
    if (!form_ || session_.SectionCode != draft.section) return;  // no PIN: it stays for later
    if (draft.isPrivate && !session_.ShowPrivate) mnuViewShowPrivate_Switch();
    if (session_.ending || (draft.isPrivate && !session_.ShowPrivate)) return;
    form_->OpenDraft(draft);
}

void frmMDI::ForgetDraft() {
    if (continuing_ == 0) return;
    kit::TellFailure(session_, custody::DropDraft(session_, std::exchange(continuing_, 0)),
                     tr("The draft could not be removed and will be offered again."));
}

}  // namespace bmr::app
