#pragma once

#include <string>
#include <string_view>

namespace base
{

/// What "+" means: in addresses itself, in the variables of a query a space.
enum class Plus : bool { Itself, Space };

/// "%41" becomes "A"; a "%" without two digits stays.
std::string percentDecoded(std::string_view text, Plus plus);

} // namespace base
