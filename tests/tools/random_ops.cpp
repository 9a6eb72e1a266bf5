#include <CLI/CLI.hpp>
#include <array>
#include <iostream>
#include <random>
#include <vector>

#include "budget/ledger.h"
#include "budget/summary.h"
#include "confidential/confidential.h"
#include "diary/page.h"
#include "main_shared.h"
#include "notes/memo.h"
#include "sitting.h"
#include "store/categories.h"
#include "store/indices.h"
#include "store/undo.h"

/// usage: random_ops FILE --operations N --seed S --passphrase-fd FD. Adds, renames, edits, moves and deletes
/// memos, confidential records, entries of a budget and pages of the diary by the functions of their
/// sections, takes such steps back and does them again, all in random order, then reads every one and
/// compares it with what was stored. What the whole file looks like afterwards is for `bmr check` to say.
namespace {

using namespace bmr;
using budget::Transaction;
using confidential::Record;
using diary::Page;
using notes::Memo;
using tools::Failure;

constexpr int kOperationsInATransaction = 500;
constexpr std::int32_t kCategories = 6;

struct Options {
    std::filesystem::path file;
    int passphraseFd = -1;
    int operations = 3000;
    unsigned seed = 1;
};

class Player {
  public:
    Player(store::Session& session, unsigned seed) : session_(session), random_(seed) {
        session.undo.recording = true;
    }

    void Play(int operations) {
        for (int done = 0; done < operations;) {
            engine::Transaction transaction(*session_.ProgramDb);
            Check(transaction.error());
            for (int i = 0; i < kOperationsInATransaction && done < operations; ++i, ++done)
                Operate();
            Check(transaction.Commit());
        }
    }

    void Compare() {
        session_.ShowPrivate = true;
        auto listed = notes::ListRecords(session_, store::Category::All);
        if (!listed || listed->size() != memos_.records.size())
            throw Failure("the memos listed are not those stored");
        for (const Memo& memo : memos_.records) {
            const auto read = notes::FetchRecord(session_, memo.key);
            if (!read || !read->readable || read->subject != memo.subject || read->body != memo.body ||
                read->category != memo.category || read->isPrivate != memo.isPrivate)
                throw Failure("memo " + std::to_string(memo.key) + " is not what was stored");
        }
        for (const Record& record : records_.records) {
            const auto read = confidential::FetchRecord(session_, record.key);
            if (!read || !read->readable || read->n != record.n || read->notes != record.notes ||
                read->kind != record.kind || read->isPrivate != record.isPrivate)
                throw Failure("record " + std::to_string(record.key) + " is not what was stored");
        }
        std::size_t count = 0;
        for (std::int32_t kind = 1; kind <= 16; ++kind)
            if (const auto keys = confidential::ListRecords(session_, kind)) count += keys->size();
        if (count != records_.records.size()) throw Failure("the records listed are not those stored");
        CompareEntries();
        ComparePages();
        for (const std::uint8_t section : {store::Section::Memo, store::Section::Confidential})
            if (const auto wrong = store::FindDisorder(session_, section); !wrong.empty())
                throw Failure(std::to_string(wrong.size()) + " rows out of alphabetical order");
    }

    std::string Counts() const {
        return std::to_string(memos_.records.size()) + " memos, " + std::to_string(records_.records.size()) +
               " records, " + std::to_string(entries_.records.size()) + " entries, " +
               std::to_string(pages_.records.size()) + " pages, " + std::to_string(taken_) +
               " steps back or forth";
    }

    void CompareEntries() {
        budget::ClassSums sums{};
        for (const Transaction& entry : entries_.records) {
            const auto read = budget::FetchRecord(session_, kBudget, entry.key);
            if (!read || !read->readable || read->description != entry.description ||
                read->note != entry.note || read->hasNote == entry.note.empty() ||
                read->amount != entry.amount || read->cdbw != entry.cdbw || read->date != entry.date ||
                read->category != entry.category || read->isPrivate != entry.isPrivate)
                throw Failure("entry " + std::to_string(entry.key) + " is not what was stored");
            Money& sum = sums[static_cast<std::size_t>(entry.cdbw)];
            sum = budget::Plus(sum, entry.amount);
        }
        const auto summary = budget::ReadSummary(session_, kBudget, budget::kFirstDay, budget::kLastDay);
        if (!summary || summary->count != entries_.records.size() || summary->totals != sums)
            throw Failure("the summary is not that of the entries");
        const auto ledger =
            budget::ReadLedgerSpan(session_, {.section = kBudget}, budget::kFirstDay, budget::kLastDay);
        if (!ledger || ledger->rows.size() != entries_.records.size())
            throw Failure("the entries listed are not those stored");
    }
    void ComparePages() {
        for (const Page& page : pages_.records) {
            const auto read = diary::ReadSpan(session_, page.day, page.day);
            if (!read || !read->doubled.empty() || read->pages.front().key != page.key ||
                read->pages.front().text != page.text)
                throw Failure("page " + std::to_string(page.key) + " is not what was stored");
        }
        const auto listed = diary::ListRecords(session_);
        if (!listed || listed->size() != pages_.records.size())
            throw Failure("the pages listed are not those stored");
    }

  private:
    int Draw(int below) { return std::uniform_int_distribution<int>(0, below - 1)(random_); }

    /// Crowded on purpose: half of the names share their first letters, some are equal, some empty.
    Words Name() {
        static constexpr std::array<std::string_view, 9> kHeads = {"Ab", "Mo", "mo", "Äp", "9 ",
                                                                   " b", "Łó", "Μο", "🎉"};
        Words name(Draw(2) == 0 ? kHeads[static_cast<std::size_t>(Draw(9))] : std::string_view());
        for (int i = Draw(9); i > 0; --i)
            name += Draw(12) == 0 ? ToUtf8(Bytes(1, ByteChar(static_cast<unsigned>(0xC0 + Draw(64)))))
                                  : Words(1, static_cast<char>('A' + Draw(58)));
        return name;
    }
    Words Text() { return Words(static_cast<std::size_t>(Draw(8) == 0 ? Draw(3000) : Draw(60)), 'x'); }

    template <class T>
    T& Any(std::vector<T>& all) {
        return all[static_cast<std::size_t>(Draw(static_cast<int>(all.size())))];
    }
    /// What a step made of one record: it was so, or not there, and is so, or gone.
    template <class T>
    struct Step {
        std::uint64_t number;
        std::int32_t key;
        std::optional<T> before;
        std::optional<T> after;
    };
    template <class T>
    struct Steps {
        std::uint8_t section;
        std::vector<T> records;
        std::vector<Step<T>> done;
        std::vector<Step<T>> undone;
    };

    template <class T>
    static void Put(std::vector<T>& all, std::int32_t key, const std::optional<T>& one) {
        std::erase_if(all, [key](const T& each) { return each.key == key; });
        if (one) all.push_back(*one);
    }
    template <class T>
    void Did(Steps<T>& steps, std::int32_t key, std::optional<T> before, std::optional<T> after) {
        Put(steps.records, key, after);
        const auto* step = store::NextStep(session_, steps.section, store::UndoWay::Undo);
        steps.done.push_back({step->number, key, std::move(before), std::move(after)});
        steps.undone.clear();
    }
    template <class T>
    void Remove(Steps<T>& steps) {
        const T one = Any(steps.records);
        Check(store::DeleteRow(session_, one.key));
        Did(steps, one.key, std::optional(one), {});
    }
    /// Some steps back, and some of them forward again.
    template <class T>
    void GoBackAndForth(Steps<T>& steps) {
        for (int i = Draw(6); i > 0; --i)
            Take(steps, store::UndoWay::Undo, steps.done, steps.undone);
        for (int i = Draw(4); i > 0; --i)
            Take(steps, store::UndoWay::Redo, steps.undone, steps.done);
    }
    template <class T>
    void Take(Steps<T>& steps, store::UndoWay way, std::vector<Step<T>>& from, std::vector<Step<T>>& to) {
        const auto* step = store::NextStep(session_, steps.section, way);
        if (step == nullptr) return;
        if (from.empty() || from.back().number != step->number) throw Failure("another step than the last");
        const auto outcome = store::TakeStep(session_, steps.section, way);
        Check(outcome.error);
        if (outcome.written != 1 || outcome.left != 0) throw Failure("a step was not taken back whole");
        Step<T> taken = std::move(from.back());
        from.pop_back();
        const auto other = way == store::UndoWay::Undo ? store::UndoWay::Redo : store::UndoWay::Undo;
        taken.number = store::NextStep(session_, steps.section, other)->number;
        Put(steps.records, taken.key, way == store::UndoWay::Undo ? taken.before : taken.after);
        to.push_back(std::move(taken));
        ++taken_;
    }
    static void Check(int error) {
        if (error != 0) throw Failure("an operation failed with " + std::to_string(error));
    }

    void Operate() {
        const int what = Draw(20);
        if (what == 0) return GoBackAndForth(memos_);
        if (what == 1) return GoBackAndForth(records_);
        if (what == 2) return GoBackAndForth(entries_);
        if (what == 3) return GoBackAndForth(pages_);
        if (what < 8) return OnEntries();
        if (what < 11) return OnPages();
        what % 2 == 0 ? OnMemos() : OnRecords();
    }

    void OnMemos() {
        const int what = memos_.records.empty() ? 0 : Draw(10);
        if (what == 9) return Remove(memos_);
        std::optional<Memo> old;
        if (what >= 5) old = Any(memos_.records);
        Memo memo = old ? *old : notes::ClearRecord(session_, 0);
        if (what < 7) memo.subject = Name();
        if (!old || what == 7) memo.body = Text();
        if (!old || what == 8) memo.category = Draw(kCategories);
        memo.isPrivate = Draw(10) == 0;
        Check(notes::WriteRecord(session_, memo));
        Did(memos_, memo.key, old, std::optional(memo));
    }

    void OnRecords() {
        const int what = records_.records.empty() ? 0 : Draw(10);
        if (what == 9) return Remove(records_);
        std::optional<Record> old;
        if (what >= 5) old = Any(records_.records);
        Record record = old ? *old : Record();
        if (!old) record.kind = 1 + Draw(16);
        if (what < 7) record.n[0] = Name();
        if (!old || what > 6) record.n[static_cast<std::size_t>(1 + Draw(4))] = Name();
        if (!old || what == 7) record.notes = Text();
        record.isPrivate = Draw(10) == 0;
        Check(confidential::WriteRecord(session_, record));
        Did(records_, record.key, old, std::optional(record));
    }

    void OnEntries() {
        const int what = entries_.records.empty() ? 0 : Draw(10);
        if (what == 9) return Remove(entries_);
        std::optional<Transaction> old;
        if (what >= 5) old = Any(entries_.records);
        Transaction entry = old ? *old : budget::ClearRecord({30000 + Draw(20000)}, 0);
        if (what < 7) entry.description = Name();
        if (!old || what == 7) entry.amount = {Draw(1 << 30) - (1 << 20)};
        if (!old || what == 8) entry.note = Draw(2) == 0 ? Words() : Text();
        if (what == 8) entry.category = Draw(kCategories);
        entry.isPrivate = Draw(10) == 0;
        entry.cdbw = Draw(2) + (entry.isPrivate ? budget::kPrivate : 0);
        Check(budget::WriteRecord(session_, kBudget, entry).error);
        Did(entries_, entry.key, old, std::optional(entry));
    }

    /// Days lie close together, so that old and new ones meet.
    void OnPages() {
        const int what = pages_.records.empty() ? 0 : Draw(10);
        if (what == 9) return Remove(pages_);
        Page page;
        page.day = {45000 + Draw(400)};
        const auto there = std::ranges::find(pages_.records, page.day, &Page::day);
        std::optional<Page> old;
        if (there != pages_.records.end()) page = *(old = *there);
        page.text = Draw(3) == 0 ? Name() + "!" : Text() + "!";
        Check(diary::StorePage(session_, page).error);
        Did(pages_, page.key, old, std::optional(page));
    }

    static constexpr std::uint8_t kBudget = store::Section::Budget2;
    store::Session& session_;
    std::mt19937 random_;
    Steps<Memo> memos_{store::Section::Memo, {}, {}, {}};
    Steps<Record> records_{store::Section::Confidential, {}, {}, {}};
    Steps<Transaction> entries_{kBudget, {}, {}, {}};
    Steps<Page> pages_{store::Section::Diary, {}, {}, {}};
    int taken_ = 0;  ///< steps that were taken back or done again
};

}  // namespace

int main(int argc, char** argv) {
    Options options;
    CLI::App app("Works on memos, confidential records, a budget and the diary of a database at random.",
                 "random_ops");
    app.add_option("FILE", options.file, "The database")->required();
    app.add_option("--passphrase-fd", options.passphraseFd, "Where the passphrase comes from");
    app.add_option("--operations", options.operations, "How many")->capture_default_str();
    app.add_option("--seed", options.seed, "The same seed does the same")->capture_default_str();
    return tools::RunMain(app, argc, argv, [&] {
        tools::Sitting sitting(options.passphraseFd);
        sitting.Open(options.file);
        Player player(sitting.session(), options.seed);
        player.Play(options.operations);
        player.Compare();
        std::cout << player.Counts() << '\n';
        sitting.Close();
    });
}
