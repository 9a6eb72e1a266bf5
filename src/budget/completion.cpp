#include "budget/completion.h"

#include <algorithm>

#include "base/unicode.h"
#include "budget/ledger.h"
#include "calendar/calendar.h"

namespace bmr::budget {
namespace {

WipedText KeyOf(std::string_view item) {
    return FoldCase(Normalised(TrimBlanks(item)));
}

}  // namespace

ItemCompletion::ItemCompletion(std::uint8_t section, Day today) : section_(section), month_(today) {}

int ItemCompletion::Step(store::Session& session) {
    if (Done()) return 0;
    auto ledger = ReadLedger(session, {.section = section_, .calDate = month_});
    if (!ledger) {
        left_ = 0;
        return ledger.error().number;
    }
    for (auto row = ledger->rows.rbegin(); row != ledger->rows.rend(); ++row) {
        // An entry whose class is private stays out too, whatever its payload says.
        if (!session.ShowPrivate && (row->cdbw & kPrivate) != 0) continue;
        WipedText key = KeyOf(row->description);
        if (key.empty()) continue;
        ItemProposal& proposal = items_[std::move(key)];
        if (proposal.times++ > 0) continue;
        proposal.item = TrimBlanks(row->description);
        proposal.partner = row->partner;
        proposal.paymentType = row->paymentType;
        proposal.category = row->category;
    }
    --left_;
    month_ = {calendar::MonthFirst(month_).serial - 1};
    return 0;
}

std::vector<const ItemProposal*> ItemCompletion::Matching(std::string_view typed, std::size_t most) const {
    std::vector<const ItemProposal*> found;
    const WipedText key = KeyOf(typed);
    if (key.empty()) return found;
    for (auto item = items_.lower_bound(std::string_view(key));
         item != items_.end() && item->first.starts_with(key); ++item)
        found.push_back(&item->second);
    std::ranges::stable_sort(found, std::greater(), &ItemProposal::times);
    if (found.size() > most) found.resize(most);
    return found;
}

const ItemProposal* ItemCompletion::Of(std::string_view item) const {
    const auto found = items_.find(std::string_view(KeyOf(item)));
    return found == items_.end() ? nullptr : &found->second;
}

}  // namespace bmr::budget
