#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "base/clock.h"

namespace bmr::shell {

inline constexpr int kStandardIdle = 5;  ///< minutes
inline constexpr int kHighestIdle = 15;  ///< minutes

/// The first text of the panel `autoshutoff`, and its tool tip.
inline constexpr const char* kIdlePanelText = "Idle Countdown:  ";
inline constexpr const char* kIdlePanelTip = "Idle Countdown to Shutdown";

/// A limit from wherever it was stored or typed: above 15 it is 15; a negative one says nothing, so the
/// standard holds (never "no limit" by accident).
std::int16_t IdleLimitFrom(std::int32_t minutes);

/// The idle rule: when nobody has touched mouse or keyboard of this program for `IdleLimit` minutes, it ends.
class TimeOut {
  public:
    /// `clock` must outlive this.
    explicit TimeOut(const Clock& clock) : LastActivity(clock.MonotonicMs()), clock_(clock) {}

    void StartActivityHooks();
    void StopActivityHooks() { hooked_ = false; }

    /// A mouse or keyboard event of this program; nothing while the hooks are off.
    void Activity() {
        if (hooked_) LastActivity = clock_.MonotonicMs();
    }

    /// Time since `LastActivity`; a pending activity counts as one of this moment, once.
    std::int64_t IdleMilliseconds();

    struct Tick {
        std::optional<std::string>
            panel;  ///< minutes and seconds left, "00:00"; none while there is no limit
        bool expired = false;
    };
    /// The tick of `timerTimeout`, each second.
    Tick TimerTimeout();

    std::int16_t IdleLimit = kStandardIdle;  ///< minutes; 0 is never
    std::int64_t LastActivity;               ///< on the monotonic clock
    bool ActivityPending = false;            ///< set by a routine that wants the count to start anew

  private:
    const Clock& clock_;
    bool hooked_ = false;
};

/// Seconds as "mm:ss", two digits at least; what is below 0 shows as 0.
std::string CountdownText(std::int64_t seconds);

/// The timer of the clipboard guard. It is on from the start, so that what lay in the clipboard before the
/// program began goes as well.
class ClipboardTimer {
  public:
    static constexpr std::int64_t kInterval = 30000;  ///< ms

    /// `clock` must outlive this.
    explicit ClipboardTimer(const Clock& clock) : clock_(clock), startedAt_(clock.MonotonicMs()) {}

    /// On, with the whole interval before it.
    void RestartClipboardTimer() {
        startedAt_ = clock_.MonotonicMs();
        running_ = true;
    }
    /// Off until it is armed again.
    void Stop() { running_ = false; }

    bool Running() const { return running_; }
    /// Milliseconds until the tick, 0 when it is due or when the timer is off.
    std::int64_t Remaining() const;
    bool Due() const { return running_ && Remaining() == 0; }

  private:
    const Clock& clock_;
    std::int64_t startedAt_;
    bool running_ = true;
};

}  // namespace bmr::shell
