#include "diary/rowcheck.h"

#include <array>
#include <map>
#include <optional>

#include "crypto/conversion.h"
#include "diary/page.h"
#include "store/record_get.h"

namespace bmr::diary {
namespace {

/// The days that a point may stand for: its own, and where it lies on the edge of its bucket the one beside,
/// from which such a point may be drawn, and is.
std::array<Day, 2> DaysOf(std::int32_t point) {
    const Day day = DayOfPage(point);
    const SpreadRange bucket = PackDateAt(day, kDateKind, 0.5);
    Day beside = day;
    if (point >= 0 && point == bucket.low) --beside.serial;
    if (point < 0 && point == bucket.high) ++beside.serial;
    return {day, beside};
}

bool MayBeOneDay(std::int32_t a, std::int32_t b) {
    for (const Day day : DaysOf(a))
        for (const Day other : DaysOf(b))
            if (day == other) return true;
    return false;
}

/// The point in field 1 of a payload, or in a column that is such a value alone.
std::optional<std::int32_t> PointIn(std::uint8_t tag, std::string_view value) {
    if (tag != static_cast<std::uint8_t>(store::FieldTag::Date) || value.size() != 4) return std::nullopt;
    return conversion::UnpackInteger(value);
}

std::string FaultOf(std::int32_t fR2, std::string_view payload, std::string_view column) {
    std::optional<std::int32_t> told;
    store::PayloadReader reader(payload);
    for (store::RawField field; reader.Next(field);)
        if (field.number == 1) told = PointIn(field.tag, field.value);
    if (!told) return {};
    if (!MayBeOneDay(fR2, *told)) return "fR2 does not tell the day of the page";
    const auto inColumn = column.empty()
                              ? std::nullopt
                              : PointIn(static_cast<std::uint8_t>(ByteAt(column, 0)), column.substr(1));
    if (!inColumn || !MayBeOneDay(*inColumn, *told)) return "fT1 does not tell the day of the page";
    return {};
}

}  // namespace

Result<std::vector<RowFault>> CheckRows(store::Session& session) {
    auto cursor = session.ProgramDb->Select("SELECT fPK, fR2, fEtx, fT1 FROM tt WHERE fSec=13 ORDER BY fPK");
    if (!cursor) return cursor.error();
    std::vector<RowFault> faults;
    std::map<Day, int> rows;
    while (cursor->Next()) {
        const Day day = DayOfPage(cursor->Int(1));
        ++rows[day];
        const Secret payload(cry::DecipherField(session.cipher, cursor->Bytes(2)));
        std::string fault =
            FaultOf(cursor->Int(1), payload.view(), cry::DecipherField(session.cipher, cursor->Bytes(3)));
        if (!fault.empty()) faults.push_back({cursor->Int(0), std::move(fault)});
    }
    if (cursor->error() != 0) return Error{cursor->error(), session.ProgramDb->LastError()};
    for (const auto& [day, count] : rows) {
        if (count < 2) continue;
        const auto keys = KeysOfDay(session, day);
        if (!keys) return keys.error();
        for (std::size_t i = 0; i + 1 < keys->size(); ++i)
            faults.push_back({(*keys)[i], "the day has a later page too, which is the one that is shown"});
    }
    return faults;
}

}  // namespace bmr::diary
