#pragma once

#include <cstdint>
#include <memory>
#include <optional>

#include "store/session.h"
#include "store/undorow.h"

namespace bmr::store {

/// Bracket for what the user can take back as one step. A bracket inside another joins it, and the outer one
/// decides. What is recorded is dropped unless `Keep` is called, after the commit.
///
/// Rows are kept as they stand in the file, still enciphered. The stores and deletes of `section_store` and
/// `bulkadd` record what they do; a caller opens a bracket of its own around several of them, or to give the
/// step its words.
class UndoStep {
  public:
    UndoStep(Session& session, std::uint8_t section, StepWords words = {});
    ~UndoStep();
    UndoStep(const UndoStep&) = delete;
    UndoStep& operator=(const UndoStep&) = delete;

    /// What is to be recorded of the row in hand, in AddNew or Edit with all its columns set.
    std::optional<RowMark> Mark(const engine::Recordset& row) const;
    /// One row was written. `before`: as it stood, null for one that was added; `after`: as it stands, none
    /// for one that is gone.
    void Record(std::int32_t fPK, std::unique_ptr<RowImage> before, const std::optional<RowMark>& after);
    /// So many rows were deleted in all, those that were not recorded for want of room included.
    void CountDeleted(std::size_t rows);
    /// False once the step has outgrown the memory for all steps, or where nothing is recorded: no row need
    /// be read for it.
    bool WantsRows() const { return session_.undo.recording && !session_.undo.open->tooLarge; }
    void Keep();

  private:
    Session& session_;
    bool outer_;
    bool kept_ = false;
};

}  // namespace bmr::store
