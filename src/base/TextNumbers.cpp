#include "base/TextNumbers.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <ctime>

namespace base
{

std::optional<double> numberFromText(std::string_view text)
{
    double value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size() || !std::isfinite(value))
        return std::nullopt;
    return value;
}

std::optional<double> localTimeFromText(const std::string& text)
{
    std::tm local{};
    char rest = 0;
    const int found = std::sscanf(text.c_str(), "%d-%d-%dT%d:%d:%d%c", &local.tm_year, &local.tm_mon,
                                  &local.tm_mday, &local.tm_hour, &local.tm_min, &local.tm_sec, &rest);
    local.tm_year -= 1900;
    local.tm_mon -= 1;
    local.tm_isdst = -1;
    const std::time_t seconds = found == 6 ? std::mktime(&local) : -1;
    if (seconds == -1) return std::nullopt;
    return 1000.0 * static_cast<double>(seconds);
}

double valueOutOfRange(std::string_view text)
{
    const std::size_t mark = std::min(text.find_first_of("eE"), text.size());
    const std::string_view digits = text.substr(0, mark);
    const auto point = static_cast<std::int64_t>(std::min(digits.find('.'), digits.size()));
    const auto first = static_cast<std::int64_t>(std::min(digits.find_first_of("123456789"), digits.size()));
    constexpr std::int64_t kFarthest = std::int64_t{1} << 40; // more digits than any text has
    std::int64_t exponent = 0;
    if (mark + 1 < text.size()) {
        std::string_view rest = text.substr(mark + 1);
        if (rest[0] == '+') rest.remove_prefix(1);
        const auto [end, error] = std::from_chars(rest.data(), rest.data() + rest.size(), exponent);
        if (error == std::errc::result_out_of_range) exponent = rest[0] == '-' ? -kFarthest : kFarthest;
    }
    exponent = std::clamp(exponent, -kFarthest, kFarthest);
    // By the place of the first digit that counts, which is far from 1.
    return point - first + exponent > 0 ? HUGE_VAL : 0.0;
}

} // namespace base
