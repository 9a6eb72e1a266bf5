// How the tabs of the preferences are put together, that of the guards apart; what they do stands in
// frmOptions.cpp.
#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QRadioButton>
#include <QScrollArea>
#include <QTabWidget>
#include <QVBoxLayout>
#include <limits>

#include "app/frmOptions.h"
#include "app/optionparts.h"
#include "kit/formparts.h"
#include "kit/stepedit.h"
#include "kit/theme.h"

namespace bmr::app {

using kit::Space;

QVBoxLayout* AddGroup(QVBoxLayout& page, const QString& caption) {
    if (page.count() > 0) page.addSpacing(Space::Group);
    auto* heading = new QLabel(caption);
    QFont bold = heading->font();
    bold.setBold(true);
    heading->setFont(bold);
    page.addWidget(heading);
    auto* group = new QVBoxLayout;
    group->setContentsMargins(Space::Group, 0, 0, 0);
    group->setSpacing(Space::Row);
    page.addLayout(group);
    return group;
}

QHBoxLayout* AddRow(QVBoxLayout& group) {
    auto* row = new QHBoxLayout;
    row->setSpacing(Space::Row);
    group.addLayout(row);
    return row;
}

QLabel* MakeHint(const QString& words) {
    auto* hint = new QLabel(words);
    hint->setWordWrap(true);
    hint->setForegroundRole(QPalette::PlaceholderText);
    return hint;
}

QVBoxLayout* frmOptions::AddTab(const char* name, const QString& caption) {
    auto* page = new QWidget;
    page->setAutoFillBackground(false);
    auto* column = new QVBoxLayout(page);
    column->setContentsMargins(Space::Group, Space::Group, Space::Group, Space::Group);
    column->setSpacing(Space::Row);
    auto* scroll = new QScrollArea;
    scroll->setObjectName(name);
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setWidgetResizable(true);
    scroll->setFocusPolicy(Qt::NoFocus);
    scroll->setWidget(page);
    page->setAutoFillBackground(false);
    scroll->viewport()->setAutoFillBackground(false);
    SSTab1->addTab(scroll, caption);
    return column;
}

QButtonGroup* frmOptions::MakeOptions(const char* name, const QStringList& captions, QBoxLayout& into) {
    auto* group = new QButtonGroup(this);
    for (int i = 0; i < captions.size(); ++i) {
        auto* option = new QRadioButton(captions[i]);
        option->setObjectName(QString("%1%2").arg(name).arg(i));
        group->addButton(option, i);
        into.addWidget(option);
    }
    return group;
}

QButtonGroup* frmOptions::MakeRow(const char* name, const QStringList& captions, QVBoxLayout& into) {
    QHBoxLayout* row = AddRow(into);
    row->setSpacing(Space::Group);
    QButtonGroup* group = MakeOptions(name, captions, *row);
    row->addStretch();
    return group;
}

QCheckBox* frmOptions::MakeBox(const QString& name, const QString& caption) {
    auto* box = new QCheckBox(caption);
    box->setObjectName(name);
    return box;
}

QLabel* frmOptions::ErrorFor(const char* control) {
    QLabel* line = kit::MakeErrorLine(QString("lbl%1Error").arg(control).toLatin1());
    errors_[control] = line;
    return line;
}

kit::StepEdit* frmOptions::MakeTime(const char* name, const char* tag, const QString& caption) {
    const auto step = [](const QString& text, int place, int by) {
        const auto colon = text.indexOf(':');
        const auto part = colon >= 0 && place > colon ? shell::TimePart::Minutes : shell::TimePart::Hours;
        return QString::fromStdString(shell::StepTime(text.toStdString(), part, by));
    };
    auto* edit = new kit::StepEdit(name, "00:00", step);
    edit->setObjectName(QString("udHN_%1").arg(tag));
    edit->setProperty("tag", tag);
    edit->setAccessibleName(caption);
    edit->setToolTip(tr("Hours and minutes. Up and Down step what the cursor stands in."));
    return edit;
}

void frmOptions::AddMissingHint(QVBoxLayout& page, std::uint8_t section, const QString& words) {
    if ((shell::SectionBit(section) & surroundings_.available) == 0) {
        page.addSpacing(Space::Group);
        page.addWidget(MakeHint(words));
    }
    page.addStretch(1);
}

void frmOptions::BuildStartup(QVBoxLayout& page) {
    QVBoxLayout* first = AddGroup(page, tr("After the login"));
    StartScreen =
        MakeOptions("StartScreen",
                    {tr("Show &Start Screen"), tr("&Goto Section"), tr("Show &Last Section Used")}, *first);
    cboStartApp = new QComboBox;
    cboStartApp->setObjectName("cboStartApp");
    cboStartApp->setAccessibleName(tr("Section"));
    cboStartApp->addItems(
        {"Calendar", "Addressbook", "Diary", "ToDo List", "Memo Pad", "Sensitive Data", "Budget"});
    auto* section = new QHBoxLayout;
    section->setSpacing(Space::Row);
    QAbstractButton* gotoSection = StartScreen->button(1);
    first->removeWidget(gotoSection);
    section->addWidget(gotoSection);
    section->addWidget(cboStartApp);
    section->addStretch();
    first->insertLayout(1, section);
    connect(StartScreen, &QButtonGroup::idToggled, this, &frmOptions::StartScreen_Click);

    CatShow = MakeRow("CatShow", {tr("Last Us&ed"), tr("&First Entry")},
                      *AddGroup(page, tr("Initial Category Listing")));
    TodoShowCompleted = MakeBox("TodoShowCompleted", tr("Show Co&mpleted Items"));
    AddGroup(page, tr("To-do list"))->addWidget(TodoShowCompleted);
    DiaryShow = MakeRow("DiaryShow", {tr("&1 Day"), tr("&7 Days")}, *AddGroup(page, tr("Diary")));
    page.addStretch(1);
    QWidget::setTabOrder(gotoSection, cboStartApp);
}

void frmOptions::BuildCalendar(QVBoxLayout& page) {
    calView = MakeOptions("calView", {tr("Da&y"), tr("&Workdays (Mon-Fri)"), tr("Wee&k"), tr("&Month")},
                          *AddGroup(page, tr("Initial Display Period")));
    QVBoxLayout* length = AddGroup(page, tr("Appointments"));
    AppDuration = new QComboBox;
    AppDuration->setObjectName("AppDuration");
    for (const int minutes : {15, 20, 30, 60, 90, 120})
        AppDuration->addItem(tr("%1 min").arg(minutes), minutes);
    QHBoxLayout* row = AddRow(*length);
    row->addWidget(kit::MakeLabel(tr("Default Appointment Du&ration"), AppDuration));
    row->addWidget(AppDuration);
    row->addStretch();

    QVBoxLayout* day = AddGroup(page, tr("Day view"));
    WorkdayStart = MakeTime("WorkdayStart", "workdaystart", tr("Workday from"));
    WorkdayEnd = MakeTime("WorkdayEnd", "workdayend", tr("Workday until"));
    DisplayFrom = MakeTime("DisplayFrom", "displayfrom", tr("Display from"));
    auto* times = new QGridLayout;
    times->setHorizontalSpacing(Space::Row);
    times->setVerticalSpacing(Space::Row);
    times->addWidget(kit::MakeLabel(tr("Workday &from"), WorkdayStart), 0, 0);
    times->addWidget(WorkdayStart, 0, 1);
    times->addWidget(kit::MakeLabel(tr("unti&l"), WorkdayEnd), 0, 2);
    times->addWidget(WorkdayEnd, 0, 3);
    times->addWidget(kit::MakeLabel(tr("D&isplay from"), DisplayFrom), 1, 0);
    times->addWidget(DisplayFrom, 1, 1);
    times->setColumnStretch(4, 1);
    day->addLayout(times);
    for (const char* control : {"WorkdayStart", "WorkdayEnd", "DisplayFrom"})
        day->addWidget(ErrorFor(control));
    AddMissingHint(page, 12, tr("This version has no calendar yet. What is chosen here is kept for it."));
}

void frmOptions::BuildBudget(QVBoxLayout& page) {
    QVBoxLayout* boxes = AddGroup(page, tr("Shown in the list"));
    auto* grid = new QGridLayout;
    grid->setHorizontalSpacing(Space::Group);
    grid->setVerticalSpacing(Space::Row);
    boxes->addLayout(grid);
    const QString captions[] = {tr("Credit"), tr("Debit"), tr("Public"), tr("Private")};
    for (int budget = 0; budget < 3; ++budget) {
        const QString name = tr("Budget %1").arg(budget + 1);
        grid->addWidget(new QLabel(name), budget, 0);
        for (int box = 0; box < 4; ++box) {
            QCheckBox* made = MakeBox(QString("BudgetShow%1_%2").arg(budget).arg(box), captions[box]);
            made->setAccessibleName(name + ", " + captions[box]);
            grid->addWidget(made, budget, box + 1);
            const auto at = static_cast<std::size_t>(budget);
            const auto which = static_cast<std::size_t>(box);
            BudgetShow[at][which] = made;
            connect(made, &QCheckBox::clicked, this, [this, at, which] { BudgetShow_Click(at, which); });
        }
    }
    grid->setColumnStretch(5, 1);
    BudgetPrimary = MakeRow("BudgetPrimary", {tr("Budget &1"), tr("Budget &2"), tr("Budget &3")},
                            *AddGroup(page, tr("Initial Display")));
    AddMissingHint(page, 17, tr("This version has no budgets yet. What is chosen here is kept for them."));
}

void frmOptions::BuildAddress(QVBoxLayout& page) {
    QVBoxLayout* group = AddGroup(page, tr("User Defined Fields"));
    auto* form = new QFormLayout;
    form->setHorizontalSpacing(Space::Row);
    form->setVerticalSpacing(Space::Row);
    form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    for (std::size_t i = 0; i < txtUserDefined.size(); ++i) {
        const QByteArray name = "txtUserDefined" + QByteArray::number(static_cast<int>(i));
        auto* edit = new QLineEdit;
        edit->setObjectName(name);
        // No quiet cut at the field's own limit: what is too long is told.
        edit->setMaxLength(std::numeric_limits<int>::max());
        txtUserDefined[i] = edit;
        form->addRow(kit::MakeLabel(tr("User Def &%1").arg(i + 1), edit),
                     kit::WithError(edit, ErrorFor(name)));
    }
    group->addLayout(form);
    AddMissingHint(page, 11, tr("This version has no address book yet. The captions are kept for it."));
}

}  // namespace bmr::app
