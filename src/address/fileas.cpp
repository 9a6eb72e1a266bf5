#include "address/fileas.h"

#include <algorithm>

namespace bmr::address {
namespace {

/// The number of an entry that a person typed.
constexpr std::int32_t kTyped = 0;

bool IsOffer(std::int32_t number) {
    return number >= kFirstOffer && number < kFirstOffer + static_cast<std::int32_t>(kOffers);
}

}  // namespace

FileAsOffers FileAsOptions(std::string_view last, std::string_view first, std::string_view company,
                           std::string_view homeCity) {
    FileAsOffers offers;
    auto& [lastFirst, firstLast, ofCompany, withCompany, never, withCity] = offers.texts;
    const bool both = !last.empty() && !first.empty();
    const std::string_view gap = first.empty() ? "" : " ";
    lastFirst = Joined(last, both ? ", " : "", first);
    if (both) firstLast = Joined(first, " ", last);
    ofCompany = company;
    if (!company.empty() && !last.empty()) withCompany = Joined(last, gap, first, ", ", company);
    if (!homeCity.empty() && !last.empty()) withCity = Joined(last, gap, first, ", ", homeCity);
    // Without a home city the first is proposed, empty or not.
    if (!company.empty() && last.empty() && !homeCity.empty()) offers.standard = kFirstOffer + 2;
    return offers;
}

FileAsOffers FileAsOptions(const Record& record) {
    return FileAsOptions(record[FieldNumber::LastName], record[FieldNumber::FirstName],
                         record[FieldNumber::CompanyName],
                         record[FieldNumber::HomeAddress + AddressPart::City]);
}

std::int32_t FileAsBox::Chosen() const {
    const auto found = std::ranges::find(entries, text, &Entry::text);
    return found == entries.end() ? -1 : found->number;
}

void RefreshFileAs(FileAsBox& box, std::string_view last, std::string_view first, std::string_view company,
                   std::string_view homeCity) {
    const std::int32_t chosen = box.text.empty() ? -1 : box.Chosen();
    std::erase_if(box.entries, [](const FileAsBox::Entry& entry) { return IsOffer(entry.number); });
    box.text = WipedText();
    if (company.empty() && first.empty() && last.empty()) return;
    const FileAsOffers offers = FileAsOptions(last, first, company, homeCity);
    const std::int32_t standard = chosen >= 0 ? chosen : offers.standard;
    for (std::size_t i = 0; i < kOffers; ++i) {
        if (offers.texts[i].empty()) continue;
        const std::int32_t number = kFirstOffer + static_cast<std::int32_t>(i);
        box.entries.push_back({offers.texts[i], number});
        if (number == standard) box.text = offers.texts[i];
    }
}

bool RefreshKeepingTyped(FileAsBox& box, std::string_view last, std::string_view first,
                         std::string_view company, std::string_view homeCity) {
    const WipedText typed = box.text;
    const std::int32_t chosen = box.Chosen();
    RefreshFileAs(box, last, first, company, homeCity);
    if (typed.empty() || IsOffer(chosen)) return false;
    box.text = typed;
    if (box.Chosen() < 0) box.entries.push_back({typed, kTyped});
    return !IsOffer(box.Chosen());
}

}  // namespace bmr::address
