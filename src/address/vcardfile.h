#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "address/tabexport.h"
#include "base/ports.h"
#include "base/result.h"
#include "base/wiped.h"
#include "store/session.h"

/// The address book as a file of vCards, and such files into it.
namespace bmr::address {

/// Writes what the list of a category shows, in its order, as `ExportAddressTabDelimited` does.
Result<Exported> ExportVCards(store::Session& session, std::int32_t category,
                              const std::filesystem::path& path);

/// What is to be done with a card, or was.
enum class CardFate : std::uint8_t { Add, Merge, Skip };

/// A card of a file.
struct SeenCard {
    std::size_t number = 0;  ///< in the file, from 1
    std::size_t line = 0;    ///< where it begins
    WipedText name;          ///< what it will be filed as
    WipedText contact;
    std::vector<std::string> leftOut;  ///< properties that nothing is kept of
    std::string problem;               ///< not empty: it cannot be added
    /// A record, or an earlier card of the file, that has the same name, or one of its numbers.
    bool sameName = false;
    bool sameNumber = false;

    bool IsDuplicate() const { return sameName && sameNumber; }
};

/// Tells what a file holds, card by card, with nothing stored. Names and numbers are compared with all
/// records that the list shows now. False from `each` ends it.
Result<std::size_t> PreviewVCards(store::Session& session, const std::filesystem::path& path,
                                  const std::function<bool(const SeenCard& card)>& each);

struct ImportedCard {
    std::size_t number = 0;
    WipedText name;
    CardFate fate = CardFate::Skip;
    std::string reason;  ///< why it was skipped, and what of it was left out
};

struct ImportReport {
    std::vector<ImportedCard> cards;
    std::size_t added = 0;
    std::size_t merged = 0;
    std::size_t skipped = 0;
};

/// How a file is taken in.
struct ImportPlan {
    std::int32_t category = 0;  ///< of cards that name none that exists
    /// Asked for each card without a problem, in the file's order.
    std::function<CardFate(const SeenCard& card)> fate;
    LocaleFacts locale;
};

/// Stores the cards of a file, all in one transaction and one step. Merging fills what the record lacks, and
/// puts what is different into its notes. On an error nothing is stored, and the error's words tell why.
Result<ImportReport> ImportVCards(store::Session& session, const std::filesystem::path& path,
                                  const ImportPlan& plan);

}  // namespace bmr::address
