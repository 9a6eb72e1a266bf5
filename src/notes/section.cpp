#include "notes/section.h"

#include "notes/memo.h"
#include "store/categories.h"

namespace bmr::notes {
namespace {

constexpr auto kRules = store::RulesOf(kMemoFields);

std::string Clauses(store::Session& session, const store::ListRequest& request) {
    return store::CategoryClause(session, store::Section::Memo, request.group);
}

Result<std::vector<std::int32_t>> List(store::Session& session, const store::ListRequest& request) {
    return ListRecords(session, request.group);
}

Result<std::int32_t> Add(store::Session& session, const store::NewRecord& given) {
    Memo memo = ClearRecord(session, given.group);
    memo.isPrivate = given.isPrivate;
    if (auto problem = store::SetFields(store::SlotsOf(memo, kMemoFields), given); !problem.empty())
        return Error{0, std::move(problem)};
    if (TrimBlanks(memo.subject).empty()) return Error{0, "Subject is required."};
    if (const int error = WriteRecord(session, memo)) return Error{error, {}};
    return memo.key;
}

constexpr store::FieldOption kOptions[] = {{"--subject", "Subject", "the subject in one line"},
                                           {"--body", "Memo", "the text"}};

store::SeveralOutcome Move(store::Session& session, store::Keys keys, std::int32_t category) {
    return store::MoveSeveral(session, kMemoVerbs, keys, &Memo::category, category);
}

store::SeveralOutcome Hide(store::Session& session, store::Keys keys, bool isPrivate) {
    return store::HideSeveral(session, kMemoVerbs, keys, isPrivate);
}

store::SeveralOutcome Remove(store::Session& session, store::Keys keys) {
    return store::DeleteSeveral(session, kMemoVerbs, keys);
}

constexpr store::SectionFacts kSections[] = {
    {.code = store::Section::Memo,
     .command = "memo",
     .title = "Memo",
     .name = "Memo Pad",
     .one = "memo",
     .many = "memos",
     .purpose = "Notes of any length.",
     .icon = "view-pim-notes",
     .lastCategory = 2,
     .privateField = 1,
     .fields = kRules,
     .order = &kMemos,
     .clauses = Clauses,
     .list = List,
     .add = Add,
     .options = kOptions,
     .move = Move,
     .hide = Hide,
     .remove = Remove},
};

}  // namespace

std::span<const store::SectionFacts> Sections() {
    return kSections;
}

}  // namespace bmr::notes
