#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <variant>
#include <vector>

#include "interchange/palmcategories.h"
#include "interchange/palmmapping.h"
#include "store/session.h"

/// The import of a Palm Desktop file into a section: first a plan, which is shown, then the plan is stored.
namespace bmr::interchange {

/// What became of one record of the file otherwise than it was there.
struct PalmRemark {
    std::size_t place = 0;  ///< in the file, from 1
    WipedText title;        ///< by which the record is known
    std::string what;       ///< "ends before it begins: it ends where it begins now"
    bool leftOut = false;
};

/// All that an import would do. Nothing is written yet.
struct PalmPlan {
    std::uint8_t section = 0;
    CategoryMerge categories;
    bool categoriesUnread = false;  ///< the section's list cannot be read: it stays, and all are unfiled
    std::variant<std::vector<notes::Memo>, std::vector<tasks::Task>, std::vector<calendar::Appointment>,
                 std::vector<PalmContact>>
        records;
    /// For each of the records whether the section has one that looks the same.
    std::vector<bool> known;
    std::vector<PalmRemark> remarks;
    /// 0, or `ReadFailed` when the file could not be read to its end: what was read is here.
    int failure = 0;

    std::size_t Count() const { return known.size(); }
    std::size_t Known() const;
    std::size_t LeftOut() const;  ///< that cannot be kept at all
    std::size_t Changed() const;  ///< records with remarks that are not left out
};

/// Reads, maps and compares. `WrongVersion`, `WrongName`, `NotFound` or the engine's number.
Result<PalmPlan> PlanPalmImport(store::Session& session, std::uint8_t section,
                                const std::filesystem::path& file, const LocaleFacts& locale);

struct PalmOutcome {
    int error = 0;  ///< `Cancelled` or an error number; then nothing was stored
    std::size_t added = 0;
    std::size_t leftOut = 0;  ///< known ones and such as cannot be kept
};
/// Stores the records of a plan with its new categories, in one transaction and one step to be taken back.
/// `withKnown`: also those that look like records that exist. `progress` is told of the records stored and of
/// all; false rolls all back. The texts of the plan's records are wiped with them.
PalmOutcome StorePalmPlan(store::Session& session, PalmPlan& plan, bool withKnown,
                          const std::function<bool(std::size_t done, std::size_t all)>& progress = {});

/// The message of an import that went well; it is shown behind the count and Msg 104.
int PalmSuccessMessage(std::uint8_t section);

}  // namespace bmr::interchange
