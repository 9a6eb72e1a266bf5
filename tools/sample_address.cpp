#include <algorithm>
#include <string>
#include <vector>

#include "address/addressbook.h"
#include "address/contact.h"
#include "address/fileas.h"
#include "crypto/conversion.h"
#include "sample.h"
#include "store/categories.h"

namespace bmr::tools {
namespace {

using address::AddressPart;
using address::FieldNumber;
using address::Record;
using Words = std::span<const std::string_view>;

/// What people and places of one language are called, and how their numbers are written.
struct Country {
    std::string_view name;
    std::string_view dial;  ///< with the plus
    Words first;
    Words last;
    Words streets;
    Words towns;  ///< "8010 Graz"; a comma between town, state and code in another order
    std::string_view tail;
    bool numberFirst = false;  ///< "12 High Street"
};

constexpr std::string_view kGermanFirst[] = {"Anneliese", "Björn",  "Dörte", "Falk",   "Greta", "Jürgen",
                                             "Käthe",     "Lothar", "Sören", "Ulrike", "Veit",  "Zoë"};
constexpr std::string_view kGermanLast[] = {
    "Brückner", "Dörfler", "Eßlinger", "Hübner", "Jäger",   "Köhler", "Lindqvist", "Möbius",    "Öttl",
    "Sauer",    "Weiß",    "Zöllner",  "Ahrens", "Ullmann", "Yüksel", "Vogt",      "von Ahlen", "Rabe"};
constexpr std::string_view kGermanStreets[] = {"Gartenweg", "Lindenstraße", "Am Mühlbach", "Bahnhofstraße",
                                               "Schloßgasse"};
constexpr std::string_view kGermanTowns[] = {"10119 Berlin", "80331 München", "50667 Köln",     "8010 Graz",
                                             "8001 Zürich",  "28195 Bremen",  "37073 Göttingen"};

constexpr std::string_view kFrenchFirst[] = {"Aurélie", "Benoît", "Chloé", "Élodie", "François",
                                             "Gaël",    "Hélène", "Loïc",  "Noémie", "Œdipe"};
constexpr std::string_view kFrenchLast[] = {"Béranger", "Chevallier", "Désormeaux", "Étienne", "Garçon",
                                            "Lefèvre",  "Marchand",   "Noël",       "Pâquet",  "Thévenot"};
constexpr std::string_view kFrenchStreets[] = {"rue des Écoles", "avenue Foch", "place du Marché",
                                               "impasse des Lilas"};
constexpr std::string_view kFrenchTowns[] = {"75005 Paris", "69002 Lyon", "13001 Marseille", "33000 Bordeaux",
                                             "1000 Bruxelles"};

constexpr std::string_view kSpanishFirst[] = {"Álvaro", "Begoña", "Iñaki", "Jesús",
                                              "Lucía",  "Núria",  "Ramón"};
constexpr std::string_view kSpanishLast[] = {"Almeida Ríos", "Cañizares", "Fernández", "Ibáñez",
                                             "López Peña",   "Muñoz",     "Zúñiga"};
constexpr std::string_view kSpanishStreets[] = {"Calle Mayor", "Plaza de España", "Avenida del Puerto"};
constexpr std::string_view kSpanishTowns[] = {"28013 Madrid", "41001 Sevilla", "48005 Bilbao",
                                              "15001 A Coruña"};

constexpr std::string_view kItalianFirst[] = {"Chiara", "Niccolò", "Giosuè", "Beatrice", "Matteo"};
constexpr std::string_view kItalianLast[] = {"Bianchi", "D'Angelò", "Neri", "Fenoglio", "Quaglia"};
constexpr std::string_view kItalianStreets[] = {"Via Roma", "Piazza del Popolo", "Viale Libertà"};
constexpr std::string_view kItalianTowns[] = {"20121 Milano", "40125 Bologna", "16121 Genova"};

constexpr std::string_view kNordicFirst[] = {"Åsa", "Bjørn", "Øystein", "Søren", "Maija", "Þóra"};
constexpr std::string_view kNordicLast[] = {"Ångström", "Bjørnsen", "Ødegård",
                                            "Sørensen", "Mäkinen",  "Jónsdóttir"};
constexpr std::string_view kNordicStreets[] = {"Storgatan", "Nørregade", "Kirkeveien"};
constexpr std::string_view kNordicTowns[] = {"411 03 Göteborg", "8000 Aarhus", "5003 Bergen",
                                             "00100 Helsinki"};

constexpr std::string_view kEnglishFirst[] = {"Ada", "Callum", "Hugh", "Imogen", "Orla", "Samuel", "Wren"};
constexpr std::string_view kEnglishLast[] = {"Ashworth", "Hobbs",       "Mitchell",  "O'Dowd", "Okafor",
                                             "Quill",    "Thistlewood", "Underhill", "Xavier", "Yarrow"};
constexpr std::string_view kEnglishStreets[] = {"High Street", "Quay Lane", "Mill Road", "Station Road"};
constexpr std::string_view kEnglishTowns[] = {"Leeds, , LS1 4AP", "York, , YO1 7HH", "Springfield, IL, 62701",
                                              "Portland, ME, 04101"};

constexpr std::string_view kPortugueseFirst[] = {"João", "Inês", "Conceição", "Tomé"};
constexpr std::string_view kPortugueseLast[] = {"Magalhães", "Simões", "Conceição", "Araújo"};
constexpr std::string_view kPortugueseStreets[] = {"Rua da Prata", "Largo do Carmo"};
constexpr std::string_view kPortugueseTowns[] = {"1100-420 Lisboa", "4050-014 Porto", "7000-863 Évora"};

constexpr Country kCountries[] = {
    {"Deutschland", "+49", kGermanFirst, kGermanLast, kGermanStreets, kGermanTowns, " GmbH"},
    {"France", "+33", kFrenchFirst, kFrenchLast, kFrenchStreets, kFrenchTowns, " & Fils", true},
    {"España", "+34", kSpanishFirst, kSpanishLast, kSpanishStreets, kSpanishTowns, " S.A."},
    {"Italia", "+39", kItalianFirst, kItalianLast, kItalianStreets, kItalianTowns, " S.r.l."},
    {"Sverige", "+46", kNordicFirst, kNordicLast, kNordicStreets, kNordicTowns, " AB"},
    {"United Kingdom", "+44", kEnglishFirst, kEnglishLast, kEnglishStreets, kEnglishTowns, " & Sons", true},
    {"Portugal", "+351", kPortugueseFirst, kPortugueseLast, kPortugueseStreets, kPortugueseTowns, " Lda."},
};

constexpr std::string_view kTitles[] = {"Dr.", "Prof.", "Mme", "Sra.", "Ing."};
constexpr std::string_view kJobs[] = {"Carpenter",   "Optician",      "Teacher",      "Travel agent",
                                      "Vétérinaire", "Head of sales", "Buchhalterin", "Dentist"};
constexpr std::string_view kDepartments[] = {"Sales", "Einkauf", "Service après-vente", "Workshop"};
constexpr std::string_view kTrades[] = {"Optik", "Bakery", "Reisebüro", "Librairie", "Taller", "Apotheke"};
constexpr std::string_view kCategories[] = {"Family", "Friends", "Work", "Craftsmen"};

/// ASCII letters of a name, small, for mail addresses.
std::string Plain(std::string_view name) {
    std::string out;
    for (const char c : LowerCase(conversion::PlainUpper(ToBytes(name).value_or("x"))))
        if (c >= 'a' && c <= 'z') out += c;
    return out.empty() ? "x" : out;
}

std::string Digits(SampleContext& context, int count) {
    std::string out(1, static_cast<char>('1' + Between(context, 0, 8)));
    for (int i = 1; i < count; ++i)
        out += static_cast<char>('0' + Between(context, 0, 9));
    return out;
}

/// One of the ways in which people write them.
std::string Number(SampleContext& context, const Country& country) {
    const std::string area = Digits(context, Between(context, 2, 3));
    const std::string own = Digits(context, 3) + " " + Digits(context, Between(context, 3, 4));
    switch (Between(context, 0, 3)) {
        case 0:
            return "0" + area + " " + own;
        case 1:
            return "(0" + area + ") " + own;
        case 2:
            return std::string(country.dial) + " " + area + " " + own;
        default:
            return std::string(country.dial) + " (0)" + area + "-" + own;
    }
}

void PutAddress(SampleContext& context, const Country& country, Record& record, std::uint8_t base) {
    const std::string street(Pick(context, country.streets));
    const std::string number = std::to_string(Between(context, 1, 120));
    record[base + AddressPart::Street] = country.numberFirst ? number + " " + street : street + " " + number;
    const std::string_view town = Pick(context, country.towns);
    if (const std::size_t comma = town.find(", "); comma != std::string_view::npos) {
        const std::size_t second = town.find(", ", comma + 1);
        record[base + AddressPart::City] = town.substr(0, comma);
        record[base + AddressPart::State] =
            second > comma + 2 ? town.substr(comma + 2, second - comma - 2) : std::string_view();
        record[base + AddressPart::PostalCode] = town.substr(second + 2);
    } else {
        const std::size_t letter = town.find_first_not_of("0123456789- ");
        record[base + AddressPart::PostalCode] = TrimBlanks(town.substr(0, letter));
        record[base + AddressPart::City] = town.substr(letter);
    }
    if (Chance(context, 40)) record[base + AddressPart::Country] = country.name;
}

void PutNumbers(SampleContext& context, const Country& country, Record& record, const std::string& host) {
    for (std::size_t slot = 0; slot < address::kComSlots; ++slot) {
        if (!Chance(context, slot == 2 || slot == 5 ? 70 : slot < 2 ? 45 : 12)) continue;
        switch (address::ActionOf(address::KindOfLabel(record.ComLabel(slot)))) {
            case address::ComAction::Mail:
                record.Com(slot) = Plain(record.fileAs) + "@" + host + ".example";
                break;
            case address::ComAction::Web:
                record.Com(slot) = "www." + host + ".example";
                break;
            default:
                record.Com(slot) = Number(context, country);
        }
    }
    if (Chance(context, 50)) record[FieldNumber::ComDisplay] = std::to_string(Between(context, 0, 5));
}

void PutPerson(SampleContext& context, const Country& country, Record& record) {
    record[FieldNumber::FirstName] = AnyScript(context, std::string(Pick(context, country.first)));
    record[FieldNumber::LastName] = Pick(context, country.last);
    if (Chance(context, 12)) record[FieldNumber::Title] = Pick(context, kTitles);
    if (Chance(context, 10)) record[FieldNumber::MiddleName] = Pick(context, country.first);
    if (Chance(context, 25)) record[FieldNumber::JobTitle] = Pick(context, kJobs);
    if (Chance(context, 20)) record[FieldNumber::Spouse] = Pick(context, country.first);
    if (Chance(context, 10)) record[FieldNumber::Children] = Pick(context, country.first);
    if (Chance(context, 35))
        record.birthday = {static_cast<double>(context.today.serial - Between(context, 4000, 32000))};
}

Record SampleRecord(SampleContext& context) {
    const Country& country =
        kCountries[DrawBelow(context.random, static_cast<std::int32_t>(std::size(kCountries)))];
    Record record = address::ClearRecord(
        Chance(context, 15) ? 0 : Between(context, 1, static_cast<std::int32_t>(std::size(kCategories))));
    const bool firm = Chance(context, 20);
    const std::string company = std::string(Pick(context, country.last)) +
                                (Chance(context, 50) ? " " + std::string(Pick(context, kTrades)) : "") +
                                std::string(country.tail);
    if (!firm) PutPerson(context, country, record);
    if (firm || Chance(context, 30)) {
        record[FieldNumber::CompanyName] = AnyScript(context, company);
        if (Chance(context, 30)) record[FieldNumber::Department] = Pick(context, kDepartments);
        PutAddress(context, country, record, FieldNumber::BusinessAddress);
    }
    if (!firm && Chance(context, 75)) PutAddress(context, country, record, FieldNumber::HomeAddress);
    if (Chance(context, 5)) PutAddress(context, country, record, FieldNumber::OtherAddress);
    record.fileAs = address::FileAsOptions(record).Standard();
    if (record.fileAs.empty()) record.fileAs = record[FieldNumber::CompanyName];
    PutNumbers(context, country, record, Plain(firm ? company : std::string(Pick(context, kTrades))));
    if (Chance(context, 8)) record[FieldNumber::User1] = "C-" + Digits(context, 4);
    if (Chance(context, 25)) record[FieldNumber::Notes] = AnyScript(context, SampleNote(context));
    record.isPrivate = Chance(context, 10);
    return record;
}

}  // namespace

int FillAddresses(SampleContext& context, std::int32_t records) {
    store::CategoryList list;
    std::int32_t number = 0;
    for (const std::string_view category : kCategories)
        store::InsertCategory(list, {Page(category), ++number});
    if (const int error = store::StoreCategories(context.session, list, store::Section::Address))
        return error;
    std::vector<Record> made;
    made.reserve(static_cast<std::size_t>(records));
    for (std::int32_t i = 0; i < records; ++i)
        made.push_back(SampleRecord(context));
    const int error = address::AddRecords(context.session, made);
    std::ranges::for_each(made, address::WipeRecord);
    return error;
}

}  // namespace bmr::tools
