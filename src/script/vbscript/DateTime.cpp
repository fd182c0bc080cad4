#include "script/vbscript/DateTime.h"

#include "script/vbscript/Text.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <ctime>
#include <vector>

namespace script::vbscript
{

namespace
{

constexpr int kSecondsPerDay = 86400;
constexpr std::int64_t kEpochDays = 25569; // 1 January 1970 as a date

std::u16string padded(int number, std::size_t width)
{
    std::u16string text = widened(std::to_string(number));
    if (text.size() < width) text.insert(0, width - text.size(), u'0');
    return text;
}

std::tm localTime()
{
    const std::time_t now = std::chrono::system_clock::to_time_t(std::chrono::system_clock::now());
    std::tm parts{};
    localtime_r(&now, &parts);
    return parts;
}

// The words, numbers and signs of a date's text.
struct Item {
    enum class Kind { Number, Month, Separator, Colon, Morning, Afternoon };
    Kind kind = Kind::Number;
    int value = 0;
    std::size_t digits = 0;
    char16_t sign = 0;
};

class DateReader
{
public:
    DateReader(const Locale& locale, int thisYear) : m_locale(locale), m_thisYear(thisYear) {}

    std::optional<double> read(std::u16string_view text)
    {
        if (!split(trimmed(text)) || m_items.empty()) return std::nullopt;
        if (!takeTime()) return std::nullopt;
        if (m_items.empty()) return m_time;
        const auto days = readDay();
        if (!days) return std::nullopt;
        return joinDate(*days, m_time.value_or(0));
    }

private:
    static bool startsWord(std::u16string_view text, std::u16string_view word)
    {
        return text.size() >= word.size() && sameText(text.substr(0, word.size()), word);
    }

    bool split(std::u16string_view text)
    {
        std::size_t i = 0;
        while (i < text.size()) {
            const char16_t c = text[i];
            if (isSpace(c)) {
                ++i;
            } else if (isDigit(c)) {
                Item item;
                for (; i < text.size() && isDigit(text[i]); ++i, ++item.digits) {
                    if (item.digits > 5) return false;
                    item.value = item.value * 10 + (text[i] - u'0');
                }
                m_items.push_back(item);
            } else if (c == u':') {
                m_items.push_back({Item::Kind::Colon, 0, 0, c});
                ++i;
            } else if (c == u'/' || c == u'-' || c == u'.' || c == u',') {
                m_items.push_back({Item::Kind::Separator, 0, 0, c});
                ++i;
            } else {
                std::size_t end = i;
                while (end < text.size() && !isSpace(text[end]) && !isDigit(text[end]) && text[end] != u'/' &&
                       text[end] != u'-' && text[end] != u'.' && text[end] != u',' && text[end] != u':') {
                    ++end;
                }
                if (!addWord(text.substr(i, end - i))) return false;
                i = end;
            }
        }
        return true;
    }

    bool addWord(std::u16string_view word)
    {
        if (sameText(word, u"am") || sameText(word, u"a")) {
            m_items.push_back({Item::Kind::Morning, 0, 0, 0});
            return true;
        }
        if (sameText(word, u"pm") || sameText(word, u"p")) {
            m_items.push_back({Item::Kind::Afternoon, 0, 0, 0});
            return true;
        }
        if (sameText(word, u"г")) return true;
        for (const Locale* locale : {&m_locale, &Locale::english()}) {
            for (int month = 0; month < 12; ++month) {
                const auto index = static_cast<std::size_t>(month);
                if (sameText(word, locale->months[index]) || sameText(word, locale->monthsInDate[index]) ||
                    sameText(word, locale->shortMonths[index])) {
                    m_items.push_back({Item::Kind::Month, month + 1, 0, 0});
                    return true;
                }
            }
        }
        return false;
    }

    [[nodiscard]] bool is(std::size_t index, Item::Kind kind) const
    {
        return index < m_items.size() && m_items[index].kind == kind;
    }

    // Cuts h:m[:s] [AM|PM] or h AM|PM out of the items.
    bool takeTime()
    {
        std::size_t begin = 0;
        while (begin < m_items.size() && !is(begin, Item::Kind::Colon) && !is(begin, Item::Kind::Morning) &&
               !is(begin, Item::Kind::Afternoon)) {
            ++begin;
        }
        if (begin == m_items.size()) return true;
        if (begin == 0 || !is(begin - 1, Item::Kind::Number)) return false;
        --begin;
        std::size_t end = begin + 1;
        int parts[3] = {m_items[begin].value, 0, 0};
        for (int i = 1; i < 3 && is(end, Item::Kind::Colon); ++i, end += 2) {
            if (!is(end + 1, Item::Kind::Number)) return false;
            parts[i] = m_items[end + 1].value;
        }
        if (is(end, Item::Kind::Morning) || is(end, Item::Kind::Afternoon)) {
            if (parts[0] < 1 || parts[0] > 12) return false;
            if (parts[0] == 12) parts[0] = 0;
            if (is(end, Item::Kind::Afternoon)) parts[0] += 12;
            ++end;
        }
        if (parts[0] > 23 || parts[1] > 59 || parts[2] > 59) return false;
        m_time = (parts[0] * 3600 + parts[1] * 60 + parts[2]) / static_cast<double>(kSecondsPerDay);
        m_items.erase(m_items.begin() + static_cast<std::ptrdiff_t>(begin),
                      m_items.begin() + static_cast<std::ptrdiff_t>(end));
        for (const Item& item : m_items) {
            if (item.kind != Item::Kind::Number && item.kind != Item::Kind::Month &&
                item.kind != Item::Kind::Separator) {
                return false;
            }
        }
        return true;
    }

    std::optional<double> readDay()
    {
        std::vector<int> numbers;
        std::vector<std::size_t> digits;
        int month = 0;
        bool separated = true;
        bool anySeparator = false;
        for (const Item& item : m_items) {
            if (item.kind == Item::Kind::Separator) {
                if (separated && item.sign != u',') return std::nullopt;
                separated = true;
                anySeparator = true;
                continue;
            }
            separated = false;
            if (item.kind == Item::Kind::Month) {
                if (month != 0) return std::nullopt;
                month = item.value;
            } else {
                numbers.push_back(item.value);
                digits.push_back(item.digits);
            }
        }
        // A trailing full stop stands only behind a year ("2024 г.") or a month's short name.
        if (numbers.empty() || numbers.size() > 3) return std::nullopt;
        if (month != 0) return readNamedMonth(numbers, digits, month);
        if (numbers.size() < 2 || !anySeparator) return std::nullopt;
        if (numbers.size() == 2) {
            // Day and month of this year, or month and year.
            if (digits[1] > 2 || numbers[1] > 31) return valid(numbers[1], numbers[0], 1, digits[1]);
            const bool dayFirst = m_locale.order == Locale::DateOrder::DayMonthYear;
            return eitherOrder(m_thisYear, numbers[0], numbers[1], dayFirst, 4);
        }
        if (digits[0] > 2 || numbers[0] > 31) return valid(numbers[0], numbers[1], numbers[2], digits[0]);
        return eitherOrder(numbers[2], numbers[0], numbers[1],
                           m_locale.order == Locale::DateOrder::DayMonthYear, digits[2]);
    }

    // The locale's own order first, the other one when that is no date.
    static std::optional<double> eitherOrder(int year, int first, int second, bool dayFirst,
                                             std::size_t yearDigits)
    {
        const int day = dayFirst ? first : second;
        const int month = dayFirst ? second : first;
        if (const auto found = valid(year, month, day, yearDigits)) return found;
        return valid(year, day, month, yearDigits);
    }

    [[nodiscard]] std::optional<double>
    readNamedMonth(const std::vector<int>& numbers, const std::vector<std::size_t>& digits, int month) const
    {
        if (numbers.size() > 2) return std::nullopt;
        if (numbers.size() == 1) {
            if (digits[0] > 2 || numbers[0] > 31) return valid(numbers[0], month, 1, digits[0]);
            return valid(m_thisYear, month, numbers[0], 4);
        }
        if (digits[0] > 2 || numbers[0] > 31) return valid(numbers[0], month, numbers[1], digits[0]);
        return valid(numbers[1], month, numbers[0], digits[1]);
    }

    static std::optional<double> valid(int year, int month, int day, std::size_t yearDigits)
    {
        if (yearDigits <= 2) year = fullYear(year);
        if (year < 100 || year > 9999 || month < 1 || month > 12 || day < 1 ||
            day > daysInMonth(year, month)) {
            return std::nullopt;
        }
        return daysFromDate(year, month, day);
    }

    const Locale& m_locale;
    int m_thisYear;
    std::vector<Item> m_items;
    std::optional<double> m_time;
};

} // namespace

bool isLeapYear(int year) { return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0; }

int daysInMonth(int year, int month)
{
    constexpr int kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    return month == 2 && isLeapYear(year) ? 29 : kDays[month - 1];
}

int fullYear(int year)
{
    if (year < 0 || year > 99) return year;
    return year < 30 ? 2000 + year : 1900 + year;
}

std::optional<double> daysFromDate(std::int64_t year, std::int64_t month, std::int64_t day)
{
    const std::int64_t monthIndex = year * 12 + month - 1;
    std::int64_t y = monthIndex >= 0 ? monthIndex / 12 : (monthIndex - 11) / 12;
    const std::int64_t m = monthIndex - y * 12 + 1;
    if (y < -10000 || y > 20000) return std::nullopt;
    // Years counted from March make the leap day the last one (the civil calendar carried on before 1582).
    y -= m <= 2 ? 1 : 0;
    const std::int64_t era = (y >= 0 ? y : y - 399) / 400;
    const std::int64_t yearOfEra = y - era * 400;
    const std::int64_t dayOfYear = (153 * (m + (m > 2 ? -3 : 9)) + 2) / 5;
    const std::int64_t dayOfEra = yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 + dayOfYear;
    const double days =
        static_cast<double>(era * 146097 + dayOfEra - 719468 + kEpochDays) + static_cast<double>(day - 1);
    if (days < kMinDate || days >= kEndDate) return std::nullopt;
    return days;
}

double joinDate(double days, double timeOfDay) { return days < 0 ? days - timeOfDay : days + timeOfDay; }

DateParts dateParts(double date)
{
    double days = std::trunc(date);
    auto seconds = static_cast<int>(std::round(std::fabs(date - days) * kSecondsPerDay));
    if (seconds >= kSecondsPerDay) {
        seconds -= kSecondsPerDay;
        days += 1;
    }
    DateParts parts;
    parts.hour = seconds / 3600;
    parts.minute = seconds / 60 % 60;
    parts.second = seconds % 60;
    const auto z = static_cast<std::int64_t>(days) - kEpochDays + 719468;
    const std::int64_t era = (z >= 0 ? z : z - 146096) / 146097;
    const std::int64_t dayOfEra = z - era * 146097;
    const std::int64_t yearOfEra = (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096) / 365;
    const std::int64_t dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
    const std::int64_t shifted = (5 * dayOfYear + 2) / 153;
    parts.day = static_cast<int>(dayOfYear - (153 * shifted + 2) / 5 + 1);
    parts.month = static_cast<int>(shifted < 10 ? shifted + 3 : shifted - 9);
    parts.year = static_cast<int>(yearOfEra + era * 400 + (parts.month <= 2 ? 1 : 0));
    return parts;
}

int weekdayOf(double date)
{
    const auto days = static_cast<std::int64_t>(std::trunc(date));
    return static_cast<int>(((days + 6) % 7 + 7) % 7) + 1; // day 0 was a Saturday
}

double localNow()
{
    const auto moment = std::chrono::system_clock::now().time_since_epoch();
    const std::tm now = localTime();
    const auto days = daysFromDate(now.tm_year + 1900, now.tm_mon + 1, now.tm_mday);
    const double fraction = std::chrono::duration<double>(moment % std::chrono::seconds(1)).count();
    const double seconds = now.tm_hour * 3600 + now.tm_min * 60 + std::min(now.tm_sec, 59) + fraction;
    return days.value_or(0) + seconds / kSecondsPerDay;
}

int currentYear() { return localTime().tm_year + 1900; }

std::optional<double> parseDate(std::u16string_view text, const Locale& locale, int thisYear)
{
    if (text.size() > 100) return std::nullopt;
    return DateReader(locale, thisYear).read(text);
}

std::u16string formatShortDate(const DateParts& parts, const Locale& locale)
{
    const std::size_t width = locale.padsDate ? 2 : 1;
    const std::u16string day = padded(parts.day, width);
    const std::u16string month = padded(parts.month, width);
    const bool dayFirst = locale.order == Locale::DateOrder::DayMonthYear;
    return (dayFirst ? day : month) + locale.dateSeparator + (dayFirst ? month : day) + locale.dateSeparator +
           widened(std::to_string(parts.year));
}

std::u16string formatLongTime(const DateParts& parts, const Locale& locale)
{
    const std::u16string rest = u":" + padded(parts.minute, 2) + u":" + padded(parts.second, 2);
    if (!locale.twelveHours) return padded(parts.hour, 1) + rest;
    const int hour = parts.hour % 12 == 0 ? 12 : parts.hour % 12;
    return padded(hour, 1) + rest + (parts.hour < 12 ? u" AM" : u" PM");
}

std::u16string formatShortTime(const DateParts& parts)
{
    return padded(parts.hour, 2) + u":" + padded(parts.minute, 2);
}

std::u16string formatLongDate(double date, const Locale& locale)
{
    const DateParts parts = dateParts(date);
    const std::u16string_view month = locale.monthsInDate[static_cast<std::size_t>(parts.month - 1)];
    const std::u16string year = widened(std::to_string(parts.year));
    if (locale.order == Locale::DateOrder::DayMonthYear) {
        return padded(parts.day, 1) + u" " + std::u16string(month) + u" " + year +
               std::u16string(locale.yearSuffix);
    }
    const std::u16string_view weekday = locale.weekdays[static_cast<std::size_t>(weekdayOf(date) - 1)];
    return std::u16string(weekday) + u", " + std::u16string(month) + u" " + padded(parts.day, 2) + u", " +
           year;
}

std::u16string formatDate(double date, const Locale& locale)
{
    const DateParts parts = dateParts(date);
    const bool hasTime = parts.hour != 0 || parts.minute != 0 || parts.second != 0;
    if (std::trunc(date) == 0) return formatLongTime(parts, locale);
    if (!hasTime) return formatShortDate(parts, locale);
    return formatShortDate(parts, locale) + u" " + formatLongTime(parts, locale);
}

} // namespace script::vbscript
