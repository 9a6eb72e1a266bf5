#include "confidential/section.h"

#include "confidential/confidential.h"
#include "confidential/kinds.h"

namespace bmr::confidential {
namespace {

constexpr auto kRules = store::RulesOf(ConfidentialFields);

std::string Clauses(store::Session&, const store::ListRequest& request) {
    return request.group < 0 ? std::string() : " And fG1=" + std::to_string(request.group);
}

/// Without a kind, all of them in the order of the screen.
Result<std::vector<std::int32_t>> List(store::Session& session, const store::ListRequest& request) {
    if (request.group >= 0) return ListRecords(session, request.group);
    std::vector<std::int32_t> all;
    for (const Kind& kind : ConfidentialKinds()) {
        const auto keys = ListRecords(session, kind.number);
        if (!keys) return keys.error();
        all.insert(all.end(), keys->begin(), keys->end());
    }
    return all;
}

struct WipedRecord : Record {
    ~WipedRecord() { WipeRecord(*this); }
};

/// What may stand in an argument list, which every process of the machine can read.
bool SetOpenField(Record& record, const Kind& kind, std::string_view name, std::string_view value,
                  std::string& problem) {
    for (std::size_t i = 0; i < record.n.size(); ++i) {
        if (ConfidentialFields[i].rule.name != name) continue;
        const std::string caption(kind.captions[i]);
        const auto slots = store::SlotsOf(record, ConfidentialFields);
        if (caption.empty())
            problem = "The kind " + std::string(kind.caption) + " has no " + std::string(name) + ".";
        else if (IsMaskedCaption(caption))
            problem = std::string(name) + " is the field " + caption + " of " + std::string(kind.caption) +
                      ": other processes could read it in the arguments. Give it as a line of --secret-fd, "
                      "or on the terminal.";
        else  // only the second field has kinds in which it takes several lines
            problem = store::SetField(slots, name, value, i == 1 && kind.height > 1);
        return true;
    }
    return false;
}

Result<std::int32_t> Add(store::Session& session, const store::NewRecord& given) {
    const Kind* kind = ConfidentialKindFields(given.group);
    if (!kind) return Error{0, "There is no kind " + std::to_string(given.group) + "."};
    WipedRecord record;
    record.kind = kind->number;
    record.isPrivate = given.isPrivate;
    Record& plain = record;
    auto problem = store::SetFields(store::SlotsOf(plain, ConfidentialFields), given,
                                    [&](std::string_view name, std::string_view value, std::string& why) {
                                        return SetOpenField(record, *kind, name, value, why);
                                    });
    if (!problem.empty()) return Error{0, std::move(problem)};
    for (std::size_t i = 0; i < kind->FieldCount(); ++i) {
        if (!IsMaskedCaption(kind->captions[i]) || !given.ask) continue;
        const auto typed = given.ask(std::string(kind->captions[i]));
        if (!typed) return typed.error();
        record.n[i] = typed->view();
    }
    if (const int error = WriteRecord(session, record)) return Error{error, {}};
    return record.key;
}

std::string_view KindName(std::int32_t number) {
    const Kind* kind = ConfidentialKindFields(number);
    return kind ? kind->caption : std::string_view();
}

store::FieldCaption CaptionOf(std::int32_t number, std::uint8_t field) {
    if (field >= 5) return {};
    const Kind* kind = ConfidentialKindFields(number);
    if (!kind) return {"PIN or other", true};  // of a kind that is not known here: might be a secret
    return {kind->captions[field], IsMaskedCaption(kind->captions[field])};
}

constexpr store::FieldOption kOptions[] = {{"--n0", "n0", "the first field of the kind, its name"},
                                           {"--n1", "n1", "the second field"},
                                           {"--n2", "n2", "the third field"},
                                           {"--n3", "n3", "the fourth field"},
                                           {"--n4", "n4", "the fifth field"},
                                           {"--notes", "notes", "notes of any length"}};

store::SeveralOutcome Hide(store::Session& session, store::Keys keys, bool isPrivate) {
    return store::HideSeveral(session, kRecordVerbs, keys, isPrivate);
}

store::SeveralOutcome Remove(store::Session& session, store::Keys keys) {
    return store::DeleteSeveral(session, kRecordVerbs, keys);
}

constexpr store::SectionFacts kSections[] = {
    {.code = store::Section::Confidential,
     .command = "confidential",
     .title = "Confidential",
     .name = "Confidential",
     .one = "record",
     .many = "records",
     .purpose = "Logins, accounts, cards and keys.",
     .icon = "security-high",
     .privateField = 7,
     .fields = kRules,
     .order = &kRecords,
     .clauses = Clauses,
     .list = List,
     .add = Add,
     .options = kOptions,
     .hide = Hide,
     .remove = Remove,
     .kindName = KindName,
     .caption = CaptionOf},
};

}  // namespace

std::span<const store::SectionFacts> Sections() {
    return kSections;
}

}  // namespace bmr::confidential
