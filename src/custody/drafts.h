#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "base/bytes.h"
#include "base/serialdate.h"
#include "crypto/secret.h"
#include "store/section_store.h"

namespace bmr::custody {

/// What one control of an editor held. The number is the section's own and never given another meaning.
struct DraftText {
    std::uint8_t number = 0;
    Secret text;  ///< UTF-8, also what a record could not hold
};

/// What stood half-written in an editor when the program had to end.
struct Draft {
    std::int32_t id = 0;  ///< 0 for one that is not stored yet
    std::uint8_t user = 0;
    std::uint8_t section = 0;
    std::int32_t key = store::kNewRecord;  ///< the record that was edited
    std::int32_t category = 0;             ///< or the kind, where the section has kinds
    bool isPrivate = true;                 ///< as written, or as the record was before
    bool cut = false;                      ///< it was too large to be kept whole
    DateValue when;                        ///< to the minute
    Bytes stamp;                           ///< tells one store of the record from another
    Secret title;                          ///< UTF-8: the words by which a list would show it
    std::vector<DraftText> texts;

    void Put(std::uint8_t number, std::string_view text);
    /// Empty where nothing was put.
    std::string_view Text(std::uint8_t number) const;
};

/// Keeps drafts in the system record, enciphered like it: adds those without an id, puts the others in the
/// place of the stored ones. Sets user, time and stamp. What all together is too large is cut where it is
/// longest. One transaction; 0, or an error number with nothing changed.
[[nodiscard]] int StoreDrafts(store::Session& session, std::vector<Draft> drafts);

/// The current user's drafts, the oldest first; none where they cannot be read.
std::vector<Draft> LoadDrafts(store::Session& session);

/// Forgets one. 0, also when there is none of that id, or an error number.
[[nodiscard]] int DropDraft(store::Session& session, std::int32_t id);

/// How the record of a draft stands now.
enum class DraftBase { New, Same, Changed, Gone };
DraftBase BaseOf(store::Session& session, const Draft& draft);

}  // namespace bmr::custody
