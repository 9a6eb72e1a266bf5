#include <algorithm>
#include <iostream>

#include "address/addressbook.h"
#include "address/card.h"
#include "address/tabexport.h"
#include "address/vcardfile.h"
#include "addresscard.h"
#include "recordjson.h"
#include "recordkinds.h"
#include "sitting.h"
#include "store/categories.h"
#include "terminal.h"

namespace bmr::tools {
namespace {

/// A text of many lines as a terminal shows it.
std::string PrintableLines(std::string_view text) {
    std::string shown;
    for (std::size_t at = 0; at < text.size();) {
        std::size_t end = std::min(text.find('\n', at), text.size());
        std::string line(text.substr(at, end - at));
        if (line.ends_with('\r')) line.pop_back();
        std::ranges::replace(line, '\t', ' ');
        shown += Printable(line) + "\n";
        at = end + 1;
    }
    return shown;
}

void RefuseOthers(const Options& options, const char* what) {
    if (SectionByName(options.section).code != store::Section::Address)
        throw Failure(std::string(what) + " is for address, not for " + options.section + ".");
}

std::int32_t CategoryOf(store::Session& session, const Options& options, std::int32_t standard) {
    if (options.category.empty()) return standard;
    return CategoryByName(session, store::Section::Address, options.category);
}

/// Number, name and what there is to say of a card.
std::string CardLineOf(std::string_view what, std::size_t number, std::string_view name,
                       std::string_view more) {
    std::string line(what);
    line.resize(8, ' ');
    line += std::to_string(number) + " " + (name.empty() ? "(no name)" : std::string(name));
    if (!more.empty()) line += " - " + std::string(more);
    return Printable(line);
}

std::string PreviewLine(const address::SeenCard& card) {
    std::string more = card.problem;
    const auto add = [&more](std::string_view text) {
        more += (more.empty() ? "" : "; ") + std::string(text);
    };
    if (card.sameName) add(card.sameNumber ? "name and number are there" : "the name is there");
    if (card.sameNumber && !card.sameName) add("the number is there");
    for (const std::string& name : card.leftOut)
        add("without " + name);
    return CardLineOf(card.problem.empty() ? "card" : "skip", card.number, card.name, more);
}

std::string ReportLine(const address::ImportedCard& card) {
    const std::string_view fate = card.fate == address::CardFate::Add     ? "added"
                                  : card.fate == address::CardFate::Merge ? "merged"
                                                                          : "skipped";
    return CardLineOf(fate, card.number, card.name, card.reason);
}

}  // namespace

void PrintCard(store::Session& session, const Options& options, const Row& row, std::string_view payload) {
    if (row.fSec != store::Section::Address) throw Failure("--card is for addresses.");
    const auto record = address::DecodeAddressRecord(payload, row.listText);
    const address::Card card = address::BuildCard(record, session.userLabels, LocaleOf(options));
    if (options.json)
        std::cout << DumpLine({{"head", card.head}, {"body", address::BodyText(card)}}, 2) << '\n';
    else
        std::cout << PrintableLines(address::CardText(card));
}

void ExportContacts(const Options& options) {
    RefuseOthers(options, "export");
    Sitting sitting(options.passphraseFd);
    sitting.Open(options.file, engine::Access::Read);
    store::Session& session = sitting.session();
    session.ShowPrivate = session.ShowPrivate || options.showPrivate;
    const std::int32_t category = CategoryOf(session, options, store::Category::All);
    const bool tab = !options.tab.empty();
    const auto exported =
        tab ? address::ExportAddressTabDelimited(session, category, options.tab, LocaleOf(options))
            : address::ExportVCards(session, category, options.vcard);
    if (!exported) throw Failure(exported.error().detail);
    std::cout << address::ExportedText(*exported, tab ? options.tab : options.vcard) << '\n';
}

void ImportContacts(const Options& options) {
    RefuseOthers(options, "import");
    Sitting sitting(options.passphraseFd);
    sitting.Open(options.file, options.dryRun ? engine::Access::Read : engine::Access::Write);
    store::Session& session = sitting.session();
    session.ShowPrivate = session.ShowPrivate || options.showPrivate;
    if (options.dryRun) {
        const auto count = address::PreviewVCards(session, options.vcard, [](const address::SeenCard& card) {
            std::cout << PreviewLine(card) << '\n';
            return true;
        });
        if (!count) throw Failure(count.error().detail);
        return;
    }
    address::ImportPlan plan;
    plan.category = store::RealCategory(CategoryOf(session, options, store::Category::Unfiled));
    plan.locale = LocaleOf(options);
    plan.fate = [&options](const address::SeenCard& card) {
        if (!card.IsDuplicate() || options.duplicates == "add") return address::CardFate::Add;
        return options.duplicates == "merge" ? address::CardFate::Merge : address::CardFate::Skip;
    };
    const auto report = address::ImportVCards(session, options.vcard, plan);
    if (!report) throw Failure(report.error().detail);
    for (const address::ImportedCard& card : report->cards)
        std::cout << ReportLine(card) << '\n';
    std::cout << report->added << " added, " << report->merged << " merged, " << report->skipped
              << " skipped\n";
    sitting.Close();
}

}  // namespace bmr::tools
