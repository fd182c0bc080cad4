#pragma once

#include <optional>
#include <string>
#include <string_view>

// How scripts and files name the levels of a stage: "_level" and a number.
namespace flash::swf
{

inline constexpr std::u16string_view kLevelPrefix = u"_level";

[[nodiscard]] inline std::string levelName(int number) { return "_level" + std::to_string(number); }

/// @param name folded to lower case already where cases do not count
/// @returns what follows the prefix, digits or not; nothing for a name without it
template <class Char>
[[nodiscard]] std::optional<std::basic_string_view<Char>> afterLevelPrefix(std::basic_string_view<Char> name)
{
    if (name.size() < kLevelPrefix.size()) return {};
    for (std::size_t i = 0; i < kLevelPrefix.size(); ++i)
        if (static_cast<char16_t>(name[i]) != kLevelPrefix[i]) return {};
    return name.substr(kLevelPrefix.size());
}

} // namespace flash::swf
