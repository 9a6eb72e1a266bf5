#include "notes/frmEditNotepad.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>

#include "base/languageus.h"
#include "kit/categoryfield.h"
#include "kit/drafttext.h"
#include "kit/failure.h"
#include "kit/fieldmenu.h"
#include "kit/formparts.h"
#include "kit/guards.h"
#include "kit/theme.h"
#include "kit/words.h"
#include "store/record_put.h"

namespace bmr::notes {

using kit::Space;

namespace {

/// Numbers of the texts in a draft. Never renumber: files in the field carry these.
enum DraftField : std::uint8_t { kSubject = 1, kBody = 2, kPrivate = 3 };

}  // namespace

frmEditNotepad::frmEditNotepad(store::Session& session, const Memo& memo, QWidget* parent)
    : QDialog(parent), session_(session), memo_(memo) {
    setObjectName("frmEditNotepad");
    setWindowTitle(tr("Memo"));
    BuildControls();
    Lay();
    filling_ = true;
    cboCategory->Fill(memo.category);
    ctlSubject->setText(kit::ToQString(memo.subject));
    crlf_ = kit::ShowLines(*ctlNote, memo.body);
    ctlPrivate->setChecked(memo.isPrivate);
    filling_ = false;
    Changed();
    recordChanged = false;
    kit::GuardDialog(*this);
    (memo.subject.empty() ? static_cast<QWidget*>(ctlSubject) : ctlNote)->setFocus();
}

frmEditNotepad::~frmEditNotepad() = default;

void frmEditNotepad::BuildControls() {
    ctlSubject = kit::MakeLineField("ctlSubject", tr("Subject"));
    lblSubjectError = kit::MakeErrorLine("lblSubjectError");
    ctlNote = kit::MakeTextField("ctlNote", tr("Memo"));
    lblNoteError = kit::MakeErrorLine("lblNoteError");
    lblLength = new QLabel;
    lblLength->setObjectName("lblLength");
    lblLength->setForegroundRole(QPalette::PlaceholderText);
    ctlPrivate = kit::MakePrivateBox();
    cboCategory = new kit::CategoryField(session_, store::Section::Memo, kit::CategoryField::Use::Editor);
    kit::GiveFieldMenu(*ctlSubject, session_);
    kit::GiveFieldMenu(*ctlNote, session_);
    connect(ctlSubject, &QLineEdit::textChanged, this, &frmEditNotepad::Changed);
    connect(ctlNote, &QPlainTextEdit::textChanged, this, &frmEditNotepad::Changed);
    connect(ctlPrivate, &QCheckBox::toggled, this, &frmEditNotepad::Changed);
    connect(cboCategory, &kit::CategoryField::Chosen, this, &frmEditNotepad::Changed);
}

void frmEditNotepad::Lay() {
    const kit::SaveCancel save = kit::MakeSaveCancel(*this, [this] { cmdOK_Click(); });
    cmdOK = save.cmdOK;
    cmdEsc = save.cmdEsc;
    auto* options = new QHBoxLayout;
    options->setSpacing(Space::Tight);
    options->addWidget(kit::MakeLabel(tr("Cate&gory"), cboCategory));
    options->addSpacing(Space::Tight);
    options->addWidget(cboCategory, 1);
    options->addSpacing(Space::Group);
    options->addWidget(ctlPrivate);
    auto* foot = new QHBoxLayout;
    foot->addWidget(lblLength, 1);
    foot->addWidget(save.box);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(Space::Margin, Space::Margin, Space::Margin, Space::Margin);
    column->setSpacing(Space::Tight);
    column->addWidget(kit::MakeLabel(tr("&Subject"), ctlSubject));
    column->addWidget(kit::WithError(ctlSubject, lblSubjectError));
    column->addSpacing(Space::Row);
    column->addWidget(kit::MakeLabel(tr("&Text"), ctlNote));
    column->addWidget(kit::WithError(ctlNote, lblNoteError), 1);
    column->addSpacing(Space::Row);
    column->addLayout(options);
    column->addSpacing(Space::Row);
    column->addLayout(foot);
    kit::SetTabOrder(
        {ctlSubject, ctlNote, cboCategory->Combo(), cboCategory->Button(), ctlPrivate, cmdOK, cmdEsc});
    resize(qMax(620, fontMetrics().averageCharWidth() * 90), fontMetrics().lineSpacing() * 30);
}

Bytes frmEditNotepad::Body() const {
    return kit::TakeLines(*ctlNote, crlf_);
}

Memo frmEditNotepad::Value() const {
    Memo memo = memo_;
    memo.subject = kit::FromQString(ctlSubject->text());
    memo.body = Body();
    memo.category = cboCategory->Number();
    memo.isPrivate = ctlPrivate->isChecked();
    return memo;
}

std::optional<custody::Draft> frmEditNotepad::HalfWritten() const {
    if (!recordChanged) return std::nullopt;
    std::optional<custody::Draft> draft(std::in_place);
    draft->section = store::Section::Memo;
    draft->key = memo_.key;
    draft->category = cboCategory->Number();
    draft->isPrivate = memo_.isPrivate || ctlPrivate->isChecked();
    kit::SetTitle(*draft, ctlSubject->text());
    kit::PutText(*draft, kSubject, ctlSubject->text());
    kit::PutText(*draft, kBody, kit::PlainText(*ctlNote));
    kit::PutFlag(*draft, kPrivate, ctlPrivate->isChecked());
    return draft;
}

void frmEditNotepad::Fill(const custody::Draft& draft) {
    cboCategory->Fill(draft.category);
    ctlSubject->setText(kit::TextOf(draft, kSubject));
    kit::ContinueAtEnd(*ctlSubject);
    ctlNote->setPlainText(kit::TextOf(draft, kBody));
    ctlNote->moveCursor(QTextCursor::End);
    ctlPrivate->setChecked(kit::FlagOf(draft, kPrivate));
    recordChanged = true;
}

void frmEditNotepad::Changed() {
    if (filling_) return;
    recordChanged = true;
    cutAccepted_ = false;
    kit::MarkUnmappable(*ctlNote);
    const auto length = static_cast<qsizetype>(Body().size());
    lblLength->setText(tr("%1 characters").arg(QLocale().toString(length)));
    if (lblSubjectError->isVisible() || lblNoteError->isVisible()) Storable();
}

bool frmEditNotepad::Storable() {
    const bool subject = kit::Tell(*lblSubjectError, kit::RefusalOf(ctlSubject->text()));
    const bool body = kit::Tell(*lblNoteError, kit::RefusalOf(kit::PlainText(*ctlNote)));
    return subject && body;
}

void frmEditNotepad::cmdOK_Click() {
    if (!Storable()) {
        (lblSubjectError->isVisible() ? static_cast<QWidget*>(ctlSubject) : ctlNote)->setFocus();
        return;
    }
    const std::size_t length = Body().size();
    if (recordChanged && !cutAccepted_ && length > store::kLongestText) {
        Box box;
        box.text =
            tr("The memo has %1 characters. Only the first %2 can be stored; the last %3 would be lost. "
               "Store it cut?")
                .arg(QLocale().toString(static_cast<qulonglong>(length)),
                     QLocale().toString(static_cast<qulonglong>(store::kLongestText)),
                     QLocale().toString(static_cast<qulonglong>(length - store::kLongestText)))
                .toStdString();
        box.buttons = Buttons::YesNo;
        box.icon = BoxIcon::Warning;
        box.standard = Answer::No;
        if (session_.ports.prompter.Ask(box) != Answer::Yes) return;
        cutAccepted_ = true;
    }
    accept();
}

void frmEditNotepad::reject() {
    if (!recordChanged || session_.ending) return QDialog::reject();
    if (kit::AskDiscard(session_)) {  // else the memo is stored
        recordChanged = false;
        return QDialog::reject();
    }
    if (!session_.ending) cmdOK_Click();
}

}  // namespace bmr::notes
