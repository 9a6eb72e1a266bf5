#include "store/privatefilter.h"

#include <algorithm>

#include "crypto/cry.h"
#include "store/fieldtable.h"
#include "store/record_get.h"
#include "store/section_store.h"
#include "store/sections.h"
#include "store/words.h"

namespace bmr::store {

bool IsRecordPrivate(cry::CipherState& cipher, std::string_view text, std::uint8_t section) {
    return IsPayloadPrivate(cry::DecipherField(cipher, text), section);
}

bool IsPayloadPrivate(std::string_view payload, std::uint8_t section) {
    const SectionFacts* facts = FactsOf(section);
    const Value flag = facts ? GetPayloadField(payload, facts->privateField) : Value();
    const auto* isPrivate = std::get_if<bool>(&flag);
    return isPrivate == nullptr || *isPrivate;
}

void PrivateBatch::Add(std::string_view text) {
    constexpr std::size_t kPiece = std::size_t{1} << 20;
    if (pieces_.empty() || pieces_.back().capacity() - pieces_.back().size() < text.size()) {
        pieces_.emplace_back();
        pieces_.back().reserve(std::max(kPiece, text.size()));
    }
    std::string& piece = pieces_.back();
    piece.append(text);
    texts_.emplace_back(piece.data() + piece.size() - text.size(), text.size());
    size_ += text.size();
}

void PrivateBatch::Decipher(Session& session,
                            const std::function<void(std::size_t index, std::string_view plain)>& each) {
    cry::DecipherBatch(session.cipher, texts_, each);
    pieces_.clear();
    texts_.clear();
    size_ = 0;
}

void PrivateBatch::Test(Session& session, std::uint8_t section,
                        const std::function<void(std::size_t index, bool isPrivate)>& each) {
    Decipher(session, [&](std::size_t index, std::string_view plain) {
        each(index, IsPayloadPrivate(plain, section));
    });
}

Result<std::unordered_set<std::int32_t>> RecordsWhere(
    Session& session, std::uint8_t section, const std::string& clauses, const std::string& column,
    const std::function<bool(std::string_view plain)>& test) {
    auto cursor = session.ProgramDb->Select(
        "SELECT fPK, " + column + " FROM tt WHERE fSec=" + std::to_string(section) + clauses + kOwnerAccess);
    if (!cursor) return cursor.error();
    std::unordered_set<std::int32_t> found;
    PrivateBatch batch;
    std::vector<std::int32_t> keys;
    const auto testBatch = [&] {
        batch.Decipher(session, [&](std::size_t index, std::string_view plain) {
            if (test(plain)) found.insert(keys[index]);
        });
        keys.clear();
    };
    while (cursor->Next()) {
        keys.push_back(cursor->Int(0));
        batch.Add(cursor->Bytes(1));
        if (batch.Full()) testBatch();
    }
    if (cursor->error() != 0) return Error{cursor->error(), session.ProgramDb->LastError()};
    testBatch();
    return found;
}

Result<std::unordered_set<std::int32_t>> PrivateRecords(Session& session, std::uint8_t section,
                                                        const std::string& clauses) {
    return RecordsWhere(session, section, clauses, "fEtx",
                        [section](std::string_view plain) { return IsPayloadPrivate(plain, section); });
}

WipedText NameOf(Session& session, std::uint8_t nameField, std::int32_t fPK) {
    const Bytes ciphered = CipheredName(session, fPK);
    const std::string_view plain = cry::DecipherField(session.cipher, ciphered);
    if (ciphered.empty()) return {};
    if (!IsMarked(plain)) return ToUtf8(TrimBlanks(plain));
    const WipedText column(plain);
    auto record = session.ProgramDb->Select("SELECT fEtx FROM tt WHERE fPK=?", {fPK});
    if (!record || !record->Next()) return {};
    return ReadWords(cry::DecipherField(session.cipher, record->Bytes(0)), nameField, column);
}

Result<std::unordered_set<std::int32_t>> RecordsNamed(Session& session, std::uint8_t section,
                                                      std::uint8_t nameField, const std::string& clauses,
                                                      std::string_view search) {
    const Needle needle(search);
    auto found = RecordsWhere(session, section, clauses, "fT1", [&needle](std::string_view plain) {
        return needle.InTold(TrimBlanks(plain)) && (!needle.AsksTrueText() || IsMarked(plain));
    });
    if (found && needle.AsksTrueText())
        std::erase_if(*found,
                      [&](std::int32_t fPK) { return !needle.InTrue(NameOf(session, nameField, fPK)); });
    return found;
}

int ListFilter::Load(Session& session, std::uint8_t section, std::uint8_t nameField,
                     const std::string& clauses, std::string_view search) {
    searching_ = !search.empty();
    const auto keep = [](const Result<std::unordered_set<std::int32_t>>& keys,
                         std::unordered_set<std::int32_t>& kept) {
        if (!keys) return keys.error().number;
        kept = *keys;
        return 0;
    };
    if (!session.ShowPrivate)
        if (const int error = keep(PrivateRecords(session, section, clauses), hidden_); error != 0)
            return error;
    return searching_ ? keep(RecordsNamed(session, section, nameField, clauses, search), matching_) : 0;
}

}  // namespace bmr::store
