#include <algorithm>
#include <cctype>
#include <iostream>

#include "base/languageus.h"
#include "commands.h"
#include "custody/openfailure.h"
#include "interchange/palmimport.h"
#include "recordjson.h"
#include "recordkinds.h"
#include "sitting.h"
#include "terminal.h"

namespace bmr::tools {
namespace {

[[noreturn]] void Fail(const Error& error) {
    throw Failure(error.number < 0 ? Msg(-error.number) : custody::ExplainOpenFailure(error.number));
}

Json ReportOf(const interchange::PalmPlan& plan, std::size_t added, std::size_t leftOut) {
    Json categories = Json::array();
    const auto& table = plan.categories.table;
    for (std::size_t i = table.size() - plan.categories.added; i < table.size(); ++i)
        categories.push_back(ToUtf8(table[i].text));
    Json reasons = Json::array();
    for (const interchange::PalmRemark& remark : plan.remarks)
        reasons.push_back({{"record", remark.place},
                           {"title", std::string(remark.title)},
                           {"what", remark.what},
                           {"leftOut", remark.leftOut}});
    return {{"added", added},           {"leftOut", leftOut},
            {"known", plan.Known()},    {"changed", plan.Changed()},
            {"categories", categories}, {"reasons", reasons}};
}

}  // namespace

void RunImport(const Options& options) {
    if (!options.vcard.empty() + !options.palm.empty() + !options.csv.empty() != 1)
        throw Failure("Give one of --vcard, --palm and --csv.");
    if (!options.vcard.empty()) return ImportContacts(options);
    if (!options.palm.empty()) return ImportPalm(options);
    ImportBudget(options);
}

void RunExport(const Options& options) {
    if (!options.tab.empty() + !options.vcard.empty() + !options.csv.empty() != 1)
        throw Failure("Give one of --tab, --vcard and --csv.");
    options.csv.empty() ? ExportContacts(options) : ExportBudget(options);
}

void ImportPalm(const Options& options) {
    const store::SectionFacts& section = SectionByName(options.section);
    const std::string_view name = interchange::PalmFileName(section.code);
    if (name.empty() || section.code == store::Section::Address)
        throw Failure("Nothing can be imported into " + options.section + " yet.");
    if (!interchange::IsPalmFileName(section.code, options.palm)) {
        std::string capitals(name);
        std::ranges::transform(capitals, capitals.begin(), [](unsigned char c) { return std::toupper(c); });
        throw Failure(Msg(50) + " " + capitals);
    }
    Sitting sitting(options.passphraseFd);
    sitting.Open(options.file, options.dryRun ? engine::Access::Read : engine::Access::Write);
    auto plan = interchange::PlanPalmImport(sitting.session(), section.code, options.palm, LocaleOf(options));
    if (!plan) Fail(plan.error());
    const std::size_t known = options.withKnown ? 0 : plan->Known();
    interchange::PalmOutcome outcome{0, plan->Count() - known, known + plan->LeftOut()};
    if (!options.dryRun) outcome = interchange::StorePalmPlan(sitting.session(), *plan, options.withKnown);
    sitting.Check(outcome.error);
    std::cout << DumpLine(ReportOf(*plan, outcome.added, outcome.leftOut), 2) << std::endl;
    if (!options.dryRun) sitting.Close();
    if (plan->failure != 0) throw Failure(Msg(-plan->failure));
}

}  // namespace bmr::tools
