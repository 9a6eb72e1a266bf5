#include "confidential/frmClassified.h"

#include <QAbstractButton>
#include <QApplication>
#include <QCheckBox>
#include <QFrame>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QScrollArea>
#include <QSplitter>
#include <QToolButton>
#include <algorithm>
#include <utility>

#include "confidential/foundmodel.h"
#include "confidential/frmEditConfidential.h"
#include "kit/dateentry.h"
#include "kit/failure.h"
#include "kit/formparts.h"
#include "kit/namedlistmodel.h"
#include "kit/pad.h"
#include "kit/recordlistview.h"
#include "kit/remembered.h"
#include "kit/words.h"

namespace bmr::confidential {

using kit::EditEnd;

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
          [this](std::int32_t fPK) { return RecordName(session_, fPK); }, this)),
      foundModel_(new FoundModel(session, this)),
      round_(session, *this) {
    setObjectName("frmClassified");
    setWindowTitle("CONFIDENTIAL");
    BuildActions();
    auto* columns = new QHBoxLayout(this);
    columns->setContentsMargins(0, 0, 0, 0);
    columns->setSpacing(0);
    columns->addWidget(BuildKinds());
    auto* splitter = new QSplitter;
    splitter->setChildrenCollapsible(false);
    splitter->addWidget(BuildList());
    splitter->addWidget(BuildPad());
    splitter->setStretchFactor(0, 35);
    splitter->setStretchFactor(1, 65);
    splitter->setSizes({350, 650});
    kit::RememberSplitter(*splitter, session_.ports.registry, "confidential");
    columns->addWidget(splitter, 1);
    HidePad();
    AimFocus();
    AimKinds();
    if (session_.confidentialKind != 0) PressKind(session_.confidentialKind, store::kNewRecord);
}

frmClassified::~frmClassified() {
    if (session_.DatabaseOpen) session_.confidentialKind = currentKind;
    WipeRecord(record_);
}

QList<QAction*> frmClassified::ToolActions() {
    return {addRecord_, editRecord_, deleteRecord_, nullptr, copyField_};
}

void frmClassified::cat_Click(int Index) {
    if (Index == 0) return;
    if (searching_) CloseFound();
    PressKind(Index, store::kNewRecord);
    cat[static_cast<std::size_t>(Index)]->setFocus();
}

void frmClassified::PressKind(std::int32_t kind, std::int32_t key) {
    currentKind = kind;
    cmdAdd->setEnabled(true);
    QAbstractButton& button = *cat[static_cast<std::size_t>(kind)];
    button.setChecked(true);
    AimKinds();
    ShowCaptions(kind);
    listSelect_Initialize(key);
    kindsArea_->ensureWidgetVisible(&button);
}

void frmClassified::ShowCaptions(std::int32_t number) {
    const Kind* kind = ConfidentialKindFields(number);
    if (!kind || number == shownKind_) return;
    shownKind_ = number;
    for (std::size_t i = 0; i < rows_.size(); ++i) {
        const bool used = i < kind->FieldCount();
        rows_[i].lblTxt->setText(
            QString::fromUtf8(kind->captions[i].data(), static_cast<int>(kind->captions[i].size())));
        rows_[i].lblTxt->setVisible(used);
        rows_[i].txtCtl->parentWidget()->setVisible(used);
    }
    lblCategory->setText("Category:  " + QString::fromStdString(std::string(kind->caption)).toUpper());
}

void frmClassified::listSelect_Initialize(std::int32_t key) {
    if ((currentKind == 0 && !searching_) || !session_.DatabaseOpen || session_.ending) return;
    const QWidget* focus = QApplication::focusWidget();
    const bool inside = isAncestorOf(focus) && !cat[0]->parentWidget()->isAncestorOf(focus);
    (searching_ ? found_ : pane_)->Rebuild(key);
    if (ShownList()->SelectedRow() < 0) ShownList()->SelectFirst();
    AimFocus();
    if (inside) FocusList();  // what had it may be hidden now
}

kit::Emptiness frmClassified::WhyEmpty() const {
    return {currentKind == 0 ? tr("Choose a kind of record at the left.")
                             : tr("No records of this kind yet.")};
}

void frmClassified::Refresh() {
    listSelect_Initialize(ShownList()->SelectedKey());
}

void frmClassified::SelectRecord(std::int32_t fPK) {
    auto record = FetchRecord(session_, fPK);
    if (!record) return;
    const std::int32_t kind = record->kind;
    WipeRecord(*record);
    if (ConfidentialKindFields(kind) == nullptr) return;  // no list holds it
    if (searching_) CloseFound();
    if (kind != currentKind) cat_Click(kind);
    listSelect_Initialize(fPK);
}

void frmClassified::HidePad() {
    WipeRecord(record_);
    record_ = Record();
    ShowFields();
    padFrame->hide();
    for (QAction* action : {editRecord_, deleteRecord_, copyField_})
        action->setEnabled(false);
}

void frmClassified::ShowEmptyPad() {
    HidePad();
    ShowCaptions(currentKind);
    padFrame->show();
}

void frmClassified::ShowRecord(std::int32_t key) {
    auto record = key == kit::RecordListView::kNoKey ? std::nullopt : FetchRecord(session_, key);
    if (!record) return HidePad();
    WipeRecord(record_);
    record_ = std::move(*record);
    ShowCaptions(record_.kind);
    ShowFields();
    ctlPrivate->setVisible(record_.isPrivate);
    padFrame->show();
    for (QAction* action : {editRecord_, deleteRecord_})
        action->setEnabled(true);
    const auto filled = [](const Bytes& text) { return !text.empty(); };
    copyField_->setEnabled(filled(record_.notes) || std::any_of(record_.n.begin(), record_.n.end(), filled));
}

QString frmClassified::FieldText(std::size_t i) const {
    return kit::ShowWords(record_.n[i]);
}

bool frmClassified::IsMasked(std::size_t i) const {
    return IsMaskedCaption(ShownKind()->captions[i]) && !chkPlainPW->isChecked();
}

void frmClassified::ShowFields() {
    const Kind* kind = ShownKind();
    const int height = kind ? kind->height : 1;
    for (std::size_t i = 0; i < rows_.size(); ++i) {
        const bool filled = kind && i < kind->FieldCount() && !record_.n[i].empty();
        rows_[i].txtCtl->setText(filled && IsMasked(i) ? kMask : FieldText(i));
        rows_[i].txtCtl->setCursorPosition(0);
        rows_[i].txtCtl->setVisible(i != 1 || height == 1);
        kit::SetMonospaced(*rows_[i].txtCtl, kind && IsMaskedCaption(kind->captions[i]));
        rows_[i].copy->setVisible(filled);
        rows_[i].open->setVisible(filled && IsUrlCaption(kind->captions[i]));
    }
    txtTall_->setVisible(height > 1);
    txtTall_->setFixedHeight(kit::HeightOfLines(*txtTall_, height));
    txtTall_->setPlainText(kit::ShowLines(record_.n[1]));
    txtNotes->setPlainText(kit::ShowLines(record_.notes));
    damaged_->setVisible(!record_.readable);
    lblLastModified->setText(kit::ShortDate("Last modified: ", record_.dateLastModified));
}

void frmClassified::chkPlainPW_Click() {
    ShowFields();
}

void frmClassified::cmdAdd_Click() {
    if (round_.Open()) return;
    if (searching_) LeaveSearch();
    if (currentKind == 0) return;
    Record record;
    record.kind = currentKind;
    ShowEmptyPad();
    EditRecord(std::move(record));
}

void frmClassified::cmdEdit_Click() {
    const std::int32_t key = ShownList()->SelectedKey();
    if (key == kit::RecordListView::kNoKey || round_.Open()) return;
    int error = 0;
    auto record = FetchRecord(session_, key, &error);
    kit::TellFailure(session_, error, tr("The record could not be read."));
    if (record) EditRecord(std::move(*record));
}

void frmClassified::OpenDraft(const custody::Draft& draft) {
    auto record = FetchRecord(session_, draft.key);
    if (record) {
        SelectRecord(draft.key);
    } else {
        if (ConfidentialKindFields(draft.category) == nullptr) return;  // the draft stays
        if (searching_) CloseFound();
        if (currentKind != draft.category) cat_Click(draft.category);
        ShowEmptyPad();
        record.emplace().kind = draft.category;
    }
    EditRecord(std::move(*record), &draft);
}

void frmClassified::EditRecord(Record record, const custody::Draft* draft) {
    if (ConfidentialKindFields(record.kind) == nullptr) return WipeRecord(record);
    if (!record.readable && !kit::AskToOverwrite(session_, tr("record"))) return WipeRecord(record);
    const std::int32_t keyBefore = record.key;
    const std::int32_t shown = ShownList()->SelectedKey();
    const WipedText nameBefore = record.n[0];
    frmEditConfidential editor(session_, record, this);
    if (padFrame->isVisible()) editor.Cover(*padFrame->parentWidget());
    const EditEnd end = round_.EditUntilStored(editor, draft, tr("The record was not stored."), [&] {
        WipeRecord(record);
        record = editor.Value();
        return WriteRecord(session_, record);
    });
    const std::int32_t key = record.key;
    // A row that was deleted behind the editor has come back under another key.
    const bool moved = key != keyBefore || nameBefore != record.n[0];
    WipeRecord(record);
    if (end == EditEnd::Closed) return;
    if (end == EditEnd::Stored && moved)
        listSelect_Initialize(key);
    else if (keyBefore != store::kNewRecord)
        ShowRecord(shown);
    else
        ShowNothing();
    FocusList();
}

void frmClassified::ShowNothing() {
    HidePad();
    ShownList()->SelectKey(kit::RecordListView::kNoKey);
}

void frmClassified::cmdDelete_Click() {
    const std::int32_t key = ShownList()->SelectedKey();
    if (key == kit::RecordListView::kNoKey) return;
    if (ShownList()->SelectedCount() > 1) return Pane()->DeleteSelected(79);
    if (session_.ports.prompter.Ask(ConfirmDelete(79, DeleteText(record_.n[0]))) != Answer::Ok) return;
    const int error = store::DeleteRow(session_, key);
    kit::TellFailure(session_, error, tr("The record was not deleted."));
    listSelect_Initialize(store::kNewRecord);
    if (error == 0) Pane()->TellStep();
}

}  // namespace bmr::confidential
