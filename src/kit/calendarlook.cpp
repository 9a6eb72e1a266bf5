#include "kit/calendarlook.h"

#include <QCalendarWidget>
#include <QLocale>
#include <QTextCharFormat>
#include <QToolButton>

#include "kit/icons.h"

namespace bmr::kit {

void DressCalendar(QCalendarWidget& calendar) {
    const QPalette palette = calendar.palette();
    calendar.setVerticalHeaderFormat(QCalendarWidget::ISOWeekNumbers);
    calendar.setFirstDayOfWeek(QLocale().firstDayOfWeek());
    QTextCharFormat plain;
    plain.setForeground(palette.color(QPalette::Text));
    for (const auto day : {Qt::Saturday, Qt::Sunday})
        calendar.setWeekdayTextFormat(day, plain);
    QTextCharFormat header;
    header.setForeground(palette.color(QPalette::Text));
    header.setBackground(palette.color(QPalette::Base));
    calendar.setHeaderTextFormat(header);
    const std::pair<const char*, const char*> arrows[] = {{"qt_calendar_prevmonth", "go-previous"},
                                                          {"qt_calendar_nextmonth", "go-next"}};
    for (const auto& [button, icon] : arrows)
        if (auto* found = calendar.findChild<QToolButton*>(button)) found->setIcon(Icon(icon, Ink::Accent));
    // The button leaves no room for its arrow, and the one beside it would move with every month.
    if (auto* button = calendar.findChild<QToolButton*>("qt_calendar_monthbutton")) {
        constexpr int kArrow = 12;
        int widest = 0;
        for (int month = 1; month <= 12; ++month)
            widest =
                qMax(widest,
                     button->fontMetrics().horizontalAdvance(calendar.locale().standaloneMonthName(month)));
        button->setMinimumWidth(widest + 2 * kArrow);
    }
    // The bar on top is drawn in the highlight colour; ours is calm.
    if (auto* bar = calendar.findChild<QWidget*>("qt_calendar_navigationbar")) {
        bar->setBackgroundRole(QPalette::Window);
        for (auto* button : bar->findChildren<QToolButton*>()) {
            QPalette ink = button->palette();
            ink.setColor(QPalette::HighlightedText, palette.color(QPalette::Text));
            ink.setColor(QPalette::ButtonText, palette.color(QPalette::Text));
            button->setPalette(ink);
        }
    }
}

}  // namespace bmr::kit
