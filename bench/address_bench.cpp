// addresses100k  the list's keys, private ones shown, against the bare statement in the same order limit 2.5
// hidden100k     the same with private ones hidden, against the batch kernel over their markers limit 1.5
// search100k     two letters in all names and contacts, against the kernel over both limit 1.3 first100k
// until the first of them stand there                                                  limit 150 ms again100k
// one more letter, from what is held                                                   limit 50 ms fields100k
// three letters in every field, against the kernel over the payloads                   no limit tab100k the
// export with tabs, against kernel, bare statement and bare write together         limit 2.5 vcard100k the
// export as vCards, against the same                                               limit 2.5 import10k 10,000
// vCards taken in, against adding the same records at once                      limit 2 card           one
// row selected: read, deciphered and made a card, with a note of 65,000 signs      limit 30 ms
#include <fstream>
#include <vector>

#include "address/addressbook.h"
#include "address/card.h"
#include "address/fileas.h"
#include "address/search.h"
#include "address/tabexport.h"
#include "address/vcardfile.h"
#include "database.h"
#include "ratio.h"

namespace {

using namespace bmr;
using address::FieldNumber;
using address::Record;
using bench::BareDatabase;
using bench::BenchDatabase;
using bench::BestOf;

constexpr int kRows = 100000;
constexpr int kCards = 10000;
constexpr int kRuns = 5;
std::size_t sink = 0;

Record Contact(int i) {
    static constexpr std::string_view kLast[] = {"Brückner", "Lefèvre", "Muñoz", "Ødegård", "Ashworth",
                                                 "Fenoglio", "Araújo",  "Jäger", "Zöllner", "Underhill"};
    static constexpr std::string_view kFirst[] = {"Anneliese", "Björn", "Chloé", "Lucía",
                                                  "Matteo",    "Wren",  "Zoë"};
    Record record = address::ClearRecord(i % 4);
    record[FieldNumber::LastName] = std::string(kLast[i % 10]) + std::to_string(i % 977);
    record[FieldNumber::FirstName] = kFirst[i % 7];
    record[FieldNumber::HomeAddress] = "Lindenstraße " + std::to_string(i % 120);
    record[FieldNumber::HomeAddress + 1] = "Göttingen";
    record.Com(0) = "+49 551 " + std::to_string(100000 + i);
    record.Com(5) = "person" + std::to_string(i) + "@example.org";
    record[FieldNumber::Notes] = i % 3 == 0 ? "Met at the fair; call before noon, never on Mondays." : "";
    record.fileAs = address::FileAsOptions(record).Standard();
    record.isPrivate = i % 20 == 0;
    return record;
}

std::vector<Record> Contacts(int count) {
    std::vector<Record> records;
    records.reserve(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i)
        records.push_back(Contact(i));
    return records;
}

double Kernel(BenchDatabase& database, const std::vector<std::string>& columns) {
    std::vector<Bytes> fields;
    for (const std::string& column : columns) {
        auto cursor = database.session.ProgramDb->Select("SELECT " + column + " FROM tt WHERE fSec=11");
        while (cursor && cursor->Next())
            fields.emplace_back(cursor->Bytes(0));
    }
    const std::vector<std::string_view> views(fields.begin(), fields.end());
    return BestOf(kRuns, [&] {
        cry::DecipherBatch(database.session.cipher, views,
                           [](std::size_t, std::string_view plain) { sink += plain.size(); });
    });
}

double BareList(const std::filesystem::path& path, const char* columns) {
    BareDatabase bare(path);
    const std::string statement =
        std::string("SELECT ") + columns +
        " FROM tt WHERE fSec=11 ORDER BY CAST(FLOOR(fR2 / (4294967296.0 / 42) + 21) AS INTEGER), fR1";
    return BestOf(kRuns, [&] {
        sqlite3_stmt* prepared = bare.Prepare(statement.c_str());
        while (sqlite3_step(prepared) == SQLITE_ROW)
            sink +=
                static_cast<std::size_t>(sqlite3_column_int(prepared, 0)) +
                static_cast<std::size_t>(sqlite3_column_bytes(prepared, sqlite3_column_count(prepared) - 1));
        sqlite3_finalize(prepared);
    });
}

double BareWrite(const std::filesystem::path& path, std::uintmax_t size) {
    const std::string part(1 << 16, 'x');
    return BestOf(kRuns, [&] {
        std::ofstream file(path, std::ios::binary);
        for (std::uintmax_t written = 0; written < size; written += part.size())
            file << part;
    });
}

void MeasureSearch(bench::Report& report, BenchDatabase& database) {
    const double kernel = Kernel(database, {"fT1", "fT2"});
    const double payloads = Kernel(database, {"fT1", "fEtx"});
    double first = 1e300, all = 1e300, again = 1e300, fields = 1e300;
    for (int run = 0; run < kRuns; ++run) {
        address::AddressSearch search(database.session, *address::ListRecords(database.session, -1), {});
        const auto seconds = [](auto work) { return BestOf(1, work); };
        const double began = seconds([&] {
            search.Look("zo");
            while (search.FoundCount() == 0 && search.Step()) {
            }
        });
        first = std::min(first, began);
        all = std::min(all, began + seconds([&] {
                                while (search.Step()) {
                                }
                            }));
        again = std::min(again, seconds([&] {
                             search.Look("z 5");
                             while (search.Step() && search.FoundCount() == 0) {
                             }
                             sink += search.Found().size();
                         }));
        if (run > 1) continue;
        fields = std::min(fields, seconds([&] {
                              search.Look("fair noon");
                              while (search.Step()) {
                              }
                              sink += search.FoundCount();
                          }));
    }
    report.Ratio("search100k", all, kernel, 1.3);
    report.Figure("first100k", first * 1e3, 150, "ms");
    report.Figure("again100k", again * 1e3, 50, "ms");
    report.Ratio("fields100k", fields, payloads, 1e9);
}

}  // namespace

int main() {
    bench::Report report;
    BenchDatabase database("address");
    store::Session& session = database.session;
    session.undo.recording = false;
    {
        auto records = Contacts(kRows);
        BenchDatabase::Check(address::AddRecords(session, records));
    }
    session.ShowPrivate = true;
    const auto list = [&] { sink += address::ListRecords(session, -1)->size(); };
    const double shown = BestOf(kRuns, list);
    const double markers = Kernel(database, {"fT3"});
    session.ShowPrivate = false;
    const double hidden = BestOf(kRuns, list);
    session.ShowPrivate = true;
    MeasureSearch(report, database);

    const double payloads = Kernel(database, {"fT1", "fEtx"});
    const auto tab = std::filesystem::path(database.path).replace_extension("txt");
    const auto cards = std::filesystem::path(database.path).replace_extension("vcf");
    const double tabTime =
        BestOf(2, [&] { sink += address::ExportAddressTabDelimited(session, -1, tab, {})->records; });
    const double cardTime = BestOf(2, [&] { sink += address::ExportVCards(session, -1, cards)->records; });
    const double writeTab = BareWrite(tab, std::filesystem::file_size(tab));
    const double writeCards = BareWrite(cards, std::filesystem::file_size(cards));

    Record large = Contact(1);
    large[FieldNumber::Notes] = std::string(65000, 'n');
    BenchDatabase::Check(address::WriteRecord(session, large));
    const double card = BestOf(kRuns, [&] {
        const auto record = address::FetchRecord(session, large.key);
        sink += address::MarkedBody(address::BuildCard(*record, session.userLabels, {})).size();
    });
    database.Close();

    const double bareKeys = BareList(database.path, "fPK");
    const double bareRows = BareList(database.path, "fPK, fEtx");
    report.Ratio("addresses100k", shown, bareKeys, 2.5);
    report.Ratio("hidden100k", hidden, markers, 1.5);
    report.Ratio("tab100k", tabTime, payloads + bareRows + writeTab, 2.5);
    report.Ratio("vcard100k", cardTime, payloads + bareRows + writeCards, 2.5);
    report.Figure("card", card * 1e3, 30, "ms");

    BenchDatabase few("address-import");
    few.session.undo.recording = false;
    few.session.ShowPrivate = true;
    auto records = Contacts(kCards);
    const double bulk = BestOf(1, [&] { BenchDatabase::Check(address::AddRecords(few.session, records)); });
    const auto file = std::filesystem::path(few.path).replace_extension("vcf");
    sink += address::ExportVCards(few.session, -1, file)->records;
    BenchDatabase::Check(address::DeleteRecords(few.session, -1));
    const double import = BestOf(1, [&] { sink += address::ImportVCards(few.session, file, {})->added; });
    report.Ratio("import10k", import, bulk, 2);
    few.Close();
    std::printf("(%zu)\n", sink);
    return report.Status();
}
