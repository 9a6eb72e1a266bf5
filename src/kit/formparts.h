#pragma once

#include <QAction>
#include <QKeySequence>
#include <QLabel>
#include <QPlainTextEdit>
#include <QString>
#include <functional>

class QAbstractButton;
class QCheckBox;
class QDialog;
class QDialogButtonBox;
class QLineEdit;
class QMessageBox;
class QPushButton;
class QToolButton;

namespace bmr::kit {

/// A line below a field for what is wrong with it; hidden until it has something to say.
QLabel* MakeErrorLine(const char* name);

/// A field with its error line below, as one row of a form.
QWidget* WithError(QWidget* field, QLabel* error);

/// A caption whose mnemonic leads to its field.
QLabel* MakeLabel(const QString& text, QWidget* buddy);

/// A caption that is larger than the rest.
QLabel* MakeHeading(const char* name);

/// A button that does what the action does, with its short text, icon and tip.
QPushButton* MakeButton(const char* name, QAction* action);

/// An entry of a screen's menu as it is made.
struct Command {
    const char* name;
    QString text;
    const char* icon = nullptr;
    QString brief = {};          ///< what its button and the toolbar say
    QKeySequence shortcut = {};  ///< acts in the screen's window only, the toolbar notwithstanding
};
QAction* MakeAction(QWidget& form, const Command& command);
/// The same, and what it does.
template <class Form>
QAction* MakeAction(Form& form, const Command& command, void (Form::*slot)()) {
    QAction* action = MakeAction(form, command);
    QObject::connect(action, &QAction::triggered, &form, slot);
    return action;
}

/// A button of one icon that the keyboard reaches; its tip is also its name.
QToolButton* MakeIconButton(const QString& name, const char* icon, const QString& tip);

QLineEdit* MakeLineField(const char* name, const QString& accessibleName);
/// A field that has nothing of its own to take back leaves Ctrl+Z and Ctrl+Shift+Z to the window.
void LeaveUndoToWindow(QLineEdit& field);
/// A field of many lines, which Tab leaves.
QPlainTextEdit* MakeTextField(const char* name, const QString& accessibleName);
/// The mark of a private record, in an editor.
QCheckBox* MakePrivateBox();

/// A field for a secret: in letters of one width, so that an l is no I.
void SetMonospaced(QWidget& field, bool on = true);

/// The foot of an editor. Cancel rejects; Ctrl+Return saves from anywhere in the editor.
struct SaveCancel {
    QDialogButtonBox* box;
    QPushButton* cmdOK;
    QPushButton* cmdEsc;
};
SaveCancel MakeSaveCancel(QDialog& editor, std::function<void()> save);

/// Gives each button at the foot of a dialog a letter to be pressed by, which nothing else in the dialog has.
/// Call once all is laid out.
void GiveLetters(QDialog& dialog);

/// The last touch to a message box: room around its text, and a letter for each button.
void FinishBox(QMessageBox& box);

/// Shows or hides an error line; true when there is nothing to say.
bool Tell(QLabel& line, const QString& why);

/// The text of a field to the letter, lines ended by "\n". The field's own `toPlainText` would turn every
/// no-break space into a blank.
QString PlainText(const QPlainTextEdit& edit);

/// The height at which a field shows that many lines and no more.
int HeightOfLines(const QPlainTextEdit& edit, int lines);

}  // namespace bmr::kit
