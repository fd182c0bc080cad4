#pragma once

#include <string_view>

namespace flash::avm2::classes
{

/// What the error of a number says, with %1, %2 and so on for what it is about. Empty for an unknown one.
[[nodiscard]] std::string_view errorText(int number);

} // namespace flash::avm2::classes
