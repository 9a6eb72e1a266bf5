#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "calendar/appointment.h"
#include "interchange/palmfile.h"
#include "notes/memo.h"
#include "tasks/task.h"

namespace bmr::interchange {

/// A record of ours made of one of a file, and what is not as it was there, in plain English. The category is
/// the caller's business.
template <class Record>
struct PalmMapped {
    Record record;
    std::vector<std::string> remarks;
};

/// A contact by the numbers of the address book's fields; texts in UTF-8, those that are empty left out.
struct PalmContact {
    std::map<std::uint8_t, WipedText> texts;
    bool isPrivate = false;
    std::int32_t category = 0;
    /// The slot (0 to 4) by whose contents the contact shows without a name or firm.
    std::optional<std::size_t> shownSlot;
};

PalmMapped<PalmContact> MapPalmAddress(const PalmAddressRecord& record);
/// The subject is the first line.
PalmMapped<notes::Memo> MapPalmMemo(const PalmMemoRecord& record, Day today);
/// A completed task was completed today.
PalmMapped<tasks::Task> MapPalmTodo(const PalmTodoRecord& record, Day today);
/// Nothing for one that begins behind the last day of our dates.
std::optional<PalmMapped<calendar::Appointment>> MapPalmDatebook(const PalmDatebookRecord& record,
                                                                 const LocaleFacts& locale,
                                                                 RandomSource& random);

}  // namespace bmr::interchange
