#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

class QObject;
class QWindow;

namespace bmr::kit {

/// What a platform can do against those who listen to the keyboard: take the keyboard for one window, put
/// keys into the queue where listeners look, and tell which keys are down. One backend is at work, chosen at
/// the start. Knows no Qt beyond the two names above, so that a backend can be written in the platform's own
/// terms.
class KeyPort {
  public:
    static constexpr int kShift = 16;  ///< virtual-key code of Shift

    virtual ~KeyPort() = default;

    /// True when decoys can be sent at all.
    virtual bool Usable() const = 0;

    /// True when decoys travel through the system's queue. Then they may only be sent while the keyboard is
    /// grabbed: without it another window could receive them.
    virtual bool InjectsIntoSystem() const = 0;

    /// Takes the keyboard for a visible window, or gives it back. To take what is held already is cheap and
    /// heals a grab that a pop-up has dropped. False when it is not held afterwards: the platform has no such
    /// thing, or another client holds it.
    virtual bool Grab(QWindow* window, bool on) = 0;

    /// True when what `Grab` takes would take the decoys too, so that it is given back for each burst.
    virtual bool NoiseNeedsRelease() const { return false; }

    /// The platform's code for a virtual key, as key events carry it; 0 when the layout has no such key or
    /// when it is a dead one.
    virtual unsigned ScanFor(int virtualKey) = 0;

    /// Asks which keys are down now. The three below answer as of then.
    virtual void Look() = 0;
    virtual bool IsDown(unsigned scan) const = 0;
    virtual bool ShiftHeld() const = 0;
    /// A modifier is held that would turn a decoy into a command or another character.
    virtual bool CommandHeld() const = 0;

    /// Whether Caps Lock is on, where the platform tells.
    virtual std::optional<bool> CapsLock() = 0;

    /// Who gets decoys that do not travel through the system.
    virtual void Aim(QObject* box) = 0;

    /// Presses or releases a key; nothing is sent before `Flush`.
    virtual void Key(unsigned scan, bool down) = 0;
    virtual void Flush() = 0;

    /// Calls `reached` once all keys flushed before have been delivered to this program, whether they were
    /// taken or lost on the way. False when the platform cannot tell. A new call replaces the one before.
    virtual bool Fence(QWindow* window, std::function<void()> reached) = 0;

    /// Where the platform takes keystrokes before any window sees them, they come here as text; `rearms` is
    /// set for a clipboard command (the text is empty then).
    // Platforms that have it keep what they are given.
    // NOLINTNEXTLINE(performance-unnecessary-value-param)
    virtual void OnTyped(std::function<void(std::u16string text, bool rearms)>) {}

    /// One or two English sentences: which means are at work, and against whom. Shown in About.
    virtual std::string Describe() const = 0;
};

/// Finds out what another program has put into the clipboard, without ever waiting for that program.
class ClipboardProbe {
  public:
    virtual ~ClipboardProbe() = default;
    /// The clipboard has a new owner, or may have one: asks it what it offers.
    virtual void Ask() = 0;
    /// What the answer said; nothing while there is none.
    virtual std::optional<bool> HoldsText() const = 0;
};

/// Nothing where the platform has no way to ask without waiting.
std::unique_ptr<ClipboardProbe> MakeClipboardProbe();

/// The backend for the platform that Qt runs on. REQUIRES: a QGuiApplication. The environment variable
/// BRINDLEMERE_KEYPORT=post forces the backend that touches nothing outside this program (for tests).
std::unique_ptr<KeyPort> MakeKeyPort();

/// Each gives nothing where its platform is not at work.
std::unique_ptr<KeyPort> MakeXcbKeyPort();
std::unique_ptr<KeyPort> MakeWin32KeyPort();
std::unique_ptr<KeyPort> MakeMacKeyPort();
std::unique_ptr<KeyPort> MakePostKeyPort();
std::unique_ptr<ClipboardProbe> MakeXcbClipboardProbe();

}  // namespace bmr::kit
