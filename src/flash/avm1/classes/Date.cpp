#include "flash/avm1/classes/Classes.h"
#include "flash/avm1/classes/DateMath.h"
#include "flash/avm1/interpreter/Boxed.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <limits>

namespace flash::avm1::classes
{

namespace
{

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
enum class Zone { Local, Utc };

using Part = double DateParts::*;

/// Years below 100 count from 1900, negative ones too.
double fullYear(double year) { return year < 100 ? year + 1900 : year; }

double numberArgument(Call& call, std::size_t index) { return toNumber(call.vm, call.arg(index)); }

/// Fills parts from the arguments on, in the order year, month, day, hours ...; those not given stay.
void fillParts(Call& call, DateParts& parts, std::span<const Part> order)
{
    for (std::size_t i = 0; i < order.size() && i < call.count(); ++i) {
        const double number = numberArgument(call, i);
        parts.*order[i] = number;
    }
}

/// How many arguments the constructor and Date.UTC look at: the first that is undefined ends the list.
std::size_t givenCount(const Call& call)
{
    std::size_t count = 0;
    while (count < call.count() && !call.arg(count).isUndefined()) ++count;
    return count;
}

/// All parts from the year on, as the constructor and Date.UTC take them. A year that is no number is the
/// year 0; a month that is none is the first of that year.
DateParts partsFromArguments(Call& call, std::span<const Part> order)
{
    DateParts parts;
    fillParts(call, parts, order.first(std::min(order.size(), givenCount(call))));
    parts.year = std::isfinite(parts.year) ? fullYear(parts.year) : 0;
    if (!std::isfinite(parts.month)) parts.year = parts.month = 0;
    return parts;
}

constexpr Part kYearOn[] = {&DateParts::year,        &DateParts::month,   &DateParts::day,
                            &DateParts::hours,       &DateParts::minutes, &DateParts::seconds,
                            &DateParts::milliseconds};

std::u16string textOf(double utcMs)
{
    if (std::isnan(utcMs)) return u"Invalid Date";
    static constexpr const char* kDays[] = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
    static constexpr const char* kMonths[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                              "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    // Clamped below: times beyond the precision of a double have no weekday.
    const DateParts parts = partsFromTime(localFromUtc(utcMs));
    const auto offset = static_cast<int>(localOffsetMinutes(utcMs));
    char text[80];
    std::snprintf(
        text, sizeof text, "%s %s %d %02d:%02d:%02d GMT%c%02d%02d %d", kDays[std::clamp(parts.weekday, 0, 6)],
        kMonths[std::clamp(static_cast<int>(parts.month), 0, 11)], static_cast<int>(parts.day),
        static_cast<int>(parts.hours), static_cast<int>(parts.minutes), static_cast<int>(parts.seconds),
        offset < 0 ? '-' : '+', std::abs(offset) / 60, std::abs(offset) % 60, static_cast<int>(parts.year));
    const std::string_view view(text);
    return {view.begin(), view.end()};
}

Value construct(Call& call)
{
    Object* self = call.self.asObject();
    if (!call.isConstruct || self == nullptr)
        return call.vm.string(textOf(std::floor(call.vm.host().wallClockMs())));
    double time;
    if (call.count() == 0 || (call.count() == 1 && call.arg(0).isUndefined())) {
        time = std::floor(call.vm.host().wallClockMs());
    } else if (call.count() == 1 || givenCount(call) == 1) {
        time = numberArgument(call, 0);
    } else {
        time = utcFromLocal(timeFromParts(partsFromArguments(call, kYearOn)));
    }
    self->attachNew<DateNative>(time);
    return {};
}

Value utcStatic(Call& call)
{
    if (call.arg(0).isUndefined()) return {};
    if (givenCount(call) < 2) {
        // Looked at, and found to be too little.
        numberArgument(call, 0);
        return {};
    }
    return Value(timeFromParts(partsFromArguments(call, kYearOn)));
}

DateParts partsOf(const DateNative& date, Zone zone)
{
    return partsFromTime(zone == Zone::Local ? localFromUtc(date.timeMs) : date.timeMs);
}

template <Zone zone, auto part>
Value get(Call& call)
{
    const DateNative* date = call.native<DateNative>();
    if (date == nullptr) return {};
    if (std::isnan(date->timeMs)) return Value(kNaN);
    return Value(static_cast<double>(partsOf(*date, zone).*part));
}

template <Zone zone>
Value getYear(Call& call)
{
    const DateNative* date = call.native<DateNative>();
    if (date == nullptr) return {};
    if (std::isnan(date->timeMs)) return Value(kNaN);
    return Value(partsOf(*date, zone).year - 1900);
}

Value getTime(Call& call)
{
    const DateNative* date = call.native<DateNative>();
    return date == nullptr ? Value() : Value(date->timeMs);
}

Value getTimezoneOffset(Call& call)
{
    const DateNative* date = call.native<DateNative>();
    return date == nullptr ? Value() : Value(-localOffsetMinutes(date->timeMs));
}

Value store(DateNative& date, const DateParts& parts, Zone zone)
{
    double time = timeFromParts(parts);
    constexpr double kFurthestMs = 8.64e15;
    if (!(std::fabs(time) <= kFurthestMs)) time = kNaN;
    date.timeMs = zone == Zone::Local ? utcFromLocal(time) : time;
    return Value(date.timeMs);
}

/// Setters take their own part and, optionally, the ones after it.
template <Zone zone, std::size_t first, std::size_t count>
Value set(Call& call)
{
    DateNative* date = call.native<DateNative>();
    if (date == nullptr) return {};
    if (call.count() == 0) return Value(date->timeMs = kNaN);
    constexpr std::size_t kYear = 0, kMonth = 1, kDay = 2;
    if ((first != kYear && std::isnan(date->timeMs)) || (first == kDay && call.arg(0).isUndefined())) {
        // Only a full year makes a date of what is none; a day needs a month to lie in.
        for (std::size_t i = 0; i < count && i < call.count(); ++i) numberArgument(call, i);
        return Value(date->timeMs = kNaN);
    }
    DateParts parts = std::isfinite(date->timeMs) ? partsOf(*date, zone) : DateParts{};
    fillParts(call, parts, std::span<const Part>(kYearOn).subspan(first, count));
    if (first == kMonth && !std::isfinite(parts.month)) {
        // No month is the first one; one without end takes the year along.
        if (std::isinf(parts.month)) parts.year = 0;
        parts.month = 0;
    }
    return store(*date, parts, zone);
}

Value setYear(Call& call)
{
    DateNative* date = call.native<DateNative>();
    if (date == nullptr) return {};
    DateParts parts = std::isfinite(date->timeMs) ? partsOf(*date, Zone::Local) : DateParts{};
    fillParts(call, parts, std::span<const Part>(kYearOn).first(3));
    // Two digits are of the last century; here years before the first stay what they are.
    // A date that is none stays so.
    if (std::isnan(date->timeMs)) return Value(kNaN);
    if (call.count() > 0 && (call.arg(0).isUndefined() || !std::isfinite(parts.year)))
        parts.year = 0;
    else if (parts.year >= 0)
        parts.year = fullYear(parts.year);
    return store(*date, parts, Zone::Local);
}

Value setTime(Call& call)
{
    DateNative* date = call.native<DateNative>();
    if (date == nullptr) return {};
    const double time = call.arg(0).isUndefined() ? kNaN : std::trunc(numberArgument(call, 0));
    date->timeMs = std::isfinite(time) ? time : kNaN;
    return Value(date->timeMs);
}

Value toString(Call& call)
{
    const DateNative* date = call.native<DateNative>();
    return date == nullptr ? Value() : call.vm.string(textOf(date->timeMs));
}

using D = DateParts;
constexpr Zone kLocal = Zone::Local;
constexpr Zone kUtc = Zone::Utc;
// clang-format off
constexpr MemberInfo kMembers[] = {
    // name                 min    flags  function                       native
    {"getFullYear",         0,     0,     &get<kLocal, &D::year>,         0},
    {"getYear",             0,     0,     &getYear<kLocal>,               1},
    {"getMonth",            0,     0,     &get<kLocal, &D::month>,        2},
    {"getDate",             0,     0,     &get<kLocal, &D::day>,          3},
    {"getDay",              0,     0,     &get<kLocal, &D::weekday>,      4},
    {"getHours",            0,     0,     &get<kLocal, &D::hours>,        5},
    {"getMinutes",          0,     0,     &get<kLocal, &D::minutes>,      6},
    {"getSeconds",          0,     0,     &get<kLocal, &D::seconds>,      7},
    {"getMilliseconds",     0,     0,     &get<kLocal, &D::milliseconds>, 8},
    {"setFullYear",         0,     0,     &set<kLocal, 0, 3>,             9},
    {"setMonth",            0,     0,     &set<kLocal, 1, 2>,             10},
    {"setDate",             0,     0,     &set<kLocal, 2, 1>,             11},
    {"setHours",            0,     0,     &set<kLocal, 3, 4>,             12},
    {"setMinutes",          0,     0,     &set<kLocal, 4, 3>,             13},
    {"setSeconds",          0,     0,     &set<kLocal, 5, 2>,             14},
    {"setMilliseconds",     0,     0,     &set<kLocal, 6, 1>,             15},
    {"getTime",             0,     0,     &getTime,                       16},
    {"valueOf",             0,     0,     &getTime,                       16},
    {"setTime",             0,     0,     &setTime,                       17},
    {"getTimezoneOffset",   0,     0,     &getTimezoneOffset,             18},
    {"toString",            0,     0,     &toString,                      19},
    {"setYear",             0,     0,     &setYear,                       20},
    {"getUTCFullYear",      0,     0,     &get<kUtc, &D::year>,           128},
    {"getUTCYear",          0,     0,     &getYear<kUtc>,                 129},
    {"getUTCMonth",         0,     0,     &get<kUtc, &D::month>,          130},
    {"getUTCDate",          0,     0,     &get<kUtc, &D::day>,            131},
    {"getUTCDay",           0,     0,     &get<kUtc, &D::weekday>,        132},
    {"getUTCHours",         0,     0,     &get<kUtc, &D::hours>,          133},
    {"getUTCMinutes",       0,     0,     &get<kUtc, &D::minutes>,        134},
    {"getUTCSeconds",       0,     0,     &get<kUtc, &D::seconds>,        135},
    {"getUTCMilliseconds",  0,     0,     &get<kUtc, &D::milliseconds>,   136},
    {"setUTCFullYear",      0,     0,     &set<kUtc, 0, 3>,               137},
    {"setUTCMonth",         0,     0,     &set<kUtc, 1, 2>,               138},
    {"setUTCDate",          0,     0,     &set<kUtc, 2, 1>,               139},
    {"setUTCHours",         0,     0,     &set<kUtc, 3, 4>,               140},
    {"setUTCMinutes",       0,     0,     &set<kUtc, 4, 3>,               141},
    {"setUTCSeconds",       0,     0,     &set<kUtc, 5, 2>,               142},
    {"setUTCMilliseconds",  0,     0,     &set<kUtc, 6, 1>,               143},
};
constexpr MemberInfo kStatics[] = {
    {"UTC",                 0,     0,     &utcStatic,                     257},
};
// clang-format on
constexpr int kNativeTable = 103;

} // namespace

void installDate(Vm& vm)
{
    Function* constructor = vm.defineClass("Date", &construct, kMembers, 0, kNativeTable);
    vm.registerNative(kNativeTable, 256, &construct);
    vm.addMembers(constructor, kStatics, kNativeTable);
    Object* prototype = vm.prototypeOf(constructor);
    vm.builtIns().date = prototype;
    // One function under two names.
    prototype->define(vm, "valueOf", prototype->get(vm, vm.name(std::string_view("getTime"))), kBuiltIn);
}

} // namespace flash::avm1::classes
