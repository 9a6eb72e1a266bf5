#pragma once

#include <QWidget>
#include <cstdint>

class QStackedLayout;

namespace bmr::kit {
class EmptyState;
class RecordListView;
}  // namespace bmr::kit
namespace bmr::store {
struct Session;
}

namespace bmr::calendar {

class PaneModel;

/// The open tasks beside the days. It reads only what it shows, and only once it is told to.
class CalendarPane final : public QWidget {
    Q_OBJECT

  public:
    explicit CalendarPane(store::Session& session, QWidget* parent = nullptr);

    /// Reads the rows anew and keeps the selected one.
    void Read();
    void Select(std::int32_t key);

  signals:
    void OpenWanted(std::int32_t key);
    void Ticked(std::int32_t key);

  private:
    store::Session& session_;
    PaneModel* model_;
    kit::RecordListView* TodoList;
    kit::EmptyState* empty_;
    QStackedLayout* stack_;
};

}  // namespace bmr::calendar
