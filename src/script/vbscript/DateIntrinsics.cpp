#include "script/vbscript/DateTime.h"
#include "script/vbscript/IntrinsicTools.h"

#include <cmath>

namespace script::vbscript
{

namespace
{

constexpr double kSecondsPerDay = 86400.0;

enum class Interval { Year, Quarter, Month, DayOfYear, Day, Weekday, Week, Hour, Minute, Second };

Result<Interval> intervalArgument(Engine& engine, const Value& value)
{
    const auto text = TRY_RESULT(toText(value, engine.locale()));
    static constexpr std::u16string_view kNames[] = {u"yyyy", u"q",  u"m", u"y", u"d",
                                                     u"w",    u"ww", u"h", u"n", u"s"};
    for (std::size_t i = 0; i < std::size(kNames); ++i) {
        if (sameText(text, kNames[i])) return static_cast<Interval>(i);
    }
    return fault(error::kInvalidCall);
}

Result<Value> dateValue(std::optional<double> days)
{
    if (!days) return fault(error::kInvalidCall);
    return Value::date(*days);
}

// The first day of the week: 0 the system's, 1 Sunday to 7 Saturday.
Result<int> firstWeekday(Engine& engine, ArgumentList a, std::size_t index)
{
    const std::int32_t day = TRY_RESULT(longArgument(engine, a, index, 1));
    if (day < 0 || day > 7) return fault(error::kInvalidCall);
    return day == 0 ? engine.locale().firstWeekday : day;
}

int weekdayFrom(double date, int first) { return (weekdayOf(date) - first + 7) % 7 + 1; }

double startOfWeek(double days, int first) { return days - (weekdayFrom(days, first) - 1); }

// rule: 1 the week of 1 January, 2 the first with four days, 3 the first full one.
double firstWeekOfYear(int year, int first, int rule)
{
    const double newYear = daysFromDate(year, 1, 1).value_or(0);
    const double start = startOfWeek(newYear, first);
    const double daysIn = 7 - (newYear - start);
    const bool counts = rule == 1 || (rule == 2 && daysIn >= 4) || (rule == 3 && daysIn == 7);
    return counts ? start : start + 7;
}

int weekOfYear(double date, int first, int rule)
{
    const double days = std::floor(date);
    int year = dateParts(days).year;
    if (rule != 1 && year < 9999 && days >= firstWeekOfYear(year + 1, first, rule))
        ++year;
    else if (days < firstWeekOfYear(year, first, rule))
        --year;
    return static_cast<int>((startOfWeek(days, first) - firstWeekOfYear(year, first, rule)) / 7) + 1;
}

double timeOf(const DateParts& parts)
{
    return (parts.hour * 3600 + parts.minute * 60 + parts.second) / kSecondsPerDay;
}

// Only Timer sees fractions of a second.
double wholeSeconds(double moment) { return std::floor(moment * kSecondsPerDay + 1e-4) / kSecondsPerDay; }

Result<Value> now(Engine& engine, ArgumentList) { return Value::date(wholeSeconds(engine.now())); }
Result<Value> date(Engine& engine, ArgumentList) { return Value::date(std::floor(engine.now())); }
Result<Value> time(Engine& engine, ArgumentList)
{
    const double moment = wholeSeconds(engine.now());
    return Value::date(moment - std::floor(moment));
}
Result<Value> timer(Engine& engine, ArgumentList)
{
    const double moment = engine.now();
    return Value::single(static_cast<float>((moment - std::floor(moment)) * kSecondsPerDay));
}

template <int DateParts::*Part>
Result<Value> part(Engine& engine, ArgumentList a)
{
    if (a[0].isNull()) return a[0];
    const double days = TRY_RESULT(toDate(a[0], engine.locale()));
    return Value::integer(static_cast<std::int16_t>(dateParts(days).*Part));
}

Result<Value> weekday(Engine& engine, ArgumentList a)
{
    if (a[0].isNull()) return a[0];
    const double days = TRY_RESULT(toDate(a[0], engine.locale()));
    const int first = TRY_RESULT(firstWeekday(engine, a, 1));
    return Value::integer(static_cast<std::int16_t>(weekdayFrom(days, first)));
}

Result<Value> dateSerial(Engine& engine, ArgumentList a)
{
    const std::int32_t year = TRY_RESULT(toLong(a[0], engine.locale()));
    const std::int32_t month = TRY_RESULT(toLong(a[1], engine.locale()));
    const std::int32_t day = TRY_RESULT(toLong(a[2], engine.locale()));
    return dateValue(daysFromDate(fullYear(year), month, day));
}

Result<Value> timeSerial(Engine& engine, ArgumentList a)
{
    const double hour = TRY_RESULT(toLong(a[0], engine.locale()));
    const double minute = TRY_RESULT(toLong(a[1], engine.locale()));
    const double second = TRY_RESULT(toLong(a[2], engine.locale()));
    const double days = (hour * 3600 + minute * 60 + second) / kSecondsPerDay;
    if (days < kMinDate || days >= kEndDate) return fault(error::kOverflow);
    // Negative times count away from midnight like all dates before day 0.
    if (days >= 0) return Value::date(days);
    const double whole = std::floor(days);
    return Value::date(days == whole ? days : whole - (days - whole));
}

Result<Value> cDate(Engine& engine, ArgumentList a)
{
    if (a[0].isNull()) return fault(error::kInvalidNull);
    return Value::date(TRY_RESULT(toDate(a[0], engine.locale())));
}

// DateValue and TimeValue read texts; a number is none, though it may be a date elsewhere.
Result<double> writtenDate(Engine& engine, const Value& value)
{
    if (value.isNull()) return fault(error::kInvalidNull);
    if (value.type() == VarType::Date) return value.asReal();
    if (!value.isString()) return fault(error::kTypeMismatch);
    const auto date = parseDate(value.text(), engine.locale(), currentYear());
    if (!date) return mismatch(value);
    return *date;
}

Result<Value> dateValueOf(Engine& engine, ArgumentList a)
{
    return Value::date(std::trunc(TRY_RESULT(writtenDate(engine, a[0]))));
}

Result<Value> timeValueOf(Engine& engine, ArgumentList a)
{
    const double days = TRY_RESULT(writtenDate(engine, a[0]));
    return Value::date(std::fabs(days - std::trunc(days)));
}

// Adding months keeps the day, or takes the month's last one.
std::optional<double> addMonths(double from, std::int64_t months)
{
    const DateParts parts = dateParts(from);
    const std::int64_t index = std::int64_t{parts.year} * 12 + parts.month - 1 + months;
    if (index < 1200 || index >= 120000) return std::nullopt;
    const auto year = static_cast<int>(index / 12);
    const auto month = static_cast<int>(index % 12) + 1;
    const auto days = daysFromDate(year, month, std::min(parts.day, daysInMonth(year, month)));
    if (!days) return std::nullopt;
    return joinDate(*days, timeOf(parts));
}

// Times are added on a line where days before 1900 run forwards as well.
std::optional<double> addSeconds(double from, double seconds)
{
    const DateParts parts = dateParts(from);
    const double day = daysFromDate(parts.year, parts.month, parts.day).value_or(0);
    const double total =
        day * kSecondsPerDay + parts.hour * 3600 + parts.minute * 60 + parts.second + seconds;
    const double whole = std::floor(total / kSecondsPerDay);
    if (whole < kMinDate || whole >= kEndDate) return std::nullopt;
    return joinDate(whole, (total - whole * kSecondsPerDay) / kSecondsPerDay);
}

Result<Value> dateAdd(Engine& engine, ArgumentList a)
{
    const Interval interval = TRY_RESULT(intervalArgument(engine, a[0]));
    if (a[2].isNull()) return Value::null();
    if (a[1].isNull()) return fault(error::kInvalidNull);
    const double number = roundHalfEven(TRY_RESULT(toDouble(a[1], engine.locale())));
    const double from = TRY_RESULT(toDate(a[2], engine.locale()));
    if (std::fabs(number) > 1e13) return fault(error::kInvalidCall);
    switch (interval) {
    case Interval::Year:
    case Interval::Quarter:
    case Interval::Month: {
        const int months = interval == Interval::Year ? 12 : interval == Interval::Quarter ? 3 : 1;
        return dateValue(addMonths(from, static_cast<std::int64_t>(number) * months));
    }
    case Interval::DayOfYear:
    case Interval::Day:
    case Interval::Weekday: return dateValue(addSeconds(from, number * kSecondsPerDay));
    case Interval::Week: return dateValue(addSeconds(from, number * 7 * kSecondsPerDay));
    case Interval::Hour: return dateValue(addSeconds(from, number * 3600));
    case Interval::Minute: return dateValue(addSeconds(from, number * 60));
    case Interval::Second: return dateValue(addSeconds(from, number));
    }
    return fault(error::kInvalidCall);
}

// How many borders of the interval lie between the two dates.
Result<Value> dateDiff(Engine& engine, ArgumentList a)
{
    const Interval interval = TRY_RESULT(intervalArgument(engine, a[0]));
    if (a[1].isNull() || a[2].isNull()) return Value::null();
    const double from = TRY_RESULT(toDate(a[1], engine.locale()));
    const double to = TRY_RESULT(toDate(a[2], engine.locale()));
    const int first = TRY_RESULT(firstWeekday(engine, a, 3));
    const DateParts p = dateParts(from);
    const DateParts q = dateParts(to);
    const double fromDay = daysFromDate(p.year, p.month, p.day).value_or(0);
    const double toDay = daysFromDate(q.year, q.month, q.day).value_or(0);
    const double days = toDay - fromDay;
    const auto seconds = [](const DateParts& parts) {
        return parts.hour * 3600 + parts.minute * 60 + parts.second;
    };
    double result = 0;
    switch (interval) {
    case Interval::Year: result = q.year - p.year; break;
    case Interval::Quarter: result = (q.year - p.year) * 4 + (q.month - 1) / 3 - (p.month - 1) / 3; break;
    case Interval::Month: result = (q.year - p.year) * 12 + q.month - p.month; break;
    case Interval::DayOfYear:
    case Interval::Day: result = days; break;
    case Interval::Weekday: result = std::trunc(days / 7); break;
    case Interval::Week: result = (startOfWeek(toDay, first) - startOfWeek(fromDay, first)) / 7; break;
    case Interval::Hour: result = days * 24 + q.hour - p.hour; break;
    case Interval::Minute: result = days * 1440 + seconds(q) / 60 - seconds(p) / 60; break;
    case Interval::Second: result = days * kSecondsPerDay + seconds(q) - seconds(p); break;
    }
    if (std::fabs(result) > INT32_MAX) return fault(error::kOverflow);
    return Value::longInteger(static_cast<std::int32_t>(result));
}

Result<Value> datePart(Engine& engine, ArgumentList a)
{
    const Interval interval = TRY_RESULT(intervalArgument(engine, a[0]));
    if (a[1].isNull()) return a[1];
    const double date = TRY_RESULT(toDate(a[1], engine.locale()));
    const int first = TRY_RESULT(firstWeekday(engine, a, 2));
    std::int32_t rule = TRY_RESULT(longArgument(engine, a, 3, 1));
    if (rule < 0 || rule > 3) return fault(error::kInvalidCall);
    if (rule == 0) rule = 1;
    const DateParts parts = dateParts(date);
    int result = 0;
    switch (interval) {
    case Interval::Year: result = parts.year; break;
    case Interval::Quarter: result = (parts.month - 1) / 3 + 1; break;
    case Interval::Month: result = parts.month; break;
    case Interval::DayOfYear:
        result = static_cast<int>(std::trunc(date) - daysFromDate(parts.year, 1, 1).value_or(0)) + 1;
        break;
    case Interval::Day: result = parts.day; break;
    case Interval::Weekday: result = weekdayFrom(date, first); break;
    case Interval::Week: result = weekOfYear(date, first, rule); break;
    case Interval::Hour: result = parts.hour; break;
    case Interval::Minute: result = parts.minute; break;
    case Interval::Second: result = parts.second; break;
    }
    return Value::integer(static_cast<std::int16_t>(result));
}

Result<Value> monthName(Engine& engine, ArgumentList a)
{
    const std::int32_t month = TRY_RESULT(toLong(a[0], engine.locale()));
    if (month < 1 || month > 12) return fault(error::kInvalidCall);
    const bool brief = given(a, 1) && TRY_RESULT(toBoolean(a[1], engine.locale()));
    const auto& names = brief ? engine.locale().shortMonths : engine.locale().months;
    return Value::string(names[static_cast<std::size_t>(month - 1)]);
}

Result<Value> weekdayName(Engine& engine, ArgumentList a)
{
    const std::int32_t day = TRY_RESULT(toLong(a[0], engine.locale()));
    if (day < 1 || day > 7) return fault(error::kInvalidCall);
    const bool brief = given(a, 1) && TRY_RESULT(toBoolean(a[1], engine.locale()));
    // Here the first day is the system's unless stated, other than in Weekday.
    int first = engine.locale().firstWeekday;
    if (given(a, 2)) first = TRY_RESULT(firstWeekday(engine, a, 2));
    const auto& names = brief ? engine.locale().shortWeekdays : engine.locale().weekdays;
    return Value::string(names[static_cast<std::size_t>((day - 1 + first - 1) % 7)]);
}

constexpr Intrinsic kTable[] = {
    {u"Now", now, 0, 0},
    {u"Date", date, 0, 0},
    {u"Time", time, 0, 0},
    {u"Timer", timer, 0, 0},
    {u"Year", part<&DateParts::year>, 1, 1},
    {u"Month", part<&DateParts::month>, 1, 1},
    {u"Day", part<&DateParts::day>, 1, 1},
    {u"Hour", part<&DateParts::hour>, 1, 1},
    {u"Minute", part<&DateParts::minute>, 1, 1},
    {u"Second", part<&DateParts::second>, 1, 1},
    {u"Weekday", weekday, 1, 2},
    {u"DateSerial", dateSerial, 3, 3},
    {u"TimeSerial", timeSerial, 3, 3},
    {u"CDate", cDate, 1, 1},
    {u"DateValue", dateValueOf, 1, 1},
    {u"TimeValue", timeValueOf, 1, 1},
    {u"DateAdd", dateAdd, 3, 3},
    {u"DateDiff", dateDiff, 3, 5},
    {u"DatePart", datePart, 2, 4},
    {u"MonthName", monthName, 1, 2},
    {u"WeekdayName", weekdayName, 1, 3},
};

} // namespace

std::span<const Intrinsic> dateIntrinsics() { return kTable; }

} // namespace script::vbscript
