#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "base/bytes.h"

namespace bmr::store {

/// A row as it stands in the file, its texts enciphered, for putting it back to the byte.
struct RowImage {
    /// fSec, fSub, fR1 to fR5, fF1 to fF3, fG1 and AE.
    static constexpr std::size_t kNumbers = 12;
    /// fEtx and fT1 to fT3.
    static constexpr std::size_t kTexts = 4;

    std::int32_t fPK = 0;
    std::array<std::optional<std::int32_t>, kNumbers> numbers;
    std::array<std::optional<Bytes>, kTexts> texts;
};

/// A stretch of rows whose order is kept in fR1: section and place of the stretch.
using PlaceKey = std::pair<std::uint8_t, std::int32_t>;

/// Where a row stands in its stretch, with its change marks.
struct RowPlace {
    PlaceKey stretch;
    std::int32_t fR1 = 0;
    std::optional<std::int32_t> AE;
};

/// What one step did to a row.
struct UndoEntry {
    std::int32_t fPK = 0;
    std::unique_ptr<RowImage> before = {};    ///< none: the step added the row
    std::optional<std::uint64_t> after = {};  ///< stamp of what the step left; none: it deleted the row
    /// The row only made room: where it stood, and nothing else of it is the step's.
    std::optional<RowPlace> moved = {};
};

/// The state of such a stretch before a step and after it.
struct PlaceChange {
    std::uint64_t before = 0;
    std::uint64_t after = 0;
};

/// What a step is called: "delete" of 12 memos, 12 memos "deleted". Empty: by what it did to its rows.
struct StepWords {
    std::string noun = {};
    std::string done = {};
    bool alone = false;  ///< the words say it all: "change of the categories"
};

/// One step that can be taken back, or be done again.
struct UndoRecord {
    UndoRecord() = default;
    UndoRecord(UndoRecord&&) = default;
    UndoRecord& operator=(UndoRecord&&) = default;

    std::uint64_t number = 0;  ///< later steps have higher ones
    std::uint8_t section = 0;
    StepWords words;
    bool privateShown = false;  ///< private records were shown when it was made
    bool tooLarge = false;      ///< for the log: it cannot be taken back, and its rows are not here
    std::size_t size = 0;       ///< bytes of memory
    std::size_t rows = 0;       ///< how many it changed
    std::size_t added = 0;      ///< of these, how many were new
    std::size_t deleted = 0;    ///< and how many it deleted
    std::vector<UndoEntry> entries;
    std::map<PlaceKey, PlaceChange> places;
};

/// The steps of one section.
struct UndoStacks {
    std::deque<UndoRecord> done;
    std::deque<UndoRecord> undone;
};

/// All steps since the file was opened.
struct UndoLog {
    /// Bytes of memory that all steps together may take; what one step that takes more has done stays.
    static constexpr std::size_t kMostBytes = std::size_t{16} << 20;
    /// The state of a stretch that it is never in.
    static constexpr std::uint64_t kNever = ~std::uint64_t{0};

    bool recording = true;  ///< false where nobody can take anything back, as on the command line
    std::map<std::uint8_t, UndoStacks> sections;
    std::size_t size = 0;  ///< of all steps
    std::uint64_t lastNumber = 0;

    /// Equal states of a stretch mean that it holds the same rows at the same places. 0 at the opening.
    std::map<PlaceKey, std::uint64_t> places;
    std::uint64_t lastState = 0;

    std::optional<UndoRecord> open;  ///< the step that is being recorded
    std::set<PlaceKey> spread;       ///< stretches in which it has moved rows that are not its own

    /// Ends all steps, as when the file is closed.
    void Reset();
    std::uint64_t StateOf(const PlaceKey& stretch) const;
    std::uint64_t NewState(const PlaceKey& stretch) { return places[stretch] = ++lastState; }
    /// Rows that the open step does not concern were moved to make room: older places in the stretch no
    /// longer hold.
    void TellSpread(const PlaceKey& stretch);
    /// A row that the open step does not concern makes room, and stood here: with the step it goes back.
    /// Without an open step this is `TellSpread`.
    void TellMoved(std::int32_t fPK, const RowPlace& before);
    /// Takes an entry up into the open step; one that thereby outgrows its memory loses all.
    void Append(UndoEntry entry);
    /// The open step becomes the last of its section, which can then not go forward any more. One that is too
    /// large to be taken back ends what came before it: an older step over its head would be no way back.
    void Close();
    /// Puts a step on one of its section's stacks; the oldest go until all fit.
    void Push(std::deque<UndoRecord>& stack, UndoRecord step);
    void Clear(std::deque<UndoRecord>& stack);
};

/// Bytes of memory that an entry takes.
std::size_t SizeOf(const UndoEntry& entry);

}  // namespace bmr::store
