#include "store/severalrows.h"

#include "store/undostep.h"

namespace bmr::store {

SeveralOutcome ChangeSeveral(Session& session, std::uint8_t section, Keys keys, StepWords words,
                             const std::function<Result<RowChange>(std::int32_t key)>& change) {
    UndoStep step(session, section, std::move(words));
    engine::Transaction all(*session.ProgramDb);
    if (all.error() != 0) return {.error = all.error()};
    session.bucketOrder.Clear();  // to look for each of many rows in it costs more than to read it again
    SeveralOutcome outcome;
    for (const std::int32_t key : keys) {
        const auto came = change(key);
        if (!came) {
            session.bucketOrder.Clear();  // it knows of rows that are being rolled back
            return {.error = came.error().number};
        }
        if (*came == RowChange::Changed) ++outcome.changed;
        if (*came == RowChange::Unread) ++outcome.unread;
    }
    if (const int error = all.Commit()) {
        session.bucketOrder.Clear();
        return {.error = error};
    }
    step.Keep();
    if (outcome.changed > 0) session.CalendarDirty = true;
    return outcome;
}

}  // namespace bmr::store
