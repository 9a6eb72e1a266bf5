#include "engine/db_engine.h"
#include "engine/enginenumber.h"

// Transactions, and what is told of them when the disk fails.
//
// A commit that gives an error may have failed before its last step or behind it: the library does not say,
// and a program that guesses tells of a change of passphrase as undone that locks its owner out. So every
// transaction leaves a mark of its own in the file, and behind a failure the mark is read from there.
namespace bmr::engine {
namespace {

/// Any number but `old`: counting would tell how often a file was saved.
std::int64_t DrawMark(RandomSource& random, std::int64_t old) {
    return DrawKey(random, [old](std::int32_t drawn) { return drawn == old || drawn == kCopyMark; });
}

}  // namespace

int Engine::Begin() {
    if (broken_ != 0) return broken_;
    if (depth_ == 0) {
        const int code = sqlite3_exec(handle(), "BEGIN IMMEDIATE", nullptr, nullptr, nullptr);
        if (code != SQLITE_OK) return FailWith(code);
        wroteMain_ = wroteOther_ = false;
    }
    ++depth_;
    return 0;
}

int Engine::Commit() {
    if (depth_ == 0) return Fail(EngineNumber::Failed, "There is no transaction to commit.");
    if (--depth_ > 0) return broken_;
    int number = std::exchange(broken_, 0);
    if (number == 0) number = End();
    DetachOutsideTransaction();
    return number;
}

/// The outermost commit. The mark lies in the other file only when nothing of this one was written: two files
/// are written as one, and one mark speaks for both.
int Engine::End() {
    const bool marked = wroteMain_ || wroteOther_;
    const std::string schema = wroteMain_ ? "main" : "other";
    std::int64_t before = 0;
    std::int64_t mark = 0;
    int code = SQLITE_OK;
    if (marked) {
        before = MarkOf(schema).value_or(0);
        mark = DrawMark(random_, before);
        code = SetMark(schema, mark);
    }
    if (code == SQLITE_OK) code = sqlite3_exec(handle(), "COMMIT", nullptr, nullptr, nullptr);
    if (code == SQLITE_OK) return 0;
    const int number = FailWith(code);
    const std::string words = lastError_;
    UndoOnFailure(0);
    if (!marked) return number;
    // What the library held in memory is gone by now: this reads the file, and first plays its journal back
    // where there still is one.
    const auto stands = MarkOf(schema);
    lastError_ = words;
    doubt_ = doubt_ || stands == mark;
    return stands == mark ? 0 : stands == before ? number : EngineNumber::Unsure;
}

int Engine::DropMark() {
    if (const int number = Begin()) return number;
    wroteMain_ = true;
    return Commit();
}

int Engine::SetMark(const std::string& schema, std::int64_t mark) {
    const std::string sql = "PRAGMA " + schema + ".user_version=" + std::to_string(mark);
    return sqlite3_exec(handle(), sql.c_str(), nullptr, nullptr, nullptr);
}

std::optional<std::int64_t> Engine::MarkOf(const std::string& schema) {
    auto query = Prepare("PRAGMA " + schema + ".user_version");
    if (!query || !query->Step()) return std::nullopt;
    return query->Number(0);
}

void Engine::Rollback() {
    if (depth_ == 0) return;
    if (broken_ == 0) UndoOnFailure(Fail(EngineNumber::Failed, "The transaction was rolled back."));
    if (--depth_ > 0) return;
    broken_ = 0;
    DetachOutsideTransaction();
}

/// Whatever the transaction has written goes at once; the number stays until its end.
void Engine::UndoOnFailure(int number) {
    if (depth_ > 0) broken_ = number;
    // When even this fails, the journal stays, and the next reading plays it back.
    if (sqlite3_get_autocommit(handle()) == 0) sqlite3_exec(handle(), "ROLLBACK", nullptr, nullptr, nullptr);
    ++undone_;
}

int Engine::Write(Query& query, Schema schema) {
    if (broken_ != 0) return broken_;
    if (depth_ > 0) return Run(query, schema);
    if (const int number = Begin()) return number;
    const int number = Run(query, schema);
    const int ended = Commit();
    return number != 0 ? number : ended;
}

int Engine::Run(Query& query, Schema schema) {
    while (query.Step()) {
    }
    if (query.code() == SQLITE_DONE) {
        (schema == Schema::Main ? wroteMain_ : wroteOther_) = true;
        query.Reset();
        return 0;
    }
    const int number = FailWith(query.code());
    query.Reset();
    UndoOnFailure(number);
    return number;
}

}  // namespace bmr::engine
