#include "kit/categoryfield.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QToolButton>

#include "kit/categorycombo.h"
#include "kit/formparts.h"
#include "kit/frmEditCategories.h"
#include "kit/icons.h"
#include "kit/theme.h"
#include "store/sections.h"
#include "store/session.h"

namespace bmr::kit {

using store::Category;

CategoryField::CategoryField(store::Session& session, std::uint8_t section, Use use, QWidget* parent)
    : QWidget(parent),
      session_(session),
      section_(section),
      use_(use),
      showAll_(MakeAction(*this, {"showAll", tr("Show all categories"), "view-list-details"})),
      combo_(new QComboBox),
      cmdEditCat(MakeIconButton("cmdEditCat", "configure", tr("Edit categories"))) {
    combo_->setObjectName(use == Use::Filter ? "cboCategories" : "cboCategory");
    combo_->setAccessibleName(tr("Category"));
    combo_->setMaxVisibleItems(24);
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(Space::Tight);
    row->addWidget(combo_, 1);
    row->addWidget(cmdEditCat);
    setFocusProxy(combo_);
    setFocusPolicy(Qt::StrongFocus);  // a label leads its mnemonic to nothing else
    connect(combo_, &QComboBox::activated, this, [this] {
        if (SelectedCategory(*combo_) == Category::Edit) return OpenDialog(true);
        number_ = SelectedCategory(*combo_);
        emit Chosen();
    });
    connect(cmdEditCat, &QToolButton::clicked, this, &CategoryField::EditCategories);
    connect(showAll_, &QAction::triggered, this, [this] {
        Fill(Category::All);
        emit Chosen();
    });
}

CategoryField::~CategoryField() {
    // Among a list that cannot be read there was nothing to choose.
    if (place_ && !store::CategoriesUnread(session_, section_))
        session_.settings.LastCategory[*place_] = static_cast<std::int16_t>(number_);
}

void CategoryField::Fill(std::int32_t number) {
    const bool filter = use_ == Use::Filter;
    entries_ = store::FillCategories(session_, section_, filter, true, true);
    FillCategoryCombo(*combo_, entries_);
    if (!SelectCategory(*combo_, number) && !filter) SelectCategory(*combo_, Category::Unfiled);
    number_ = SelectedCategory(*combo_);
    const bool unread = store::CategoriesUnread(session_, section_);
    cmdEditCat->setIcon(Icon(unread ? "dialog-warning" : "configure"));
    cmdEditCat->setToolTip(unread ? tr("The list of categories cannot be read") : tr("Edit categories"));
    // What a record's category is called may be lost; that it has one is not, unless the person chooses
    // another.
    if (!filter && unread && number > 0 && number_ == Category::Unfiled) number_ = number;
    emit Filled();
}

bool CategoryField::Refill() {
    const std::int32_t before = number_;
    Fill(before);
    return number_ == before;
}

void CategoryField::FillLastUsed() {
    const int place = store::FactsOf(section_)->lastCategory;
    if (place < 0) return Fill(Category::All);
    place_ = static_cast<std::size_t>(place);
    Fill(session_.settings.CatShow == 0 ? session_.settings.LastCategory[*place_] : Category::All);
}

void CategoryField::OpenDialog(bool fromCombo) {
    const std::int32_t before = number_;
    frmEditCategories form(session_, section_, this);
    editing_ = true;
    const bool stored = form.exec() == QDialog::Accepted;
    editing_ = false;
    if (session_.ending || !session_.DatabaseOpen) return;
    const bool goesOn = use_ == Use::Filter && stored && !fromCombo;
    Fill(goesOn ? form.LastWorkedOn(before) : before);
    if (use_ == Use::Filter || number_ != before) emit Chosen();
}

}  // namespace bmr::kit
