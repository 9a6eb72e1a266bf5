#include "notes/frmNotepad.h"

#include <QApplication>
#include <QFrame>
#include <QLabel>
#include <QPlainTextEdit>

#include "base/languageus.h"
#include "kit/dateentry.h"
#include "kit/failure.h"
#include "kit/frmInputbox.h"
#include "kit/pad.h"
#include "kit/recordlistview.h"
#include "kit/words.h"
#include "notes/frmEditNotepad.h"
#include "store/undo.h"

namespace bmr::notes {

using kit::EditEnd;
using store::Category;

frmNotepad::frmNotepad(store::Session& session, QWidget* parent)
    : SectionForm(parent),
      session_(session),
      model_(new kit::NamedListModel(
          "Memo",
          [this](std::string_view search) { return ListRecords(session_, cboCategories->Number(), search); },
          [this](std::int32_t fPK) { return RecordName(session_, fPK); }, this)),
      round_(session, *this) {
    setObjectName("frmNotepad");
    setWindowTitle("Memo");
    model_->SetDetails(session_, [this](std::int32_t key) { return DetailsOf(key); });
    BuildActions();
    BuildMenu();
    BuildList();
    BuildPad();
    Lay();
    cboCategories->FillLastUsed();
    pane_->Rebuild(store::kNewRecord);
    listSelect->SelectFirst();
}

frmNotepad::~frmNotepad() = default;

QList<QAction*> frmNotepad::ToolActions() {
    return {mnuMemoAdd, mnuMemoEdit, mnuMemoDeleteSelected};
}

kit::Emptiness frmNotepad::WhyEmpty() const {
    if (cboCategories->Number() == Category::All) return {tr("No memos yet.")};
    return {tr("No memos in this category."), {cboCategories->ShowAll()}};
}

void frmNotepad::Refresh() {
    cboCategories->Refill();
    pane_->Rebuild(listSelect->SelectedKey());
}

void frmNotepad::SelectRecord(std::int32_t fPK) {
    if (model_->RowOf(fPK) < 0) {
        const auto memo = FetchRecord(session_, fPK);
        if (!memo) return;
        pane_->ClearSearch();
        emit SearchEnded();
        if (cboCategories->Number() != Category::All) cboCategories->Fill(memo->category);
        pane_->Rebuild(fPK);
    }
    listSelect->SelectKey(fPK);
}

void frmNotepad::HidePad() {
    padFrame->hide();
    txtSubject->clear();
    txtInput->clear();
    mnuMemoEdit->setEnabled(false);
    mnuMemoDeleteSelected->setEnabled(false);
}

kit::NamedListModel::Details frmNotepad::DetailsOf(std::int32_t key) const {
    auto memo = FetchRecord(session_, key);
    if (!memo) return {};
    WipeRecord(*memo);
    return {.isPrivate = memo->isPrivate, .date = kit::ShortDate(memo->dateLastModified)};
}

void frmNotepad::ShowMemo(std::int32_t key) {
    auto memo = key == kit::RecordListView::kNoKey ? std::nullopt : FetchRecord(session_, key);
    if (!memo) return HidePad();
    txtSubject->setText(memo->readable ? kit::ShowWords(memo->subject) : tr("(cannot be read)"));
    txtInput->setPlainText(kit::ShowLines(memo->body));
    ctlPrivate->setVisible(memo->isPrivate);
    cboCategory->setText(kit::ToQString(store::CategoryName(cboCategories->Entries(), memo->category)));
    ctlDateCreated->setText(kit::ShortDate("Date created: ", memo->dateCreated));
    ctlLastModified->setText(kit::ShortDate("Last modified: ", memo->dateLastModified));
    WipeRecord(*memo);
    padFrame->show();
    mnuMemoEdit->setEnabled(true);
    mnuMemoDeleteSelected->setEnabled(true);
}

void frmNotepad::cmdAdd_Click() {
    if (round_.Open()) return;
    asksSubject_ = true;
    auto subject = session_.ports.prompter.InputBox("Memo", "Enter subject:", {});
    asksSubject_ = false;
    if (session_.ending || !subject || subject->empty()) return;
    Memo memo = ClearRecord(session_, cboCategories->Number());
    memo.subject = std::move(*subject);
    EditRecord(std::move(memo));
}

void frmNotepad::cmdEdit_Click() {
    const std::int32_t key = listSelect->SelectedKey();
    if (key == kit::RecordListView::kNoKey || round_.Open()) return;
    int error = 0;
    auto memo = FetchRecord(session_, key, &error);
    if (error != 0) return kit::TellFailure(session_, error, tr("The memo could not be read."));
    if (!memo) return cmdAdd_Click();
    EditRecord(std::move(*memo));
}

std::vector<custody::Draft> frmNotepad::Drafts() const {
    std::vector<custody::Draft> drafts = round_.Drafts();
    if (!asksSubject_) return drafts;
    for (const QWidget* window : QApplication::topLevelWidgets()) {
        const auto* box = qobject_cast<const kit::frmInputbox*>(window);
        const QString begun = box && box->isVisible() ? box->Text().trimmed() : QString();
        if (!begun.isEmpty())
            drafts.push_back(frmEditNotepad::DraftOf(begun, store::RealCategory(cboCategories->Number())));
    }
    return drafts;
}

void frmNotepad::OpenDraft(const custody::Draft& draft) {
    auto memo = FetchRecord(session_, draft.key);
    if (memo) SelectRecord(draft.key);
    EditRecord(memo ? std::move(*memo) : ClearRecord(session_, draft.category), &draft);
}

void frmNotepad::EditRecord(Memo memo, const custody::Draft* draft) {
    if (!memo.readable && !kit::AskToOverwrite(session_, tr("memo"))) return;
    frmEditNotepad editor(session_, memo, this);
    // A new memo has its subject already: closed without another change it is stored all the same.
    editor.recordChanged = memo.key == store::kNewRecord;
    const EditEnd end = round_.EditUntilStored(editor, draft, tr("The memo was not stored."), [&] {
        memo = editor.Value();
        return WriteRecord(session_, memo);
    });
    if (end == EditEnd::Closed) return;
    const std::int32_t shown = listSelect->SelectedKey();
    const bool stored = end == EditEnd::Stored;
    // The editor's own door to the categories may have led to the end of the one that is shown.
    const bool there = cboCategories->Refill();
    if (stored && cboCategories->Number() != Category::All) cboCategories->Fill(memo.category);
    if (stored || !there)
        pane_->Rebuild(stored ? memo.key : shown);
    else
        ShowMemo(shown);
}

void frmNotepad::cmdDelete_Click() {
    const std::int32_t key = listSelect->SelectedKey();
    if (key == kit::RecordListView::kNoKey) return;
    if (listSelect->SelectedCount() > 1) return pane_->DeleteSelected(27);
    const int row = listSelect->SelectedRow();
    const Box box = ConfirmDelete(27, DeleteText(kit::TakeWords(model_->Name(row))));
    if (session_.ports.prompter.Ask(box) != Answer::Ok) return;
    const int error = store::DeleteRow(session_, key);
    kit::TellFailure(session_, error, tr("The memo was not deleted."));
    pane_->Rebuild(store::kNewRecord);
    listSelect->SelectFirst();
    if (error == 0) pane_->TellStep();
}

void frmNotepad::mnuMemoDeleteAll_Click(bool oneCategory) {
    if (model_->rowCount() == 0 || (oneCategory && cboCategories->Number() == Category::All)) return;
    const std::int32_t category = oneCategory ? cboCategories->Number() : Category::All;
    const bool noWayBack = store::TooLargeToUndo(
        session_, store::Section::Memo, store::CategoryClause(session_, store::Section::Memo, category));
    if (session_.ports.prompter.Ask(ConfirmDelete(oneCategory ? 102 : 80, Msg(oneCategory ? 102 : 80))) !=
        Answer::Ok)
        return;
    if (session_.ports.prompter.Ask(ConfirmDelete(81, Msg(81) + (noWayBack ? store::kCannotBeUndone : ""))) !=
        Answer::Ok)
        return;
    const int error = DeleteRecords(session_, category);
    kit::TellFailure(session_, error, tr("The memos were not deleted."));
    pane_->Rebuild(store::kNewRecord);
    listSelect->SelectFirst();
    if (error == 0) pane_->TellStep();
}

}  // namespace bmr::notes
