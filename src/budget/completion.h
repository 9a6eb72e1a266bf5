#pragma once

#include <cstdint>
#include <map>
#include <string_view>
#include <vector>

#include "base/serialdate.h"
#include "base/wiped.h"
#include "store/session.h"

namespace bmr::budget {

/// What the editor offers for an item: what its last entry had.
struct ItemProposal {
    WipedText item;
    WipedText partner;
    std::int32_t paymentType = 0;
    std::int32_t category = 0;
    std::size_t times = 0;  ///< so many entries have the item
};

/// The items of a budget's last 24 months, read a slice at a time. Public ones alone while private records
/// are hidden. What it holds is wiped when it goes.
class ItemCompletion {
  public:
    ItemCompletion(std::uint8_t section, Day today);

    bool Done() const { return left_ == 0; }
    /// Reads one month more, the latest first. 0 or an error number; then nothing more is read.
    [[nodiscard]] int Step(store::Session& session);
    /// The proposals for what was typed so far, without regard to case: items that begin so, those that
    /// many entries have first. Nothing for an empty text.
    std::vector<const ItemProposal*> Matching(std::string_view typed, std::size_t most) const;
    /// The proposal of a whole item; null without one.
    const ItemProposal* Of(std::string_view item) const;

  private:
    std::uint8_t section_;
    Day month_;  ///< any day of the month that is next
    int left_ = 24;
    std::map<WipedText, ItemProposal, std::less<>> items_;  ///< by the item without case
};

}  // namespace bmr::budget
