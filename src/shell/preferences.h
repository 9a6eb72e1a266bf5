#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/ports.h"
#include "crypto/secret.h"

namespace bmr::store {
struct Session;
}

namespace bmr::shell {

/// Sections that `cboStartApp` lists, in the order of its list; the budgets share its last entry.
inline constexpr std::array<std::uint8_t, 7> kStartApps{12, 11, 13, 15, 14, 16, 17};

/// What a budget lists, in the order of the stored bits: Credit, Debit, Public, Private.
using BudgetBoxes = std::array<bool, 4>;

/// The boxes of a stored byte. A pair (Credit and Debit, Public and Private) with nothing on lists nothing,
/// so it stands for both; a new database has 0.
BudgetBoxes BoxesOf(std::uint8_t stored);
std::uint8_t StoredBoxes(const BudgetBoxes& boxes);
/// After a click on `box`: where that left both of its pair off, the other one goes on.
void KeepPair(BudgetBoxes& boxes, std::size_t box);

/// Switches of the guards. They belong to a machine and not to a database, so they stand outside the file.
struct MachineSwitches {
    bool endOnSuspend = false;
    bool endOnLock = false;
    bool alsoForeign = true;  ///< the clipboard is cleared of other programs' texts too
    bool operator==(const MachineSwitches&) const = default;
};
/// What is not there, or is neither "0" nor "1", has its default.
MachineSwitches ReadSwitches(const Registry& registry);
void WriteSwitches(Registry& registry, const MachineSwitches& switches);

/// All options as the screen shows them: choices as numbers, texts as typed (UTF-8).
struct Preferences {
    std::string Idle;
    std::array<BudgetBoxes, 3> BudgetShow{};
    std::array<std::string, 4> txtUserDefined;
    std::uint8_t StartScreen = 0;  ///< 0 start screen, 1 go to the section of `cboStartApp`, 2 last used
    std::size_t cboStartApp = 0;   ///< place in `kStartApps`
    std::uint8_t DiaryShow = 0;    ///< 0 one day, 1 seven
    bool TodoShowCompleted = false;
    std::uint8_t BudgetPrimary = 0;
    std::uint8_t CatShow = 0;  ///< 0 last used, 1 the first entry
    std::uint8_t calView = 0;  ///< 0 day, 1 workdays, 2 week, 3 month
    std::int32_t AppDuration = 0;
    std::string WorkdayStart;  ///< "hh:nn", as the other two
    std::string WorkdayEnd;
    std::string DisplayFrom;
    Secret Pin;               ///< bytes of code page 1252
    std::int32_t PinApp = 0;  ///< bit k: section 11 + k asks for the PIN
    bool PINeveryaccess = false;
    bool PinUnread = false;  ///< the PIN record does not decode: none of the three is stored
    MachineSwitches switches;
};

/// What is in force. A stored number that no option stands for shows as the option that it acts as.
/// `ShowPrivate` is not among them: it is switched in the session at once.
Preferences FromSession(const store::Session& session);

/// What is wrong with an entry: the control's name, and a sentence for the person (UTF-8).
struct Fault {
    std::string control;
    std::string words;
};
std::vector<Fault> FaultsOf(const Preferences& chosen);

/// Takes the options into the session and stores them: settings, the user's labels and the PIN record in one
/// transaction, then the switches. 0; `InputError` for an entry with a fault; `Cancelled` when the database
/// was closed meanwhile; `custody::kQuitProgram`; or the engine's number. Unless it gives 0, session and file
/// are as before.
[[nodiscard]] int StorePreferences(store::Session& session, const Preferences& chosen);

/// Minutes since midnight of a time such as "08:00" or "8:00"; nothing for what is no time of day.
std::optional<int> ParseTime(std::string_view text);
std::string TimeText(int minuteOfDay);

enum class TimePart { Hours, Minutes };
/// The time one step of `udHN` up (`by` 1) or down (-1): an hour, or to the next full five minutes, round the
/// clock. A text that is no time stays as it is.
std::string StepTime(const std::string& text, TimePart part, int by);

}  // namespace bmr::shell
