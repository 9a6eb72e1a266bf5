#include "budget/amountrows.h"

#include <vector>

#include "budget/transaction.h"
#include "store/privatefilter.h"

namespace bmr::budget {

KeyRange RangeOf(Day from, Day to) {
    return {PackDateAt(from, kDateKind, 0).low, PackDateAt(to, kDateKind, 0).high};
}

int ForEachAmount(store::Session& session, std::uint8_t section, Day from, Day to,
                  const std::function<void(const AmountRow& row)>& each) {
    const KeyRange range = RangeOf(from, to);
    auto cursor = session.ProgramDb->Select(
        "SELECT fPK, fR1, fR3, fG1, fT1 FROM tt WHERE ((fR3 Between ? And ?) AND (fSec=?));",
        {range.low, range.high, section});
    if (!cursor) return cursor.error().number;
    store::PrivateBatch batch;
    std::vector<AmountRow> rows;
    const auto decipher = [&] {
        batch.Decipher(session, [&](std::size_t index, std::string_view plain) {
            rows[index].amount = ReadAmount(plain).value_or(Money{});
            each(rows[index]);
        });
        rows.clear();
    };
    while (cursor->Next()) {
        rows.push_back({cursor->Int(0), UnpackCdbw(cursor->Int(1)), UnpackDate(cursor->Int(2), kDateKind),
                        cursor->Int(3), Money{}});
        batch.Add(cursor->Bytes(4));
        if (batch.Full()) decipher();
    }
    if (cursor->error() != 0) return cursor->error();
    decipher();
    return 0;
}

}  // namespace bmr::budget
