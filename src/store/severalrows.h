#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <span>

#include "store/categories.h"
#include "store/section_store.h"
#include "store/sections.h"

namespace bmr::store {

/// What came of one row of several.
enum class RowChange : std::uint8_t {
    Changed,
    Same,    ///< it was so already
    Unread,  ///< its record does not decode: it stays as it is
    Gone,    ///< the row is not there any more
};

struct SeveralOutcome {
    int error = 0;  ///< an error number; then nothing was written
    std::size_t changed = 0;
    std::size_t unread = 0;  ///< rows that do not decode, and were left as they are
};

/// Runs `change` for each of the keys, all in one transaction and in one step that the user can take back.
/// The first error number ends it, with nothing changed.
SeveralOutcome ChangeSeveral(Session& session, std::uint8_t section, Keys keys, StepWords words,
                             const std::function<Result<RowChange>(std::int32_t key)>& change);

/// The verbs of a section's record.
template <class Record>
struct RecordVerbs {
    std::uint8_t section;
    std::optional<Record> (*fetch)(Session& session, std::int32_t key, int* error);
    int (*write)(Session& session, Record& record);
    void (*wipe)(Record& record);
    /// A record that does not decode keeps its texts as they are in the file when it is stored.
    bool keepsUnread = false;
};

/// `ChangeSeveral` for records: each is fetched, `act` gets it and tells what came of it, and it is wiped.
/// `unread`: it also gets a record that does not decode, if that is the only one.
template <class Record, class Act>
SeveralOutcome ForSeveral(Session& session, const RecordVerbs<Record>& verbs, Keys keys, StepWords words,
                          const Act& act, bool unread) {
    return ChangeSeveral(session, verbs.section, keys, std::move(words),
                         [&](std::int32_t key) -> Result<RowChange> {
                             int error = 0;
                             std::optional<Record> record = verbs.fetch(session, key, &error);
                             if (error != 0) return Error{error, {}};
                             if (!record) return RowChange::Gone;
                             Result<RowChange> came = RowChange::Unread;
                             if (record->readable || (unread && keys.size() == 1)) came = act(*record);
                             verbs.wipe(*record);
                             return came;
                         });
}

/// Sets one member of several records, and stores those in which it was another.
template <class Record, class Value>
SeveralOutcome SetInSeveral(Session& session, const RecordVerbs<Record>& verbs, Keys keys, StepWords words,
                            Value Record::*member, const Value& value) {
    return ForSeveral(
        session, verbs, keys, std::move(words),
        [&](Record& record) -> Result<RowChange> {
            if (record.*member == value) return RowChange::Same;
            record.*member = value;
            if (const int error = verbs.write(session, record)) return Error{error, {}};
            return RowChange::Changed;
        },
        verbs.keepsUnread);
}

template <class Record>
SeveralOutcome MoveSeveral(Session& session, const RecordVerbs<Record>& verbs, Keys keys,
                           std::int32_t Record::*group, std::int32_t category) {
    return SetInSeveral(session, verbs, keys, {"move", "moved"}, group, RealCategory(category));
}

template <class Record>
SeveralOutcome HideSeveral(Session& session, const RecordVerbs<Record>& verbs, Keys keys, bool isPrivate) {
    return SetInSeveral(session, verbs, keys, {"change", isPrivate ? "made private" : "no longer private"},
                        &Record::isPrivate, isPrivate);
}

template <class Record>
SeveralOutcome DeleteSeveral(Session& session, const RecordVerbs<Record>& verbs, Keys keys) {
    return ForSeveral(
        session, verbs, keys, {},
        [&](Record& record) -> Result<RowChange> {
            if (const int error = DeleteRow(session, record.key)) return Error{error, {}};
            return RowChange::Changed;
        },
        true);
}

}  // namespace bmr::store
