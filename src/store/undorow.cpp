#include "store/undorow.h"

#include <functional>

#include "store/bucketorder.h"
#include "store/sections.h"

namespace bmr::store {
namespace {

constexpr std::array<const char*, RowImage::kNumbers> kNumberColumns{
    "fSec", "fSub", "fR1", "fR2", "fR3", "fR4", "fR5", "fF1", "fF2", "fF3", "fG1", "AE"};
constexpr std::array<const char*, RowImage::kTexts> kTextColumns{"fEtx", "fT1", "fT2", "fT3"};

// Places in these lists.
constexpr std::size_t kSec = 0;
constexpr std::size_t kSub = 1;
constexpr std::size_t kR1 = 2;
constexpr std::size_t kR2 = 3;
constexpr std::size_t kR3 = 4;
constexpr std::size_t kGroup = 10;  ///< fG1
constexpr std::size_t kMarks = 11;  ///< AE
constexpr std::size_t kPayload = 0;
constexpr std::size_t kName = 1;

std::optional<std::int32_t> NumberIn(const Value& value) {
    if (std::holds_alternative<Null>(value) || std::holds_alternative<Empty>(value)) return std::nullopt;
    return NumberOf(value);
}

std::optional<Bytes> TextIn(Value value) {
    auto* text = std::get_if<Bytes>(&value);
    return text ? std::optional(std::move(*text)) : std::nullopt;
}

/// Whose neighbours a row stands among, by fR1. Elsewhere that is a number of the record itself, as are those
/// of a list of categories.
enum class Placing : std::uint8_t { None, Alphabet, Day };

Placing PlacingOf(std::uint8_t section, std::int32_t fSec) {
    const SectionFacts* facts = FactsOf(section);
    if (fSec != section || !facts) return Placing::None;
    if (facts->order) return Placing::Alphabet;
    return facts->days ? Placing::Day : Placing::None;
}

/// Whether a number belongs to the record itself, and so tells whether it was changed.
bool IsOwn(std::size_t column, Placing placing) {
    switch (placing) {
        case Placing::None:
            return column >= kR1;
        case Placing::Alphabet:
            return column >= kR3;
        case Placing::Day:
            return column >= kSub && column != kR1;
    }
    return true;
}

void Mix(std::uint64_t& stamp, std::uint64_t part) {
    stamp = (stamp ^ part) * 0x9E3779B97F4A7C15U;
    stamp ^= stamp >> 29;
}

template <class Number, class Text>
RowMark MarkFrom(std::uint8_t section, const Number& number, const Text& text) {
    RowMark mark;
    const Placing placing = PlacingOf(section, number(kSec).value_or(0));
    const std::optional<Bytes>& payload = text(kPayload);
    mark.stamp = payload ? std::hash<std::string_view>{}(*payload) : 1;
    for (std::size_t i = kSub; i < kMarks; ++i) {
        if (!IsOwn(i, placing)) continue;
        const std::optional<std::int32_t> value = number(i);
        Mix(mark.stamp, value ? std::uint64_t{static_cast<std::uint32_t>(*value)} + 2 : 1);
    }
    if (placing == Placing::None) return mark;
    mark.fR1 = number(kR1).value_or(0);
    if (placing == Placing::Day) {
        mark.point = number(kR3).value_or(0);
        mark.stretch = {section, DayOfPoint(mark.point)};
        return mark;
    }
    mark.point = number(kR2).value_or(0);
    // A record without a name may have no place at all.
    if (mark.fR1 != 0 || mark.point != 0) mark.stretch = {section, BucketOfKey(mark.point)};
    return mark;
}

}  // namespace

std::unique_ptr<RowImage> ImageOf(const engine::Recordset& row) {
    auto image = std::make_unique<RowImage>();
    image->fPK = NumberOf(row.Field("fPK"));
    for (std::size_t i = 0; i < RowImage::kNumbers; ++i)
        image->numbers[i] = NumberIn(row.Field(kNumberColumns[i]));
    for (std::size_t i = 0; i < RowImage::kTexts; ++i)
        image->texts[i] = TextIn(row.Field(kTextColumns[i]));
    return image;
}

std::int32_t SectionOf(const RowImage& image) {
    return image.numbers[kSec].value_or(0);
}

std::optional<std::int32_t> CategoryOf(const RowImage& image) {
    return image.numbers[kGroup];
}

std::string_view PayloadOf(const RowImage& image) {
    return image.texts[kPayload] ? std::string_view(*image.texts[kPayload]) : std::string_view();
}

std::string_view NameIn(const RowImage& image) {
    return image.texts[kName] ? std::string_view(*image.texts[kName]) : std::string_view();
}

RowMark MarkOf(const engine::Recordset& row, std::uint8_t section) {
    return MarkFrom(
        section, [&row](std::size_t i) { return NumberIn(row.Field(kNumberColumns[i])); },
        [&row](std::size_t i) { return TextIn(row.Field(kTextColumns[i])); });
}

RowMark MarkOf(const RowImage& image, std::uint8_t section) {
    return MarkFrom(
        section, [&image](std::size_t i) { return image.numbers[i]; },
        [&image](std::size_t i) -> const std::optional<Bytes>& { return image.texts[i]; });
}

std::optional<RowPlace> PlaceOf(const RowImage& image, std::uint8_t section) {
    const RowMark mark = MarkOf(image, section);
    if (!mark.stretch) return std::nullopt;
    return RowPlace{*mark.stretch, mark.fR1, image.numbers[kMarks]};
}

Result<std::unique_ptr<RowImage>> FindImage(engine::Recordset& table, std::int32_t fPK) {
    if (const int error = table.FindFirst("fPK=?", {fPK})) return Error{error, {}};
    return table.NoMatch() ? nullptr : ImageOf(table);
}

void SetImage(engine::Recordset& row, const RowImage& image) {
    for (std::size_t i = 0; i < RowImage::kNumbers; ++i)
        row.SetField(kNumberColumns[i], image.numbers[i] ? Value(*image.numbers[i]) : Value(Null{}));
    for (std::size_t i = 0; i < RowImage::kTexts; ++i)
        row.SetField(kTextColumns[i], image.texts[i] ? Value(*image.texts[i]) : Value(Null{}));
}

}  // namespace bmr::store
