#pragma once

#include <QDialog>
#include <cstdint>

#include "store/categories.h"

class QLabel;
class QListWidget;
class QListWidgetItem;
class QPushButton;

namespace bmr::kit {

/// Edits the category names of one section. Nothing is stored before OK.
class frmEditCategories final : public QDialog {
    Q_OBJECT

  public:
    frmEditCategories(store::Session& session, std::uint8_t CategorySection, QWidget* parent = nullptr);

    /// Whether a category was added, renamed or deleted.
    bool CategoriesChanged = false;

    /// The category that the dialog last worked on; unfiled when that one was deleted, `initial` when none
    /// was.
    std::int32_t LastWorkedOn(std::int32_t initial) const;

  private:
    void Lay();
    void FillList();
    void ShowState();
    store::CategoryList Entries() const;
    /// Whether the list may be written: it was read, or the person wants another in its place.
    bool AskToBegin();
    QListWidgetItem* AddEntry(const store::CategoryEntry& entry);
    /// Asks for a name until it can be taken; empty when cancelled.
    Bytes AskName(const char* title, const Bytes& initial);

    void cmdNew_Click();
    void cmdRename_Click();
    void cmdDelete_Click();
    void cmdOK_Click();

    store::Session& session_;
    std::uint8_t CategorySection;
    std::int32_t last_ = store::Category::All;
    bool unread_ = false;
    QListWidget* CatList;
    QLabel* lblCount;
    QPushButton* cmdNew;
    QPushButton* cmdRename;
    QPushButton* cmdDelete;
};

}  // namespace bmr::kit
