#pragma once

#include "script/vbscript/Locale.h"

#include <optional>
#include <string>

namespace script::vbscript
{

// Dates are doubles: whole days since 30 December 1899; the fraction, whatever the sign, is the time of day.

inline constexpr double kMinDate = -657434.0; // 1 January 100
inline constexpr double kEndDate = 2958466.0; // 1 January 10000

struct DateParts {
    int year = 1899;
    int month = 12; // 1 to 12
    int day = 30;
    int hour = 0;
    int minute = 0;
    int second = 0;
};

/// @returns the parts of a date within the range; the time is rounded to whole seconds.
DateParts dateParts(double date);
/// 1 Sunday to 7 Saturday
int weekdayOf(double date);
/// Whole days of a date; months beyond 1 to 12 and days beyond the month run over.
/// @returns nothing outside the years 100 to 9999
std::optional<double> daysFromDate(std::int64_t year, std::int64_t month, std::int64_t day);
/// Puts a day and a time of day together; before 1900 the time counts away from the day.
double joinDate(double days, double timeOfDay);
int daysInMonth(int year, int month);
bool isLeapYear(int year);
/// Two-digit years: 0 to 29 are 2000 to 2029, 30 to 99 are 1930 to 1999.
int fullYear(int year);

/// The local date and time of the system, and the year of today.
double localNow();
int currentYear();

/// Reads a date, a time or both as a user of the locale writes them.
std::optional<double> parseDate(std::u16string_view text, const Locale& locale, int currentYear);

/// What CStr makes of a date: the day is left out when it is day 0, the time when it is midnight.
std::u16string formatDate(double date, const Locale& locale);
std::u16string formatShortDate(const DateParts& parts, const Locale& locale);
std::u16string formatLongDate(double date, const Locale& locale);
std::u16string formatLongTime(const DateParts& parts, const Locale& locale);
std::u16string formatShortTime(const DateParts& parts);

} // namespace script::vbscript
