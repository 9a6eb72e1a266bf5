#pragma once

#include <gtest/gtest.h>

#include <QApplication>
#include <QLabel>
#include <QListView>
#include <QMouseEvent>
#include <tuple>
#include <vector>

#include "calendar/entrylook.h"
#include "calendar/periods.h"
#include "support/forms.h"

namespace bmr::calendar {

inline constexpr Day kMonday{46391};

/// A mouse over a view, button and keys included: the toolkit's own helper tells no keys while it moves.
struct Hand {
    QWidget& over;
    Qt::KeyboardModifiers keys = Qt::NoModifier;

    void Send(QEvent::Type type, QPoint at, Qt::MouseButton button, Qt::MouseButtons held) const {
        QMouseEvent event(type, at, over.mapToGlobal(at), button, held, keys);
        QApplication::sendEvent(&over, &event);
    }
    void Press(QPoint at, Qt::MouseButton button = Qt::LeftButton) const {
        Send(QEvent::MouseButtonPress, at, button, button);
    }
    void Move(QPoint at) const { Send(QEvent::MouseMove, at, Qt::NoButton, Qt::LeftButton); }
    void Release(QPoint at) const { Send(QEvent::MouseButtonRelease, at, Qt::LeftButton, Qt::NoButton); }
    void Drag(QPoint from, QPoint to) const {
        Press(from);
        Move(from + QPoint(0, 40));
        Move(to);
        Release(to);
    }
};

/// An entry of `day` days behind the Monday, in minutes of that day.
inline EntryLook Entry(int day, int from, int to, const char* subject, bool allDay = false) {
    EntryLook look;
    const std::int32_t midnight = MidnightOf(Day{kMonday.serial + day}).count;
    look.start = Minutes{midnight + from};
    look.end = Minutes{midnight + to};
    look.allDay = allDay;
    look.time = QString::fromStdString(EntryTimes(look.start, look.end, allDay));
    look.from = look.time.left(5);
    look.subject = QString(subject);
    look.tip = look.time + " " + look.subject;
    return look;
}

/// The list over a view that shows what finds no room in it.
inline QListView* OpenedList(const QWidget& view) {
    for (const auto* popup : view.findChildren<EntryPopup*>())
        if (popup->isVisible()) return popup->findChild<QListView*>();
    return nullptr;
}

}  // namespace bmr::calendar
