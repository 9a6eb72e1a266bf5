#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

#include "base/buckets.h"
#include "base/money.h"
#include "store/categories.h"
#include "store/fieldtable.h"
#include "store/section_store.h"
#include "store/severalrows.h"

/// The budgets without a screen: one record, three sections (17 to 19).
namespace bmr::budget {

/// The day of a transaction (fR3) lies in the second date table, 12 May 1909 to 14 April 2069.
inline constexpr DateKind kDateKind = DateKind::First;
inline constexpr Day kFirstDay{3420};
inline constexpr Day kLastDay{61832};
/// Whether the file can tell the day; it takes the nearest for any other.
inline bool IsInTable(Day day) {
    return day >= kFirstDay && day <= kLastDay;
}

/// `CDBW`, a number of two bits that stands in clear: bit 0 a debit, bit 1 private.
inline constexpr std::int32_t kDebit = 1;
inline constexpr std::int32_t kPrivate = 2;
inline constexpr std::size_t kClasses = 4;

/// fR1 of a `CDBW`: random but for its two low bits; and back, of any number.
std::int32_t PackCdbw(std::int32_t cdbw, RandomSource& random);
std::int32_t PackCdbwAt(std::int32_t cdbw, double fraction);
inline std::int32_t UnpackCdbw(std::int32_t fR1) {
    return fR1 & 3;
}

/// 0 to 9 in the order of the list. The screen calls 0 and what is none of them "Unfiled".
inline constexpr std::array<std::string_view, 10> kPaymentTypes = {
    "N.S.",    "Cash",     "Bank Transfer", "CC Visa", "CC Mastercard",
    "CC Amex", "CC Other", "Check",         "Prepaid", "Bankomat"};
std::string_view PaymentText(std::int32_t paymentType);

/// One transaction, as screen and editor hold it. The defaults are those of an empty new record.
struct Transaction {
    std::int32_t key = store::kNewRecord;
    Day date;
    Money amount;           ///< as it was typed, sign included; what it counts as lies in `cdbw`
    std::int32_t cdbw = 0;  ///< 0 to 3
    WipedText description;
    WipedText partner;
    WipedText note;
    bool isPrivate =
        false;  ///< of the payload: hides the record. Its bit in `cdbw` may differ in foreign rows
    std::uint8_t userNumber = 0;
    bool hasNote = false;
    std::int32_t paymentType = 0;  ///< 0 to 255; an unknown one is kept
    std::int32_t category = store::Category::Unfiled;
    /// False when the payload did not decode: a store then leaves it as it is in the file.
    bool readable = true;
    /// False when fT1 holds no amount, which then counts as 0; a store that has no other leaves it.
    bool amountRead = true;
    store::CarriedFields carried;

    bool IsDebit() const { return (cdbw & kDebit) != 0; }
};

inline constexpr std::array<store::Field<Transaction>, 5> kTransactionFields{{
    {{0, store::FieldTag::Text, "Description", store::Kind::Words}, store::At<&Transaction::description>},
    {{1, store::FieldTag::Text, "BizPartner", store::Kind::Words}, store::At<&Transaction::partner>},
    {{2, store::FieldTag::Memo, "Note", store::Kind::Words}, store::At<&Transaction::note>},
    {{3, store::FieldTag::Boolean, "Private", store::Kind::Private},
     store::At<&Transaction::isPrivate>,
     true},
    {{4, store::FieldTag::Byte, "UserNumber", store::Kind::Stamp}, store::At<&Transaction::userNumber>},
}};

/// The amount in a deciphered fT1, which may be nothing (0); nothing for another tag or length.
std::optional<Money> ReadAmount(std::string_view fT1Plain);

/// An empty new record of `today` under the category that the combo stands on.
Transaction ClearRecord(Day today, std::int32_t comboCategory);

/// The record of a row of `SELECT *`. Deciphers payload and amount.
Transaction ReadRecord(store::Session& session, const engine::Recordset& row);

/// The record of a key; nothing when the row is gone, belongs to another section, or could not be looked for,
/// which `error` tells apart (the engine's number, else 0).
std::optional<Transaction> FetchRecord(store::Session& session, std::uint8_t section, std::int32_t key,
                                       int* error = nullptr);
/// The record to edit: the selected one, or an empty new one when it is gone or nothing is selected.
Transaction RecordToEdit(store::Session& session, std::uint8_t section, std::optional<std::int32_t> key,
                         std::int32_t comboCategory, int* error = nullptr);

/// `writeRecord`: adds or edits the row, keeps `hasNote` by the note and sets the record's key.
/// `UpdateImpossible` when the key is now another section's.
store::StoreOutcome WriteRecord(store::Session& session, std::uint8_t section, Transaction& transaction);

/// Stores many new transactions in one transaction and one step to be taken back; sets their keys. 0 or the
/// engine's number with nothing stored.
[[nodiscard]] int AddRecords(store::Session& session, std::uint8_t section,
                             std::span<Transaction> transactions);

/// Overwrites every text.
void WipeRecord(Transaction& transaction);

/// The words of the question before a delete; `date` as the list shows it.
WipedText DeleteText(std::string_view item, std::string_view date);

/// What can be done with several: category, private flag (in payload and `CDBW`), delete.
store::SeveralOutcome MoveSeveral(store::Session& session, std::uint8_t section, store::Keys keys,
                                  std::int32_t category);
store::SeveralOutcome HideSeveral(store::Session& session, std::uint8_t section, store::Keys keys,
                                  bool isPrivate);
store::SeveralOutcome DeleteSeveral(store::Session& session, std::uint8_t section, store::Keys keys);

/// Adds a copy of each, on `date` where one is given, else on its own; `added` gets their keys. One that does
/// not decode is left out.
store::SeveralOutcome DuplicateSeveral(store::Session& session, std::uint8_t section, store::Keys keys,
                                       std::optional<Day> date, std::vector<std::int32_t>* added = nullptr);

/// Gives entries to another budget, keys and contents as they are; one transaction, one step of the budget
/// that they leave. A category goes by its name; where the other budget has none of that name, the entry is
/// unfiled there.
store::SeveralOutcome GiveToBudget(store::Session& session, std::uint8_t from, store::Keys keys,
                                   std::uint8_t to);

}  // namespace bmr::budget
