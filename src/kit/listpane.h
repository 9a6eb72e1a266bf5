#pragma once

#include <QAction>
#include <QString>
#include <QWidget>
#include <array>
#include <cstdint>
#include <functional>

class QPushButton;
class QStackedLayout;

namespace bmr::store {
struct Session;
}

namespace bmr::kit {

class EmptyState;
class RecordListModel;
class RecordListView;

/// What stands in the place of a list without rows: a sentence, and what would show more.
struct Emptiness {
    QString sentence;
    QList<QAction*> wider = {};
};

/// What a section says of its list, and does with it.
struct ListParts {
    const char* name;  ///< of the list
    QString caption;   ///< for a screen reader

    /// Reads the rows anew: those that hold `search`, or all when it is empty. 0 or an error number, with the
    /// list empty.
    std::function<int(const QString& search)> read;
    QString unread;  ///< told with the error: "The memos could not be read."

    QString one;   ///< "1 memo"
    QString many;  ///< "%1 memos"
    /// What the status line adds to the count; without it, that private records are hidden.
    std::function<QStringList()> more = {};

    const char* icon;  ///< of the empty list
    std::function<Emptiness()> empty;
    QString unfound;               ///< the sentence for a search: "Nothing for “%1” in Memo."
    QWidget* whenEmpty = nullptr;  ///< has the focus then; without it, what stands in the list's place

    QAction* add;
    QAction* edit;
    QAction* remove;
    std::function<void(const QPoint& at)> menu;
};

/// A section's list with what stands in its place when it is empty, its search, and its count for the status
/// line. The first `Rebuild` reads it; until then it holds nothing and counts nothing.
class ListPane final : public QWidget {
    Q_OBJECT

  public:
    ListPane(store::Session& session, RecordListModel* model, ListParts parts);
    ~ListPane() override;

    RecordListView* List() const { return list_; }
    /// New buttons that add, edit and delete: `cmdAdd`, `cmdEdit`, `cmdDelete`.
    std::array<QPushButton*, 3> MakeButtons() const;

    /// Reads the rows anew, keeps the scroll position and selects the row of that key; without such a row
    /// nothing is selected. Nothing happens once the database is closed.
    void Rebuild(std::int32_t key);

    /// Narrows the list. What was selected stays so if it is still there; back from the search it is what was
    /// selected before, else the first.
    void SetSearch(const QString& text);
    /// Forgets the search; the next `Rebuild` shows all.
    void ClearSearch() { search_.clear(); }

    void TellStatus();

  signals:
    void StatusChanged(const QString& text);

  protected:
    void showEvent(QShowEvent* event) override;

  private:
    void ShowState();

    store::Session& session_;
    RecordListModel* model_;
    ListParts parts_;
    QString search_;
    std::int32_t beforeSearch_;  ///< the row that was selected when the search began
    bool read_ = false;
    RecordListView* list_;
    EmptyState* empty_;
    QStackedLayout* stack_;
};

}  // namespace bmr::kit
