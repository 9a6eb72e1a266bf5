#include "kit/dateedit.h"

#include <QCalendarWidget>
#include <QCheckBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMenu>
#include <QToolButton>
#include <QWidgetAction>
#include <algorithm>

#include "base/shortdate.h"
#include "kit/calendarlook.h"
#include "kit/dateentry.h"
#include "kit/icons.h"
#include "kit/theme.h"

namespace bmr::kit {

DateEdit::DateEdit(Day today, QWidget* parent)
    : QWidget(parent), today_(today), box_(new QCheckBox), line_(new QLineEdit), drop_(new QToolButton) {
    box_->setObjectName("box");
    line_->setObjectName("line");
    line_->setPlaceholderText(tr("t, +3, Friday …"));
    line_->setToolTip(
        tr("A date, or: t for today, +3 for in three days, a weekday. Up and Down step by a day."));
    line_->setMinimumWidth(fontMetrics().horizontalAdvance("00/00/0000") + 40);
    line_->installEventFilter(this);
    drop_->setObjectName("drop");
    drop_->setIcon(Icon("x-office-calendar"));
    drop_->setToolTip(tr("Pick from a calendar (Alt+Down)"));
    drop_->setAccessibleName(tr("Calendar"));
    drop_->setAutoRaise(true);

    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(Space::Tight);
    row->addWidget(box_);
    row->addWidget(line_);
    row->addWidget(drop_);
    row->addStretch(1);
    setFocusProxy(box_);
    setFocusPolicy(Qt::StrongFocus);  // a label leads its mnemonic to nothing else

    connect(box_, &QCheckBox::clicked, this, [this](bool on) {
        Take(on ? std::optional(today_) : std::nullopt);
        if (on) FocusLine();
    });
    connect(line_, &QLineEdit::editingFinished, this, &DateEdit::Commit);
    connect(line_, &QLineEdit::textEdited, this, &DateEdit::Edited);
    connect(drop_, &QToolButton::clicked, this, &DateEdit::OpenCalendar);
    Show();
}

DateEdit::~DateEdit() {
    line_->disconnect(this);  // it loses the focus when it goes, and would still tell us
}

void DateEdit::SetDate(std::optional<Day> date) {
    if (date || !required_) date_ = date;
    Show();
}

void DateEdit::SetRequired() {
    required_ = true;
    box_->hide();
    setFocusProxy(line_);
    if (!date_) date_ = today_;
    Show();
}

void DateEdit::SetRange(Day first, Day last) {
    first_ = first;
    last_ = last;
}

void DateEdit::SetCaption(const QString& caption) {
    const QString plain = QString(caption).remove('&');
    box_->setAccessibleName(plain);
    box_->setToolTip(tr("%1: set or none").arg(plain));
    line_->setAccessibleName(plain);
}

void DateEdit::Show() {
    box_->setChecked(date_.has_value());
    line_->setVisible(date_.has_value());
    drop_->setVisible(date_.has_value());
    const std::string pattern = FactsOf(QLocale()).shortDate;
    line_->setText(date_ ? QString::fromStdString(FormatShortDate(*date_, pattern)) : QString());
    line_->setModified(false);
    understood_ = true;
}

void DateEdit::Take(std::optional<Day> date) {
    const auto given = date;
    if (date) date = std::clamp(*date, first_, last_);
    const bool changed = date != date_;
    date_ = date;
    Show();
    if (given) emit Given(*given);  // behind Show: a box that it opens takes the focus, and the line is told
    emit Edited();
    if (changed) emit DateChanged(date_);
}

bool DateEdit::Commit() {
    if (!date_ || !line_->isModified()) return true;
    const QString typed = line_->text();
    const bool emptied = typed.trimmed().isEmpty();
    const auto day = emptied ? std::nullopt : ReadDate(typed, today_, QLocale());
    if ((required_ || !emptied) && !day) {
        understood_ = false;
        emit NotUnderstood(NoDate(typed, today_, QLocale()));
        return false;
    }
    Take(day);
    return true;
}

void DateEdit::FocusLine() {
    line_->setFocus();
    line_->selectAll();
}

void DateEdit::Step(int days, int months) {
    if (!Commit()) return;
    if (date_) Take(FromQDate(ToQDate(*date_).addDays(days).addMonths(months)));
    line_->selectAll();
}

bool DateEdit::eventFilter(QObject* watched, QEvent* event) {
    if (watched == line_ && event->type() == QEvent::KeyPress) {
        const auto* key = static_cast<QKeyEvent*>(event);
        const bool alt = key->modifiers() & Qt::AltModifier;
        switch (key->key()) {
            case Qt::Key_Up:
                Step(1, 0);
                return true;
            case Qt::Key_Down:
                alt ? OpenCalendar() : Step(-1, 0);
                return true;
            case Qt::Key_PageUp:
                Step(0, 1);
                return true;
            case Qt::Key_PageDown:
                Step(0, -1);
                return true;
            default:
                break;
        }
    }
    return QWidget::eventFilter(watched, event);
}

void DateEdit::OpenCalendar() {
    if (!Commit() || !date_) return;
    QMenu menu(this);
    menu.setObjectName("calendarMenu");
    auto* calendar = new QCalendarWidget;
    DressCalendar(*calendar);
    calendar->setObjectName("calendar");
    calendar->setMinimumDate(ToQDate(first_));
    calendar->setMaximumDate(ToQDate(last_));
    calendar->setSelectedDate(ToQDate(*date_));
    auto* holder = new QWidgetAction(&menu);
    holder->setDefaultWidget(calendar);
    menu.addAction(holder);
    std::optional<Day> picked;
    const auto pick = [&](const QDate& date) {
        picked = FromQDate(date);
        menu.close();
    };
    connect(calendar, &QCalendarWidget::clicked, &menu, pick);
    connect(calendar, &QCalendarWidget::activated, &menu, pick);
    connect(&menu, &QMenu::aboutToShow, calendar, [calendar] { calendar->setFocus(); });
    menu.exec(mapToGlobal(rect().bottomLeft()));
    if (picked) Take(picked);
    line_->setFocus();
}

}  // namespace bmr::kit
