#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "base/result.h"
#include "calendar/calendar.h"
#include "store/session.h"

/// Old appointments leave the database: deleted, or moved as they stand, still enciphered, to an archive,
/// which is a database of its own under the same passphrase. Single appointments go up to the day and on it;
/// a series goes as a whole when it began before the day, also when it still runs.
namespace bmr::calendar {

/// A series that would go although it comes again after the day.
struct RunningSeries {
    std::int32_t key = 0;
    Day first;
    std::optional<Day> last;  ///< none: it has no end
    WipedText subject;        ///< UTF-8
};

/// What would go until `day`: the list to show before the question. Private series are left out of it while
/// private records are hidden.
Result<std::vector<RunningSeries>> SeriesStillRunning(store::Session& session, Day until);

/// The questions, with Msg 152, 153, 162 and 163, and how many would go; whoever keeps no archive is asked
/// twice. True: go on.
bool ConfirmArchive(store::Session& session, Day until, bool keep, const LocaleFacts& locale);

struct ArchiveOutcome {
    int error = 0;            ///< 0, or the engine's number
    std::string words = {};   ///< what went wrong and what stands now, UTF-8
    std::int64_t series = 0;  ///< rows that went
    std::int64_t singles = 0;
};

/// Deletes them. A step that can be taken back.
ArchiveOutcome DeleteUntil(store::Session& session, Day until);

/// Moves them to `file`, which is made unless it exists. An existing one is added to only if this session's
/// keys decode it, and then opens with the passphrase of today; otherwise it is left as it is, and nothing is
/// deleted. Series and single appointments are a transaction each over both files: at any moment every row
/// stands in one of them. A row whose key stands in the archive already gets another there.
ArchiveOutcome ArchiveUntil(store::Session& session, Day until, const std::filesystem::path& file);

}  // namespace bmr::calendar
