#pragma once

#include <QObject>
#include <QPalette>
#include <cstdint>

class QApplication;

namespace bmr::kit {

/// How the windows are coloured. System follows the lightness of the desktop's own window colour.
enum class ThemeChoice : std::uint8_t { System, Light, Dark, HighContrast };

/// Style and palette of the whole program, and a rule for its windows: none is larger than the screen or
/// comes up beyond its edge. One object, made right after the application and before any window.
class Theme final : public QObject {
    Q_OBJECT

  public:
    explicit Theme(QApplication& app);

    ThemeChoice Choice() const { return choice_; }
    /// Colours every window anew.
    void Choose(ThemeChoice choice);

    /// "system", "light", "dark", "contrast"; anything else is System.
    static ThemeChoice FromName(const QString& name);
    static QString NameOf(ThemeChoice choice);

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    QApplication& app_;
    QPalette desktop_;  ///< as it was before we set our own
    ThemeChoice choice_ = ThemeChoice::System;
};

}  // namespace bmr::kit
