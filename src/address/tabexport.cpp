#include "address/tabexport.h"

#include <array>

#include "address/addressbook.h"
#include "address/exportfile.h"
#include "address/payloadsource.h"
#include "base/shortdate.h"
#include "store/record_get.h"
#include "store/words.h"

namespace bmr::address {
namespace {

constexpr std::string_view kLineEnd = "\r\n";

/// A field as text; words are the bytes that the payload has.
WipedText TextOfField(const store::RawField& field, const LocaleFacts& locale) {
    const Value value = store::DecodeRaw(field);
    if (const auto* flag = std::get_if<bool>(&value)) return std::string_view(*flag ? "True" : "False");
    if (const auto* number = std::get_if<std::int32_t>(&value)) return std::to_string(*number);
    if (const auto* date = std::get_if<DateValue>(&value))
        return ToBytes(FormatShortDate(DayOf(*date), locale.shortDate)).value_or(IsoDate(DayOf(*date)));
    return std::holds_alternative<Bytes>(value) ? field.value : std::string_view();
}

}  // namespace

Bytes TabHeader() {
    Bytes header;
    for (std::size_t number = 1; number < Record::kFields; ++number)
        header += std::string(kAddressFields[number].rule.name) + "\t";
    return header.append(kLineEnd);
}

void AppendTabLine(WipedText& out, std::string_view payload, const LocaleFacts& locale,
                   std::size_t& transliterated) {
    std::array<store::RawField, Record::kFields> fields{};
    std::array<std::string_view, Record::kFields> whole{};
    store::PayloadReader reader(payload);
    for (store::RawField field; reader.Next(field);) {
        if (field.number < Record::kFields) fields[field.number] = field;
        const std::size_t owner = std::size_t{field.number} - store::CompanionOf(0);
        if (owner < Record::kFields) whole[owner] = field.value;
    }
    for (std::size_t number = 1; number < Record::kFields; ++number) {
        const store::RawField& field = fields[number];
        if (!whole[number].empty() &&
            store::JudgeCompanion(whole[number], field.value) == store::CompanionState::Fits)
            ++transliterated;
        if (field.tag != 0) out += TextOfField(field, locale);
        out += "\t";
    }
    out += kLineEnd;
}

FileRequest TabFileRequest() {
    return {" Export Address",
            std::string("Tab-delimited Address file (") + kTabFileName + ")|" + kTabFileName, false};
}

Result<Exported> ExportAddressTabDelimited(store::Session& session, std::int32_t category,
                                           const std::filesystem::path& path, const LocaleFacts& locale) {
    auto keys = ListRecords(session, category);
    if (!keys) return keys.error();
    Exported exported;
    PayloadSource source(session, std::move(*keys), PayloadSource::Step::Large, PayloadSource::Names::Leave);
    WipedText part = TabHeader();
    bool first = true;
    const auto next = [&]() -> Result<std::string_view> {
        if (first) {
            first = false;
            return std::string_view(part);
        }
        part = WipedText();
        source.Next([&](const PayloadRow& row) {
            AppendTabLine(part, row.payload, locale, exported.transliterated);
            ++exported.records;
        });
        if (source.error() != 0) return Error{source.error(), session.ProgramDb->LastError()};
        return std::string_view(part);
    };
    const auto written = ReplaceFile(session, path, next);
    if (!written) return written.error();
    return exported;
}

std::string ExportedText(const Exported& exported, const std::filesystem::path& path) {
    std::string text = std::to_string(exported.records) +
                       (exported.records == 1 ? " address was" : " addresses were") + " written to " +
                       path.string() + ".";
    if (exported.transliterated > 0)
        text += " " + std::to_string(exported.transliterated) +
                (exported.transliterated == 1 ? " text has" : " texts have") +
                " characters that such a file cannot hold, and stand there in plain letters.";
    return text;
}

}  // namespace bmr::address
