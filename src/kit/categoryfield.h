#pragma once

#include <QWidget>
#include <cstdint>
#include <optional>

#include "store/categories.h"

class QAction;
class QComboBox;
class QToolButton;

namespace bmr::kit {

/// The combo of a section's categories with the button beside it that edits them, as both a section's filter
/// and its editor have it.
class CategoryField final : public QWidget {
    Q_OBJECT

  public:
    /// The filter has the entry "All", and goes on to the category that its button's dialog last worked on.
    /// The editor's field comes back to the category that was chosen before.
    enum class Use : std::uint8_t { Filter, Editor };

    CategoryField(store::Session& session, std::uint8_t section, Use use, QWidget* parent = nullptr);
    ~CategoryField() override;

    /// Reads the categories anew and shows that one; one that is gone counts as all or as unfiled. Tells
    /// `Filled` alone.
    void Fill(std::int32_t number);
    /// The same with what is shown; false when that is gone.
    bool Refill();
    /// Shows the category that the section was left with, or all, as the preferences say. The one that is
    /// shown at the end is kept among the last used.
    void FillLastUsed();
    /// The category that is chosen. Never the entry that opens the dialog.
    std::int32_t Number() const { return number_; }
    const store::CategoryList& Entries() const { return entries_; }

    /// What the button does.
    void EditCategories() { OpenDialog(false); }
    /// True while the dialog is open.
    bool Editing() const { return editing_; }

    /// Of a filter: chooses all categories.
    QAction* ShowAll() const { return showAll_; }

    QComboBox* Combo() const { return combo_; }
    QToolButton* Button() const { return cmdEditCat; }

  signals:
    void Filled();
    /// The person chose a category, or may have changed the names of those that are listed.
    void Chosen();

  private:
    void OpenDialog(bool fromCombo);

    store::Session& session_;
    std::uint8_t section_;
    Use use_;
    store::CategoryList entries_;
    std::int32_t number_ = store::Category::All;
    std::optional<std::size_t> place_;  ///< among the last used
    bool editing_ = false;
    QAction* showAll_;
    QComboBox* combo_;
    QToolButton* cmdEditCat;
};

}  // namespace bmr::kit
