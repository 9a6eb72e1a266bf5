#include <QActionGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSplitter>
#include <QVBoxLayout>

#include "base/shortdate.h"
#include "kit/dateentry.h"
#include "kit/fieldmenu.h"
#include "kit/focusframe.h"
#include "kit/formparts.h"
#include "kit/icons.h"
#include "kit/recordlistview.h"
#include "kit/remembered.h"
#include "kit/strip.h"
#include "kit/theme.h"
#include "tasks/frmTodo.h"
#include "tasks/todomodel.h"

// How the screen of the to-do section is put together; what it does stands in frmTodo.cpp.
namespace bmr::tasks {

namespace {

constexpr const char* kPriorities[] = {"&High", "&Normal", "&Low"};

QMenu* AddMenu(QMenu& menu, const char* name, const QString& text) {
    QMenu* sub = menu.addMenu(text);
    sub->setObjectName(name);
    sub->setToolTipsVisible(true);
    return sub;
}

}  // namespace

void frmTodo::BuildActions() {
    using kit::MakeAction;
    mnuTodoNew = MakeAction(
        *this, {"mnuTodoNew", tr("&New Task…"), "task-new", tr("New task"), QKeySequence(QKeySequence::New)},
        &frmTodo::cmdAdd_Click);
    mnuTodoEdit = MakeAction(
        *this, {"mnuTodoEdit", tr("&Edit…"), "document-edit", tr("Edit"), QKeySequence(Qt::CTRL | Qt::Key_E)},
        &frmTodo::mnuTodoEdit_Click);
    mnuTodoDeleteSelected = MakeAction(*this,
                                       {"mnuTodoDeleteSelected", tr("&Selected Task"), "edit-delete",
                                        tr("Delete"), QKeySequence(Qt::CTRL | Qt::Key_D)},
                                       &frmTodo::mnuTodoDeleteItem_Click);
    mnuTodoDeleteCompleted = MakeAction(*this, {"mnuTodoDeleteCompleted", tr("All &Completed Tasks")},
                                        &frmTodo::mnuTodoDeleteCompleted_Click);
    mnuTodoDeleteAll =
        MakeAction(*this, {"mnuTodoDeleteAll", tr("&All Tasks")}, &frmTodo::mnuTodoDeleteAll_Click);
    complete_ = MakeAction(*this,
                           {"mnuTodoCompleted", tr("&Completed"), "task-complete", tr("Completed"),
                            QKeySequence(Qt::CTRL | Qt::Key_T)},
                           &frmTodo::mnuCompleted_Click);
    showCompleted_ = MakeAction(*this, {"showCompleted", tr("Show completed"), "task-complete"});
    connect(showCompleted_, &QAction::triggered, this, [this] { ShowCompleted->click(); });
}

void frmTodo::BuildMenu() {
    menu_ = new QMenu(tr("&Task"), this);
    menu_->setObjectName("mnuTodo");
    menu_->setToolTipsVisible(true);
    menu_->addAction(mnuTodoNew);
    menu_->addAction(mnuTodoEdit);
    QMenu* remove = AddMenu(*menu_, "mnuTodoDelete", tr("&Delete"));
    remove->setIcon(kit::Icon("edit-delete"));
    remove->addAction(mnuTodoDeleteSelected);
    remove->addSeparator();
    remove->addAction(mnuTodoDeleteCompleted);
    remove->addAction(mnuTodoDeleteAll);
    menu_->addSeparator();
    menu_->addAction(complete_);
    QMenu* priority = AddMenu(*menu_, "mnuTodoPriority", tr("&Priority"));
    for (int i = 0; i < 3; ++i)
        priority->addAction(tr(kPriorities[i]), this, [this, i] { mnuTodoPriority_Click(i); });
    AddDueEntries(*AddMenu(*menu_, "mnuTodoDue", tr("D&ue")), "mnuTodoDue");
    menu_->addSeparator();
    QAction* categories = menu_->addAction(kit::Icon("tag"), tr("Edit Cate&gories…"), this,
                                           [this] { cboCategories->EditCategories(); });
    categories->setObjectName("mnuTodoEditCat");
    QMenu* import = AddMenu(*menu_, "mnuTodoImport", tr("&Import"));
    QAction* palm = import->addAction("&Palm Todo-File");
    palm->setObjectName("mnuTodoImportPalm");
    palm->setEnabled(false);
    palm->setToolTip(tr("Reading Palm files is not part of this version yet."));
}

void frmTodo::BuildPopup() {
    mnuTodoRC = new QMenu("TodoList Rightclick", this);
    mnuTodoRC->setObjectName("mnuTodoRC");
    const auto add = [this](QMenu& menu, const char* name, const char* text, auto&& act) {
        QAction* action = menu.addAction(text, this, act);
        action->setObjectName(name);
        return action;
    };
    add(*mnuTodoRC, "mnuTodoRCEdit", "&Edit", [this] {
        mnuTodoEdit_Click();
    })->setIcon(kit::Icon("document-edit"));
    add(*mnuTodoRC, "mnuTodoRCCompleted", "&Completed", [this] {
        mnuCompleted_Click();
    })->setIcon(kit::Icon("task-complete"));
    QMenu* priority = AddMenu(*mnuTodoRC, "mnuTodoRCPriority", "Priority...");
    for (int i = 0; i < 3; ++i) {
        const QByteArray name = "mnuTodoRCPriorityLevel" + QByteArray::number(i);
        add(*priority, name.constData(), kPriorities[i], [this, i] { mnuTodoPriority_Click(i); });
    }
    QMenu* due = AddMenu(*mnuTodoRC, "mnuTodoRCDueDate", "Due Date...");
    for (const auto& [name, text] :
         {std::pair{"mnuTodoRCDueDateNoDate", "No Date"}, {"mnuTodoRCDueDateChooseDate", "Choose..."}})
        add(*due, name, text, [this] { mnuTodoDueDate_Click(); });
    due->addSeparator();
    AddDueEntries(*due, "mnuTodoRCDue");
    add(*mnuTodoRC, "mnuTodoRCDeleteItem", "&Delete", [this] {
        mnuTodoDeleteItem_Click();
    })->setIcon(kit::Icon("edit-delete"));
}

void frmTodo::AddDueEntries(QMenu& menu, const QByteArray& name) {
    struct Entry {
        const char* name;
        QString text;
        std::optional<int> days;
    };
    for (const auto& [which, text, days] : {Entry{"Today", tr("Due &today"), 0},
                                            {"Tomorrow", tr("Due to&morrow"), 1},
                                            {"NextWeek", tr("Due next &week"), 7},
                                            {"None", tr("Due &none"), std::nullopt}})
        menu.addAction(text, this, [this, days = days] { SetDue(days); })->setObjectName(name + which);
}

void frmTodo::BuildFilter() {
    using kit::CategoryField;
    cboCategories = new CategoryField(session_, store::Section::Todo, CategoryField::Use::Filter);
    cboCategories->Combo()->setMinimumWidth(fontMetrics().averageCharWidth() * 26);
    connect(cboCategories, &CategoryField::Filled, this,
            [this] { model_->SetCategories(cboCategories->Entries()); });
    connect(cboCategories, &CategoryField::Chosen, this, [this] { pane_->Rebuild(TodoList->SelectedKey()); });
    ShowCompleted = new QCheckBox(tr("&Show completed"));
    ShowCompleted->setObjectName("ShowCompleted");
    ShowCompleted->setChecked(session_.settings.TodoShowCompleted == 1);
    connect(ShowCompleted, &QCheckBox::clicked, this, &frmTodo::ShowCompleted_Click);
    quickAdd_ = kit::MakeLineField("txtQuickAdd", tr("New task"));
    quickAdd_->setPlaceholderText(tr("Type a task and press Return"));
    quickAdd_->addAction(kit::Icon("list-add"), QLineEdit::LeadingPosition);
    kit::GiveFieldMenu(*quickAdd_, session_);
    kit::LeaveUndoToWindow(*quickAdd_);
    connect(quickAdd_, &QLineEdit::returnPressed, this, &frmTodo::AddQuickly);
}

void frmTodo::BuildList() {
    pane_ = new kit::ListPane(session_, model_,
                              {.section = store::Section::Todo,
                               .name = "TodoList",
                               .caption = tr("Tasks"),
                               .read = [this](const QString& search) { return ReadTasks(search); },
                               .unread = tr("The tasks could not be read."),
                               .one = tr("1 task"),
                               .many = tr("%1 tasks"),
                               .more = [this] { return StatusWords(); },
                               .icon = "view-pim-tasks",
                               .empty = [this] { return WhyEmpty(); },
                               .unfound = tr("Nothing for “%1” in Tasks."),
                               .whenEmpty = quickAdd_,
                               .add = mnuTodoNew,
                               .edit = mnuTodoEdit,
                               .remove = mnuTodoDeleteSelected,
                               .menu = [this](const QPoint& at) { ShowPopup(at); },
                               .categories = cboCategories});
    TodoList = pane_->List();
    connect(pane_, &kit::ListPane::StatusChanged, this, &frmTodo::StatusChanged);
    setFocusProxy(pane_);
    QHeaderView* header = TodoList->header();
    header->setSortIndicator(-1, Qt::AscendingOrder);
    // Told widths at the least; a column must show its caption and, where it holds dates, a wide one.
    constexpr int kUnitsPerPixel = 15;
    const QFontMetrics metrics = header->fontMetrics();
    const std::string longest =
        FormatShortDate(Day{69030}, kit::FactsOf(QLocale()).shortDate);  // 28 December 2088
    const int date = metrics.horizontalAdvance(QString::fromStdString(longest)) + 2 * kit::Space::Margin;
    for (int column = 1; column < SubItem::SortKey; ++column) {
        const Column& told = kColumns[static_cast<std::size_t>(column)];
        const bool holdsDates = column == SubItem::DueDate || column == SubItem::ExecDate;
        const int scaled = told.width / kUnitsPerPixel * metrics.height() / 16;
        TodoList->SetColumnWidth(column, std::max(scaled, holdsDates ? date : 0));
    }
    TodoList->SetTextColumn(SubItem::Task, metrics.averageCharWidth() * 52);
    TodoList->RememberColumns(session_.ports.registry, "tasks");
    connect(header, &QHeaderView::sectionClicked, this, &frmTodo::ColumnClick);
    connect(pane_, &kit::ListPane::FilledChanged, this, [this](bool any) {
        for (QAction* action : {mnuTodoEdit, mnuTodoDeleteSelected, complete_})
            action->setEnabled(any);
    });
    connect(TodoList, &kit::RecordListView::KeySelected, this, &frmTodo::ShowNote);
    connect(TodoList, &kit::RecordListView::TickWanted, this, [this] {
        if (TodoList->SelectedCount() > 1) return mnuCompleted_Click();
        if (const auto key = Selected()) Tick(*key, !model_->RowAt(TodoList->SelectedRow()).completed);
    });
    // Both menus were made before the list.
    for (QMenu* menu : {menu_, mnuTodoRC})
        menu->insertActions(menu->actions().at(menu == menu_ ? menu->actions().size() - 2 : 4),
                            pane_->RowActions());
    // The view is still in the click that ticks: rebuild when it has come back from it.
    connect(model_, &TodoModel::Ticked, this, &frmTodo::Tick, Qt::QueuedConnection);
}

void frmTodo::BuildNote() {
    note_ = kit::MakeTextField("txtNote", tr("Note of the task"));
    note_->setReadOnly(true);
    note_->setUndoRedoEnabled(false);
    kit::ShowFocusBy(*note_, *note_);
    note_->setPlaceholderText(tr("No note"));
    note_->setMinimumHeight(kit::HeightOfLines(*note_, 2));
    kit::GiveFieldMenu(*note_, session_);
    auto* line = new QFrame;
    line->setFrameShape(QFrame::HLine);
    line->setForegroundRole(QPalette::Mid);
    line->setFrameShadow(QFrame::Plain);
    notePane_ = new QWidget;
    notePane_->setBackgroundRole(QPalette::Base);
    notePane_->setAutoFillBackground(true);
    auto* column = new QVBoxLayout(notePane_);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(line);
    auto* inside = new QVBoxLayout;
    inside->setContentsMargins(kit::Space::Row, kit::Space::Tight, 0, kit::Space::Tight);
    inside->addWidget(note_);
    column->addLayout(inside);
}

void frmTodo::Lay() {
    using kit::Space;
    strip_ = new kit::Strip;
    auto* label = new QLabel(tr("Cate&gory"));
    label->setBuddy(cboCategories);
    auto* filter = new QHBoxLayout;
    filter->setContentsMargins(Space::Margin, Space::Row, Space::Margin, Space::Row);
    filter->setSpacing(Space::Row);
    filter->addWidget(label);
    filter->addWidget(cboCategories);
    filter->addSpacing(Space::Row);
    filter->addWidget(ShowCompleted);
    filter->addStretch();
    auto* bottom = new QHBoxLayout;
    bottom->setContentsMargins(Space::Margin, Space::Row, Space::Margin, Space::Row);
    bottom->setSpacing(Space::Row);
    bottom->addWidget(quickAdd_, 1);
    const auto [cmdAdd, cmdEdit, cmdDelete] = pane_->MakeButtons();
    for (QPushButton* button : {cmdAdd, cmdEdit, cmdDelete})
        bottom->addWidget(button);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addLayout(filter);
    column->addWidget(strip_);
    auto* splitter = new QSplitter(Qt::Vertical);
    splitter->setChildrenCollapsible(false);
    splitter->addWidget(pane_);
    splitter->addWidget(notePane_);
    splitter->setStretchFactor(0, 1);
    pane_->setMinimumHeight(fontMetrics().lineSpacing() * 6);
    splitter->setSizes({1000, kit::HeightOfLines(*note_, 4)});
    kit::RememberSplitter(*splitter, session_.ports.registry, "tasks");
    column->addWidget(splitter, 1);
    column->addLayout(bottom);
}

}  // namespace bmr::tasks
