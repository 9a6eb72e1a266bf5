#include "store/undo.h"

#include "crypto/cry.h"
#include "store/indices.h"
#include "store/record_get.h"
#include "store/section_store.h"
#include "store/sections.h"
#include "store/undorow.h"

namespace bmr::store {
namespace {

/// The numbers of the categories in an image: that of a record, or those of a list.
void CollectNumbers(Session& session, const RowImage& image, std::uint8_t section,
                    std::set<std::int32_t>& numbers) {
    if (SectionOf(image) == section) {
        if (const auto category = CategoryOf(image)) numbers.insert(*category);
    } else {
        const Secret list(cry::DecipherField(session.cipher, PayloadOf(image)));
        std::vector<Value> fields;
        DecodeRecord(fields, list.view(), false, session.cipher);
        for (std::size_t i = 1; i < fields.size(); i += 2)
            numbers.insert(NumberOf(fields[i]));
    }
}

/// Writes the image over the row that `table` stands on, which is `now`, or adds the row under its key. With
/// `anew` its place is one among the rows of today, else the one that it had.
int PutImage(Session& session, engine::Recordset& table, std::uint8_t section, const RowImage& image,
             const RowImage* now, bool anew) {
    if (now)
        table.Edit();
    else
        table.AddNew(image.fPK);
    SetImage(table, image);
    const RowMark mark = MarkOf(image, section);
    if (!mark.stretch) return table.Update();
    if (const DayOrder* days = FactsOf(section)->days) {
        if (anew)
            if (const int error = days->place(session, table)) return error;
        return table.Update();
    }
    if (now && MarkOf(*now, section).point == mark.point) {
        // It never left its place; a neighbour may have moved that since.
        table.SetField("fR1", MarkOf(*now, section).fR1);
    } else if (anew) {
        const Secret name(cry::DecipherField(session.cipher, NameIn(image)));
        if (const int error = BucketPosition(session, section, table, name.view())) return error;
    }
    const std::int64_t changesBefore = session.ProgramDb->ChangeCount();
    if (const int error = table.Update()) return error;
    session.bucketOrder.Name(image.fPK);
    session.bucketOrder.Passed(changesBefore, session.ProgramDb->ChangeCount());
    return 0;
}

/// One step on its way back: what it undoes, and the step that would undo that.
class Reversal {
  public:
    Reversal(Session& session, const UndoRecord& step, std::uint8_t section)
        : session_(session), log_(session.undo), step_(step), section_(section) {
        inverse.section = section;
        inverse.words = step.words;
        inverse.privateShown = step.privateShown;
    }

    UndoRecord inverse;
    UndoOutcome outcome;

    int Run() {
        engine::Transaction all(*session_.ProgramDb);
        if (all.error() != 0) return all.error();
        auto table = session_.ProgramDb->OpenRecordset("tt");
        if (!table) return table.error().number;
        log_.spread.clear();
        for (auto entry = step_.entries.rbegin(); entry != step_.entries.rend(); ++entry)
            if (const int error = TakeBack(**table, *entry)) return error;
        session_.bucketOrder.Clear();
        if (const int error = all.Commit()) return error;
        inverse.rows = outcome.written;
        if (step_.added == step_.rows) inverse.added = inverse.rows;
        if (step_.deleted == step_.rows) inverse.deleted = inverse.rows;
        SettlePlaces();
        return 0;
    }

  private:
    bool Anew(const PlaceKey& stretch) const {
        const auto change = step_.places.find(stretch);
        return change == step_.places.end() || log_.StateOf(stretch) != change->second.after;
    }

    /// A row that made room goes back, unless its stretch has another order since.
    int MoveBack(engine::Recordset& table, std::int32_t fPK, const RowPlace& place, const RowImage* now) {
        const auto present = now ? PlaceOf(*now, section_) : std::nullopt;
        if (!present || present->stretch != place.stretch || Anew(place.stretch)) return 0;
        table.Edit();
        table.SetField("fR1", place.fR1);
        table.SetField("AE", place.AE ? Value(*place.AE) : Value(Null{}));
        UndoEntry back{.fPK = fPK, .moved = present};
        inverse.size += SizeOf(back);
        inverse.entries.push_back(std::move(back));
        return table.Update();
    }

    int TakeBack(engine::Recordset& table, const UndoEntry& entry) {
        auto found = FindImage(table, entry.fPK);
        if (!found) return found.error().number;
        std::unique_ptr<RowImage> now = std::move(*found);
        if (entry.moved) return MoveBack(table, entry.fPK, *entry.moved, now.get());
        std::optional<std::uint64_t> stamp;
        if (now) stamp = MarkOf(*now, section_).stamp;
        if (stamp != entry.after) {
            ++outcome.left;
            return 0;
        }
        UndoEntry back;
        back.fPK = entry.fPK;
        if (entry.before) {
            const RowMark mark = MarkOf(*entry.before, section_);
            const bool anew = mark.stretch && Anew(*mark.stretch);
            if (const int error = PutImage(session_, table, section_, *entry.before, now.get(), anew))
                return error;
            back.after = mark.stamp;
            if (SectionOf(*entry.before) == section_) outcome.keys.push_back(entry.fPK);
        } else if (const int error =
                       session_.ProgramDb->Execute("DELETE * FROM tt WHERE fPK=?", {entry.fPK})) {
            return error;
        }
        back.before = std::move(now);
        inverse.size += SizeOf(back);
        inverse.entries.push_back(std::move(back));
        ++outcome.written;
        return 0;
    }

    /// A stretch in which everything is as it was before the step is in the state of then.
    void SettlePlaces() {
        for (const auto& [stretch, change] : step_.places) {
            const bool whole = outcome.left == 0 && !Anew(stretch) && !log_.spread.contains(stretch);
            PlaceChange& back = inverse.places[stretch];
            back.before = whole ? change.after : ++log_.lastState;
            back.after = whole ? (log_.places[stretch] = change.before) : log_.NewState(stretch);
            if (log_.spread.contains(stretch)) back.after = UndoLog::kNever;
        }
    }

    Session& session_;
    UndoLog& log_;
    const UndoRecord& step_;
    std::uint8_t section_;
};

std::deque<UndoRecord>* StackOf(UndoLog& log, std::uint8_t section, UndoWay way) {
    const auto found = log.sections.find(section);
    if (found == log.sections.end()) return nullptr;
    auto* stack = way == UndoWay::Undo ? &found->second.done : &found->second.undone;
    return stack->empty() ? nullptr : stack;
}

}  // namespace

const UndoRecord* NextStep(const Session& session, std::uint8_t section, UndoWay way) {
    const auto found = session.undo.sections.find(section);
    if (found == session.undo.sections.end()) return nullptr;
    const auto& stack = way == UndoWay::Undo ? found->second.done : found->second.undone;
    return stack.empty() ? nullptr : &stack.back();
}

bool MayTake(const Session& session, std::uint8_t section, UndoWay way) {
    const UndoRecord* step = NextStep(session, section, way);
    return step && !step->tooLarge && session.DatabaseOpen && (session.ShowPrivate || !step->privateShown);
}

UndoOutcome TakeStep(Session& session, std::uint8_t section, UndoWay way) {
    auto* stack = StackOf(session.undo, section, way);
    Reversal reversal(session, stack->back(), section);
    if (const int error = reversal.Run()) {
        session.bucketOrder.Clear();
        return {.error = error};
    }
    session.CalendarDirty = true;
    session.undo.size -= stack->back().size;
    stack->pop_back();
    if (reversal.outcome.written > 0) {
        UndoStacks& stacks = session.undo.sections[section];
        auto& other = way == UndoWay::Undo ? stacks.undone : stacks.done;
        if (reversal.inverse.size <= UndoLog::kMostBytes)
            session.undo.Push(other, std::move(reversal.inverse));
        else
            session.undo.Clear(other);  // no older step over its head
    }
    return std::move(reversal.outcome);
}

std::set<std::int32_t> NumbersInSteps(Session& session, std::uint8_t section) {
    std::set<std::int32_t> numbers;
    const auto found = session.undo.sections.find(section);
    if (found == session.undo.sections.end()) return numbers;
    for (const auto* stack : {&found->second.done, &found->second.undone})
        for (const UndoRecord& step : *stack)
            for (const UndoEntry& entry : step.entries)
                if (entry.before) CollectNumbers(session, *entry.before, section, numbers);
    return numbers;
}

bool TooLargeToUndo(Session& session, std::uint8_t section, const std::string& clauses) {
    auto rows = session.ProgramDb->OpenRecordset("SELECT * FROM tt WHERE fSec=" + std::to_string(section) +
                                                 clauses + kOwnerAccess);
    std::size_t size = 0;
    for (; rows && !(*rows)->Eof() && size <= UndoLog::kMostBytes; (*rows)->MoveNext())
        size += SizeOf({.fPK = 0, .before = ImageOf(**rows), .after = {}});
    return size > UndoLog::kMostBytes;
}

bool TooLargeToUndo(Session& session, std::span<const std::int32_t> keys) {
    auto table = session.ProgramDb->OpenRecordset("tt");
    std::size_t size = 0;
    for (std::size_t i = 0; table && i < keys.size() && size <= UndoLog::kMostBytes; ++i)
        if (auto image = FindImage(**table, keys[i]); image && *image)
            size += SizeOf({.fPK = keys[i], .before = std::move(*image), .after = {}});
    return size > UndoLog::kMostBytes;
}

}  // namespace bmr::store
