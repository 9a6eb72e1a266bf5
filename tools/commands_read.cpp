#include <algorithm>
#include <iostream>
#include <vector>

#include "base/languageus.h"
#include "commands.h"
#include "confidential/kinds.h"
#include "listtable.h"
#include "recordjson.h"
#include "recordkinds.h"
#include "sitting.h"
#include "store/section_store.h"

namespace bmr::tools {
namespace {

std::string ConditionOf(store::Session& session, const Options& options, std::uint8_t section) {
    std::string condition = "fSec=" + std::to_string(section);
    if (section == store::Section::Todo && !options.all) condition += " And fF3 = False";
    if (options.kind) {
        if (section != store::Section::Confidential) throw Failure("--kind is for confidential records.");
        if (confidential::ConfidentialKindFields(*options.kind) == nullptr)
            throw Failure("There is no kind " + std::to_string(*options.kind) + ".");
        condition += " And fG1=" + std::to_string(*options.kind);
    }
    if (!options.category.empty() && section == store::Section::Confidential)
        throw Failure("Confidential records have kinds in place of categories: use --kind.");
    if (!options.category.empty())
        condition += store::CategoryClause(CategoryByName(session, section, options.category));
    return condition;
}

/// The caption that a kind gives to one of its fields n0 to n4, empty for other fields and unknown kinds.
std::string CaptionOf(const Json& json, const std::string& name) {
    if (!json.contains("kind") || name.size() != 2 || name[0] != 'n' || name[1] < '0' || name[1] > '4')
        return {};
    const auto* kind = confidential::ConfidentialKindFields(json["kind"]["number"].get<std::int32_t>());
    if (kind == nullptr) return "PIN or other";  // of a kind that is not known here: might be a secret
    return std::string(kind->captions[static_cast<std::size_t>(name[1] - '0')]);
}

/// Name and value of each field on a line of its own; further lines of a text are indented below it. Secrets
/// show a mask that does not tell their length.
void PrintRecord(const Json& json, bool plain) {
    for (const auto& [name, value] : json.items()) {
        std::string text = value.is_string() ? value.get<std::string>() : value.dump();
        if (name == "category") text = value["name"].get<std::string>();
        if (name == "kind") text = value["number"].dump() + " " + value["caption"].get<std::string>();
        const std::string caption = CaptionOf(json, name);
        if (!plain && !text.empty() && confidential::IsMaskedCaption(caption)) text = "????????";
        std::cout << name << (caption.empty() ? "" : " (" + caption + ")") << ":";
        for (std::size_t at = 0; at <= text.size();) {
            const std::size_t end = std::min(text.find('\n', at), text.size());
            std::cout << (at == 0 ? " " : "    ") << Printable(text.substr(at, end - at)) << '\n';
            at = end + 1;
        }
    }
}

}  // namespace

void RunList(const Options& options) {
    const RecordKind* kind = SectionByName(options.section);
    if (kind == nullptr) throw Failure("There is no section \"" + options.section + "\".");
    Sitting sitting(options.passphraseFd);
    sitting.Open(options.file);
    store::Session& session = sitting.session();
    CategoryNames names(session);
    ListTable table(*kind, options.json, session.ports.clock.Today());
    const auto listTexts = kind->fSec == store::Section::Address ? ListTexts::Decipher : ListTexts::Leave;
    sitting.Check(ForEachRow(session, ConditionOf(session, options, kind->fSec), listTexts,
                             [&](const Row& row, std::string_view payload) {
                                 if (!IsHidden(session, options.showPrivate, row, payload))
                                     table.Add(row, RecordJson(session, row, payload, names));
                             }));
    table.Print(std::cout);
}

void RunShow(const Options& options) {
    Sitting sitting(options.passphraseFd);
    sitting.Open(options.file);
    store::Session& session = sitting.session();
    CategoryNames names(session);
    bool shown = false;
    sitting.Check(ForEachRow(session, "fPK=" + std::to_string(options.fPK), ListTexts::Leave,
                             [&](const Row& row, std::string_view payload) {
                                 if (shown || IsHidden(session, options.showPrivate, row, payload)) return;
                                 shown = true;
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
    sitting.Open(options.file);
    store::Session& session = sitting.session();
    CategoryNames names(session);
    bool first = true;
    const int error =
        ForEachRow(session, "", ListTexts::Leave, [&](const Row& row, std::string_view payload) {
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
