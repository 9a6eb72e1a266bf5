#include "shell/passcheck.h"

#include <gtest/gtest.h>

namespace bmr::shell {
namespace {

using Step = SecretEntry::Step;

TEST(PassQuality, CountsByKindAndAsksForADigitOrPunctuation) {
    EXPECT_EQ(CountCharacters("aZ 09[`{\xE4"), (CharacterCounts{2, 1, 2, 4}));
    EXPECT_TRUE(IsWeak("only letters AND blanks"));
    EXPECT_FALSE(IsWeak("one digit 1"));
    EXPECT_FALSE(IsWeak("no.capitals"));
    EXPECT_FALSE(
        IsWeak("\xE4"
               "ccented"));  // beyond the unaccented letters all is punctuation
}

TEST(PassQuality, KnowsWhatEverybodyTriesFirst) {
    for (const char* tried :
         {"password1!", "P@ssw0rd1!", "qwertyuiop1", "12345678", "aaaaaaaa1", "letmein99"})
        EXPECT_LT(GuessBits(tried), 40) << tried;
    for (const char* drawn : {"gTz41uVq9pLmWx73", "xK9$mQ2vL7pR", "horse-staple.cobalt ninety4 rivers"})
        EXPECT_GT(GuessBits(drawn), 60) << drawn;
    EXPECT_GT(GuessBits(std::string(3000, 'x') + "kq4"), 0) << "a long one is judged too";
}

TEST(SecretEntry, PlainEntryIsTakenAsItStands) {
    SecretEntry entry(false, false);
    EXPECT_EQ(entry.Enter(Secret("weak")), Step::Done);
    EXPECT_EQ(entry.Enter(Secret("late")), Step::Done);
    EXPECT_EQ(entry.TakeResult().view(), "weak");
    EXPECT_TRUE(entry.TakeResult().empty());
    SecretEntry empty(true, true);
    EXPECT_EQ(empty.Enter(Secret()), Step::Cancelled);
    EXPECT_TRUE(empty.TakeResult().empty());
}

TEST(SecretEntry, WeakOneIsAskedAboutOnceAndConfirmed) {
    SecretEntry entry(true, true);
    EXPECT_EQ(entry.Enter(Secret("weak one")), Step::AskWeak);
    EXPECT_EQ(entry.Question().number, 158);
    EXPECT_EQ(entry.Question().buttons, Buttons::YesNo);
    EXPECT_EQ(entry.Enter(Secret("strong 1")), Step::AskWeak);  // a question stands
    EXPECT_EQ(entry.Reply(Answer::No), Step::Type);
    EXPECT_EQ(entry.Enter(Secret("weak one")), Step::AskWeak);
    EXPECT_EQ(entry.Reply(Answer::Yes), Step::Confirm);
    EXPECT_TRUE(entry.TakeResult().empty());
    EXPECT_EQ(entry.Enter(Secret("weak one")), Step::Done);  // the second entry is not tested again
    EXPECT_EQ(entry.TakeResult().view(), "weak one");
}

TEST(SecretEntry, ANewOneThatIsTooShortIsDoneWithAtOnce) {
    SecretEntry entry(true, true);
    EXPECT_EQ(entry.Enter(Secret("seven77")), Step::Done) << "neither questioned nor typed twice";
    EXPECT_EQ(entry.TakeResult().view(), "seven77");
    SecretEntry enough(true, true);
    EXPECT_EQ(enough.Enter(Secret("eight888")), Step::Confirm);
}

TEST(SecretEntry, DifferentEntriesBeginAnewOrCancel) {
    SecretEntry entry(true, true);
    EXPECT_EQ(entry.Enter(Secret("strong 1")), Step::Confirm);
    EXPECT_EQ(entry.Enter(Secret("strong 2")), Step::AskMismatch);
    EXPECT_EQ(entry.Question().number, 84);
    EXPECT_EQ(entry.Question().buttons, Buttons::RetryCancel);
    EXPECT_EQ(entry.Reply(Answer::Retry), Step::Type);
    EXPECT_EQ(entry.Enter(Secret("strong 2")), Step::Confirm);
    EXPECT_EQ(entry.Enter(Secret("strong 1")), Step::AskMismatch);
    EXPECT_EQ(entry.Reply(Answer::Cancel), Step::Cancelled);
    EXPECT_TRUE(entry.TakeResult().empty());
    SecretEntry left(true, false);
    left.Enter(Secret("first"));
    EXPECT_EQ(left.Enter(Secret()), Step::Cancelled);
}

}  // namespace
}  // namespace bmr::shell
