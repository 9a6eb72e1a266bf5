#include "budget/ledger.h"

#include <algorithm>
#include <cstdio>
#include <limits>
#include <numeric>

#include "base/shortdate.h"
#include "base/unicode.h"
#include "budget/amountrows.h"
#include "calendar/calendar.h"
#include "store/record_get.h"
#include "store/words.h"

namespace bmr::budget {
namespace {

using store::Session;

/// The numbers of the payload's fields.
constexpr std::uint8_t kDescription = 0;
constexpr std::uint8_t kPartner = 1;
constexpr std::uint8_t kFlag = 3;

constexpr const char* kReadColumns = "fPK, fSub, fG1, fR1, fR3, fF2, fEtx, fT1";
constexpr std::size_t kTexts = 2;
constexpr std::size_t kChunk = 2048;

/// The clauses of the two pairs of boxes.
std::string ClassClauses(const BudgetBoxes& show) {
    std::string clauses;
    if (!(show[0] && show[1]))
        clauses += " And (((fR1 Mod 4) Mod 2) =" + std::string(show[1] ? "1) " : "0) ");
    if (!(show[2] && show[3])) clauses += " And (((fR1 Mod 4) \\ 2) =" + std::string(show[3] ? "1) " : "0) ");
    return clauses;
}

bool IsAll(std::int32_t category) {
    return category == store::Category::All || category == store::Category::Edit;
}

std::string DateKey(Day date) {
    char key[16];
    std::snprintf(key, sizeof key, "%06d", date.serial);
    return key;
}

/// Rows that wait to be deciphered together.
class LedgerReader {
  public:
    LedgerReader(Session& session, Ledger& ledger) : session_(session), ledger_(ledger) {}

    void Add(const engine::Cursor& cursor) {
        LedgerRow row;
        row.key = cursor.Int(0);
        row.paymentType = cursor.Int(1);
        row.category = cursor.Int(2);
        row.cdbw = UnpackCdbw(cursor.Int(3));
        row.date = UnpackDate(cursor.Int(4), kDateKind);
        row.hasNote = cursor.Int(5) != 0;
        rows_.push_back(std::move(row));
        texts_.emplace_back(cursor.Bytes(6));
        texts_.emplace_back(cursor.Bytes(7));
        ++ledger_.count;
        if (rows_.size() == kChunk) Decipher();
    }
    void Decipher() {
        const std::vector<std::string_view> views(texts_.begin(), texts_.end());
        cry::DecipherBatch(session_.cipher, views, [this](std::size_t index, std::string_view plain) {
            LedgerRow& row = rows_[index / kTexts];
            if (index % kTexts == 1)
                row.amount = ReadAmount(plain).value_or(Money{});
            else
                TakePayload(row, plain);
        });
        for (LedgerRow& row : rows_)
            if (session_.ShowPrivate || !row.isPrivate) ledger_.rows.push_back(std::move(row));
        rows_.clear();
        texts_.clear();
    }

  private:
    static void TakePayload(LedgerRow& row, std::string_view payload) {
        const Value flag = store::GetPayloadField(payload, kFlag);
        const auto* isPrivate = std::get_if<bool>(&flag);
        row.isPrivate = isPrivate == nullptr || *isPrivate;
        row.description = store::ReadWords(payload, kDescription);
        row.partner = store::ReadWords(payload, kPartner);
    }

    Session& session_;
    Ledger& ledger_;
    std::vector<LedgerRow> rows_;
    std::vector<Bytes> texts_;
};

}  // namespace

const std::array<LedgerColumn, LedgerItem::Count> kLedgerColumns = {{{"Date", -1},
                                                                     {"Item", 2400},
                                                                     {"Credit", 945},
                                                                     {"Debit", 945},
                                                                     {"Payment", 900},
                                                                     {"Priv", 570},
                                                                     {"Biz-Partner", 1200},
                                                                     {"Note", 570},
                                                                     {"Category", 1200},
                                                                     {"-", 0}}};

void ClickBox(BudgetBoxes& show, std::size_t box) {
    show[box] = !show[box];
    shell::KeepPair(show, box);
}

BudgetBoxes WithoutPrivate(BudgetBoxes show) {
    show[2] = true;
    show[3] = false;
    return show;
}

std::string LedgerStatement(const LedgerFilter& filter) {
    const KeyRange range = RangeOf(calendar::MonthFirst(filter.calDate), calendar::MonthLast(filter.calDate));
    std::string statement = "SELECT * FROM tt WHERE fSec=" + std::to_string(filter.section);
    if (!IsAll(filter.category)) statement += " And fG1 = " + std::to_string(filter.category);
    return statement + ClassClauses(filter.show) + " And (fR3 Between " + std::to_string(range.low) +
           " And " + std::to_string(range.high) + ") ORDER BY fR3" + store::kOwnerAccess;
}

std::string LedgerClauses(Session& session, const LedgerFilter& filter) {
    return store::CategoryClause(session, filter.section, filter.category) + ClassClauses(filter.show);
}

Result<Ledger> ReadLedger(Session& session, const LedgerFilter& filter) {
    return ReadLedgerSpan(session, filter, calendar::MonthFirst(filter.calDate),
                          calendar::MonthLast(filter.calDate));
}

Result<Ledger> ReadLedgerSpan(Session& session, const LedgerFilter& filter, Day from, Day to) {
    const KeyRange range = RangeOf(from, to);
    auto cursor = session.ProgramDb->Select(
        "SELECT " + std::string(kReadColumns) + " FROM tt WHERE fSec=?" + LedgerClauses(session, filter) +
            " And (fR3 Between ? And ?) ORDER BY fR3" + store::kOwnerAccess,
        {filter.section, range.low, range.high});
    if (!cursor) return cursor.error();
    Ledger ledger;
    LedgerReader reader(session, ledger);
    while (cursor->Next())
        reader.Add(*cursor);
    if (cursor->error() != 0) return Error{cursor->error(), session.ProgramDb->LastError()};
    reader.Decipher();
    return ledger;
}

WipedText LedgerText(const LedgerRow& row, int subItem, const LedgerWords& words) {
    switch (subItem) {
        case LedgerItem::Date:
            return FormatShortDate(row.date, words.shortDate);
        case LedgerItem::Item:
            return row.description;
        case LedgerItem::Credit:
            return row.IsDebit() ? std::string(" ") : AmountText(row.amount, words.amounts);
        case LedgerItem::Debit:
            return row.IsDebit() ? AmountText(row.amount, words.amounts) : std::string(" ");
        case LedgerItem::Payment:
            return PaymentText(row.paymentType);
        case LedgerItem::Private:
            return (row.cdbw & kPrivate) != 0 ? "x" : " ";
        case LedgerItem::Partner:
            return row.partner;
        case LedgerItem::Note:
            return row.hasNote ? "N" : " ";
        case LedgerItem::Category:
            return ToUtf8(store::CategoryName(words.categories, row.category));
        default:
            return DateKey(row.date);
    }
}

LedgerSums SumsOf(std::span<const LedgerRow> rows) {
    LedgerSums sums;
    for (const LedgerRow& row : rows) {
        Money& sum = row.IsDebit() ? sums.debit : sums.credit;
        sum = Plus(sum, RoundedToHundredths(row.amount));
    }
    return sums;
}

LedgerOrder LedgerOrderOf(int number) {
    static constexpr std::array<bool, LedgerItem::Count> kDescending = {false, false, true, true,  false,
                                                                        true,  false, true, false, false};
    const int subItem = number >= 2 ? number - 1 : LedgerItem::DateKey;
    return {subItem, kDescending.at(static_cast<std::size_t>(subItem))};
}

void SortLedger(std::vector<LedgerRow>& rows, LedgerOrder order, const LedgerWords& words, bool byValue) {
    struct Keyed {
        WipedText text;
        std::int64_t value = 0;
        std::size_t at = 0;
    };
    const bool isAmount = order.subItem == LedgerItem::Credit || order.subItem == LedgerItem::Debit;
    std::vector<Keyed> keyed(rows.size());
    for (std::size_t i = 0; i < rows.size(); ++i) {
        keyed[i].at = i;
        const bool other = rows[i].IsDebit() != (order.subItem == LedgerItem::Debit);
        if (isAmount && byValue)
            keyed[i].value = other ? std::numeric_limits<std::int64_t>::min() : rows[i].amount.tenThousandths;
        else
            keyed[i].text = FoldCase(LedgerText(rows[i], order.subItem, words));
    }
    std::ranges::stable_sort(keyed, [&order](const Keyed& a, const Keyed& b) {
        const Keyed& first = order.descending ? b : a;
        const Keyed& second = order.descending ? a : b;
        if (first.value != second.value) return first.value < second.value;
        return std::string_view(first.text) < std::string_view(second.text);
    });
    std::vector<LedgerRow> sorted;
    sorted.reserve(rows.size());
    for (const Keyed& each : keyed)
        sorted.push_back(std::move(rows[each.at]));
    rows = std::move(sorted);
}

}  // namespace bmr::budget
