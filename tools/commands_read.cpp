#include <algorithm>
#include <iostream>
#include <vector>

#include "base/languageus.h"
#include "commands.h"
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
    if (!options.category.empty())
        condition += store::CategoryClause(CategoryByName(session, section, options.category));
    return condition;
}

/// Name and value of each field on a line of its own; further lines of a text are indented below it.
void PrintRecord(const Json& json) {
    for (const auto& [name, value] : json.items()) {
        std::string text = value.is_string() ? value.get<std::string>() : value.dump();
        if (name == "category") text = value["name"].get<std::string>();
        std::cout << name << ":";
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
                                     PrintRecord(json);
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
                PrintRecord(json);
            }
            first = false;
        });
    sitting.Check(error);
    if (options.json) std::cout << (first ? "[]\n" : "\n]\n");
}

}  // namespace bmr::tools
