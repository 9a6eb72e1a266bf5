#pragma once

#include <cstdint>
#include <optional>
#include <unordered_map>
#include <vector>

#include "address/payloadsource.h"
#include "address/searchwords.h"
#include "store/session.h"

namespace bmr::address {

/// The search of the list as one types, in slices between which a window stays alive. Names and contacts are
/// looked through first, from memory where they were read already; then, from the third letter on, every
/// field. What it holds is wiped with `ForgetTexts`, which whoever owns it calls after a while, at a lock and
/// at the close. It reads the rows as they stand when it is made: after a change begin another.
class AddressSearch {
  public:
    /// `keys` in the order of the list; nothing else is found.
    AddressSearch(store::Session& session, std::vector<std::int32_t> keys, LocaleFacts locale);

    /// Begins anew with what stands in the search line; a running search is dropped.
    void Look(std::string_view typed);

    /// Goes on for some thousand rows. False when all is found, or on an error.
    bool Step();

    bool Done() const { return phase_ == Phase::Done; }
    int error() const { return error_; }
    /// What was found so far, in the order of the list; all of it where nothing is looked for.
    std::vector<std::int32_t> Found() const;
    std::size_t FoundCount() const { return count_; }
    /// Share of the work that is done, 0 to 1.
    double Progress() const;
    const SearchWords& Words() const { return words_; }

    /// Wipes the names and contacts that it holds; a running search reads them again.
    void ForgetTexts();
    bool HoldsTexts() const { return !chunks_.empty(); }

  private:
    enum class Phase : std::uint8_t { Columns, Fields, Done };

    /// Names and contacts of some rows, one behind the other in memory that is wiped.
    struct Chunk {
        struct Row {
            std::uint32_t place = 0;
            std::uint32_t letters = 0;  ///< where they end
            std::uint32_t digits = 0;   ///< and these
        };
        std::vector<Row> rows;
        WipedText text;
    };

    bool ReadChunk();
    void LookInChunk(const Chunk& chunk);
    bool LookInFields();
    void BeginFields();
    void Take(std::size_t place);
    bool Fail(int error);

    store::Session& session_;
    std::vector<std::int32_t> keys_;
    LocaleFacts locale_;
    std::unordered_map<std::int32_t, std::uint32_t> places_;
    SearchWords words_{""};
    Phase phase_ = Phase::Done;
    std::vector<bool> found_;
    std::size_t count_ = 0;
    std::vector<Chunk> chunks_;
    std::size_t chunk_ = 0;  ///< the next to be looked through
    bool allRead_ = false;   ///< every name and contact is in the chunks
    std::optional<engine::Cursor> cursor_;
    std::optional<PayloadSource> payloads_;
    int error_ = 0;
};

}  // namespace bmr::address
