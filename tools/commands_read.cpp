#include <algorithm>
#include <iostream>
#include <unordered_set>
#include <vector>

#include "addresscard.h"
#include "base/languageus.h"
#include "commands.h"
#include "listtable.h"
#include "recordjson.h"
#include "recordkinds.h"
#include "sitting.h"
#include "store/categories.h"
#include "store/section_store.h"

namespace bmr::tools {
namespace {

store::ListRequest RequestOf(store::Session& session, const Options& options,
                             const store::SectionFacts& section) {
    store::ListRequest request{
        .all = options.all, .from = DayOption("--from", options.from), .to = DayOption("--to", options.to)};
    if (options.kind) {
        RefuseKinds(section);
        if (section.kindName(*options.kind).empty())
            throw Failure("There is no kind " + std::to_string(*options.kind) + ".");
        request.group = *options.kind;
    }
    if (!options.category.empty()) {
        RefuseCategories(section);
        request.group = CategoryByName(session, section.code, options.category);
    }
    return request;
}

/// The conditions of a section that has no list yet.
std::string ClausesOf(store::Session& session, const store::SectionFacts& section,
                      const store::ListRequest& request) {
    return section.clauses ? section.clauses(session, request)
                           : store::CategoryClause(session, section.code, request.group);
}

/// What the record's kind calls a field; nothing where kinds do not.
store::FieldCaption CaptionOf(const Json& json, const std::string& name) {
    const auto* section = store::FactsOf(json.value("fSec", 0));
    if (!section || !section->caption || !json.contains("kind")) return {};
    const auto rule = std::ranges::find(section->fields, name, &store::FieldRule::name);
    if (rule == section->fields.end()) return {};
    return section->caption(json["kind"]["number"].get<std::int32_t>(), rule->number);
}

/// Name and value of each field on a line of its own; further lines of a text are indented below it. Secrets
/// show a mask that does not tell their length.
void PrintRecord(const Json& json, bool plain) {
    for (const auto& [name, value] : json.items()) {
        std::string text = value.is_string() ? value.get<std::string>() : value.dump();
        if (name == "category") text = value["name"].get<std::string>();
        if (name == "kind") text = value["number"].dump() + " " + value["caption"].get<std::string>();
        const store::FieldCaption caption = CaptionOf(json, name);
        if (!plain && !text.empty() && caption.masked) text = "????????";
        std::cout << name << (caption.text.empty() ? "" : " (" + std::string(caption.text) + ")") << ":";
        for (std::size_t at = 0; at <= text.size();) {
            const std::size_t end = std::min(text.find('\n', at), text.size());
            std::cout << (at == 0 ? " " : "    ") << Printable(text.substr(at, end - at)) << '\n';
            at = end + 1;
        }
    }
}

}  // namespace

void RunList(const Options& options) {
    const store::SectionFacts& section = SectionByName(options.section);
    const bool ofPeriod = !options.from.empty() || !options.to.empty();
    if ((ofPeriod && !section.spans) || options.rows || !options.week.empty()) RefuseWeeks(section);
    if (options.rows && ofPeriod) throw Failure("--rows shows every row: --from and --to do not go with it.");
    if (section.code == store::Section::Calendar && !options.rows) return ListOccurrences(options);
    Sitting sitting(options.passphraseFd);
    sitting.Open(options.file, engine::Access::Read);
    store::Session& session = sitting.session();
    session.ShowPrivate = session.ShowPrivate || options.showPrivate;
    const store::ListRequest request = RequestOf(session, options, section);
    std::vector<std::int32_t> keys;
    if (section.list) {
        auto listed = section.list(session, request);
        if (!listed) throw Failure(listed.error().detail);
        keys = std::move(*listed);
    }
    // The address book has rows that no list shows, and the marks of private ones in a column.
    const bool onlyListed = section.code == store::Section::Address;
    const std::unordered_set<std::int32_t> listed(keys.begin(), keys.end());
    CategoryNames names(session);
    ListTable table(section, options.json);
    const auto* name = section.NameRule();
    const bool inColumn = (name && name->kind == store::Kind::ColumnName) || section.inText;
    const std::string condition =
        "fSec=" + std::to_string(section.code) + ClausesOf(session, section, request);
    sitting.Check(ForEachRow(session, condition, inColumn ? ListTexts::Decipher : ListTexts::Leave,
                             [&](const Row& row, std::string_view payload) {
                                 if (!IsHidden(session, options.showPrivate, row, payload) &&
                                     (!onlyListed || listed.contains(row.fPK)))
                                     table.Add(row, RecordJson(session, row, payload, names));
                             }));
    table.Print(std::cout, keys);
}

void RunShow(const Options& options) {
    Sitting sitting(options.passphraseFd);
    sitting.Open(options.file, engine::Access::Read);
    store::Session& session = sitting.session();
    CategoryNames names(session);
    bool shown = false;
    sitting.Check(ForEachRow(session, "fPK=" + std::to_string(options.fPK), ListTexts::Decipher,
                             [&](const Row& row, std::string_view payload) {
                                 if (shown || IsHidden(session, options.showPrivate, row, payload)) return;
                                 shown = true;
                                 if (options.card) return PrintCard(session, options, row, payload);
                                 const Json json = RecordJson(session, row, payload, names);
                                 if (options.json)
                                     std::cout << DumpLine(json, 2) << '\n';
                                 else
                                     PrintRecord(json, options.plain);
                             }));
    if (!shown) throw Failure(Msg(31));
}

void RunDump(const Options& options) {
    Sitting sitting(options.passphraseFd);
    sitting.Open(options.file, engine::Access::Read);
    store::Session& session = sitting.session();
    CategoryNames names(session);
    bool first = true;
    const int error =
        ForEachRow(session, "", ListTexts::Decipher, [&](const Row& row, std::string_view payload) {
            if (IsHidden(session, options.showPrivate, row, payload)) return;
            const Json json = RecordJson(session, row, payload, names);
            if (options.json) {
                std::cout << (first ? "[\n" : ",\n") << DumpLine(json);
            } else {
                if (!first) std::cout << '\n';
                PrintRecord(json, options.plain);
            }
            first = false;
        });
    sitting.Check(error);
    if (options.json) std::cout << (first ? "[]\n" : "\n]\n");
}

}  // namespace bmr::tools
