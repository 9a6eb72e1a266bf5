#include <iostream>
#include <string_view>

#include "custody/systemrecord.h"
#include "engine/db.h"
#include "sitting.h"
#include "store/fieldtable.h"
#include "store/record_get.h"
#include "store/record_put.h"
#include "store/startvariables.h"

/// usage: alter_database FILE newer|hide, the passphrase on standard input. Brings a database into states
/// that no command of bmr makes: last changed by a newer program, or with private records hidden,
/// one of them half-written.
namespace {

using namespace bmr;

int MakeNewer(store::Session& session) {
    Bytes payload;
    for (std::uint8_t number = 0; number <= 16; ++number)
        store::AppendField(payload, number, Bytes(number == 2 ? "202" : ""), store::FieldTag::Text,
                           session.ports.random);
    auto table = session.ProgramDb->OpenRecordset("tt");
    if (!table) return table.error().number;
    engine::Recordset& row = **table;
    if (const int error = row.FindFirst("fSec=1 And fSub=3")) return error;
    if (row.NoMatch()) return 1;
    row.Edit();
    row.SetField("fEtx", cry::FieldCipher(session.cipher, 1, payload));
    return row.Update();
}

int Hide(store::Session& session) {
    session.ShowPrivate = false;
    if (const int error = custody::WriteSystemMemo(session, 16, "half-written")) return error;
    return store::WriteSettings(session);
}

/// The subject of the first memo becomes one that its whole text does not belong to, or the whole text
/// becomes none.
int AlterWhole(store::Session& session, bool mangle) {
    constexpr std::uint8_t kSubject = 4;
    auto table = session.ProgramDb->OpenRecordset("tt");
    if (!table) return table.error().number;
    engine::Recordset& row = **table;
    if (const int error = row.FindFirst("fSec=14")) return error;
    if (row.NoMatch()) return 1;
    const Bytes before(cry::DecipherField(session.cipher, TextOf(row.Field("fEtx"))));
    Bytes payload;
    store::PayloadReader reader(before);
    for (store::RawField field; reader.Next(field);) {
        const bool mangled = mangle && field.number == store::CompanionOf(kSubject);
        if (mangled || (!mangle && field.number == kSubject))
            store::AppendText(payload, field.number, "Lodge",
                              mangled ? store::FieldTag::Memo : store::FieldTag::Text);
        else
            store::AppendRaw(payload, field.whole);
    }
    row.Edit();
    row.SetField("fEtx", cry::FieldCipher(session.cipher, 1, payload));
    if (!mangle) row.SetField("fT1", cry::FieldCipher(session.cipher, 1, Bytes("Lodge")));
    return row.Update();
}

int Alter(store::Session& session, std::string_view how) {
    if (how == "newer") return MakeNewer(session);
    if (how == "hide") return Hide(session);
    return AlterWhole(session, how == "mangle");
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 3) return 2;
    try {
        tools::Sitting sitting(0);
        sitting.Open(argv[1]);
        sitting.Check(Alter(sitting.session(), argv[2]));
    } catch (const std::exception& error) {
        std::cerr << error.what() << '\n';
        return 1;
    }
    return 0;
}
