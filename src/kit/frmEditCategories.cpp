#include "kit/frmEditCategories.h"

#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QShortcut>
#include <QVBoxLayout>

#include "base/languageus.h"
#include "base/ports.h"
#include "kit/categorycombo.h"
#include "kit/failure.h"
#include "kit/formparts.h"
#include "kit/icons.h"
#include "kit/recorddelegate.h"
#include "kit/theme.h"
#include "kit/words.h"
#include "store/session.h"

namespace bmr::kit {

using store::Category;
using store::CategoryEntry;
using store::CategoryList;

namespace {

/// A number that the dialog has never let go.
constexpr std::int32_t kKeptNumber = 255;

QPushButton* MakeButton(const char* name, const char* icon, const QString& text) {
    auto* button = new QPushButton(Icon(icon), text);
    button->setObjectName(name);
    button->setAutoDefault(false);
    return button;
}

}  // namespace

frmEditCategories::frmEditCategories(store::Session& session, std::uint8_t section, QWidget* parent)
    : QDialog(parent), session_(session), CategorySection(section) {
    setObjectName("frmEditCategories");
    setWindowTitle(tr("Edit categories"));
    CatList = new QListWidget;
    CatList->setObjectName("CatList");
    CatList->setAccessibleName(tr("Categories"));
    CatList->setUniformItemSizes(true);
    CatList->setItemDelegate(new RecordDelegate(CatList));
    lblCount = new QLabel;
    lblCount->setObjectName("lblCount");
    lblCount->setWordWrap(true);
    cmdNew = MakeButton("cmdNew", "list-add", tr("&New…"));
    cmdRename = MakeButton("cmdRename", "edit-rename", tr("&Rename…"));
    cmdDelete = MakeButton("cmdDelete", "edit-delete", tr("&Delete"));
    connect(cmdNew, &QPushButton::clicked, this, &frmEditCategories::cmdNew_Click);
    connect(cmdRename, &QPushButton::clicked, this, &frmEditCategories::cmdRename_Click);
    connect(cmdDelete, &QPushButton::clicked, this, &frmEditCategories::cmdDelete_Click);
    connect(CatList, &QListWidget::itemDoubleClicked, this, &frmEditCategories::cmdRename_Click);
    Lay();
    FillList();
}

void frmEditCategories::Lay() {
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Save | QDialogButtonBox::Cancel);
    buttons->button(QDialogButtonBox::Save)->setObjectName("cmdOK");
    buttons->button(QDialogButtonBox::Cancel)->setObjectName("cmdEsc");
    connect(buttons, &QDialogButtonBox::accepted, this, &frmEditCategories::cmdOK_Click);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* side = new QVBoxLayout;
    side->setSpacing(Space::Row);
    for (QPushButton* button : {cmdNew, cmdRename, cmdDelete})
        side->addWidget(button);
    side->addStretch();
    auto* row = new QHBoxLayout;
    row->setSpacing(Space::Margin);
    row->addWidget(CatList, 1);
    row->addLayout(side);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(Space::Margin, Space::Margin, Space::Margin, Space::Margin);
    column->setSpacing(Space::Row);
    column->addLayout(row, 1);
    column->addWidget(lblCount);
    column->addSpacing(Space::Tight);
    column->addWidget(buttons);
    GiveLetters(*this);
    const auto key = [this](const QKeySequence& keys, void (frmEditCategories::*slot)()) {
        auto* shortcut = new QShortcut(keys, CatList);
        shortcut->setContext(Qt::WidgetShortcut);
        connect(shortcut, &QShortcut::activated, this, slot);
    };
    key(QKeySequence::Delete, &frmEditCategories::cmdDelete_Click);
    key(Qt::Key_F2, &frmEditCategories::cmdRename_Click);
    key(Qt::Key_Insert, &frmEditCategories::cmdNew_Click);
    resize(fontMetrics().averageCharWidth() * 64, fontMetrics().lineSpacing() * 24);
}

void frmEditCategories::FillList() {
    CategoriesChanged = false;
    unread_ = store::CategoriesUnread(session_, CategorySection);
    CatList->clear();
    for (const CategoryEntry& entry : store::FillCategories(session_, CategorySection, false, false, false))
        AddEntry(entry);
    if (CatList->count() > 0) CatList->setCurrentRow(0);
    CatList->setFocus();
    ShowState();
}

CategoryList frmEditCategories::Entries() const {
    CategoryList list;
    for (int row = 0; row < CatList->count(); ++row) {
        const QListWidgetItem* item = CatList->item(row);
        list.push_back({FromQString(item->text()), item->data(Qt::UserRole).toInt()});
    }
    return list;
}

QListWidgetItem* frmEditCategories::AddEntry(const CategoryEntry& entry) {
    CategoryList list = Entries();
    const auto place = static_cast<int>(store::InsertCategory(list, entry));
    auto* item = new QListWidgetItem(CategoryIcon(entry.number, palette()), ToQString(entry.text));
    item->setData(Qt::UserRole, entry.number);
    CatList->insertItem(place, item);
    return item;
}

void frmEditCategories::ShowState() {
    const int count = CatList->count();
    if (unread_)
        lblCount->setText(
            tr("The list of categories cannot be read. It stays as it is, until you begin another with "
               "“New”."));
    else
        lblCount->setText(count == 0
                              ? tr("No categories yet. “New” adds the first.")
                              : tr("%1 of at most %2 categories").arg(count).arg(store::kMostCategories));
    cmdDelete->setEnabled(count > 0);
}

std::int32_t frmEditCategories::LastWorkedOn(std::int32_t initial) const {
    return last_ == Category::All ? initial : last_;
}

Bytes frmEditCategories::AskName(const char* title, const Bytes& initial) {
    std::string offered = ToUtf8(initial);
    for (;;) {
        const auto answer = session_.ports.prompter.InputBox(title, "Name of the category:", offered);
        if (!answer || session_.ending) return {};
        const QString typed = QString::fromStdString(*answer).trimmed();
        const QString why = RefusalOf(typed);
        if (why.isEmpty()) return FromQString(typed);
        session_.ports.prompter.Ask(
            {0, why.toStdString(), Buttons::Ok, BoxIcon::Information, Answer::Ok, title});
        offered = *answer;
    }
}

bool frmEditCategories::AskToBegin() {
    if (unread_ && AskToOverwrite(session_, tr("list of categories"))) unread_ = false;
    return !unread_;
}

void frmEditCategories::cmdNew_Click() {
    if (!AskToBegin() || session_.ending) return;
    const CategoryList list = Entries();
    const auto free = store::NewCategoryNumber(session_, CategorySection, list);
    if (!free) return TellFailure(session_, free.error().number, tr("The categories could not be read."));
    const std::int32_t number = *free;
    if (list.size() >= store::kMostCategories || number == 0) {
        session_.ports.prompter.Ask(
            {0, "A section can have 128 categories, and all are in use. Delete one first.", Buttons::Ok,
             BoxIcon::Information, Answer::Ok, "New category"});
        return;
    }
    const Bytes name = AskName("New category", {});
    if (name.empty()) return ShowState();
    CatList->setCurrentItem(AddEntry({name, number}));
    last_ = number;
    CategoriesChanged = true;
    ShowState();
}

void frmEditCategories::cmdRename_Click() {
    QListWidgetItem* item = CatList->currentItem();
    if (!item) {
        session_.ports.prompter.Ask(MessageBox(18, BoxIcon::Information));
        return;
    }
    const CategoryEntry old{FromQString(item->text()), item->data(Qt::UserRole).toInt()};
    const Bytes name = AskName("Rename category", old.text);
    if (name.empty()) return;
    delete item;  // it may stand at another place now
    CatList->setCurrentItem(AddEntry({name, old.number}));
    last_ = old.number;
    CategoriesChanged = CategoriesChanged || name != old.text;
}

void frmEditCategories::cmdDelete_Click() {
    QListWidgetItem* item = CatList->currentItem();
    if (!item) return;
    const std::int32_t number = item->data(Qt::UserRole).toInt();
    if (number == kKeptNumber || number == Category::Unfiled) return;
    if (session_.ports.prompter.Ask(ConfirmDelete(19, Msg(19))) != Answer::Ok) return;
    delete item;
    last_ = Category::Unfiled;
    CategoriesChanged = true;
    ShowState();
}

void frmEditCategories::cmdOK_Click() {
    // A list that could not be read is not replaced by the nothing that is shown of it.
    if (session_.ending || unread_) return reject();
    if (const int error = store::StoreCategories(session_, Entries(), CategorySection); error != 0) {
        TellFailure(session_, error, tr("The categories were not stored."));
        return;
    }
    accept();
}

}  // namespace bmr::kit
