#pragma once

#include <optional>
#include <vector>

#include "base/serialdate.h"

namespace bmr::tasks {

/// Widths of a date picker, which also tell whether it has just been switched on: one without a date shows
/// only its check box.
struct PickerWidth {
    static constexpr int Null = 510;
    static constexpr int JustSwitchedOn = 600;  ///< below this
    static constexpr int Filled = 1800;
    static constexpr int Changed = 2100;
};

/// The editor's two pickers.
struct DatePickers {
    std::optional<Day> due;
    std::optional<Day> completed;
    int dueWidth = PickerWidth::Null;
    int completedWidth = PickerWidth::Null;
    /// The date that the completed picker shows when it is switched on the next time.
    std::optional<Day> completedNext;
    bool operator==(const DatePickers&) const = default;
};

/// The pickers as the editor opens.
DatePickers FillPickers(std::optional<Day> due, std::optional<Day> completed);

struct DueJudgement {
    std::vector<int> messages;  ///< to show, in order: 23, or 24 with the warning icon
    bool changed = true;        ///< the record counts as changed
};

/// What follows a change of the due date by hand: the new value stands in `pickers`. A date in the past is
/// thus impossible, though one that was stored earlier and is left alone stays.
DueJudgement JudgeDueChange(DatePickers& pickers, Day today);

/// What follows a change of the date of completion.
void JudgeCompletedChange(DatePickers& pickers, Day today);

}  // namespace bmr::tasks
