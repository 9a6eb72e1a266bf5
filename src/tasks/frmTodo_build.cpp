#include <QActionGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QStackedLayout>
#include <QVBoxLayout>

#include "base/shortdate.h"
#include "kit/categoryfield.h"
#include "kit/dateentry.h"
#include "kit/emptystate.h"
#include "kit/fieldmenu.h"
#include "kit/formparts.h"
#include "kit/icons.h"
#include "kit/recordlistview.h"
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
        *this, {"mnuTodoEdit", tr("&Edit…"), "document-edit", tr("Edit"), QKeySequence(Qt::Key_F2)},
        &frmTodo::mnuTodoEdit_Click);
    mnuTodoDeleteSelected = MakeAction(*this,
                                       {"mnuTodoDeleteSelected", tr("&Selected Task"), "edit-delete",
                                        tr("Delete"), QKeySequence(Qt::CTRL | Qt::Key_Delete)},
                                       &frmTodo::mnuTodoDeleteItem_Click);
    mnuTodoDeleteCompleted = MakeAction(*this, {"mnuTodoDeleteCompleted", tr("All &Completed Tasks")},
                                        &frmTodo::mnuTodoDeleteCompleted_Click);
    mnuTodoDeleteAll =
        MakeAction(*this, {"mnuTodoDeleteAll", tr("&All Tasks")}, &frmTodo::mnuTodoDeleteAll_Click);
    mnuTodoCompleted = MakeAction(*this,
                                  {"mnuTodoCompleted", tr("&Completed"), "task-complete", tr("Completed"),
                                   QKeySequence(Qt::CTRL | Qt::Key_D)},
                                  &frmTodo::mnuCompleted_Click);
    actShowAll = MakeAction(*this, {"showAll", tr("Show all categories"), "view-list-details"},
                            &frmTodo::ShowAllCategories);
    actShowCompleted = MakeAction(*this, {"showCompleted", tr("Show completed"), "task-complete"});
    connect(actShowCompleted, &QAction::triggered, this, [this] { ShowCompleted->click(); });
}

void frmTodo::BuildMenu() {
    mnuTodo = new QMenu(tr("&Task"), this);
    mnuTodo->setObjectName("mnuTodo");
    mnuTodo->setToolTipsVisible(true);
    mnuTodo->addAction(mnuTodoNew);
    mnuTodo->addAction(mnuTodoEdit);
    QMenu* remove = AddMenu(*mnuTodo, "mnuTodoDelete", tr("&Delete"));
    remove->setIcon(kit::Icon("edit-delete"));
    remove->addAction(mnuTodoDeleteSelected);
    remove->addSeparator();
    remove->addAction(mnuTodoDeleteCompleted);
    remove->addAction(mnuTodoDeleteAll);
    mnuTodo->addSeparator();
    mnuTodo->addAction(mnuTodoCompleted);
    QMenu* priority = AddMenu(*mnuTodo, "mnuTodoPriority", tr("&Priority"));
    for (int i = 0; i < 3; ++i)
        priority->addAction(tr(kPriorities[i]), this, [this, i] { mnuTodoPriority_Click(i); });
    mnuTodo->addSeparator();
    QAction* categories = mnuTodo->addAction(kit::Icon("tag"), tr("Edit Cate&gories…"), this,
                                             [this] { cboCategories->EditCategories(); });
    categories->setObjectName("mnuTodoEditCat");
    QMenu* import = AddMenu(*mnuTodo, "mnuTodoImport", tr("&Import"));
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
    add(*mnuTodoRC, "mnuTodoRCDeleteItem", "&Delete", [this] {
        mnuTodoDeleteItem_Click();
    })->setIcon(kit::Icon("edit-delete"));
}

void frmTodo::BuildFilter() {
    using kit::CategoryField;
    cboCategories = new CategoryField(session_, store::Section::Todo, CategoryField::Use::Filter);
    cboCategories->Combo()->setMinimumWidth(fontMetrics().averageCharWidth() * 26);
    connect(cboCategories, &CategoryField::Filled, this,
            [this] { model_->SetCategories(cboCategories->Entries()); });
    connect(cboCategories, &CategoryField::Chosen, this,
            [this] { RebuildAndSelect(TodoList->SelectedKey()); });
    ShowCompleted = new QCheckBox(tr("&Show completed"));
    ShowCompleted->setObjectName("ShowCompleted");
    ShowCompleted->setChecked(session_.settings.TodoShowCompleted == 1);
    connect(ShowCompleted, &QCheckBox::clicked, this, &frmTodo::ShowCompleted_Click);
    recordChanged = kit::MakeRecordChanged(*this);
    cmdAdd = kit::MakeButton("cmdAdd", mnuTodoNew);
    cmdEdit = kit::MakeButton("cmdEdit", mnuTodoEdit);
    cmdDelete = kit::MakeButton("cmdDelete", mnuTodoDeleteSelected);
    txtQuickAdd = kit::MakeLineField("txtQuickAdd", tr("New task"));
    txtQuickAdd->setPlaceholderText(tr("Type a task and press Return"));
    txtQuickAdd->addAction(kit::Icon("list-add"), QLineEdit::LeadingPosition);
    kit::GiveFieldMenu(*txtQuickAdd, session_);
    txtQuickAdd->setText(QString::fromUtf8(session_.quickTask.view()));
    session_.quickTask.Wipe();
    connect(txtQuickAdd, &QLineEdit::returnPressed, this, &frmTodo::AddQuickly);
}

void frmTodo::BuildList() {
    TodoList = new kit::RecordListView;
    TodoList->setObjectName("TodoList");
    TodoList->setAccessibleName(tr("Tasks"));
    TodoList->setFrameShape(QFrame::NoFrame);
    TodoList->SetModel(model_);
    QHeaderView* header = TodoList->header();
    header->setStretchLastSection(false);
    header->setSectionResizeMode(QHeaderView::Interactive);
    header->setSectionResizeMode(SubItem::Task, QHeaderView::Stretch);
    header->setSortIndicator(-1, Qt::AscendingOrder);
    // Told widths at the least; a column must show its caption and, where it holds dates, a wide one.
    constexpr int kUnitsPerPixel = 15;
    const QFontMetrics metrics = header->fontMetrics();
    const std::string longest =
        FormatShortDate(Day{69030}, kit::FactsOf(QLocale()).shortDate);  // 28 December 2088
    const int date = metrics.horizontalAdvance(QString::fromStdString(longest));
    for (int column = 1; column < SubItem::SortKey; ++column) {
        const Column& told = kColumns[static_cast<std::size_t>(column)];
        const bool holdsDates = column == SubItem::DueDate || column == SubItem::ExecDate;
        const int words = std::max(metrics.horizontalAdvance(told.header), holdsDates ? date : 0);
        const int scaled = told.width / kUnitsPerPixel * metrics.height() / 16;
        header->resizeSection(column, std::max(scaled, words + 2 * kit::Space::Margin + kit::Space::Tight));
    }
    TodoList->KeepColumns("tasks");
    connect(header, &QHeaderView::sectionClicked, this, &frmTodo::ColumnClick);
    connect(TodoList, &kit::RecordListView::EditWanted, this, &frmTodo::mnuTodoEdit_Click);
    connect(TodoList, &kit::RecordListView::DeleteWanted, this, &frmTodo::mnuTodoDeleteItem_Click);
    connect(TodoList, &kit::RecordListView::MenuWanted, this, &frmTodo::ShowPopup);
    connect(TodoList, &kit::RecordListView::KeySelected, this, &frmTodo::TellStatus);
    connect(TodoList, &kit::RecordListView::TickWanted, this, [this] {
        if (const auto key = Selected()) Tick(*key, !model_->RowAt(TodoList->SelectedRow()).completed);
    });
    // The view is still in the click that ticks: rebuild when it has come back from it.
    connect(model_, &TodoModel::Ticked, this, &frmTodo::Tick, Qt::QueuedConnection);
}

void frmTodo::Lay() {
    using kit::Space;
    strip_ = new kit::Strip;
    empty_ = new kit::EmptyState;
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
    bottom->addWidget(txtQuickAdd, 1);
    for (QPushButton* button : {cmdAdd, cmdEdit, cmdDelete})
        bottom->addWidget(button);
    stack_ = new QStackedLayout;
    stack_->addWidget(TodoList);
    stack_->addWidget(empty_);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addLayout(filter);
    column->addWidget(strip_);
    column->addLayout(stack_, 1);
    column->addLayout(bottom);
    setFocusProxy(TodoList);
    kit::SetTabOrder({cboCategories->Combo(), cboCategories->Button(), ShowCompleted, TodoList, txtQuickAdd,
                      cmdAdd, cmdEdit, cmdDelete});
}

}  // namespace bmr::tasks
