#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

#include "custody/drafts.h"

class QCheckBox;
class QDialog;
class QString;
class QWidget;

namespace bmr {
class SectionForm;
}

namespace bmr::kit {

/// How a round with an editor ended.
enum class EditEnd : std::uint8_t {
    Stored,
    GivenUp,
    Closed,  ///< the program or the database went: touch neither record nor screen
};

/// The round of a section's screen with its editor. One for each screen; it owns the screen's hidden box
/// `recordChanged`, by which the editor tells whether there is something to store.
class EditRound {
  public:
    EditRound(store::Session& session, SectionForm& form);

    /// True while an editor is open.
    bool Open() const { return open_; }
    /// What the open editor holds that is not stored.
    std::vector<custody::Draft> Drafts() const;

    /// Shows the editor, with a draft filled with it, until its record is stored, given up, or the database
    /// closed. Once it has closed with `recordChanged` set, `write` takes its record and stores it: 0 or an
    /// error number, which is told behind `failure` ("The memo was not stored."); what could not be stored
    /// stays in the editor. Settles the draft.
    template <class Editor>
    EditEnd EditUntilStored(Editor& editor, const custody::Draft* draft, const QString& failure,
                            const std::function<int()>& write) {
        if (draft) editor.Fill(*draft);
        halfWritten_ = [&editor] { return editor.HalfWritten(); };
        return Run(editor, editor.recordChanged, failure, write);
    }

  private:
    EditEnd Run(QDialog& editor, const bool& changed, const QString& failure,
                const std::function<int()>& write);
    EditEnd Repeat(QDialog& editor, const bool& changed, const QString& failure,
                   const std::function<int()>& write);
    bool Closed() const;

    store::Session& session_;
    SectionForm& form_;
    QCheckBox* recordChanged;
    bool open_ = false;
    std::function<std::optional<custody::Draft>()> halfWritten_;
};

}  // namespace bmr::kit
