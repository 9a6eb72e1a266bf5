#pragma once

#include <QAction>
#include <QPointer>
#include <QString>
#include <QWidget>
#include <array>
#include <cstdint>
#include <functional>
#include <vector>

#include "store/severalrows.h"

class QMenu;
class QPushButton;
class QStackedLayout;

namespace bmr::store {
struct Session;
}

namespace bmr::kit {

class CategoryDrop;
class CategoryField;
class EmptyState;
class RecordListModel;
class RecordListView;
class StepStrip;

/// What stands in the place of a list without rows: a sentence, and what would show more.
struct Emptiness {
    QString sentence;
    QList<QAction*> wider = {};
};

/// What a section says of its list, and does with it.
struct ListParts {
    std::uint8_t section;
    const char* name;  ///< of the list
    QString caption;   ///< for a screen reader

    /// Reads the rows anew: those that hold `search`, or all when it is empty. 0 or an error number, with the
    /// list empty.
    std::function<int(const QString& search)> read;
    QString unread;  ///< told with the error: "The memos could not be read."

    QString one;   ///< "1 memo"
    QString many;  ///< "%1 memos"
    /// What the status line says behind the count, before how many are selected.
    std::function<QStringList()> more = {};

    const char* icon;  ///< of the empty list
    std::function<Emptiness()> empty;
    QString unfound;               ///< the sentence for a search: "Nothing for “%1” in Memo."
    QWidget* whenEmpty = nullptr;  ///< has the focus then; without it, what stands in the list's place

    QAction* add;
    QAction* edit;
    QAction* remove;
    std::function<void(const QPoint& at)> menu;

    /// The filter, in whose categories rows can be put; none where records have kinds.
    CategoryField* categories = nullptr;
};

/// A section's list with what stands in its place when it is empty, its search, its count for the status
/// line, what can be done with several of its rows, and a line for ten seconds that says what was done. The
/// first `Rebuild` reads it; until then it holds nothing and counts nothing.
class ListPane final : public QWidget {
    Q_OBJECT

  public:
    ListPane(store::Session& session, RecordListModel* model, ListParts parts);
    ~ListPane() override;

    RecordListView* List() const { return list_; }
    /// Whether the list shows the row of that key now.
    bool Shows(std::int32_t key) const;
    /// New buttons that add, edit and delete: `cmdAdd`, `cmdEdit`, `cmdDelete`.
    std::array<QPushButton*, 3> MakeButtons() const;

    /// Reads the rows anew, keeps the scroll position and selects the row of that key; without such a row
    /// nothing is selected. Nothing happens once the database is closed.
    void Rebuild(std::int32_t key);

    /// The same with several rows.
    void Rebuild(const std::vector<std::int32_t>& keys);

    /// What can be done with the selected rows beside the section's own verbs: another category, the private
    /// flag. For the section's menus.
    QList<QAction*> RowActions() const { return rowActions_; }
    /// Asks, with the text of message `number` and the count, and deletes the selected rows, which are
    /// several.
    void DeleteSelected(int number);
    /// Runs something that changes the selected rows, tells what came of it, and shows the list anew.
    void ChangeSelected(const std::function<store::SeveralOutcome(store::Keys keys)>& change);
    /// Says that the section's last step was done and can be taken back.
    void TellStep();
    /// Words in the line below the list.
    void Say(const QString& text);

    /// Narrows the list. What was selected stays so if it is still there; back from the search it is what was
    /// selected before, else the first.
    void SetSearch(const QString& text);
    /// Forgets the search; the next `Rebuild` shows all.
    void ClearSearch() { search_.clear(); }

    void TellStatus();

  signals:
    void StatusChanged(const QString& text);
    /// The list holds rows to choose from, or none; also told when it stays so.
    void FilledChanged(bool any);
    /// The line's button: the last step is to be taken back.
    void UndoWanted();

  protected:
    void showEvent(QShowEvent* event) override;

  private:
    void ShowState();
    void BuildRowActions();
    void FillCategoryMenu(QMenu& menu);
    void MoveSelected(std::int32_t category);
    void UnfoldCategories();
    /// Runs a rebuild and selects what is left of `keys`, else the row that has taken the first one's place.
    void ShowAfter(const std::vector<std::int32_t>& keys, int row);
    void TellUnread(std::size_t unread);

    store::Session& session_;
    RecordListModel* model_;
    ListParts parts_;
    QString search_;
    std::int32_t beforeSearch_;  ///< the row that was selected when the search began
    bool read_ = false;
    RecordListView* list_;
    EmptyState* empty_;
    QStackedLayout* stack_;
    StepStrip* strip_;
    QList<QAction*> rowActions_;
    QPointer<CategoryDrop> drop_;
};

}  // namespace bmr::kit
