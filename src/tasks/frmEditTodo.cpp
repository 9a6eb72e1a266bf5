#include "tasks/frmEditTodo.h"

#include <QButtonGroup>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>

#include "calendar/calendar.h"
#include "kit/categoryfield.h"
#include "kit/dateedit.h"
#include "kit/drafttext.h"
#include "kit/failure.h"
#include "kit/fieldmenu.h"
#include "kit/formparts.h"
#include "kit/guards.h"
#include "kit/theme.h"

namespace bmr::tasks {

namespace {

using kit::MakeErrorLine;
using kit::MakeLabel;
using kit::Space;
using kit::WithError;

/// Numbers of the texts in a draft. Never renumber: files in the field carry these. Days are kept as their
/// serial numbers.
enum DraftField : std::uint8_t { kTask = 1, kNote, kPrivate, kPriority, kDue, kCompleted };

std::optional<std::int32_t> SerialOf(std::optional<Day> day) {
    return day ? std::optional(day->serial) : std::nullopt;
}

std::optional<Day> DayIn(const custody::Draft& draft, std::uint8_t field) {
    const auto serial = kit::NumberOf(draft, field);
    return serial ? std::optional(Day{*serial}) : std::nullopt;
}

}  // namespace

frmEditTodo::frmEditTodo(store::Session& session, const EditorValues& values, std::int32_t key,
                         QWidget* parent)
    : QDialog(parent), session_(session), values_(values), key_(key) {
    setObjectName("frmEditTodo");
    setWindowTitle(tr("Task"));
    BuildTexts();
    BuildChoices();
    BuildDates();
    connect(&fields_, &kit::EditorFields::Changed, this, &frmEditTodo::Changed);
    Lay();
    fields_.Show();
    ShowChoices(values);
    recordChanged = false;  // last, since all this tells of changes
    ctlTask->setFocus();
    kit::GuardDialog(*this);
}

frmEditTodo::~frmEditTodo() = default;

void frmEditTodo::BuildTexts() {
    ctlTask = kit::MakeLineField("ctlTask", tr("Task"));
    ctlNote = kit::MakeTextField("ctlNote", tr("Note"));
    ctlNote->setMinimumHeight(fontMetrics().lineSpacing() * 6);
    kit::GiveFieldMenu(*ctlTask, session_);
    kit::GiveFieldMenu(*ctlNote, session_);
    fields_.Tie(kTask, *ctlTask, values_.task);
    fields_.Tie(kNote, *ctlNote, values_.note);
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
    fields_.Tie(kPrivate, *ctlPrivate, values_.isPrivate);
    fields_.Tie(*cboCategory, values_.category);
}

void frmEditTodo::BuildDates() {
    const Day today = session_.ports.clock.Today();
    const auto make = [&](const char* name, const QString& caption, QLabel* error) {
        auto* edit = new kit::DateEdit(today);
        edit->setObjectName(name);
        edit->SetRange(calendar::kLowerLimit, calendar::kUpperLimit);
        edit->SetCaption(caption);
        connect(edit, &kit::DateEdit::Edited, error, &QLabel::hide);
        connect(edit, &kit::DateEdit::NotUnderstood, this, [this, error](const QString& why) {
            kit::Tell(*error, why);
            Changed();
        });
        return edit;
    };
    dueError_ = MakeErrorLine("lblDueError");
    completedError_ = MakeErrorLine("lblCompletedError");
    ctlDateDue = make("ctlDateDue", tr("Due"), dueError_);
    ctlDateCompleted = make("ctlDateCompleted", tr("Completed"), completedError_);
    connect(ctlDateDue, &kit::DateEdit::DateChanged, this, &frmEditTodo::DueChanged);
    connect(ctlDateCompleted, &kit::DateEdit::DateChanged, this, &frmEditTodo::CompletedChanged);
}

QWidget* frmEditTodo::MakeButtons() {
    const kit::SaveCancel foot = kit::MakeSaveCancel(*this, [this] { cmdOK_Click(); });
    QDialogButtonBox* buttons = foot.box;
    cmdOK = foot.cmdOK;
    cmdEsc = foot.cmdEsc;
    if (IsNew()) {
        auto* more = buttons->addButton(tr("Save and ne&w"), QDialogButtonBox::ActionRole);
        more->setObjectName("cmdSaveNew");
        connect(more, &QPushButton::clicked, this, [this] {
            another = recordChanged;
            cmdOK_Click();
        });
    }
    return buttons;
}

void frmEditTodo::Lay() {
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
    right->addRow(MakeLabel(tr("&Due"), ctlDateDue), WithError(ctlDateDue, dueError_));
    right->addRow(MakeLabel(tr("&Completed"), ctlDateCompleted),
                  WithError(ctlDateCompleted, completedError_));
    auto* halves = new QHBoxLayout;
    halves->setSpacing(Space::Group * 2);
    halves->addLayout(left, 1);
    halves->addLayout(right, 1);

    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(Space::Margin, Space::Margin, Space::Margin, Space::Margin);
    column->setSpacing(Space::Tight);
    column->addWidget(MakeLabel(IsNew() ? tr("New &task") : tr("&Task"), ctlTask));
    column->addWidget(fields_.Row(ctlTask));
    column->addSpacing(Space::Row);
    column->addLayout(halves);
    column->addSpacing(Space::Row);
    column->addWidget(MakeLabel(tr("&Note"), ctlNote));
    column->addWidget(fields_.Row(ctlNote), 1);
    column->addSpacing(Space::Row);
    column->addWidget(MakeButtons());
    kit::GiveLetters(*this);
    cmdOK->setDefault(true);  // earlier it has no dialog yet, whose own default it is to be
    resize(qMax(620, fontMetrics().averageCharWidth() * 96), fontMetrics().lineSpacing() * 25);
}

void frmEditTodo::ShowChoices(const EditorValues& values) {
    const auto chosen = static_cast<std::size_t>(values.priority.value_or(-1));
    if (chosen < ctlPri.size()) {
        ctlPri[chosen]->setChecked(true);
        // Tab comes to the option that is on; Qt sees to that only after the first press.
        for (QRadioButton* option : ctlPri)
            option->setFocusPolicy(option->isChecked() ? Qt::StrongFocus : Qt::ClickFocus);
    }
    pickers_ = FillPickers(values.due, values.completed);
    ctlDateDue->SetDate(pickers_.due);
    ctlDateCompleted->SetDate(pickers_.completed);
}

EditorValues frmEditTodo::Values() {
    fields_.Take();
    values_.priority.reset();
    for (std::size_t i = ctlPri.size(); i-- > 0;)
        if (ctlPri[i]->isChecked()) values_.priority = static_cast<std::int32_t>(i);
    values_.due = ctlDateDue->Date();
    values_.completed = ctlDateCompleted->Date();
    return values_;
}

custody::Draft frmEditTodo::DraftOf(const QString& task, std::int32_t category) {
    custody::Draft draft;
    draft.section = store::Section::Todo;
    draft.category = category;
    draft.isPrivate = false;
    kit::SetTitle(draft, task);
    kit::PutText(draft, kTask, task);
    kit::PutNumber(draft, kPriority, Priority::Normal);
    return draft;
}

QString frmEditTodo::TaskIn(const custody::Draft& draft) {
    return kit::TextOf(draft, kTask);
}

std::optional<custody::Draft> frmEditTodo::HalfWritten() const {
    if (!recordChanged) return std::nullopt;
    std::optional<custody::Draft> draft = fields_.HalfWritten(store::Section::Todo, key_);
    for (std::size_t i = 0; i < ctlPri.size(); ++i)
        if (ctlPri[i]->isChecked()) kit::PutNumber(*draft, kPriority, static_cast<std::int32_t>(i));
    kit::PutNumber(*draft, kDue, SerialOf(ctlDateDue->Date()));
    kit::PutNumber(*draft, kCompleted, SerialOf(ctlDateCompleted->Date()));
    return draft;
}

void frmEditTodo::Fill(const custody::Draft& draft) {
    fields_.Fill(draft);
    EditorValues choices;
    choices.priority = kit::NumberOf(draft, kPriority);
    choices.due = DayIn(draft, kDue);
    choices.completed = DayIn(draft, kCompleted);
    ShowChoices(choices);
    recordChanged = true;
}

void frmEditTodo::Changed() {
    recordChanged = true;
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

void frmEditTodo::cmdOK_Click() {
    if (CommitDates() && fields_.Judge())
        accept();
    else
        another = false;
}

void frmEditTodo::reject() {
    another = false;
    const bool dates = session_.ending || CommitDates();  // a date that is still being typed is a change too
    const auto leaving =
        !recordChanged || session_.ending ? kit::Leaving::Discard : kit::AskDiscard(session_);
    if (leaving == kit::Leaving::Discard) {
        recordChanged = false;
        QDialog::reject();
    } else if (session_.ending || (leaving == kit::Leaving::Store && dates && fields_.Judge())) {
        QDialog::reject();  // No stores, and is held to the same rules as the button that says so
    }
}

}  // namespace bmr::tasks
