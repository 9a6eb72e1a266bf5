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
