#pragma once

#include <cstdint>

namespace bmr::shell {

/// What becomes of a keystroke that arrives while a guarded dialog has the foreground.
enum class KeyAction : std::uint8_t {
    Pass,          ///< goes on to whoever stands behind us
    PassAndRearm,  ///< goes on, and the clipboard guard starts anew
    Insert,        ///< taken out of the chain; its character is inserted by ourselves
    Swallow,       ///< taken out of the chain, nothing is inserted
};

/// Messages of a low-level keyboard event; all others are passed on.
struct KeyMessage {
    static constexpr unsigned Down = 256;
    static constexpr unsigned Up = 257;
    static constexpr unsigned SystemDown = 260;
    static constexpr unsigned SystemUp = 261;
};

/// The modifiers as the platform reports them at the moment of the stroke. AltGr is Ctrl and Alt together.
struct Modifiers {
    bool ctrl = false;
    bool alt = false;
    bool meta = false;
    bool caps = false;  ///< the lock is on
};

struct KeyDecision {
    KeyAction action = KeyAction::Pass;
    bool UpperCase = false;  ///< only told for Insert
};

/// True for a virtual-key code that writes a character: digits, letters and the punctuation keys of all
/// layouts.
bool IsTypingKey(unsigned virtualKey);

/// The rule by which guarded dialogs take the user's typing for themselves. Keeps no text, only whether Shift
/// is down.
class KeyRules {
  public:
    /// `code` below or above 0 and unknown messages are passed on.
    KeyDecision LowLevelKeys(int code, unsigned message, unsigned virtualKey, const Modifiers& held);

    bool ShiftDown() const { return shiftDown_; }

    /// Forgets a Shift that went up while another window had the foreground.
    void Reset() { shiftDown_ = false; }

  private:
    bool shiftDown_ = false;
};

}  // namespace bmr::shell
