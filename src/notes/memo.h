#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "base/bytes.h"
#include "base/serialdate.h"
#include "store/section_store.h"
#include "store/session.h"

namespace bmr::notes {

/// One memo. Texts are bytes of code page 1252.
struct Memo {
    std::int32_t key = store::kNewRecord;
    std::uint8_t userNumber = 0;
    bool isPrivate = false;
    DateValue dateCreated;  ///< whole days, set once
    DateValue dateLastModified;
    Bytes subject;
    Bytes body;  ///< at most store::kLongestText characters are kept
    std::int32_t category = 0;
    bool readable = true;  ///< false when the payload did not decode whole: a store would end the rest
};

/// Stored in every memo. Never renumber.
enum class MemoField : std::uint8_t { UserNumber, Private, DateCreated, DateLastModified, Subject, Memo };

/// A new memo in a category; the fixed entries of a combo (all, edit) count as unfiled.
Memo ClearMemo(store::Session& session, std::int32_t category);

/// The memo of a row, or as much of it as decodes; without a flag it counts as private.
Memo ReadMemo(store::Session& session, const engine::Recordset& row);

/// The memo of a key; nothing when it is gone or belongs to another section.
std::optional<Memo> FetchMemo(store::Session& session, std::int32_t key);

/// Stores the memo and sets its key, its user and the day of the change. The subject's own columns and its
/// place in the alphabet are written only when the memo is new or its subject has changed. One transaction;
/// 0, -16 when the key belongs to another section (nothing written), or the engine's number.
[[nodiscard]] int WriteMemo(store::Session& session, Memo& memo);

/// Stores many new memos in one transaction, their places in the alphabet worked out once. For imports, which
/// bring the days of their changes; 0 becomes today. Sets the keys.
[[nodiscard]] int AddMemos(store::Session& session, std::vector<Memo>& memos);

/// One line of the list: no text is deciphered to build it.
struct MemoRow {
    std::int32_t fPK = 0;
    std::int32_t category = 0;
};

/// The list in alphabetical order. While `ShowPrivate` is false every payload is tested and private memos are
/// left out; else no payload is opened.
/// With `search` only memos whose subject holds it, without regard to case; that deciphers every subject.
Result<std::vector<MemoRow>> ListMemos(store::Session& session, std::int32_t category,
                                       std::string_view search = {});

/// The subject of a memo: one field deciphered.
Bytes MemoSubject(store::Session& session, std::int32_t fPK);

/// The text of the box that confirms a delete.
std::string DeleteMemoText(std::string_view subject);

/// All memos, or those of one category: 0 or the engine's number.
[[nodiscard]] int DeleteMemos(store::Session& session, std::int32_t category);

}  // namespace bmr::notes
