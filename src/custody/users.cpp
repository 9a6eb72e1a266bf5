#include "custody/users.h"

#include <array>
#include <optional>

#include "base/errors.h"
#include "base/languageus.h"
#include "custody/passphrase.h"
#include "store/record_get.h"
#include "store/record_put.h"
#include "store/session.h"

namespace bmr::custody {

using namespace store;

namespace {

/// The payload of a user record under `passHash`; nothing unless it opens and its verifier fits.
std::optional<CurrentUser> OpenUser(std::string_view fEtx, std::string_view passHash) {
    const Secret plain = cry::PassDecrypt(fEtx, passHash);
    if (plain.empty()) return std::nullopt;
    CurrentUser user;
    PayloadReader reader(plain.view());
    for (RawField field; reader.Next(field);) {
        const Value value = DecodeRaw(field);
        switch (field.number) {
            case 0:
                user.UserNumber = static_cast<std::uint8_t>(NumberOf(value));
                break;
            case 1:
                user.PwVerifier = TextOf(value);
                break;
            case 2:
                user.WrappedKey = TextOf(value);
                break;
            case 3:
                user.UserFlag1 = NumberOf(value) != 0;
                break;
            case 4:
                user.UserFlag2 = NumberOf(value) != 0;
                break;
            case 5:
                user.UserValue = NumberOf(value);
                break;
            case 6:
                user.UserName = TextOf(value);
                break;
            default:
                break;
        }
    }
    if (user.PwVerifier != cry::HashStrong(passHash).view()) return std::nullopt;
    return user;
}

/// The first row of `statement` (fPK, fEtx) that `PassHash` opens.
int FindUserIn(Session& session, std::string_view statement, engine::Parameters values, bool& anyRow) {
    auto found = session.ProgramDb->Select(statement, values);
    if (!found) return found.error().number;
    engine::Cursor& row = *found;
    anyRow = false;
    while (row.Next()) {
        anyRow = true;
        auto user = OpenUser(row.Bytes(1), session.PassHash.view());
        if (!user) continue;
        user->fPK = row.Int(0);
        session.user = std::move(*user);
        session.MasterKey = cry::PassDecrypt(session.user.WrappedKey, session.PassHash.view());
        return 0;
    }
    return row.error() != 0 ? row.error() : MessageNumber::NoSuchUser;
}

/// The current user's row; its fPK is bound.
const char* const kOwnRow = "fSec=2 And fPK=?";

Bytes UserPayload(const Session& session) {
    const CurrentUser& user = session.user;
    RandomSource& random = session.ports.random;
    Bytes payload;
    AppendField(payload, 0, std::int32_t{user.UserNumber}, FieldTag::Byte, random);
    AppendText(payload, 1, user.PwVerifier, FieldTag::Text);
    AppendText(payload, 2, user.WrappedKey, FieldTag::Text);
    AppendField(payload, 3, user.UserFlag1, FieldTag::Boolean, random);
    AppendField(payload, 4, user.UserFlag2, FieldTag::Boolean, random);
    AppendField(payload, 5, user.UserValue, FieldTag::Int32, random);
    AppendText(payload, 6, user.UserName, FieldTag::Text);
    return payload;
}

/// What stands in fT3 for a user with the hash `passHash`, without the random bytes behind it.
Secret VerifierOf(std::string_view passHash) {
    return cry::HashStrong(cry::HashPassphrase(passHash).view());
}

/// Whether fT2 holds what a row has there before a PIN is written: nothing, the column's default, or noise.
bool NeverSet(std::string_view fT2) {
    return fT2.empty() || fT2 == "0" || fT2.size() == 8 || fT2.size() == 16 || fT2.size() == 24;
}

/// The PIN record of a cipher text of mode 1. A record that is not whole does not decode: a flag that could
/// not be read must not open a guarded section.
std::optional<PinRecord> DecodePin(Session& session, std::string_view fT2) {
    PinRecord pin;
    std::array<bool, 4> seen{};
    PayloadReader reader(cry::DecipherField(session.cipher, fT2));
    for (RawField field; reader.Next(field);) {
        if (field.number >= seen.size()) continue;
        const auto tag = static_cast<FieldTag>(field.tag);
        switch (field.number) {
            case 0:
                seen[0] = tag == FieldTag::Byte;
                pin.PinKind = static_cast<std::uint8_t>(NumberOf(DecodeRaw(field)));
                break;
            case 1:
                seen[1] = tag == FieldTag::Text;
                pin.Pin = Secret(field.value);
                break;
            case 2:
                seen[2] = tag == FieldTag::Int32;
                pin.PinApp = NumberOf(DecodeRaw(field));
                break;
            default:
                seen[3] = tag == FieldTag::Boolean;
                pin.PINeveryaccess = NumberOf(DecodeRaw(field)) != 0;
                break;
        }
    }
    session.cipher.FieldPlain.Wipe();
    if (!seen[0] || !seen[1] || !seen[2] || !seen[3]) return std::nullopt;
    return pin;
}

/// Enciphered PIN record; empty when the PIN is too long for a field.
Bytes EncodePin(Session& session, std::uint8_t kind, std::string_view pin, std::int32_t app,
                bool everyAccess) {
    if (pin.size() > kLongestText) return {};
    RandomSource& random = session.ports.random;
    Bytes payload;
    AppendField(payload, 0, std::int32_t{kind}, FieldTag::Byte, random);
    AppendText(payload, 1, pin, FieldTag::Text);
    AppendField(payload, 2, app, FieldTag::Int32, random);
    AppendField(payload, 3, everyAccess, FieldTag::Boolean, random);
    Bytes enciphered = cry::FieldCipher(session.cipher, 1, std::string_view(payload));
    cry::WipeString(payload);
    return enciphered;
}

}  // namespace

int FindUser(Session& session) {
    bool anyRow = false;
    const int error =
        FindUserIn(session, "SELECT fPK, fEtx FROM tt WHERE fSec=2 WITH OWNERACCESS OPTION;", {}, anyRow);
    if (error != MessageNumber::NoSuchUser || anyRow) return error;
    session.ports.prompter.Ask(MessageBox(96, BoxIcon::Critical));
    return kQuitProgram;
}

int FindCurrentUser(Session& session) {
    bool anyRow = false;
    return FindUserIn(session, std::string("SELECT fPK, fEtx FROM tt WHERE ") + kOwnRow, {session.user.fPK},
                      anyRow);
}

int WriteUser(Session& session) {
    RandomSource& random = session.ports.random;
    auto rows = session.ProgramDb->OpenRecordset("tt");
    if (!rows) return rows.error().number;
    engine::Recordset& row = **rows;
    // By its key where it has one: the number alone may stand in two rows.
    int error = session.user.fPK != 0 ? row.FindFirst(kOwnRow, {session.user.fPK}) : 0;
    if (error == 0 && (session.user.fPK == 0 || row.NoMatch()))
        error = row.FindFirst("fSec=2 And fSub=?", {session.user.UserNumber});
    if (error != 0) return error;
    const bool added = row.NoMatch();
    if (added) {
        row.AddNew();
        row.SetField("fSec", 2);
        row.SetField("fSub", std::int32_t{session.user.UserNumber});
        row.SetField("AE", 1);
    } else {
        const std::int32_t marks = NumberOf(row.Field("AE"));
        row.Edit();
        row.SetField("AE", marks | 2);
    }
    Bytes payload = UserPayload(session);
    row.SetField("fEtx", cry::PassEncrypt(random, payload, session.PassHash.view()));
    cry::WipeString(payload);
    row.SetField("fT3",
                 cry::VerifierEncrypt(VerifierOf(session.PassHash.view()).view(), session.PassHash.view()) +
                     cry::RandomBytes(random, DrawBelow(random, 6)));
    // fT2 is the PIN record's column: noise only until that is written for the first time.
    FillColumns(row, {.t1 = true, .t2 = added, .r1 = true, .r2 = true, .r3 = true, .r4 = true}, random);
    error = row.Update();
    if (error != 0) return error;
    session.user.fPK = NumberOf(row.Field("fPK"));
    return 0;
}

UserCheck CheckUser(Session& session, const std::string& prompt, bool keepHashes) {
    PassphraseRequest request;
    request.title = PromptTitle(session);
    request.prompt = prompt;
    Secret typed;
    if (!session.ports.prompter.AskSecret(request, typed)) return UserCheck::Cancelled;
    if (!session.ProgramDb) return UserCheck::Cancelled;  // closed by the idle end while the prompt stood
    Secret hash = cry::HashPassphrase(typed.view());
    Secret strong = cry::HashStrong(typed.view());
    typed.Wipe();

    bool right = false;
    if (auto found = session.ProgramDb->Select(
            "SELECT fT3 FROM tt WHERE fSec=2 And fPK=? WITH OWNERACCESS OPTION;", {session.user.fPK});
        found && found->Next()) {
        const Secret verifier = cry::VerifierDecrypt(found->Bytes(0), hash.view());
        right = !verifier.empty() && verifier.view() == VerifierOf(hash.view()).view();
    }
    if (!right) {
        session.ports.prompter.Ask(MessageBox(85, BoxIcon::Warning));
        StandBy(session);
        return UserCheck::Wrong;
    }
    if (keepHashes) {
        session.PassHash = std::move(hash);
        session.PassHashStrong = std::move(strong);
    }
    return UserCheck::Right;
}

bool VerifyUser(Session& session, const std::string& prompt) {
    return CheckUser(session, prompt, false) == UserCheck::Right;
}

int LoadPin(Session& session) {
    Bytes stored;
    {
        auto found =
            session.ProgramDb->Select("SELECT fT2 FROM tt WHERE fSec=2 And fPK=?", {session.user.fPK});
        if (!found) return found.error().number;
        if (found->Next()) stored = found->Bytes(0);
        if (found->error() != 0) return found->error();
    }
    auto pin = NeverSet(stored) ? PinRecord() : DecodePin(session, stored);
    if (pin && pin->Pin.empty() && !session.ProgramDb->ReadOnly()) return SetDefaultPin(session);
    session.pin = pin ? std::move(*pin) : PinRecord();
    session.pin.Unread = !pin;
    return 0;
}

int SetDefaultPin(Session& session) {
    if (!session.PassHashStrong.empty()) {
        Bytes pin = cry::DefaultPin(session.PassHashStrong.view());
        const int error = WritePin(session, 0, pin, 0, false);
        cry::WipeString(pin);
        return error;
    }
    const HashWiper wiper(session);
    switch (CheckUser(session, Msg(159), true)) {
        case UserCheck::Right:
            return SetDefaultPin(session);
        case UserCheck::Wrong:
            return MessageNumber::NoSuchUser;
        case UserCheck::Cancelled:
            break;
    }
    return MessageNumber::Cancelled;
}

int WritePin(Session& session, std::uint8_t kind, std::string_view pin, std::int32_t app, bool everyAccess) {
    auto rows = session.ProgramDb->OpenRecordset("tt");
    if (!rows) return rows.error().number;
    engine::Recordset& row = **rows;
    if (const int error = row.FindFirst(kOwnRow, {session.user.fPK})) return error;
    if (row.NoMatch()) {
        session.ports.prompter.Ask(MessageBox(109, BoxIcon::Critical));
        return kQuitProgram;
    }
    Bytes enciphered = EncodePin(session, kind, pin, app, everyAccess);
    if (enciphered.empty()) return MessageNumber::InputError;
    const std::int32_t marks = NumberOf(row.Field("AE"));
    row.Edit();
    row.SetField("AE", marks | 2);
    row.SetField("fT2", std::move(enciphered));
    if (const int error = row.Update()) return error;
    // `pin` may be the session's own: copied before that goes.
    PinRecord record{kind, Secret(pin), app, everyAccess, false};
    session.pin = std::move(record);
    return 0;
}

PinAnswer PinPrompt(Session& session, const std::string& title) {
    PassphraseRequest request;
    request.title = title;
    request.prompt = Msg(126);
    request.clearCaption = "Show PIN in clear";
    Secret typed;
    if (!session.ports.prompter.AskSecret(request, typed)) return PinAnswer::Cancelled;
    if (typed.view() == session.pin.Pin.view() && !typed.empty()) return PinAnswer::Right;
    session.ports.prompter.Ask(MessageBox(125, BoxIcon::Warning));
    return PinAnswer::Wrong;
}

}  // namespace bmr::custody
