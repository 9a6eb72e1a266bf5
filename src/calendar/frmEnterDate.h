#pragma once

#include <QDialog>

#include "base/serialdate.h"
#include "kit/tabring.h"

class QCheckBox;
class QLabel;

namespace bmr::kit {
class DateEdit;
}

namespace bmr::calendar {

/// Asks up to which day old appointments are to leave the database, and whether an archive gets them.
class frmEnterDate final : public QDialog {
    Q_OBJECT

  public:
    frmEnterDate(Day date, Day today, QWidget* parent = nullptr);

    /// Nothing once the dialog was cancelled.
    std::optional<Day> Date() const { return date_; }
    bool Archive() const;

  protected:
    bool focusNextPrevChild(bool next) override { return kit::StepFocus(*this, next); }

  private:
    void cmdOK_Click();

    std::optional<Day> date_;
    kit::DateEdit* ctlDate;
    QLabel* dateError_;
    QCheckBox* chkArchive;
};

}  // namespace bmr::calendar
