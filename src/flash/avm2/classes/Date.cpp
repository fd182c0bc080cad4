#include "flash/avm2/classes/Library.h"

#include <QDateTime>
#include <QTimeZone>

#include <algorithm>
#include <array>
#include <cctype>

namespace flash::avm2::classes
{

namespace
{

constexpr double kDayMs = 86'400'000.0;
constexpr double kMaxMs = 8.64e15;
constexpr std::array<const char*, 7> kDays = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
constexpr std::array<const char*, 12> kMonths = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                                 "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};

class DateObject final : public Object
{
public:
    AVM2_NATIVE(Object)
    DateObject(Traits* traits, Object* proto) : Object(traits, proto) {}
    double ms = std::nan(""); ///< since 1970-01-01 UTC
};

DateObject& self(Call& call) { return selfAs<DateObject>(call, "Date"); }

double offsetMs(double ms, bool isLocal)
{
    if (!std::isfinite(ms)) return 0;
    const auto at = static_cast<qint64>(ms);
    const QTimeZone zone = QTimeZone::systemTimeZone();
    if (!isLocal) return zone.offsetFromUtc(QDateTime::fromMSecsSinceEpoch(at, Qt::UTC)) * 1000.0;
    const double guess = zone.offsetFromUtc(QDateTime::fromMSecsSinceEpoch(at, Qt::UTC)) * 1000.0;
    return zone.offsetFromUtc(QDateTime::fromMSecsSinceEpoch(static_cast<qint64>(ms - guess), Qt::UTC)) *
           1000.0;
}

double daysFromCivil(double year, double month)
{
    year += std::floor(month / 12);
    month = std::fmod(month, 12);
    if (month < 0) month += 12;
    const double y = month <= 1 ? year - 1 : year;
    const double era = std::floor(y / 400);
    const double ofEra = y - era * 400;
    const double shifted = std::fmod(month + 10, 12);
    const double dayOfYear = std::floor((153 * shifted + 2) / 5);
    return era * 146097 + ofEra * 365 + std::floor(ofEra / 4) - std::floor(ofEra / 100) + dayOfYear - 719468;
}

/// Year, month (0..11), day (1..), hours, minutes, seconds, milliseconds.
struct Fields {
    std::array<double, 7> at{};
    int weekday = 0;
};

Fields split(double ms)
{
    Fields fields;
    const double days = std::floor(ms / kDayMs);
    double rest = ms - days * kDayMs;
    fields.weekday = static_cast<int>(std::fmod(std::fmod(days + 4, 7) + 7, 7));
    const double z = days + 719468;
    const double era = std::floor(z / 146097);
    const double ofEra = z - era * 146097;
    const double yearOfEra = std::floor(
        (ofEra - std::floor(ofEra / 1460) + std::floor(ofEra / 36524) - std::floor(ofEra / 146096)) / 365);
    const double dayOfYear =
        ofEra - (365 * yearOfEra + std::floor(yearOfEra / 4) - std::floor(yearOfEra / 100));
    const double shifted = std::floor((5 * dayOfYear + 2) / 153);
    fields.at[2] = dayOfYear - std::floor((153 * shifted + 2) / 5) + 1;
    fields.at[1] = shifted < 10 ? shifted + 2 : shifted - 10;
    fields.at[0] = yearOfEra + era * 400 + (fields.at[1] <= 1 ? 1 : 0);
    fields.at[3] = std::floor(rest / 3'600'000);
    rest -= fields.at[3] * 3'600'000;
    fields.at[4] = std::floor(rest / 60'000);
    rest -= fields.at[4] * 60'000;
    fields.at[5] = std::floor(rest / 1000);
    fields.at[6] = rest - fields.at[5] * 1000;
    return fields;
}

double join(const std::array<double, 7>& at)
{
    for (const double part : at) {
        if (!std::isfinite(part)) return std::nan("");
    }
    return (daysFromCivil(at[0], at[1]) + at[2] - 1) * kDayMs + at[3] * 3'600'000 + at[4] * 60'000 +
           at[5] * 1000 + at[6];
}

double clipped(double ms)
{
    return std::isfinite(ms) && std::fabs(ms) <= kMaxMs ? std::trunc(ms) : std::nan("");
}
double toUtc(double local) { return local - offsetMs(local, true); }
double toLocal(double utc) { return utc + offsetMs(utc, false); }

/// @returns 0 to 11; -1 for what is no month's short name
int monthOf(std::string_view text)
{
    const auto same = [&](std::string_view month) {
        return std::ranges::equal(
            month, text, {}, [](char c) { return std::tolower(static_cast<unsigned char>(c)); },
            [](char c) { return std::tolower(static_cast<unsigned char>(c)); });
    };
    for (std::size_t i = 0; i < kMonths.size(); ++i)
        if (same(kMonths[i])) return static_cast<int>(i);
    return -1;
}

/// "Wed Apr 12 15:30:17 GMT-0700 2006" and its like; "12/31/2001" too.
double parse(std::u16string_view text)
{
    std::array<double, 7> at{std::nan(""), std::nan(""), std::nan(""), 0, 0, 0, 0};
    double zone = std::nan("");
    std::string word;
    bool isPm = false, isAm = false;
    const std::string all = toUtf8(text) + " ";
    const auto take = [&](const std::string& token) {
        if (token.empty()) return true;
        if (token.find(':') != std::string::npos) {
            int hours = 0, minutes = 0, seconds = 0;
            if (std::sscanf(token.c_str(), "%d:%d:%d", &hours, &minutes, &seconds) < 2) return false;
            at[3] = hours;
            at[4] = minutes;
            at[5] = seconds;
            return true;
        }
        if (token.find('/') != std::string::npos) {
            int a = 0, b = 0, c = 0;
            if (!std::isnan(at[0])) return false;
            const int named = monthOf(token.substr(0, token.find('/')));
            if (named >= 0) {
                a = named + 1;
                if (std::sscanf(token.c_str() + token.find('/'), "/%d/%d", &b, &c) != 2) return false;
            } else if (std::sscanf(token.c_str(), "%d/%d/%d", &a, &b, &c) != 3) {
                return false;
            }
            at[0] = a > 31 ? a : c;
            at[1] = (a > 31 ? b : a) - 1;
            at[2] = a > 31 ? c : b;
            return true;
        }
        std::string upper = token;
        for (char& c : upper) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
        if (upper.starts_with("GMT") || upper.starts_with("UTC")) {
            if (!std::isnan(zone)) return false;
            zone = 0;
            upper.erase(0, 3);
            if (upper.empty()) return true;
        }
        if ((upper[0] == '+' || upper[0] == '-') && upper.size() >= 5) {
            const int value = std::atoi(upper.c_str() + 1);
            zone = (upper[0] == '-' ? -1 : 1) * ((value / 100) * 60.0 + value % 100) * 60'000;
            return true;
        }
        if (upper == "PM") return isPm = true;
        if (upper == "AM") return isAm = true;
        for (int i = 0; i < 7; ++i) {
            std::string day = kDays[static_cast<std::size_t>(i)];
            for (char& c : day) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
            if (upper == day) return true;
        }
        if (const int month = monthOf(upper); month >= 0) {
            at[1] = month;
            return true;
        }
        for (const char c : upper) {
            if (c < '0' || c > '9') return false;
        }
        const double value = std::atof(upper.c_str());
        constexpr double kLastDay = 31, kCentury = 100, kFirstYear = 1900;
        if (upper.size() <= 2 && std::isnan(at[2])) {
            at[2] = value;
            return value <= kLastDay;
        }
        at[0] = value < kCentury ? value + kFirstYear : value;
        return true;
    };
    for (const char c : all) {
        if (c != ' ' && c != ',') {
            word += c;
            continue;
        }
        if (!take(word)) return std::nan("");
        word.clear();
    }
    if (isPm && at[3] < 12) at[3] += 12;
    if (isAm && at[3] == 12) at[3] = 0;
    const double ms = join(at);
    return std::isnan(zone) ? toUtc(ms) : ms - zone;
}

double fromParts(Call& call)
{
    std::array<double, 7> at{0, 0, 1, 0, 0, 0, 0};
    for (std::uint32_t i = 0; i < 7 && call.has(i); ++i) {
        at[i] = call.vm.toNumber(call.arg(i));
        if (std::isfinite(at[i])) at[i] = std::trunc(at[i]);
    }
    if (at[0] >= 0 && at[0] <= 99) at[0] += 1900;
    return join(at);
}

Value construct(Call& call)
{
    auto& date = self(call);
    if (call.count == 0)
        date.ms = std::trunc(call.vm.host().wallClockMs() + call.vm.host().timeMs());
    else if (call.count == 1) {
        // Only a text is read as a date, not what an object would become.
        const Value value = call.arg(0);
        date.ms = clipped(value.isString() ? parse(value.string()->view()) : call.vm.toNumber(value));
    } else {
        date.ms = clipped(toUtc(fromParts(call)));
    }
    return {};
}

std::u16string pad(double value)
{
    std::u16string text = numberText(value);
    return text.size() < 2 ? u"0" + text : text;
}

enum class Form : std::uint8_t { Whole, Date, Time, Locale, LocaleDate, LocaleTime, Utc };

std::u16string shown(double ms, Form form)
{
    if (std::isnan(ms)) return u"Invalid Date";
    const bool isUtc = form == Form::Utc;
    const Fields f = split(isUtc ? ms : toLocal(ms));
    const std::u16string day = widen(kDays[static_cast<std::size_t>(f.weekday)]) + u" " +
                               widen(kMonths[static_cast<std::size_t>(f.at[1])]) + u" " + numberText(f.at[2]);
    const std::u16string time = pad(f.at[3]) + u":" + pad(f.at[4]) + u":" + pad(f.at[5]);
    const double hour = std::fmod(f.at[3], 12) == 0 ? 12 : std::fmod(f.at[3], 12);
    const std::u16string halfDay =
        pad(hour) + u":" + pad(f.at[4]) + u":" + pad(f.at[5]) + (f.at[3] >= 12 ? u" PM" : u" AM");
    const double offset = offsetMs(ms, false) / 60'000;
    const double size = std::fabs(offset);
    const std::u16string zone = std::u16string(u"GMT") + (offset < 0 ? u"-" : u"+") +
                                pad(std::floor(size / 60)) + pad(std::fmod(size, 60));
    const std::u16string year = numberText(f.at[0]);
    switch (form) {
    case Form::Whole: return day + u" " + time + u" " + zone + u" " + year;
    case Form::Date:
    case Form::LocaleDate: return day + u" " + year;
    case Form::Time: return time + u" " + zone;
    case Form::Locale: return day + u" " + year + u" " + halfDay;
    case Form::LocaleTime: return halfDay;
    case Form::Utc: return day + u" " + time + u" " + year + u" UTC";
    }
    return {};
}

template <Form form>
Value toText(Call& call)
{
    auto* date = as<DateObject>(call.self);
    return call.vm.string(shown(date != nullptr ? date->ms : std::nan(""), form));
}

Value convert(Call& call)
{
    return call.vm.string(
        shown(std::trunc(call.vm.host().wallClockMs() + call.vm.host().timeMs()), Form::Whole));
}

/// 0..6 as in Fields, 7 the weekday.
template <int field, bool isUtc>
Value get(Call& call)
{
    const double ms = self(call).ms;
    if (std::isnan(ms)) return ms;
    const Fields fields = split(isUtc ? ms : toLocal(ms));
    return field == 7 ? Value(fields.weekday) : Value(fields.at[static_cast<std::size_t>(field % 7)]);
}

template <int field, bool isUtc>
Value set(Call& call)
{
    auto& date = self(call);
    Fields fields = split(std::isnan(date.ms) ? 0 : isUtc ? date.ms : toLocal(date.ms));
    // As many as belong together: date fields or time fields.
    constexpr std::uint32_t kLast = field < 3 ? 3 : 7;
    if (call.count == 0) {
        date.ms = std::nan("");
        return date.ms;
    }
    bool bad = std::isnan(date.ms) && field != 0;
    for (std::uint32_t i = 0; i + field < kLast && call.has(i); ++i) {
        const double value = call.vm.toNumber(call.arg(i));
        if (std::isnan(value)) bad = true;
        fields.at[i + field] = std::trunc(value);
    }
    const double ms = join(fields.at);
    date.ms = bad ? std::nan("") : clipped(isUtc ? ms : toUtc(ms));
    return date.ms;
}

Value getTime(Call& call) { return self(call).ms; }
Value setTime(Call& call)
{
    auto& date = self(call);
    date.ms = clipped(call.vm.toNumber(call.arg(0)));
    return date.ms;
}
Value getTimezoneOffset(Call& call) { return -offsetMs(self(call).ms, false) / 60'000; }
Value parseText(Call& call) { return parse(call.vm.text(call.arg(0))); }
Value utc(Call& call) { return fromParts(call); }

#define DATE_FIELD(Name, lower, field)                                                                       \
    {"get" Name, Kind::As3, &get<field, false>, 0, 0}, {"getUTC" Name, Kind::As3, &get<field, true>, 0, 0},  \
        {"set" Name, Kind::As3, &set<field, false>}, {"setUTC" Name, Kind::As3, &set<field, true>},          \
        {lower, Kind::Getter, &get<field, false>, 0, 0, &set<field, false>, "Number"},                       \
    {                                                                                                        \
        lower "UTC", Kind::Getter, &get<field, true>, 0, 0, &set<field, true>, "Number"                      \
    }

constexpr NativeMember kMembers[] = {
    DATE_FIELD("FullYear", "fullYear", 0),
    DATE_FIELD("Month", "month", 1),
    DATE_FIELD("Date", "date", 2),
    DATE_FIELD("Hours", "hours", 3),
    DATE_FIELD("Minutes", "minutes", 4),
    DATE_FIELD("Seconds", "seconds", 5),
    DATE_FIELD("Milliseconds", "milliseconds", 6),
    {"getDay", Kind::As3, &get<7, false>, 0, 0},
    {"getUTCDay", Kind::As3, &get<7, true>, 0, 0},
    {"day", Kind::Getter, &get<7, false>, 0, 0, nullptr, "Number"},
    {"dayUTC", Kind::Getter, &get<7, true>, 0, 0, nullptr, "Number"},
    {"getTime", Kind::As3, &getTime, 0, 0},
    {"setTime", Kind::As3, &setTime},
    {"time", Kind::Getter, &getTime, 0, 0, &setTime, "Number"},
    {"timezoneOffset", Kind::Getter, &getTimezoneOffset, 0, 0, nullptr, "Number"},
    {"getTimezoneOffset", Kind::As3, &getTimezoneOffset, 0, 0},
    {"valueOf", Kind::As3, &getTime, 0, -1},
    {"toString", Kind::As3, &toText<Form::Whole>, 0, -1},
    {"toDateString", Kind::As3, &toText<Form::Date>, 0, -1},
    {"toTimeString", Kind::As3, &toText<Form::Time>, 0, -1},
    {"toLocaleString", Kind::As3, &toText<Form::Locale>, 0, -1},
    {"toLocaleDateString", Kind::As3, &toText<Form::LocaleDate>, 0, -1},
    {"toLocaleTimeString", Kind::As3, &toText<Form::LocaleTime>, 0, -1},
    {"toUTCString", Kind::As3, &toText<Form::Utc>, 0, -1},
    {"toJSON", Kind::Prototype, &toText<Form::Whole>, 0, -1},
    {"parse", Kind::Static, &parseText, 1, 1},
    {"UTC", Kind::Static, &utc, 2, -1},
};
#undef DATE_FIELD
constexpr NativeConstant kLength[] = {{"length", 7}};

} // namespace

constinit const NativeClass kDate{.package = {},
                                  .name = "Date",
                                  .base = {},
                                  .constructor = &construct,
                                  .minArguments = 0,
                                  .maxArguments = 7,
                                  .allocate = &allocateNative<DateObject>,
                                  .conversion = &convert,
                                  .members = kMembers,
                                  .constants = kLength};

} // namespace flash::avm2::classes
