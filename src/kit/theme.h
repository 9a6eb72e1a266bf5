#pragma once

#include <QColor>
#include <QPalette>
#include <cstdint>

namespace bmr::kit {

/// Distances in device-independent pixels, all in steps of 4.
struct Space {
    static constexpr int Tight = 4;    ///< icon and text, rows of one group
    static constexpr int Row = 8;      ///< rows of a form
    static constexpr int Margin = 12;  ///< edge of a window
    static constexpr int Group = 16;   ///< groups of a form
};

/// Sizes of text as factors of the desktop's font.
inline constexpr double kSmallText = 0.9;
inline constexpr double kHeadingText = 1.2;

/// A category's pale ground and the strong colour of its stripe.
struct Tint {
    QColor ground;
    QColor stripe;
};

/// Inks that a palette has no role for.
enum class Ink : std::uint8_t { Alarm, Warning, Good, Accent, Pale };

QPalette LightPalette();
QPalette DarkPalette();
QPalette HighContrastPalette();

bool IsDark(const QPalette& palette);
/// The palette of high contrast, which is black and knows no shades.
bool IsContrast(const QPalette& palette);

/// The tint of a category; numbers go round over eight colours, 0 (unfiled) is grey.
Tint CategoryTint(int category, const QPalette& palette);

/// An ink that is readable (4.5:1 and more, Pale apart) on the palette's base.
QColor InkOf(Ink ink, const QPalette& palette);

/// The ground of what is selected: pale enough for every ink that is readable on the palette's base. Paler
/// still while the list does not have the focus.
QColor SelectionTint(const QPalette& palette, bool active = true);

/// `mix` of 0 gives `a`, 1 gives `b`.
QColor Blend(const QColor& a, const QColor& b, double mix);

}  // namespace bmr::kit
