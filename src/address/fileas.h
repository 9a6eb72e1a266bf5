#pragma once

#include <array>
#include <cstdint>
#include <string_view>
#include <vector>

#include "address/record.h"
#include "base/wiped.h"

/// Under which name a record is filed: what the editor offers.
namespace bmr::address {

/// The offers have these numbers in the editor's box; entries of other numbers are its own.
inline constexpr std::int32_t kFirstOffer = 10;
inline constexpr std::size_t kOffers = 6;

/// Six texts by their numbers, some of them empty, and the number of the one that is proposed.
struct FileAsOffers {
    std::array<WipedText, kOffers> texts;
    std::int32_t standard = kFirstOffer;

    const WipedText& Standard() const { return texts[static_cast<std::size_t>(standard - kFirstOffer)]; }
};

/// What a record of these names may be filed as. With a company, no last name and no home city the proposed
/// one is empty: a person then has to choose.
FileAsOffers FileAsOptions(std::string_view last, std::string_view first, std::string_view company,
                           std::string_view homeCity);
FileAsOffers FileAsOptions(const Record& record);

/// The box of the editor: its text and its entries.
struct FileAsBox {
    struct Entry {
        WipedText text;
        std::int32_t number = 0;
        bool operator==(const Entry&) const = default;
    };
    WipedText text;
    std::vector<Entry> entries;

    /// The number of the entry that the text equals; -1 without one.
    std::int32_t Chosen() const;
};

/// `RefreshFileAs`: makes the offers anew. The text stays the offer that it was; a text that is none goes.
void RefreshFileAs(FileAsBox& box, std::string_view last, std::string_view first, std::string_view company,
                   std::string_view homeCity);

/// The same for a person who types: a text that is no offer is put back, as an entry of its own. True when it
/// was.
bool RefreshKeepingTyped(FileAsBox& box, std::string_view last, std::string_view first,
                         std::string_view company, std::string_view homeCity);

}  // namespace bmr::address
