#pragma once

#include <QWidget>
#include <optional>

#include "base/serialdate.h"

class QCalendarWidget;
class QCheckBox;
class QLineEdit;
class QMenu;
class QToolButton;

namespace bmr::kit {

/// A date that may be none: a check box, a line to type in and a calendar to pick from. Off, it shrinks to
/// its box. Up and Down step by days, PgUp and PgDn by months; what can be typed tells `ReadDate`.
class DateEdit final : public QWidget {
    Q_OBJECT

  public:
    explicit DateEdit(Day today, QWidget* parent = nullptr);
    ~DateEdit() override;

    /// Nothing when the box is off.
    std::optional<Day> Date() const { return date_; }
    /// Sets without telling.
    void SetDate(std::optional<Day> date);

    /// There is always a date: without the box, and an empty line is none.
    void SetRequired();
    /// Dates beyond become the nearer bound.
    void SetRange(Day first, Day last);
    /// What stands beside the box, and names the parts to a screen reader.
    void SetCaption(const QString& caption);

    /// Takes what is typed in the line but not yet confirmed. False when it is no date: it stays in the line,
    /// and `Date` stays what it was.
    bool Commit();
    /// False while the line holds what `Commit` could not take.
    bool Understood() const { return understood_; }
    /// The cursor goes into the line, over what is typed there.
    void FocusLine();

  signals:
    /// The person changed the date, or switched it on or off.
    void DateChanged(std::optional<bmr::Day> date);
    /// The person gave a date, which may lie beyond the range; comes before `DateChanged`.
    void Given(bmr::Day date);
    /// What was typed is no date, which `why` tells in words. It stays in the line until it is mended.
    void NotUnderstood(const QString& why);
    /// A key changed the line, or the date changed: what was said of the line holds no longer.
    void Edited();

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void Take(std::optional<Day> date);
    void Show();
    void Step(int days, int months);
    void OpenCalendar();

    bool required_ = false;
    bool understood_ = true;
    Day today_;
    Day first_{1};
    Day last_{73050};
    std::optional<Day> date_;
    QCheckBox* box_;
    QLineEdit* line_;
    QToolButton* drop_;
};

}  // namespace bmr::kit
