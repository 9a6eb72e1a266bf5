#include <algorithm>
#include <vector>

#include "confidential/confidential.h"
#include "confidential/generator.h"
#include "confidential/kinds.h"
#include "sample.h"

namespace bmr::tools {
namespace {

constexpr std::string_view kFirms[] = {
    "Harbour Books",   "Lindqvist & Söhne", "Blue Kettle Tea",   "Café Noémie",
    "Northern Rail",   "Almeida Optik",     "Paper Mill",        "Green Grocer",
    "Okafor Travel",   "Sparverein Süd",    "Old Mint",          "Three Bridges",
    "Ostwind Energie", "Weiß Apotheke",     "Sundial Insurance", "Red Saucer"};
constexpr std::string_view kWhat[] = {"Shop",    "Club",    "Forum", "Bank",
                                      "Library", "Service", "Union", "Portal"};
constexpr std::string_view kPeople[] = {"Aylin Demir", "Björn Lindqvist", "Chiara Neri",   "Élodie Marchand",
                                        "Greta Hobbs", "Jürgen Weiß",     "Lucía Almeida", "Samuel Okafor"};

/// ASCII letters and digits of a name, small, for addresses.
std::string Plain(std::string_view name) {
    std::string out;
    for (const char c : name)
        if ((c >= 'a' && c <= 'z') || (c >= '0' && c <= '9'))
            out += c;
        else if (c >= 'A' && c <= 'Z')
            out += static_cast<char>(c + 32);
    return out;
}

std::string Digits(SampleContext& context, int groups, int size) {
    std::string out;
    for (int group = 0; group < groups; ++group) {
        if (group > 0) out += ' ';
        for (int i = 0; i < size; ++i)
            out += static_cast<char>('0' + Between(context, 0, 9));
    }
    return out;
}

Bytes Password(SampleContext& context) {
    confidential::PasswordRecipe recipe;
    recipe.length = Between(context, 8, 20);
    recipe.words = Chance(context, 20) ? 4 : 0;
    return Bytes(confidential::GeneratePassword(recipe, context.random).view());
}

/// A value that fits what the screen calls the field.
Bytes FieldValue(SampleContext& context, std::string_view caption, std::string_view name) {
    const auto holds = [caption](std::string_view word) {
        return caption.find(word) != std::string_view::npos;
    };
    const std::string_view person = Pick(context, kPeople);
    if (holds("Password")) return Password(context);
    if (holds("PIN") || holds("PUK") || holds("Security Code"))
        return Digits(context, 1, holds("PUK") ? 8 : 4);
    if (holds("URL")) return "https://www." + Plain(name) + ".example/";
    if (holds("Email")) return Plain(person) + "@" + Plain(name) + ".example";
    if (holds("Server")) return "mail." + Plain(name) + ".example";
    if (holds("Exp. Date"))
        return "0" + std::to_string(Between(context, 1, 9)) + "/" + std::to_string(Between(context, 27, 32));
    if (holds("Phone Number")) return "+49 " + Digits(context, 2, 4);
    if (holds("User ID")) return Plain(person);
    if (holds("Number") || holds("Key")) return Digits(context, 4, 4);
    if (holds("Holder") || holds("Person") || holds("Licensed") || holds("Contact"))
        return AnyScript(context, std::string(person));
    return AnyScript(context, std::string(Pick(context, kFirms)));
}

/// Half of all are web logins and mail accounts, as in life.
const confidential::Kind& SampleKind(SampleContext& context) {
    const auto kinds = confidential::ConfidentialKinds();
    const auto place = Chance(context, 50)
                           ? Between(context, 0, 1)
                           : DrawBelow(context.random, static_cast<std::int32_t>(kinds.size()));
    return kinds[static_cast<std::size_t>(place)];
}

confidential::Record SampleRecord(SampleContext& context) {
    const confidential::Kind& kind = SampleKind(context);
    confidential::Record record;
    record.kind = kind.number;
    std::string name(Pick(context, kFirms));
    if (Chance(context, 60)) name += " " + std::string(Pick(context, kWhat));
    if (Chance(context, 25)) name += " " + std::to_string(Between(context, 2, 99));
    // One in a hundred was saved before anybody gave it a name.
    if (!Chance(context, 1)) record.n[0] = AnyScript(context, name);
    for (std::size_t i = 1; i < kind.FieldCount(); ++i)
        if (!Chance(context, 10)) record.n[i] = FieldValue(context, kind.captions[i], name);
    if (Chance(context, 25)) record.notes = AnyScript(context, SampleNote(context));
    record.isPrivate = Chance(context, 20);
    record.dateLastModified = {static_cast<double>(context.today.serial - Between(context, 0, 2000))};
    return record;
}

}  // namespace

int FillConfidential(SampleContext& context, std::int32_t records) {
    std::vector<confidential::Record> made;
    made.reserve(static_cast<std::size_t>(records));
    for (std::int32_t i = 0; i < records; ++i)
        made.push_back(SampleRecord(context));
    const int error = confidential::AddRecords(context.session, made);
    std::for_each(made.begin(), made.end(), confidential::WipeRecord);
    return error;
}

}  // namespace bmr::tools
