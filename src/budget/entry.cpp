#include "budget/entry.h"

#include <algorithm>

namespace bmr::budget {
namespace {

std::int32_t ShownCategory(const Transaction& transaction, const store::CategoryList& categories) {
    const bool known = std::ranges::find(categories, transaction.category, &store::CategoryEntry::number) !=
                       categories.end();
    return known ? transaction.category : store::Category::Unfiled;
}

/// A type that the list does not have shows as its first entry.
std::int32_t ShownPayment(const Transaction& transaction) {
    const bool known = transaction.paymentType >= 0 &&
                       transaction.paymentType < static_cast<std::int32_t>(kPaymentTypes.size());
    return known ? transaction.paymentType : 0;
}

}  // namespace

EntryValues RecordToEditor(const Transaction& transaction, const store::CategoryList& categories,
                           const AmountFormat& format, AddKind kind) {
    EntryValues values;
    values.debit = transaction.IsDebit();
    if (transaction.key == store::kNewRecord && kind == AddKind::Neither) values.debit = std::nullopt;
    if (transaction.key == store::kNewRecord && kind != AddKind::Neither)
        values.debit = kind == AddKind::Debit;
    values.isPrivate = transaction.isPrivate;
    values.subject = transaction.description;
    values.amount = AmountText(transaction.amount, format);
    values.partner = transaction.partner;
    values.note = transaction.note;
    values.paymentType = ShownPayment(transaction);
    values.category = ShownCategory(transaction, categories);
    values.date = transaction.date;
    return values;
}

void EditorToRecord(const EntryValues& values, const AmountFormat& format, Transaction& transaction) {
    transaction.description = values.subject;
    transaction.partner = values.partner;
    transaction.note = values.note;
    transaction.hasNote = !values.note.empty();
    transaction.cdbw = (values.debit.value_or(false) ? kDebit : 0) | (values.isPrivate ? kPrivate : 0);
    transaction.isPrivate = values.isPrivate;
    if (values.paymentType != ShownPayment(transaction)) transaction.paymentType = values.paymentType;
    if (std::string_view(values.amount) != AmountText(transaction.amount, format)) {
        transaction.amount = WorkOutAmount(values.amount, format).value_or(Money{});
        transaction.amountRead = true;
    }
    transaction.category = store::RealCategory(values.category);
    transaction.date = values.date;
    transaction.readable = true;
}

AmountVerdict JudgeAmount(std::string_view text, const AmountFormat& format) {
    if (!ParseAmount(text, format)) {
        const auto sum = WorkOutAmount(text, format);
        if (!sum) return AmountVerdict::NoAmount;
        // A sum has become a plain number before the tests.
        return IsZeroByPlainRule(LeaveAmount(text, format)) ? AmountVerdict::Zero : AmountVerdict::Good;
    }
    return IsZeroByPlainRule(text) ? AmountVerdict::Zero : AmountVerdict::Good;
}

WipedText LeaveAmount(std::string_view text, const AmountFormat& format) {
    if (!IsSum(text, format)) return text;
    return PlainText(*WorkOutAmount(text, format), format);
}

Transaction NextAfter(const Transaction& stored) {
    Transaction next;
    next.date = stored.date;
    next.category = stored.category;
    next.cdbw = stored.cdbw & kDebit;
    return next;
}

}  // namespace bmr::budget
