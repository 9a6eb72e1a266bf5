#pragma once

#include <cstdint>
#include <optional>

#include "budget/amount.h"
#include "budget/transaction.h"

/// What the editor of a transaction holds, and its rules.
namespace bmr::budget {

/// Which of the `ctlCD` buttons `addTransaction` presses.
enum class AddKind : std::uint8_t { Credit = 0, Debit = 1, Neither = 2 };

/// The contents of the controls.
struct EntryValues {
    std::optional<bool> debit;  ///< `ctlCD`: which button is on, if any
    bool isPrivate = false;     ///< `ctlBW`
    WipedText subject;
    WipedText amount;  ///< `ctlAmount`
    WipedText partner;
    WipedText note;
    std::int32_t paymentType = 0;
    std::int32_t category = store::Category::Unfiled;
    Day date;
    bool operator==(const EntryValues&) const = default;
};

/// A category that the list no longer has shows as unfiled. `kind`: of a new record, which button is on.
EntryValues RecordToEditor(const Transaction& transaction, const store::CategoryList& categories,
                           const AmountFormat& format, AddKind kind);
/// An amount whose text nobody changed keeps the places that the text does not show, and a payment type that
/// the editor does not know is kept while its choice stands.
/// REQUIRES: `JudgeAmount` of the values is not `NoAmount`.
void EditorToRecord(const EntryValues& values, const AmountFormat& format, Transaction& transaction);

/// What the text of an amount is worth when `cmdOK` is pressed.
enum class AmountVerdict : std::uint8_t {
    Good,
    Zero,      ///< Msg 22 asks whether it is meant
    NoAmount,  ///< Msg 21
};
AmountVerdict JudgeAmount(std::string_view text, const AmountFormat& format);

/// What the text becomes when the control is left: a sum worked out, anything else as it is.
WipedText LeaveAmount(std::string_view text, const AmountFormat& format);

/// The record that "Save and new" begins with: empty, but with date, category and side of the one stored.
Transaction NextAfter(const Transaction& stored);

}  // namespace bmr::budget
