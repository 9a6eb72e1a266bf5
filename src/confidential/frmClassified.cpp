#include "confidential/frmClassified.h"

#include <QAbstractButton>
#include <QApplication>
#include <QCheckBox>
#include <QFrame>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QPlainTextEdit>
#include <QScrollArea>
#include <QStackedLayout>
#include <QToolButton>
#include <algorithm>
#include <utility>

#include "base/languageus.h"
#include "confidential/frmEditConfidential.h"
#include "kit/dateentry.h"
#include "kit/emptystate.h"
#include "kit/failure.h"
#include "kit/formparts.h"
#include "kit/namedlistmodel.h"
#include "kit/recordlistview.h"
#include "kit/words.h"

namespace bmr::confidential {

namespace {

/// A masked value shows as a row of marks of one length, so that not even its length is seen.
const QString kMask = QString(10, '?');

}  // namespace

frmClassified::frmClassified(store::Session& session, std::function<void(const QString&)> copy,
                             QWidget* parent)
    : SectionForm(parent),
      session_(session),
      copy_(std::move(copy)),
      model_(new kit::NamedListModel(
          tr("Record"),
          [this](const std::string& search) { return ListRecords(session_, currentKind, search); },
          [this](std::int32_t fPK) { return RecordName(session_, fPK); }, this)) {
    setObjectName("frmClassified");
    setWindowTitle("CONFIDENTIAL");
    BuildActions();
    auto* columns = new QHBoxLayout(this);
    columns->setContentsMargins(0, 0, 0, 0);
    columns->setSpacing(0);
    columns->addWidget(BuildKinds());
    columns->addWidget(BuildList(), 35);
    columns->addWidget(BuildPad(), 65);
    HidePad();
    ListSelect->setEnabled(false);
    mnuAdd->setEnabled(false);
    ShowEmptyState();
    setFocusProxy(cat[1]);
}

frmClassified::~frmClassified() {
    WipeRecord(record_);
}

QList<QAction*> frmClassified::ToolActions() {
    return {mnuAdd, mnuEdit, mnuDelete, nullptr, mnuCopy};
}

void frmClassified::showEvent(QShowEvent* event) {
    SectionForm::showEvent(event);
    TellStatus();
}

void frmClassified::cat_Click(int Index) {
    if (Index == 0) return;
    currentKind = Index;
    mnuAdd->setEnabled(true);
    cat[static_cast<std::size_t>(Index)]->setChecked(true);
    const Kind& kind = *CurrentKind();
    for (std::size_t i = 0; i < rows_.size(); ++i) {
        const bool used = i < kind.FieldCount();
        rows_[i].lblTxt->setText(
            QString::fromUtf8(kind.captions[i].data(), static_cast<int>(kind.captions[i].size())));
        rows_[i].lblTxt->setVisible(used);
        rows_[i].txtCtl->parentWidget()->setVisible(used);
    }
    lblCategory->setText("Category:  " + QString::fromStdString(std::string(kind.caption)).toUpper());
    listSelect_Initialize(store::kNewRecord);
    cat[static_cast<std::size_t>(Index)]->setFocus();
    kindsArea_->ensureWidgetVisible(cat[static_cast<std::size_t>(Index)]);
}

void frmClassified::listSelect_Initialize(std::int32_t key) {
    if (currentKind == 0 || !session_.DatabaseOpen || session_.ending) return;
    const QWidget* focus = QApplication::focusWidget();
    const bool inside = isAncestorOf(focus) && !cat[0]->parentWidget()->isAncestorOf(focus);
    HidePad();
    int error = 0;
    ListSelect->Rebuild([&] { error = model_->Rebuild(search_); });
    kit::TellFailure(session_, error, tr("The records could not be read."));
    ListSelect->setEnabled(model_->rowCount() > 0);
    ShowEmptyState();
    if (key != store::kNewRecord && model_->RowOf(key) >= 0)
        ListSelect->SelectKey(key);
    else
        ListSelect->SelectFirst();
    ShowRecord(ListSelect->SelectedKey());
    if (inside) FocusList();  // what had it may be hidden now
    TellStatus();
}

void frmClassified::Refresh() {
    listSelect_Initialize(ListSelect->SelectedKey());
}

void frmClassified::SetSearch(const QString& text) {
    if (text.trimmed() == search_) return;
    search_ = text.trimmed();
    listSelect_Initialize(ListSelect->SelectedKey());
}

void frmClassified::SelectRecord(std::int32_t fPK) {
    auto record = FetchRecord(session_, fPK);
    if (!record) return;
    const std::int32_t kind = record->kind;
    WipeRecord(*record);
    if (ConfidentialKindFields(kind) == nullptr) return;  // no list holds it
    search_.clear();
    if (kind != currentKind) cat_Click(kind);
    listSelect_Initialize(fPK);
}

void frmClassified::HidePad() {
    WipeRecord(record_);
    record_ = Record();
    ShowFields();
    padFrame->hide();
    for (QAction* action : {mnuEdit, mnuDelete, mnuCopy})
        action->setEnabled(false);
}

void frmClassified::ShowRecord(std::int32_t key) {
    auto record = key == kit::RecordListView::kNoKey ? std::nullopt : FetchRecord(session_, key);
    if (!record) return HidePad();
    WipeRecord(record_);
    record_ = std::move(*record);
    ShowFields();
    ctlPrivate->setChecked(record_.isPrivate);
    padFrame->show();
    for (QAction* action : {mnuEdit, mnuDelete})
        action->setEnabled(true);
    const auto filled = [](const Bytes& text) { return !text.empty(); };
    mnuCopy->setEnabled(filled(record_.notes) || std::any_of(record_.n.begin(), record_.n.end(), filled));
}

QString frmClassified::FieldText(std::size_t i) const {
    return kit::ShowWords(record_.n[i]);
}

bool frmClassified::IsMasked(std::size_t i) const {
    return IsMaskedCaption(CurrentKind()->captions[i]) && !chkPlainPW->isChecked();
}

void frmClassified::ShowFields() {
    const Kind* kind = CurrentKind();
    const int height = kind ? kind->height : 1;
    for (std::size_t i = 0; i < rows_.size(); ++i) {
        const bool filled = kind && i < kind->FieldCount() && !record_.n[i].empty();
        rows_[i].txtCtl->setText(filled && IsMasked(i) ? kMask : FieldText(i));
        rows_[i].txtCtl->setCursorPosition(0);
        rows_[i].txtCtl->setVisible(i != 1 || height == 1);
        rows_[i].copy->setVisible(filled);
        rows_[i].open->setVisible(filled && IsUrlCaption(kind->captions[i]));
    }
    txtTall_->setVisible(height > 1);
    txtTall_->setFixedHeight(kit::HeightOfLines(*txtTall_, height));
    txtTall_->setPlainText(kit::ShowLines(record_.n[1]));
    txtNotes->setPlainText(kit::ShowLines(record_.notes));
    lblDamaged->setVisible(!record_.readable);
    const QString day = kit::ShortDate(record_.dateLastModified);
    lblLastModified->setText(day.isEmpty() ? day : "Last modified: " + day);
}

void frmClassified::chkPlainPW_Click() {
    ShowFields();
}

void frmClassified::cmdAdd_Click() {
    if (currentKind == 0 || editing_) return;
    Record record;
    record.kind = currentKind;
    HidePad();
    padFrame->show();  // empty behind the dialog that covers it
    EditRecord(std::move(record));
}

void frmClassified::cmdEdit_Click() {
    if (model_->rowCount() == 0 || editing_) return;
    auto record = FetchRecord(session_, ListSelect->SelectedKey());
    if (record) EditRecord(std::move(*record));
}

std::vector<custody::Draft> frmClassified::Drafts() const {
    std::vector<custody::Draft> drafts;
    if (auto draft = editor_ ? editor_->HalfWritten() : std::nullopt) drafts.push_back(std::move(*draft));
    return drafts;
}

void frmClassified::OpenDraft(const custody::Draft& draft) {
    auto record = FetchRecord(session_, draft.key);
    if (record) {
        SelectRecord(draft.key);
    } else {
        if (ConfidentialKindFields(draft.category) == nullptr) return;  // the draft stays
        if (currentKind != draft.category) cat_Click(draft.category);
        HidePad();
        padFrame->show();  // empty behind the dialog that covers it
        record.emplace().kind = draft.category;
    }
    EditRecord(std::move(*record), &draft);
}

void frmClassified::EditRecord(Record record, const custody::Draft* draft) {
    if (ConfidentialKindFields(record.kind) == nullptr) return WipeRecord(record);
    if (!record.readable && !kit::AskToOverwrite(session_, tr("record"))) return WipeRecord(record);
    const std::int32_t keyBefore = record.key;
    const std::int32_t shown = ListSelect->SelectedKey();
    Bytes nameBefore = record.n[0];
    bool stored = false;
    editing_ = true;
    for (bool again = false; !stored; again = true) {
        frmEditConfidential editor(session_, record, this);
        editor_ = &editor;
        editor.recordChanged = again;
        if (draft) editor.Fill(*std::exchange(draft, nullptr));
        if (padFrame->isVisible()) editor.Cover(*padFrame->parentWidget());
        const bool kept = editor.exec() == QDialog::Accepted && editor.recordChanged;
        if (session_.ending || !session_.DatabaseOpen || !kept) break;
        WipeRecord(record);
        record = editor.Value();
        const int error = SaveRecord(session_, record);
        kit::TellFailure(session_, error, tr("The record was not stored."));
        stored = error == 0;  // what could not be stored stays in the editor
        if (session_.ending || !session_.DatabaseOpen) break;
    }
    editing_ = false;
    const std::int32_t key = record.key;
    // A row that was deleted behind the editor has come back under another key.
    const bool moved = key != keyBefore || nameBefore != record.n[0];
    cry::WipeString(nameBefore);
    WipeRecord(record);
    if (session_.ending || !session_.DatabaseOpen) return;
    emit DraftSettled();
    if (stored && moved)
        listSelect_Initialize(key);
    else if (keyBefore != store::kNewRecord)
        ShowRecord(shown);
    else
        ShowNothing();
    FocusList();
}

void frmClassified::ShowNothing() {
    HidePad();
    ListSelect->SelectKey(kit::RecordListView::kNoKey);
    ListSelect->setEnabled(model_->rowCount() > 0);
    TellStatus();
}

void frmClassified::cmdDelete_Click() {
    const std::int32_t key = ListSelect->SelectedKey();
    if (model_->rowCount() == 0 || key == kit::RecordListView::kNoKey) return;
    if (session_.ports.prompter.Ask(ConfirmDelete(79, DeleteRecordText(record_.n[0]))) != Answer::Ok) return;
    kit::TellFailure(session_, store::DeleteRow(session_, key), tr("The record was not deleted."));
    listSelect_Initialize(store::kNewRecord);
}

void frmClassified::ShowEmptyState() {
    const bool any = model_->rowCount() > 0;
    stack_->setCurrentIndex(any ? 0 : 1);
    if (any) return;
    if (currentKind == 0)
        empty_->Set("object-locked", tr("Choose a kind of record at the left."), {});
    else if (!search_.isEmpty())
        empty_->Set("edit-find", tr("Nothing for “%1” among these records.").arg(search_), {});
    else
        empty_->Set("object-locked", tr("No records of this kind yet."), {mnuAdd});
}

void frmClassified::TellStatus() {
    if (currentKind == 0) {
        emit StatusChanged({});
        return;
    }
    const int count = model_->rowCount();
    QString text = count == 1 ? tr("1 record") : tr("%1 records").arg(QLocale().toString(count));
    if (!session_.ShowPrivate) text += ", " + tr("private ones hidden");
    emit StatusChanged(text);
}

}  // namespace bmr::confidential
