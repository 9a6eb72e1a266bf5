#include "address/merge.h"

#include <algorithm>

#include "address/addressbook.h"
#include "address/card.h"
#include "address/contact.h"
#include "address/telephone.h"
#include "base/shortdate.h"
#include "base/unicode.h"
#include "store/undostep.h"

namespace bmr::address {
namespace {

bool IsAddressPart(std::uint8_t number) {
    return number >= FieldNumber::BusinessAddress && number < FieldNumber::Account;
}

/// Words of which a record has one: no address, no number, no note.
bool IsSingle(const store::FieldRule& rule) {
    return rule.IsWords() && !IsAddressPart(rule.number) && rule.number != FieldNumber::Notes &&
           (rule.number < FieldNumber::Com1 || rule.number > FieldNumber::ComDisplay);
}

WipedText& TextOfField(Record& record, std::uint8_t number) {
    return number == FieldNumber::FileAs ? record.fileAs : record[number];
}
const WipedText& TextOfField(const Record& record, std::uint8_t number) {
    return number == FieldNumber::FileAs ? record.fileAs : record[number];
}

/// An address in one line.
WipedText AddressText(const Record& record, std::uint8_t base) {
    WipedText text;
    for (std::uint8_t part = 0; part < kAddressParts; ++part) {
        const WipedText& value = record[std::size_t{base} + part];
        if (!text.empty() && !value.empty()) text += ", ";
        text += value;
    }
    return text;
}

/// Whether two addresses can be one: no part says two different things.
bool Agree(const Record& left, const Record& right, std::uint8_t base) {
    for (std::uint8_t part = 0; part < kAddressParts; ++part) {
        const std::size_t number = std::size_t{base} + part;
        if (!left[number].empty() && !right[number].empty() && left[number] != right[number]) return false;
    }
    return true;
}

WipedText DateText(DateValue date, const LocaleFacts& locale) {
    return date.serial == 0 ? WipedText() : WipedText(FormatShortDate(DayOf(date), locale.shortDate));
}

bool SameValue(std::string_view a, std::string_view b) {
    return FoldCase(a) == FoldCase(b) || (LooksLikeNumber(a) && LooksLikeNumber(b) && SameNumber(a, b));
}

void AddNote(Record& record, std::string_view text) {
    WipedText& notes = record[FieldNumber::Notes];
    if (text.empty() || notes.find(text) != std::string::npos) return;
    if (!notes.empty()) notes += "\r\n";
    notes += text;
}

void MergeNumbers(Record& merged, const Record& right) {
    for (std::size_t from = 0; from < kComSlots; ++from) {
        const WipedText& value = right.Com(from);
        if (value.empty()) continue;
        std::size_t free = kComSlots;
        bool known = false;
        for (std::size_t slot = kComSlots; slot-- > 0;) {
            if (merged.Com(slot).empty())
                free = slot;
            else
                known = known || SameValue(merged.Com(slot), value);
        }
        if (known) continue;
        if (free == kComSlots) {
            AddNote(merged, value);
            continue;
        }
        // Its own slot, where that is free too, as people know where they put it.
        if (merged.Com(from).empty()) free = from;
        merged.Com(free) = value;
        merged.ComLabel(free) = right.ComLabel(from);
    }
}

}  // namespace

std::vector<FieldPair> DifferentFields(const Record& left, const Record& right, const LocaleFacts& locale) {
    std::vector<FieldPair> pairs;
    for (const auto& field : kAddressFields) {
        const std::uint8_t number = field.rule.number;
        FieldPair pair{number, {}, {}};
        if (IsSingle(field.rule)) {
            pair.left = TextOfField(left, number);
            pair.right = TextOfField(right, number);
        } else if (number == FieldNumber::Birthday) {
            pair.left = DateText(left.birthday, locale);
            pair.right = DateText(right.birthday, locale);
        } else if (std::ranges::find(kAddressBases, number) != std::end(kAddressBases) &&
                   !Agree(left, right, number)) {
            pair.left = AddressText(left, number);
            pair.right = AddressText(right, number);
        }
        if (!pair.left.empty() && !pair.right.empty() && pair.left != pair.right)
            pairs.push_back(std::move(pair));
    }
    return pairs;
}

Record MergeRecords(const Record& left, const Record& right, std::span<const std::uint8_t> fromRight,
                    const LocaleFacts& locale, Losers losers) {
    Record merged = left;
    const auto takesRight = [fromRight](std::uint8_t number) {
        return std::ranges::find(fromRight, number) != fromRight.end();
    };
    for (const auto& field : kAddressFields) {
        const std::uint8_t number = field.rule.number;
        if (!IsSingle(field.rule)) continue;
        WipedText& text = TextOfField(merged, number);
        const WipedText& other = TextOfField(right, number);
        if (!other.empty() && (text.empty() || takesRight(number))) text = other;
    }
    for (const std::uint8_t base : kAddressBases) {
        const bool agree = Agree(left, right, base);
        for (std::uint8_t part = 0; part < kAddressParts; ++part) {
            const std::size_t number = std::size_t{base} + part;
            if (agree ? merged[number].empty() : takesRight(base)) merged[number] = right[number];
        }
    }
    if (merged.birthday.serial == 0 || (takesRight(FieldNumber::Birthday) && right.birthday.serial != 0))
        merged.birthday = right.birthday;
    if (!merged.priority) merged.priority = right.priority;
    merged.isPrivate = left.isPrivate || right.isPrivate;
    AddNote(merged, right[FieldNumber::Notes]);
    MergeNumbers(merged, right);
    if (losers == Losers::ToNotes)
        for (const FieldPair& pair : DifferentFields(left, right, locale))
            AddNote(merged, Joined(kAddressFields[pair.number].rule.name, ": ",
                                   takesRight(pair.number) ? pair.left : pair.right));
    MakeContactGood(merged);
    return merged;
}

int StoreMerged(store::Session& session, Record& merged, std::int32_t gone) {
    store::UndoStep step(session, kRecords.section, {"merge", "merged"});
    engine::Transaction transaction(*session.ProgramDb);
    const auto fail = [&session](int error) {
        session.bucketOrder.Clear();  // it may know of rows that are being rolled back
        return error;
    };
    if (transaction.error() != 0) return transaction.error();
    if (const int error = WriteRecord(session, merged)) return fail(error);
    if (const int error = store::DeleteRow(session, gone)) return fail(error);
    if (const int error = transaction.Commit()) return fail(error);
    step.Keep();
    return 0;
}

}  // namespace bmr::address
