#include "notes/frmEditNotepad.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>

#include "kit/categoryfield.h"
#include "kit/drafttext.h"
#include "kit/failure.h"
#include "kit/fieldmenu.h"
#include "kit/formparts.h"
#include "kit/guards.h"
#include "kit/theme.h"
#include "kit/words.h"

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
    fields_.Show();
    Changed();
    recordChanged = false;
    kit::GuardDialog(*this);
    (memo.subject.empty() ? static_cast<QWidget*>(ctlSubject) : ctlNote)->setFocus();
}

frmEditNotepad::~frmEditNotepad() = default;

void frmEditNotepad::BuildControls() {
    ctlSubject = kit::MakeLineField("ctlSubject", tr("Subject"));
    ctlNote = kit::MakeTextField("ctlNote", tr("Memo"));
    length_ = new QLabel;
    length_->setObjectName("lblLength");
    length_->setForegroundRole(QPalette::PlaceholderText);
    ctlPrivate = kit::MakePrivateBox();
    cboCategory = new kit::CategoryField(session_, store::Section::Memo, kit::CategoryField::Use::Editor);
    kit::GiveFieldMenu(*ctlSubject, session_);
    kit::GiveFieldMenu(*ctlNote, session_);
    fields_.Tie(kSubject, *ctlSubject, memo_.subject);
    fields_.Tie(kBody, *ctlNote, memo_.body);
    fields_.Tie(kPrivate, *ctlPrivate, memo_.isPrivate);
    fields_.Tie(*cboCategory, memo_.category);
    connect(&fields_, &kit::EditorFields::Changed, this, &frmEditNotepad::Changed);
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
    foot->addWidget(length_, 1);
    foot->addWidget(save.box);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(Space::Margin, Space::Margin, Space::Margin, Space::Margin);
    column->setSpacing(Space::Tight);
    column->addWidget(kit::MakeLabel(tr("&Subject"), ctlSubject));
    column->addWidget(fields_.Row(ctlSubject));
    column->addSpacing(Space::Row);
    column->addWidget(kit::MakeLabel(tr("&Text"), ctlNote));
    column->addWidget(fields_.Row(ctlNote), 1);
    column->addSpacing(Space::Row);
    column->addLayout(options);
    column->addSpacing(Space::Row);
    column->addLayout(foot);
    kit::GiveLetters(*this);
    resize(qMax(620, fontMetrics().averageCharWidth() * 90), fontMetrics().lineSpacing() * 30);
}

Memo frmEditNotepad::Value() {
    fields_.Take();
    return memo_;
}

std::optional<custody::Draft> frmEditNotepad::HalfWritten() const {
    if (!recordChanged) return std::nullopt;
    return fields_.HalfWritten(store::Section::Memo, memo_.key);
}

custody::Draft frmEditNotepad::DraftOf(const QString& subject, std::int32_t category) {
    custody::Draft draft;
    draft.section = store::Section::Memo;
    draft.category = category;
    draft.isPrivate = false;
    kit::SetTitle(draft, subject);
    kit::PutText(draft, kSubject, subject);
    return draft;
}

void frmEditNotepad::Fill(const custody::Draft& draft) {
    fields_.Fill(draft);
    recordChanged = true;
}

void frmEditNotepad::Changed() {
    recordChanged = true;
    const kit::WipedLetters body = kit::PlainText(*ctlNote);
    length_->setText(kit::LengthOf(kit::TakeLines(body, memo_.body)));
}

void frmEditNotepad::cmdOK_Click() {
    if (fields_.Judge()) accept();
}

void frmEditNotepad::reject() {
    if (!recordChanged || session_.ending) return QDialog::reject();
    const kit::Leaving leaving = kit::AskDiscard(session_);
    if (leaving == kit::Leaving::Discard) {
        recordChanged = false;
        QDialog::reject();
    } else if (leaving == kit::Leaving::Store && !session_.ending) {
        cmdOK_Click();  // No stores, as the button does that says so
    }
}

}  // namespace bmr::notes
