#include "kit/editround.h"

#include <QCheckBox>
#include <QDialog>

#include "kit/failure.h"
#include "kit/sectionform.h"
#include "store/session.h"

namespace bmr::kit {

EditRound::EditRound(store::Session& session, SectionForm& form)
    : session_(session), form_(form), recordChanged(new QCheckBox(&form)) {
    recordChanged->setObjectName("recordChanged");
    recordChanged->hide();
}

std::vector<custody::Draft> EditRound::Drafts() const {
    std::vector<custody::Draft> drafts;
    if (auto draft = open_ ? halfWritten_() : std::nullopt) drafts.push_back(std::move(*draft));
    return drafts;
}

bool EditRound::Closed() const {
    return session_.ending || !session_.DatabaseOpen;
}

EditEnd EditRound::Run(QDialog& editor, const bool& changed, const QString& failure,
                       const std::function<int()>& write) {
    open_ = true;
    const EditEnd end = Repeat(editor, changed, failure, write);
    open_ = false;
    recordChanged->setChecked(false);
    if (end != EditEnd::Closed) emit form_.DraftSettled();
    return end;
}

EditEnd EditRound::Repeat(QDialog& editor, const bool& changed, const QString& failure,
                          const std::function<int()>& write) {
    for (;;) {
        editor.exec();
        if (Closed()) return EditEnd::Closed;
        // A window manager may look for the next window among those that are just going, the editor's own
        // question and the editor, and end with none: the keys would go nowhere.
        form_.activateWindow();
        recordChanged->setChecked(changed);
        if (!recordChanged->isChecked()) return EditEnd::GivenUp;
        const int error = write();
        TellFailure(session_, error, failure);
        if (Closed()) return EditEnd::Closed;
        if (error == 0) return EditEnd::Stored;
    }
}

}  // namespace bmr::kit
