#include "store/undostep.h"

#include "store/sections.h"

namespace bmr::store {

UndoStep::UndoStep(Session& session, std::uint8_t section, StepWords words)
    : session_(session), outer_(!session.undo.open) {
    if (!outer_) return;
    UndoRecord& step = session.undo.open.emplace();
    step.section = section;
    step.words = std::move(words);
    step.privateShown = session.ShowPrivate;
    session.undo.spread.clear();
}

UndoStep::~UndoStep() {
    if (!outer_ || kept_) return;
    // What became of the rows may not be known: older steps then find no place as it was.
    for (const auto& [stretch, change] : session_.undo.open->places)
        session_.undo.NewState(stretch);
    session_.undo.open.reset();
}

std::optional<RowMark> UndoStep::Mark(const engine::Recordset& row) const {
    if (!session_.undo.recording) return std::nullopt;
    return MarkOf(row, session_.undo.open->section);
}

void UndoStep::Record(std::int32_t fPK, std::unique_ptr<RowImage> before,
                      const std::optional<RowMark>& after) {
    UndoLog& log = session_.undo;
    if (!log.recording) return;
    UndoRecord& step = *log.open;
    ++step.rows;
    if (!before) ++step.added;
    if (!after) ++step.deleted;
    const auto mark = before ? std::optional(MarkOf(*before, step.section)) : std::nullopt;
    if (!mark || !after || !mark->SamePlace(*after))
        for (const auto* end : {&mark, &after})
            if (*end && (*end)->stretch)
                step.places.try_emplace(*(*end)->stretch, PlaceChange{log.StateOf(*(*end)->stretch), 0});
    log.Append({.fPK = fPK,
                .before = std::move(before),
                .after = after ? std::optional(after->stamp) : std::nullopt});
}

void UndoStep::CountDeleted(std::size_t rows) {
    if (session_.undo.recording && session_.undo.open->tooLarge)
        session_.undo.open->rows = session_.undo.open->deleted = rows;
}

void UndoStep::Keep() {
    kept_ = true;
    if (!outer_) return;
    if (session_.undo.open->rows > 0 && FactsOf(session_.undo.open->section))
        session_.undo.Close();
    else
        session_.undo.open.reset();
}

}  // namespace bmr::store
