#include "kit/programtheme.h"

#include <QAbstractButton>
#include <QAbstractScrollArea>
#include <QApplication>
#include <QCheckBox>
#include <QPainter>
#include <QProxyStyle>
#include <QRadioButton>
#include <QScreen>
#include <QStyleFactory>
#include <QStyleOption>
#include <QWidget>

#include "kit/icons.h"
#include "kit/theme.h"

namespace bmr::kit {

namespace {

constexpr int kArrow = 10;  ///< of a sorted column

/// A box or an option without words of its own.
bool StandsAlone(const QWidget* widget) {
    const auto* button = qobject_cast<const QAbstractButton*>(widget);
    return button && button->text().isEmpty() &&
           (qobject_cast<const QRadioButton*>(widget) || qobject_cast<const QCheckBox*>(widget));
}

/// Fusion, with what it lacks on dark grounds.
class BmrStyle final : public QProxyStyle {
  public:
    BmrStyle() : QProxyStyle(QStyleFactory::create("Fusion")) {}

    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget) const override {
        if (element == PE_IndicatorItemViewItemCheck || element == PE_IndicatorCheckBox ||
            element == PE_IndicatorRadioButton) {
            const bool round = element == PE_IndicatorRadioButton;
            // Without words of its own a mark has no other place for the frame of the focus.
            if (!StandsAlone(widget) || !(option->state & State_HasFocus))
                return DrawMark(*option, *painter, round);
            QStyleOption inside = *option;
            inside.rect.adjust(3, 3, -3, -3);
            DrawMark(inside, *painter, round);
            DrawMarkFocus(*option, *painter, round);
            return;
        }
        if (element == PE_FrameFocusRect && StandsAlone(widget)) return;
        if (element == PE_FrameFocusRect) return DrawFocus(*option, *painter);
        if (element == PE_Frame && qobject_cast<const QAbstractScrollArea*>(widget))
            return DrawFrame(*option, *painter);
        QProxyStyle::drawPrimitive(element, option, painter, widget);
        DrawOutline(element, *option, *painter);
    }

    void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override {
        const auto* entry = qstyleoption_cast<const QStyleOptionMenuItem*>(option);
        if (entry && (element == CE_MenuItem || element == CE_MenuBarItem)) {
            // The entry under the pointer is marked as a selected row is: words and icon keep their inks.
            QStyleOptionMenuItem tinted = *entry;
            const QPalette& palette = entry->palette;
            tinted.palette.setColor(QPalette::Highlight, SelectionTint(palette));
            tinted.palette.setColor(QPalette::HighlightedText,
                                    palette.color(QPalette::Active, QPalette::Text));
            return QProxyStyle::drawControl(element, &tinted, painter, widget);
        }
        const auto* header = qstyleoption_cast<const QStyleOptionHeader*>(option);
        if (header && element == CE_Header && header->sortIndicator != QStyleOptionHeader::None)
            return DrawSortedHeader(*header, *painter, widget);
        if (header && element == CE_HeaderLabel && !(header->textAlignment & Qt::AlignVertical_Mask)) {
            // Some models tell only the side: without a height the words would stand at the top.
            QStyleOptionHeader centred = *header;
            centred.textAlignment |= Qt::AlignVCenter;
            return QProxyStyle::drawControl(element, &centred, painter, widget);
        }
        QProxyStyle::drawControl(element, option, painter, widget);
        // The outline alone tells of the default button too, and of a tab nothing does.
        if ((element == CE_PushButton || element == CE_TabBarTab) && (option->state & State_HasFocus)) {
            QStyleOption inside = *option;
            inside.rect.adjust(3, 3, -3, -3);
            DrawFocus(inside, *painter);
        }
    }

    void drawComplexControl(ComplexControl control, const QStyleOptionComplex* option, QPainter* painter,
                            const QWidget* widget) const override {
        const auto* bar = qstyleoption_cast<const QStyleOptionSlider*>(option);
        if (bar && control == CC_Slider && !(bar->subControls & SC_SliderTickmarks))
            return DrawSlider(*bar, *painter, subControlRect(control, bar, SC_SliderGroove, widget),
                              subControlRect(control, bar, SC_SliderHandle, widget));
        if (!bar || control != CC_ScrollBar || !(bar->subControls & SC_ScrollBarSlider))
            return QProxyStyle::drawComplexControl(control, option, painter, widget);
        QStyleOptionSlider without = *bar;
        without.subControls &= ~SubControls(SC_ScrollBarSlider);
        QProxyStyle::drawComplexControl(control, &without, painter, widget);
        DrawThumb(*bar, *painter, subControlRect(control, bar, SC_ScrollBarSlider, widget));
    }

    QSize sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& size,
                           const QWidget* widget) const override {
        if (const auto* header = qstyleoption_cast<const QStyleOptionHeader*>(option);
            header && type == CT_HeaderSection && header->sortIndicator != QStyleOptionHeader::None) {
            QStyleOptionHeader plain = *header;
            plain.sortIndicator = QStyleOptionHeader::None;
            return QProxyStyle::sizeFromContents(type, &plain, size, widget) +
                   QSize(kArrow + Space::Tight, 0);
        }
        QSize whole = QProxyStyle::sizeFromContents(type, option, size, widget);
        const auto* button = qstyleoption_cast<const QStyleOptionButton*>(option);
        if (type == CT_PushButton && button)
            whole.rwidth() += button->icon.isNull() ? Space::Row : Space::Margin;
        return whole;
    }

    int pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const override {
        if (metric == PM_IndicatorWidth || metric == PM_IndicatorHeight ||
            metric == PM_ExclusiveIndicatorWidth || metric == PM_ExclusiveIndicatorHeight)
            return 16;
        // What is framed must not lie on the line, whatever pixel of a scaled screen it begins at.
        if (metric == PM_DefaultFrameWidth && qobject_cast<const QAbstractScrollArea*>(widget)) return 2;
        if (metric == PM_HeaderMargin) return Space::Row;
        if (metric == PM_FocusFrameHMargin) return Space::Tight;
        if (metric == PM_LayoutVerticalSpacing) return Space::Row;
        return QProxyStyle::pixelMetric(metric, option, widget);
    }

    int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                  QStyleHintReturn* data) const override {
        // A greyed entry is etched in the palette's light colour, which on black is as loud as the words.
        if (hint == SH_EtchDisabledText || hint == SH_DitherDisabledText) return 0;
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
    // Fusion's thumb has the colour of a button, which is nearly that of the ground it moves on.
    static void DrawThumb(const QStyleOptionSlider& bar, QPainter& painter, const QRect& thumb) {
        if (bar.minimum == bar.maximum) return;
        const QPalette& palette = bar.palette;
        const bool held = (bar.state & State_Sunken) && (bar.activeSubControls & SC_ScrollBarSlider);
        const bool hot = (bar.state & State_MouseOver) && (bar.activeSubControls & SC_ScrollBarSlider);
        const double least = IsDark(palette) ? 0.55 : 0.42;  // a dark groove is lighter than the ground
        const double strength = least + (held ? 0.2 : hot ? 0.1 : 0);
        const QRectF shape = QRectF(thumb).adjusted(2.5, 2.5, -2.5, -2.5);
        const double radius = qMin(shape.width(), shape.height()) / 2;
        painter.save();
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        painter.setBrush(Blend(palette.color(QPalette::Active, QPalette::Base),
                               palette.color(QPalette::Active, QPalette::Text), strength));
        painter.drawRoundedRect(shape, radius, radius);
        painter.restore();
    }

    // Fusion draws groove and handle in shades of the window's colour, and black has none.
    static void DrawSlider(const QStyleOptionSlider& slider, QPainter& painter, const QRect& groove,
                           const QRect& handle) {
        const QPalette& palette = slider.palette;
        const bool enabled = slider.state & State_Enabled;
        const QColor base = palette.color(QPalette::Active, QPalette::Base);
        const QColor text = palette.color(QPalette::Active, QPalette::Text);
        const QColor accent = enabled ? palette.color(QPalette::Active, QPalette::Highlight)
                                      : palette.color(QPalette::Disabled, QPalette::Text);
        const bool across = slider.orientation == Qt::Horizontal;
        const QPointF middle = QRectF(handle).center();
        QRectF line(groove);
        across ? line.adjust(2, 0, -2, 0) : line.adjust(0, 2, 0, -2);
        across ? line.setHeight(4) : line.setWidth(4);
        line.moveCenter(across ? QPointF(line.center().x(), middle.y())
                               : QPointF(middle.x(), line.center().y()));
        QRectF done = line;  // the part up to the value
        if (across)
            slider.upsideDown ? done.setLeft(middle.x()) : done.setRight(middle.x());
        else
            slider.upsideDown ? done.setTop(middle.y()) : done.setBottom(middle.y());
        painter.save();
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        painter.setBrush(Blend(base, text, enabled ? 0.4 : 0.25));
        painter.drawRoundedRect(line, 2, 2);
        painter.setBrush(accent);
        painter.drawRoundedRect(done, 2, 2);
        const bool hot = slider.state & (State_MouseOver | State_HasFocus | State_Sunken);
        painter.setPen(QPen(hot && enabled ? text : base, 2));
        painter.drawEllipse(middle, 7, 7);
        painter.restore();
    }

    static void DrawMarkFocus(const QStyleOption& option, QPainter& painter, bool round) {
        const QRectF ring = QRectF(option.rect).adjusted(1, 1, -1, -1);
        const double radius = round ? ring.width() / 2 : 3;
        painter.save();
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(QPen(option.palette.color(QPalette::Active, QPalette::WindowText), 1.6));
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(ring, radius, radius);
        painter.restore();
    }

    // A line alone: Fusion fills the frame too, and every ink in a selected row would lose by it.
    static void DrawFocus(const QStyleOption& option, QPainter& painter) {
        painter.save();
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(QPen(InkOf(Ink::Accent, option.palette), 1));
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(QRectF(option.rect).adjusted(0.5, 0.5, -0.5, -0.5), 2, 2);
        painter.restore();
    }

    // On a scaled screen a field may begin between two pixels: Fusion's line of one then falls outside it. A
    // smooth one always has a part inside.
    static void DrawFrame(const QStyleOption& option, QPainter& painter) {
        const QPalette& palette = option.palette;
        const bool focused = option.state & State_HasFocus;
        const QColor line = IsDark(palette) ? palette.color(focused ? QPalette::Highlight : QPalette::Mid)
                                            : palette.color(QPalette::Window).darker(130);
        const double width = IsContrast(palette) && focused ? 2 : 1;
        const double half = width / 2;
        painter.save();
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(QPen(line, width, Qt::SolidLine, Qt::SquareCap, Qt::MiterJoin));
        painter.setBrush(Qt::NoBrush);
        painter.drawRect(QRectF(option.rect).adjusted(half, half, -half, -half));
        painter.restore();
    }

    // Fusion's outlines are shades of the window's colour: on dark grounds they drown, and black has none.
    static void DrawOutline(PrimitiveElement element, const QStyleOption& option, QPainter& painter) {
        const bool frame = element == PE_FrameLineEdit || element == PE_Frame || element == PE_PanelMenu;
        const bool contrast = IsContrast(option.palette);
        const bool focused = option.state & State_HasFocus;
        // A field to read has no cursor that would tell of the focus.
        const bool wanted = (frame && IsDark(option.palette)) || (element == PE_Frame && focused) ||
                            (contrast && element == PE_PanelButtonCommand);
        if (!wanted) return;
        painter.setPen(QPen(option.palette.color(focused ? QPalette::Highlight : QPalette::Mid),
                            contrast && focused ? 2 : 1));
        painter.setBrush(Qt::NoBrush);
        painter.drawRect(option.rect.adjusted(0, 0, -1, -1));
    }

    // The arrow stands behind the words, never over them: the words end before it.
    void DrawSortedHeader(const QStyleOptionHeader& header, QPainter& painter, const QWidget* widget) const {
        drawControl(CE_HeaderSection, &header, &painter, widget);
        QStyleOptionHeader part = header;
        const QRect inside = header.rect.adjusted(Space::Row, 0, -Space::Row, 0);
        const QRect arrow(inside.right() - kArrow + 1, inside.center().y() - kArrow / 2, kArrow, kArrow);
        part.rect = visualRect(header.direction, header.rect, arrow);
        drawPrimitive(PE_IndicatorHeaderArrow, &part, &painter, widget);
        const QRect words(inside.topLeft(), QPoint(arrow.left() - Space::Tight, inside.bottom()));
        part.rect = visualRect(header.direction, header.rect, words);
        part.sortIndicator = QStyleOptionHeader::None;
        part.text = part.fontMetrics.elidedText(header.text, Qt::ElideRight, words.width());
        drawControl(CE_HeaderLabel, &part, &painter, widget);
    }

    // The same goes for the marks in the rows of a dark list.
    static void DrawMark(const QStyleOption& option, QPainter& painter, bool round) {
        const QPalette palette = QApplication::palette();  // that of a menu's entry is tinted
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
        painter.setPen(QPen(hot || filled ? accent : line, hot ? 1.6 : 1.2));
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

}  // namespace

Theme::Theme(QApplication& app) : app_(app), desktop_(QApplication::palette()) {
    QApplication::setStyle(new BmrStyle);
    app_.installEventFilter(this);
    Choose(ThemeChoice::System);
}

bool Theme::eventFilter(QObject* watched, QEvent* event) {
    auto* window =
        event->type() == QEvent::Show && watched->isWidgetType() ? static_cast<QWidget*>(watched) : nullptr;
    const bool bounded = window && (window->windowType() == Qt::Window || window->windowType() == Qt::Dialog);
    if (bounded && !(window->windowState() & (Qt::WindowMaximized | Qt::WindowFullScreen))) {
        // The frame is known only later: leave what a usual one takes.
        const QRect room = window->screen()->availableGeometry().adjusted(4, 28, -4, -4);
        window->resize(window->size().boundedTo(room.size()));
        if (window->testAttribute(Qt::WA_Moved)) {
            const QRect wanted(window->pos(), window->size());
            window->move(qBound(room.left() - 4, wanted.left(), room.right() - wanted.width() + 1),
                         qBound(room.top() - 28, wanted.top(), room.bottom() - wanted.height() + 1));
        }
    }
    return QObject::eventFilter(watched, event);
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
    for (const auto choice : {ThemeChoice::Light, ThemeChoice::Dark, ThemeChoice::HighContrast})
        if (name == NameOf(choice)) return choice;
    return ThemeChoice::System;
}

QString Theme::NameOf(ThemeChoice choice) {
    static constexpr const char* kNames[] = {"system", "light", "dark", "contrast"};
    return kNames[static_cast<std::size_t>(choice)];
}

}  // namespace bmr::kit
