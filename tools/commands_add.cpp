#include <algorithm>
#include <iostream>

#include "commands.h"
#include "recordjson.h"
#include "recordkinds.h"
#include "sitting.h"
#include "store/categories.h"

namespace bmr::tools {
namespace {

/// The sections that have an option, by their words.
std::string OwnersOf(const std::string& option) {
    std::string owners;
    for (const store::SectionFacts* section : store::Sections())
        if (std::ranges::find(section->options, option, &store::FieldOption::option) !=
            section->options.end())
            owners += (owners.empty() ? "" : ", ") + std::string(section->command);
    return owners;
}

/// An option of another section is a slip of the hand: nothing is stored rather than half of what was meant.
std::vector<std::pair<std::string, std::string>> FieldsOf(const Options& options,
                                                          const store::SectionFacts& section) {
    std::vector<std::pair<std::string, std::string>> fields;
    for (const auto& [option, value] : options.given) {
        if (!value) continue;
        const auto own = std::ranges::find(section.options, option, &store::FieldOption::option);
        if (own == section.options.end())
            throw Failure(option + " is for " + OwnersOf(option) + ", not for " + options.section + ".");
        fields.emplace_back(own->field, *value);
    }
    for (const std::string& field : options.fields) {
        const std::size_t equals = field.find('=');
        if (equals == std::string::npos) throw Failure("--field takes NAME=VALUE.");
        fields.emplace_back(field.substr(0, equals), field.substr(equals + 1));
    }
    return fields;
}

/// A value that no argument list may hold: a line of --secret-fd, or typed twice.
Result<Secret> AskSecret(int secretFd, const std::string& caption) {
    SecretInput input(secretFd, "value of " + caption, "--secret-fd");
    Secret typed;
    if (!input.ReadWords(caption + " (empty for none): ", typed)) return Error{0, input.Problem()};
    if (input.Interactive() && !typed.empty()) {
        Secret again;
        if (!input.ReadWords(caption + " again: ", again)) return Error{0, input.Problem()};
        if (again.view() != typed.view()) return Error{0, "The two values of " + caption + " differ."};
    }
    return typed;
}

std::int32_t GroupOf(Sitting& sitting, const Options& options, const store::SectionFacts& section) {
    if (section.kindName) return *options.kind;
    if (options.category.empty()) return store::Category::Unfiled;
    return store::RealCategory(CategoryByName(sitting.session(), section.code, options.category));
}

}  // namespace

void RunAdd(const Options& options) {
    const store::SectionFacts& section = SectionByName(options.section);
    if (!section.add) throw Failure("Records cannot be added to " + options.section + " yet.");
    store::NewRecord record;
    record.isPrivate = options.makePrivate;
    record.fields = FieldsOf(options, section);
    record.locale = LocaleOf(options);
    if (options.secretFd >= 0 && !section.caption)
        throw Failure("--secret-fd is for confidential, not for " + options.section + ".");
    if (options.kind) RefuseKinds(section);
    if (!options.category.empty()) RefuseCategories(section);
    if (!options.week.empty()) RefuseWeeks(section);
    if (section.kindName && !options.kind) throw Failure("--kind is required.");
    record.ask = [&options](const std::string& caption) { return AskSecret(options.secretFd, caption); };

    Sitting sitting(options.passphraseFd);
    sitting.Open(options.file);
    record.group = GroupOf(sitting, options, section);
    const auto key = section.add(sitting.session(), record);
    if (!key && !key.error().detail.empty()) throw Failure(key.error().detail);
    sitting.Check(key ? 0 : key.error().number);
    std::cout << *key << std::endl;
    sitting.Close();
}

}  // namespace bmr::tools
