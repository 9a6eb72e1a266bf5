#include "budget/transaction.h"

#include <algorithm>
#include <cmath>
#include <map>

#include "base/languageus.h"
#include "store/record_get.h"
#include "store/undorow.h"
#include "store/undostep.h"

namespace bmr::budget {
namespace {

using store::RowChange;
using store::Section;
using store::Session;

constexpr double kTop = 2147483644;
constexpr std::size_t kAmountSize = 9;  ///< the tag and eight bytes

Bytes AmountBytes(Session& session, const Transaction& transaction) {
    return store::EncodeField(transaction.amount, store::FieldTag::Currency, session.ports.random);
}

bool WritesAmount(const Transaction& transaction, bool added) {
    return added || transaction.amountRead || transaction.amount != Money{};
}

int FillTexts(Session& session, Transaction& transaction, engine::Recordset& row, bool added) {
    transaction.userNumber = session.user.UserNumber;
    const auto record =
        store::EncodeFields(transaction, kTransactionFields, store::Blanks::Store, session.ports.random);
    const WipedText amount = AmountBytes(session, transaction);
    const std::string_view texts[] = {record.payload, amount};
    const auto ciphered = cry::EncipherBatch(session.cipher, texts);
    if (ciphered.front().empty()) return engine::EngineNumber::Failed;
    if (transaction.readable || added) row.SetField("fEtx", ciphered.front());
    if (WritesAmount(transaction, added)) row.SetField("fT1", ciphered.back());
    return 0;
}

/// All columns but the two texts.
void FillNumbers(Session& session, const Transaction& transaction, engine::Recordset& row) {
    RandomSource& random = session.ports.random;
    row.SetField("fSub", transaction.paymentType);
    row.SetField("fG1", transaction.category);
    row.SetField("fR1", PackCdbw(transaction.cdbw, random));
    // A point on the edge of its bucket, which may be drawn, would read as the next day.
    const SpreadRange day = PackDate(transaction.date, kDateKind, random);
    row.SetField("fR3", std::clamp(day.value, day.low, day.high));
    row.SetField("fF1", false);
    row.SetField("fF2", transaction.hasNote);
    store::FillColumns(row, {.t2 = true, .t3 = true, .r2 = true, .r4 = true}, random);
}

template <std::uint8_t Code>
std::optional<Transaction> Fetch(Session& session, std::int32_t key, int* error) {
    return FetchRecord(session, Code, key, error);
}
template <std::uint8_t Code>
int Write(Session& session, Transaction& transaction) {
    return WriteRecord(session, Code, transaction).error;
}
template <std::uint8_t Code>
constexpr store::RecordVerbs<Transaction> kVerbs{Code, Fetch<Code>, Write<Code>, WipeRecord, true};

const store::RecordVerbs<Transaction>& VerbsOf(std::uint8_t section) {
    if (section == Section::Budget1) return kVerbs<Section::Budget1>;
    return section == Section::Budget2 ? kVerbs<Section::Budget2> : kVerbs<Section::Budget3>;
}

/// Payload and amount of some transactions, one behind the other.
std::vector<Bytes> Encipher(Session& session, std::span<Transaction> transactions) {
    std::vector<WipedText> texts;
    texts.reserve(2 * transactions.size());
    for (Transaction& transaction : transactions) {
        transaction.userNumber = session.user.UserNumber;
        transaction.hasNote = !transaction.note.empty();
        texts.push_back(
            store::EncodeFields(transaction, kTransactionFields, store::Blanks::Store, session.ports.random)
                .payload);
        texts.emplace_back(AmountBytes(session, transaction));
    }
    const std::vector<std::string_view> plain(texts.begin(), texts.end());
    return cry::EncipherBatch(session.cipher, plain);
}

/// What a category of one budget is called in another.
std::map<std::int32_t, std::int32_t> SameNames(Session& session, std::uint8_t from, std::uint8_t to) {
    std::map<std::int32_t, std::int32_t> numbers;
    const auto there = store::FillCategories(session, to, false, false, false);
    for (const auto& entry : store::FillCategories(session, from, false, false, false)) {
        const auto same = std::ranges::find_if(there, [&entry](const store::CategoryEntry& other) {
            return CompareNoCase(TrimBlanks(other.text), TrimBlanks(entry.text)) == 0;
        });
        if (same != there.end()) numbers[entry.number] = same->number;
    }
    return numbers;
}

/// Gives one row to another section.
Result<RowChange> GiveRow(Session& session, std::uint8_t from, std::int32_t key, std::uint8_t to,
                          const std::map<std::int32_t, std::int32_t>& categories) {
    auto table = session.ProgramDb->OpenRecordset("tt");
    if (!table) return table.error();
    engine::Recordset& row = **table;
    if (const int error = row.FindFirst("fPK=?", {key})) return Error{error, {}};
    if (row.NoMatch() || NumberOf(row.Field("fSec")) != from) return RowChange::Gone;
    store::UndoStep step(session, from);
    row.Edit();
    auto before = store::ImageOf(row);
    const auto category = categories.find(NumberOf(row.Field("fG1")));
    row.SetField("fSec", std::int32_t{to});
    row.SetField("fG1", category == categories.end() ? store::Category::Unfiled : category->second);
    row.SetField("AE", NumberOf(row.Field("AE")) | 2);
    const auto after = step.Mark(row);
    if (const int error = row.Update()) return Error{error, {}};
    step.Record(key, std::move(before), after);
    step.Keep();
    return RowChange::Changed;
}

}  // namespace

std::int32_t PackCdbwAt(std::int32_t cdbw, double fraction) {
    return static_cast<std::int32_t>(std::floor(fraction * kTop / 4)) * 4 + cdbw;
}

std::int32_t PackCdbw(std::int32_t cdbw, RandomSource& random) {
    return PackCdbwAt(cdbw & 3, RandomFraction(random));
}

std::string_view PaymentText(std::int32_t paymentType) {
    if (paymentType <= 0 || paymentType >= static_cast<std::int32_t>(kPaymentTypes.size())) return "Unfiled";
    return kPaymentTypes[static_cast<std::size_t>(paymentType)];
}

std::optional<Money> ReadAmount(std::string_view fT1Plain) {
    if (TrimBlanks(fT1Plain).empty()) return Money{};
    if (fT1Plain.size() != kAmountSize) return std::nullopt;
    const Value value = store::DecodeField(fT1Plain);
    const auto* amount = std::get_if<Money>(&value);
    return amount ? std::optional(*amount) : std::nullopt;
}

Transaction ClearRecord(Day today, std::int32_t comboCategory) {
    Transaction transaction;
    transaction.date = today;
    transaction.category = store::RealCategory(comboCategory);
    return transaction;
}

Transaction ReadRecord(Session& session, const engine::Recordset& row) {
    Transaction transaction;
    transaction.key = NumberOf(row.Field("fPK"), store::kNewRecord);
    transaction.paymentType = NumberOf(row.Field("fSub"));
    transaction.category = NumberOf(row.Field("fG1"));
    transaction.cdbw = UnpackCdbw(NumberOf(row.Field("fR1")));
    transaction.date = UnpackDate(NumberOf(row.Field("fR3")), kDateKind);
    transaction.hasNote = NumberOf(row.Field("fF2")) != 0;
    transaction.readable = store::DecodeFields(
        transaction, cry::DecipherField(session.cipher, TextOf(row.Field("fEtx"))), kTransactionFields);
    const auto amount = ReadAmount(cry::DecipherField(session.cipher, TextOf(row.Field("fT1"))));
    transaction.amountRead = amount.has_value();
    transaction.amount = amount.value_or(Money{});
    return transaction;
}

std::optional<Transaction> FetchRecord(Session& session, std::uint8_t section, std::int32_t key, int* error) {
    const auto row = store::FetchRow(session, section, key);
    if (error) *error = row ? 0 : row.error().number;
    if (!row || !*row) return std::nullopt;
    return ReadRecord(session, **row);
}

Transaction RecordToEdit(Session& session, std::uint8_t section, std::optional<std::int32_t> key,
                         std::int32_t comboCategory, int* error) {
    if (key)
        if (auto transaction = FetchRecord(session, section, *key, error)) return *std::move(transaction);
    return ClearRecord(session.ports.clock.Today(), comboCategory);
}

store::StoreOutcome WriteRecord(Session& session, std::uint8_t section, Transaction& transaction) {
    if (transaction.readable) transaction.hasNote = !transaction.note.empty();
    const auto outcome =
        store::StoreRow(session, section, transaction.key, [&](engine::Recordset& row, bool added) {
            const int error = FillTexts(session, transaction, row, added);
            if (error == 0) FillNumbers(session, transaction, row);
            return error;
        });
    if (outcome.error == 0) transaction.key = outcome.fPK;
    return outcome;
}

int AddRecords(Session& session, std::uint8_t section, std::span<Transaction> transactions) {
    constexpr std::size_t kChunk = 512;
    // Without keys the cipher gives nothing, and nothing is no record.
    if (session.cipher.Keystring.empty()) return engine::EngineNumber::Failed;
    store::UndoStep step(session, section, {"import", "imported"});
    engine::Transaction all(*session.ProgramDb);
    if (all.error() != 0) return all.error();
    auto table = session.ProgramDb->OpenRecordset("tt");
    if (!table) return table.error().number;
    engine::Recordset& row = **table;
    std::vector<std::int32_t> keys;
    std::vector<Bytes> ciphered;
    for (std::size_t i = 0; i < transactions.size(); ++i) {
        if (i % kChunk == 0)
            ciphered = Encipher(session, transactions.subspan(i, std::min(kChunk, transactions.size() - i)));
        row.AddNew();
        row.SetField("fSec", std::int32_t{section});
        row.SetField("AE", 1);
        row.SetField("fEtx", std::move(ciphered[i % kChunk * 2]));
        row.SetField("fT1", std::move(ciphered[i % kChunk * 2 + 1]));
        FillNumbers(session, transactions[i], row);
        const auto after = step.Mark(row);
        if (const int error = row.Update()) return error;
        keys.push_back(NumberOf(row.Field("fPK")));
        step.Record(keys.back(), nullptr, after);
    }
    if (const int error = all.Commit()) return error;
    step.Keep();
    for (std::size_t i = 0; i < keys.size(); ++i)
        transactions[i].key = keys[i];
    return 0;
}

void WipeRecord(Transaction& transaction) {
    store::WipeFields(transaction, kTransactionFields);
}

WipedText DeleteText(std::string_view item, std::string_view date) {
    return Joined(Msg(25), " \r\n\r\n   ", item, " (", date, ")");
}

store::SeveralOutcome MoveSeveral(Session& session, std::uint8_t section, store::Keys keys,
                                  std::int32_t category) {
    return store::MoveSeveral(session, VerbsOf(section), keys, &Transaction::category, category);
}

store::SeveralOutcome HideSeveral(Session& session, std::uint8_t section, store::Keys keys, bool isPrivate) {
    const store::RecordVerbs<Transaction>& verbs = VerbsOf(section);
    return store::ForSeveral(
        session, verbs, keys, {"change", isPrivate ? "made private" : "no longer private"},
        [&](Transaction& transaction) -> Result<RowChange> {
            const std::int32_t cdbw = (transaction.cdbw & kDebit) | (isPrivate ? kPrivate : 0);
            if (transaction.isPrivate == isPrivate && transaction.cdbw == cdbw) return RowChange::Same;
            transaction.isPrivate = isPrivate;
            transaction.cdbw = cdbw;
            if (const int error = verbs.write(session, transaction)) return Error{error, {}};
            return RowChange::Changed;
        },
        false);
}

store::SeveralOutcome DeleteSeveral(Session& session, std::uint8_t section, store::Keys keys) {
    return store::DeleteSeveral(session, VerbsOf(section), keys);
}

store::SeveralOutcome DuplicateSeveral(Session& session, std::uint8_t section, store::Keys keys,
                                       std::optional<Day> date, std::vector<std::int32_t>* added) {
    std::vector<std::int32_t> made;
    const store::RecordVerbs<Transaction>& verbs = VerbsOf(section);
    const auto outcome = store::ForSeveral(
        session, verbs, keys, {"duplication", "duplicated"},
        [&](Transaction& transaction) -> Result<RowChange> {
            if (!transaction.amountRead) return RowChange::Unread;
            transaction.key = store::kNewRecord;
            if (date) transaction.date = *date;
            if (const int error = verbs.write(session, transaction)) return Error{error, {}};
            made.push_back(transaction.key);
            return RowChange::Changed;
        },
        false);
    if (added && outcome.error == 0) *added = std::move(made);
    return outcome;
}

store::SeveralOutcome GiveToBudget(Session& session, std::uint8_t from, store::Keys keys, std::uint8_t to) {
    const auto categories = SameNames(session, from, to);
    const std::string name = "Budget " + std::to_string(to - Section::Budget1 + 1);
    return store::ChangeSeveral(session, from, keys, {"move", "moved to " + name}, [&](std::int32_t key) {
        return GiveRow(session, from, key, to, categories);
    });
}

}  // namespace bmr::budget
