#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "base/serialdate.h"
#include "diary/dayrows.h"
#include "store/fieldtable.h"
#include "store/section_store.h"
#include "store/severalrows.h"

/// The diary without a screen: a page for each day. All pages are private: while private records are hidden,
/// nothing here gives one out, and whoever shows them stores none.
namespace bmr::diary {

/// One page. The defaults are those of a day without a row.
struct Page {
    std::int32_t key = store::kNewRecord;
    Day day;                  ///< by fR2
    DateValue date;           ///< the same in the payload
    std::uint8_t field3 = 0;  ///< nothing shows it; 0 unless another program has stored it
    WipedText text;
    bool readable = true;  ///< false when the payload did not decode: the page is never written over
    store::CarriedFields carried;
};

inline constexpr std::array<store::Field<Page>, 3> kPageFields{{
    {{0, store::FieldTag::Memo, "text", store::Kind::Words}, store::At<&Page::text>},
    {{1, store::FieldTag::Date, "date"}, store::At<&Page::date>},
    {{3, store::FieldTag::Byte, "field3"}, store::At<&Page::field3>},
}};

/// The page of a row, or as much of it as decodes.
Page ReadRecord(store::Session& session, const engine::Recordset& row);
/// The page of a key; nothing when it is gone, belongs to another section, or could not be looked for, which
/// `error` tells apart (the engine's number, else 0).
std::optional<Page> FetchRecord(store::Session& session, std::int32_t key, int* error = nullptr);

/// The pages of the days from `first` to `last`, one each, in their order; a day without a row has an empty
/// new one. One payload is deciphered for each row. Where a day has two rows, the one that was stored later
/// stands there, and the day among `doubled`.
struct Pages {
    std::vector<Page> pages;
    std::vector<Day> doubled;
    bool hidden = false;  ///< private records are hidden: all pages are empty, and none may be stored
};
Result<Pages> ReadSpan(store::Session& session, Day first, Day last);

/// Stores a page and sets its key. A day that has no row gets one only when there is text. Before a row is
/// added, the day is looked up anew: what stands there meanwhile stays, and the page's text comes behind it.
/// Errors, with nothing changed: `InputError` for a text that is too long (none is ever cut), `NoRecord` for
/// a day outside the table, `UpdateImpossible` for a row that does not decode or is another section's, else
/// the engine's number.
store::StoreOutcome StorePage(store::Session& session, Page& page);

/// Writes a text behind what the day has, with a blank line between; the key of its page.
store::StoreOutcome AppendText(store::Session& session, Day day, std::string_view text);

/// Makes one page of all rows of a day, their texts in the order in which they were stored; the one that was
/// shown stays. One step. 0 or an error number, as `StorePage`.
[[nodiscard]] int JoinDay(store::Session& session, Day day);

/// Stores many new pages in one step, for imports and samples; none of their days may have a row. Sets their
/// keys. 0 or the engine's number.
[[nodiscard]] int AddRecords(store::Session& session, std::vector<Page>& pages);

/// The keys of all pages by their days, none while private records are hidden.
Result<std::vector<std::int32_t>> ListRecords(store::Session& session);

/// Overwrites every text.
void WipeRecord(Page& page);

store::SeveralOutcome DeleteSeveral(store::Session& session, store::Keys keys);

}  // namespace bmr::diary
