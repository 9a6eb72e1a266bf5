#include "interchange/palmimport.h"

#include <algorithm>
#include <functional>
#include <set>
#include <unordered_set>

#include "base/bytes.h"
#include "base/errors.h"
#include "engine/enginenumber.h"
#include "store/privatefilter.h"
#include "store/undostep.h"

namespace bmr::interchange {

namespace {

using store::Section;
using store::Session;

/// Records that are stored between two looks at the progress: few enough to stop in time, enough to work out
/// the places of many at once.
constexpr std::size_t kPart = 5000;

/// What makes two records look the same, as a number.
using Likeness = std::size_t;

Likeness LikenessOf(std::initializer_list<std::string_view> parts) {
    std::size_t size = 0;
    for (const std::string_view part : parts)
        size += part.size() + 1;
    WipedText all;
    all.reserve(size);
    for (const std::string_view part : parts) {
        all.append(TrimBlanks(part));
        all.push_back('\0');
    }
    return std::hash<std::string_view>()(all);
}

Likeness LikenessOf(const notes::Memo& memo) {
    return LikenessOf({memo.subject, memo.body});
}

Likeness LikenessOf(const tasks::Task& task) {
    const std::string due = task.hasDueDate ? std::to_string(task.dueDate.serial) : "";
    return LikenessOf({task.task, task.note, due});
}

Likeness LikenessOf(const calendar::Appointment& appointment) {
    // The last day of a series without an end is another each time.
    const auto rule = calendar::ReadRedoRule(appointment.redoString);
    const bool endless = rule && rule->endMode == calendar::RedoEnd::Never;
    const std::string_view series = appointment.redoString;
    return LikenessOf({std::to_string(appointment.start.count), std::to_string(appointment.end.count),
                       appointment.subject, series.substr(0, endless ? 3 : 7)});
}

Likeness LikenessOf(const PalmContact&) {
    return 0;  // the address book compares its own
}

/// The records of a section as far as their payload tells them; `due` is the column of a task's date.
template <class Record, std::size_t Count>
Result<std::unordered_set<Likeness>> ExistingOf(Session& session, std::uint8_t section,
                                                const std::array<store::Field<Record>, Count>& fields) {
    auto cursor = session.ProgramDb->Select("SELECT fEtx, fF1, fR3 FROM tt WHERE fSec=?", {section});
    if (!cursor) return cursor.error();
    std::unordered_set<Likeness> found;
    store::PrivateBatch batch;
    std::vector<Day> due;
    const auto take = [&] {
        batch.Decipher(session, [&](std::size_t index, std::string_view plain) {
            Record record;
            if (!store::DecodeFields(record, plain, fields)) return;
            if constexpr (std::is_same_v<Record, tasks::Task>) {
                record.hasDueDate = due[index].serial != 0;
                record.dueDate = due[index];
            }
            found.insert(LikenessOf(record));
        });
        due.clear();
    };
    while (cursor->Next()) {
        batch.Add(cursor->Bytes(0));
        due.push_back(cursor->Int(1) != 0 ? UnpackDate(cursor->Int(2), tasks::kDueKind) : Day{});
        if (batch.Full()) take();
    }
    if (cursor->error() != 0) return Error{cursor->error(), session.ProgramDb->LastError()};
    take();
    return found;
}

WipedText TitleOf(const notes::Memo& memo) {
    return memo.subject;
}
WipedText TitleOf(const tasks::Task& task) {
    return task.task;
}
WipedText TitleOf(const calendar::Appointment& appointment) {
    return appointment.subject;
}
WipedText TitleOf(const PalmContact& contact) {
    WipedText title;
    for (const auto& [number, text] : contact.texts)
        if (title.empty()) title = text;
    return title;
}

/// Fills a plan from the records of a file.
class Planner {
  public:
    Planner(Session& session, PalmPlan& plan, const PalmHeader& header, PalmBytes& bytes,
            const LocaleFacts& locale)
        : session_(session), plan_(plan), header_(header), bytes_(bytes), locale_(locale) {}

    int MergeCategories() {
        plan_.categoriesUnread = store::CategoriesUnread(session_, plan_.section);
        // Appointments have no categories.
        if (plan_.categoriesUnread || plan_.section == Section::Calendar) return 0;
        const auto own = store::FillCategories(session_, plan_.section, false, false, false);
        const auto carried = store::CarriedNumbers(session_, plan_.section, own);
        if (!carried) return carried.error().number;
        plan_.categories = interchange::MergeCategories(own, header_.categories, *carried);
        return 0;
    }

    int MapRecords() {
        const Day today = session_.ports.clock.Today();
        switch (plan_.section) {
            case Section::Memo:
                return Map<PalmMemoRecord, notes::Memo>(
                    [today](const auto& record) { return std::optional(MapPalmMemo(record, today)); },
                    ExistingOf(session_, plan_.section, notes::kMemoFields));
            case Section::Todo:
                return Map<PalmTodoRecord, tasks::Task>(
                    [today](const auto& record) { return std::optional(MapPalmTodo(record, today)); },
                    ExistingOf(session_, plan_.section, tasks::kTaskFields));
            case Section::Calendar:
                return Map<PalmDatebookRecord, calendar::Appointment>(
                    [this](const auto& record) {
                        return MapPalmDatebook(record, locale_, session_.ports.random);
                    },
                    ExistingOf(session_, plan_.section, calendar::kAppointmentFields));
            default:
                return Map<PalmAddressRecord, PalmContact>(
                    [](const auto& record) { return std::optional(MapPalmAddress(record)); },
                    std::unordered_set<Likeness>());
        }
    }

  private:
    template <class Palm, class Record, class MapOne>
    int Map(const MapOne& mapOne, const Result<std::unordered_set<Likeness>>& existing) {
        if (!existing) return existing.error().number;
        auto& records = plan_.records.emplace<std::vector<Record>>();
        PalmRecords file(header_, bytes_);
        Palm palm;
        for (std::size_t place = 1; file.Next(palm); ++place) {
            auto mapped = mapOne(palm);
            if (!mapped) {
                Remark(place, TitleOfUnmapped(palm), "lies behind " + IsoDate(kLastOfDates), true);
                continue;
            }
            for (std::string& what : mapped->remarks)
                Remark(place, TitleOf(mapped->record), std::move(what), false);
            SetCategory(mapped->record, palm.category, place);
            plan_.known.push_back(existing->contains(LikenessOf(mapped->record)));
            records.push_back(std::move(mapped->record));
        }
        return 0;
    }

    static WipedText TitleOfUnmapped(const PalmDatebookRecord& record) { return ToUtf8(record.text); }
    template <class Palm>
    static WipedText TitleOfUnmapped(const Palm&) {
        return {};
    }

    template <class Record>
    void SetCategory(Record& record, std::uint32_t palmCategory, std::size_t place) {
        if constexpr (std::is_same_v<Record, calendar::Appointment>) {
            if (palmCategory == 0 || palmCategory > header_.categories.size()) return;
            const auto name = TrimBlanks(header_.categories[palmCategory - 1].longName);
            Remark(place, TitleOf(record),
                   "had the category \"" + ToUtf8(name) + "\": appointments have none", false);
        } else {
            record.category = plan_.categories.MapPalmCategory(palmCategory);
            const bool lost =
                palmCategory != 0 && palmCategory <= header_.categories.size() && record.category == 0;
            if (lost)
                Remark(place, TitleOf(record), "is unfiled now: its category could not be taken over", false);
        }
    }

    void Remark(std::size_t place, WipedText title, std::string what, bool leftOut) {
        plan_.remarks.push_back({place, std::move(title), std::move(what), leftOut});
    }

    static constexpr Day kLastOfDates{calendar::kUpperLimit.serial - 1};

    Session& session_;
    PalmPlan& plan_;
    const PalmHeader& header_;
    PalmBytes& bytes_;
    const LocaleFacts& locale_;
};

int AddPart(Session& session, std::vector<notes::Memo>& part) {
    return notes::AddRecords(session, part);
}
int AddPart(Session& session, std::vector<tasks::Task>& part) {
    return tasks::AddRecords(session, part);
}
int AddPart(Session& session, std::vector<calendar::Appointment>& part) {
    return calendar::AddRecords(session, part);
}
int AddPart(Session&, std::vector<PalmContact>&) {
    return engine::EngineNumber::Failed;  // the address book stores its own
}

int StoreMergedCategories(Session& session, const PalmPlan& plan) {
    if (plan.categories.added == 0) return 0;
    store::CategoryList list;
    for (const store::CategoryEntry& entry : plan.categories.table)
        store::InsertCategory(list, entry);
    return store::StoreCategories(session, list, plan.section);
}

template <class Record>
int AddAll(Session& session, std::vector<Record>& chosen,
           const std::function<bool(std::size_t done, std::size_t all)>& progress) {
    for (std::size_t done = 0; done < chosen.size();) {
        if (progress && !progress(done, chosen.size())) return MessageNumber::Cancelled;
        const auto begin = chosen.begin() + static_cast<std::ptrdiff_t>(done);
        const auto end = chosen.begin() + static_cast<std::ptrdiff_t>(std::min(done + kPart, chosen.size()));
        std::vector<Record> part(std::make_move_iterator(begin), std::make_move_iterator(end));
        if (const int error = AddPart(session, part)) return error;
        done += part.size();
    }
    return progress && !progress(chosen.size(), chosen.size()) ? int{MessageNumber::Cancelled} : 0;
}

}  // namespace

std::size_t PalmPlan::Known() const {
    return static_cast<std::size_t>(std::ranges::count(known, true));
}

std::size_t PalmPlan::LeftOut() const {
    return static_cast<std::size_t>(std::ranges::count(remarks, true, &PalmRemark::leftOut));
}

std::size_t PalmPlan::Changed() const {
    std::set<std::size_t> places;
    for (const PalmRemark& remark : remarks)
        if (!remark.leftOut) places.insert(remark.place);
    return places.size();
}

Result<PalmPlan> PlanPalmImport(Session& session, std::uint8_t section, const std::filesystem::path& file,
                                const LocaleFacts& locale) {
    const auto contents = LoadPalmFile(file);
    if (!contents) return contents.error();
    PalmBytes bytes(contents->bytes);
    const auto header = ReadPalmHeader(section, bytes);
    if (!header) return header.error();
    PalmPlan plan;
    plan.section = section;
    plan.failure = contents->failure;
    Planner planner(session, plan, *header, bytes, locale);
    if (const int error = planner.MergeCategories()) return Error{error, session.ProgramDb->LastError()};
    if (const int error = planner.MapRecords()) return Error{error, session.ProgramDb->LastError()};
    return plan;
}

PalmOutcome StorePalmPlan(Session& session, PalmPlan& plan, bool withKnown,
                          const std::function<bool(std::size_t done, std::size_t all)>& progress) {
    PalmOutcome outcome;
    store::UndoStep step(session, plan.section, {"import", "imported"});
    engine::Transaction transaction(*session.ProgramDb);
    outcome.error = transaction.error();
    if (outcome.error == 0) outcome.error = StoreMergedCategories(session, plan);
    if (outcome.error == 0)
        outcome.error = std::visit(
            [&](auto& records) {
                std::remove_cvref_t<decltype(records)> chosen;
                for (std::size_t i = 0; i < records.size(); ++i)
                    if (withKnown || !plan.known[i]) chosen.push_back(std::move(records[i]));
                outcome.added = chosen.size();
                outcome.leftOut = records.size() - chosen.size() + plan.LeftOut();
                return AddAll(session, chosen, progress);
            },
            plan.records);
    if (outcome.error == 0) outcome.error = transaction.Commit();
    if (outcome.error != 0) {
        outcome.added = 0;
        return outcome;
    }
    step.Keep();
    return outcome;
}

int PalmSuccessMessage(std::uint8_t section) {
    switch (section) {
        case Section::Calendar:
            return 8;
        case Section::Memo:
            return 28;
        case Section::Todo:
            return 30;
        default:
            return 17;
    }
}

}  // namespace bmr::interchange
