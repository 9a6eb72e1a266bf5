#include "custody/drafts.h"

#include "custody/deflate.h"
#include "custody/keyrecords.h"
#include "custody/systemrecord.h"
#include "store/record_get.h"
#include "support/full_disk.h"
#include "support/sitting.h"

namespace bmr::custody {

using namespace store;
namespace {

using test::kPassphrase;
using test::Sitting;

constexpr std::uint8_t kDraftsField = 16;
const char* const kSystemRow = "fSec=1 And fSub=3";

Draft MakeDraft(std::string_view body, std::int32_t key = kNewRecord) {
    Draft draft;
    draft.section = Section::Memo;
    draft.key = key;
    draft.category = -7;
    draft.isPrivate = false;
    draft.title = Secret("Garten \xE2\x82\xAC");
    draft.Put(1, body);
    draft.Put(9, "");
    return draft;
}

int Store(Session& session, Draft draft) {
    std::vector<Draft> drafts;
    drafts.push_back(std::move(draft));
    return StoreDrafts(session, std::move(drafts));
}

std::vector<std::string> Bodies(Session& session) {
    std::vector<std::string> bodies;
    for (const Draft& draft : LoadDrafts(session))
        bodies.emplace_back(draft.Text(1));
    return bodies;
}
using Strings = std::vector<std::string>;

/// A memo's row with a payload, and its key.
std::int32_t AddMemo(Session& session) {
    return StoreRow(session, Section::Memo, kNewRecord,
                    [&](engine::Recordset& row, bool) { return SetPayload(session, row, "a payload"); })
        .fPK;
}

/// A text that hardly shrinks.
std::string Noise(RandomSource& random, std::size_t size) {
    return ToHex(cry::RandomBytes(random, static_cast<std::int32_t>(size / 2)));
}

TEST(Drafts, ComeBackWholeFromTheClosedFile) {
    Sitting sitting;
    sitting.Make();
    Session& session = sitting.session;
    const std::int32_t memo = AddMemo(session);
    sitting.clock.now = {46347.75};
    ASSERT_EQ(Store(session, MakeDraft("blanks at the end  ", memo)), 0);
    Draft secret = MakeDraft("\xE5\xAD\x97 stays", kNewRecord);
    secret.isPrivate = true;
    ASSERT_EQ(Store(session, std::move(secret)), 0);
    sitting.Close();
    EXPECT_EQ(test::FileBytes(sitting.file).find("blanks at"), std::string::npos);
    ASSERT_EQ(sitting.Open(), 0);

    const auto drafts = LoadDrafts(session);
    ASSERT_EQ(drafts.size(), 2u);
    EXPECT_EQ(drafts[0].section, Section::Memo);
    EXPECT_EQ(drafts[0].key, memo);
    EXPECT_EQ(drafts[0].category, -7);
    EXPECT_EQ(drafts[0].when, DateValue{46347.75});
    EXPECT_FALSE(drafts[0].isPrivate || drafts[0].cut);
    EXPECT_EQ(drafts[0].title.view(), "Garten \xE2\x82\xAC");
    EXPECT_EQ(drafts[0].Text(1), "blanks at the end  ");
    EXPECT_EQ(drafts[0].Text(2), "");
    EXPECT_EQ(drafts[1].Text(1), "\xE5\xAD\x97 stays");
    EXPECT_TRUE(drafts[1].isPrivate);
    EXPECT_NE(drafts[0].id, drafts[1].id);

    // One of the same id takes the place; the record's user alone is offered it.
    Draft again = MakeDraft("written on");
    again.id = drafts[0].id;
    ASSERT_EQ(Store(session, std::move(again)), 0);
    EXPECT_EQ(Bodies(session), (Strings{"written on", "\xE5\xAD\x97 stays"}));
    session.user.UserNumber = 3;
    EXPECT_EQ(Bodies(session), Strings{});
    ASSERT_EQ(Store(session, MakeDraft("of another user")), 0);
    session.user.UserNumber = 0;
    ASSERT_EQ(DropDraft(session, drafts[0].id), 0);
    EXPECT_EQ(Bodies(session), (Strings{"\xE5\xAD\x97 stays"}));
    ASSERT_EQ(DropDraft(session, drafts[1].id), 0);
    session.user.UserNumber = 3;
    EXPECT_EQ(Bodies(session), Strings{"of another user"});
    sitting.Close();
}

TEST(Drafts, TheOtherFieldsOfTheSystemRecordStayByteForByte) {
    Sitting sitting;
    sitting.Make();
    Session& session = sitting.session;
    ASSERT_EQ(WriteSystemMemo(session, 5, "mine"), 0);
    const auto fields = [&session] {
        std::vector<Bytes> all;
        const auto payload = FetchSinglePayload(session, 1, 3);
        PayloadReader reader((**payload).view());
        for (RawField field; reader.Next(field);)
            all.push_back(Bytes(1, ByteChar(field.number)) + ByteChar(field.tag) + Bytes(field.value));
        return all;
    };
    const auto before = fields();
    ASSERT_EQ(Store(session, MakeDraft("something")), 0);
    auto during = fields();
    ASSERT_EQ(during.size(), before.size());
    EXPECT_EQ(during.back().substr(0, 2), "\x10\x0C");
    during.back() = before.back();
    EXPECT_EQ(during, before);
    ASSERT_EQ(DropDraft(session, LoadDrafts(session).at(0).id), 0);
    EXPECT_EQ(fields(), before);
    sitting.Close();
}

TEST(Drafts, AFieldOfAnotherHandIsLeftAsFound) {
    Sitting sitting;
    sitting.Make();
    Session& session = sitting.session;
    ASSERT_EQ(Store(session, MakeDraft("something")), 0);
    const auto good = ReadSystemMemo(session, kDraftsField);
    const Bytes whole((*good).view());
    const auto plain = Inflate(whole.substr(1), 10000);
    ASSERT_TRUE(plain);
    const auto packed = [](std::string_view text) { return "\x01" + Bytes(Deflate(text).view()); };
    const Bytes draft(plain->view());

    EXPECT_EQ(packed(draft), whole);
    const std::vector<Bytes> foreign{Bytes(700, 'd'),
                                     "\x02" + whole.substr(1),
                                     whole.substr(0, whole.size() - 1),
                                     whole + "x",
                                     packed(draft.substr(1)),
                                     packed(draft.substr(0, draft.size() - 1)),
                                     packed(draft + Bytes(30, '\xFF')),
                                     packed(Bytes(std::size_t{2} << 20, '\0'))};
    for (const Bytes& field : foreign) {
        ASSERT_EQ(WriteSystemMemo(session, kDraftsField, field), 0);
        EXPECT_EQ(LoadDrafts(session).size(), 0u);
        EXPECT_GT(Store(session, MakeDraft("lost")), 0);
        EXPECT_GT(DropDraft(session, 1), 0);
        sitting.Close();
        ASSERT_EQ(sitting.Open(), 0);
        const auto kept = ReadSystemMemo(session, kDraftsField);
        ASSERT_TRUE(kept);
        EXPECT_TRUE((*kept).view() == field) << field.substr(0, 20);
    }
    sitting.Close();

    // So is a record that does not decipher at all.
    const Bytes noise(66, 'n');
    sitting.Edit(kSystemRow, [&](engine::Recordset& row) { row.SetField("fEtx", noise); });
    ASSERT_EQ(sitting.Open(), 0);
    EXPECT_EQ(LoadDrafts(session).size(), 0u);
    EXPECT_GT(Store(session, MakeDraft("lost")), 0);
    sitting.Close();
    EXPECT_EQ(TextOf(sitting.Rows(" WHERE fSec=1 And fSub=3").at(0).at("fEtx")), noise);
}

TEST(Drafts, SurviveANewPassphraseAndTheCompacting) {
    Sitting sitting;
    sitting.Make();
    ASSERT_EQ(Store(sitting.session, MakeDraft("still here")), 0);
    sitting.prompter.Type(kPassphrase).Type("another Horse 10");
    ASSERT_EQ(ChangePassphrase(sitting.session), PassphraseChange::Changed);
    sitting.prompter.Expect(166).Type("another Horse 10");
    ASSERT_EQ(RepairAndCompact(sitting.session), 0);
    EXPECT_EQ(Bodies(sitting.session), Strings{"still here"});
    sitting.Close();
}

TEST(Drafts, WhatIsTooLargeIsCutWhereItIsLongest) {
    Sitting sitting;
    sitting.Make();
    Session& session = sitting.session;
    // Twice what a field holds, but ordinary words: they stay whole.
    std::string prose;
    while (prose.size() < 2 * kLongestText)
        prose += "the " + std::to_string(prose.size()) + " apples fell, ";
    ASSERT_EQ(Store(session, MakeDraft(prose)), 0);
    EXPECT_EQ(Bodies(session), Strings{prose});

    const std::string small = Noise(sitting.random, 9000);
    const std::string large = Noise(sitting.random, 4 * kLongestText);
    ASSERT_EQ(DropDraft(session, LoadDrafts(session).at(0).id), 0);
    ASSERT_EQ(Store(session, MakeDraft(small)), 0);
    ASSERT_EQ(Store(session, MakeDraft(large)), 0);
    const auto drafts = LoadDrafts(session);
    ASSERT_EQ(drafts.size(), 2u);
    EXPECT_FALSE(drafts[0].cut);
    EXPECT_TRUE(drafts[0].Text(1) == small);
    EXPECT_TRUE(drafts[1].cut);
    EXPECT_GT(drafts[1].Text(1).size(), kLongestText);
    EXPECT_TRUE(large.starts_with(drafts[1].Text(1)));

    // Never in the middle of a character, and also where the sheer size is the trouble.
    std::string euros;
    while (euros.size() < std::size_t{2} << 20)
        euros += "\xE2\x82\xAC";
    ASSERT_EQ(Store(session, MakeDraft(euros)), 0);
    const auto last = std::move(LoadDrafts(session).at(2));
    EXPECT_TRUE(LoadDrafts(session).at(0).Text(1) == small);
    EXPECT_TRUE(last.cut);
    EXPECT_GT(last.Text(1).size(), 900000u);
    EXPECT_EQ(last.Text(1).size() % 3, 0u);
    sitting.Close();
}

TEST(Drafts, TellWhatBecameOfTheirRecord) {
    Sitting sitting;
    sitting.Make();
    Session& session = sitting.session;
    const std::int32_t memo = AddMemo(session);
    ASSERT_EQ(Store(session, MakeDraft("old", memo)), 0);
    ASSERT_EQ(Store(session, MakeDraft("new")), 0);
    const auto drafts = LoadDrafts(session);
    EXPECT_EQ(BaseOf(session, drafts.at(0)), DraftBase::Same);
    EXPECT_EQ(BaseOf(session, drafts.at(1)), DraftBase::New);
    const auto same = [&](engine::Recordset& row, bool) { return SetPayload(session, row, "a payload"); };
    ASSERT_EQ(StoreRow(session, Section::Memo, memo, same).error, 0);
    EXPECT_EQ(BaseOf(session, drafts.at(0)), DraftBase::Changed);
    ASSERT_EQ(DeleteRow(session, memo), 0);
    EXPECT_EQ(BaseOf(session, drafts.at(0)), DraftBase::Gone);
    sitting.Close();
}

TEST(Drafts, AFailedWriteLeavesWhatWasThere) {
    Sitting sitting;
    sitting.Make();
    ASSERT_EQ(Store(sitting.session, MakeDraft("first")), 0);
    {
        const test::FullDisk full;
        EXPECT_GT(Store(sitting.session, MakeDraft("second")), 0);
    }
    EXPECT_EQ(Bodies(sitting.session), Strings{"first"});
    sitting.Close();
}

}  // namespace
}  // namespace bmr::custody
