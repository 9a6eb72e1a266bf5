#include "budget/rowcheck.h"

#include <optional>
#include <string_view>

#include "budget/transaction.h"
#include "store/record_get.h"

namespace bmr::budget {
namespace {

constexpr std::uint8_t kNote = 2;
constexpr std::uint8_t kFlag = 3;

/// The columns of a row that wait for its texts.
struct CheckedRow {
    std::int32_t fPK = 0;
    bool bit = false;      ///< the private bit of fR1
    bool hasNote = false;  ///< fF2
};

/// Rows that wait to be deciphered together, which is far cheaper than one by one.
class Checker {
  public:
    Checker(store::Session& session, RowCheck& check) : session_(session), check_(check) {}

    void Add(const engine::Cursor& cursor) {
        rows_.push_back({cursor.Int(0), (cursor.Int(1) & kPrivate) != 0, cursor.Int(2) != 0});
        ciphered_.emplace_back(cursor.Bytes(3));
        ciphered_.emplace_back(cursor.Bytes(4));
        if (rows_.size() == kChunk) Check();
    }
    void Check() {
        const std::vector<std::string_view> views(ciphered_.begin(), ciphered_.end());
        cry::DecipherBatch(session_.cipher, views, [this](std::size_t index, std::string_view plain) {
            const CheckedRow& row = rows_[index / 2];
            if (index % 2 == 0)
                CheckPayload(row, plain);
            else if (!ReadAmount(plain))
                check_.faults.push_back({row.fPK, "fT1 holds no amount (it counts as 0)"});
        });
        rows_.clear();
        ciphered_.clear();
    }

  private:
    static constexpr std::size_t kChunk = 2048;

    void CheckPayload(const CheckedRow& row, std::string_view payload) {
        std::optional<bool> isPrivate;
        bool hasNote = false;
        store::PayloadReader reader(payload);
        for (store::RawField field; reader.Next(field);) {
            if (field.number == kFlag && field.tag == static_cast<std::uint8_t>(store::FieldTag::Boolean))
                isPrivate = ByteAt(field.value, 0) != 0;
            if (field.number == kNote) hasNote = !field.value.empty();
        }
        if (!isPrivate) return;
        if (*isPrivate != row.bit)
            check_.notes.push_back(
                {row.fPK,
                 "the private bit of fR1 and the flag of the record differ (the filter goes "
                 "by the one, the hiding by the other)"});
        if (hasNote != row.hasNote)
            check_.faults.push_back({row.fPK, "fF2 does not tell whether there is a note"});
    }

    store::Session& session_;
    RowCheck& check_;
    std::vector<CheckedRow> rows_;
    std::vector<Bytes> ciphered_;
};

}  // namespace

Result<RowCheck> CheckRows(store::Session& session, std::uint8_t section) {
    auto cursor = session.ProgramDb->Select(
        "SELECT fPK, fR1, fF2, fEtx, fT1 FROM tt WHERE fSec=? ORDER BY fPK", {section});
    if (!cursor) return cursor.error();
    RowCheck check;
    Checker checker(session, check);
    while (cursor->Next())
        checker.Add(*cursor);
    if (cursor->error() != 0) return Error{cursor->error(), session.ProgramDb->LastError()};
    checker.Check();
    return check;
}

}  // namespace bmr::budget
