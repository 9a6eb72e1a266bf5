#include "store/fieldtable.h"

#include <algorithm>
#include <optional>

#include "crypto/cry.h"
#include "store/record_get.h"
#include "store/words.h"

namespace bmr::store {
namespace {

using Companions = std::list<std::pair<std::uint8_t, WipedText>>;

const CarriedFields::Kept* KeptWords(const CarriedFields& carried, std::uint8_t number,
                                     std::string_view text) {
    for (const auto& kept : carried.words)
        if (kept.number == number && TrueText(kept.companion) == text) return &kept;
    return nullptr;
}

/// A text as it stands in the file already while nobody changed it, else told anew.
ToldWords Tell(const CarriedFields& carried, std::uint8_t number, const Words& text, Masked masked) {
    const auto* kept = KeptWords(carried, number, text);
    if (kept) return {kept->told, kept->companion};
    ToldWords words = TellWords(text, masked);
    // The same text once more, only typed in another form.
    if (!words.companion.empty())
        if ((kept = KeptWords(carried, number, TrueText(words.companion))))
            return {kept->told, kept->companion};
    return words;
}

/// The value of a member that is no text; nothing for no date and a number that is missing.
Value ValueOf(const Member& member) {
    if (auto* const* flag = std::get_if<bool*>(&member)) return **flag;
    if (auto* const* number = std::get_if<std::uint8_t*>(&member)) return std::int32_t{**number};
    if (auto* const* number = std::get_if<std::int32_t*>(&member)) return **number;
    if (auto* const* number = std::get_if<std::optional<std::uint8_t>*>(&member))
        if (**number) return std::int32_t{***number};
    if (auto* const* date = std::get_if<DateValue*>(&member))
        if ((*date)->serial != 0) return **date;
    return Empty{};
}

void Clear(const FieldSlot& slot) {
    if (auto* const* text = std::get_if<std::string*>(&slot.member)) cry::WipeString(**text);
    if (auto* const* flag = std::get_if<bool*>(&slot.member)) **flag = slot.rule.kind == Kind::Private;
    if (auto* const* number = std::get_if<std::uint8_t*>(&slot.member)) **number = 0;
    if (auto* const* number = std::get_if<std::int32_t*>(&slot.member)) **number = 0;
    if (auto* const* number = std::get_if<std::optional<std::uint8_t>*>(&slot.member)) (*number)->reset();
    if (auto* const* date = std::get_if<DateValue*>(&slot.member)) **date = {};
}

bool IsTextTag(std::uint8_t tag) {
    return tag == static_cast<std::uint8_t>(FieldTag::Text) ||
           tag == static_cast<std::uint8_t>(FieldTag::Memo);
}

/// Sets a member that is no word field. False for a value of another type.
bool Take(const RawField& field, const Member& member) {
    if (auto* const* text = std::get_if<std::string*>(&member)) {
        if (!IsTextTag(field.tag)) return false;
        **text = field.value;
        return true;
    }
    const Value value = DecodeRaw(field);
    if (auto* const* flag = std::get_if<bool*>(&member)) {
        const auto* set = std::get_if<bool>(&value);
        if (set) **flag = *set;
        return set != nullptr;
    }
    if (auto* const* date = std::get_if<DateValue*>(&member)) {
        const auto* day = std::get_if<DateValue>(&value);
        **date = day ? *day : DateValue{};
        return day != nullptr;
    }
    const auto* number = std::get_if<std::int32_t>(&value);
    if (auto* const* small = std::get_if<std::uint8_t*>(&member))
        **small = static_cast<std::uint8_t>(number ? *number : 0);
    if (auto* const* whole = std::get_if<std::int32_t*>(&member)) **whole = number ? *number : 0;
    if (auto* const* given = std::get_if<std::optional<std::uint8_t>*>(&member); given && number)
        **given = static_cast<std::uint8_t>(*number);
    return number != nullptr;
}

/// The two fields of a text while a payload is read.
struct Pair {
    std::string_view told;
    std::string_view companion;
};

void TakeWords(const FieldSlot& slot, const Pair& pair, CarriedFields& carried) {
    Words& text = *std::get<std::string*>(slot.member);
    if (!pair.companion.empty() && JudgeCompanion(pair.companion, pair.told) == CompanionState::Fits) {
        text = TrueText(pair.companion);
        carried.words.push_back({slot.rule.number, pair.told, pair.companion});
    } else {
        text = ToUtf8(pair.told);
    }
}

}  // namespace

EncodedRecord EncodeSlots(std::span<const FieldSlot> slots, const CarriedFields& carried, Blanks blanks,
                          FieldSet masked, RandomSource& random) {
    EncodedRecord encoded;
    Companions companions;
    auto unknown = carried.unknown.begin();
    const auto putUnknown = [&](unsigned before) {
        for (; unknown != carried.unknown.end() && unknown->number < before; ++unknown)
            AppendRaw(encoded.payload, unknown->field);
    };
    for (const FieldSlot& slot : slots) {
        const FieldRule& rule = slot.rule;
        putUnknown(rule.number);
        auto* const* text = std::get_if<std::string*>(&slot.member);
        if (!text) {
            const Value value = ValueOf(slot.member);
            if (blanks == Blanks::Store || !IsBlank(value))
                AppendField(encoded.payload, rule.number, value, rule.tag, random);
        } else if (!rule.IsWords()) {
            if (blanks == Blanks::Store || !(*text)->empty())
                AppendText(encoded.payload, rule.number, **text, rule.tag);
        } else {
            const Masked mask = (masked & SetOf(rule.number)) != 0 ? Masked::Yes : Masked::No;
            ToldWords words = Tell(carried, rule.number, **text, mask);
            if (rule.kind != Kind::ColumnName && (blanks == Blanks::Store || !words.told.empty()))
                AppendText(encoded.payload, rule.number, words.told, rule.tag);
            if (rule.IsColumn()) encoded.column = ColumnText(words);
            if (!words.companion.empty())
                companions.emplace_back(CompanionOf(rule.number), std::move(words.companion));
        }
    }
    for (auto& [number, value] : companions) {
        putUnknown(number);
        AppendText(encoded.payload, number, value, FieldTag::Memo);
    }
    putUnknown(256);
    return encoded;
}

bool DecodeSlots(std::span<const FieldSlot> slots, CarriedFields& carried, std::string_view payload,
                 std::string_view column) {
    carried.Clear();
    for (const FieldSlot& slot : slots)
        Clear(slot);
    std::array<Pair, 128> words{};
    std::array<bool, 128> found{};
    const auto slotOf = [&slots](unsigned number) {
        // Tables list their fields in the order of their numbers, mostly without a gap.
        if (number < slots.size() && slots[number].rule.number == number) return slots.begin() + number;
        return std::find_if(slots.begin(), slots.end(),
                            [number](const FieldSlot& slot) { return slot.rule.number == number; });
    };
    PayloadReader reader(payload);
    for (RawField field; reader.Next(field);) {
        const auto slot = slotOf(field.number);
        const bool told = slot != slots.end() && slot->rule.kind != Kind::ColumnName;
        if (told && slot->rule.IsWords()) {
            if (!IsTextTag(field.tag)) continue;
            words[field.number].told = field.value;
            found[field.number] = true;
        } else if (told) {
            found[field.number] = Take(field, slot->member);
        } else if (const auto owner = slotOf(field.number ^ 128U);
                   field.number >= 128 && owner != slots.end() && owner->rule.IsWords()) {
            if (field.tag == static_cast<std::uint8_t>(FieldTag::Memo))
                words[owner->rule.number].companion = field.value;
        } else {
            carried.unknown.push_back({field.number, field.whole});
        }
    }
    carried.unknown.sort([](const auto& a, const auto& b) { return a.number < b.number; });
    bool whole = reader.Clean();
    for (const FieldSlot& slot : slots) {
        if (slot.rule.kind == Kind::ColumnName) words[slot.rule.number].told = TrimBlanks(column);
        if (slot.rule.IsWords()) TakeWords(slot, words[slot.rule.number], carried);
        whole = whole && (!slot.required || found[slot.rule.number]);
    }
    return whole;
}

WipedText ReadWords(std::string_view payload, std::uint8_t number, std::string_view column) {
    Pair pair{TrimBlanks(column), {}};
    PayloadReader reader(payload);
    for (RawField field; reader.Next(field);) {
        if (field.number == number && IsTextTag(field.tag)) pair.told = field.value;
        if (field.number == CompanionOf(number) && field.tag == static_cast<std::uint8_t>(FieldTag::Memo))
            pair.companion = field.value;
    }
    if (!pair.companion.empty() && JudgeCompanion(pair.companion, pair.told) == CompanionState::Fits)
        return TrueText(pair.companion);
    return ToUtf8(pair.told);
}

void WipeSlots(std::span<const FieldSlot> slots, CarriedFields& carried) {
    for (const FieldSlot& slot : slots)
        if (auto* const* text = std::get_if<std::string*>(&slot.member)) cry::WipeString(**text);
    carried.Clear();
}

}  // namespace bmr::store
