#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSplitter>
#include <QVBoxLayout>

#include "kit/dateentry.h"
#include "kit/fieldmenu.h"
#include "kit/focusframe.h"
#include "kit/formparts.h"
#include "kit/icons.h"
#include "kit/pad.h"
#include "kit/recordlistview.h"
#include "kit/remembered.h"
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
}

void frmNotepad::BuildMenu() {
    menu_ = new QMenu(tr("&Memo"), this);
    menu_->setObjectName("mnuMemo");
    menu_->setToolTipsVisible(true);
    menu_->addAction(mnuMemoAdd);
    menu_->addAction(mnuMemoEdit);
    QMenu* remove = menu_->addMenu(kit::Icon("edit-delete"), tr("&Delete"));
    remove->setObjectName("mnuMemoDelete");
    remove->addAction(mnuMemoDeleteSelected);
    remove->addSeparator();
    remove->addAction(mnuMemoDeleteCategory);
    remove->addAction(mnuMemoDeleteAll);
    menu_->addSeparator();
    menu_->addAction(kit::Icon("tag"), tr("Edit Cate&gories…"), this,
                     [this] { cboCategories->EditCategories(); });
}

void frmNotepad::BuildList() {
    using kit::CategoryField;
    cboCategories = new CategoryField(session_, store::Section::Memo, CategoryField::Use::Filter);
    connect(cboCategories, &CategoryField::Chosen, this,
            [this] { pane_->Rebuild(listSelect->SelectedKey()); });
    const auto read = [this](const QString& search) {
        HidePad();
        mnuMemoDeleteCategory->setEnabled(cboCategories->Number() != store::Category::All);
        return model_->Rebuild(search);
    };
    pane_ = new kit::ListPane(session_, model_,
                              {.section = store::Section::Memo,
                               .name = "listSelect",
                               .caption = tr("Memos"),
                               .read = read,
                               .unread = tr("The memos could not be read."),
                               .one = tr("1 memo"),
                               .many = tr("%1 memos"),
                               .icon = "view-pim-notes",
                               .empty = [this] { return WhyEmpty(); },
                               .unfound = tr("Nothing for “%1” in Memo."),
                               .add = mnuMemoAdd,
                               .edit = mnuMemoEdit,
                               .remove = mnuMemoDeleteSelected,
                               .menu = [this](const QPoint& at) { menu_->popup(at); },
                               .categories = cboCategories});
    listSelect = pane_->List();
    menu_->insertActions(menu_->actions().constLast(), pane_->RowActions());
    listSelect->setHeaderHidden(true);
    listSelect->SetColumnWidth(1, Space::Group + Space::Row);
    listSelect->SetColumnWidth(2, fontMetrics().horizontalAdvance(kit::ShortDate({36525.0})) + Space::Group);
    listSelect->SetTextColumn(0, fontMetrics().averageCharWidth() * 16);
    connect(listSelect, &kit::RecordListView::KeySelected, this, &frmNotepad::ShowMemo);
    connect(pane_, &kit::ListPane::StatusChanged, this, &frmNotepad::StatusChanged);
    setFocusProxy(pane_);
}

void frmNotepad::BuildPad() {
    padFrame = new QFrame;
    padFrame->setObjectName("padFrame");
    padFrame->setBackgroundRole(QPalette::Base);
    padFrame->setAutoFillBackground(true);
    txtSubject = kit::MakeHeading("txtSubject");
    txtInput = kit::MakeTextField("txtInput", tr("Text of the memo"));
    txtInput->setReadOnly(true);
    txtInput->setFrameShape(QFrame::NoFrame);
    kit::ShowFocusBy(*padFrame, *txtInput);
    txtInput->document()->setDocumentMargin(0);  // in line with the subject
    kit::GiveFieldMenu(*txtInput, session_);
    ctlPrivate = new kit::PrivateMark;
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
    auto* buttons = new QHBoxLayout;
    buttons->setSpacing(Space::Row);
    const auto [cmdAdd, cmdEdit, cmdDelete] = pane_->MakeButtons();
    for (QPushButton* button : {cmdAdd, cmdEdit, cmdDelete})
        buttons->addWidget(button);
    buttons->addStretch();
    auto* left = new QWidget;
    auto* column = new QVBoxLayout(left);
    column->setContentsMargins(Space::Row, Space::Row, Space::Row, Space::Row);
    column->setSpacing(Space::Row);
    column->addWidget(cboCategories);
    column->addWidget(pane_, 1);
    column->addLayout(buttons);
    auto* right = new kit::PadPane(padFrame, padFrame, "view-pim-notes",
                                   tr("The memo that you choose at the left is shown here."));
    connect(pane_, &kit::ListPane::FilledChanged, right, &kit::PadPane::SetChoice);

    auto* splitter = new QSplitter;
    splitter->setChildrenCollapsible(false);
    splitter->addWidget(left);
    splitter->addWidget(right);
    left->setMinimumWidth(qMax(240, column->minimumSize().width()));  // all three buttons can be read
    right->setMinimumWidth(240);
    splitter->setStretchFactor(0, 35);
    splitter->setStretchFactor(1, 65);
    splitter->setSizes({350, 650});
    kit::RememberSplitter(*splitter, session_.ports.registry, "memos");
    auto* whole = new QVBoxLayout(this);
    whole->setContentsMargins(0, 0, 0, 0);
    whole->addWidget(splitter);
}

}  // namespace bmr::notes
