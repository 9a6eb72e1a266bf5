#include "shell/keyrules.h"

namespace bmr::shell {
namespace {

constexpr unsigned kLeftShift = 160;
constexpr unsigned kRightShift = 161;

bool IsLetter(unsigned virtualKey) {
    return virtualKey >= 'A' && virtualKey <= 'Z';
}

}  // namespace

bool IsTypingKey(unsigned virtualKey) {
    return (virtualKey >= '0' && virtualKey <= '9') || IsLetter(virtualKey) ||
           (virtualKey >= 186 && virtualKey <= 192) || (virtualKey >= 219 && virtualKey <= 222) ||
           virtualKey == 226;
}

KeyDecision KeyRules::LowLevelKeys(int code, unsigned message, unsigned virtualKey, const Modifiers& held) {
    const bool down = message == KeyMessage::Down || message == KeyMessage::SystemDown;
    const bool up = message == KeyMessage::Up || message == KeyMessage::SystemUp;
    if (code != 0 || !(down || up)) return {};

    if (virtualKey == kLeftShift || virtualKey == kRightShift) shiftDown_ = down;

    const bool altGr = held.ctrl && held.alt;
    const bool command = (held.ctrl || held.alt || held.meta) && !altGr;
    if (command) {
        const bool clips = virtualKey == 'X' || virtualKey == 'C' || virtualKey == 'V';
        return {held.ctrl && clips && down ? KeyAction::PassAndRearm : KeyAction::Pass, false};
    }
    if (!IsTypingKey(virtualKey)) return {};
    // Caps Lock turns letters round and leaves the rest of the keyboard alone.
    const bool upper = shiftDown_ != (held.caps && IsLetter(virtualKey));
    return {down ? KeyAction::Insert : KeyAction::Swallow, upper};
}

}  // namespace bmr::shell
