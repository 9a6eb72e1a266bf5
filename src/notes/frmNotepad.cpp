#include "notes/frmNotepad.h"

#include <QCheckBox>
#include <QFrame>
#include <QLabel>
#include <QLocale>
#include <QPlainTextEdit>
#include <QStackedLayout>
#include <utility>

#include "base/languageus.h"
#include "kit/categoryfield.h"
#include "kit/dateentry.h"
#include "kit/emptystate.h"
#include "kit/failure.h"
#include "kit/namedlistmodel.h"
#include "kit/recordlistview.h"
#include "kit/words.h"
#include "notes/frmEditNotepad.h"

namespace bmr::notes {

using store::Category;

namespace {

/// Place of the memo pad among the last-used categories.
constexpr std::size_t kLastCategory = 2;

void ShowDate(QLabel& label, const QString& caption, DateValue date) {
    const QString shown = kit::ShortDate(date);
    label.setText(shown.isEmpty() ? shown : caption + shown);
}

}  // namespace

frmNotepad::frmNotepad(store::Session& session, QWidget* parent)
    : SectionForm(parent),
      session_(session),
      model_(new kit::NamedListModel(
          "Memo", [this](std::string_view search) { return KeysOf(search); },
          [this](std::int32_t fPK) { return MemoSubject(session_, fPK); }, this)) {
    setObjectName("frmNotepad");
    setWindowTitle("Memo");
    BuildActions();
    BuildMenu();
    BuildList();
    BuildPad();
    Lay();
    const bool lastUsed = session_.settings.CatShow == 0;
    cboCategories->Fill(lastUsed ? session_.settings.LastCategory[kLastCategory] : Category::All);
    Rebuild(store::kNewRecord);
    listSelect->SelectFirst();
}

frmNotepad::~frmNotepad() {
    session_.settings.LastCategory[kLastCategory] = static_cast<std::int16_t>(cboCategories->Number());
}

QList<QAction*> frmNotepad::ToolActions() {
    return {mnuMemoAdd, mnuMemoEdit, mnuMemoDeleteSelected};
}

void frmNotepad::showEvent(QShowEvent* event) {
    SectionForm::showEvent(event);
    TellStatus();
}

Result<std::vector<std::int32_t>> frmNotepad::KeysOf(std::string_view search) const {
    const auto rows = ListMemos(session_, cboCategories->Number(), search);
    if (!rows) return rows.error();
    std::vector<std::int32_t> keys;
    for (const MemoRow& row : *rows)
        keys.push_back(row.fPK);
    return keys;
}

void frmNotepad::Rebuild(std::int32_t key) {
    if (!session_.DatabaseOpen || session_.ending) return;
    HidePad();
    mnuMemoDeleteCategory->setEnabled(cboCategories->Number() != Category::All);
    int error = 0;
    listSelect->Rebuild([&] { error = model_->Rebuild(search_); });
    kit::TellFailure(session_, error, tr("The memos could not be read."));
    ShowEmptyState();
    listSelect->SelectKey(key);
    if (listSelect->SelectedKey() != kit::RecordListView::kNoKey) ShowMemo(listSelect->SelectedKey());
    TellStatus();
}

bool frmNotepad::Editing() const {
    return editing_ || cboCategories->Editing();
}

void frmNotepad::Refresh() {
    const std::int32_t key = listSelect->SelectedKey();
    cboCategories->Fill(cboCategories->Number());
    Rebuild(key);
}

void frmNotepad::SetSearch(const QString& text) {
    const QString wanted = text.trimmed();
    if (wanted == search_) return;
    const std::int32_t key = listSelect->SelectedKey();
    if (search_.isEmpty()) beforeSearch_ = key;
    search_ = wanted;
    Rebuild(store::kNewRecord);
    listSelect->SelectOneOf({key, beforeSearch_});
}

void frmNotepad::SelectRecord(std::int32_t fPK) {
    if (model_->RowOf(fPK) < 0) {
        const auto memo = FetchMemo(session_, fPK);
        if (!memo) return;
        search_.clear();
        if (cboCategories->Number() != Category::All && cboCategories->Number() != memo->category)
            cboCategories->Fill(memo->category);
        Rebuild(fPK);
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

void frmNotepad::ShowMemo(std::int32_t key) {
    auto memo = key == kit::RecordListView::kNoKey ? std::nullopt : FetchMemo(session_, key);
    if (!memo) return HidePad();
    txtSubject->setText(memo->readable ? kit::ShowWords(memo->subject) : tr("(cannot be read)"));
    txtInput->setPlainText(kit::ShowLines(memo->body));
    ctlPrivate->setChecked(memo->isPrivate);
    ctlPrivate->setVisible(memo->isPrivate);
    cboCategory->setText(kit::ToQString(store::CategoryName(cboCategories->Entries(), memo->category)));
    ShowDate(*ctlDateCreated, "Date created: ", memo->dateCreated);
    ShowDate(*ctlLastModified, "Last modified: ", memo->dateLastModified);
    cry::WipeString(memo->body);
    padFrame->show();
    mnuMemoEdit->setEnabled(true);
    mnuMemoDeleteSelected->setEnabled(true);
}

void frmNotepad::ShowAllCategories() {
    cboCategories->Fill(Category::All);
    Rebuild(listSelect->SelectedKey());
}

void frmNotepad::cmdAdd_Click() {
    if (editing_) return;
    const auto subject = session_.ports.prompter.InputBox("Memo", "Enter subject:", {});
    if (session_.ending || !subject || subject->empty()) return;
    Memo memo = ClearMemo(session_, cboCategories->Number());
    memo.subject = kit::TakeWords(QString::fromStdString(*subject));
    EditRecord(std::move(memo));
}

void frmNotepad::cmdEdit_Click() {
    const std::int32_t key = listSelect->SelectedKey();
    if (key == kit::RecordListView::kNoKey || editing_) return;
    auto memo = FetchMemo(session_, key);
    if (!memo) return cmdAdd_Click();
    EditRecord(std::move(*memo));
}

std::vector<custody::Draft> frmNotepad::Drafts() const {
    std::vector<custody::Draft> drafts;
    if (auto draft = editor_ ? editor_->HalfWritten() : std::nullopt) drafts.push_back(std::move(*draft));
    return drafts;
}

void frmNotepad::OpenDraft(const custody::Draft& draft) {
    auto memo = FetchMemo(session_, draft.key);
    if (memo) SelectRecord(draft.key);
    EditRecord(memo ? std::move(*memo) : ClearMemo(session_, draft.category), &draft);
}

void frmNotepad::EditRecord(Memo memo, const custody::Draft* draft) {
    if (!memo.readable && !kit::AskToOverwrite(session_, tr("memo"))) return;
    const bool isNew = memo.key == store::kNewRecord;
    bool stored = false;
    editing_ = true;
    // A new memo has its subject already: closed without another change it is stored all the same.
    for (bool again = isNew; !stored; again = true) {
        frmEditNotepad editor(session_, memo, this);
        editor_ = &editor;
        editor.recordChanged = again;
        if (draft) editor.Fill(*std::exchange(draft, nullptr));
        editor.exec();
        if (session_.ending || !session_.DatabaseOpen) break;
        recordChanged->setChecked(editor.recordChanged);
        if (!recordChanged->isChecked()) break;
        memo = editor.Value();
        stored = Store(memo);  // what could not be stored stays in the editor
        if (session_.ending || !session_.DatabaseOpen) break;
    }
    editing_ = false;
    recordChanged->setChecked(false);
    if (session_.ending || !session_.DatabaseOpen) return;
    emit DraftSettled();
    const std::int32_t shown = listSelect->SelectedKey();
    const std::int32_t categoryBefore = cboCategories->Number();
    cboCategories->Fill(stored && cboCategories->Number() != Category::All ? memo.category
                                                                           : cboCategories->Number());
    if (stored)
        Rebuild(memo.key);
    else if (cboCategories->Number() != categoryBefore)
        Rebuild(shown);  // the editor's own door to the categories led to the end of the one that was shown
    else
        ShowMemo(shown);
}

bool frmNotepad::Store(Memo& memo) {
    const int error = WriteMemo(session_, memo);
    kit::TellFailure(session_, error, tr("The memo was not stored."));
    return error == 0;
}

void frmNotepad::cmdDelete_Click() {
    const std::int32_t key = listSelect->SelectedKey();
    if (key == kit::RecordListView::kNoKey) return;
    const int row = listSelect->SelectedRow();
    const Box box = ConfirmDelete(27, DeleteMemoText(kit::TakeWords(model_->Name(row))));
    if (session_.ports.prompter.Ask(box) != Answer::Ok) return;
    kit::TellFailure(session_, store::DeleteRow(session_, key), tr("The memo was not deleted."));
    Rebuild(store::kNewRecord);
    listSelect->SelectFirst();
}

void frmNotepad::mnuMemoDeleteAll_Click(bool oneCategory) {
    if (model_->rowCount() == 0 || (oneCategory && cboCategories->Number() == Category::All)) return;
    const int first = oneCategory ? 102 : 80;
    for (const int number : {first, 81})
        if (session_.ports.prompter.Ask(ConfirmDelete(number, Msg(number))) != Answer::Ok) return;
    const int error = DeleteMemos(session_, oneCategory ? cboCategories->Number() : Category::All);
    kit::TellFailure(session_, error, tr("The memos were not deleted."));
    Rebuild(store::kNewRecord);
    listSelect->SelectFirst();
}

void frmNotepad::ShowEmptyState() {
    const bool any = model_->rowCount() > 0;
    stack_->setCurrentIndex(any ? 0 : 1);
    setFocusProxy(any ? static_cast<QWidget*>(listSelect) : empty_);
    if (any) return;
    QList<QAction*> offers;
    const bool filtered = cboCategories->Number() != Category::All;
    if (search_.isEmpty()) offers << mnuMemoAdd;
    if (filtered) offers << actShowAll;
    if (!search_.isEmpty())
        empty_->Set("edit-find", tr("Nothing for “%1” in Memo.").arg(search_), offers);
    else
        empty_->Set("view-pim-notes", filtered ? tr("No memos in this category.") : tr("No memos yet."),
                    offers);
}

void frmNotepad::TellStatus() {
    const int count = model_->rowCount();
    QString text = count == 1 ? tr("1 memo") : tr("%1 memos").arg(QLocale().toString(count));
    if (!session_.ShowPrivate) text += ", " + tr("private ones hidden");
    emit StatusChanged(text);
}

}  // namespace bmr::notes
