#pragma once

#include "swfc/Diagnostics.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace swfc::actionscript
{

// clang-format off
enum class Tok : std::uint8_t {
    End, Identifier, Number, String,
    SlashPath,  ///< version 4 only: "/clip:variable" and the like
    Include, InitClip, EndInitClip,
    // punctuators
    LeftBrace, RightBrace, LeftParen, RightParen, LeftBracket, RightBracket,
    Semicolon, Comma, Dot, Question, Colon,
    Less, Greater, LessEqual, GreaterEqual, Equal, NotEqual, StrictEqual, StrictNotEqual,
    Plus, Minus, Star, Slash, Percent, PlusPlus, MinusMinus,
    ShiftLeft, ShiftRight, ShiftRightUnsigned, And, Or, Xor, Not, Complement, LogicalAnd, LogicalOr,
    Assign, PlusAssign, MinusAssign, StarAssign, SlashAssign, PercentAssign,
    ShiftLeftAssign, ShiftRightAssign, ShiftRightUnsignedAssign, AndAssign, OrAssign, XorAssign,
    // words that cannot be names
    Break, Case, Catch, Class, Continue, Default, Delete, Do, Else, Extends, Finally, For, Function, If,
    Import, In, InstanceOf, Interface, New, Return, Super, Switch, This, Throw, Try, TypeOf, Var, Void,
    While, With, True, False, Null, Undefined,
    // operators spelled as words; names everywhere else
    WordAdd, WordEq, WordNe, WordLt, WordGt, WordLe, WordGe, WordAnd, WordOr, WordNot,
};
// clang-format on

struct Token {
    Tok kind = Tok::End;
    bool newlineBefore = false;
    Position where;
    std::string text;  ///< Identifier and keywords: as written; String: its value in UTF-8; SlashPath
    double number = 0; ///< Number
};

/// @returns how a message names this kind: "';'", "identifier", "end of script".
std::string_view spelling(Tok kind);

/// @returns how a message names what was found.
std::string describe(const Token& token);

} // namespace swfc::actionscript
