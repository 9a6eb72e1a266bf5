#include "shell/preferences.h"

#include <algorithm>
#include <charconv>
#include <cstdio>

#include "base/bytes.h"
#include "base/errors.h"
#include "custody/users.h"
#include "shell/timeout.h"
#include "store/record_put.h"
#include "store/session.h"
#include "store/startvariables.h"

namespace bmr::shell {
namespace {

using store::Session;
using store::Settings;

constexpr int kMinutesPerDay = 24 * 60;
constexpr std::uint8_t kLastSectionUsed = 2;
constexpr std::uint8_t kOwnPin = 1;
constexpr std::uint8_t kAllBoxes = 15;

const char* const kEndOnSuspend = "Guards/EndOnSuspend";
const char* const kEndOnLock = "Guards/EndOnLock";
const char* const kAlsoForeign = "Guards/ClearForeign";

std::optional<int> ParseNumber(std::string_view text) {
    int number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return number;
}

std::optional<std::int16_t> ParseIdle(const std::string& text) {
    const auto minutes = ParseNumber(TrimBlanks(text));
    if (!minutes || *minutes < 0 || *minutes > kHighestIdle) return std::nullopt;
    return static_cast<std::int16_t>(*minutes);
}

std::size_t StartAppOf(std::uint8_t section) {
    if (section > store::Section::Budget3) return 0;
    const auto code = std::min(section, kStartApps.back());
    const auto found = std::find(kStartApps.begin(), kStartApps.end(), code);
    return found == kStartApps.end() ? 0 : static_cast<std::size_t>(found - kStartApps.begin());
}

/// The section that the next start goes to. Where that is the last one used, it is the one that is open now,
/// else what the last switch of section wrote. A budget that was used last is kept, whichever it is.
std::uint8_t StartSectionFor(const Session& session, const Preferences& chosen) {
    const std::uint8_t before = session.settings.StartSection;
    if (chosen.StartScreen == kLastSectionUsed)
        return session.SectionCode != store::Section::None ? session.SectionCode : before;
    if (before != store::Section::None && StartAppOf(before) == chosen.cboStartApp) return before;
    return kStartApps.at(chosen.cboStartApp);
}

std::string ShowTime(DateValue time) {
    return TimeText(store::MinuteOfDay(time));
}

DateValue TimeValue(const std::string& text) {
    return {static_cast<double>(ParseTime(text).value_or(0)) / kMinutesPerDay};
}

void JudgeTime(std::vector<Fault>& faults, const char* control, const char* name, const std::string& text) {
    if (ParseTime(text)) return;
    faults.push_back({control, std::string(name) + " is a time of day from 00:00 to 23:59, such as 08:00."});
}

void JudgeLabel(std::vector<Fault>& faults, std::size_t number, const std::string& text) {
    const std::string name = "User Def " + std::to_string(number + 1);
    std::string why;
    if (const auto bytes = ToBytes(text); bytes && bytes->size() > store::kLongestText)
        why = name + " has " + std::to_string(bytes->size()) + " characters; " +
              std::to_string(store::kLongestText) + " can be stored.";
    else if (!bytes)
        why = name + " cannot be stored: the file holds Western European letters only.";
    if (!why.empty()) faults.push_back({"txtUserDefined" + std::to_string(number), why});
}

/// Step by step in the order of storing.
void TakeOptions(Session& session, const Preferences& chosen) {
    Settings& settings = session.settings;
    settings.Idle = ParseIdle(chosen.Idle).value_or(kStandardIdle);
    std::transform(chosen.BudgetShow.begin(), chosen.BudgetShow.end(), settings.BudgetShow.begin(),
                   StoredBoxes);
    std::transform(chosen.txtUserDefined.begin(), chosen.txtUserDefined.end(), session.userLabels.begin(),
                   [](const std::string& label) { return ToBytes(label).value_or(Bytes()); });
    settings.StartScreen = chosen.StartScreen;
    settings.StartSection = StartSectionFor(session, chosen);
    settings.DiaryShow = chosen.DiaryShow;
    settings.TodoShowCompleted = chosen.TodoShowCompleted ? 1 : 0;
    settings.BudgetPrimary = chosen.BudgetPrimary;
    settings.CatShow = chosen.CatShow;
    settings.calView = chosen.calView;
    settings.AppDuration = chosen.AppDuration;
    settings.WorkdayStart = TimeValue(chosen.WorkdayStart);
    settings.WorkdayEnd = TimeValue(chosen.WorkdayEnd);
    settings.DisplayFrom = TimeValue(chosen.DisplayFrom);
}

int StoreAll(Session& session, const Preferences& chosen, bool newLabels) {
    engine::Transaction all(*session.ProgramDb);
    if (all.error() != 0) return all.error();
    if (const int error = store::WriteSettings(session)) return error;
    if (newLabels)
        if (const int error = store::WriteUserLabels(session, session.user.UserNumber, session.userLabels))
            return error;
    if (session.pin.Unread) return all.Commit();
    const bool samePin = chosen.Pin.view() == session.pin.Pin.view();
    const std::uint8_t kind = samePin ? session.pin.PinKind : kOwnPin;
    if (const int error =
            custody::WritePin(session, kind, chosen.Pin.view(), chosen.PinApp, chosen.PINeveryaccess))
        return error;
    return all.Commit();
}

}  // namespace

BudgetBoxes BoxesOf(std::uint8_t stored) {
    BudgetBoxes boxes{};
    for (std::size_t i = 0; i < boxes.size(); ++i)
        boxes[i] = ((stored >> i) & 1) != 0;
    for (std::size_t pair = 0; pair < boxes.size(); pair += 2)
        if (!boxes[pair] && !boxes[pair + 1]) boxes[pair] = boxes[pair + 1] = true;
    return boxes;
}

std::uint8_t StoredBoxes(const BudgetBoxes& boxes) {
    unsigned bits = 0;
    for (std::size_t i = 0; i < boxes.size(); ++i)
        if (boxes[i]) bits |= 1U << i;
    return bits == kAllBoxes ? 0 : static_cast<std::uint8_t>(bits);
}

void KeepPair(BudgetBoxes& boxes, std::size_t box) {
    const std::size_t other = box ^ 1U;
    if (!boxes[box] && !boxes[other]) boxes[other] = true;
}

MachineSwitches ReadSwitches(const Registry& registry) {
    const auto read = [&registry](const char* name, bool standard) {
        const std::string value = registry.Read(name);
        return value == "1" || (value != "0" && standard);
    };
    const MachineSwitches standard;
    return {read(kEndOnSuspend, standard.endOnSuspend), read(kEndOnLock, standard.endOnLock),
            read(kAlsoForeign, standard.alsoForeign)};
}

void WriteSwitches(Registry& registry, const MachineSwitches& switches) {
    registry.Write(kEndOnSuspend, switches.endOnSuspend ? "1" : "0");
    registry.Write(kEndOnLock, switches.endOnLock ? "1" : "0");
    registry.Write(kAlsoForeign, switches.alsoForeign ? "1" : "0");
}

Preferences FromSession(const Session& session) {
    const Settings& settings = session.settings;
    const auto upTo = [](std::uint8_t number, std::uint8_t last) {
        return number > last ? std::uint8_t{0} : number;
    };
    Preferences shown;
    shown.Idle = std::to_string(IdleLimitFrom(settings.Idle));
    std::transform(settings.BudgetShow.begin(), settings.BudgetShow.end(), shown.BudgetShow.begin(), BoxesOf);
    std::transform(session.userLabels.begin(), session.userLabels.end(), shown.txtUserDefined.begin(),
                   [](const Bytes& label) { return ToUtf8(label); });
    shown.StartScreen = upTo(settings.StartScreen, 2);
    shown.cboStartApp = StartAppOf(settings.StartSection);
    shown.DiaryShow = settings.DiaryShow != 0 ? 1 : 0;
    shown.TodoShowCompleted = settings.TodoShowCompleted == 1;
    shown.BudgetPrimary = upTo(settings.BudgetPrimary, 2);
    shown.CatShow = settings.CatShow != 0 ? 1 : 0;
    shown.calView = upTo(settings.calView, 3);
    const bool possible = settings.AppDuration > 0 && settings.AppDuration <= kMinutesPerDay;
    shown.AppDuration = possible ? settings.AppDuration : Settings().AppDuration;
    shown.WorkdayStart = ShowTime(settings.WorkdayStart);
    shown.WorkdayEnd = ShowTime(settings.WorkdayEnd);
    shown.DisplayFrom = ShowTime(settings.DisplayFrom);
    shown.Pin = session.pin.Pin.Copy();
    shown.PinApp = session.pin.PinApp;
    shown.PINeveryaccess = session.pin.PINeveryaccess;
    shown.PinUnread = session.pin.Unread;
    shown.switches = ReadSwitches(session.ports.registry);
    return shown;
}

std::vector<Fault> FaultsOf(const Preferences& chosen) {
    std::vector<Fault> faults;
    if (!ParseIdle(chosen.Idle))
        faults.push_back({"Idle", "The idle time is a whole number of minutes from 0 (never) to " +
                                      std::to_string(kHighestIdle) + "."});
    JudgeTime(faults, "WorkdayStart", "The start of the workday", chosen.WorkdayStart);
    JudgeTime(faults, "WorkdayEnd", "The end of the workday", chosen.WorkdayEnd);
    JudgeTime(faults, "DisplayFrom", "The beginning of the display", chosen.DisplayFrom);
    if (chosen.Pin.empty() && !chosen.PinUnread)
        faults.push_back({"txtPIN", "The PIN needs at least one character."});
    else if (chosen.Pin.size() > store::kLongestText)
        faults.push_back({"txtPIN", "The PIN has " + std::to_string(chosen.Pin.size()) + " characters; " +
                                        std::to_string(store::kLongestText) + " can be stored."});
    for (std::size_t i = 0; i < chosen.txtUserDefined.size(); ++i)
        JudgeLabel(faults, i, chosen.txtUserDefined[i]);
    return faults;
}

int StorePreferences(Session& session, const Preferences& chosen) {
    if (!session.ProgramDb || session.ending) return MessageNumber::Cancelled;
    if (!FaultsOf(chosen).empty()) return MessageNumber::InputError;
    const Settings settings = session.settings;
    const store::UserLabels labels = session.userLabels;
    const bool unread = session.SettingsUnread;
    store::PinRecord pin{session.pin.PinKind, session.pin.Pin.Copy(), session.pin.PinApp,
                         session.pin.PINeveryaccess, session.pin.Unread};
    TakeOptions(session, chosen);
    if (const int error = StoreAll(session, chosen, session.userLabels != labels)) {
        session.settings = settings;
        session.userLabels = labels;
        session.SettingsUnread = unread;
        session.pin = std::move(pin);
        return error;
    }
    WriteSwitches(session.ports.registry, chosen.switches);
    return 0;
}

std::optional<int> ParseTime(std::string_view text) {
    text = TrimBlanks(text);
    const std::size_t colon = text.find(':');
    if (colon == std::string_view::npos || colon < 1 || colon > 2 || text.size() - colon != 3)
        return std::nullopt;
    const auto allDigits = [](std::string_view part) {
        return std::all_of(part.begin(), part.end(), [](char c) { return c >= '0' && c <= '9'; });
    };
    const std::string_view hours = text.substr(0, colon);
    const std::string_view minutes = text.substr(colon + 1);
    if (!allDigits(hours) || !allDigits(minutes)) return std::nullopt;
    const int minuteOfDay = *ParseNumber(hours) * 60 + *ParseNumber(minutes);
    if (*ParseNumber(minutes) > 59 || minuteOfDay >= kMinutesPerDay) return std::nullopt;
    return minuteOfDay;
}

std::string TimeText(int minuteOfDay) {
    char text[16];
    std::snprintf(text, sizeof text, "%02d:%02d", minuteOfDay / 60, minuteOfDay % 60);
    return text;
}

std::string StepTime(const std::string& text, TimePart part, int by) {
    constexpr int kStep = 5;
    const auto time = ParseTime(text);
    if (!time) return text;
    int next = *time + by * 60;
    if (part == TimePart::Minutes) {
        const int over = *time % kStep;
        next = *time - over + by * kStep;
        if (by < 0 && over != 0) next += kStep;
    }
    return TimeText((next % kMinutesPerDay + kMinutesPerDay) % kMinutesPerDay);
}

}  // namespace bmr::shell
