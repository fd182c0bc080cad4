#include "base/TextNumbers.h"

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

} // namespace base
