#pragma once

#include <QDialog>
#include <array>
#include <functional>
#include <optional>

#include "custody/drafts.h"
#include "tasks/duepicker.h"
#include "tasks/task.h"

class QCheckBox;
class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QPushButton;
class QRadioButton;

namespace bmr::kit {
class CategoryField;
class DateEdit;
}  // namespace bmr::kit

namespace bmr::tasks {

/// The editor of one task. It takes values and gives values; whether they are to be stored tells
/// `recordChanged`, which stays set when the form is left by "No" to discarding.
class frmEditTodo final : public QDialog {
    Q_OBJECT

  public:
    frmEditTodo(store::Session& session, const EditorValues& values, bool isNew, QWidget* parent = nullptr);
    ~frmEditTodo() override;

    bool recordChanged = false;
    /// Left by "Save and new": another new task is to follow.
    bool another = false;
    EditorValues Values() const;

    /// A draft of a new task; the texts of `choices` are not looked at.
    static custody::Draft DraftOf(const EditorValues& choices, const QString& task, const QString& note);
    /// What the controls hold; nothing when nothing was changed. The record's key is the caller's to add.
    std::optional<custody::Draft> HalfWritten() const;
    /// Puts a draft into the controls, as if it had been typed.
    void Fill(const custody::Draft& draft);

    /// The editor comes up as if its values had been changed already (a store of them failed).
    void MarkChanged();

    void reject() override;

  private:
    void BuildTexts();
    void BuildChoices();
    void BuildDates();
    void Lay(bool isNew);
    QWidget* MakeButtons(bool isNew);
    void recordToEditor(const EditorValues& values);
    void ShowChoices(const EditorValues& values);
    void Changed();
    /// Takes dates that are typed but not confirmed. False when one is no date.
    bool CommitDates();
    void DueChanged(std::optional<Day> date);
    void CompletedChanged(std::optional<Day> date);
    /// Marks in words what cannot be stored; true when everything can.
    bool Storable();
    void cmdOK_Click();
    void cmdEsc_Click();

    store::Session& session_;
    DatePickers pickers_;
    bool crlf_ = true;         ///< line ends of the note as they are kept
    bool filling_ = false;     ///< controls are set by us
    bool wasPrivate_ = false;  ///< as the record came
    bool refused_ = false;     ///< the last try to store found what cannot be

    QLineEdit* ctlTask;
    QLabel* lblTaskError;
    QPlainTextEdit* ctlNote;
    QLabel* lblNoteError;
    std::array<QRadioButton*, 3> ctlPri{};
    QCheckBox* ctlPrivate;
    kit::CategoryField* cboCategory;
    kit::DateEdit* ctlDateDue;
    QLabel* lblDueError;
    kit::DateEdit* ctlDateCompleted;
    QLabel* lblCompletedError;
    QPushButton* cmdOK;
    QPushButton* cmdEsc;
};

}  // namespace bmr::tasks
