#pragma once

#include "swfc/actionscript/Lexer.h"

#include <span>
#include <string_view>
#include <unordered_map>

// How the fixed words and signs of the language are written.
namespace swfc::actionscript
{

const std::unordered_map<std::string_view, Tok>& keywords();

struct Punctuator {
    std::string_view text;
    Tok kind;
};
/// Longest first: the first that fits is taken.
std::span<const Punctuator> punctuators();

} // namespace swfc::actionscript
