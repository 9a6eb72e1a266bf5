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
    bool HoldsTexts() const { return !chunks_.empty() || cursor_ || !ciphered_.empty(); }

  private:
    /// Names and contacts are read as they stand, then deciphered, then looked through.
    enum class Phase : std::uint8_t { Read, Decipher, Columns, Fields, Done };

    /// A text as it stands in the file.
    struct Ciphered {
        std::uint16_t selector = 0;
        bool isContact = false;
        std::uint32_t place = 0;
        std::uint32_t begin = 0;
        std::uint32_t size = 0;
    };
    /// Where the letters of a text lie.
    struct Piece {
        std::uint32_t chunk = 0;
        std::uint32_t begin = 0;
        std::uint32_t size = 0;
        bool isRead = false;
    };
    struct Row {
        Piece name;
        Piece contact;
    };

    bool ReadSome();
    bool DecipherSome();
    void LookAt(std::size_t place);
    void LeaveColumns();
    bool LookInFields();
    void BeginFields();
    void Take(std::size_t place);
    bool Fail(int error);
    std::string_view LettersOf(const Piece& piece) const;

    store::Session& session_;
    std::vector<std::int32_t> keys_;
    LocaleFacts locale_;
    std::unordered_map<std::int32_t, std::uint32_t> places_;
    SearchWords words_{""};
    Phase phase_ = Phase::Done;
    std::vector<bool> found_;
    std::size_t count_ = 0;

    std::optional<engine::Cursor> cursor_;
    std::string arena_;               ///< the texts of `ciphered_`
    std::vector<Ciphered> ciphered_;  ///< by their selectors once all are read
    std::size_t deciphered_ = 0;      ///< of these
    bool allCiphered_ = false;        ///< every text was read
    std::vector<Row> rows_;           ///< by their places
    std::vector<WipedText> chunks_;
    std::optional<PayloadSource> payloads_;
    int error_ = 0;
};

}  // namespace bmr::address
