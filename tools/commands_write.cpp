#include "base/languageus.h"
#include "commands.h"
#include "rows.h"
#include "sitting.h"
#include "store/section_store.h"
#include "tasks/task.h"

namespace bmr::tools {
namespace {

/// The record of a key in one of the sections; throws for a hidden one too.
Row SectionRow(Sitting& sitting, const Options& options) {
    auto row = FindRow(sitting.session(), options.fPK, options.showPrivate);
    if (!row) throw Failure(row.error().detail);
    if (row->fSec < store::Section::Address)
        throw Failure("The record belongs to the database itself and stays.");
    if (!store::FactsOf(row->fSec))
        throw Failure("The record is of a class that this version does not know, and stays.");
    return *row;
}

}  // namespace

void RunDone(const Options& options) {
    Sitting sitting(options.passphraseFd);
    sitting.Open(options.file);
    if (SectionRow(sitting, options).fSec != store::Section::Todo) throw Failure("The record is no task.");
    const auto outcome = tasks::SetCompleted(sitting.session(), options.fPK, true);
    sitting.Check(outcome.error);
    if (!outcome.record) throw Failure(Msg(31));
    sitting.Close();
}

void RunDelete(const Options& options) {
    Sitting sitting(options.passphraseFd);
    sitting.Open(options.file);
    SectionRow(sitting, options);
    sitting.Check(store::DeleteRow(sitting.session(), options.fPK));
    sitting.Close();
}

}  // namespace bmr::tools
