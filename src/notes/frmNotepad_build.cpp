#include <QCheckBox>
#include <QComboBox>
#include <QFrame>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSplitter>
#include <QStackedLayout>
#include <QToolButton>
#include <QVBoxLayout>

#include "kit/emptystate.h"
#include "kit/fieldmenu.h"
#include "kit/formparts.h"
#include "kit/icons.h"
#include "kit/recordlistview.h"
#include "kit/theme.h"
#include "notes/frmNotepad.h"
#include "notes/memomodel.h"

// How the screen of the memo pad is put together; what it does stands in frmNotepad.cpp.
namespace bmr::notes {

using kit::Space;

QAction* frmNotepad::MakeAction(const char* name, const QString& text, const char* icon,
                                void (frmNotepad::*slot)()) {
    auto* action = new QAction(text, this);
    action->setObjectName(name);
    if (icon) action->setIcon(kit::Icon(icon));
    if (slot) connect(action, &QAction::triggered, this, slot);
    return action;
}

void frmNotepad::BuildActions() {
    mnuMemoAdd = MakeAction("mnuMemoAdd", tr("&New Memo …"), "document-new", &frmNotepad::cmdAdd_Click);
    mnuMemoAdd->setIconText(tr("New memo"));
    mnuMemoAdd->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_N));
    mnuMemoEdit = MakeAction("mnuMemoEdit", tr("&Edit …"), "document-edit", &frmNotepad::cmdEdit_Click);
    mnuMemoEdit->setIconText(tr("Edit"));
    mnuMemoEdit->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_E));
    mnuMemoDeleteSelected = MakeAction("mnuMemoDeleteSelected", tr("&Selected Memo"), "edit-delete",
                                       &frmNotepad::cmdDelete_Click);
    mnuMemoDeleteSelected->setIconText(tr("Delete"));
    mnuMemoDeleteSelected->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_D));
    mnuMemoDeleteCategory =
        MakeAction("mnuMemoDeleteCategory", tr("All in this &Category"), nullptr, nullptr);
    connect(mnuMemoDeleteCategory, &QAction::triggered, this, [this] { mnuMemoDeleteAll_Click(true); });
    mnuMemoDeleteAll = MakeAction("mnuMemoDeleteAll", tr("&All Memos"), nullptr, nullptr);
    connect(mnuMemoDeleteAll, &QAction::triggered, this, [this] { mnuMemoDeleteAll_Click(false); });
    actShowAll =
        MakeAction("showAll", tr("Show all categories"), "view-list-details", &frmNotepad::ShowAllCategories);
    for (QAction* action : {mnuMemoAdd, mnuMemoEdit, mnuMemoDeleteSelected}) {
        action->setShortcutContext(Qt::WindowShortcut);
        addAction(action);
    }
}

void frmNotepad::BuildMenu() {
    mnuMemo = new QMenu(tr("&Memo"), this);
    mnuMemo->setObjectName("mnuMemo");
    mnuMemo->setToolTipsVisible(true);
    mnuMemo->addAction(mnuMemoAdd);
    mnuMemo->addAction(mnuMemoEdit);
    QMenu* remove = mnuMemo->addMenu(kit::Icon("edit-delete"), tr("&Delete"));
    remove->setObjectName("mnuMemoDelete");
    remove->addAction(mnuMemoDeleteSelected);
    remove->addSeparator();
    remove->addAction(mnuMemoDeleteCategory);
    remove->addAction(mnuMemoDeleteAll);
    mnuMemo->addSeparator();
    mnuMemo->addAction(kit::Icon("tag"), tr("Edit Cate&gories …"), this, [this] { cmdEditCat_Click(false); });
}

void frmNotepad::BuildList() {
    cboCategories = new QComboBox;
    cboCategories->setObjectName("cboCategories");
    cboCategories->setAccessibleName(tr("Category"));
    cboCategories->setMaxVisibleItems(24);
    connect(cboCategories, &QComboBox::activated, this, &frmNotepad::cboCategories_Click);
    cmdEditCat = new QToolButton;
    cmdEditCat->setObjectName("cmdEditCat");
    cmdEditCat->setIcon(kit::Icon("configure"));
    cmdEditCat->setAutoRaise(true);
    cmdEditCat->setFocusPolicy(Qt::StrongFocus);
    cmdEditCat->setToolTip(tr("Edit categories"));
    cmdEditCat->setAccessibleName(tr("Edit categories"));
    connect(cmdEditCat, &QToolButton::clicked, this, [this] { cmdEditCat_Click(false); });
    recordChanged = new QCheckBox(this);
    recordChanged->setObjectName("recordChanged");
    recordChanged->hide();
    cmdAdd = kit::MakeButton("cmdAdd", mnuMemoAdd);
    cmdEdit = kit::MakeButton("cmdEdit", mnuMemoEdit);
    cmdDelete = kit::MakeButton("cmdDelete", mnuMemoDeleteSelected);

    listSelect = new kit::RecordListView;
    listSelect->setObjectName("listSelect");
    listSelect->setAccessibleName(tr("Memos"));
    listSelect->setFrameShape(QFrame::NoFrame);
    listSelect->setHeaderHidden(true);
    listSelect->SetModel(model_);
    connect(listSelect, &kit::RecordListView::KeySelected, this, &frmNotepad::ShowMemo);
    connect(listSelect, &kit::RecordListView::EditWanted, this, &frmNotepad::cmdEdit_Click);
    connect(listSelect, &kit::RecordListView::DeleteWanted, this, &frmNotepad::cmdDelete_Click);
    connect(listSelect, &kit::RecordListView::MenuWanted, this,
            [this](const QPoint& at) { mnuMemo->popup(at); });
    empty_ = new kit::EmptyState;
}

void frmNotepad::BuildPad() {
    padFrame = new QFrame;
    padFrame->setObjectName("padFrame");
    padFrame->setFrameShape(QFrame::NoFrame);
    padFrame->setBackgroundRole(QPalette::Base);
    padFrame->setAutoFillBackground(true);
    txtSubject = kit::MakeHeading("txtSubject");
    txtInput = new QPlainTextEdit;
    txtInput->setObjectName("txtInput");
    txtInput->setAccessibleName(tr("Text of the memo"));
    txtInput->setReadOnly(true);
    txtInput->setFrameShape(QFrame::NoFrame);
    txtInput->setTabChangesFocus(true);
    kit::GiveFieldMenu(*txtInput, session_);
    ctlPrivate = new QCheckBox(tr("Private"));
    ctlPrivate->setObjectName("ctlPrivate");
    ctlPrivate->setIcon(kit::Icon("object-locked"));
    ctlPrivate->setAttribute(Qt::WA_TransparentForMouseEvents);  // the pad shows; the editor changes
    ctlPrivate->setFocusPolicy(Qt::NoFocus);
    cboCategory = new QLabel;
    cboCategory->setObjectName("cboCategory");
    cboCategory->setTextFormat(Qt::PlainText);
    ctlDateCreated = new QLabel;
    ctlDateCreated->setObjectName("ctlDateCreated");
    ctlLastModified = new QLabel;
    ctlLastModified->setObjectName("ctlLastModified");
    for (QLabel* pale : {cboCategory, ctlDateCreated, ctlLastModified})
        pale->setForegroundRole(QPalette::PlaceholderText);

    auto* head = new QHBoxLayout;
    head->setSpacing(Space::Row);
    head->addWidget(txtSubject, 1);
    head->addWidget(ctlPrivate, 0, Qt::AlignTop);
    auto* foot = new QHBoxLayout;
    foot->setSpacing(Space::Group);
    foot->addWidget(cboCategory);
    foot->addStretch();
    foot->addWidget(ctlDateCreated);
    foot->addWidget(ctlLastModified);
    auto* column = new QVBoxLayout(padFrame);
    column->setContentsMargins(Space::Group, Space::Margin, Space::Group, Space::Margin);
    column->setSpacing(Space::Row);
    column->addLayout(head);
    column->addWidget(txtInput, 1);
    column->addLayout(foot);
}

void frmNotepad::Lay() {
    auto* filter = new QHBoxLayout;
    filter->setSpacing(Space::Tight);
    filter->addWidget(cboCategories, 1);
    filter->addWidget(cmdEditCat);
    auto* lists = new QWidget;
    stack_ = new QStackedLayout(lists);
    stack_->addWidget(listSelect);
    stack_->addWidget(empty_);
    auto* buttons = new QHBoxLayout;
    buttons->setSpacing(Space::Row);
    buttons->addWidget(cmdAdd);
    buttons->addWidget(cmdEdit);
    buttons->addWidget(cmdDelete);
    buttons->addStretch();
    auto* left = new QWidget;
    auto* column = new QVBoxLayout(left);
    column->setContentsMargins(Space::Row, Space::Row, Space::Row, Space::Row);
    column->setSpacing(Space::Row);
    column->addLayout(filter);
    column->addWidget(lists, 1);
    column->addLayout(buttons);
    auto* right = new QWidget;
    right->setBackgroundRole(QPalette::Base);
    right->setAutoFillBackground(true);
    auto* pad = new QVBoxLayout(right);
    pad->setContentsMargins(0, 0, 0, 0);
    pad->addWidget(padFrame);

    auto* splitter = new QSplitter;
    splitter->setChildrenCollapsible(false);
    splitter->addWidget(left);
    splitter->addWidget(right);
    left->setMinimumWidth(240);
    right->setMinimumWidth(240);
    splitter->setStretchFactor(0, 35);
    splitter->setStretchFactor(1, 65);
    splitter->setSizes({350, 650});
    auto* whole = new QVBoxLayout(this);
    whole->setContentsMargins(0, 0, 0, 0);
    whole->addWidget(splitter);
    QWidget* order[] = {cboCategories, cmdEditCat, listSelect, cmdAdd, cmdEdit, cmdDelete, txtInput};
    for (std::size_t i = 1; i < std::size(order); ++i)
        setTabOrder(order[i - 1], order[i]);
}

}  // namespace bmr::notes
