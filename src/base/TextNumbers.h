#pragma once

#include <optional>
#include <string>
#include <string_view>

// Numbers and times as people and scripts write them.
namespace base
{

/// @returns nothing for what is no finite number, or a number with something behind it.
std::optional<double> numberFromText(std::string_view text);

/// A local time like 2001-02-03T04:05:06. @returns milliseconds since 1970
std::optional<double> localTimeFromText(const std::string& text);

/// What a decimal number is that std::from_chars has called out of range, without its sign: 0 or infinity.
double valueOutOfRange(std::string_view text);

} // namespace base
