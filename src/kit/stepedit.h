#pragma once

#include <QAbstractSpinBox>
#include <functional>

namespace bmr::kit {

/// A short text with two arrows that step it: typed freely and judged by whoever reads it, stepped by the
/// arrows, the Up and Down keys and the wheel.
class StepEdit final : public QAbstractSpinBox {
    Q_OBJECT

  public:
    /// What `text` becomes by `by` steps. `place` is the character that the cursor stands before; 0 while all
    /// of it is selected.
    using Step = std::function<QString(const QString& text, int place, int by)>;

    /// `widest` is the longest usual text. `name` becomes the name of the inner line.
    StepEdit(const QString& name, const QString& widest, Step step, QWidget* parent = nullptr);

    void SetText(const QString& text);
    void stepBy(int steps) override;

  protected:
    StepEnabled stepEnabled() const override { return StepUpEnabled | StepDownEnabled; }

  private:
    Step step_;
};

}  // namespace bmr::kit
