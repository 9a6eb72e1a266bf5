#pragma once

#include <QLocale>
#include <QString>
#include <optional>

#include "base/ports.h"
#include "base/serialdate.h"

namespace bmr::kit {

/// The facts of a locale that the rules ask for.
LocaleFacts FactsOf(const QLocale& locale);

QDate ToQDate(Day day);
Day FromQDate(const QDate& date);

/// A stored date in the locale's short form; empty where there is none.
QString ShortDate(DateValue date);
/// The same behind a caption ("Last modified: "); empty where there is none.
QString ShortDate(const QString& caption, DateValue date);

/// What a person types for a date: the locale's short form, "2026-11-21", "21.11." (the next such day), "t"
/// or "today",
/// "+3" and "-1" (days from today), "+2w", a weekday's name or its beginning (the next such day, today
/// excluded). Nothing when it is none of these.
std::optional<Day> ReadDate(const QString& typed, Day today, const QLocale& locale);
/// What is told of `typed` that is no date: with the forms in which the locale takes one.
QString NoDate(const QString& typed, Day today, const QLocale& locale);

}  // namespace bmr::kit
