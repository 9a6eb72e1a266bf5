#pragma once

#include <QAction>
#include <QList>
#include <QMenu>
#include <QString>
#include <QWidget>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <vector>

#include "custody/drafts.h"

namespace bmr {

namespace kit {
class EditRound;
class ListPane;
}  // namespace kit
namespace store {
enum class UndoWay : std::uint8_t;
struct Session;
}  // namespace store

/// What the main window asks of a section's screen. A section form is made when its section is opened and
/// deleted when it is closed; its destructor stores what the section keeps (the last category) in the
/// session.
class SectionForm : public QWidget {
    Q_OBJECT

  public:
    using QWidget::QWidget;

    /// The section's own menu ("&Task"), owned by the form; shown between View and Tools.
    virtual QMenu* SectionMenu() = 0;

    /// Toolbar entries in order, null for a separator. The same actions stand in the menu; each has an icon,
    /// a short text and its shortcut.
    virtual QList<QAction*> ToolActions() = 0;

    /// `ShowPrivate` or another setting changed: rebuild what is shown, keep the selection.
    virtual void Refresh() = 0;

    /// Narrows the list to rows that hold `text` in what the list shows; empty shows all again.
    virtual void SetSearch(const QString& text) = 0;

    /// The section's page in the user guide: its file without ".md".
    virtual QString HelpPage() const { return "index"; }

    /// Selects a record of the section by its key, changing the category filter where that is needed.
    virtual void SelectRecord(std::int32_t fPK) = 0;

    /// The section's list; none where it has another face.
    virtual kit::ListPane* Pane() const { return nullptr; }

    /// The section whose step is the one to take back, or to do again, now; none: the form's own. Where a
    /// form changes records of another section too, the last change that was made in it is meant.
    virtual std::optional<std::uint8_t> StepSection(store::UndoWay) const { return std::nullopt; }

    /// A step of that section was taken back, or done again: shows what stands now, chooses one of the rows
    /// of those keys and says the words. For forms without a list; with one the main window does it.
    virtual void ShowTaken(std::uint8_t /*section*/, const std::vector<std::int32_t>&, const QString&) {}

    /// True while a record of the section is open in an editor.
    virtual bool Editing() const { return false; }

    /// What the open editor holds that is not stored, and behind it what else was begun. Asked for when the
    /// form closes or the program ends and nobody can be: shows nothing and changes nothing.
    virtual std::vector<custody::Draft> Drafts() const { return {}; }

    /// Puts back what `Drafts` told of this section when its form was closed for another's.
    virtual void Resume(const std::vector<custody::Draft>&) {}

    /// Opens the editor filled with a draft of this section, whose record stands if it has a key. Returns
    /// when the editor has closed.
    virtual void OpenDraft(const custody::Draft&) {}

  signals:
    /// An editor has closed, and its record was stored or the user has discarded it: a draft that it was
    /// opened with is done with.
    void DraftSettled();
    /// The list shows all again, though the search field was not emptied.
    void SearchEnded();
    /// The section's last step is to be taken back.
    void UndoWanted();
    /// The words at the left of the status bar: count and selection.
    void StatusChanged(const QString& text);
};

/// What forms are given beside the session.
struct FormPorts {
    /// Puts a secret into the clipboard, under its guard.
    std::function<void(const QString& secret)> copySecret;
    /// Opens the editor of a task in the round of the form that asks. True when something was stored.
    std::function<bool(store::Session& session, kit::EditRound& round, std::int32_t key, QWidget* parent)>
        editTask;
};

/// The screens that the program has, by the codes of their sections.
using SectionFactory = std::function<SectionForm*(store::Session& session, QWidget* parent)>;
using SectionTable = std::map<std::uint8_t, SectionFactory>;

}  // namespace bmr
