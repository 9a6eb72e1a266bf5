#include "custody/keyrecords.h"

#include "base/errors.h"
#include "base/languageus.h"
#include "custody/openfailure.h"
#include "custody/passphrase.h"
#include "custody/systemrecord.h"
#include "custody/users.h"
#include "store/record_put.h"
#include "store/session.h"

namespace bmr::custody {

using namespace store;

namespace {

constexpr std::size_t kMasterKeyLength = 43;
constexpr std::size_t kKeystringLength = 256;

constexpr std::int32_t kKeystringRow = 1;
constexpr std::int32_t kCopyRow = 2;
const char* const kKeyRow = "fSec=1 And fSub=?";

int ShowFatal(Session& session, const std::string& what) {
    Box box = MessageBox(83, BoxIcon::Critical);
    box.text += what;
    session.ports.prompter.Ask(box);
    return kQuitProgram;
}

/// Adds or edits one of the two keystring rows; `fT1` empty means noise there too.
int WriteKeyRow(Session& session, std::int32_t fSub, Bytes fEtx, Bytes fT1) {
    auto rows = session.ProgramDb->OpenRecordset("tt");
    if (!rows) return rows.error().number;
    engine::Recordset& row = **rows;
    if (const int error = row.FindFirst(kKeyRow, {fSub})) return error;
    if (row.NoMatch()) {
        row.AddNew();
        row.SetField("AE", 1);
    } else {
        const std::int32_t marks = NumberOf(row.Field("AE"));
        row.Edit();
        row.SetField("AE", marks | 2);
    }
    row.SetField("fSec", 1);
    row.SetField("fSub", fSub);
    row.SetField("fEtx", std::move(fEtx));
    const bool noiseInT1 = fT1.empty();
    if (!noiseInT1) row.SetField("fT1", std::move(fT1));
    FillColumns(row,
                {.t1 = noiseInT1, .t2 = true, .t3 = true, .r1 = true, .r2 = true, .r3 = true, .r4 = true},
                session.ports.random);
    return row.Update();
}

int WriteKeystringRow(Session& session, std::string_view keystring) {
    const Secret mark = cry::HashPassphrase(session.MasterKey.view());
    return WriteKeyRow(session, kKeystringRow,
                       cry::PassEncrypt(session.ports.random, keystring, session.MasterKey.view()),
                       Bytes(mark.view()));
}

/// fEtx of one of the two rows; nothing when there is none.
Result<std::optional<Bytes>> ReadKeyRow(Session& session, std::int32_t fSub) {
    auto rows = session.ProgramDb->Select("SELECT fEtx FROM tt WHERE fSec=1 And fSub=?", {fSub});
    if (!rows) return rows.error();
    std::optional<Bytes> found;
    if (rows->Next()) found = Bytes(rows->Bytes(0));
    if (rows->error() != 0) return Error{rows->error(), session.ProgramDb->LastError()};
    return found;
}

/// The second copy, and row (1,1) made good from it.
int RecoverKeystring(Session& session) {
    const auto read = ReadKeyRow(session, kCopyRow);
    if (!read) return read.error().number;
    const std::optional<Bytes>& copy = *read;
    if (!copy) return ShowFatal(session, "105");
    const Secret mark = cry::HashPassphrase(session.MasterKey.view());
    const Secret outer = cry::PassDecrypt(*copy, mark.view());
    // Inside, the copy was wrapped under the master key but is opened with PassHash. Required: a copy written
    // by this system never opens, and the loss is told as number 106.
    Secret keystring = cry::PassDecrypt(outer.view(), session.PassHash.view());
    if (keystring.size() != kKeystringLength) return ShowFatal(session, "106");
    session.cipher.Keystring = keystring.Copy();
    // A database of a later version is refused untouched, so its row is not repaired either.
    if (session.ProgramDb->ReadOnly() || ReadDatabaseVersion(session) > kDatabaseVersion) return 0;
    return WriteKeystringRow(session, keystring.view());
}

int CreateKeystringRows(Session& session) {
    RandomSource& random = session.ports.random;
    const Secret& keystring = session.cipher.Keystring;
    const Bytes wrapped = cry::PassEncrypt(random, keystring.view(), session.MasterKey.view());
    if (cry::PassDecrypt(wrapped, session.MasterKey.view()).view() != keystring.view()) {
        Box box = MessageBox(44, BoxIcon::Critical);
        box.text = "115: " + box.text;
        session.ports.prompter.Ask(box);
        return kQuitProgram;
    }
    const Secret mark = cry::HashPassphrase(session.MasterKey.view());
    if (const int error = WriteKeyRow(session, kKeystringRow, wrapped, Bytes(mark.view()))) return error;
    return WriteKeyRow(session, kCopyRow, cry::PassEncrypt(random, wrapped, mark.view()), Bytes());
}

/// Verifier and wrapped master key under the `PassHash` at hand.
void SealUser(Session& session) {
    const Secret verifier = cry::HashStrong(session.PassHash.view());
    session.user.PwVerifier = Bytes(verifier.view());
    session.user.WrappedKey =
        cry::PassEncrypt(session.ports.random, session.MasterKey.view(), session.PassHash.view());
}

/// The user's row and the default PIN under the new passphrase, both or neither.
int RewriteUser(Session& session) {
    engine::Transaction change(*session.ProgramDb);
    if (change.error() != 0) return change.error();
    SealUser(session);
    if (const int error = WriteUser(session)) return error;
    if (const int error = SetDefaultPin(session)) return error;
    return change.Commit();
}

}  // namespace

int CreateKeys(Session& session) {
    RandomSource& random = session.ports.random;
    session.MasterKey = Secret(kMasterKeyLength);
    random.Fill(session.MasterKey.span());
    session.cipher.Keystring = Secret(kKeystringLength);
    random.Fill(session.cipher.Keystring.span());

    session.user = CurrentUser();
    session.user.UserFlag1 = true;
    session.user.UserFlag2 = true;
    session.user.UserName = "Admin";
    SealUser(session);

    engine::Transaction all(*session.ProgramDb);
    int error = all.error();
    if (error == 0) error = CreateKeystringRows(session);
    if (error == 0) error = WriteUser(session);
    if (error == 0) error = SetDefaultPin(session);
    if (error == 0) error = all.Commit();
    session.MasterKey.Wipe();
    return error;
}

int LoadKeys(Session& session) {
    struct MasterKeyWiper {
        Session& session;
        ~MasterKeyWiper() { session.MasterKey.Wipe(); }
    } wiper{session};
    if (const int error = FindUser(session)) return error;

    session.cipher.Keystring.Wipe();
    const auto wrapped = ReadKeyRow(session, kKeystringRow);
    if (!wrapped) return wrapped.error().number;
    if (*wrapped) session.cipher.Keystring = cry::PassDecrypt(**wrapped, session.MasterKey.view());
    if (session.cipher.Keystring.size() == kKeystringLength) return 0;
    session.cipher.Keystring.Wipe();
    return RecoverKeystring(session);
}

PassphraseChange ChangePassphrase(Session& session) {
    const HashWiper wiper(session);
    if (CheckUser(session, Msg(159), true) != UserCheck::Right) return PassphraseChange::Unverified;
    session.PwAttempts = 0;
    int error = FindCurrentUser(session);
    if (error == 0 && session.MasterKey.empty()) error = engine::EngineNumber::Failed;
    if (error == 0) error = RequestPassphrase(session, true);
    if (error == 0 && !session.ProgramDb)
        return PassphraseChange::Unchanged;  // closed by the idle end while the prompt stood
    if (error == 0) {
        // SetDefaultPin takes the default PIN into the session before the file has it for sure.
        PinRecord old{session.pin.PinKind, session.pin.Pin.Copy(), session.pin.PinApp,
                      session.pin.PINeveryaccess, session.pin.Unread};
        error = RewriteUser(session);
        if (error != 0) session.pin = std::move(old);
        if (error > 0) TellOpenFailure(session, error);
        if (error == engine::EngineNumber::Unsure) return PassphraseChange::Unsure;
        TellDoubt(session);
    }
    if (error != 0 && error != kQuitProgram) session.ports.prompter.Ask(MessageBox(124));
    return error == 0 ? PassphraseChange::Changed : PassphraseChange::Unchanged;
}

}  // namespace bmr::custody
