#include "address/search.h"

#include <algorithm>

#include "address/record.h"
#include "store/section_store.h"

namespace bmr::address {
namespace {

constexpr std::size_t kChunk = 4096;

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
    chunk_ = 0;
    found_.assign(keys_.size(), words_.empty());
    count_ = words_.empty() ? keys_.size() : 0;
    phase_ = words_.empty() ? Phase::Done : Phase::Columns;
    if (phase_ == Phase::Columns && !words_.InColumns()) BeginFields();
}

bool AddressSearch::Step() {
    switch (phase_) {
        case Phase::Columns:
            // What is held already is looked through at once.
            for (; chunk_ < chunks_.size(); ++chunk_)
                LookInChunk(chunks_[chunk_]);
            if (!allRead_) return ReadChunk();
            if (words_.InFields())
                BeginFields();
            else
                phase_ = Phase::Done;
            return !Done();
        case Phase::Fields:
            return LookInFields();
        case Phase::Done:
            return false;
    }
    return false;
}

bool AddressSearch::ReadChunk() {
    if (!session_.ProgramDb) return Fail(engine::EngineNumber::Failed);
    if (!cursor_) {
        auto cursor = session_.ProgramDb->Select("SELECT fPK, fT1, fT2 FROM tt WHERE fSec=" +
                                                 std::to_string(kRecords.section) + store::kOwnerAccess);
        if (!cursor) return Fail(cursor.error().number);
        cursor_.emplace(std::move(*cursor));
    }
    Chunk chunk;
    std::vector<Bytes> ciphered;
    ciphered.reserve(2 * kChunk);
    while (chunk.rows.size() < kChunk && cursor_->Next()) {
        const auto place = places_.find(cursor_->Int(0));
        if (place == places_.end()) continue;
        chunk.rows.push_back({place->second});
        ciphered.emplace_back(cursor_->Bytes(1));
        ciphered.emplace_back(cursor_->Bytes(2));
    }
    if (cursor_->error() != 0) return Fail(cursor_->error());
    if (chunk.rows.size() < kChunk) {
        allRead_ = true;
        cursor_.reset();
    }
    WipedText name;
    const std::vector<std::string_view> views(ciphered.begin(), ciphered.end());
    cry::DecipherBatch(session_.cipher, views, [&](std::size_t i, std::string_view plain) {
        if (i % 2 == 0) {
            name = plain;
            return;
        }
        const SearchText text = SearchTextOf(name, plain);
        chunk.text += text.letters;
        chunk.rows[i / 2].letters = static_cast<std::uint32_t>(chunk.text.size());
        chunk.text += text.digits;
        chunk.rows[i / 2].digits = static_cast<std::uint32_t>(chunk.text.size());
    });
    LookInChunk(chunk);
    chunks_.push_back(std::move(chunk));
    chunk_ = chunks_.size();
    return true;
}

void AddressSearch::LookInChunk(const Chunk& chunk) {
    const std::string_view all = chunk.text;
    std::uint32_t begin = 0;
    for (const Chunk::Row& row : chunk.rows) {
        if (words_.Matches(all.substr(begin, row.letters - begin),
                           all.substr(row.letters, row.digits - row.letters)))
            Take(row.place);
        begin = row.digits;
    }
}

void AddressSearch::BeginFields() {
    std::vector<std::int32_t> left;
    left.reserve(keys_.size() - count_);
    for (std::size_t place = 0; place < keys_.size(); ++place)
        if (!found_[place]) left.push_back(keys_[place]);
    payloads_.emplace(session_, std::move(left));
    phase_ = Phase::Fields;
}

bool AddressSearch::LookInFields() {
    if (!session_.ProgramDb) return Fail(engine::EngineNumber::Failed);
    const bool more =
        payloads_->Next([this](std::int32_t key, std::string_view payload, std::string_view name) {
            if (words_.MatchesPayload(name, payload, locale_)) Take(places_.at(key));
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
    if (phase_ == Phase::Done || keys_.empty()) return 1;
    const auto share = [this](std::size_t part) {
        return static_cast<double>(part) / static_cast<double>(keys_.size());
    };
    if (phase_ == Phase::Columns) return share(std::min(chunk_ * kChunk, keys_.size())) * 0.2;
    return 0.2 + 0.8 * (1 - share(std::min(payloads_->Left(), keys_.size())));
}

void AddressSearch::ForgetTexts() {
    chunks_.clear();
    chunk_ = 0;
    allRead_ = false;
    cursor_.reset();
}

}  // namespace bmr::address
