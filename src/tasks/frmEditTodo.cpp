#include "tasks/frmEditTodo.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>

#include "base/languageus.h"
#include "calendar/calendar.h"
#include "kit/categoryfield.h"
#include "kit/dateedit.h"
#include "kit/failure.h"
#include "kit/fieldmenu.h"
#include "kit/formparts.h"
#include "kit/guards.h"
#include "kit/theme.h"
#include "kit/words.h"

namespace bmr::tasks {

namespace {

using kit::MakeErrorLine;
using kit::MakeLabel;
using kit::Space;
using kit::WithError;

/// Longest text that a field of a record keeps.
constexpr qsizetype kLongestText = 65000;

}  // namespace

frmEditTodo::frmEditTodo(store::Session& session, const EditorValues& values, bool isNew, QWidget* parent)
    : QDialog(parent), session_(session) {
    setObjectName("frmEditTodo");
    setWindowTitle(tr("Task"));
    BuildTexts();
    BuildChoices();
    BuildDates();
    Lay(isNew);
    recordToEditor(values);
    ctlTask->setFocus();
    kit::GuardDialog(*this);
}

frmEditTodo::~frmEditTodo() = default;

void frmEditTodo::BuildTexts() {
    ctlTask = kit::MakeLineField("ctlTask", tr("Task"));
    lblTaskError = MakeErrorLine("lblTaskError");
    ctlNote = kit::MakeTextField("ctlNote", tr("Note"));
    ctlNote->setMinimumHeight(fontMetrics().lineSpacing() * 6);
    lblNoteError = MakeErrorLine("lblNoteError");
    kit::GiveFieldMenu(*ctlTask, session_);
    kit::GiveFieldMenu(*ctlNote, session_);
    connect(ctlTask, &QLineEdit::textChanged, this, &frmEditTodo::Changed);
    connect(ctlNote, &QPlainTextEdit::textChanged, this, &frmEditTodo::Changed);
}

void frmEditTodo::BuildChoices() {
    static const char* const kNames[] = {QT_TR_NOOP("&High"), QT_TR_NOOP("Nor&mal"), QT_TR_NOOP("&Low")};
    auto* group = new QButtonGroup(this);
    for (std::size_t i = 0; i < ctlPri.size(); ++i) {
        ctlPri[i] = new QRadioButton(tr(kNames[i]));
        ctlPri[i]->setObjectName(QString("ctlPri%1").arg(i));
        group->addButton(ctlPri[i]);
        connect(ctlPri[i], &QRadioButton::toggled, this, &frmEditTodo::Changed);
    }
    ctlPrivate = kit::MakePrivateBox();
    cboCategory = new kit::CategoryField(session_, store::Section::Todo, kit::CategoryField::Use::Editor);
    connect(ctlPrivate, &QCheckBox::toggled, this, &frmEditTodo::Changed);
    connect(cboCategory, &kit::CategoryField::Chosen, this, &frmEditTodo::Changed);
}

void frmEditTodo::BuildDates() {
    const Day today = session_.ports.clock.Today();
    const auto make = [&](const char* name, const QString& caption, QLabel* error) {
        auto* edit = new kit::DateEdit(today);
        edit->setObjectName(name);
        edit->SetRange(calendar::kLowerLimit, calendar::kUpperLimit);
        edit->SetCaption(caption);
        connect(edit, &kit::DateEdit::Edited, error, &QLabel::hide);
        connect(edit, &kit::DateEdit::NotUnderstood, this, [this, error](const QString& typed) {
            kit::Tell(*error, tr("“%1” is no date.").arg(typed));
            Changed();
        });
        return edit;
    };
    lblDueError = MakeErrorLine("lblDueError");
    lblCompletedError = MakeErrorLine("lblCompletedError");
    ctlDateDue = make("ctlDateDue", tr("Due"), lblDueError);
    ctlDateCompleted = make("ctlDateCompleted", tr("Completed"), lblCompletedError);
    connect(ctlDateDue, &kit::DateEdit::DateChanged, this, &frmEditTodo::DueChanged);
    connect(ctlDateCompleted, &kit::DateEdit::DateChanged, this, &frmEditTodo::CompletedChanged);
}

QWidget* frmEditTodo::MakeButtons(bool isNew) {
    const kit::SaveCancel foot = kit::MakeSaveCancel(*this, [this] { cmdOK_Click(); });
    QDialogButtonBox* buttons = foot.box;
    cmdOK = foot.cmdOK;
    cmdOK->setDefault(true);
    cmdEsc = foot.cmdEsc;
    if (isNew) {
        auto* more = buttons->addButton(tr("Save and &new"), QDialogButtonBox::ActionRole);
        more->setObjectName("cmdSaveNew");
        connect(more, &QPushButton::clicked, this, [this] {
            another = recordChanged;
            cmdOK_Click();
        });
    }
    return buttons;
}

void frmEditTodo::Lay(bool isNew) {
    auto* priority = new QWidget;
    auto* options = new QHBoxLayout(priority);
    options->setContentsMargins(0, 0, 0, 0);
    options->setSpacing(Space::Group);
    for (QRadioButton* option : ctlPri)
        options->addWidget(option);
    options->addStretch();

    auto* left = new QFormLayout;
    auto* right = new QFormLayout;
    for (QFormLayout* half : {left, right}) {
        half->setHorizontalSpacing(Space::Row);
        half->setVerticalSpacing(Space::Row);
        half->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    }
    left->addRow(MakeLabel(tr("Priority"), ctlPri[0]), priority);
    left->addRow(MakeLabel(tr("Cate&gory"), cboCategory), cboCategory);
    left->addRow(QString(), ctlPrivate);
    right->addRow(MakeLabel(tr("&Due"), ctlDateDue), WithError(ctlDateDue, lblDueError));
    right->addRow(MakeLabel(tr("&Completed"), ctlDateCompleted),
                  WithError(ctlDateCompleted, lblCompletedError));
    auto* halves = new QHBoxLayout;
    halves->setSpacing(Space::Group * 2);
    halves->addLayout(left, 1);
    halves->addLayout(right, 1);

    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(Space::Margin, Space::Margin, Space::Margin, Space::Margin);
    column->setSpacing(Space::Tight);
    column->addWidget(MakeLabel(isNew ? tr("New &task") : tr("&Task"), ctlTask));
    column->addWidget(WithError(ctlTask, lblTaskError));
    column->addSpacing(Space::Row);
    column->addLayout(halves);
    column->addSpacing(Space::Row);
    column->addWidget(MakeLabel(tr("&Note"), ctlNote));
    column->addWidget(WithError(ctlNote, lblNoteError), 1);
    column->addSpacing(Space::Row);
    column->addWidget(MakeButtons(isNew));
    kit::SetTabOrder({ctlTask, ctlPri[0], ctlPri[1], ctlPri[2], cboCategory->Combo(), cboCategory->Button(),
                      ctlPrivate, ctlDateDue, ctlDateCompleted, ctlNote, cmdOK, cmdEsc});
    resize(qMax(620, fontMetrics().averageCharWidth() * 96), fontMetrics().lineSpacing() * 25);
}

void frmEditTodo::recordToEditor(const EditorValues& values) {
    filling_ = true;
    ctlTask->setText(kit::ToQString(values.task));
    crlf_ = kit::ShowLines(*ctlNote, values.note);
    wasPrivate_ = values.isPrivate;
    ShowChoices(values);
    filling_ = false;
    recordChanged = false;
}

void frmEditTodo::ShowChoices(const EditorValues& values) {
    cboCategory->Fill(values.category);
    const auto chosen = static_cast<std::size_t>(values.priority.value_or(-1));
    if (chosen < ctlPri.size()) {
        ctlPri[chosen]->setChecked(true);
        // Tab comes to the option that is on; Qt sees to that only after the first press.
        for (QRadioButton* option : ctlPri)
            option->setFocusPolicy(option->isChecked() ? Qt::StrongFocus : Qt::ClickFocus);
    }
    ctlPrivate->setChecked(values.isPrivate);
    pickers_ = FillPickers(values.due, values.completed);
    ctlDateDue->SetDate(pickers_.due);
    ctlDateCompleted->SetDate(pickers_.completed);
}

EditorValues frmEditTodo::Values() const {
    EditorValues values;
    values.task = kit::FromQString(ctlTask->text());
    values.note = kit::TakeLines(*ctlNote, crlf_);
    for (std::size_t i = ctlPri.size(); i-- > 0;)
        if (ctlPri[i]->isChecked()) values.priority = static_cast<std::int32_t>(i);
    values.isPrivate = ctlPrivate->isChecked();
    values.due = ctlDateDue->Date();
    values.completed = ctlDateCompleted->Date();
    values.category = cboCategory->Number();
    return values;
}

void frmEditTodo::MarkChanged() {
    recordChanged = true;
}

void frmEditTodo::Changed() {
    if (filling_) return;
    recordChanged = true;
    if (refused_) Storable();  // the words go as soon as the cause is gone
}

bool frmEditTodo::CommitDates() {
    for (kit::DateEdit* edit : {ctlDateDue, ctlDateCompleted}) {
        if (edit->Commit()) continue;
        edit->FocusLine();
        return false;
    }
    return true;
}

void frmEditTodo::DueChanged(std::optional<Day> date) {
    pickers_.due = date;
    const DueJudgement judgement = JudgeDueChange(pickers_, session_.ports.clock.Today());
    ctlDateDue->SetDate(pickers_.due);
    if (judgement.changed) Changed();
    for (const int message : judgement.messages)
        session_.ports.prompter.Ask(
            MessageBox(message, message == 24 ? BoxIcon::Warning : BoxIcon::Information));
}

void frmEditTodo::CompletedChanged(std::optional<Day> date) {
    pickers_.completed = date;
    JudgeCompletedChange(pickers_, session_.ports.clock.Today());
    Changed();
}

bool frmEditTodo::Storable() {
    const auto judge = [](QLabel& line, const QString& text) {
        QString why = kit::RefusalOf(text);
        if (const auto over = text.size() + text.count('\n') - kLongestText; why.isEmpty() && over > 0)
            why = tr("Too long by %1 characters: a record holds %2.").arg(over).arg(kLongestText);
        return kit::Tell(line, why);
    };
    const bool task = judge(*lblTaskError, ctlTask->text());
    const bool note = judge(*lblNoteError, kit::PlainText(*ctlNote));
    refused_ = !task || !note;
    if (!refused_) return true;
    if (!task && !ctlNote->hasFocus())
        ctlTask->setFocus();
    else if (task && !ctlTask->hasFocus())
        ctlNote->setFocus();
    return false;
}

void frmEditTodo::cmdOK_Click() {
    if (CommitDates() && Storable())
        accept();
    else
        another = false;
}

void frmEditTodo::cmdEsc_Click() {
    another = false;
    const bool dates = session_.ending || CommitDates();  // a date that is still being typed is a change too
    if (recordChanged && !session_.ending) {
        if (!kit::AskDiscard(session_)) {
            // "No" stores, so it is held to the same rules as the button that says so.
            if (session_.ending || (dates && Storable())) QDialog::reject();
            return;
        }
    }
    recordChanged = false;
    QDialog::reject();
}

void frmEditTodo::reject() {
    cmdEsc_Click();
}

}  // namespace bmr::tasks
