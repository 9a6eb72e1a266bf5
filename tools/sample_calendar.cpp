#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "calendar/appointment.h"
#include "calendar/redowords.h"
#include "calendar/reminder.h"
#include "calendar/timespan.h"
#include "sample.h"

namespace bmr::tools {
namespace {

using calendar::Minutes;

constexpr std::string_view kPeople[] = {"Amara Okafor", "Jürgen Groß", "Leïla Haddad", "Tomás Nuñez",
                                        "Mrs. Okoye",   "Priya Raman", "Søren Bak",    "Dr. Lindqvist",
                                        "Aunt Nelly",   "the plumber"};
constexpr std::string_view kPlaces[] = {
    "Harbour Street 12", "Room 4.17",  "Café Meridian", "Town hall", "School",
    "At home",           "Platform 3", "Gym",           "Garden",    "Main office"};
constexpr std::string_view kMeetings[] = {"Meeting with ",
                                          "Call with ",
                                          "Lunch with ",
                                          "Visit ",
                                          "Interview: ",
                                          "Coffee with ",
                                          "Hand over keys to ",
                                          "Rehearsal with ",
                                          "Go through the accounts with "};
constexpr std::string_view kErrands[] = {
    "Dentist",        "Haircut",  "Car inspection", "Parents' evening", "Fetch the cake",
    "Boiler service", "Swimming", "Blood donation", "Library",          "Vaccination"};
constexpr std::string_view kDays[] = {"Holiday",       "Day off",     "Moving day",     "Fair",
                                      "School outing", "Rent is due", "Trip to the sea"};

/// A rule of each kind, and what comes so.
struct Habit {
    std::string_view rule;
    std::string_view subject;
    bool allDay;
};
constexpr Habit kHabits[] = {{"week on mon", "Choir", false},
                             {"2 weeks on tue,fri", "Paper and glass", false},
                             {"3 days", "Water the seedlings", false},
                             {"workday", "Stand-up", false},
                             {"month on 31", "Accounts", false},
                             {"2 months on 15", "Rent and heating", true},
                             {"month on first mon", "Committee", false},
                             {"2 months on last fri", "Games night", false},
                             {"year", "Birthday", true},
                             {"year on second tue of may", "Summer fair", true},
                             {"week on mon,wed,thu", "Course", false},
                             {"day", "Medicine", false}};
/// Most within the working day, on the quarters of the hours.
std::int32_t SampleTime(SampleContext& context) {
    const std::int32_t quarter = Chance(context, 75) ? Between(context, 32, 70) : Between(context, 24, 92);
    return 15 * quarter;
}

std::int32_t SampleLength(SampleContext& context) {
    static constexpr std::int32_t kLengths[] = {15, 30, 30, 30, 45, 60, 60, 60, 90, 120, 180};
    return kLengths[DrawBelow(context.random, static_cast<std::int32_t>(std::size(kLengths)))];
}

/// What a file of so many appointments spans: a few a day, four fifths of them past.
struct Reach {
    explicit Reach(std::int32_t records) : days(std::clamp(records / 3, 200, 9000)) {}
    Day Draw(SampleContext& context) const {
        return {context.today.serial + Between(context, -days * 4 / 5, days / 5)};
    }
    std::int32_t days;
};

/// A tenth of a small file and few of a large one come again: nobody has a thousand habits.
std::int32_t SeriesAmong(std::int32_t records) {
    return std::min(records / 8, 24 + records / 200);
}

void SetSpan(SampleContext& context, calendar::Appointment& appointment, Day day, bool allDay) {
    const Minutes start{calendar::MidnightOf(day).count + SampleTime(context)};
    const calendar::TimeSpan span = allDay
                                        ? calendar::AllDaySpan(day, 30)
                                        : calendar::DrawnSpan(start, {start.count + SampleLength(context)});
    appointment.start = span.start;
    appointment.end = span.end;
    appointment.allDay = allDay ? 1 : 0;
    const bool alarm = Chance(context, 25);
    const auto lead = calendar::kLeadTimes.at(static_cast<std::size_t>(
        DrawBelow(context.random, static_cast<std::int32_t>(calendar::kLeadTimes.size()))));
    appointment.alarm = alarm ? 1 : 0;
    appointment.alarmTime = calendar::AlarmTime(span.start, alarm, lead);
}

void SetWords(SampleContext& context, calendar::Appointment& appointment, std::string subject) {
    appointment.subject = AnyScript(context, std::move(subject));
    if (Chance(context, 45)) appointment.location = AnyScript(context, std::string(Pick(context, kPlaces)));
    if (Chance(context, 20)) appointment.notes = AnyScript(context, SampleNote(context));
    appointment.isPrivate = Chance(context, 8);
}

calendar::Appointment Single(SampleContext& context, const Reach& reach) {
    calendar::Appointment appointment = calendar::ClearRecord({}, 0);
    const bool allDay = Chance(context, 9);
    SetSpan(context, appointment, reach.Draw(context), allDay);
    SetWords(context, appointment,
             allDay ? std::string(Pick(context, kDays))
             : Chance(context, 60)
                 ? std::string(Pick(context, kMeetings)) + std::string(Pick(context, kPeople))
                 : std::string(Pick(context, kErrands)));
    return appointment;
}

/// Every habit in turn, and each with every way to end.
calendar::Appointment Series(SampleContext& context, const Reach& reach, std::int32_t number) {
    const LocaleFacts locale;
    const Habit& habit = kHabits[static_cast<std::size_t>(number) % std::size(kHabits)];
    auto state = *calendar::ParseRule(habit.rule, reach.Draw(context), locale);
    state.endMode = (number / static_cast<std::int32_t>(std::size(kHabits)) + number) % 3;
    state.count = Between(context, 2, 60);
    if (state.endMode == calendar::RedoEnd::Date)
        state.end = {state.start.serial + Between(context, 30, 900)};
    if (state.endMode != calendar::RedoEnd::Never) calendar::RecalcRedoEnd(state, locale);
    calendar::Appointment appointment = calendar::ClearRecord({}, 0);
    SetSpan(context, appointment, state.start, habit.allDay);
    SetWords(context, appointment, std::string(habit.subject) + ", " + std::string(Pick(context, kPeople)));
    appointment.redoString = calendar::StringToStore(state, {}, locale, context.random);
    return appointment;
}

}  // namespace

int FillCalendar(SampleContext& context, std::int32_t records) {
    std::vector<calendar::Appointment> made;
    made.reserve(static_cast<std::size_t>(records));
    const Reach reach(records);
    const std::int32_t series = SeriesAmong(records);
    for (std::int32_t i = 0; i < records; ++i)
        made.push_back(i < series ? Series(context, reach, i) : Single(context, reach));
    const int error = calendar::AddRecords(context.session, made);
    std::for_each(made.begin(), made.end(), calendar::WipeRecord);
    return error;
}

}  // namespace bmr::tools
