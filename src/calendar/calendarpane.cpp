#include "calendar/calendarpane.h"

#include <QHeaderView>
#include <QStackedLayout>

#include "calendar/panemodel.h"
#include "kit/emptystate.h"
#include "kit/failure.h"
#include "kit/recordlistview.h"
#include "kit/theme.h"
#include "store/session.h"

namespace bmr::calendar {

CalendarPane::CalendarPane(store::Session& session, QWidget* parent)
    : QWidget(parent),
      session_(session),
      model_(new PaneModel(session, this)),
      TodoList(new kit::RecordListView),
      empty_(new kit::EmptyState),
      stack_(new QStackedLayout(this)) {
    TodoList->setObjectName("TodoList");
    TodoList->setAccessibleName(tr("Open tasks"));
    TodoList->setFrameShape(QFrame::NoFrame);
    TodoList->setSelectionMode(QAbstractItemView::SingleSelection);
    TodoList->SetModel(model_);
    TodoList->setSortingEnabled(false);
    TodoList->header()->setSortIndicatorShown(false);
    TodoList->header()->setMinimumSectionSize(0);
    const QFontMetrics metrics = TodoList->header()->fontMetrics();
    TodoList->SetTextColumn(PaneModel::Column::Task, metrics.averageCharWidth() * 8);
    TodoList->SetColumnWidth(PaneModel::Column::Priority, 0);
    TodoList->SetColumnWidth(PaneModel::Column::Due,
                             metrics.horizontalAdvance("12/28") + 2 * kit::Space::Row);
    empty_->Set("view-pim-tasks", tr("No open tasks."), {});
    stack_->addWidget(TodoList);
    stack_->addWidget(empty_);
    setFocusProxy(TodoList);
    setMinimumHeight(fontMetrics().lineSpacing() * 5);
    connect(TodoList, &kit::RecordListView::EditWanted, this, [this] {
        if (const auto key = TodoList->SelectedKey(); key != kit::RecordListView::kNoKey)
            emit OpenWanted(key);
    });
    connect(TodoList, &kit::RecordListView::TickWanted, this, [this] {
        if (const auto key = TodoList->SelectedKey(); key != kit::RecordListView::kNoKey) emit Ticked(key);
    });
    // The view is still in the click that ticks: read anew when it has come back from it.
    connect(model_, &PaneModel::Ticked, this, &CalendarPane::Ticked, Qt::QueuedConnection);
}

void CalendarPane::Read() {
    const std::int32_t key = TodoList->SelectedKey();
    const int row = TodoList->currentIndex().row();
    int error = 0;
    TodoList->Rebuild([&] { error = model_->Rebuild(); });
    const bool any = model_->rowCount() > 0;
    TodoList->setEnabled(any);
    stack_->setCurrentIndex(any ? 0 : 1);
    TodoList->SelectKey(key);
    // The keyboard goes on where a ticked task stood.
    if (TodoList->SelectedRow() < 0 && row >= 0) TodoList->PutCursor(row);
    session_.CalendarDirty = false;
    kit::TellFailure(session_, error, tr("The tasks could not be read."));
}

void CalendarPane::Select(std::int32_t key) {
    TodoList->SelectKey(key);
}

}  // namespace bmr::calendar
