// What it costs that the user can take steps back.
// undosave        one memo stored among 20,000, recorded, against the same without, processor time limit 1.1
// undodelete100k  all of 100,000 tasks deleted, recorded, against the same without, processor time limit 2
#include <vector>

#include "database.h"
#include "notes/memo.h"
#include "ratio.h"
#include "store/section_store.h"
#include "store/undo.h"

namespace {

using namespace bmr;
using bench::BenchDatabase;

constexpr int kMemos = 20000;
constexpr int kSaves = 1500;
constexpr int kTasks = 100000;

std::vector<notes::Memo> AddMemos(store::Session& session) {
    std::vector<notes::Memo> memos(kMemos, notes::ClearRecord(session, 0));
    for (int i = 0; i < kMemos; ++i) {
        std::string subject(1, static_cast<char>('a' + i % 26));
        subject += static_cast<char>('a' + i / 26 % 26);
        memos[static_cast<std::size_t>(i)].subject = subject + std::to_string(i);
        memos[static_cast<std::size_t>(i)].body = std::string(120, 'x');
    }
    BenchDatabase::Check(notes::AddRecords(session, memos));
    return memos;
}

/// Every second memo gets another text, every other another subject; nothing of it stays.
void Save(store::Session& session, std::vector<notes::Memo>& memos, bool recording) {
    session.undo = store::UndoLog();
    session.undo.recording = recording;
    engine::Transaction all(*session.ProgramDb);
    for (std::size_t i = 0; i < kSaves; ++i) {
        notes::Memo memo = memos[i * 13 % memos.size()];
        if (i % 2 == 0)
            memo.subject += "!";
        else
            memo.body += "!";
        BenchDatabase::Check(notes::WriteRecord(session, memo));
    }
    session.bucketOrder.Clear();
}

void DeleteAll(store::Session& session, bool recording) {
    session.undo = store::UndoLog();
    session.undo.recording = recording;
    engine::Transaction all(*session.ProgramDb);
    BenchDatabase::Check(store::DeleteRows(session, store::Section::Todo));
}

}  // namespace

int main() {
    bench::Report report;
    BenchDatabase database("undo");
    store::Session& session = database.session;
    auto memos = AddMemos(session);
    const auto saves = bench::BestInTurns(
        9, [&] { Save(session, memos, false); }, [&] { Save(session, memos, true); });
    report.Ratio("undosave", saves.ours, saves.base, 1.1);
    database.AddTasks(kTasks);
    const auto deletes = bench::BestInTurns(
        5, [&] { DeleteAll(session, false); }, [&] { DeleteAll(session, true); });
    report.Ratio("undodelete100k", deletes.ours, deletes.base, 2);
    session.undo = store::UndoLog();
    return report.Status();
}
