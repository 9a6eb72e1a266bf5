#include "address/birthdays.h"

#include <algorithm>
#include <tuple>

#include "address/addressbook.h"
#include "address/payloadsource.h"
#include "store/categories.h"
#include "store/record_get.h"

namespace bmr::address {
namespace {

Day InYear(std::chrono::year_month_day born, std::chrono::year year) {
    const std::chrono::year_month_day day(year, born.month(), born.day());
    return DayFrom(day.ok() ? day : std::chrono::year_month_day(year, born.month(), std::chrono::day(28)));
}

}  // namespace

Day NextBirthday(Day born, Day today) {
    const auto date = YearMonthDay(born);
    const auto year = YearMonthDay(today).year();
    const Day here = InYear(date, year);
    return here < today ? InYear(date, year + std::chrono::years(1)) : here;
}

Result<std::vector<UpcomingBirthday>> UpcomingBirthdays(store::Session& session, Day today,
                                                        std::int32_t days) {
    auto keys = ListRecords(session, store::Category::All);
    if (!keys) return keys.error();
    std::vector<UpcomingBirthday> coming;
    PayloadSource source(session, std::move(*keys));
    while (source.Next([&](const PayloadRow& row) {
        const Value value = store::GetPayloadField(row.payload, FieldNumber::Birthday);
        const auto* born = std::get_if<DateValue>(&value);
        if (!born || today < DayOf(*born)) return;
        const Day day = NextBirthday(DayOf(*born), today);
        if (day.serial - today.serial >= days) return;
        const int age =
            static_cast<int>(YearMonthDay(day).year()) - static_cast<int>(YearMonthDay(DayOf(*born)).year());
        coming.push_back({row.key, store::ReadWords(row.payload, FieldNumber::FileAs, row.name), day, age});
    })) {
    }
    if (source.error() != 0) return Error{source.error(), session.ProgramDb->LastError()};
    std::ranges::stable_sort(coming, {}, [](const UpcomingBirthday& each) { return each.day; });
    return coming;
}

}  // namespace bmr::address
