#include "kit/stepedit.h"

#include <QLineEdit>

namespace bmr::kit {

StepEdit::StepEdit(const QString& name, const QString& widest, Step step, QWidget* parent)
    : QAbstractSpinBox(parent), step_(std::move(step)) {
    constexpr int kArrowsAndFrame = 44;
    lineEdit()->setObjectName(name);
    setCorrectionMode(CorrectToPreviousValue);
    setFixedWidth(fontMetrics().horizontalAdvance(widest) + kArrowsAndFrame);
}

void StepEdit::SetText(const QString& text) {
    lineEdit()->setText(text);
}

void StepEdit::stepBy(int steps) {
    QLineEdit& line = *lineEdit();
    const bool whole = line.hasSelectedText() && line.selectedText() == line.text();
    const int place = whole ? 0 : line.cursorPosition();
    line.setText(step_(line.text(), place, steps));
    if (whole)
        line.selectAll();
    else
        line.setCursorPosition(place);
}

}  // namespace bmr::kit
