#include "shell/keyrules.h"

#include <gtest/gtest.h>

namespace bmr::shell {
namespace {

constexpr unsigned kShift = 160;

KeyAction Press(unsigned key, const Modifiers& held = {}) {
    KeyRules rules;
    return rules.LowLevelKeys(0, KeyMessage::Down, key, held).action;
}

TEST(KeyRules, TypingKeysAreTakenAndOthersPass) {
    for (const unsigned key : {48U, 57U, 65U, 90U, 186U, 192U, 219U, 222U, 226U})
        EXPECT_EQ(Press(key), KeyAction::Insert) << key;
    // Neighbours of each range, Return, Backspace, blank, arrows, numeric pad, F1.
    for (const unsigned key :
         {47U, 58U, 64U, 91U, 185U, 193U, 218U, 223U, 225U, 227U, 13U, 8U, 32U, 37U, 96U, 112U})
        EXPECT_EQ(Press(key), KeyAction::Pass) << key;

    KeyRules rules;
    EXPECT_EQ(rules.LowLevelKeys(0, KeyMessage::Up, 'A', {}).action, KeyAction::Swallow);
    EXPECT_EQ(rules.LowLevelKeys(1, KeyMessage::Down, 'A', {}).action, KeyAction::Pass);
    EXPECT_EQ(rules.LowLevelKeys(-1, KeyMessage::Down, 'A', {}).action, KeyAction::Pass);
    EXPECT_EQ(rules.LowLevelKeys(0, 258, 'A', {}).action, KeyAction::Pass);
}

TEST(KeyRules, CommandsPassAndTheClipboardOnesRearm) {
    const Modifiers ctrl{.ctrl = true};
    for (const unsigned key : {'X', 'C', 'V'}) {
        EXPECT_EQ(Press(key, ctrl), KeyAction::PassAndRearm);
        EXPECT_EQ(Press(key, {.alt = true}), KeyAction::Pass);
    }
    EXPECT_EQ(Press('A', ctrl), KeyAction::Pass);
    EXPECT_EQ(Press('F', {.meta = true}), KeyAction::Pass);
    KeyRules rules;
    EXPECT_EQ(rules.LowLevelKeys(0, KeyMessage::Up, 'C', ctrl).action, KeyAction::Pass);
    // AltGr writes: it is Ctrl and Alt at once.
    EXPECT_EQ(Press('Q', {.ctrl = true, .alt = true}), KeyAction::Insert);
    EXPECT_EQ(Press('C', {.ctrl = true, .alt = true}), KeyAction::Insert);
}

TEST(KeyRules, CapsLockTurnsLettersOnly) {
    KeyRules rules;
    const auto upper = [&rules](unsigned key, bool caps) {
        return rules.LowLevelKeys(0, KeyMessage::Down, key, {.caps = caps}).UpperCase;
    };
    EXPECT_FALSE(upper('A', false));
    EXPECT_TRUE(upper('A', true));
    EXPECT_FALSE(upper('1', true));
    EXPECT_EQ(rules.LowLevelKeys(0, KeyMessage::SystemDown, kShift, {}).action, KeyAction::Pass);
    EXPECT_TRUE(upper('A', false));
    EXPECT_FALSE(upper('A', true));
    EXPECT_TRUE(upper('1', true));
    EXPECT_TRUE(upper(188, false));
    rules.LowLevelKeys(0, KeyMessage::Up, kShift, {});
    EXPECT_FALSE(upper('A', false));
    rules.LowLevelKeys(0, KeyMessage::Down, kShift + 1, {});
    rules.Reset();
    EXPECT_FALSE(rules.ShiftDown());
}

}  // namespace
}  // namespace bmr::shell
