#include "address/search.h"

#include <algorithm>

#include "address/record.h"
#include "address/telephone.h"
#include "store/section_store.h"

namespace bmr::address {
namespace {

/// Rows that are read, and texts that are deciphered, between two looks of the window.
constexpr std::size_t kReadStep = 16384;
constexpr std::size_t kDecipherStep = 16384;

}  // namespace

AddressSearch::AddressSearch(store::Session& session, std::vector<std::int32_t> keys, LocaleFacts locale)
    : session_(session), keys_(std::move(keys)), locale_(std::move(locale)) {
    places_.reserve(keys_.size());
    for (std::size_t place = 0; place < keys_.size(); ++place)
        places_.emplace(keys_[place], static_cast<std::uint32_t>(place));
    Look("");
}

void AddressSearch::Look(std::string_view typed) {
    words_ = SearchWords(typed);
    error_ = 0;
    payloads_.reset();
    found_.assign(keys_.size(), words_.empty());
    count_ = words_.empty() ? keys_.size() : 0;
    if (words_.empty())
        phase_ = Phase::Done;
    else if (!words_.InColumns())
        BeginFields();
    else
        phase_ = Phase::Columns;
}

bool AddressSearch::Step() {
    switch (phase_) {
        case Phase::Columns:
            // What is held already is looked through at once.
            for (std::size_t place = 0; place < rows_.size(); ++place)
                LookAt(place);
            phase_ = allCiphered_ ? Phase::Decipher : Phase::Read;
            if (allCiphered_ && deciphered_ == ciphered_.size()) LeaveColumns();
            return !Done();
        case Phase::Read:
            return ReadSome();
        case Phase::Decipher:
            return DecipherSome();
        case Phase::Fields:
            return LookInFields();
        case Phase::Done:
            return false;
    }
    return false;
}

bool AddressSearch::ReadSome() {
    if (!session_.ProgramDb) return Fail(engine::EngineNumber::Failed);
    if (!cursor_) {
        auto cursor = session_.ProgramDb->Select("SELECT fPK, fT1, fT2 FROM tt WHERE fSec=" +
                                                 std::to_string(kRecords.section) + store::kOwnerAccess);
        if (!cursor) return Fail(cursor.error().number);
        cursor_.emplace(std::move(*cursor));
        rows_.resize(keys_.size());
    }
    const auto add = [this](std::string_view text, std::uint32_t place, bool isContact) {
        const unsigned selector = text.size() < 2 ? 0 : ByteAt(text, 0) << 8 | ByteAt(text, 1);
        ciphered_.push_back({static_cast<std::uint16_t>(selector), isContact, place,
                             static_cast<std::uint32_t>(arena_.size()),
                             static_cast<std::uint32_t>(text.size())});
        arena_.append(text);
    };
    for (std::size_t read = 0; read < kReadStep; ++read) {
        if (!cursor_->Next()) {
            if (cursor_->error() != 0) return Fail(cursor_->error());
            cursor_.reset();
            allCiphered_ = true;
            // Texts of one selector share a key schedule, which is most of the work.
            std::ranges::sort(ciphered_, {}, &Ciphered::selector);
            phase_ = Phase::Decipher;
            break;
        }
        const auto place = places_.find(cursor_->Int(0));
        if (place == places_.end()) continue;
        add(cursor_->Bytes(1), place->second, false);
        add(cursor_->Bytes(2), place->second, true);
    }
    return true;
}

bool AddressSearch::DecipherSome() {
    std::size_t end = std::min(deciphered_ + kDecipherStep, ciphered_.size());
    while (end > deciphered_ && end < ciphered_.size() &&
           ciphered_[end].selector == ciphered_[end - 1].selector)
        ++end;
    std::vector<std::string_view> views;
    views.reserve(end - deciphered_);
    for (std::size_t i = deciphered_; i < end; ++i)
        views.push_back(std::string_view(arena_).substr(ciphered_[i].begin, ciphered_[i].size));
    WipedText& text = chunks_.emplace_back();
    text.Reserve(arena_.size() * views.size() / std::max<std::size_t>(ciphered_.size(), 1));
    cry::DecipherBatch(session_.cipher, views, [&](std::size_t i, std::string_view plain) {
        const Ciphered& each = ciphered_[deciphered_ + i];
        Row& row = rows_[each.place];
        Piece& piece = each.isContact ? row.contact : row.name;
        piece.chunk = static_cast<std::uint32_t>(chunks_.size() - 1);
        piece.begin = static_cast<std::uint32_t>(text.size());
        AppendSearchLetters(text, TrimBlanks(plain));
        piece.size = static_cast<std::uint32_t>(text.size()) - piece.begin;
        piece.isRead = true;
    });
    for (std::size_t i = deciphered_; i < end; ++i)
        LookAt(ciphered_[i].place);
    deciphered_ = end;
    if (deciphered_ < ciphered_.size()) return true;
    ciphered_.clear();
    arena_.clear();
    arena_.shrink_to_fit();
    deciphered_ = 0;
    LeaveColumns();
    return !Done();
}

std::string_view AddressSearch::LettersOf(const Piece& piece) const {
    if (!piece.isRead) return {};
    return std::string_view(chunks_[piece.chunk]).substr(piece.begin, piece.size);
}

void AddressSearch::LookAt(std::size_t place) {
    if (found_[place]) return;
    const std::string_view contact = LettersOf(rows_[place].contact);
    const WipedText digits = words_.WantsDigits() ? DigitsOf(contact) : WipedText();
    if (words_.Matches(LettersOf(rows_[place].name), contact, digits)) Take(place);
}

void AddressSearch::LeaveColumns() {
    if (words_.InFields())
        BeginFields();
    else
        phase_ = Phase::Done;
}

void AddressSearch::BeginFields() {
    std::vector<std::int32_t> left;
    left.reserve(keys_.size() - count_);
    for (std::size_t place = 0; place < keys_.size(); ++place)
        if (!found_[place]) left.push_back(keys_[place]);
    payloads_.emplace(session_, std::move(left), PayloadSource::Step::Small);
    phase_ = Phase::Fields;
}

bool AddressSearch::LookInFields() {
    if (!session_.ProgramDb) return Fail(engine::EngineNumber::Failed);
    const bool more = payloads_->Next([this](const PayloadRow& row) {
        if (words_.MatchesPayload(row.name, row.payload, locale_)) Take(places_.at(row.key));
    });
    if (more) return true;
    if (payloads_->error() != 0) return Fail(payloads_->error());
    payloads_.reset();
    phase_ = Phase::Done;
    return false;
}

void AddressSearch::Take(std::size_t place) {
    if (!found_[place]) ++count_;
    found_[place] = true;
}

bool AddressSearch::Fail(int error) {
    error_ = error;
    phase_ = Phase::Done;
    cursor_.reset();
    payloads_.reset();
    ForgetTexts();
    return false;
}

std::vector<std::int32_t> AddressSearch::Found() const {
    std::vector<std::int32_t> keys;
    keys.reserve(count_);
    for (std::size_t place = 0; place < keys_.size(); ++place)
        if (found_[place]) keys.push_back(keys_[place]);
    return keys;
}

double AddressSearch::Progress() const {
    const auto share = [](std::size_t part, std::size_t all) {
        return all == 0 ? 1 : static_cast<double>(part) / static_cast<double>(all);
    };
    switch (phase_) {
        case Phase::Read:
        case Phase::Columns:
            return 0.05 * share(std::min(ciphered_.size() / 2, keys_.size()), keys_.size());
        case Phase::Decipher:
            return 0.05 + 0.15 * share(deciphered_, ciphered_.size());
        case Phase::Fields:
            return 0.2 + 0.8 * (1 - share(std::min(payloads_->Left(), keys_.size()), keys_.size()));
        case Phase::Done:
            break;
    }
    return 1;
}

void AddressSearch::ForgetTexts() {
    chunks_.clear();
    rows_.clear();
    ciphered_.clear();
    arena_.clear();
    deciphered_ = 0;
    allCiphered_ = false;
    cursor_.reset();
    if (phase_ == Phase::Read || phase_ == Phase::Decipher) phase_ = Phase::Columns;
}

}  // namespace bmr::address
