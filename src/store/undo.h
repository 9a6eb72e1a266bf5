#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <set>
#include <span>
#include <vector>

#include "store/session.h"

namespace bmr::store {

enum class UndoWay : std::uint8_t { Undo, Redo };

/// The step that comes next for a section; null without one.
const UndoRecord* NextStep(const Session& session, std::uint8_t section, UndoWay way);
/// Whether it may be done now: not while private records are hidden that were shown when it was made.
bool MayTake(const Session& session, std::uint8_t section, UndoWay way);

struct UndoOutcome {
    int error = 0;                   ///< the engine's number; then nothing was written, and the step stays
    std::size_t written = 0;         ///< rows that are as they were
    std::size_t left = 0;            ///< rows that were changed meanwhile and stay as they are
    std::vector<std::int32_t> keys = {};  ///< of the rows that stand again or have changed
};

/// Takes the section's last step back, or does the one that was taken back again, in one transaction: rows
/// come back as they were, keys and change marks included. A row keeps the place that it had as long as
/// nothing else has moved around it, else it gets a new one. REQUIRES: `MayTake`.
UndoOutcome TakeStep(Session& session, std::uint8_t section, UndoWay way);

/// The numbers of categories that rows and lists of a section's steps carry.
std::set<std::int32_t> NumbersInSteps(Session& session, std::uint8_t section);

/// What a question adds to its text then.
inline constexpr const char* kCannotBeUndone = "\r\n\r\nThis cannot be undone.";

/// Whether a delete of the rows of a section that meet `clauses`, or of those keys, takes more memory than
/// all steps may, so that it cannot be taken back.
bool TooLargeToUndo(Session& session, std::uint8_t section, const std::string& clauses);
bool TooLargeToUndo(Session& session, std::span<const std::int32_t> keys);

}  // namespace bmr::store
