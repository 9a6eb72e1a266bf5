#include <QCheckBox>
#include <QFrame>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSplitter>
#include <QStackedLayout>
#include <QVBoxLayout>

#include "kit/categoryfield.h"
#include "kit/emptystate.h"
#include "kit/fieldmenu.h"
#include "kit/formparts.h"
#include "kit/icons.h"
#include "kit/namedlistmodel.h"
#include "kit/recordlistview.h"
#include "kit/theme.h"
#include "notes/frmNotepad.h"

// How the screen of the memo pad is put together; what it does stands in frmNotepad.cpp.
namespace bmr::notes {

using kit::Space;

void frmNotepad::BuildActions() {
    using kit::MakeAction;
    mnuMemoAdd = MakeAction(
        *this,
        {"mnuMemoAdd", tr("&New Memo…"), "document-new", tr("New memo"), QKeySequence(Qt::CTRL | Qt::Key_N)},
        &frmNotepad::cmdAdd_Click);
    mnuMemoEdit = MakeAction(
        *this, {"mnuMemoEdit", tr("&Edit…"), "document-edit", tr("Edit"), QKeySequence(Qt::CTRL | Qt::Key_E)},
        &frmNotepad::cmdEdit_Click);
    mnuMemoDeleteSelected = MakeAction(*this,
                                       {"mnuMemoDeleteSelected", tr("&Selected Memo"), "edit-delete",
                                        tr("Delete"), QKeySequence(Qt::CTRL | Qt::Key_D)},
                                       &frmNotepad::cmdDelete_Click);
    mnuMemoDeleteCategory = MakeAction(*this, {"mnuMemoDeleteCategory", tr("All in this &Category")});
    connect(mnuMemoDeleteCategory, &QAction::triggered, this, [this] { mnuMemoDeleteAll_Click(true); });
    mnuMemoDeleteAll = MakeAction(*this, {"mnuMemoDeleteAll", tr("&All Memos")});
    connect(mnuMemoDeleteAll, &QAction::triggered, this, [this] { mnuMemoDeleteAll_Click(false); });
    actShowAll = MakeAction(*this, {"showAll", tr("Show all categories"), "view-list-details"},
                            &frmNotepad::ShowAllCategories);
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
    mnuMemo->addAction(kit::Icon("tag"), tr("Edit Cate&gories…"), this,
                       [this] { cboCategories->EditCategories(); });
}

void frmNotepad::BuildList() {
    using kit::CategoryField;
    cboCategories = new CategoryField(session_, store::Section::Memo, CategoryField::Use::Filter);
    connect(cboCategories, &CategoryField::Chosen, this, [this] { Rebuild(listSelect->SelectedKey()); });
    recordChanged = kit::MakeRecordChanged(*this);
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
    txtInput = kit::MakeTextField("txtInput", tr("Text of the memo"));
    txtInput->setReadOnly(true);
    txtInput->setFrameShape(QFrame::NoFrame);
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
    auto* dates = new QVBoxLayout;  // one below the other, or a small window cuts them
    dates->setSpacing(0);
    dates->addWidget(ctlDateCreated, 0, Qt::AlignRight);
    dates->addWidget(ctlLastModified, 0, Qt::AlignRight);
    foot->addWidget(cboCategory, 1, Qt::AlignBottom);
    foot->addLayout(dates);
    auto* column = new QVBoxLayout(padFrame);
    column->setContentsMargins(Space::Group, Space::Margin, Space::Group, Space::Margin);
    column->setSpacing(Space::Row);
    column->addLayout(head);
    column->addWidget(txtInput, 1);
    column->addLayout(foot);
}

void frmNotepad::Lay() {
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
    column->addWidget(cboCategories);
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
    left->setMinimumWidth(qMax(240, column->minimumSize().width()));  // all three buttons can be read
    right->setMinimumWidth(240);
    splitter->setStretchFactor(0, 35);
    splitter->setStretchFactor(1, 65);
    splitter->setSizes({350, 650});
    auto* whole = new QVBoxLayout(this);
    whole->setContentsMargins(0, 0, 0, 0);
    whole->addWidget(splitter);
    kit::SetTabOrder(
        {cboCategories->Combo(), cboCategories->Button(), listSelect, cmdAdd, cmdEdit, cmdDelete, txtInput});
}

}  // namespace bmr::notes
