#include "kit/theme.h"

#include <QApplication>
#include <QPainter>
#include <QProxyStyle>
#include <QStyleFactory>
#include <QStyleOption>
#include <array>

#include "kit/icons.h"

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

bool IsContrast(const QPalette& palette) {
    return palette.color(QPalette::Window) == Qt::black;
}

/// Fusion, with what it lacks on dark grounds.
class BmrStyle final : public QProxyStyle {
  public:
    BmrStyle() : QProxyStyle(QStyleFactory::create("Fusion")) {}

    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget) const override {
        if (element == PE_IndicatorItemViewItemCheck || element == PE_IndicatorCheckBox ||
            element == PE_IndicatorRadioButton)
            return DrawMark(*option, *painter, element == PE_IndicatorRadioButton);
        QProxyStyle::drawPrimitive(element, option, painter, widget);
        DrawOutline(element, *option, *painter);
    }

    QSize sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& size,
                           const QWidget* widget) const override {
        QSize whole = QProxyStyle::sizeFromContents(type, option, size, widget);
        const auto* button = qstyleoption_cast<const QStyleOptionButton*>(option);
        if (type == CT_PushButton && button && !button->icon.isNull()) whole.rwidth() += Space::Margin;
        return whole;
    }

    int pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const override {
        if (metric == PM_IndicatorWidth || metric == PM_IndicatorHeight ||
            metric == PM_ExclusiveIndicatorWidth || metric == PM_ExclusiveIndicatorHeight)
            return 16;
        if (metric == PM_HeaderMargin) return Space::Row;
        if (metric == PM_FocusFrameHMargin) return Space::Tight;
        if (metric == PM_LayoutVerticalSpacing) return Space::Row;
        return QProxyStyle::pixelMetric(metric, option, widget);
    }

    int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                  QStyleHintReturn* data) const override {
        if (hint == SH_FormLayoutLabelAlignment) return Qt::AlignRight | Qt::AlignVCenter;
        if (hint == SH_FormLayoutFormAlignment) return Qt::AlignLeft | Qt::AlignTop;
        if (hint == SH_ItemView_ActivateItemOnSingleClick) return 0;
        if (hint == SH_DialogButtonBox_ButtonsHaveIcons)
            return 0;  // words are clear, and the stock icons not ours
        return QProxyStyle::styleHint(hint, option, widget, data);
    }

    QIcon standardIcon(StandardPixmap which, const QStyleOption* option,
                       const QWidget* widget) const override {
        switch (which) {
            case SP_LineEditClearButton:
                return Icon("edit-clear");
            case SP_MessageBoxInformation:
                return Icon("dialog-information", Ink::Accent);
            case SP_MessageBoxQuestion:
                return Icon("dialog-question", Ink::Accent);
            case SP_MessageBoxWarning:
                return Icon("dialog-warning", Ink::Warning);
            case SP_MessageBoxCritical:
                return Icon("dialog-error", Ink::Alarm);
            case SP_FileDialogToParent:
                return Icon("go-up");
            case SP_FileDialogBack:
                return Icon("go-previous");
            case SP_FileDialogNewFolder:
                return Icon("list-add");
            default:
                return QProxyStyle::standardIcon(which, option, widget);
        }
    }

    QPixmap standardPixmap(StandardPixmap which, const QStyleOption* option,
                           const QWidget* widget) const override {
        if (which >= SP_MessageBoxInformation && which <= SP_MessageBoxQuestion)
            return standardIcon(which, option, widget).pixmap(QSize(32, 32));
        return QProxyStyle::standardPixmap(which, option, widget);
    }

  private:
    // Fusion's outlines are shades of the window's colour: on dark grounds they drown, and black has none.
    static void DrawOutline(PrimitiveElement element, const QStyleOption& option, QPainter& painter) {
        const bool frame = element == PE_FrameLineEdit || element == PE_Frame;
        const bool contrast = IsContrast(option.palette);
        if (!(frame && IsDark(option.palette)) && !(contrast && element == PE_PanelButtonCommand)) return;
        const bool focused = option.state & State_HasFocus;
        painter.setPen(QPen(option.palette.color(focused ? QPalette::Highlight : QPalette::Mid),
                            contrast && focused ? 2 : 1));
        painter.setBrush(Qt::NoBrush);
        painter.drawRect(option.rect.adjusted(0, 0, -1, -1));
    }

    // The same goes for the marks in the rows of a dark list.
    static void DrawMark(const QStyleOption& option, QPainter& painter, bool round) {
        const QPalette& palette = option.palette;
        const bool enabled = option.state & State_Enabled;
        const bool on = option.state & State_On;
        const bool filled = on || (option.state & State_NoChange);
        const auto group = enabled ? QPalette::Active : QPalette::Disabled;
        const QColor base = palette.color(QPalette::Active, QPalette::Base);
        const QColor accent = palette.color(group, QPalette::Highlight);
        const QColor line = Blend(palette.color(group, QPalette::WindowText), base, 0.35);
        const int side = qMin(option.rect.width(), option.rect.height());
        QRectF box(0, 0, side - 1, side - 1);
        box.moveCenter(QRectF(option.rect).center());

        painter.save();
        painter.setRenderHint(QPainter::Antialiasing);
        const bool hot = !filled && (option.state & (State_MouseOver | State_HasFocus));
        QPen outline(hot || filled ? accent : line, hot ? 1.6 : 1.2);
        if (option.state & State_Selected) outline.setColor(palette.color(group, QPalette::HighlightedText));
        painter.setPen(outline);
        painter.setBrush(filled ? accent : base);
        const double radius = round ? box.width() / 2 : 3;
        painter.drawRoundedRect(box, radius, radius);
        DrawMarkInside(painter, box, palette.color(group, QPalette::HighlightedText), on, filled, round);
        painter.restore();
    }

    static void DrawMarkInside(QPainter& painter, const QRectF& box, const QColor& ink, bool on, bool filled,
                               bool round) {
        const auto at = [&](double x, double y) {
            return QPointF(box.left() + x * box.width(), box.top() + y * box.height());
        };
        painter.setPen(QPen(ink, 2, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        if (on && round) {
            painter.setPen(Qt::NoPen);
            painter.setBrush(ink);
            painter.drawEllipse(box.center(), box.width() * 0.2, box.height() * 0.2);
        } else if (on) {
            painter.drawPolyline(QPolygonF({at(0.24, 0.53), at(0.43, 0.72), at(0.77, 0.30)}));
        } else if (filled) {
            painter.drawLine(at(0.25, 0.5), at(0.75, 0.5));
        }
    }
};

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

QColor InkOf(Ink ink, const QPalette& palette) {
    const bool dark = IsDark(palette);
    switch (ink) {
        case Ink::Alarm:
            return dark ? "#ff9a91" : "#b3261e";
        case Ink::Warning:
            return dark ? "#f2b25a" : "#a04a07";
        case Ink::Good:
            return dark ? "#7fd28c" : "#2e7d32";
        case Ink::Accent:
            return IsContrast(palette) ? "#ffe600" : dark ? "#6fc3cf" : "#14697a";
        case Ink::Pale:
            break;
    }
    return Blend(palette.color(QPalette::Active, QPalette::Text),
                 palette.color(QPalette::Active, QPalette::Base), 0.6);
}

Theme::Theme(QApplication& app) : app_(app), desktop_(QApplication::palette()) {
    QApplication::setStyle(new BmrStyle);
    Choose(ThemeChoice::System);
}

void Theme::Choose(ThemeChoice choice) {
    choice_ = choice;
    switch (choice) {
        case ThemeChoice::System:
            QApplication::setPalette(IsDark(desktop_) ? DarkPalette() : LightPalette());
            break;
        case ThemeChoice::Light:
            QApplication::setPalette(LightPalette());
            break;
        case ThemeChoice::Dark:
            QApplication::setPalette(DarkPalette());
            break;
        case ThemeChoice::HighContrast:
            QApplication::setPalette(HighContrastPalette());
            break;
    }
}

ThemeChoice Theme::FromName(const QString& name) {
    if (name == "light") return ThemeChoice::Light;
    if (name == "dark") return ThemeChoice::Dark;
    if (name == "contrast") return ThemeChoice::HighContrast;
    return ThemeChoice::System;
}

}  // namespace bmr::kit
