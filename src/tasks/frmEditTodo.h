#pragma once

#include <QDialog>
#include <array>
#include <optional>

#include "kit/editorfields.h"
#include "kit/tabring.h"
#include "tasks/duepicker.h"
#include "tasks/task.h"

class QCheckBox;
class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QPushButton;
class QRadioButton;

namespace bmr::kit {
class DateEdit;
}

namespace bmr::tasks {

/// The editor of one task. It takes values and gives values; whether they are to be stored tells
/// `recordChanged`, which stays set when the form is left by "No" to discarding.
class frmEditTodo final : public QDialog {
    Q_OBJECT

  public:
    /// `key` is that of the task, or store::kNewRecord.
    frmEditTodo(store::Session& session, const EditorValues& values, std::int32_t key,
                QWidget* parent = nullptr);
    ~frmEditTodo() override;

    bool recordChanged = false;
    /// Left by "Save and new": another new task is to follow.
    bool another = false;
    EditorValues Values();

    /// A draft of a new task of which only the first words are there.
    static custody::Draft DraftOf(const QString& task, std::int32_t category);
    /// Those words.
    static QString TaskIn(const custody::Draft& draft);
    /// What the controls hold; nothing when nothing was changed.
    std::optional<custody::Draft> HalfWritten() const;
    /// Puts a draft into the controls, as if it had been typed.
    void Fill(const custody::Draft& draft);

    void reject() override;

  protected:
    bool focusNextPrevChild(bool next) override { return kit::StepFocus(*this, next); }

  private:
    void BuildTexts();
    void BuildChoices();
    void BuildDates();
    void Lay();
    QWidget* MakeButtons();
    bool IsNew() const { return key_ == store::kNewRecord; }
    /// What is no text: priority and dates.
    void ShowChoices(const EditorValues& values);
    void Changed();
    /// Takes dates that are typed but not confirmed. False when one is no date.
    bool CommitDates();
    void DueChanged(std::optional<Day> date);
    void CompletedChanged(std::optional<Day> date);
    void cmdOK_Click();

    store::Session& session_;
    EditorValues values_;
    std::int32_t key_;
    kit::EditorFields fields_;
    DatePickers pickers_;

    QLineEdit* ctlTask;
    QPlainTextEdit* ctlNote;
    std::array<QRadioButton*, 3> ctlPri{};
    QCheckBox* ctlPrivate;
    kit::CategoryField* cboCategory;
    kit::DateEdit* ctlDateDue;
    QLabel* dueError_;
    kit::DateEdit* ctlDateCompleted;
    QLabel* completedError_;
    QPushButton* cmdOK;
    QPushButton* cmdEsc;
};

}  // namespace bmr::tasks
