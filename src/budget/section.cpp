#include "budget/section.h"

#include <algorithm>
#include <array>

#include "budget/amount.h"
#include "budget/amountrows.h"
#include "budget/transaction.h"
#include "calendar/calendar.h"

namespace bmr::budget {
namespace {

using store::Section;
using store::Session;

constexpr auto kRules = store::RulesOf(kTransactionFields);
/// As JSON and the command line write amounts.
const AmountFormat kPlainFormat;

bool IsAsked(const store::ListRequest& request) {
    return request.from || request.to;
}

template <std::uint8_t Code>
std::string Clauses(Session& session, const store::ListRequest& request) {
    std::string clauses = store::CategoryClause(session, Code, request.group);
    if (!IsAsked(request)) return clauses;
    const KeyRange range = RangeOf(request.from.value_or(kFirstDay), request.to.value_or(kLastDay));
    return clauses + " And (fR3 Between " + std::to_string(range.low) + " And " + std::to_string(range.high) +
           ")";
}

template <std::uint8_t Code>
Result<std::vector<std::int32_t>> List(Session& session, const store::ListRequest& request) {
    auto cursor =
        session.ProgramDb->Select("SELECT fPK FROM tt WHERE fSec=" + std::to_string(Code) +
                                  Clauses<Code>(session, request) + " ORDER BY fR3" + store::kOwnerAccess);
    if (!cursor) return cursor.error();
    std::vector<std::int32_t> keys;
    while (cursor->Next())
        keys.push_back(cursor->Int(0));
    if (cursor->error() != 0) return Error{cursor->error(), session.ProgramDb->LastError()};
    return keys;
}

std::string SetDate(std::string_view value, Transaction& transaction) {
    const auto day = ParseIsoDate(value);
    if (!day) return "date is no date of the form YYYY-MM-DD.";
    if (const auto box = calendar::DateLimitBox(*day, LocaleFacts{})) return box->text;
    transaction.date = *day;
    return {};
}

std::string SetPayment(std::string_view value, Transaction& transaction) {
    const auto* named = std::ranges::find_if(
        kPaymentTypes, [value](std::string_view name) { return CompareNoCase(name, value) == 0; });
    if (named != kPaymentTypes.end()) {
        transaction.paymentType = static_cast<std::int32_t>(named - kPaymentTypes.begin());
        return {};
    }
    const auto number = ParseAmount(value, kPlainFormat);
    if (!number || *number < Money{} || *number > Money{90000} || number->tenThousandths % 10000 != 0)
        return "paymentType is 0 to 9, or one of their names.";
    transaction.paymentType = static_cast<std::int32_t>(number->tenThousandths / 10000);
    return {};
}

/// What stands in columns of its own.
bool SetColumn(Transaction& transaction, std::optional<Money>& amount, std::string_view name,
               std::string_view value, std::string& problem) {
    if (name == "date") {
        problem = SetDate(value, transaction);
    } else if (name == "amount") {
        amount = WorkOutAmount(value, kPlainFormat);
        if (!amount) problem = "amount is no valid amount: digits, with a point as decimal sign.";
    } else if (name == "debit") {
        transaction.cdbw |= kDebit;
    } else if (name == "paymentType") {
        problem = SetPayment(value, transaction);
    } else {
        return false;
    }
    return true;
}

template <std::uint8_t Code>
Result<std::int32_t> Add(Session& session, const store::NewRecord& given) {
    Transaction transaction = ClearRecord(session.ports.clock.Today(), given.group);
    std::optional<Money> amount;
    std::string problem =
        store::SetFields(store::SlotsOf(transaction, kTransactionFields), given,
                         [&](std::string_view name, std::string_view value, std::string& why) {
                             return SetColumn(transaction, amount, name, value, why);
                         });
    if (problem.empty() && !amount) problem = "amount is required.";
    if (!problem.empty()) return Error{0, std::move(problem)};
    transaction.amount = *amount;
    transaction.isPrivate = given.isPrivate;
    if (given.isPrivate) transaction.cdbw |= kPrivate;
    if (const int error = WriteRecord(session, Code, transaction).error) return Error{error, {}};
    return transaction.key;
}

std::vector<store::ColumnValue> Columns(const store::PlainColumns& row) {
    const Day date = UnpackDate(row.fR3, kDateKind);
    const std::int32_t cdbw = UnpackCdbw(row.fR1);
    return {{"date", DateValue{static_cast<double>(date.serial)}, "Date", IsoDate(date)},
            {"CDBW", cdbw, "Side", (cdbw & kDebit) != 0 ? "debit" : "credit"},
            {"paymentType", row.fSub},
            {"hasNote", row.fF2, "Note", row.fF2 ? "N" : ""}};
}

std::vector<store::ColumnValue> InText(std::string_view fT1) {
    const Money amount = ReadAmount(fT1).value_or(Money{});
    return {{"amount", ExactText(amount), "Amount", AmountText(amount, kPlainFormat)}};
}

template <std::uint8_t Code>
store::SeveralOutcome Move(Session& session, store::Keys keys, std::int32_t category) {
    return MoveSeveral(session, Code, keys, category);
}
template <std::uint8_t Code>
store::SeveralOutcome Hide(Session& session, store::Keys keys, bool isPrivate) {
    return HideSeveral(session, Code, keys, isPrivate);
}
template <std::uint8_t Code>
store::SeveralOutcome Remove(Session& session, store::Keys keys) {
    return DeleteSeveral(session, Code, keys);
}

constexpr store::FieldOption kOptions[] = {
    {"--item", "Description", "what was paid, or for what"},
    {"--amount", "amount", "the amount, or a sum such as 12.50*3"},
    {"--debit", "debit", "money that goes out (without it: that comes in)", true},
    {"--date", "date", "the day, YYYY-MM-DD (today)"},
    {"--partner", "BizPartner", "who paid, or was paid"},
    {"--payment", "paymentType", "how it was paid, 0 to 9 or \"Cash\", \"Check\""},
    {"--note", "Note", "a note of any length"}};

template <std::uint8_t Code>
constexpr store::SectionFacts FactsFor(std::string_view command, std::string_view name,
                                       std::string_view icon) {
    return {.code = Code,
            .command = command,
            .title = name,
            .name = name,
            .one = "entry",
            .many = "entries",
            .purpose = "Income, expenses and what is left.",
            .icon = icon,
            // The field that is asked for the flag is a byte, so all records of the budgets are private to
            // readers of it.
            .privateField = 4,
            .fields = kRules,
            .ownFlag = 3,
            .spans = true,
            .clauses = Clauses<Code>,
            .list = List<Code>,
            .add = Add<Code>,
            .options = kOptions,
            .columns = Columns,
            .inText = InText,
            .move = Move<Code>,
            .hide = Hide<Code>,
            .remove = Remove<Code>};
}

constexpr store::SectionFacts kSections[] = {
    FactsFor<Section::Budget1>("budget1", "Budget 1", "view-bank-account-1"),
    FactsFor<Section::Budget2>("budget2", "Budget 2", "view-bank-account-2"),
    FactsFor<Section::Budget3>("budget3", "Budget 3", "view-bank-account-3"),
};

}  // namespace

std::span<const store::SectionFacts> Sections() {
    return kSections;
}

}  // namespace bmr::budget
