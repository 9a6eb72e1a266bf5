#include "crypto/cry.h"
#include "engine/db.h"
#include "store/record_put.h"

namespace bmr::store {

void FillColumns(engine::Recordset& row, const NoiseColumns& columns, RandomSource& random) {
    const auto text = [&](bool wanted, const char* name) {
        if (wanted) row.SetField(name, cry::RandomBlocks(random, DrawBelow(random, 3) + 1));
    };
    const auto number = [&](bool wanted, const char* name) {
        if (wanted) row.SetField(name, DrawBelow(random, 32768) << 16 | DrawBelow(random, 65536));
    };
    text(columns.t1, "fT1");
    text(columns.t2, "fT2");
    text(columns.t3, "fT3");
    number(columns.r1, "fR1");
    number(columns.r2, "fR2");
    number(columns.r3, "fR3");
    number(columns.r4, "fR4");
}

}  // namespace bmr::store
