#include "flash/avm1/classes/DateMath.h"

#include <algorithm>
#include <cmath>
#include <ctime>
#include <limits>

namespace flash::avm1::classes
{

namespace
{

constexpr double kMsPerDay = 86400000;

/// Days since 1970-01-01 of a date in the proleptic Gregorian calendar. Years begin in March here, so that
/// the leap day is the last one.
double daysFromCivil(double year, int month, double day)
{
    if (month < 2) year -= 1;
    const double era = std::floor(year / 400);
    const double yearOfEra = year - era * 400;
    const int shifted = (month + 10) % 12; // March is 0
    const double dayOfYear = std::floor((153.0 * shifted + 2) / 5) + day - 1;
    const double dayOfEra =
        yearOfEra * 365 + std::floor(yearOfEra / 4) - std::floor(yearOfEra / 100) + dayOfYear;
    return era * 146097 + dayOfEra - 719468;
}

} // namespace

double timeFromParts(const DateParts& parts)
{
    const double month = std::trunc(parts.month);
    const double year = std::trunc(parts.year) + std::floor(month / 12);
    if (!std::isfinite(year)) return std::numeric_limits<double>::quiet_NaN();
    const auto monthOfYear = static_cast<int>(month - std::floor(month / 12) * 12);
    const double days = daysFromCivil(year, monthOfYear, 1) + std::trunc(parts.day) - 1;
    const double time = days * kMsPerDay + std::trunc(parts.hours) * 3600000 +
                        std::trunc(parts.minutes) * 60000 + std::trunc(parts.seconds) * 1000 +
                        std::trunc(parts.milliseconds);
    return time;
}

DateParts partsFromTime(double timeMs)
{
    DateParts parts;
    // A time without end has the parts of the first moment, which is a Sunday then.
    if (!std::isfinite(timeMs)) {
        parts.year = 1970;
        parts.month = 0;
        parts.day = 1;
        parts.weekday = 0;
        return parts;
    }
    // Exact for times of any size. The hour is that of half a millisecond later, and fractions of a
    // millisecond count towards 1970.
    const auto within = [](double whole, double period) {
        const double rest = std::fmod(whole, period);
        return rest < 0 ? rest + period : rest;
    };
    const double days = std::floor((timeMs - within(timeMs, kMsPerDay)) / kMsPerDay + 0.5);
    parts.hours = within(std::floor((timeMs + 0.5) / 3600000), 24);
    parts.minutes = within(std::floor(timeMs / 60000), 60);
    parts.seconds = within(std::floor(timeMs / 1000), 60);
    parts.milliseconds = within(std::trunc(timeMs), 1000);
    parts.weekday = static_cast<int>(days + 4 - std::floor((days + 4) / 7) * 7);

    const double shifted = days + 719468;
    const double era = std::floor(shifted / 146097);
    const double dayOfEra = shifted - era * 146097;
    const double yearOfEra = std::floor((dayOfEra - std::floor(dayOfEra / 1460) +
                                         std::floor(dayOfEra / 36524) - std::floor(dayOfEra / 146096)) /
                                        365);
    const double dayOfYear =
        dayOfEra - (365 * yearOfEra + std::floor(yearOfEra / 4) - std::floor(yearOfEra / 100));
    const double monthFromMarch = std::floor((5 * dayOfYear + 2) / 153);
    parts.day = dayOfYear - std::floor((153 * monthFromMarch + 2) / 5) + 1;
    parts.month = monthFromMarch < 10 ? monthFromMarch + 2 : monthFromMarch - 10;
    parts.year = yearOfEra + era * 400 + (parts.month < 2 ? 1 : 0);
    return parts;
}

double localOffsetMinutes(double utcMs)
{
    if (!std::isfinite(utcMs)) return 0;
    // Years that the C library cannot hold have no rules either.
    constexpr double kFurthestMs = 6.7e19;
    if (std::fabs(utcMs) > kFurthestMs) return 0;
    const auto seconds = static_cast<std::time_t>(std::clamp(std::floor(utcMs / 1000), -6.7e16, 6.7e16));
    std::tm local{};
    if (localtime_r(&seconds, &local) == nullptr) return 0;
    return static_cast<double>(local.tm_gmtoff) / 60;
}

double localFromUtc(double utcMs) { return utcMs + localOffsetMinutes(utcMs) * 60000; }

double utcFromLocal(double localMs)
{
    // The offset is a function of UTC; two steps settle everything but the hour that does not exist.
    const double guess = localMs - localOffsetMinutes(localMs) * 60000;
    return localMs - localOffsetMinutes(guess) * 60000;
}

} // namespace flash::avm1::classes
