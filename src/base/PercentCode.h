#pragma once

#include <string>
#include <string_view>

namespace base
{

/// What "+" means: in addresses itself, in the variables of a query a space.
enum class Plus : bool { Itself, Space };

/// "%41" becomes "A"; a "%" without two digits stays.
std::string percentDecoded(std::string_view text, Plus plus);

/// @param kept bytes that stay as they are besides letters and digits of ASCII; every other becomes "%41"
std::string percentEncoded(std::string_view bytes, std::string_view kept);

} // namespace base
