#include "diary/page.h"

#include <algorithm>

#include "base/errors.h"
#include "store/record_put.h"
#include "store/undostep.h"
#include "store/words.h"

namespace bmr::diary {
namespace {

using store::Section;
using store::Session;

constexpr const char* kBlankLine = "\r\n\r\n";

WipedText Below(std::string_view first, std::string_view second) {
    if (first.empty() || second.empty()) return Joined(first, second);
    return Joined(first, kBlankLine, second);
}

/// Payload and column of a page, plain.
struct Texts {
    WipedText payload;
    WipedText date;
};

Texts TextsOf(Session& session, Page& page) {
    RandomSource& random = session.ports.random;
    page.date = {static_cast<double>(page.day.serial)};
    return {store::EncodeFields(page, kPageFields, store::Blanks::Store, random).payload,
            store::EncodeField(page.date, store::FieldTag::Date, random)};
}

void FillNumbers(Session& session, const Page& page, engine::Recordset& row) {
    RandomSource& random = session.ports.random;
    row.SetField("fR2", PointOf(page.day, random));
    store::FillColumns(row, {.t2 = true, .t3 = true, .r1 = true, .r3 = true, .r4 = true}, random);
}

int FillRow(Session& session, Page& page, engine::Recordset& row) {
    const Texts texts = TextsOf(session, page);
    const std::string_view plain[] = {texts.payload, texts.date};
    const auto ciphered = cry::EncipherBatch(session.cipher, plain);
    if (ciphered.front().empty()) return engine::EngineNumber::Failed;
    row.SetField("fEtx", ciphered.front());
    row.SetField("fT1", ciphered.back());
    FillNumbers(session, page, row);
    return 0;
}

store::StoreOutcome Write(Session& session, Page& page) {
    const auto outcome =
        store::StoreRow(session, Section::Diary, page.key,
                        [&](engine::Recordset& row, bool) { return FillRow(session, page, row); });
    if (outcome.error == 0) page.key = outcome.fPK;
    return outcome;
}

/// The page that stands for a day in the file, whatever is shown.
Result<std::optional<Page>> PageInFile(Session& session, Day day) {
    const auto keys = KeysOfDay(session, day);
    if (!keys) return keys.error();
    if (keys->empty()) return std::optional<Page>();
    int error = 0;
    auto page = FetchRecord(session, keys->back(), &error);
    if (error != 0) return Error{error, {}};
    return page;
}

/// 0, or why a page cannot stand in the file.
int Refusal(const Page& page) {
    if (!IsInTable(page.day)) return MessageNumber::NoRecord;
    return store::MeasureWords(page.text).TooLong() ? MessageNumber::InputError : 0;
}

int WriteOnly(Session& session, Page& page) {
    return Write(session, page).error;
}

constexpr store::RecordVerbs<Page> kVerbs{Section::Diary, FetchRecord, WriteOnly, WipeRecord};

/// Takes over a row that the page's day has by now: its text comes first.
void Adopt(Page& page, Page&& there) {
    there.text = page.text == there.text ? page.text : Below(there.text, page.text);
    page = std::move(there);
}

}  // namespace

Page ReadRecord(Session& session, const engine::Recordset& row) {
    Page page;
    page.key = NumberOf(row.Field("fPK"), store::kNewRecord);
    page.day = DayOfPage(NumberOf(row.Field("fR2")));
    page.readable =
        store::DecodeFields(page, cry::DecipherField(session.cipher, TextOf(row.Field("fEtx"))), kPageFields);
    return page;
}

std::optional<Page> FetchRecord(Session& session, std::int32_t key, int* error) {
    const auto row = store::FetchRow(session, Section::Diary, key);
    if (error) *error = row ? 0 : row.error().number;
    if (!row || !*row) return std::nullopt;
    return ReadRecord(session, **row);
}

Result<Pages> ReadSpan(Session& session, Day first, Day last) {
    Pages span;
    span.hidden = !session.ShowPrivate;
    for (Day day = first; day <= last; ++day.serial)
        span.pages.emplace_back().day = day;
    if (span.hidden) return span;
    const KeyRange range = RangeOf(first, last);
    auto rows = session.ProgramDb->OpenRecordset(
        "SELECT * FROM tt WHERE fSec=13 And (fR2 Between ? And ?)" + std::string(store::kOwnerAccess),
        engine::RecordsetType::Snapshot, {range.low, range.high});
    if (!rows) return rows.error();
    for (; !(*rows)->Eof(); (*rows)->MoveNext()) {
        Page page = ReadRecord(session, **rows);
        const std::int32_t at = page.day.serial - first.serial;
        if (at < 0 || page.day > last) continue;  // a point on the edge of its bucket
        Page& shown = span.pages[static_cast<std::size_t>(at)];
        if (shown.key != store::kNewRecord) {
            if (span.doubled.empty() || span.doubled.back() != page.day) span.doubled.push_back(page.day);
            const auto keys = KeysOfDay(session, page.day);
            if (!keys) return keys.error();
            if (keys->empty() || keys->back() != page.key) continue;
        }
        shown = std::move(page);
    }
    return span;
}

store::StoreOutcome StorePage(Session& session, Page& page) {
    if (const int refusal = Refusal(page)) return {.error = refusal};
    int error = 0;
    const bool stands = page.key != store::kNewRecord && FetchRecord(session, page.key, &error);
    if (error != 0) return {.error = error};
    if (stands)
        return page.readable ? Write(session, page) : store::StoreOutcome{MessageNumber::UpdateImpossible};
    page.key = store::kNewRecord;
    if (page.text.empty()) return {};
    auto there = PageInFile(session, page.day);
    if (!there) return {.error = there.error().number};
    if (*there) {
        if (!(*there)->readable) return {.error = MessageNumber::UpdateImpossible};
        Page joined = page;
        Adopt(joined, std::move(**there));
        if (const int refusal = Refusal(joined)) return {.error = refusal};
        page = std::move(joined);
    }
    page.readable = true;
    return Write(session, page);
}

store::StoreOutcome AppendText(Session& session, Day day, std::string_view text) {
    // A new page takes what the day has in front of it.
    Page page;
    page.day = day;
    auto there = IsInTable(day) ? PageInFile(session, day) : std::optional<Page>();
    if (!there) return {.error = there.error().number};
    if (*there) page = std::move(**there);
    page.text = Below(page.text, text);
    return StorePage(session, page);
}

int JoinDay(Session& session, Day day) {
    const auto keys = KeysOfDay(session, day);
    if (!keys) return keys.error().number;
    if (keys->size() < 2) return 0;
    WipedText text;
    std::optional<Page> last;
    for (const std::int32_t key : *keys) {
        int error = 0;
        last = FetchRecord(session, key, &error);
        if (error != 0) return error;
        if (!last || !last->readable) return MessageNumber::UpdateImpossible;
        text = Below(text, last->text);
    }
    last->text = std::move(text);
    if (const int refusal = Refusal(*last)) return refusal;
    store::UndoStep step(session, Section::Diary, {"joining", "joined"});
    engine::Transaction all(*session.ProgramDb);
    if (all.error() != 0) return all.error();
    if (const int error = Write(session, *last).error) return error;
    for (const std::int32_t key : *keys)
        if (key != last->key)
            if (const int error = store::DeleteRow(session, key)) return error;
    if (const int error = all.Commit()) return error;
    step.Keep();
    return 0;
}

int AddRecords(Session& session, std::vector<Page>& pages) {
    // Without keys the cipher gives nothing, and nothing is no record.
    if (session.cipher.Keystring.empty()) return engine::EngineNumber::Failed;
    store::UndoStep step(session, Section::Diary, {"import", "imported"});
    engine::Transaction all(*session.ProgramDb);
    if (all.error() != 0) return all.error();
    for (Page& page : pages)
        if (const int error = Write(session, page).error) return error;
    if (const int error = all.Commit()) return error;
    step.Keep();
    return 0;
}

Result<std::vector<std::int32_t>> ListRecords(Session& session) {
    std::vector<std::int32_t> keys;
    if (!session.ShowPrivate) return keys;
    auto cursor =
        session.ProgramDb->Select("SELECT fPK, fR2 FROM tt WHERE fSec=13" + std::string(store::kOwnerAccess));
    if (!cursor) return cursor.error();
    std::vector<std::pair<Day, std::int32_t>> places;
    while (cursor->Next())
        places.emplace_back(DayOfPage(cursor->Int(1)), cursor->Int(0));
    if (cursor->error() != 0) return Error{cursor->error(), session.ProgramDb->LastError()};
    std::ranges::stable_sort(places, {}, &std::pair<Day, std::int32_t>::first);
    for (const auto& [day, key] : places)
        keys.push_back(key);
    return keys;
}

void WipeRecord(Page& page) {
    store::WipeFields(page, kPageFields);
}

store::SeveralOutcome DeleteSeveral(Session& session, store::Keys keys) {
    return store::DeleteSeveral(session, kVerbs, keys);
}

}  // namespace bmr::diary
