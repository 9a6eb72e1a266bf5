#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <iostream>
#include <random>
#include <tuple>
#include <vector>

#include "address/addressbook.h"
#include "address/contact.h"
#include "address/rowsummary.h"
#include "base/errors.h"
#include "budget/ledger.h"
#include "budget/summary.h"
#include "calendar/appointment.h"
#include "calendar/dayorder.h"
#include "calendar/months.h"
#include "calendar/redowords.h"
#include "calendar/rowcheck.h"
#include "calendar/serieschange.h"
#include "confidential/confidential.h"
#include "diary/page.h"
#include "main_shared.h"
#include "notes/memo.h"
#include "sitting.h"
#include "store/categories.h"
#include "store/indices.h"
#include "store/undo.h"

/// usage: random_ops FILE --operations N --seed S --passphrase-fd FD. Adds, renames, edits, moves and deletes
/// records by the functions of their sections, single days of series and later ones too, takes such steps
/// back and does them again, all in random order, then reads every one and compares it with what was stored.
/// What the whole file looks like afterwards is for `bmr check` to say.
namespace {

using namespace bmr;
using budget::Transaction;
using calendar::Appointment;
using calendar::Minutes;
using calendar::Reach;
using confidential::Record;
using diary::Page;
using notes::Memo;
using tools::Failure;

constexpr int kOperationsInATransaction = 500;
constexpr std::int32_t kCategories = 6;
constexpr Day kFirstDay{46388};  // 1 January 2027
constexpr int kDays = 120;       ///< on which appointments begin
constexpr int kMonths = 30;      ///< in which series are compared day by day
constexpr std::size_t kMostAppointments = 1500;

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
        CompareAddresses();
        for (const std::uint8_t section :
             {store::Section::Memo, store::Section::Confidential, store::Section::Address})
            if (const auto wrong = store::FindDisorder(session_, section); !wrong.empty())
                throw Failure(std::to_string(wrong.size()) + " rows out of alphabetical order");
        CompareAppointments();
        CompareEntries();
        ComparePages();
    }

    std::string Counts() const {
        return std::to_string(memos_.records.size()) + " memos, " + std::to_string(records_.records.size()) +
               " records, " + std::to_string(addresses_.records.size()) + " addresses, " +
               std::to_string(appointments_.records.size()) + " appointments, " +
               std::to_string(entries_.records.size()) + " entries, " +
               std::to_string(pages_.records.size()) + " pages, " + std::to_string(taken_) +
               " steps back or forth, " + std::to_string(reached_) + " changes of series";
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
    void CompareAddresses() {
        std::size_t named = 0;
        for (const address::Record& record : addresses_.records) {
            const auto read = address::FetchRecord(session_, record.key);
            if (!read || !read->readable || read->texts != record.texts ||
                TrimBlanks(read->fileAs) != TrimBlanks(record.fileAs) || read->category != record.category ||
                read->isPrivate != record.isPrivate)
                throw Failure("address " + std::to_string(record.key) + " is not what was stored");
            const auto shown = address::ReadSummaries(session_, std::array{record.key});
            if (!shown || shown->size() != 1 || shown->front().fileAs != TrimBlanks(record.fileAs) ||
                shown->front().contact != TrimBlanks(address::AddressContactText(record)) ||
                shown->front().isPrivate != record.isPrivate)
                throw Failure("address " + std::to_string(record.key) + " is not shown as it was stored");
            if (!shown->front().Nameless()) ++named;
        }
        const auto listed = address::ListRecords(session_, store::Category::All);
        if (!listed || listed->size() != named) throw Failure("the addresses listed are not those stored");
    }

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
    struct Change {
        std::int32_t key;
        std::optional<T> before;
        std::optional<T> after;
    };
    template <class T>
    struct Step {
        std::uint64_t number;
        std::vector<Change<T>> changes;
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
    void Did(Steps<T>& steps, std::vector<Change<T>> changes) {
        for (const Change<T>& change : changes)
            Put(steps.records, change.key, change.after);
        const auto* step = store::NextStep(session_, steps.section, store::UndoWay::Undo);
        if (step == nullptr || step->rows != changes.size()) throw Failure("a step has other rows");
        steps.done.push_back({step->number, std::move(changes)});
        steps.undone.clear();
    }
    template <class T>
    void Did(Steps<T>& steps, std::int32_t key, std::optional<T> before, std::optional<T> after) {
        std::vector<Change<T>> changes;
        changes.push_back({key, std::move(before), std::move(after)});
        Did(steps, std::move(changes));
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
        if (outcome.written != from.back().changes.size() || outcome.left != 0)
            throw Failure("a step was not taken back whole");
        Step<T> taken = std::move(from.back());
        from.pop_back();
        const auto other = way == store::UndoWay::Undo ? store::UndoWay::Redo : store::UndoWay::Undo;
        taken.number = store::NextStep(session_, steps.section, other)->number;
        for (const Change<T>& change : taken.changes)
            Put(steps.records, change.key, way == store::UndoWay::Undo ? change.before : change.after);
        to.push_back(std::move(taken));
        ++taken_;
    }
    static void Check(int error) {
        if (error != 0) throw Failure("an operation failed with " + std::to_string(error));
    }

    void Operate() {
        const int what = Draw(30);
        if (what == 0) return GoBackAndForth(memos_);
        if (what == 1) return GoBackAndForth(records_);
        if (what == 2) return GoBackAndForth(appointments_);
        if (what == 3) return GoBackAndForth(addresses_);
        if (what == 4) return GoBackAndForth(entries_);
        if (what == 5) return GoBackAndForth(pages_);
        switch (what % 6) {
            case 0:
                return OnMemos();
            case 1:
                return OnRecords();
            case 2:
                return OnAppointments();
            case 3:
                return OnAddresses();
            case 4:
                return OnEntries();
            default:
                return OnPages();
        }
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

    static auto Told(const Appointment& each) {
        return std::tie(each.start, each.end, each.allDay, each.alarm, each.alarmTime, each.redoString,
                        each.subject, each.location, each.notes, each.isPrivate);
    }

    void CompareAppointments() {
        const auto listed = calendar::ListRecords(session_);
        if (!listed || listed->size() != appointments_.records.size())
            throw Failure("the appointments listed are not those stored");
        for (const Appointment& one : appointments_.records) {
            const auto read = calendar::FetchRecord(session_, one.key);
            if (!read || !read->readable || Told(*read) != Told(one))
                throw Failure("appointment " + std::to_string(one.key) + " is not what was stored");
        }
        if (!calendar::FindDisorder(session_).empty())
            throw Failure("appointments out of the order of a day");
        const auto faults = calendar::CheckRows(session_);
        if (!faults || !faults->empty()) throw Failure("columns that do not tell what the payload says");
    }

    calendar::TimeSpan AnySpan(Day day) {
        if (Draw(8) == 0) return calendar::AllDaySpan(day, 30);
        const Minutes start{calendar::MidnightOf(day).count + 15 * Draw(90)};
        return calendar::DrawnSpan(start, {start.count + 5 * Draw(30)});
    }
    void SetSpan(Appointment& one, const calendar::TimeSpan& span) {
        one.start = span.start;
        one.end = span.end;
        one.allDay = span.allDay ? 1 : 0;
        one.alarm = Draw(3) == 0 ? 1 : 0;
        one.alarmTime = {one.start.count - (one.alarm != 0 ? 10 : 0)};
    }

    Appointment NewAppointment() {
        static constexpr std::array<const char*, 10> kRules = {"day",         "3 days",
                                                               "workday",     "2 weeks on mon,thu",
                                                               "week on wed", "month on 15",
                                                               "month on 28", "month on second tue",
                                                               "year",        "year on last fri of may"};
        const Day day{kFirstDay.serial + Draw(kDays)};
        Appointment one;
        SetSpan(one, AnySpan(day));
        if (Draw(3) != 0) return one;
        auto state = *calendar::ParseRule(kRules[static_cast<std::size_t>(Draw(10))], day, locale_);
        state.endMode = Draw(3);
        state.count = 1 + Draw(20);
        state.end = {state.start.serial + Draw(400)};
        if (state.endMode != calendar::RedoEnd::Never) calendar::RecalcRedoEnd(state, locale_);
        one.redoString = calendar::StringToStore(state, {}, locale_, session_.ports.random);
        calendar::TimeSpan span = calendar::DrawnSpan(one.start, one.end);
        calendar::MoveToDay(span, state.start);
        const std::int32_t lead = one.start.count - one.alarmTime.count;
        one.start = span.start;
        one.end = span.end;
        one.alarmTime = {one.start.count - lead};
        return one;
    }

    void OnAppointments() {
        auto& all = appointments_.records;
        const int what = all.empty() ? 0 : Draw(10);
        if (what == 9 || all.size() >= kMostAppointments) return Remove(appointments_);
        if (what >= 5) {
            // Only what stands there now can be reached: the model has it by its key.
            const Appointment one = Any(all);
            return one.Recurring() ? OnSeries(one) : Drag(one);
        }
        std::optional<Appointment> old;
        if (what >= 3) old = Any(all);
        Appointment one = old ? *old : NewAppointment();
        one.subject = Name();
        one.notes = Draw(3) == 0 ? Text() : Words();
        one.isPrivate = Draw(10) == 0;
        Check(calendar::WriteRecord(session_, one).error);
        Did(appointments_, one.key, old, std::optional(one));
    }

    void Drag(const Appointment& one) {
        const auto span = AnySpan({kFirstDay.serial + Draw(kDays)});
        const bool copies = Draw(3) == 0;
        const auto outcome =
            copies ? calendar::CopyOccurrence(session_, one.key, one.start, span)
                   : calendar::MoveOccurrence(session_, one.key, one.start, span, Reach::All, locale_);
        Check(outcome.error);
        Appointment dragged = one;
        dragged.key = outcome.fPK;
        const std::int32_t lead = one.start.count - one.alarmTime.count;
        const auto stored = calendar::StoredSpan(span, false, {});
        dragged.start = stored.start;
        dragged.end = stored.end;
        dragged.allDay = stored.allDay ? 1 : 0;
        dragged.alarmTime = {stored.start.count - lead};
        if (!copies && Told(dragged) == Told(one)) return;  // it stood there already
        Did(appointments_, dragged.key, copies ? std::nullopt : std::optional(one), std::optional(dragged));
    }

    /// One time at which an appointment is, and under which name.
    using Shown = std::pair<Minutes, std::string>;
    std::vector<Shown> ShownOf(const Appointment& one) const {
        std::vector<Shown> shown;
        std::vector<Minutes> starts;
        if (!one.Recurring()) starts.push_back(one.start);
        for (int month = 0; month < kMonths; ++month) {
            const Day first = calendar::PlusMonths(kFirstDay, month);
            calendar::ExpandRecurrence(calendar::MidnightOf(first),
                                       calendar::MidnightOf(calendar::MonthLast(first)),
                                       calendar::MinuteOfDay(one.start), one.redoString, locale_, starts);
        }
        for (const Minutes start : starts)
            shown.emplace_back(start, one.subject);
        return shown;
    }
    std::vector<std::int32_t> Keys() {
        auto rows = session_.ProgramDb->Select("SELECT fPK FROM tt WHERE fSec=12 ORDER BY fPK");
        if (!rows) throw Failure("the appointments cannot be listed");
        std::vector<std::int32_t> keys;
        while (rows->Next())
            keys.push_back(rows->Int(0));
        return keys;
    }

    /// Changes one day, the later ones or all, and compares what is shown now with what it should be.
    void OnSeries(const Appointment& series) {
        std::vector<Shown> wanted = ShownOf(series);
        if (wanted.empty()) return;
        const Minutes at = Any(wanted).first;
        const auto reach = static_cast<Reach>(Draw(3));
        const int verb = Draw(3);
        const std::vector<std::int32_t> before = Keys();
        // On its own day, as what comes of other days is another rule.
        const Day day = calendar::DayOf(at);
        calendar::TimeSpan to = AnySpan(reach == Reach::This ? Day{kFirstDay.serial + Draw(kDays)} : day);
        const Words subject = Name();
        store::StoreOutcome outcome;
        if (verb == 0) {
            outcome = calendar::DeleteOccurrence(session_, series.key, at, reach, locale_);
        } else if (verb == 1) {
            outcome = calendar::MoveOccurrence(session_, series.key, at, to, reach, locale_);
        } else if (auto edited =
                       calendar::ForEditing(session_, series.key, at, reach, locale_, &outcome.error)) {
            edited->subject = subject;
            outcome = calendar::StoreOccurrence(session_, *edited, series.key, at, reach, locale_);
        }
        if (outcome.error == kNotOffered && reach != Reach::All) return;
        Check(outcome.error);

        std::vector<Shown> changed;
        std::erase_if(wanted, [&](const Shown& each) {
            const bool reached =
                reach == Reach::All || (reach == Reach::This ? each.first == at : each.first >= at);
            if (reached) changed.push_back(each);
            return reached;
        });
        to = calendar::StoredSpan(to, false, {});
        for (Shown& each : changed) {
            if (verb == 0) break;
            if (verb == 1 && reach == Reach::This) each.first = to.start;
            if (verb == 1 && reach != Reach::This)
                each.first = {calendar::MidnightOf(calendar::DayOf(each.first)).count +
                              calendar::MinuteOfDay(to.start)};
            if (verb == 2) each.second = subject;
            wanted.push_back(each);
        }
        TakeUp(series, before, std::move(wanted));
    }

    /// What the series has become, and whether it shows what is wanted.
    void TakeUp(const Appointment& series, const std::vector<std::int32_t>& before,
                std::vector<Shown> wanted) {
        std::vector<std::int32_t> keys{series.key};
        std::ranges::set_difference(Keys(), before, std::back_inserter(keys));
        std::vector<Change<Appointment>> changes;
        std::vector<Shown> shown;
        for (const std::int32_t key : keys) {
            auto now = calendar::FetchRecord(session_, key);
            if (now)
                for (const Shown& each : ShownOf(*now))
                    shown.push_back(each);
            const auto old = key == series.key ? std::optional(series) : std::nullopt;
            if (!now || !old || Told(*now) != Told(*old)) changes.push_back({key, old, std::move(now)});
        }
        std::ranges::sort(shown);
        std::ranges::sort(wanted);
        if (shown != wanted) throw Failure("a series shows other days than it should");
        if (changes.empty()) return;  // it was so already
        Did(appointments_, std::move(changes));
        ++reached_;
    }

    /// Of a day that cannot be reached alone.
    static constexpr int kNotOffered = MessageNumber::UpdateImpossible;

    void OnAddresses() {
        const int what = addresses_.records.empty() ? 0 : Draw(10);
        if (what == 9) return Remove(addresses_);
        std::optional<address::Record> old;
        if (what >= 5) old = Any(addresses_.records);
        address::Record record = old ? *old : address::ClearRecord(Draw(kCategories));
        if (what < 7) record.fileAs = Name();
        if (!old || what == 7) record.Com(static_cast<std::size_t>(Draw(9))) = Name();
        if (what == 7) record[address::FieldNumber::ComDisplay] = std::to_string(Draw(9));
        if (!old || what == 8) record[address::FieldNumber::Notes] = Text();
        record.isPrivate = Draw(10) == 0;
        Check(address::WriteRecord(session_, record));
        Did(addresses_, record.key, old, std::optional(record));
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
    LocaleFacts locale_;
    std::mt19937 random_;
    Steps<Memo> memos_{store::Section::Memo, {}, {}, {}};
    Steps<Record> records_{store::Section::Confidential, {}, {}, {}};
    Steps<Appointment> appointments_{store::Section::Calendar, {}, {}, {}};
    Steps<address::Record> addresses_{store::Section::Address, {}, {}, {}};
    Steps<Transaction> entries_{kBudget, {}, {}, {}};
    Steps<Page> pages_{store::Section::Diary, {}, {}, {}};
    int reached_ = 0;  ///< changes of series that were compared day by day
    int taken_ = 0;    ///< steps that were taken back or done again
};

}  // namespace

int main(int argc, char** argv) {
    Options options;
    CLI::App app("Works on the records of a database at random.", "random_ops");
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
