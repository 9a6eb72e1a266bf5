#include "address/search.h"

#include <gtest/gtest.h>

#include "address/addressbook.h"
#include "address/foundwords.h"
#include "address/telephone.h"
#include "support/store.h"

namespace bmr::address {
namespace {

class Searches : public testing::Test {
  protected:
    Searches() { store.session.ShowPrivate = true; }

    std::int32_t Add(const Words& fileAs, const Words& number = {}, std::uint8_t field = FieldNumber::Notes,
                     const Words& text = {}) {
        Record record = ClearRecord(0);
        record.fileAs = fileAs;
        record.Com(0) = number;
        record[field] = text;
        EXPECT_EQ(WriteRecord(store.session, record), 0);
        return record.key;
    }
    AddressSearch Begin() { return {store.session, *ListRecords(store.session, -1), {}}; }
    std::vector<Words> Names(const AddressSearch& search) {
        std::vector<Words> names;
        for (const std::int32_t key : search.Found())
            names.push_back(RecordName(store.session, key));
        EXPECT_EQ(search.FoundCount(), names.size());
        return names;
    }
    std::vector<Words> Find(AddressSearch& search, std::string_view typed) {
        search.Look(typed);
        while (search.Step()) {
        }
        EXPECT_EQ(search.error(), 0);
        EXPECT_EQ(search.Progress(), 1);
        return Names(search);
    }

    test::TempStore store;
};

TEST_F(Searches, FindNamesContactsAndFromTheThirdLetterEveryField) {
    Add("Müller, Ångström", "+49 (0)30 555-0177");
    Add("Łukasiewicz", "maria@example.org", FieldNumber::HomeAddress, "Quay Lane 4");
    Add("Παπαδάκη", "", FieldNumber::Notes, "party 🎉 for Zoë");
    Record born = ClearRecord(0);
    born.fileAs = "Zoller";
    born.Com(0) = "0664 12";
    born.Com(2) = "0664 98765";
    born.birthday = {22418};  // 1961-05-17
    ASSERT_EQ(WriteRecord(store.session, born), 0);
    AddressSearch search = Begin();
    using Found = std::vector<Words>;
    const auto all = Found{"Łukasiewicz", "Müller, Ångström", "Παπαδάκη", "Zoller"};
    EXPECT_EQ(Find(search, "  "), all);
    EXPECT_EQ(Find(search, "MU"), Found{"Müller, Ångström"});
    EXPECT_EQ(Find(search, "ang mül"), Found{"Müller, Ångström"});
    EXPECT_EQ(Find(search, "luk exa"), Found{"Łukasiewicz"}) << "name and contact together";
    EXPECT_EQ(Find(search, "pap"), Found{"Παπαδάκη"});
    EXPECT_EQ(Find(search, "ΠΑΠΑΔΆΚΗ"), Found{"Παπαδάκη"});
    EXPECT_EQ(Find(search, "zo"), Found{"Zoller"}) << "two letters leave the notes alone";
    EXPECT_EQ(Find(search, "zoe"), Found{"Παπαδάκη"});
    EXPECT_EQ(Find(search, "quay luk"), Found{"Łukasiewicz"}) << "field and name together";
    EXPECT_EQ(Find(search, "quay mul"), Found{});
    EXPECT_EQ(Find(search, "🎉"), Found{"Παπαδάκη"});
    for (const char* number : {"030 5550177", "+493055501", "0049 30 555", "555-01", "(0)30/555"})
        EXPECT_EQ(Find(search, number), Found{"Müller, Ångström"}) << number;
    EXPECT_EQ(Find(search, "0664 987"), Found{"Zoller"}) << "a number that the list does not show";
    EXPECT_EQ(Find(search, "1961-05"), Found{"Zoller"});
    EXPECT_EQ(Find(search, "no such"), Found{});
}

TEST_F(Searches, HoldTextsUntilTheyAreToldToForget) {
    for (int i = 0; i < 30; ++i)
        Add("Name " + std::to_string(i), std::to_string(100 + i));
    AddressSearch search = Begin();
    Find(search, "na");
    EXPECT_TRUE(search.HoldsTexts());
    const auto before = store.session.cipher.deciphered;
    search.Look("29");
    EXPECT_FALSE(search.Step());
    EXPECT_EQ(search.FoundCount(), 1U);
    EXPECT_EQ(store.session.cipher.deciphered, before) << "from memory";
    // What was read stays, if a key drops the search in the middle of it, and so does what was not.
    AddressSearch halfway = Begin();
    halfway.Look("na");
    ASSERT_TRUE(halfway.Step());
    ASSERT_TRUE(halfway.Step());
    EXPECT_EQ(Find(halfway, "29").size(), 1U);
    // A key pressed while the fields are read drops that search.
    search.Look("name 7");
    ASSERT_TRUE(search.Step());
    EXPECT_EQ(Find(search, "11").size(), 10U);
    search.ForgetTexts();
    EXPECT_FALSE(search.HoldsTexts());
    EXPECT_EQ(Find(search, "12").size(), 11U);  // 112, and 120 to 129
    EXPECT_GT(store.session.cipher.deciphered, before);
    // Rows that the list does not show are not found, and without a file nothing is.
    AddressSearch few(store.session, {ListRecords(store.session, -1)->front()}, {});
    EXPECT_EQ(Find(few, "name").size(), 1U);
    store.session.ProgramDb.reset();
    few.ForgetTexts();
    few.Look("name");
    while (few.Step()) {
    }
    EXPECT_NE(few.error(), 0);
}

TEST(Telephone, NumbersAreTheirDigits) {
    EXPECT_EQ(DigitsOf("+49 (0)30/12-34"), "49301234");
    EXPECT_EQ(DigitsOf("0049 30 1234"), "49301234");
    EXPECT_EQ(DigitsOf("(030) 1234 (W)"), "301234");
    EXPECT_FALSE(LooksLikeNumber("12"));
    EXPECT_FALSE(LooksLikeNumber("12a"));
    EXPECT_TRUE(LooksLikeNumber("+4 9.1"));
    EXPECT_TRUE(SameNumber("+49 30 1234567", "030 1234567"));
    EXPECT_FALSE(SameNumber("030 1234567", "030 1234568"));
    EXPECT_FALSE(SameNumber("112", "+49 112"));
    EXPECT_FALSE(SameNumber("", ""));
}

TEST(FoundWords, StandWhereTheTextHasThem) {
    const auto at = [](std::string_view text, std::vector<WipedText> words) {
        std::vector<std::string> found;
        for (const FoundSpan& span : FindWords(text, words))
            found.emplace_back(text.substr(span.begin, span.end - span.begin));
        return found;
    };
    using Found = std::vector<std::string>;
    EXPECT_EQ(at("Łódź, lodz", {WipedText("LODZ")}), (Found{"Łódź", "lodz"}));
    EXPECT_EQ(at("Straße", {WipedText("tr"), WipedText("ra")}), Found{"tra"}) << "one inside the other";
    EXPECT_EQ(at("Παπαδάκη", {WipedText("pap")}), Found{"Παπ"});
    EXPECT_EQ(at("+49 30 555-01", {WipedText("0305550")}), Found{"30 555-0"});
    EXPECT_EQ(at("nothing", {WipedText("x"), WipedText("")}), Found{});
    EXPECT_EQ(at("\xFF"
                 "abc",
                 {WipedText("b")}),
              Found{"b"});
}

}  // namespace
}  // namespace bmr::address
