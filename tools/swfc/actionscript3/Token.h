#pragma once

#include "swfc/Diagnostics.h"

#include <cstdint>
#include <string>

namespace swfc::actionscript3
{

/// A place in a source text from which it can be read on.
struct Mark {
    std::size_t offset = 0;
    int line = 1;
    long lineStart = 0; ///< offset of the line's first byte; before the text when that begins within a line
};

struct Token {
    enum class Kind : std::uint8_t { End, Name, Keyword, Number, String, Punctuator, RegExp };
    Kind kind = Kind::End;
    bool newlineBefore = false;
    bool isInteger = false; ///< a number without a point or an exponent
    Position where;
    Mark begin;
    std::string text;  ///< as written; of a string, its value in UTF-8; of a regular expression, its source
    std::string flags; ///< of a regular expression
    double number = 0;
};

/// @returns how a message names what was found.
std::string describe(const Token& token);

} // namespace swfc::actionscript3
