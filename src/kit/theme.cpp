#include "kit/theme.h"

#include <array>

namespace bmr::kit {

namespace {

/// The colours of one palette, by role.
struct Colours {
    QColor window, text, base, alternate, button, tip, accent, onAccent, link, line, placeholder, disabled;
};

QPalette MakePalette(const Colours& c) {
    QPalette p;
    p.setColor(QPalette::Window, c.window);
    p.setColor(QPalette::WindowText, c.text);
    p.setColor(QPalette::Base, c.base);
    p.setColor(QPalette::AlternateBase, c.alternate);
    p.setColor(QPalette::Text, c.text);
    p.setColor(QPalette::Button, c.button);
    p.setColor(QPalette::ButtonText, c.text);
    p.setColor(QPalette::BrightText, Qt::white);
    p.setColor(QPalette::ToolTipBase, c.tip);
    p.setColor(QPalette::ToolTipText, c.text);
    p.setColor(QPalette::PlaceholderText, c.placeholder);
    p.setColor(QPalette::Highlight, c.accent);
    p.setColor(QPalette::HighlightedText, c.onAccent);
    p.setColor(QPalette::Link, c.link);
    p.setColor(QPalette::LinkVisited, c.link);
    p.setColor(QPalette::Light, c.button.lighter(112));
    p.setColor(QPalette::Midlight, c.button.lighter(106));
    p.setColor(QPalette::Mid, c.line);
    p.setColor(QPalette::Dark, c.line.darker(115));
    p.setColor(QPalette::Shadow, c.line.darker(160));
    for (const auto role :
         {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::HighlightedText})
        p.setColor(QPalette::Disabled, role, c.disabled);
    p.setColor(QPalette::Disabled, QPalette::Base, c.window);
    p.setColor(QPalette::Disabled, QPalette::Highlight, c.line);
    // A list that lost the focus keeps its selection in sight, but calmer.
    p.setColor(QPalette::Inactive, QPalette::Highlight, Blend(c.accent, c.base, 0.55));
    p.setColor(QPalette::Inactive, QPalette::HighlightedText, c.text);
    return p;
}

struct TintRow {
    QRgb lightGround, lightStripe, darkGround, darkStripe;
};

// Grey first: a record without a category.
constexpr std::array<TintRow, 8> kTints{{
    {0xffe8eaee, 0xff4b5563, 0xff343a43, 0xffb3bcc8},
    {0xffdbe9fb, 0xff1f5fa8, 0xff1e3a5f, 0xff7fb3ff},
    {0xffdff3e0, 0xff2e7d32, 0xff1f4027, 0xff7fd28c},
    {0xfffdebd3, 0xffb45309, 0xff4a3312, 0xfff2b25a},
    {0xffeae1f8, 0xff6a3fa0, 0xff3a2a57, 0xffc3a3ff},
    {0xffd8f1f4, 0xff0b7285, 0xff143f46, 0xff6fd3de},
    {0xfffbe0de, 0xffb3261e, 0xff522423, 0xffff9a91},
    {0xfff0e4da, 0xff7a4b2a, 0xff44301f, 0xffd9ad86},
}};

}  // namespace

QPalette LightPalette() {
    return MakePalette({.window = "#f3f4f6",
                        .text = "#1b1f24",
                        .base = "#ffffff",
                        .alternate = "#f7f8fa",
                        .button = "#fafbfc",
                        .tip = "#ffffff",
                        .accent = "#14697a",
                        .onAccent = "#ffffff",
                        .link = "#0b5f86",
                        .line = "#c9ced6",
                        .placeholder = "#69717d",
                        .disabled = "#8b929c"});
}

QPalette DarkPalette() {
    return MakePalette({.window = "#24272c",
                        .text = "#e8eaed",
                        .base = "#1b1d21",
                        .alternate = "#212429",
                        .button = "#32363d",
                        .tip = "#32363d",
                        .accent = "#2a7f91",
                        .onAccent = "#ffffff",
                        .link = "#7cc7ef",
                        .line = "#4a5059",
                        .placeholder = "#9aa2ad",
                        .disabled = "#7a818b"});
}

QPalette HighContrastPalette() {
    QPalette p = MakePalette({.window = "#000000",
                              .text = "#ffffff",
                              .base = "#000000",
                              .alternate = "#000000",
                              .button = "#000000",
                              .tip = "#000000",
                              .accent = "#ffe600",
                              .onAccent = "#000000",
                              .link = "#00e5ff",
                              .line = "#ffffff",
                              .placeholder = "#d0d0d0",
                              .disabled = "#a8a8a8"});
    p.setColor(QPalette::Light, Qt::white);
    p.setColor(QPalette::Midlight, Qt::white);
    p.setColor(QPalette::Inactive, QPalette::Highlight, QColor("#ffe600"));
    p.setColor(QPalette::Inactive, QPalette::HighlightedText, Qt::black);
    return p;
}

bool IsContrast(const QPalette& palette) {
    return palette.color(QPalette::Window) == Qt::black;
}

bool IsDark(const QPalette& palette) {
    return palette.color(QPalette::Active, QPalette::Window).lightness() < 128;
}

QColor Blend(const QColor& a, const QColor& b, double mix) {
    const auto part = [mix](int from, int to) { return static_cast<int>(from + (to - from) * mix + 0.5); };
    return {part(a.red(), b.red()), part(a.green(), b.green()), part(a.blue(), b.blue())};
}

Tint CategoryTint(int category, const QPalette& palette) {
    const int colours = static_cast<int>(kTints.size()) - 1;
    const auto& row = kTints[category <= 0 ? 0 : static_cast<std::size_t>((category - 1) % colours + 1)];
    if (IsDark(palette)) return {QColor(row.darkGround), QColor(row.darkStripe)};
    return {QColor(row.lightGround), QColor(row.lightStripe)};
}

QColor SelectionTint(const QPalette& palette, bool active) {
    const double strength = IsContrast(palette) ? 0.28 : IsDark(palette) ? 0.34 : 0.16;
    return Blend(palette.color(QPalette::Active, QPalette::Base),
                 palette.color(QPalette::Active, QPalette::Highlight), active ? strength : strength * 0.6);
}

QColor InkOf(Ink ink, const QPalette& palette) {
    const bool dark = IsDark(palette);
    switch (ink) {
        case Ink::Alarm:
            return dark ? "#ff9a91" : "#b3261e";
        case Ink::Warning:
            return dark ? "#f2b25a" : "#a04a07";
        case Ink::Good:
            return dark ? "#7fd28c" : "#276c2b";
        case Ink::Accent:
            return IsContrast(palette) ? "#ffe600" : dark ? "#6fc3cf" : "#14697a";
        case Ink::Pale:
            break;
    }
    return Blend(palette.color(QPalette::Active, QPalette::Text),
                 palette.color(QPalette::Active, QPalette::Base), 0.6);
}

}  // namespace bmr::kit
