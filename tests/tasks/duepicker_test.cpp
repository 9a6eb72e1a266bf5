#include "tasks/duepicker.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace bmr::tasks {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr Day kToday{46347};
constexpr Day kPast{46000};
constexpr Day kFuture{46400};

TEST(DuePicker, SwitchingOnStartsAtToday) {
    DatePickers pickers = FillPickers(std::nullopt, std::nullopt);
    EXPECT_EQ(pickers.dueWidth, PickerWidth::Null);
    pickers.due = kPast;  // whatever the control showed when it was off
    const DueJudgement judgement = JudgeDueChange(pickers, kToday);
    EXPECT_THAT(judgement.messages, IsEmpty());
    EXPECT_TRUE(judgement.changed);
    EXPECT_EQ(pickers.due, kToday);
    EXPECT_EQ(pickers.dueWidth, PickerWidth::Changed);

    pickers.due.reset();
    EXPECT_TRUE(JudgeDueChange(pickers, kToday).changed);
    EXPECT_EQ(pickers.due, std::nullopt);
    EXPECT_EQ(pickers.dueWidth, PickerWidth::Null);
}

TEST(DuePicker, APastDateBecomesToday) {
    DatePickers pickers = FillPickers(kPast, std::nullopt);
    EXPECT_EQ(pickers.due, kPast);  // stored in the past and left alone
    pickers.due = Day{kPast.serial + 1};
    EXPECT_THAT(JudgeDueChange(pickers, kToday).messages, ElementsAre(24));
    EXPECT_EQ(pickers.due, kToday);
    EXPECT_EQ(pickers.dueWidth, PickerWidth::Changed);

    pickers.due = kFuture;
    EXPECT_THAT(JudgeDueChange(pickers, kToday).messages, IsEmpty());
    EXPECT_EQ(pickers.due, kFuture);
}

TEST(DuePicker, ACompletedTaskKeepsItsDate) {
    DatePickers pickers = FillPickers(kFuture, kPast);
    pickers.due = kToday;
    const DueJudgement judgement = JudgeDueChange(pickers, kToday);
    EXPECT_THAT(judgement.messages, ElementsAre(23));
    EXPECT_FALSE(judgement.changed);
    EXPECT_EQ(pickers.due, kPast);
    EXPECT_EQ(pickers.dueWidth, PickerWidth::Filled);

    pickers.due.reset();  // taking the date away is judged by the next rule
    EXPECT_TRUE(JudgeDueChange(pickers, kToday).changed);
    EXPECT_EQ(pickers.dueWidth, PickerWidth::Null);
}

TEST(CompletedPicker, GoingEmptyPreparesToday) {
    DatePickers pickers = FillPickers(std::nullopt, kPast);
    pickers.completed.reset();
    JudgeCompletedChange(pickers, kToday);
    EXPECT_EQ(pickers.completedNext, kToday);
    EXPECT_EQ(pickers.completedWidth, PickerWidth::Null);
    pickers.completed = pickers.completedNext;
    JudgeCompletedChange(pickers, kToday);
    EXPECT_EQ(pickers.completedWidth, PickerWidth::Changed);
}

}  // namespace
}  // namespace bmr::tasks
