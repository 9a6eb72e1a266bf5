#include <algorithm>
#include <iostream>

#include "address/addressbook.h"
#include "address/card.h"
#include "address/tabexport.h"
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

void RunExport(const Options& options) {
    RefuseOthers(options, "export");
    Sitting sitting(options.passphraseFd);
    sitting.Open(options.file, engine::Access::Read);
    store::Session& session = sitting.session();
    session.ShowPrivate = session.ShowPrivate || options.showPrivate;
    const std::int32_t category = options.category.empty()
                                      ? store::Category::All
                                      : CategoryByName(session, store::Section::Address, options.category);
    const auto exported =
        address::ExportAddressTabDelimited(session, category, options.tab, LocaleOf(options));
    if (!exported) throw Failure(exported.error().detail);
    std::cout << address::ExportedText(*exported, options.tab) << '\n';
}

}  // namespace bmr::tools
