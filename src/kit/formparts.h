#pragma once

#include <QLabel>
#include <QPlainTextEdit>
#include <QString>

class QAction;
class QPushButton;

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

/// The text of a field to the letter, lines ended by "\n". The field's own `toPlainText` would turn every
/// no-break space into a blank.
QString PlainText(const QPlainTextEdit& edit);

/// The characters of a text that the record format cannot hold are underlined where they stand.
void MarkUnmappable(QPlainTextEdit& edit);

}  // namespace bmr::kit
