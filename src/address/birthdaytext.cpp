#include "address/birthdaytext.h"

#include "base/buckets.h"
#include "base/bytes.h"
#include "base/shortdate.h"

namespace bmr::address {

BirthdayText ReadBirthday(std::string_view typed, const LocaleFacts& locale) {
    const std::string text(TrimBlanks(typed));
    if (text.empty()) return {};
    const auto day = ParseShortDate(text, locale.shortDate);
    if (!day)
        return {
            {},
            "This is no date. Write it like " +
                FormatShortDate(DayFrom({std::chrono::year(1961), std::chrono::May, std::chrono::day(17)}),
                                locale.shortDate) +
                ".",
            false};
    // A payload holds the days of its table and takes the next one for any other.
    if (UnpackDate(PackDateAt(*day, DateKind::Start, 0.5).value, DateKind::Start) != *day)
        return {{}, "A birthday is a day from 15 October 1903 to 14 April 2069.", true};
    return {{static_cast<double>(day->serial)}, {}, false};
}

}  // namespace bmr::address
