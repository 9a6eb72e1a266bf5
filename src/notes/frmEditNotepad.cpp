#include "notes/frmEditNotepad.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QShortcut>
#include <QToolButton>

#include "base/languageus.h"
#include "kit/categorycombo.h"
#include "kit/drafttext.h"
#include "kit/fieldmenu.h"
#include "kit/formparts.h"
#include "kit/frmEditCategories.h"
#include "kit/guards.h"
#include "kit/icons.h"
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
    FillCategories(memo.category);
    ctlSubject->setText(kit::ToQString(memo.subject));
    // Line ends are kept in two characters; a memo that was written otherwise keeps its own.
    crlf_ = memo.body.find("\r\n") != Bytes::npos || memo.body.find('\n') == Bytes::npos;
    ctlNote->setPlainText(kit::ToQString(memo.body).replace("\r\n", "\n"));
    ctlPrivate->setChecked(memo.isPrivate);
    filling_ = false;
    Changed();
    recordChanged = false;
    kit::GuardDialog(*this);
    (memo.subject.empty() ? static_cast<QWidget*>(ctlSubject) : ctlNote)->setFocus();
}

frmEditNotepad::~frmEditNotepad() = default;

void frmEditNotepad::BuildControls() {
    ctlSubject = new QLineEdit;
    ctlSubject->setObjectName("ctlSubject");
    ctlSubject->setAccessibleName(tr("Subject"));
    lblSubjectError = kit::MakeErrorLine("lblSubjectError");
    ctlNote = new QPlainTextEdit;
    ctlNote->setObjectName("ctlNote");
    ctlNote->setAccessibleName(tr("Memo"));
    ctlNote->setTabChangesFocus(true);
    lblNoteError = kit::MakeErrorLine("lblNoteError");
    lblLength = new QLabel;
    lblLength->setObjectName("lblLength");
    lblLength->setForegroundRole(QPalette::PlaceholderText);
    ctlPrivate = new QCheckBox(tr("&Private"));
    ctlPrivate->setObjectName("ctlPrivate");
    ctlPrivate->setToolTip(tr("Hidden unless private records are shown"));
    cboCategory = new QComboBox;
    cboCategory->setObjectName("cboCategory");
    cboCategory->setAccessibleName(tr("Category"));
    cmdEditCat = new QToolButton;
    cmdEditCat->setObjectName("cmdEditCat");
    cmdEditCat->setIcon(kit::Icon("configure"));
    cmdEditCat->setToolTip(tr("Edit categories"));
    cmdEditCat->setAccessibleName(tr("Edit categories"));
    cmdEditCat->setFocusPolicy(Qt::StrongFocus);
    kit::GiveFieldMenu(*ctlSubject, session_);
    kit::GiveFieldMenu(*ctlNote, session_);
    connect(ctlSubject, &QLineEdit::textChanged, this, &frmEditNotepad::Changed);
    connect(ctlNote, &QPlainTextEdit::textChanged, this, &frmEditNotepad::Changed);
    connect(ctlPrivate, &QCheckBox::toggled, this, &frmEditNotepad::Changed);
    connect(cboCategory, &QComboBox::activated, this, [this] {
        if (kit::SelectedCategory(*cboCategory) == store::Category::Edit) return cmdEditCat_Click();
        memo_.category = kit::SelectedCategory(*cboCategory);
        Changed();
    });
    connect(cmdEditCat, &QToolButton::clicked, this, &frmEditNotepad::cmdEditCat_Click);
}

void frmEditNotepad::Lay() {
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Save | QDialogButtonBox::Cancel);
    cmdOK = buttons->button(QDialogButtonBox::Save);
    cmdOK->setObjectName("cmdOK");
    cmdOK->setToolTip(tr("Ctrl+Return"));
    cmdEsc = buttons->button(QDialogButtonBox::Cancel);
    cmdEsc->setObjectName("cmdEsc");
    connect(cmdOK, &QPushButton::clicked, this, &frmEditNotepad::cmdOK_Click);
    connect(cmdEsc, &QPushButton::clicked, this, &frmEditNotepad::reject);
    for (const auto key : {Qt::Key_Return, Qt::Key_Enter})
        connect(new QShortcut(QKeySequence(Qt::CTRL | key), this), &QShortcut::activated, this,
                &frmEditNotepad::cmdOK_Click);

    auto* options = new QHBoxLayout;
    options->setSpacing(Space::Tight);
    options->addWidget(kit::MakeLabel(tr("Cate&gory"), cboCategory));
    options->addSpacing(Space::Tight);
    options->addWidget(cboCategory, 1);
    options->addWidget(cmdEditCat);
    options->addSpacing(Space::Group);
    options->addWidget(ctlPrivate);
    auto* foot = new QHBoxLayout;
    foot->addWidget(lblLength, 1);
    foot->addWidget(buttons);
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
    QWidget* order[] = {ctlSubject, ctlNote, cboCategory, cmdEditCat, ctlPrivate, cmdOK, cmdEsc};
    for (std::size_t i = 1; i < std::size(order); ++i)
        setTabOrder(order[i - 1], order[i]);
    resize(qMax(620, fontMetrics().averageCharWidth() * 90), fontMetrics().lineSpacing() * 30);
}

void frmEditNotepad::FillCategories(std::int32_t number) {
    kit::FillCategoryCombo(*cboCategory,
                           store::FillCategories(session_, store::Section::Memo, false, true, true));
    if (!kit::SelectCategory(*cboCategory, number))
        kit::SelectCategory(*cboCategory, store::Category::Unfiled);
    memo_.category = kit::SelectedCategory(*cboCategory);
}

Bytes frmEditNotepad::Body() const {
    QString text = kit::PlainText(*ctlNote);
    if (crlf_) text.replace("\n", "\r\n");
    return kit::FromQString(text);
}

Memo frmEditNotepad::Value() const {
    Memo memo = memo_;
    memo.subject = kit::FromQString(ctlSubject->text());
    memo.body = Body();
    memo.isPrivate = ctlPrivate->isChecked();
    return memo;
}

std::optional<store::Draft> frmEditNotepad::HalfWritten() const {
    if (!recordChanged) return std::nullopt;
    std::optional<store::Draft> draft(std::in_place);
    draft->section = store::Section::Memo;
    draft->key = memo_.key;
    draft->category = memo_.category;
    draft->isPrivate = memo_.isPrivate || ctlPrivate->isChecked();
    kit::SetTitle(*draft, ctlSubject->text());
    kit::PutText(*draft, kSubject, ctlSubject->text());
    kit::PutText(*draft, kBody, kit::PlainText(*ctlNote));
    kit::PutFlag(*draft, kPrivate, ctlPrivate->isChecked());
    return draft;
}

void frmEditNotepad::Fill(const store::Draft& draft) {
    FillCategories(draft.category);
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
    const auto tell = [](QLabel* label, const QString& why) {
        label->setText(why);
        label->setVisible(!why.isEmpty());
        return why.isEmpty();
    };
    const bool subject = tell(lblSubjectError, kit::RefusalOf(ctlSubject->text()));
    const bool body = tell(lblNoteError, kit::RefusalOf(kit::PlainText(*ctlNote)));
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
    Box box = MessageBox(20, BoxIcon::Question);
    box.buttons = Buttons::YesNo;
    box.standard = Answer::No;  // the answer that loses nothing: the memo is stored
    if (session_.ports.prompter.Ask(box) == Answer::Yes) {
        recordChanged = false;
        return QDialog::reject();
    }
    if (!session_.ending) cmdOK_Click();
}

void frmEditNotepad::cmdEditCat_Click() {
    const std::int32_t before = memo_.category;
    kit::frmEditCategories form(session_, store::Section::Memo, this);
    form.exec();
    if (session_.ending || !session_.DatabaseOpen) return;
    FillCategories(before);
    if (memo_.category != before) Changed();
}

}  // namespace bmr::notes
