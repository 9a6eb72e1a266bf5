#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "base/result.h"
#include "store/session.h"

namespace bmr::store {

/// Whether a record of section code `section` is private, by its enciphered payload; anything but a boolean
/// counts as private.
bool IsRecordPrivate(cry::CipherState& cipher, std::string_view text, std::uint8_t section);
/// The same by its plain payload.
bool IsPayloadPrivate(std::string_view payload, std::uint8_t section);

/// Enciphered payloads of many rows that wait to be tested together, which is far cheaper than one by one.
class PrivateBatch {
  public:
    /// Copies `text`, the payload of the next row.
    void Add(std::string_view text);
    /// True when enough has come together: test before more is added.
    bool Full() const { return size_ >= kMostBytes; }
    /// Deciphers what was added and hands over each plain text, in order, then starts anew. `index` counts
    /// from 0 within this batch; `plain` lives only inside the call.
    void Decipher(Session& session,
                  const std::function<void(std::size_t index, std::string_view plain)>& each);
    /// Deciphers what was added, tells for each, in order, whether it is private or cannot be read, and
    /// starts anew. `index` counts from 0 within this batch.
    void Test(Session& session, std::uint8_t section,
              const std::function<void(std::size_t index, bool isPrivate)>& each);

  private:
    static constexpr std::size_t kMostBytes = std::size_t{32} << 20;
    std::deque<std::string> pieces_;  ///< few and large; what lies in them never moves
    std::vector<std::string_view> texts_;
    std::size_t size_ = 0;
};

/// The keys of a section's records, among the rows that meet `clauses` (" And fG1 = 3", or ""), whose
/// deciphered `column` passes `test`. Opens every row, in batches.
Result<std::unordered_set<std::int32_t>> RecordsWhere(
    Session& session, std::uint8_t section, const std::string& clauses, const std::string& column,
    const std::function<bool(std::string_view plain)>& test);

/// The keys of a section's records that are private or cannot be read, among the rows that meet `clauses` ("
/// And fG1 = 3", or ""). Opens every payload, in batches.
Result<std::unordered_set<std::int32_t>> PrivateRecords(Session& session, std::uint8_t section,
                                                        const std::string& clauses);

/// The name of a record, UTF-8: the deciphered fT1, and where code page 1252 does not hold it the payload's
/// field `nameField`. Empty for a row that is gone.
WipedText NameOf(Session& session, std::uint8_t nameField, std::int32_t fPK);

/// The keys of a section's records whose name holds `search` (UTF-8) in any case, by the letters that stand
/// for it in code page 1252: "lukasz" finds Łukasz.
Result<std::unordered_set<std::int32_t>> RecordsNamed(Session& session, std::uint8_t section,
                                                      std::uint8_t nameField, const std::string& clauses,
                                                      std::string_view search);

/// Which rows of a section a list shows: no private ones while `ShowPrivate` is false (else no payload is
/// opened), and only those with `search` in their name, where it is not empty.
class ListFilter {
  public:
    /// 0 or the engine's number.
    [[nodiscard]] int Load(Session& session, std::uint8_t section, std::uint8_t nameField,
                           const std::string& clauses, std::string_view search);
    bool Shows(std::int32_t fPK) const {
        return !hidden_.contains(fPK) && (!searching_ || matching_.contains(fPK));
    }

  private:
    std::unordered_set<std::int32_t> hidden_;
    std::unordered_set<std::int32_t> matching_;
    bool searching_ = false;
};

}  // namespace bmr::store
