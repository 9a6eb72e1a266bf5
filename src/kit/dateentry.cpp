#include "kit/dateentry.h"

#include <QCoreApplication>
#include <QDate>
#include <QRegularExpression>

#include "base/shortdate.h"

namespace bmr::kit {

namespace {

/// "fri" by the locale's day names and by the English ones; two letters at least.
std::optional<Day> ReadWeekday(const QString& typed, Day today, const QLocale& locale) {
    if (typed.size() < 2) return std::nullopt;
    const int now = ToQDate(today).dayOfWeek();
    for (int ahead = 1; ahead <= 7; ++ahead) {
        const int weekday = (now - 1 + ahead) % 7 + 1;
        for (const QLocale& names : {locale, QLocale::c()})
            if (names.dayName(weekday, QLocale::LongFormat).startsWith(typed, Qt::CaseInsensitive))
                return Day{today.serial + ahead};
    }
    return std::nullopt;
}

std::optional<Day> ReadOffset(const QString& typed, Day today) {
    static const QRegularExpression form(R"(^([+-])\s*(\d{1,4})\s*([dwmy]?)$)",
                                         QRegularExpression::CaseInsensitiveOption);
    const auto match = form.match(typed);
    if (!match.hasMatch()) return std::nullopt;
    const int count = match.captured(2).toInt() * (match.captured(1) == "-" ? -1 : 1);
    const QDate from = ToQDate(today);
    const QString unit = match.captured(3).toLower();
    if (unit == "m") return FromQDate(from.addMonths(count));
    if (unit == "y") return FromQDate(from.addYears(count));
    return Day{today.serial + count * (unit == "w" ? 7 : 1)};
}

/// Day and month without a year, in the locale's order: the next such day.
std::optional<Day> ReadWithoutYear(const QString& typed, Day today, const QLocale& locale) {
    static const QRegularExpression form(R"(^(\d{1,2})[./\- ]+(\d{1,2})\.?$)");
    const auto match = form.match(typed);
    if (!match.hasMatch()) return std::nullopt;
    const QString pattern = QString::fromStdString(FactsOf(locale).shortDate);
    const bool dayFirst = pattern.indexOf('d') < pattern.indexOf('M');
    const int day = match.captured(dayFirst ? 1 : 2).toInt();
    const int month = match.captured(dayFirst ? 2 : 1).toInt();
    const QDate from = ToQDate(today);
    // 29 February may be years away.
    for (int year = from.year(); year <= from.year() + 8; ++year) {
        const QDate date(year, month, day);
        if (date.isValid() && date >= from) return FromQDate(date);
    }
    return std::nullopt;
}

}  // namespace

LocaleFacts FactsOf(const QLocale& locale) {
    LocaleFacts facts;
    facts.firstDayOfWeek = locale.firstDayOfWeek() % 7 + 1;
    const QString point = locale.decimalPoint();
    facts.decimalPoint = point == "," ? ',' : '.';
    const QString pattern = locale.dateFormat(QLocale::ShortFormat);
    // Where a short date has the month as a word (plain C has) or the order is unknown, numbers as the
    // standard has them.
    if (!pattern.contains("MMM") && pattern.contains('d') && pattern.contains('M') && pattern.contains('y'))
        facts.shortDate = pattern.toStdString();
    return facts;
}

QDate ToQDate(Day day) {
    return QDate(1899, 12, 30).addDays(day.serial);
}

Day FromQDate(const QDate& date) {
    return {static_cast<std::int32_t>(QDate(1899, 12, 30).daysTo(date))};
}

QString ShortDate(DateValue date) {
    return date.serial < 1 ? QString() : QLocale().toString(ToQDate(DayOf(date)), QLocale::ShortFormat);
}

QString ShortDate(const QString& caption, DateValue date) {
    const QString shown = ShortDate(date);
    return shown.isEmpty() ? shown : caption + shown;
}

std::optional<Day> ReadDate(const QString& typed, Day today, const QLocale& locale) {
    const QString text = typed.trimmed();
    if (text.isEmpty()) return std::nullopt;
    const auto begins = [&](const char* word) { return QString(word).startsWith(text, Qt::CaseInsensitive); };
    if (begins("today")) return today;
    if (text.size() > 2 && begins("tomorrow")) return Day{today.serial + 1};
    if (text.size() > 2 && begins("yesterday")) return Day{today.serial - 1};
    if (auto day = ReadOffset(text, today)) return day;
    if (auto day = ReadWithoutYear(text, today, locale)) return day;
    if (auto day = ParseShortDate(text.toStdString(), FactsOf(locale).shortDate)) return day;
    // Where the short form has the month as a word, dates are shown so.
    const bool whole = locale.dateFormat(QLocale::ShortFormat).contains("yyyy");
    if (const QDate date = locale.toDate(text, QLocale::ShortFormat); date.isValid() && whole)
        return FromQDate(date);
    return ReadWeekday(text, today, locale);
}

QString NoDate(const QString& typed, Day today, const QLocale& locale) {
    // A day that no month's number can be taken for.
    const Day example = FromQDate(QDate(ToQDate(today).year(), 12, 31));
    QStringList forms{QString::fromStdString(FormatShortDate(example, FactsOf(locale).shortDate)),
                      QString::fromStdString(IsoDate(example))};
    forms.removeDuplicates();
    return QCoreApplication::translate("DateEdit", "“%1” is no date. Dates are written as %2.")
        .arg(typed, forms.join(QCoreApplication::translate("DateEdit", " or ")));
}

}  // namespace bmr::kit
