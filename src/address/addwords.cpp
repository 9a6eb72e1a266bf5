#include "address/addwords.h"

#include <algorithm>
#include <charconv>

#include "address/addressbook.h"
#include "address/contact.h"
#include "address/fileas.h"
#include "base/languageus.h"

namespace bmr::address {
namespace {

std::optional<int> WholeNumber(std::string_view text) {
    int number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return number;
}

/// The label of a kind by its word or its number.
std::string SetLabel(std::string_view value, WipedText& label) {
    std::string words;
    for (const ComKindFacts& kind : ComKinds()) {
        if (CompareNoCase(value, kind.text) == 0 || value == LabelOf(kind.kind)) {
            label = LabelOf(kind.kind);
            return {};
        }
        words += (words.empty() ? "" : ", ") + std::string(kind.text);
    }
    return "\"" + std::string(value) + "\" is no kind of a number. The kinds are " + words + ".";
}

/// The fields that are no words and no dates.
bool SetDigits(Record& record, std::string_view name, std::string_view value, std::string& problem) {
    for (std::size_t slot = 0; slot < kComSlots; ++slot)
        if (kAddressFields[FieldNumber::ComLabel1 + slot].rule.name == name) {
            problem = SetLabel(value, record.ComLabel(slot));
            return true;
        }
    if (name == kAddressFields[FieldNumber::ComDisplay].rule.name) {
        const auto slot = WholeNumber(value);
        if (!slot || *slot < 0 || *slot >= static_cast<int>(kComSlots))
            problem = "ComDisplay is 0 to 8, for Com1 to Com9.";
        record[FieldNumber::ComDisplay] = value;
        return true;
    }
    if (name == kAddressFields[FieldNumber::Priority].rule.name) {
        const auto number = WholeNumber(value);
        if (!number || *number < 0 || *number > 255) problem = "Priority is 0 to 255.";
        record.priority = static_cast<std::uint8_t>(number.value_or(0));
        return true;
    }
    return false;
}

}  // namespace

Result<std::int32_t> AddFromWords(store::Session& session, const store::NewRecord& given) {
    Record record = ClearRecord(given.group);
    record.isPrivate = given.isPrivate;
    auto problem =
        store::SetFields(store::SlotsOf(record, kAddressFields), given,
                         [&record](std::string_view name, std::string_view value, std::string& why) {
                             return SetDigits(record, name, value, why);
                         });
    if (!problem.empty()) return Error{0, std::move(problem)};
    if (TrimBlanks(record.fileAs).empty()) record.fileAs = FileAsOptions(record).Standard();
    if (TrimBlanks(record.fileAs).empty()) return Error{kNameMissing, Msg(-kNameMissing)};
    if (const int error = WriteRecord(session, record)) return Error{error, {}};
    return record.key;
}

}  // namespace bmr::address
