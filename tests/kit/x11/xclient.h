#pragma once

#include <xcb/record.h>
#include <xcb/xcb.h>

#include <atomic>
#include <cstdint>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace bmr::test {

/// Another program on the same screen: a connection of its own, nothing shared with the toolkit.
class XClient {
  public:
    XClient();
    ~XClient();
    XClient(const XClient&) = delete;
    XClient& operator=(const XClient&) = delete;

    xcb_connection_t* connection() const { return connection_; }
    xcb_window_t root() const { return root_; }
    xcb_atom_t Atom(const std::string& name) const;
    /// Waits until the server has done all that was asked of it.
    void Sync() const;
    xcb_window_t NewWindow() const;
    /// A window of that title, 0 when there is none.
    xcb_window_t Find(const std::string& title) const;
    /// The window that the window manager calls active.
    xcb_window_t Active() const;

  private:
    xcb_window_t FindBelow(xcb_window_t window, const std::string& title) const;
    std::string Property(xcb_window_t window, const std::string& name) const;

    xcb_connection_t* connection_;
    xcb_window_t root_ = 0;
};

/// The hands at the keyboard.
class Typist : public XClient {
  public:
    /// The key that bears the character, with Shift where it needs one. Knows ASCII letters, digits, blank.
    void Tap(char c, int downMs = 5);
    void Press(xcb_keysym_t keysym, bool down);
    /// Taps one after the other, `everyMs` from press to press.
    void Type(const std::string& text, int everyMs);
    std::uint8_t CodeOf(xcb_keysym_t keysym) const;
};

constexpr xcb_keysym_t kKeyShift = 0xFFE1;
constexpr xcb_keysym_t kKeyControl = 0xFFE3;
constexpr xcb_keysym_t kKeyAlt = 0xFFE9;
constexpr xcb_keysym_t kKeyTab = 0xFF09;
constexpr xcb_keysym_t kKeyReturn = 0xFF0D;

/// Collects key codes of presses on a thread of its own until it goes.
class Listener {
  public:
    virtual ~Listener();
    std::vector<std::uint8_t> Heard();
    void Forget();

  protected:
    void Start();
    void Stop();
    void Hear(std::uint8_t code);
    /// Called over and over on the thread; must not block for long.
    virtual void Look() = 0;

  private:
    std::mutex mutex_;
    std::vector<std::uint8_t> heard_;
    std::atomic<bool> stop_ = false;
    std::thread thread_;
};

/// Selects key events on a window of somebody else.
class WindowSnooper final : public Listener {
  public:
    explicit WindowSnooper(xcb_window_t window);
    ~WindowSnooper() override { Stop(); }

  private:
    void Look() override;
    XClient client_;
};

/// Uses the extension that records what all clients get.
class Recorder final : public Listener {
  public:
    Recorder();
    ~Recorder() override;

  private:
    void Look() override;
    XClient control_;
    XClient data_;
    xcb_record_context_t context_;
    unsigned sequence_;
};

/// Asks for the raw input of all devices.
class RawListener final : public Listener {
  public:
    RawListener();
    ~RawListener() override { Stop(); }

  private:
    void Look() override;
    XClient client_;
};

/// Polls which keys are down.
class KeymapPoller final : public Listener {
  public:
    KeymapPoller() { Start(); }
    ~KeymapPoller() override { Stop(); }

  private:
    void Look() override;
    XClient client_;
    std::uint8_t last_[32] = {};
};

/// A window that takes the input focus for itself, and hears what is typed into it.
class FocusThief final : public Listener {
  public:
    FocusThief();
    ~FocusThief() override { Stop(); }
    void Steal();
    void GiveTo(xcb_window_t window);

  private:
    void Look() override;
    XClient client_;
    xcb_window_t window_;
};

/// A program that pastes, or that owns a selection without ever answering.
class ClipboardClient final : public XClient {
  public:
    bool HasOwner(const std::string& selection) const;
    /// The text as somebody who pastes gets it; nothing when it is refused or does not come.
    std::optional<std::string> Read(const std::string& selection, const std::string& target) const;
    void OwnAndHang(const std::string& selection);
    /// Owns the clipboard and says to whoever asks that it has this kind and no other.
    void OwnAndOffer(const std::string& kind);
    ~ClipboardClient();

  private:
    std::atomic<bool> stop_ = false;
    std::thread answers_;
};

}  // namespace bmr::test
