#include "address/contact.h"

#include <algorithm>
#include <array>

#include "address/telephone.h"
#include "shell/helpers.h"
#include "store/record_get.h"
#include "store/words.h"

namespace bmr::address {
namespace {

constexpr std::array<ComKindFacts, 9> kKinds{{
    {ComKind::Work, "Work", " (W)"},
    {ComKind::Home, "Home", " (H)"},
    {ComKind::Mobile, "Mobile", " (M)"},
    {ComKind::Fax, "Fax", " (F)"},
    {ComKind::Email, "Email", ""},
    {ComKind::Website, "Website", ""},
    {ComKind::Main, "Main", " (main)"},
    {ComKind::Pager, "Pager", " (pager)"},
    {ComKind::Other, "Other", ""},
}};

constexpr std::array<ComKind, kComSlots> kDefaults{ComKind::Work,  ComKind::Home,    ComKind::Mobile,
                                                   ComKind::Main,  ComKind::Fax,     ComKind::Email,
                                                   ComKind::Email, ComKind::Website, ComKind::Other};

constexpr std::string_view kDigits = "0123456789";

/// The number of one digit; nothing for any other text.
std::optional<std::size_t> Digit(std::string_view text) {
    text = TrimBlanks(text);
    if (text.size() != 1 || text[0] < '0' || text[0] > '9') return std::nullopt;
    return static_cast<std::size_t>(text[0] - '0');
}

std::string_view SuffixOf(std::string_view label) {
    const ComKind kind = KindOfLabel(label);
    const auto* found = std::ranges::find(kKinds, kind, &ComKindFacts::kind);
    return found == kKinds.end() ? std::string_view() : found->suffix;
}

/// The slot that is shown of nine values: the one that `display` names if it holds something, else the first
/// that does.
template <class ValueOfSlot>
std::optional<std::size_t> ShownSlot(std::string_view display, const ValueOfSlot& value) {
    // None is the first; anything else that is no slot counts as an empty one.
    const auto named = display.empty() ? std::optional<std::size_t>(0) : Digit(display);
    if (named && *named < kComSlots && !value(*named).empty()) return named;
    for (std::size_t slot = 0; slot < kComSlots; ++slot)
        if (!value(slot).empty()) return slot;
    return std::nullopt;
}

std::optional<std::size_t> ShownSlot(const Record& record) {
    return ShownSlot(record[FieldNumber::ComDisplay],
                     [&record](std::size_t slot) { return std::string_view(record.Com(slot)); });
}

/// The text of fT2 from that of the value; `whole`: a companion holds more of it than these letters.
Bytes WithSuffix(std::string_view told, bool whole, std::string_view label) {
    WipedText text = Joined(whole ? TrimBlanks(told) : told, SuffixOf(label), whole ? " " : "");
    return text;
}

}  // namespace

std::span<const ComKindFacts> ComKinds() {
    return kKinds;
}

ComKind KindOfLabel(std::string_view label) {
    return static_cast<ComKind>(Digit(label).value_or(0));
}

std::string_view LabelOf(ComKind kind) {
    if (kind == ComKind::None) return {};
    return kDigits.substr(static_cast<std::size_t>(kind), 1);
}

ComKind DefaultKind(std::size_t slot) {
    return kDefaults[slot];
}

ComAction ActionOf(ComKind kind) {
    switch (kind) {
        case ComKind::Email:
            return ComAction::Mail;
        case ComKind::Website:
            return ComAction::Web;
        case ComKind::Other:
        case ComKind::None:
            return ComAction::None;
        default:
            return ComAction::Dial;
    }
}

ComAction ActionOf(ComKind kind, std::string_view value) {
    const ComAction action = ActionOf(kind);
    if (action != ComAction::None) return action;
    if (LooksLikeNumber(value)) return ComAction::Dial;
    if (value.starts_with("http://") || value.starts_with("https://") || value.starts_with("www."))
        return ComAction::Web;
    std::string address(value);
    return shell::ValidEmail(address) ? ComAction::Mail : ComAction::None;
}

std::optional<std::size_t> DisplayedSlot(const Record& record) {
    return ShownSlot(record);
}

void MakeContactGood(Record& record) {
    const auto shown = ShownSlot(record);
    record[FieldNumber::ComDisplay] = shown ? kDigits.substr(*shown, 1) : std::string_view();
    for (std::size_t slot = 0; slot < kComSlots; ++slot)
        if (record.Com(slot).empty()) record.ComLabel(slot) = WipedText();
}

WipedText AddressContactText(const Record& record) {
    const auto slot = ShownSlot(record);
    if (!slot) return {};
    return Joined(record.Com(*slot), SuffixOf(record.ComLabel(*slot)));
}

Bytes ContactColumn(const Record& record, RandomSource& random) {
    const auto slot = ShownSlot(record);
    if (!slot) return {};
    const auto number = static_cast<std::uint8_t>(FieldNumber::Com1 + *slot);
    // As a column the codec gives the letters that the file holds already.
    const store::FieldSlot column{{number, store::FieldTag::Text, "", store::Kind::ColumnName},
                                  kAddressFields[number].place(const_cast<Record&>(record))};
    const auto encoded = store::EncodeSlots({&column, 1}, record.carried, store::Blanks::Store, 0, random);
    const bool whole = !IsBlank(store::GetPayloadField(encoded.payload, store::CompanionOf(number)));
    return WithSuffix(encoded.column, whole, record.ComLabel(*slot));
}

Bytes ContactOfPayload(std::string_view payload) {
    std::array<std::string_view, Record::kFields> told{};
    std::array<std::string_view, kComSlots> whole{};
    store::PayloadReader reader(payload);
    for (store::RawField field; reader.Next(field);) {
        if (field.number >= FieldNumber::Com1 && field.number <= FieldNumber::ComDisplay)
            told[field.number] = field.value;
        const auto slot = static_cast<std::size_t>(field.number) - store::CompanionOf(FieldNumber::Com1);
        if (slot < kComSlots) whole[slot] = field.value;
    }
    const auto valueOf = [&told](std::size_t slot) { return told[FieldNumber::Com1 + slot]; };
    const auto shown = ShownSlot(told[FieldNumber::ComDisplay], valueOf);
    if (!shown) return {};
    const std::string_view value = valueOf(*shown);
    const bool fits = store::JudgeCompanion(whole[*shown], value) == store::CompanionState::Fits;
    return WithSuffix(value, fits, told[FieldNumber::ComLabel1 + *shown]);
}

}  // namespace bmr::address
