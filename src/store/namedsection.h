#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "store/fieldtable.h"
#include "store/namedorder.h"
#include "store/section_store.h"
#include "store/session.h"

namespace bmr::store {

/// A section in alphabetical order, with its record, which has the members `key`, `readable` and `carried`.
template <class Record, std::size_t Count>
struct NamedSection : NamedOrder {
    const std::array<Field<Record>, Count>& fields;
    std::int32_t Record::*group;
    FieldSet (*masked)(const Record&) = nullptr;  ///< the fields of a record that hold secrets; none: none

    EncodedRecord Encode(const Record& record, RandomSource& random) const {
        return EncodeFields(record, fields, blanks, random, masked ? masked(record) : 0);
    }
};

/// The user and the day of a store: what every record of these sections keeps of it.
struct Touched {
    std::uint8_t userNumber = 0;
    DateValue day;  ///< a whole day
};
/// `given` is the day that an import brings, 0 for today.
Touched TouchOf(const Session& session, DateValue given = {});

/// Adds the record of `key` or edits it, and sets `key`. Place and name are written only where the name, or
/// its mark, is another than in the file. One transaction; 0, `UpdateImpossible` when the key belongs to
/// another section (nothing written), or the engine's number.
[[nodiscard]] int StoreEncoded(Session& session, const NamedOrder& order, std::int32_t& key,
                               const EncodedRecord& record, std::int32_t group);

/// Many new records at once; each is asked for by its number, once or more.
struct NamedRecords {
    std::size_t count = 0;
    std::function<Bytes(std::size_t index)> column;
    std::function<Bytes(std::size_t index)> payload;
    std::function<std::int32_t(std::size_t index)> group;
    std::function<void(std::size_t index, std::int32_t fPK)> added;
};

/// Stores them in one transaction, their places worked out once and their texts enciphered many at a time.
/// 0, or the engine's number with nothing stored.
[[nodiscard]] int AddEncoded(Session& session, const NamedOrder& order, const NamedRecords& records);

/// The keys in alphabetical order of the rows that meet `clauses` (" And fG1 = 3", or ""), without private
/// ones while `ShowPrivate` is false, else with no payload opened. With `search` (UTF-8) only records whose
/// name holds it in any case; that deciphers every name.
Result<std::vector<std::int32_t>> ListNamed(Session& session, const NamedOrder& order,
                                            const std::string& clauses, std::string_view search = {});

/// The statement by which such a list is read: these columns in alphabetical order. Only plain columns, or
/// the engine carries every text through its sort.
std::string NamedStatement(std::uint8_t section, const std::string& columns, const std::string& clauses);

/// The record of a row, or as much of it as decodes.
template <class Record, std::size_t Count>
Record ReadNamed(Session& session, const NamedSection<Record, Count>& section, const engine::Recordset& row) {
    Record record;
    record.key = NumberOf(row.Field("fPK"), kNewRecord);
    record.*section.group = NumberOf(row.Field("fG1"));
    record.readable =
        DecodeFields(record, cry::DecipherField(session.cipher, TextOf(row.Field("fEtx"))), section.fields);
    return record;
}

/// The record of a key; nothing when it is gone, belongs to another section, or could not be looked for,
/// which `error` tells apart (the engine's number, else 0).
template <class Record, std::size_t Count>
std::optional<Record> FetchNamed(Session& session, const NamedSection<Record, Count>& section,
                                 std::int32_t key, int* error = nullptr) {
    const auto row = FetchRow(session, section.section, key);
    if (error) *error = row ? 0 : row.error().number;
    if (!row || !*row) return std::nullopt;
    return ReadNamed(session, section, **row);
}

/// `StoreEncoded` of a record, whose key is set.
template <class Record, std::size_t Count>
[[nodiscard]] int StoreNamed(Session& session, const NamedSection<Record, Count>& section, Record& record) {
    const EncodedRecord encoded = section.Encode(record, session.ports.random);
    return StoreEncoded(session, section, record.key, encoded, record.*section.group);
}

/// `AddEncoded` of many records, whose keys are set.
template <class Record, std::size_t Count>
[[nodiscard]] int AddNamed(Session& session, const NamedSection<Record, Count>& section,
                           std::vector<Record>& records) {
    RandomSource& random = session.ports.random;
    return AddEncoded(
        session, section,
        {.count = records.size(),
         .column = [&](std::size_t i) { return EncodeColumn(records[i], section.fields, random); },
         .payload = [&](std::size_t i) { return std::move(section.Encode(records[i], random).payload); },
         .group = [&](std::size_t i) { return records[i].*section.group; },
         .added = [&](std::size_t i, std::int32_t fPK) { records[i].key = fPK; }});
}

}  // namespace bmr::store
