#pragma once

#include <QDialog>
#include <vector>

#include "calendar/archive.h"
#include "kit/tabring.h"

class QTreeWidget;

namespace bmr::calendar {

/// The series that an archive would take although they come again later: to go on or not.
class frmRunning final : public QDialog {
    Q_OBJECT

  public:
    frmRunning(const std::vector<RunningSeries>& series, Day until, const LocaleFacts& locale,
               QWidget* parent = nullptr);

  protected:
    bool focusNextPrevChild(bool next) override { return kit::StepFocus(*this, next); }

  private:
    QTreeWidget* list_;
};

}  // namespace bmr::calendar
