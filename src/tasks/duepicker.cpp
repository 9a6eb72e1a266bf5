#include "tasks/duepicker.h"

namespace bmr::tasks {
namespace {

int FirstWidth(const std::optional<Day>& date) {
    return date ? PickerWidth::Filled : PickerWidth::Null;
}

}  // namespace

DatePickers FillPickers(std::optional<Day> due, std::optional<Day> completed) {
    return {due, completed, FirstWidth(due), FirstWidth(completed), std::nullopt};
}

DueJudgement JudgeDueChange(DatePickers& pickers, Day today) {
    DueJudgement judgement;
    for (;;) {
        if (pickers.due && pickers.completed) {
            judgement.messages.push_back(23);
            pickers.due = pickers.completed;
            judgement.changed = false;
            return judgement;
        }
        if (!pickers.due) {
            pickers.dueWidth = PickerWidth::Null;
            return judgement;
        }
        if (pickers.dueWidth < PickerWidth::JustSwitchedOn) {
            pickers.due = today;
        } else if (pickers.dueWidth > PickerWidth::JustSwitchedOn && *pickers.due < today) {
            judgement.messages.push_back(24);
            pickers.due = today;
            continue;
        }
        pickers.dueWidth = PickerWidth::Changed;
        return judgement;
    }
}

void JudgeCompletedChange(DatePickers& pickers, Day today) {
    if (pickers.completed) {
        pickers.completedWidth = PickerWidth::Changed;
        return;
    }
    pickers.completedNext = today;
    pickers.completedWidth = PickerWidth::Null;
}

}  // namespace bmr::tasks
