#include "interchange/palmmapping.h"

#include <algorithm>

#include "base/bytes.h"
#include "calendar/reminder.h"
#include "interchange/palmrepeat.h"
#include "store/record_put.h"

namespace bmr::interchange {

namespace {

constexpr std::size_t kLongestSubject = 255;
constexpr std::uint32_t kMinutesOfHour = 60;
/// Ten years: a reminder further ahead is a damaged one.
constexpr std::uint64_t kMostLead = std::uint64_t{10} * 366 * calendar::kMinutesOfDay;

/// Numbers of the address book's fields.
struct AddressField {
    static constexpr std::uint8_t Title = 3;
    static constexpr std::uint8_t FirstName = 4;
    static constexpr std::uint8_t LastName = 6;
    static constexpr std::uint8_t Company = 8;
    static constexpr std::uint8_t Street = 16;
    static constexpr std::uint8_t City = 17;
    static constexpr std::uint8_t State = 18;
    static constexpr std::uint8_t PostalCode = 19;
    static constexpr std::uint8_t Country = 20;
    static constexpr std::uint8_t Custom = 35;  ///< the first of four
    static constexpr std::uint8_t Phone = 41;   ///< the first of five
    static constexpr std::uint8_t Label = 50;
    static constexpr std::uint8_t DisplayPhone = 59;
    static constexpr std::uint8_t Note = 60;
};

using Remarks = std::vector<std::string>;

WipedText Cut(WipedText bytes, const char* what, Remarks& remarks) {
    if (bytes.size() > store::kLongestText) {
        bytes.resize(store::kLongestText);
        remarks.push_back(std::string(what) + " is longer than 65,000 characters and was cut");
    }
    return bytes;
}

/// A text of several lines in UTF-8, its line breaks as our editors write them.
WipedText Lines(std::string_view bytes, const char* what, Remarks& remarks) {
    WipedText text;
    text.Reserve(bytes.size() + static_cast<std::size_t>(std::ranges::count(bytes, '\n')) +
                 static_cast<std::size_t>(std::ranges::count(bytes, '\r')));
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        const bool broken = bytes[i] == '\r' || bytes[i] == '\n';
        if (!broken) {
            text.push_back(bytes[i]);
            continue;
        }
        if (bytes[i] == '\r' && i + 1 < bytes.size() && bytes[i + 1] == '\n') ++i;
        text.append("\r\n");
    }
    return ToUtf8(Cut(std::move(text), what, remarks));
}

/// A text of one line: a break becomes a blank.
WipedText OneLine(std::string_view bytes, const char* what, Remarks& remarks) {
    WipedText text = Cut(bytes, what, remarks);
    for (std::size_t i = text.find_first_of("\r\n"); i != std::string::npos;
         i = text.find_first_of("\r\n", i)) {
        const bool both = text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n';
        text.replace(i, both ? 2 : 1, 1, ' ');
    }
    return ToUtf8(text);
}

std::string_view FirstLine(std::string_view text) {
    return text.substr(0, std::min(text.find_first_of("\r\n"), kLongestSubject));
}

std::int32_t PriorityOf(std::uint32_t palm, Remarks& remarks) {
    if (palm == 1) return tasks::Priority::High;
    if (palm == 2 || palm == 3) return tasks::Priority::Normal;
    if (palm == 4 || palm == 5) return tasks::Priority::Low;
    remarks.push_back("has the priority " + std::to_string(palm) + ", which is none: it is normal now");
    return tasks::Priority::Normal;
}

/// How long before its start an appointment is to be told of; nothing for a time that is none.
std::optional<std::int32_t> LeadOf(const PalmDatebookRecord& record) {
    constexpr std::array<std::uint64_t, 3> kUnits{1, kMinutesOfHour, calendar::kMinutesOfDay};
    if (record.alarmUnit >= kUnits.size()) return std::nullopt;
    const std::uint64_t lead = record.alarmTime * kUnits[record.alarmUnit];
    if (lead > kMostLead) return std::nullopt;
    return static_cast<std::int32_t>(lead);
}

/// Start, end and whether the whole day is meant.
void MapTimes(const PalmDatebookRecord& record, calendar::Appointment& appointment, Remarks& remarks) {
    const auto day = calendar::MidnightOf(PalmDay(record.start));
    const auto limit = calendar::MidnightOf(calendar::kUpperLimit);
    appointment.start = PalmMinutes(record.start);
    appointment.end = PalmMinutes(record.end);
    if (record.untimed) {
        appointment.start = day;
        appointment.end = {day.count + calendar::kMinutesOfDay};
    } else if (appointment.end < appointment.start) {
        appointment.end = appointment.start;
        remarks.emplace_back("ends before it begins: it ends where it begins now");
    } else if (appointment.end > limit) {
        appointment.end = limit;
        remarks.push_back("ends behind the last day that can be kept: it was cut at " + IsoDate(kLastDay));
    }
    // As in the editor: from one midnight to the next is the whole day.
    const bool wholeDay =
        appointment.start == day && appointment.end.count == day.count + calendar::kMinutesOfDay;
    appointment.allDay = wholeDay ? 1 : 0;
}

void MapReminder(const PalmDatebookRecord& record, calendar::Appointment& appointment, Remarks& remarks) {
    appointment.alarmTime = appointment.start;
    if (!record.alarm) return;
    const auto lead = LeadOf(record);
    if (!lead) {
        remarks.emplace_back("has a reminder at a time that is none: it has no reminder now");
        return;
    }
    appointment.alarm = 1;
    appointment.alarmTime = calendar::AlarmTime(appointment.start, true, *lead);
}

}  // namespace

PalmMapped<PalmContact> MapPalmAddress(const PalmAddressRecord& record) {
    PalmMapped<PalmContact> mapped;
    PalmContact& contact = mapped.record;
    contact.isPrivate = record.isPrivate;
    const auto put = [&](std::uint8_t number, WipedText text) {
        if (!text.empty()) contact.texts.emplace(number, std::move(text));
    };
    const auto line = [&](std::uint8_t number, std::string_view text) {
        put(number, OneLine(text, "a field", mapped.remarks));
    };
    line(AddressField::Title, record.title);
    line(AddressField::FirstName, record.first);
    line(AddressField::LastName, record.last);
    line(AddressField::Company, record.company);
    put(AddressField::Street, Lines(record.address, "the address", mapped.remarks));
    line(AddressField::City, record.city);
    line(AddressField::State, record.state);
    line(AddressField::PostalCode, record.zip);
    line(AddressField::Country, record.country);
    put(AddressField::Note, Lines(record.note, "the note", mapped.remarks));
    for (std::size_t i = 0; i < record.custom.size(); ++i)
        line(static_cast<std::uint8_t>(AddressField::Custom + i), record.custom[i]);
    constexpr std::uint32_t kLabels = 8;
    for (std::size_t i = 0; i < PalmAddressRecord::kPhones; ++i) {
        if (record.phones[i].empty()) continue;
        line(static_cast<std::uint8_t>(AddressField::Phone + i), record.phones[i]);
        if (record.labels[i] < kLabels)
            put(static_cast<std::uint8_t>(AddressField::Label + i), std::to_string(record.labels[i] + 1));
        else
            mapped.remarks.emplace_back("has a number with a label that is none: it has no label now");
        if (!contact.shownSlot) contact.shownSlot = i;
    }
    if (record.displayPhone >= 1 && record.displayPhone <= PalmAddressRecord::kPhones) {
        const std::size_t slot = record.displayPhone - 1;
        put(AddressField::DisplayPhone, std::to_string(slot));
        if (!record.phones[slot].empty()) contact.shownSlot = slot;
    }
    return mapped;
}

PalmMapped<notes::Memo> MapPalmMemo(const PalmMemoRecord& record, Day today) {
    PalmMapped<notes::Memo> mapped;
    mapped.record.subject = ToUtf8(FirstLine(record.memo));
    mapped.record.body = Lines(record.memo, "the memo", mapped.remarks);
    mapped.record.isPrivate = record.isPrivate;
    mapped.record.dateCreated = mapped.record.dateLastModified = {static_cast<double>(today.serial)};
    return mapped;
}

PalmMapped<tasks::Task> MapPalmTodo(const PalmTodoRecord& record, Day today) {
    PalmMapped<tasks::Task> mapped;
    tasks::Task& task = mapped.record;
    task.task = OneLine(record.description, "the description", mapped.remarks);
    task.note = Lines(record.note, "the note", mapped.remarks);
    task.hasNote = !task.note.empty();
    task.isPrivate = record.isPrivate;
    task.priority = PriorityOf(record.priority, mapped.remarks);
    task.hasDueDate = record.due != 0;
    if (task.hasDueDate) task.dueDate = std::min(PalmDay(record.due), kLastDay);
    if (task.hasDueDate && PalmDay(record.due) > kLastDay)
        mapped.remarks.push_back("is due on " + IsoDate(PalmDay(record.due)) + ": it is due on " +
                                 IsoDate(kLastDay) + " now");
    task.completed = record.completed;
    if (task.completed) task.completedDate = today;
    return mapped;
}

std::optional<PalmMapped<calendar::Appointment>> MapPalmDatebook(const PalmDatebookRecord& record,
                                                                 const LocaleFacts& locale,
                                                                 RandomSource& random) {
    const Day day = PalmDay(record.start);
    if (day > kLastDay) return std::nullopt;
    PalmMapped<calendar::Appointment> mapped;
    calendar::Appointment& appointment = mapped.record;
    appointment.subject = OneLine(record.text, "the text", mapped.remarks);
    appointment.notes = Lines(record.note, "the note", mapped.remarks);
    appointment.isPrivate = record.isPrivate;
    MapTimes(record, appointment, mapped.remarks);
    const PalmSeries series = MapPalmRepeat(record.repeat, day, locale, random);
    appointment.redoString = series.redoString;
    mapped.remarks.insert(mapped.remarks.end(), series.remarks.begin(), series.remarks.end());
    const std::int32_t later = (series.start.serial - day.serial) * calendar::kMinutesOfDay;
    appointment.start.count += later;
    appointment.end.count += later;
    MapReminder(record, appointment, mapped.remarks);
    return mapped;
}

}  // namespace bmr::interchange
