#include <QButtonGroup>
#include <QCheckBox>
#include <QFormLayout>
#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollArea>
#include <QStackedWidget>
#include <QToolButton>
#include <QVBoxLayout>

#include "confidential/foundmodel.h"
#include "confidential/frmClassified.h"
#include "kit/fieldmenu.h"
#include "kit/formparts.h"
#include "kit/icons.h"
#include "kit/namedlistmodel.h"
#include "kit/pad.h"
#include "kit/recordlistview.h"
#include "kit/theme.h"
#include "store/record_put.h"

// How the screen of the confidential section is put together; what it does stands in frmClassified.cpp.
namespace bmr::confidential {

using kit::Space;

namespace {

QString Text(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

/// The chosen kind stands on yellow, in light and in dark windows.
constexpr const char* kKindStyle =
    "QPushButton { text-align: left; padding: 3px 7px; border: 1px solid transparent; border-radius: 4px; }"
    "QPushButton:hover { background: palette(midlight); }"
    "QPushButton:focus { border-color: palette(highlight); outline: none; }"
    "QPushButton:checked { background: #ffff00; color: #1b1b1b; }";

}  // namespace

void frmClassified::BuildActions() {
    using kit::MakeAction;
    addRecord_ = MakeAction(*this,
                            {"mnuConfidentialAdd", tr("&New Record…"), "document-new", tr("New Record"),
                             QKeySequence(Qt::CTRL | Qt::Key_N)},
                            &frmClassified::mnuConfidentialAdd_Click);
    editRecord_ = MakeAction(*this,
                             {"mnuConfidentialEdit", tr("&Edit…"), "document-edit", tr("Edit"),
                              QKeySequence(Qt::CTRL | Qt::Key_E)},
                             &frmClassified::cmdEdit_Click);
    deleteRecord_ = MakeAction(*this,
                               {"mnuConfidentialDelete", tr("&Delete…"), "edit-delete", tr("Delete"),
                                QKeySequence(Qt::CTRL | Qt::Key_D)},
                               &frmClassified::cmdDelete_Click);
    copyField_ = MakeAction(*this,
                            {"mnuConfidentialCopy", tr("&Copy"), "edit-copy", tr("Copy"),
                             QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_C)},
                            &frmClassified::mnuCopy_Click);
    copyField_->setToolTip(tr("Copy the field with the cursor, or the password"));
    menu_ = new QMenu(tr("&Confidential"), this);
    menu_->setObjectName("mnuConfidential");
    menu_->addActions({addRecord_, editRecord_, deleteRecord_});
    menu_->addSeparator();
    menu_->addAction(copyField_);
}

QWidget* frmClassified::BuildKinds() {
    auto* panel = new QWidget;
    auto* column = new QVBoxLayout(panel);
    column->setContentsMargins(Space::Row, Space::Row, Space::Row, Space::Row);
    column->setSpacing(0);
    auto* group = new QButtonGroup(this);
    const auto make = [&](int index, const QString& caption) {
        auto* button = new QPushButton(caption, panel);
        button->setObjectName(QString("cat%1").arg(index));
        button->setCheckable(true);
        button->setStyleSheet(kKindStyle);
        button->setAutoDefault(false);
        button->installEventFilter(this);
        group->addButton(button, index);
        cat[static_cast<std::size_t>(index)] = button;
        return button;
    };
    make(0, "default")->hide();
    cat[0]->setChecked(true);
    std::string_view heading;
    int headings = 0;
    for (const Kind& kind : ConfidentialKinds()) {
        if (kind.group != heading) {
            heading = kind.group;
            auto* label = new QLabel(Text(heading));
            label->setObjectName(QString("lblMainCategory%1").arg(headings));
            QFont font = label->font();
            font.setPointSizeF(font.pointSizeF() * kit::kSmallText);
            font.setBold(true);
            label->setFont(font);
            if (headings++ > 0) column->addSpacing(Space::Row);
            column->addWidget(label);
        }
        QPushButton* button = make(kind.number, Text(kind.caption));
        button->setToolTip(Text(kind.toolTip));
        column->addWidget(button);
    }
    column->addStretch();
    connect(group, &QButtonGroup::idClicked, this, &frmClassified::cat_Click);
    kindsArea_ = new QScrollArea;
    kindsArea_->setFrameShape(QFrame::NoFrame);
    kindsArea_->setWidgetResizable(true);
    kindsArea_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    kindsArea_->setWidget(panel);
    kindsArea_->setFixedWidth(panel->sizeHint().width() + Space::Group);
    kindsArea_->setFocusPolicy(Qt::NoFocus);
    return kindsArea_;
}

QWidget* frmClassified::BuildList() {
    const auto read = [this](const QString& search) {
        HidePad();
        return model_->Rebuild(search);
    };
    pane_ = new kit::ListPane(session_, model_,
                              {.section = store::Section::Confidential,
                               .name = "ListSelect",
                               .caption = tr("Records"),
                               .read = read,
                               .unread = tr("The records could not be read."),
                               .one = tr("1 record"),
                               .many = tr("%1 records"),
                               .icon = "object-locked",
                               .empty = [this] { return WhyEmpty(); },
                               .unfound = tr("Nothing for “%1” among these records."),
                               .add = addRecord_,
                               .edit = editRecord_,
                               .remove = deleteRecord_,
                               .menu = [this](const QPoint& at) { menu_->popup(at); }});
    ListSelect = pane_->List();
    menu_->insertActions(copyField_, pane_->RowActions());
    menu_->insertSeparator(copyField_);
    ListSelect->setHeaderHidden(true);
    ListSelect->installEventFilter(this);
    ListSelect->viewport()->installEventFilter(this);
    connect(ListSelect, &kit::RecordListView::KeySelected, this, &frmClassified::ShowRecord);
    connect(pane_, &kit::ListPane::StatusChanged, this, &frmClassified::StatusChanged);
    connect(pane_, &kit::ListPane::FilledChanged, this, &frmClassified::AimFocus);
    auto* buttons = new QHBoxLayout;
    buttons->setSpacing(Space::Row);
    const auto made = pane_->MakeButtons();
    cmdAdd = made[0];
    // The key asks for the kind while none is chosen; the button waits for one.
    disconnect(addRecord_, &QAction::changed, cmdAdd, nullptr);
    cmdAdd->setEnabled(false);
    for (QPushButton* button : made) {
        // The toolbar has them; here every pixel counts in a small window.
        button->setIcon({});
        button->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
        button->setMinimumWidth(button->fontMetrics().horizontalAdvance(button->text()) + 2 * Space::Row);
        buttons->addWidget(button);
    }
    auto* panel = new QWidget;
    auto* column = new QVBoxLayout(panel);
    column->setContentsMargins(Space::Row, Space::Row, Space::Row, Space::Row);
    column->setSpacing(Space::Row);
    BuildFound();
    lists_ = new QStackedWidget;
    lists_->addWidget(pane_);
    lists_->addWidget(found_);
    column->addWidget(lists_, 1);
    column->addLayout(buttons);
    return panel;
}

void frmClassified::BuildFound() {
    const auto read = [this](const QString& search) {
        HidePad();
        return foundModel_->Rebuild(search);
    };
    found_ = new kit::ListPane(session_, foundModel_,
                               {.section = store::Section::Confidential,
                                .name = "listFound",
                                .caption = tr("Records found"),
                                .read = read,
                                .unread = tr("The records could not be read."),
                                .one = tr("1 record found"),
                                .many = tr("%1 records found"),
                                .icon = "edit-find",
                                .empty = [] { return kit::Emptiness(); },
                                .unfound = tr("Nothing for “%1” in Confidential."),
                                .add = addRecord_,
                                .edit = editRecord_,
                                .remove = deleteRecord_,
                                .menu = [this](const QPoint& at) { menu_->popup(at); }});
    found_->List()->setHeaderHidden(true);
    found_->List()->installEventFilter(this);
    found_->List()->viewport()->installEventFilter(this);
    connect(found_->List(), &kit::RecordListView::KeySelected, this, &frmClassified::ShowRecord);
    connect(found_, &kit::ListPane::StatusChanged, this, &frmClassified::StatusChanged);
    connect(found_, &kit::ListPane::FilledChanged, this, &frmClassified::AimFocus);
    connect(found_, &kit::ListPane::UndoWanted, pane_, &kit::ListPane::UndoWanted);
    menu_->insertActions(pane_->RowActions().constFirst(), found_->RowActions());
    ShowRowActions();
}

void frmClassified::BuildRow(QFormLayout& form, std::size_t i) {
    Row& row = rows_[i];
    const QString number = QString::number(i);
    row.lblTxt = new QLabel;
    row.lblTxt->setObjectName("lblTxt" + number);
    row.txtCtl = new QLineEdit;
    row.txtCtl->setObjectName("txtCtl" + number);
    row.txtCtl->setReadOnly(true);
    row.txtCtl->setMaxLength(static_cast<int>(store::kLongestText));
    row.txtCtl->installEventFilter(this);
    kit::GiveFieldMenu(*row.txtCtl, session_, [this, i] { return UseOf(i); });
    kit::SetCopiesWhole(*row.txtCtl);
    row.copy = kit::MakeIconButton("copy" + number, "edit-copy",
                                   tr("Copy; gone from the clipboard after 30 seconds"));
    row.open = kit::MakeIconButton("open" + number, "internet-web-browser", tr("Open the web page"));
    connect(row.copy, &QToolButton::clicked, this, [this, i] { CopyField(i); });
    connect(row.open, &QToolButton::clicked, this, [this, i] { OpenField(i); });
    auto* field = new QWidget;
    auto* line = new QHBoxLayout(field);
    line->setContentsMargins(0, 0, 0, 0);
    line->setSpacing(Space::Tight);
    line->addWidget(row.txtCtl, 1);
    if (i == 1) {
        txtTall_ = new QPlainTextEdit;
        txtTall_->setObjectName("txtTall");
        txtTall_->setReadOnly(true);
        txtTall_->setTabChangesFocus(true);
        kit::GiveFieldMenu(*txtTall_, session_, [this] { return UseOf(1); });
        line->addWidget(txtTall_, 1);
    }
    line->addWidget(row.open);
    line->addWidget(row.copy);
    form.addRow(row.lblTxt, field);
}

QWidget* frmClassified::BuildPad() {
    padFrame = new QFrame;
    padFrame->setObjectName("padFrame");
    lblCategory = kit::MakeHeading("lblCategory");
    ctlPrivate = new kit::PrivateMark;
    auto* form = new QFormLayout;
    form->setLabelAlignment(Qt::AlignRight | Qt::AlignVCenter);
    form->setHorizontalSpacing(Space::Row);
    form->setVerticalSpacing(Space::Row);
    form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    padForm_ = form;
    for (std::size_t i = 0; i < rows_.size(); ++i)
        BuildRow(*form, i);
    chkPlainPW = new QCheckBox("Show Plain Password");
    chkPlainPW->setObjectName("chkPlainPW");
    connect(chkPlainPW, &QCheckBox::toggled, this, &frmClassified::chkPlainPW_Click);
    lblNotes = new QLabel("Notes:");
    lblNotes->setObjectName("lblNotes");
    txtNotes = new QPlainTextEdit;
    txtNotes->setObjectName("txtNotes");
    txtNotes->setAccessibleName(tr("Notes"));
    txtNotes->setReadOnly(true);
    txtNotes->setTabChangesFocus(true);
    kit::GiveFieldMenu(*txtNotes, session_);
    damaged_ = kit::MakeErrorLine("lblDamaged");
    damaged_->setText(tr("This record cannot be read whole: what the file holds of it is damaged."));
    lblLastModified = new QLabel;
    lblLastModified->setObjectName("lblLastModified");
    lblLastModified->setForegroundRole(QPalette::PlaceholderText);

    auto* head = new QHBoxLayout;
    head->addWidget(lblCategory, 1);
    head->addWidget(ctlPrivate, 0, Qt::AlignTop);
    auto* column = new QVBoxLayout(padFrame);
    column->setContentsMargins(Space::Group, Space::Margin, Space::Group, Space::Margin);
    column->setSpacing(Space::Row);
    column->addLayout(head);
    column->addWidget(damaged_);
    column->addLayout(form);
    column->addWidget(chkPlainPW);
    column->addSpacing(Space::Row);
    column->addWidget(lblNotes);
    column->addWidget(txtNotes, 1);
    column->addWidget(lblLastModified);
    padFrame->installEventFilter(this);
    auto* right = new QScrollArea;
    right->setFrameShape(QFrame::NoFrame);
    right->setWidgetResizable(true);
    right->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    right->setFocusPolicy(Qt::NoFocus);
    right->setMinimumWidth(fontMetrics().averageCharWidth() * 40);
    right->viewport()->setBackgroundRole(QPalette::Base);
    right->setWidget(padFrame);
    padFrame->setAutoFillBackground(false);
    padPane_ = new kit::PadPane(padFrame, right, "object-locked",
                                tr("The record that you choose at the left is shown here."));
    return padPane_;
}

}  // namespace bmr::confidential
