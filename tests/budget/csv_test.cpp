#include "budget/csv.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

#include "budget/csvimport.h"
#include "budget/ledger.h"
#include "calendar/months.h"
#include "store/undo.h"
#include "support/store.h"

namespace bmr::budget {
namespace {

using calendar::RolledDate;
using store::Section;
using test::TempStore;

constexpr std::uint8_t kBudget = Section::Budget1;

std::vector<CsvRow> Rows(const std::string& text, CsvForm form = {}, std::size_t* doubtful = nullptr) {
    std::istringstream in(text);
    CsvReader reader(in, form);
    std::vector<CsvRow> rows;
    for (CsvRow row; reader.Next(row);)
        rows.push_back(row);
    if (doubtful) *doubtful = reader.Doubtful();
    return rows;
}

std::string Utf16(std::u16string_view text, bool little) {
    std::string bytes;
    for (const char16_t unit : text) {
        const char low = static_cast<char>(unit & 0xFF), high = static_cast<char>(unit >> 8);
        bytes += little ? low : high;
        bytes += little ? high : low;
    }
    return bytes;
}

TEST(CsvFiles, AreReadAsTheyAreWritten) {
    EXPECT_EQ(Rows("a,b\r\n\"c, \"\"d\"\"\r\ne\", f \n\n ,\n1\r2"),
              (std::vector<CsvRow>{{"a", "b"}, {"c, \"d\"\r\ne", "f"}, {"1"}, {"2"}}));
    EXPECT_EQ(Rows("5\" pipe,x\n"), (std::vector<CsvRow>{{"5\" pipe", "x"}}));
    EXPECT_EQ(Rows("\xEF\xBB\xBF"
                   "a;b",
                   {CsvEncoding::Utf8, ';'}),
              (std::vector<CsvRow>{{"a", "b"}}));
    EXPECT_EQ(Rows(std::string("a\0b,\0c\0", 7)), (std::vector<CsvRow>{{"ab", "c"}}));
    EXPECT_EQ(Rows("M\xFCller,\x80", {CsvEncoding::Windows1252, ','}),
              (std::vector<CsvRow>{{"Müller", "€"}}));
    EXPECT_EQ(Rows("M\xFCller"), (std::vector<CsvRow>{{"M\xEF\xBF\xBDller"}}));
    for (const bool little : {true, false}) {
        const std::string bytes = Utf16(
            u"\xFEFF"
            u"Łódź\t🎉\n",
            little);
        const CsvForm form = GuessForm(bytes);
        EXPECT_EQ(form.encoding, little ? CsvEncoding::Utf16Little : CsvEncoding::Utf16Big);
        EXPECT_EQ(Rows(bytes, form), (std::vector<CsvRow>{{"Łódź", "🎉"}}));
        EXPECT_EQ(GuessForm(Utf16(u"Date;Amount\n2026-01-01;5\n", little)).encoding, form.encoding);
    }
    EXPECT_TRUE(Rows("").empty());
    EXPECT_TRUE(Rows("\n \n,,\n").empty());
}

TEST(CsvFiles, NeitherQuotesNorColumnsNorSizeLeadTheReaderAstray) {
    std::size_t doubtful = 0;
    EXPECT_EQ(Rows("a,\"b\nc,d\n", {}, &doubtful), (std::vector<CsvRow>{{"a", "\"b"}, {"c", "d"}}));
    EXPECT_EQ(doubtful, 1U);
    // The quote closes too far away to be meant.
    std::string text = "\"open,x\n";
    for (int i = 0; i < 120000; ++i)
        text += "a filler,1\n";
    text += "end\",2\n";
    auto rows = Rows(text, {}, &doubtful);
    EXPECT_EQ(rows.size(), 120002U);
    EXPECT_EQ(rows.front(), (CsvRow{"\"open", "x"}));
    EXPECT_EQ(doubtful, 1U);

    std::string wide = "0";
    for (int i = 1; i < 1500; ++i)
        wide += "," + std::to_string(i);
    rows = Rows(wide + "\nnext\n", {}, &doubtful);
    ASSERT_EQ(rows.size(), 2U);
    EXPECT_EQ(rows[0].size(), kMostCsvColumns);
    EXPECT_EQ(rows[0].back(), "999");
    EXPECT_EQ(doubtful, 1U);

    rows = Rows(std::string(3 * kMostCsvRecord, 'x') + "\nnext\n", {}, &doubtful);
    ASSERT_EQ(rows.size(), 2U);
    EXPECT_EQ(rows[0][0].size(), kMostCsvRecord);
    EXPECT_EQ(rows[1], CsvRow{"next"});
    EXPECT_EQ(doubtful, 1U);
}

/// A file that goes on for gigabytes without standing anywhere.
class Endless final : public std::streambuf {
  public:
    explicit Endless(std::uint64_t size) : left_(size) {
        while (piece_.size() < 1 << 16)
            piece_ += "2026-01-01,Bread,1.00\n";
    }
    int_type underflow() override {
        if (left_ == 0) return traits_type::eof();
        const auto size = static_cast<std::size_t>(std::min<std::uint64_t>(left_, piece_.size()));
        left_ -= size;
        setg(piece_.data(), piece_.data(), piece_.data() + size);
        return traits_type::to_int_type(*gptr());
    }

  private:
    std::uint64_t left_;
    std::string piece_;
};

TEST(CsvFiles, WithoutALineEndAreOneRowOfBoundedSize) {
    class Flat final : public std::streambuf {
      public:
        int_type underflow() override {
            if (left_-- == 0) return traits_type::eof();
            setg(piece_.data(), piece_.data(), piece_.data() + piece_.size());
            return traits_type::to_int_type(*gptr());
        }

      private:
        std::string piece_ = std::string(1 << 20, 'x');
        int left_ = 24;  // as much as shows that nothing is kept
    } flat;
    std::istream in(&flat);
    CsvReader reader(in, {});
    CsvRow row;
    ASSERT_TRUE(reader.Next(row));
    EXPECT_EQ(row[0].size(), kMostCsvRecord);
    EXPECT_FALSE(reader.Next(row));
    Endless endless(std::uint64_t{2} << 20);
    std::istream lines(&endless);
    CsvReader more(lines, {});
    std::size_t count = 0;
    while (more.Next(row))
        ++count;
    EXPECT_NEAR(static_cast<double>(count), (2 << 20) / 22.0, 60);
}

TEST(CsvCells, DatesAndAmountsAreReadInEveryUsualForm) {
    using enum DateOrder;
    const Day day = RolledDate(2026, 3, 5);
    for (const auto& [text, order] :
         std::initializer_list<std::pair<const char*, DateOrder>>{{"2026-03-05", MonthDayYear},
                                                                  {"2026/3/5", DayMonthYear},
                                                                  {"20260305", DayMonthYear},
                                                                  {"05.03.2026", DayMonthYear},
                                                                  {"5.3.26", DayMonthYear},
                                                                  {"03/05/2026", MonthDayYear},
                                                                  {"3/5/26", MonthDayYear},
                                                                  {"26-03-05", YearMonthDay},
                                                                  {"05032026", DayMonthYear},
                                                                  {"5 Mar 2026", MonthDayYear},
                                                                  {"March 5, 2026", DayMonthYear},
                                                                  {"2026-03-05T10:11:12", DayMonthYear},
                                                                  {"05.03.2026 10:11", DayMonthYear}})
        EXPECT_EQ(ParseCsvDate(text, order), day) << text;
    for (const char* bad : {"", "x", "31.02.2026", "2026-13-01", "05.2026", "1.234,56", "Total 5"})
        EXPECT_FALSE(ParseCsvDate(bad, DayMonthYear)) << bad;
    EXPECT_FALSE(ParseCsvDate("13/25/2026", MonthDayYear));

    for (const auto& [text, decimal, amount] :
         std::initializer_list<std::tuple<const char*, char, const char*>>{{"-1.234,56", ',', "-1234.5600"},
                                                                           {"1 234,56 kr.", ',', "1234.5600"},
                                                                           {"€ 5,00", ',', "5.0000"},
                                                                           {"EUR -5,00", ',', "-5.0000"},
                                                                           {"£1,234.50", '.', "1234.5000"},
                                                                           {"($5.00)", '.', "-5.0000"},
                                                                           {"5.00 DR", '.', "-5.0000"},
                                                                           {"5.00 CR", '.', "5.0000"},
                                                                           {"5,00 S", ',', "-5.0000"},
                                                                           {"5,00 H", ',', "5.0000"},
                                                                           {"5.00-", '.', "-5.0000"},
                                                                           {"1'234.50", '.', "1234.5000"},
                                                                           {"1’234.50", '.', "1234.5000"},
                                                                           {"1\xC2\xA0"
                                                                            "234,5",
                                                                            ',', "1234.5000"},
                                                                           {"\xE2\x88\x92"
                                                                            "7.25",
                                                                            '.', "-7.2500"},
                                                                           {".50", '.', "0.5000"},
                                                                           {"+12", '.', "12.0000"},
                                                                           {"kr. 12,50", ',', "12.5000"}}) {
        const auto read = ParseCsvAmount(text, decimal);
        EXPECT_EQ(read ? ExactText(*read) : "none", amount) << text;
    }
    for (const char* bad : {"", "x", "1.2.3", "12 Mustermann", "1,2,3,4"})
        EXPECT_FALSE(ParseCsvAmount(bad, '.')) << bad;
}

/// A file of a bank, and what must come out of it.
struct BankFile {
    const char* name;
    std::string text;
    std::vector<std::string> entries;  ///< day, effect, item, partner, note
    std::size_t refused = 0;
};

std::vector<BankFile> BankFiles() {
    return {
        {"German, with a preamble, in the Latin page",
         "\"Kontonummer:\";\"DE00 1234\";\n\n\"Von:\";\"01.01.2026\";\n\"Kontostand vom "
         "31.01.2026:\";\"1.234,56 "
         "EUR\";\n\n\"Buchungstag\";\"Wertstellung\";\"Buchungstext\";\"Auftraggeber / "
         "Beg\xFCnstigter\";\"Verwendungszweck\";\"Kontonummer\";\"Betrag (EUR)\";\n"
         "\"05.01.2026\";\"05.01.2026\";\"Lastschrift\";\"B\xE4"
         "ckerei Gro\xDF\";\"Brot; Br\xF6tchen\";\"1\";\"-1.012,50\";\n"
         "\"31.01.2026\";\"31.01.2026\";\"Gutschrift\";\"Arbeit\";\"Lohn\";\"2\";\"2.500,00\";\n",
         {"2026-01-05 -1012.5000 Brot; Brötchen|Bäckerei Groß|", "2026-01-31 2500.0000 Lohn|Arbeit|"}},
        {"British, paid in and paid out",
         "Date,Transaction type,Description,Paid out,Paid in,Balance\n"
         "05 Jan 2026,)),\"CORNER SHOP, LONDON\",\xC2\xA3"
         "12.50,,\xC2\xA3"
         "100.00\n06 Jan 2026,BACS,SALARY,,\"\xC2\xA3"
         "2,500.00\",\xC2\xA3"
         "2600.00\n",
         {"2026-01-05 -12.5000 CORNER SHOP, LONDON||", "2026-01-06 2500.0000 SALARY||"}},
        {"American",
         "Posting Date,Description,Amount,Type\r\n01/25/2026,\"COFFEE \"\"JOE\"\"\",-4.25,DEBIT\r\n"
         "01/31/2026,INTEREST,0.07,CREDIT\r\nTotal,,-4.18,\r\n",
         {"2026-01-25 -4.2500 COFFEE \"JOE\"||", "2026-01-31 0.0700 INTEREST||"},
         1},
        {"French",
         "Date op\xC3\xA9ration;Libell\xC3\xA9;D\xC3\xA9"
         "bit;Cr\xC3\xA9"
         "dit\n13/02/2026;Boulangerie;-3,40;\n28/02/2026;Virement;;1\xE2\x80\xAF"
         "850,00\n",
         {"2026-02-13 -3.4000 Boulangerie||", "2026-02-28 1850.0000 Virement||"}},
        {"Dutch, with signs in a column of their own left out",
         "\"Datum\";\"Naam / Omschrijving\";\"Rekening\";\"Bedrag (EUR)\";\"Mededelingen\"\n"
         "\"20260117\";\"Albert\";\"NL00\";\"-23,95\";\"Pas 001\"\n",
         {"2026-01-17 -23.9500 Pas 001|Albert|"}},
        {"without heads",
         "2026-01-05\tBread\t-1.50\n2026-01-06\tButter\t2.25\n",
         {"2026-01-05 -1.5000 Bread||", "2026-01-06 2.2500 Butter||"}},
        {"our own",
         "Date,Item,Credit,Debit,Payment,Private,Biz-Partner,Note,Category\r\n2026-01-05,Łódź,,1.2345,Cash,x,"
         "P,"
         "\"a\r\nb\",Food\r\n",
         {"2026-01-05 -1.2345 Łódź|P|a\r\nb"}},
    };
}

std::filesystem::path Written(TempStore& store, const std::string& text) {
    const auto path = store.folder.Path() / "bank.csv";
    std::ofstream(path, std::ios::binary) << text;
    return path;
}

TEST(CsvImports, FilesOfBanksAreUnderstoodUnasked) {
    TempStore store;
    for (const BankFile& file : BankFiles()) {
        const auto path = Written(store, file.text);
        const auto preview = PreviewCsv(path, DateOrder::DayMonthYear);
        ASSERT_TRUE(preview) << file.name;
        const auto reading = ReadCsv(path, preview->mapping);
        ASSERT_TRUE(reading) << file.name;
        std::vector<std::string> entries;
        for (const CsvEntry& entry : reading->entries) {
            const Transaction& t = entry.transaction;
            EXPECT_GE(t.amount, Money{}) << file.name;
            entries.push_back(IsoDate(t.date) + " " + (t.IsDebit() ? "-" : "") + ExactText(t.amount) + " " +
                              t.description + "|" + t.partner + "|" + t.note);
        }
        EXPECT_EQ(entries, file.entries) << file.name;
        EXPECT_EQ(reading->refusedCount, file.refused) << file.name;
    }
}

TEST(CsvImports, WhatCannotBeReadIsToldAndNothingElse) {
    TempStore store;
    EXPECT_FALSE(PreviewCsv(store.folder.Path() / "none.csv", DateOrder::DayMonthYear));
    const auto empty = PreviewCsv(Written(store, ""), DateOrder::DayMonthYear);
    ASSERT_FALSE(empty);
    EXPECT_FALSE(empty.error().detail.empty());
    const auto path = Written(store,
                              "Date,Item,Amount\n2026-02-30,a,1.00\n2026-02-01,b,\n2026-02-01,c,x\n,d,1\n"
                              "1850-01-01,e,1\n2026-02-01," +
                                  std::string(70000, 'x') + ",1\n2026-02-01,ok,1.00\n");
    const auto preview = PreviewCsv(path, DateOrder::DayMonthYear);
    const auto reading = ReadCsv(path, preview->mapping);
    ASSERT_EQ(reading->entries.size(), 1U);
    EXPECT_EQ(reading->entries[0].line, 8U);
    EXPECT_EQ(reading->refusedCount, 6U);
    EXPECT_EQ(reading->refused[0].line, 2U);
    EXPECT_EQ(reading->refused[5].why, "a text is too long");
    // A preview of another form keeps to it.
    EXPECT_EQ(PreviewCsv(path, {CsvEncoding::Utf8, ';'}, DateOrder::DayMonthYear)->rows[0].size(), 1U);
}

TEST(CsvImports, MarkWhatIsThereAndStoreTheRestInOneStep) {
    TempStore store;
    ASSERT_EQ(store::StoreCategories(store.session, {{"Food", 3}}, kBudget), 0);
    Transaction there;
    there.date = RolledDate(2026, 1, 5);
    there.amount = {125000};
    there.cdbw = kDebit;
    ASSERT_EQ(WriteRecord(store.session, kBudget, there).error, 0);
    std::string text = "Date,Item,Amount,Category\n";
    for (const char* row : {"2026-01-08,near,-12.50,food", "2026-01-09,far,-12.50,Łuk",
                            "2026-01-05,other side,12.50,", "2026-01-02,near too,-12.5000,",
                            "2026-01-05,other amount,-12.51,Łuk", "2026-01-05,unfiled,1,Unfiled"})
        text += std::string(row) + "\n";
    const auto path = Written(store, text);
    auto reading = ReadCsv(path, PreviewCsv(path, DateOrder::DayMonthYear)->mapping);
    ASSERT_EQ(reading->entries.size(), 6U);
    ASSERT_EQ(MarkDuplicates(store.session, kBudget, reading->entries), 0);
    std::vector<bool> ticked;
    for (const CsvEntry& entry : reading->entries)
        ticked.push_back(entry.ticked);
    EXPECT_EQ(ticked, (std::vector<bool>{false, true, true, false, true, true}));
    reading->entries[3].ticked = true;  // the person knows better
    const auto before = store.Rows();
    const auto report = ImportCsv(store.session, kBudget, reading->entries);
    ASSERT_TRUE(report);
    EXPECT_EQ(report->imported, 5U);
    EXPECT_EQ(report->leftOut, 1U);
    EXPECT_EQ(report->categories, 1U);
    const auto ledger = ReadLedger(store.session, {.section = kBudget, .calDate = there.date});
    EXPECT_EQ(ledger->count, 6U);
    const auto list = store::FillCategories(store.session, kBudget, false, false, false);
    ASSERT_EQ(list.size(), 2U);
    EXPECT_EQ(list[1].text, "Luk");  // names of categories have the letters of the page
    EXPECT_EQ(store::TakeStep(store.session, kBudget, store::UndoWay::Undo).written, 6U);
    EXPECT_EQ(store.Rows(), before);
}

TEST(CsvExports, AreReadBackAsTheyWere) {
    TempStore store;
    const store::CategoryList categories = {{"Food", 3}};
    std::vector<Transaction> entries(4);
    for (std::size_t i = 0; i < entries.size(); ++i)
        entries[i].date = RolledDate(2026, 1, 5 + static_cast<int>(i));
    entries[0].description = "=1+1; \"quoted\", Łódź";
    entries[0].amount = {1234567};
    entries[0].category = 3;
    entries[0].paymentType = 200;
    entries[1].note = "a\r\nb";
    entries[1].amount = {5};
    entries[1].cdbw = kDebit | kPrivate;
    entries[1].paymentType = 3;
    entries[2].amount = {-70000};
    entries[3].amount = {-80000};
    entries[3].cdbw = kDebit;
    for (const char decimal : {'.', ','}) {
        std::string text = CsvLine(CsvHeads(), decimal == ',' ? ';' : ',');
        for (const Transaction& entry : entries)
            text += CsvLine(CsvRowOf(entry, categories, decimal), decimal == ',' ? ';' : ',');
        const auto path = Written(store, text);
        const auto preview = PreviewCsv(path, DateOrder::MonthDayYear);
        EXPECT_EQ(preview->mapping.decimal, decimal);
        const auto reading = ReadCsv(path, preview->mapping);
        ASSERT_EQ(reading->entries.size(), 4U);
        const Transaction& first = reading->entries[0].transaction;
        EXPECT_EQ(first.description, entries[0].description);
        EXPECT_EQ(first.amount, entries[0].amount);
        EXPECT_EQ(first.paymentType, 200);
        EXPECT_EQ(reading->entries[0].categoryName, "Food");
        const Transaction& second = reading->entries[1].transaction;
        EXPECT_EQ(second.amount, Money{5});
        EXPECT_EQ(second.cdbw, 3);
        EXPECT_TRUE(second.isPrivate);
        EXPECT_EQ(second.note, entries[1].note);
        EXPECT_EQ(second.paymentType, 3);
        // What counted as the other side comes back as that.
        EXPECT_EQ(reading->entries[2].transaction.cdbw, kDebit);
        EXPECT_EQ(reading->entries[2].transaction.amount, Money{70000});
        EXPECT_EQ(reading->entries[3].transaction.cdbw, 0);
    }
}

}  // namespace
}  // namespace bmr::budget
