#include "address/addressbook.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

#include "address/contact.h"
#include "address/marker.h"
#include "address/rowsummary.h"
#include "base/languageus.h"
#include "store/indices.h"
#include "store/record_get.h"
#include "store/sections.h"
#include "store/undo.h"
#include "support/data.h"
#include "support/store.h"

namespace bmr::address {
namespace {

using store::Section;

class AddressBook : public testing::Test {
  protected:
    Record Add(const Words& fileAs, bool isPrivate = false, std::int32_t category = 0,
               const Words& number = {}) {
        Record record = ClearRecord(category);
        record.fileAs = fileAs;
        record.isPrivate = isPrivate;
        record.Com(0) = number;
        EXPECT_EQ(WriteRecord(store.session, record), 0);
        return record;
    }
    std::vector<Words> Names(std::int32_t category = -1) {
        const auto keys = ListRecords(store.session, category);
        if (!keys) throw std::runtime_error("no list");
        std::vector<Words> names;
        for (const std::int32_t key : *keys)
            names.push_back(RecordName(store.session, key));
        return names;
    }
    RowSummary Summary(std::int32_t key) {
        auto summaries = ReadSummaries(store.session, std::array{key});
        if (!summaries || summaries->size() != 1) throw std::runtime_error("no summary");
        return summaries->front();
    }
    Bytes Plain(std::int32_t key, const std::string& column) {
        const auto row = store.Row("SELECT " + column + " FROM tt WHERE fPK=" + std::to_string(key));
        return Bytes(cry::DecipherField(store.session.cipher, TextOf(row->Field(column))));
    }
    std::vector<Value> Columns(std::int32_t key) {
        const auto row = store.Row("SELECT fR1, fR2, fT1, fT2, AE FROM tt WHERE fPK=" + std::to_string(key));
        return {row->Field("fR1"), row->Field("fR2"), row->Field("fT1"), row->Field("fT2"), row->Field("AE")};
    }

    test::TempStore store;
};

/// A text of its own for each field, of letters that the page has or has not.
Record FullRecord(std::string_view more) {
    Record record = ClearRecord(7);
    for (const store::FieldSlot& slot : store::SlotsOf(record, kAddressFields))
        if (slot.rule.IsWords())
            *std::get<std::string*>(slot.member) = std::string(slot.rule.name) + std::string(more);
    record.isPrivate = true;
    record.priority = std::uint8_t{3};
    record.birthday = {22418};
    record[FieldNumber::ComDisplay] = "4";
    record[FieldNumber::Notes] = Joined("a\r\nb", more);
    return record;
}

TEST_F(AddressBook, EveryFieldComesBack) {
    store.session.user.UserNumber = 4;
    std::vector<Record> bulk;
    for (const std::string_view more : {"", " é – €", " Łódź", " Ελλάς 北京"}) {
        Record record = FullRecord(more);
        bulk.push_back(record);
        ASSERT_EQ(WriteRecord(store.session, record), 0);
        bulk.back().key = record.key;
        for (int round = 0; round < 2; ++round) {
            const auto back = FetchRecord(store.session, record.key);
            ASSERT_TRUE(back && back->readable);
            EXPECT_EQ(back->texts, record.texts) << more;
            EXPECT_EQ(back->fileAs, record.fileAs);
            EXPECT_EQ(back->priority, record.priority);
            EXPECT_EQ(back->birthday, record.birthday);
            EXPECT_EQ(std::tuple(back->isPrivate, back->category, int{back->userNumber}),
                      std::tuple(true, 7, 4));
            const RowSummary summary = Summary(record.key);
            EXPECT_EQ(summary.fileAs, record.fileAs);
            EXPECT_EQ(summary.contact, Joined("Com5", more, " (F)"));
            EXPECT_TRUE(summary.isPrivate);
            ASSERT_EQ(WriteRecord(store.session, record), 0);
        }
    }
    // Many at once stand as they do one by one.
    const auto single = bulk;
    ASSERT_EQ(AddRecords(store.session, bulk), 0);
    for (std::size_t i = 0; i < bulk.size(); ++i) {
        const auto back = FetchRecord(store.session, bulk[i].key);
        ASSERT_TRUE(back && back->readable);
        EXPECT_EQ(back->texts, bulk[i].texts);
        for (const char* column : {"fT1", "fT2", "fEtx"}) {
            const Bytes one = Plain(bulk[i].key, column);
            // The birthday is a random point of its bucket: four bytes.
            if (std::string_view(column) != "fEtx")
                EXPECT_EQ(one, Plain(single[i].key, column)) << column;
            else
                EXPECT_EQ(one.size(), Plain(single[i].key, column).size());
        }
        EXPECT_TRUE(IsPrivateMarker(Plain(bulk[i].key, "fT3")));
        EXPECT_EQ(
            NumberOf(store.Row("SELECT fR5 FROM tt WHERE fPK=" + std::to_string(bulk[i].key))->Field("fR5")),
            2);
    }
    EXPECT_TRUE(store::FindDisorder(store.session, Section::Address).empty());
}

TEST_F(AddressBook, AnEmptyFieldIsNotStoredAndAnUnknownOneStays) {
    Record record = ClearRecord(9999);
    record.fileAs = "Muster";
    ASSERT_EQ(WriteRecord(store.session, record), 0);
    EXPECT_EQ(record.category, 0);
    const Bytes payload = Plain(record.key, "fEtx");
    EXPECT_EQ(payload.size(), 6U) << "user and flag";
    EXPECT_EQ(TrimBlanks(Plain(record.key, "fT2")), "");
    store.Set(record.key, "fEtx",
              cry::FieldCipher(store.session.cipher, 1, payload + Bytes("\x5A\x0A\x01x", 4)));
    auto back = FetchRecord(store.session, record.key);
    back->Com(8) = "1";
    ASSERT_EQ(WriteRecord(store.session, *back), 0);
    EXPECT_EQ(TextOf(store::GetPayloadField(Plain(record.key, "fEtx"), 0x5A)), "x");
    EXPECT_EQ(Summary(record.key).contact, "1");
}

TEST_F(AddressBook, PlacesAreDrawnAnewOnlyWithNameOrContact) {
    Record record = Add("Muster", false, 0, "555");
    const auto first = Columns(record.key);
    EXPECT_EQ(first[4], Value(1));
    record[FieldNumber::Notes] = "new";
    record.isPrivate = true;
    record.category = 4;
    ASSERT_EQ(WriteRecord(store.session, record), 0);
    auto now = Columns(record.key);
    EXPECT_EQ(now[4], Value(3));
    now[4] = first[4];
    EXPECT_EQ(now, first);
    EXPECT_TRUE(Summary(record.key).isPrivate);
    // A letter that moves from one text to the other changes both, though together they read the same.
    record.fileAs = "Muster5";
    record.Com(0) = "55";
    ASSERT_EQ(WriteRecord(store.session, record), 0);
    EXPECT_NE(Columns(record.key)[1], first[1]);
    EXPECT_EQ(Summary(record.key).fileAs, "Muster5");
    EXPECT_EQ(Summary(record.key).contact, "55 (W)");
    // A row of another section stays as it is.
    store.Set(record.key, "fSec", 14);
    const auto rows = store.Rows();
    EXPECT_EQ(WriteRecord(store.session, record), MessageNumber::UpdateImpossible);
    EXPECT_EQ(store.Rows(), rows);
}

TEST_F(AddressBook, ARecordThatIsGoneBecomesANewOne) {
    Record record = Add("Muster");
    ASSERT_EQ(store::DeleteRow(store.session, record.key), 0);
    ASSERT_EQ(WriteRecord(store.session, record), 0);
    EXPECT_EQ(Columns(record.key)[4], Value(1));
    EXPECT_EQ(Names(), std::vector<Words>{"Muster"});
}

TEST_F(AddressBook, TheListLeavesOutWhatHasNoNameOrIsHidden) {
    store.session.ShowPrivate = true;
    const Record nameless = Add("");
    const Record zero = Add(Words("\0", 1));
    Add("7 Dwarfs");
    const Record secret = Add("Muster", true, 2);
    Add("Adler", false, 2);
    EXPECT_EQ(Names(), (std::vector<Words>{"7 Dwarfs", "Adler", "Muster"}));
    const auto before = store.session.cipher.deciphered;
    ASSERT_TRUE(ListRecords(store.session, -1));
    EXPECT_EQ(store.session.cipher.deciphered - before, 3U) << "the names of the first bucket";
    for (const std::int32_t all : {-1, 9999, 65535})
        EXPECT_EQ(Names(all).size(), 3U);
    EXPECT_EQ(Names(2), (std::vector<Words>{"Adler", "Muster"}));
    EXPECT_EQ(*CountHidden(store.session, -1), 0U);

    store.session.ShowPrivate = false;
    EXPECT_EQ(Names(), (std::vector<Words>{"7 Dwarfs", "Adler"}));
    EXPECT_EQ(*CountHidden(store.session, 2), 1U);
    EXPECT_EQ(DeleteAllText(2, 1), Msg(102) + "\r\n\r\nIncluding 1 hidden record.");
    // The marker alone decides; one that is too short to tell hides.
    store.Set(secret.key, "fT3",
              cry::FieldCipher(store.session.cipher, 1, PrivateMarkerOf(false, 0.5, "abcdefgh")));
    EXPECT_EQ(Names(), (std::vector<Words>{"7 Dwarfs", "Adler", "Muster"}));
    store.Set(secret.key, "fT3", cry::FieldCipher(store.session.cipher, 1, Bytes("abcdef")));
    EXPECT_EQ(Names(), (std::vector<Words>{"7 Dwarfs", "Adler"}));
    EXPECT_TRUE(Summary(secret.key).isPrivate);
    EXPECT_TRUE(Summary(nameless.key).Nameless() && Summary(zero.key).Nameless());
    // Deleting all takes what nobody sees.
    ASSERT_EQ(DeleteRecords(store.session, 2), 0);
    EXPECT_EQ(store.Count("SELECT fPK FROM tt WHERE fSec=11"), 3);
    ASSERT_EQ(DeleteRecords(store.session, 9999), 0);
    EXPECT_EQ(store.Count("SELECT fPK FROM tt WHERE fSec=11"), 0);
}

TEST_F(AddressBook, TheOrderHoldsAfterRandomRenames) {
    store.session.ShowPrivate = true;
    const auto draw = [this](std::int32_t below) { return DrawBelow(store.random, below); };
    const auto name = [&draw] {
        static constexpr std::array<std::string_view, 8> kHeads = {"Mu", "mu", "Mü", "Łu",
                                                                   "Μυ", "9",  "Ab", ""};
        Words made(kHeads[static_cast<std::size_t>(draw(8))]);
        for (int i = draw(4); i >= 0; --i)
            made += static_cast<char>('a' + draw(26));
        return made;
    };
    store.session.undo.recording = true;
    std::vector<Record> records;
    for (int i = 0; i < 400; ++i) {
        const int what = records.size() < 30 ? 0 : draw(10);
        if (what < 3) {
            records.push_back(Add(name(), draw(5) == 0, 0, name()));
        } else if (what < 9) {
            Record& record =
                records[static_cast<std::size_t>(draw(static_cast<std::int32_t>(records.size())))];
            (what < 7 ? record.fileAs : record.Com(0)) = name();
            ASSERT_EQ(WriteRecord(store.session, record), 0);
        } else {
            ASSERT_EQ(store::TakeStep(store.session, Section::Address, store::UndoWay::Undo).error, 0);
            ASSERT_EQ(store::TakeStep(store.session, Section::Address, store::UndoWay::Redo).error, 0);
        }
    }
    EXPECT_EQ(store::FindDisorder(store.session, Section::Address), std::vector<std::int32_t>());
    std::multiset<Words> stored;
    for (const Record& record : records) {
        stored.insert(record.fileAs);
        EXPECT_EQ(Summary(record.key).contact, AddressContactText(record));
    }
    const auto listed = Names();
    EXPECT_EQ(std::multiset<Words>(listed.begin(), listed.end()), stored);
}

TEST_F(AddressBook, SeveralAreMovedHiddenAndDeletedInOneStepEach) {
    store.session.ShowPrivate = store.session.undo.recording = true;
    std::vector<std::int32_t> keys;
    for (const char* name : {"Adler", "Łódź", "Muster"})
        keys.push_back(Add(name, false, 1, "555").key);
    const auto before = store.Rows();
    const store::SectionFacts& facts = *store::FactsOf(Section::Address);
    EXPECT_EQ(facts.move(store.session, keys, 2).changed, 3U);
    EXPECT_EQ(Names(2).size(), 3U);
    EXPECT_EQ(facts.hide(store.session, keys, true).changed, 3U);
    EXPECT_TRUE(Summary(keys[1]).isPrivate);
    EXPECT_EQ(Summary(keys[1]).fileAs, "Łódź");
    EXPECT_EQ(facts.remove(store.session, keys).changed, 3U);
    EXPECT_TRUE(Names().empty());
    for (int step = 0; step < 3; ++step)
        ASSERT_EQ(store::TakeStep(store.session, Section::Address, store::UndoWay::Undo).error, 0);
    EXPECT_EQ(store.Rows(), before) << "to the byte";
}

TEST(PrivateMarkers, AgreeWithKnownAnswersAndTenThousandDraws) {
    for (const auto& known : test::LoadVectors("logic.json")["groups"]["PrivateMarker"]) {
        const Bytes marker = PrivateMarkerOf(known["private"], known["rnd"], test::Hex(known["random"]));
        EXPECT_EQ(ToHex(marker), known["out"]) << known["id"];
        EXPECT_EQ(IsPrivateMarker(test::Hex(known["out"])), known["read"]) << known["id"];
    }
    test::TempStore store;
    std::set<std::size_t> lengths;
    for (int i = 0; i < 10000; ++i) {
        const Bytes marker = AddressPrivateMarker(i % 2 == 1, store.random);
        lengths.insert(marker.size());
        const Bytes ciphered = cry::FieldCipher(store.session.cipher, 1, marker);
        ASSERT_EQ(IsPrivateMarker(cry::DecipherField(store.session.cipher, ciphered)), i % 2 == 1)
            << ToHex(marker);
    }
    EXPECT_EQ(*lengths.begin(), 11U);
    EXPECT_EQ(lengths.size(), 15U);
    EXPECT_TRUE(IsPrivateMarker("aaaaaa"));
    EXPECT_FALSE(IsPrivateMarker("aaaaaab"));
}

TEST(AddressContact, AgreesWithKnownAnswers) {
    test::SeededRandom random;
    for (const auto& known : test::LoadVectors("logic.json")["groups"]["ContactText"]) {
        Record record;
        for (std::size_t slot = 0; slot < kComSlots; ++slot) {
            record.Com(slot) = known["com"][slot].get<std::string>();
            record.ComLabel(slot) = known["labels"][slot].get<std::string>();
        }
        record[FieldNumber::ComDisplay] = known["comDisplay"].get<std::string>();
        const auto payload = kRecords.Encode(record, random).payload;
        MakeContactGood(record);
        EXPECT_EQ(record[FieldNumber::ComDisplay], known["out"]["comDisplay"].get<std::string>())
            << known["id"];
        EXPECT_EQ(AddressContactText(record), known["out"]["text"].get<std::string>()) << known["id"];
        EXPECT_EQ(ContactColumn(record, random), known["out"]["text"].get<std::string>()) << known["id"];
        EXPECT_EQ(ContactOfPayload(payload), known["out"]["text"].get<std::string>()) << known["id"];
    }
}

TEST(AddressContact, WhatIsNoSlotAndNoKindCountsAsNone) {
    for (const char* display : {"9", "-1", "a", "41", " ", "8"}) {
        Record record;
        record.Com(3) = "555";
        record.ComLabel(3) = "12";
        record.ComLabel(0) = "1";
        record[FieldNumber::ComDisplay] = display;
        MakeContactGood(record);
        EXPECT_EQ(record[FieldNumber::ComDisplay], "3") << display;
        EXPECT_EQ(record.ComLabel(0), "");
        EXPECT_EQ(AddressContactText(record), "555") << display;
    }
    std::set<std::string_view> labels;
    for (const ComKindFacts& kind : ComKinds()) {
        labels.insert(LabelOf(kind.kind));
        EXPECT_EQ(KindOfLabel(LabelOf(kind.kind)), kind.kind);
    }
    EXPECT_EQ(labels.size(), 9U);
    for (const auto& [value, action] : {std::pair("0664 1", ComAction::Dial),
                                        {"a@example.org", ComAction::Mail},
                                        {"www.example.org", ComAction::Web},
                                        {"by the door", ComAction::None}}) {
        EXPECT_EQ(ActionOf(ComKind::Other, value), action) << value;
        EXPECT_EQ(ActionOf(ComKind::None, value), action) << value;
        EXPECT_EQ(ActionOf(ComKind::Email, value), ComAction::Mail) << value;
    }
    EXPECT_FALSE(labels.contains(LabelOf(ComKind::None)));
}

TEST_F(AddressBook, StatementsAgreeWithKnownAnswers) {
    for (const auto& known : test::LoadVectors("logic.json")["groups"]["AddressSql"]) {
        const std::int32_t category =
            known["category"].is_null() ? 65535 : known["category"].get<std::int32_t>();
        if (category == 0) continue;  // those whose category is gone stand there too
        EXPECT_EQ("SELECT * FROM tt WHERE fSec=11" + ClausesOf(store.session, category) + store::kOwnerAccess,
                  known["out"].get<std::string>());
    }
}

}  // namespace
}  // namespace bmr::address
