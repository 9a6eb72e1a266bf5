#include "address/section.h"

#include "address/addressbook.h"
#include "address/addwords.h"

namespace bmr::address {
namespace {

constexpr auto kRules = store::RulesOf(kAddressFields);

std::string Clauses(store::Session& session, const store::ListRequest& request) {
    return ClausesOf(session, request.group);
}

Result<std::vector<std::int32_t>> List(store::Session& session, const store::ListRequest& request) {
    return ListRecords(session, request.group);
}

store::SeveralOutcome Move(store::Session& session, store::Keys keys, std::int32_t category) {
    return store::MoveSeveral(session, kRecordVerbs, keys, &Record::category, category);
}

store::SeveralOutcome Hide(store::Session& session, store::Keys keys, bool isPrivate) {
    return store::HideSeveral(session, kRecordVerbs, keys, isPrivate);
}

store::SeveralOutcome Remove(store::Session& session, store::Keys keys) {
    return store::DeleteSeveral(session, kRecordVerbs, keys);
}

constexpr store::SectionFacts kSections[] = {
    {.code = store::Section::Address,
     .command = "address",
     .title = "Address",
     .name = "Address Book",
     .one = "address",
     .many = "addresses",
     .purpose = "People and firms, their numbers and addresses.",
     .icon = "x-office-address-book",
     .lastCategory = 0,
     .privateField = FieldNumber::Private,
     .fields = kRules,
     .order = &kRecords,
     .clauses = Clauses,
     .list = List,
     .add = AddFromWords,
     .options = kAddOptions,
     .move = Move,
     .hide = Hide,
     .remove = Remove},
};

}  // namespace

std::span<const store::SectionFacts> Sections() {
    return kSections;
}

}  // namespace bmr::address
