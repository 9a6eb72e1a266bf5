#include "address/merge.h"

#include <gtest/gtest.h>

#include <fstream>

#include "address/addressbook.h"
#include "address/birthdays.h"
#include "address/birthdaytext.h"
#include "address/contact.h"
#include "address/mailing.h"
#include "address/vcardfile.h"
#include "store/indices.h"
#include "store/undo.h"
#include "support/store.h"

namespace bmr::address {
namespace {

Record Person(const Words& last, const Words& number = {}) {
    Record record = ClearRecord(0);
    record.fileAs = record[FieldNumber::LastName] = last;
    record.Com(0) = number;
    return record;
}

TEST(Merging, FillsWhatIsMissingAndAsksForTheRest) {
    Record left = Person("Muster", "+49 30 1234567");
    left[FieldNumber::HomeAddress] = "Weg 1";
    left[FieldNumber::BusinessAddress] = "Hof 2";
    left[FieldNumber::Notes] = "one";
    left[FieldNumber::JobTitle] = "Vet";
    Record right = Person("Muster-Weiß", "030 1234567");
    right.Com(2) = "0664 5";
    right.ComLabel(2) = "8";
    right[FieldNumber::HomeAddress] = "Weg 1";
    right[FieldNumber::HomeAddress + AddressPart::City] = "Graz";
    right[FieldNumber::BusinessAddress] = "Hof 3";
    right[FieldNumber::BusinessAddress + AddressPart::City] = "Wien";
    right[FieldNumber::Notes] = "two";
    right[FieldNumber::Spouse] = "Ann";
    right.birthday = {22418};
    right.isPrivate = true;
    std::vector<std::uint8_t> numbers;
    for (const FieldPair& pair : DifferentFields(left, right, {}))
        numbers.push_back(pair.number);
    EXPECT_EQ(numbers, (std::vector<std::uint8_t>{FieldNumber::LastName, FieldNumber::BusinessAddress,
                                                  FieldNumber::FileAs}));
    const std::uint8_t chosen[] = {FieldNumber::BusinessAddress};
    Record merged = MergeRecords(left, right, chosen, {});
    EXPECT_EQ(merged.fileAs, "Muster");
    EXPECT_EQ(merged[FieldNumber::BusinessAddress], "Hof 3");
    EXPECT_EQ(merged[FieldNumber::HomeAddress + AddressPart::City], "Graz");
    EXPECT_EQ(merged[FieldNumber::BusinessAddress + AddressPart::City], "Wien");
    EXPECT_EQ(merged[FieldNumber::Spouse], "Ann");
    EXPECT_EQ(merged[FieldNumber::JobTitle], "Vet");
    EXPECT_EQ(merged[FieldNumber::Notes], "one\r\ntwo");
    EXPECT_EQ(std::tuple(merged.Com(0), merged.Com(1), merged.Com(2), merged.ComLabel(2)),
              std::tuple("+49 30 1234567", "", "0664 5", "8"))
        << "one number written in two ways is one";
    EXPECT_TRUE(merged.isPrivate);
    EXPECT_EQ(merged.birthday, right.birthday);
    EXPECT_EQ(
        MergeRecords(left, right, {}, {}, Losers::ToNotes)[FieldNumber::Notes],
        "one\r\ntwo\r\nLastName: Muster-Weiß\r\nBusinessAddressStreet: Hof 3, Wien\r\nfileAs: Muster-Weiß");
    for (std::size_t slot = 0; slot < kComSlots; ++slot)
        left.Com(slot) = std::string(3, static_cast<char>('a' + slot));
    EXPECT_EQ(MergeRecords(left, right, {}, {})[FieldNumber::Notes], "one\r\ntwo\r\n030 1234567\r\n0664 5");
}

class VCardFiles : public testing::Test {
  protected:
    VCardFiles() {
        store.session.ShowPrivate = true;
        store.session.undo.recording = true;
    }
    void Write(std::string_view text) { std::ofstream(path, std::ios::binary) << text; }
    Result<ImportReport> Import(CardFate duplicates) {
        ImportPlan plan;
        plan.fate = [duplicates](const SeenCard& card) {
            return card.IsDuplicate() ? duplicates : CardFate::Add;
        };
        return ImportVCards(store.session, path, plan);
    }
    std::vector<Record> Stored() {
        std::vector<Record> records;
        const auto keys = ListRecords(store.session, -1);
        for (const std::int32_t key : *keys)
            records.push_back(*FetchRecord(store.session, key));
        return records;
    }

    test::TempStore store;
    std::filesystem::path path = store.folder.Path() / "cards.vcf";
};

TEST_F(VCardFiles, MergedRecordsAreOneStep) {
    Record one = Person("Muster", "1234567");
    Record other = Person("Weiß", "7654321");
    ASSERT_EQ(WriteRecord(store.session, one), 0);
    ASSERT_EQ(WriteRecord(store.session, other), 0);
    Record merged = MergeRecords(one, other, {}, {});
    ASSERT_EQ(StoreMerged(store.session, merged, other.key), 0);
    ASSERT_EQ(Stored().size(), 1U);
    EXPECT_EQ(Stored()[0].Com(1), "7654321");
    ASSERT_EQ(store::TakeStep(store.session, store::Section::Address, store::UndoWay::Undo).error, 0);
    EXPECT_EQ(Stored().size(), 2U);
    EXPECT_TRUE(store::FindDisorder(store.session, store::Section::Address).empty());
}

TEST_F(VCardFiles, ComeInAndGoOutWhole) {
    std::vector<Record> records;
    for (int i = 0; i < 200; ++i) {
        Record record = Person("Name " + std::to_string(i), "0664 " + std::to_string(10000 + i));
        record[FieldNumber::Notes] = "Łódź\r\n" + std::string(static_cast<std::size_t>(i), 'n');
        record.isPrivate = i % 7 == 0;
        records.push_back(record);
    }
    ASSERT_EQ(AddRecords(store.session, records), 0);
    ASSERT_EQ(ExportVCards(store.session, -1, path)->records, 200U);
    const auto before = Stored();
    ASSERT_EQ(DeleteRecords(store.session, -1), 0);
    const auto report = Import(CardFate::Skip);
    ASSERT_TRUE(report);
    EXPECT_EQ(report->added, 200U);
    const auto after = Stored();
    ASSERT_EQ(after.size(), before.size());
    for (std::size_t i = 0; i < after.size(); ++i) {
        EXPECT_EQ(after[i].texts, before[i].texts);
        EXPECT_EQ(after[i].isPrivate, before[i].isPrivate);
    }
    // Once more: nothing is new.
    EXPECT_EQ(Import(CardFate::Skip)->skipped, 200U);
    EXPECT_EQ(Stored().size(), 200U);
    // One step takes the whole import back.
    ASSERT_EQ(store::TakeStep(store.session, store::Section::Address, store::UndoWay::Undo).error, 0);
    EXPECT_EQ(Stored().size(), 0U);
}

TEST_F(VCardFiles, DuplicatesAreMergedEvenWithinAFile) {
    Record there = Person("Müster", "+43 664 1234567");
    there.category = 3;
    ASSERT_EQ(WriteRecord(store.session, there), 0);
    const auto card = [](const std::string& lines) { return "BEGIN:VCARD\r\n" + lines + "END:VCARD\r\n"; };
    Write(card("FN:MUSTER\r\nTEL:0664 1234567\r\nEMAIL:m@example.org\r\n") +
          card("FN:Muster\r\nTEL:999999\r\n") + card("FN:New\r\nEMAIL:New@Example.org\r\nNOTE:first\r\n") +
          card("TEL:1\r\n") + card("FN:new\r\nEMAIL:new@example.org\r\nNOTE:second\r\nPHOTO:x\r\n"));
    std::vector<std::string> seen;
    ASSERT_TRUE(PreviewVCards(store.session, path, [&seen](const SeenCard& each) {
        seen.push_back(std::string(each.sameName ? "name" : "") + (each.sameNumber ? "number" : "") +
                       each.problem);
        return true;
    }));
    EXPECT_EQ(seen, (std::vector<std::string>{"namenumber", "name", "", "it has no name", "namenumber"}));
    EXPECT_EQ(Stored().size(), 1U) << "a look stores nothing";
    const auto report = Import(CardFate::Merge);
    ASSERT_TRUE(report);
    std::vector<CardFate> fates;
    for (const ImportedCard& each : report->cards)
        fates.push_back(each.fate);
    EXPECT_EQ(fates, (std::vector<CardFate>{CardFate::Merge, CardFate::Add, CardFate::Add, CardFate::Skip,
                                            CardFate::Merge}));
    EXPECT_EQ(report->cards[3].reason, "it has no name");
    EXPECT_EQ(report->cards[4].reason, "left out: PHOTO");
    const auto merged = FetchRecord(store.session, there.key);
    EXPECT_EQ(merged->fileAs, "Müster");
    EXPECT_EQ(merged->Com(1), "m@example.org");
    EXPECT_EQ(merged->category, 3);
    EXPECT_EQ(merged->Com(0), "+43 664 1234567");
    const auto stored = Stored();
    ASSERT_EQ(stored.size(), 3U);
    EXPECT_EQ(stored[2][FieldNumber::Notes], "first\r\nsecond\r\nfileAs: new");
    ASSERT_EQ(store::TakeStep(store.session, store::Section::Address, store::UndoWay::Undo).error, 0);
    EXPECT_EQ(Stored().size(), 1U);
    EXPECT_EQ(Stored()[0].Com(1), "");
}

TEST_F(VCardFiles, WhatIsNoneStoresNothing) {
    const auto rows = store.Rows();
    for (const auto& bad :
         {store.folder.Path() / "none.vcf", store.folder.Path(), store.session.DatabasePath}) {
        path = bad;
        EXPECT_FALSE(Import(CardFate::Add)) << bad;
    }
    path = store.folder.Path() / "x.vcf";
    Write(std::string("\x00\x01\xFFrubbish\r\n", 12));
    const auto refused = Import(CardFate::Add);
    ASSERT_FALSE(refused);
    EXPECT_NE(refused.error().detail.find("holds no vCard"), std::string::npos);
    EXPECT_EQ(store.Rows(), rows);
}

TEST_F(VCardFiles, BirthdaysComeInTheirOrder) {
    const auto day = [](const char* iso) { return *ParseIsoDate(iso); };
    EXPECT_EQ(NextBirthday(day("1960-02-29"), day("2027-01-01")), day("2027-02-28"));
    EXPECT_EQ(NextBirthday(day("1960-02-29"), day("2028-02-28")), day("2028-02-29"));
    EXPECT_EQ(NextBirthday(day("1960-11-21"), day("2026-11-21")), day("2026-11-21"));
    for (const auto& [name, born, isPrivate] :
         {std::tuple("Łucja", "1961-12-20", false), std::tuple("Today", "2000-11-21", false),
          std::tuple("Late", "1961-12-21", false), std::tuple("Secret", "1990-01-01", true),
          std::tuple("Unborn", "2026-11-25", false), std::tuple("New year", "1990-12-01", true)}) {
        Record record = Person(name);
        record.birthday = {static_cast<double>(day(born).serial)};
        record.isPrivate = isPrivate;
        ASSERT_EQ(WriteRecord(store.session, record), 0);
    }
    const auto told = [&] {
        std::vector<std::pair<Words, int>> names;
        const auto coming = UpcomingBirthdays(store.session, day("2026-11-21"));
        for (const UpcomingBirthday& each : *coming)
            names.emplace_back(each.name, each.age);
        return names;
    };
    using Told = std::vector<std::pair<Words, int>>;
    EXPECT_EQ(told(), (Told{{"Today", 26}, {"New year", 36}, {"Łucja", 65}}));
    store.session.ShowPrivate = false;
    EXPECT_EQ(told(), (Told{{"Today", 26}, {"Łucja", 65}}));
}

TEST(Birthdays, AreDatesThatARecordHolds) {
    const LocaleFacts german{.shortDate = "dd.MM.yyyy"};
    EXPECT_EQ(ReadBirthday("  ", german).date.serial, 0);
    EXPECT_EQ(ReadBirthday("17.5.1961", german).date.serial, 22418);
    EXPECT_EQ(ReadBirthday("1961-05-17", german).date.serial, 22418);
    for (const char* none : {"31.02.", "1880", "31.02.1960", "soon"}) {
        EXPECT_EQ(ReadBirthday(none, german).problem, "This is no date. Write it like 17.05.1961.") << none;
        EXPECT_FALSE(ReadBirthday(none, german).isBeyond);
    }
    for (const auto& [typed, fits] : {std::pair("14.10.1903", false),
                                      {"15.10.1903", true},
                                      {"14.04.2069", true},
                                      {"15.04.2069", false}}) {
        const BirthdayText read = ReadBirthday(typed, german);
        EXPECT_EQ(read.problem.empty(), fits) << typed;
        EXPECT_EQ(read.isBeyond, !fits) << typed;
    }
}

TEST_F(VCardFiles, AMailReachesEachAddressOnce) {
    Record both = Person("A", "a@example.org");
    both.ComLabel(0) = "5";
    both.Com(5) = "shown@example.org";
    both[FieldNumber::ComDisplay] = "5";
    Record same = Person("B", "555");
    same.Com(6) = " Shown@Example.org ";
    for (Record record : {both, same, Person("C", "c@example.org"), Person("D")})
        ASSERT_EQ(WriteRecord(store.session, record), 0);
    const auto mailing = MailingOf(store.session, -1);
    EXPECT_EQ(mailing->Text(), "?bcc=shown@example.org") << "what is no mail address by its kind is none";
    EXPECT_EQ(mailing->without, 2U);
}

}  // namespace
}  // namespace bmr::address
