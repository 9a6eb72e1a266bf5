#pragma once

#include <QString>

namespace bmr::store {
struct UndoRecord;
struct UndoOutcome;
}  // namespace bmr::store

namespace bmr::kit {

/// "12 memos", "1 memo".
QString CountOf(std::uint8_t section, std::size_t count);

/// What a step is called in a menu, behind "Undo": "delete of 12 memos", "new memo".
QString StepName(const store::UndoRecord& step);
/// What it has done: "Memo deleted.", "12 memos moved."
QString StepDone(const store::UndoRecord& step);
/// What came of taking a step back or doing it again: `done` ("Undone: delete of 12 memos.") and what stayed
/// as it was.
QString StepTaken(const QString& done, const store::UndoOutcome& outcome);

}  // namespace bmr::kit
