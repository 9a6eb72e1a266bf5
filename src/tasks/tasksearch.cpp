#include "tasks/tasksearch.h"

#include "store/privatefilter.h"
#include "store/words.h"

namespace bmr::tasks {

namespace {

/// What of a row lies in plain columns.
bool PlainMatch(const TaskRow& row, const store::Needle& needle, const store::CategoryList& categories,
                const LocaleFacts& locale) {
    if (needle.AsksTrueText()) return false;
    return needle.InTold(store::CategoryName(categories, row.category)) ||
           needle.InTold(SubItemText(row, SubItem::DueDate, categories, locale)) ||
           needle.InTold(SubItemText(row, SubItem::ExecDate, categories, locale));
}

}  // namespace

int KeepMatching(store::Session& session, const TaskFilter& filter, const std::string& search,
                 const store::CategoryList& categories, const LocaleFacts& locale,
                 std::vector<TaskRow>& rows) {
    const auto named = store::RecordsNamed(session, store::Section::Todo, kTaskFields[0].rule.number,
                                           ClausesOf(session, filter), search);
    if (!named) return named.error().number;
    const store::Needle needle(search);
    std::erase_if(rows, [&](const TaskRow& row) {
        return !named->contains(row.fPK) && !PlainMatch(row, needle, categories, locale);
    });
    return 0;
}

}  // namespace bmr::tasks
