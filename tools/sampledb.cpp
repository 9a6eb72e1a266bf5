#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <exception>
#include <iostream>
#include <string>
#include <vector>

#include "base/serialdate.h"
#include "main_shared.h"
#include "sample.h"
#include "sitting.h"

namespace {

using bmr::tools::Failure;
using bmr::tools::SampleSection;

struct Options {
    std::filesystem::path file;
    int passphraseFd = -1;
    std::int32_t records = 1000;
    std::uint64_t seed = 1;
    std::vector<std::string> sections;
    std::string today;
    bool unicode = false;
};

std::vector<SampleSection> Chosen(const std::vector<std::string>& names) {
    const auto all = bmr::tools::SampleSections();
    if (names.empty()) return {all.begin(), all.end()};
    std::vector<SampleSection> chosen;
    for (const std::string& name : names) {
        const auto found = std::find_if(all.begin(), all.end(),
                                        [&](const SampleSection& section) { return section.name == name; });
        if (found == all.end()) throw Failure("There are no samples for a section \"" + name + "\".");
        chosen.push_back(*found);
    }
    return chosen;
}

void Fill(bmr::tools::Sitting& sitting, const Options& options) {
    const auto sections = Chosen(options.sections);
    bmr::tools::SeededSource random(options.seed);
    bmr::Day today = sitting.session().ports.clock.Today();
    if (!options.today.empty()) {
        const auto day = bmr::ParseIsoDate(options.today);
        if (!day) throw Failure("--today is no date of the form YYYY-MM-DD.");
        today = *day;
    }
    bmr::tools::SampleContext context{sitting.session(), random, today, options.unicode};
    bmr::engine::Transaction transaction(*sitting.session().ProgramDb);
    sitting.Check(transaction.error());
    const auto count = static_cast<std::int32_t>(sections.size());
    for (std::int32_t i = 0; i < count; ++i) {
        // What does not divide goes to the first sections.
        const std::int32_t share = options.records / count + (i < options.records % count ? 1 : 0);
        sitting.Check(sections[static_cast<std::size_t>(i)].fill(context, share));
    }
    sitting.Check(transaction.Commit());
}

}  // namespace

int main(int argc, char** argv) try {
    Options options;
    CLI::App app("Makes a Brindlemere database full of believable records, for tests and measurements.",
                 "sampledb");
    app.add_option("FILE", options.file, "The database to make")->required();
    app.add_option("--passphrase-fd", options.passphraseFd,
                   "Read the passphrase as one line of this file descriptor; without it the terminal asks.");
    app.add_option("--records", options.records, "How many records in all")
        ->check(CLI::Range(0, 10'000'000))
        ->capture_default_str();
    app.add_option("--seed", options.seed, "The same seed and day give the same records")
        ->capture_default_str();
    app.add_option("--sections", options.sections, "Sections to fill, with commas between; all when left out")
        ->delimiter(',');
    app.add_flag("--unicode", options.unicode, "Some texts in other scripts than Latin");
    app.add_option("--today", options.today, "The day around which dates lie, YYYY-MM-DD");
    return bmr::tools::RunMain(app, argc, argv, [&] {
        Chosen(options.sections);  // refuse a wrong name before a file is made
        bmr::tools::Sitting sitting(options.passphraseFd);
        sitting.Create(options.file);
        Fill(sitting, options);
        sitting.Close();
    });
} catch (const std::exception& error) {  // what the options above themselves are wrong in
    std::fputs(error.what(), stderr);
    return 1;
}
