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
constexpr std::size_t kR1 = 2;
constexpr std::size_t kR2 = 3;
constexpr std::size_t kFirstOwn = 4;  ///< fR3; from here to fG1 a row's own numbers
constexpr std::size_t kGroup = 10;    ///< fG1
constexpr std::size_t kMarks = 11;    ///< AE
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

/// Whether rows of this section have their place among neighbours in fR1 and fR2. Elsewhere these are numbers
/// of the record itself, as are those of a list of categories.
bool IsPlaced(std::uint8_t section, std::int32_t fSec) {
    const SectionFacts* facts = FactsOf(section);
    return fSec == section && facts && facts->order;
}

void Mix(std::uint64_t& stamp, std::uint64_t part) {
    stamp = (stamp ^ part) * 0x9E3779B97F4A7C15U;
    stamp ^= stamp >> 29;
}

template <class Number, class Text>
RowMark MarkFrom(std::uint8_t section, const Number& number, const Text& text) {
    RowMark mark;
    const bool placed = IsPlaced(section, number(kSec).value_or(0));
    const std::optional<Bytes>& payload = text(kPayload);
    mark.stamp = payload ? std::hash<std::string_view>{}(*payload) : 1;
    for (std::size_t i = placed ? kFirstOwn : kR1; i < kMarks; ++i) {
        const std::optional<std::int32_t> value = number(i);
        Mix(mark.stamp, value ? std::uint64_t{static_cast<std::uint32_t>(*value)} + 2 : 1);
    }
    if (!placed) return mark;
    mark.fR1 = number(kR1).value_or(0);
    mark.fR2 = number(kR2).value_or(0);
    // A record without a name may have no place at all.
    if (mark.fR1 != 0 || mark.fR2 != 0) mark.stretch = {section, BucketOfKey(mark.fR2)};
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
