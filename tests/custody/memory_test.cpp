// What stands in this process's memory once a database is closed.
#ifdef __linux__
#include "support/memory.h"
#include "support/sanitizer.h"

#include "confidential/confidential.h"
#include "custody/drafts.h"
#include "notes/memo.h"
#include "shell/draftoffer.h"
#include "store/sections.h"
#include "support/freed.h"
#include "support/sitting.h"
#include "tasks/tasklist.h"
#include "tasks/tasksearch.h"

namespace bmr::custody {
namespace {

using test::Marker;
using test::MemorySearch;

/// The marker with letters before and behind it; `foreign` ones have no place in code page 1252.
Secret Long(char which, bool foreign = false) {
    Secret text(std::string_view(foreign ? "Łódź " : "déjà vu "));
    for (int i = 0; i < 40; ++i) {
        text.Append(Marker::Text(which).view());
        text.Append("\r\n");
    }
    return text;
}
std::string_view View(const Secret& text) {
    return text.view();
}

void WorkInMemos(store::Session& session) {
    for (const bool foreign : {false, true}) {
        notes::Memo memo = notes::ClearRecord(session, 0);
        memo.subject = View(Marker::Text('a'));
        memo.body = View(Long('b', foreign));
        ASSERT_EQ(notes::WriteRecord(session, memo), 0);
        auto fetched = notes::FetchRecord(session, memo.key);
        ASSERT_TRUE(fetched);
        fetched->subject = View(Long('c', foreign)).substr(0, 60);
        ASSERT_EQ(notes::WriteRecord(session, *fetched), 0);
    }
    std::vector<notes::Memo> many(5);
    for (notes::Memo& memo : many)
        memo.subject = View(Marker::Text('d'));
    ASSERT_EQ(notes::AddRecords(session, many), 0);
    const auto found = notes::ListRecords(session, store::Category::All, Marker::Text('d').view());
    ASSERT_TRUE(found);
    EXPECT_EQ(found->size(), 5U);
    for (const std::int32_t key : *found)
        EXPECT_NE(notes::DeleteText(notes::RecordName(session, key)).find('d'), std::string::npos);
}

void WorkInTasks(store::Session& session) {
    for (const bool foreign : {false, true}) {
        tasks::Task task = tasks::ClearRecord(0);
        task.task = View(Marker::Text('e'));
        task.note = View(Long('f', foreign));
        ASSERT_EQ(tasks::WriteRecord(session, task).error, 0);
        auto values = tasks::RecordToEditor(task, {});
        values.note = View(Long('g', !foreign));
        tasks::EditorToRecord(values, task);
        ASSERT_EQ(tasks::WriteRecord(session, task).error, 0);
        ASSERT_EQ(tasks::SetPriority(session, {&task.key, 1}, tasks::Priority::High).error, 0);
        EXPECT_EQ(tasks::SetCompleted(session, task.key, true).error, 0);
    }
    auto rows = tasks::ListRecords(session, {.showCompleted = true});
    ASSERT_TRUE(rows);
    std::string search(Marker::Text('e').view());
    EXPECT_EQ(tasks::KeepMatching(session, {.showCompleted = true}, search, {}, {}, *rows), 0);
    cry::WipeString(search);
    ASSERT_EQ(rows->size(), 2U);
    EXPECT_TRUE(tasks::ReadTexts(session, rows->front().fPK).readable);
}

void WorkInConfidential(store::Session& session) {
    for (const bool foreign : {false, true}) {
        confidential::Record record;
        record.kind = 1;
        for (std::size_t i = 0; i < 4; ++i)
            record.n[i] = View(Long(static_cast<char>('h' + i), foreign)).substr(0, 100);
        record.notes = View(Long('l', foreign));
        ASSERT_EQ(confidential::WriteRecord(session, record), 0);
        auto fetched = confidential::FetchRecord(session, record.key);
        ASSERT_TRUE(fetched);
        fetched->n[0] = View(Marker::Text('m'));
        ASSERT_EQ(confidential::WriteRecord(session, *fetched), 0);
    }
    const auto found = confidential::ListRecords(session, 1, Marker::Text('m').view());
    ASSERT_TRUE(found);
    EXPECT_EQ(found->size(), 2U);
}

void WorkByTheFacts(store::Session& session) {
    for (const std::uint8_t code :
         {store::Section::Memo, store::Section::Todo, store::Section::Confidential}) {
        const store::SectionFacts& facts = *store::FactsOf(code);
        store::NewRecord given;
        given.group = code == store::Section::Confidential ? 1 : 0;
        given.fields.emplace_back(std::string(facts.NameRule()->name), View(Long('n')).substr(0, 25));
        ASSERT_TRUE(facts.add(session, given));
        for (auto& [name, value] : given.fields)
            cry::WipeString(value);
    }
}

void WorkOnDrafts(store::Session& session) {
    std::vector<Draft> drafts(1);
    drafts.front().section = store::Section::Memo;
    drafts.front().isPrivate = false;
    drafts.front().title = Long('o');
    drafts.front().Put(1, View(Long('p', true)));
    ASSERT_EQ(StoreDrafts(session, std::move(drafts)), 0);
    const auto stored = LoadDrafts(session);
    ASSERT_EQ(stored.size(), 1U);
    const Box offer = shell::DraftOffer(session, stored.front(), DraftBase::New, "Memo Pad", {});
    EXPECT_NE(offer.text.find('o'), std::string::npos);
}

TEST(Memory, HoldsNoTextOfARecordOnceTheDatabaseIsClosed) {
    if (test::kSanitized) GTEST_SKIP() << "the checker keeps freed memory and maps more than can be searched";
    test::Sitting sitting;
    sitting.Make();
    const auto holdsMarker = [](const char* block, std::size_t size) {
        for (std::size_t i = 0; i + Marker::kSize <= size; ++i)
            if (Marker::StandsAt(reinterpret_cast<const std::uint8_t*>(block) + i, 1)) return true;
        return false;
    };
    for (const auto& work : {WorkInMemos, WorkInTasks, WorkInConfidential, WorkByTheFacts, WorkOnDrafts})
        EXPECT_EQ(test::CountFreed(holdsMarker, [&] { work(sitting.session); }), 0) << "given back as it was";
    sitting.session.ShowPrivate = false;
    EXPECT_TRUE(notes::ListRecords(sitting.session, store::Category::All));
    const Secret known = Marker::Text('!');
    EXPECT_GT(MemorySearch::Run().bytes, 0) << "the search sees what stands";
    sitting.Close();
    const test::Findings found = MemorySearch::Run();
    EXPECT_EQ(found.bytes, 1) << found.where;
    EXPECT_EQ(found.letters, 0) << found.where;
}

}  // namespace
}  // namespace bmr::custody
#endif
