#pragma once

#include "script/Dispatch.h"

namespace script::vbscript
{

enum class TokenKind : std::uint8_t {
    EndOfFile,
    EndOfLine,
    Colon, // between statements of a line
    Identifier,
    Keyword,
    Number,
    String,
    Date,
    LeftParen,
    RightParen,
    Comma,
    Dot,        // behind an expression: obj.Name
    LeadingDot, // of the object of the surrounding With
    Plus,
    Minus,
    Times,
    Divide,
    IntegerDivide,
    Power,
    Concat,
    Equal,
    NotEqual,
    Less,
    Greater,
    LessEqual,
    GreaterEqual,
};

// clang-format off
enum class Keyword : std::uint8_t {
    And, ByRef, ByVal, Call, Case, Class, Const, Dim, Do, Each, Else, ElseIf, Empty, End, Eqv, Erase, Error, Execute,
    ExecuteGlobal, Exit, Explicit, False, For, Function, Get, GoTo, If, Imp, In, Is, Let, Loop, Me, Mod, New, Next, Not,
    Nothing, Null, On, Option, Or, Preserve, Private, Property, Public, ReDim, Rem, Resume, Select, Set, Step, Stop,
    Sub, Then, To, True, Until, Wend, While, With, Xor, Default,
    None,
};
// clang-format on

/// One word or sign of the source, with where it stands (both 1-based).
struct Token {
    TokenKind kind = TokenKind::EndOfFile;
    Keyword keyword = Keyword::None; // also set for words that are keywords only in their place
    int line = 1;
    int column = 1;
    std::u16string_view spelling; // of identifiers and keywords; points into the source
    Value value;                  // of literals
};

struct SourceOptions {
    bool htmlComments = false; ///< lines that begin with "<!--" or "-->" are comments, as in pages
    int firstLine = 1;         ///< the number of the first line
};

/// Splits source text into tokens. Runs of empty lines give one EndOfLine; the last token is EndOfFile.
/// @param source must outlive the tokens
/// @errors compilation errors with line and column
Result<std::vector<Token>> tokenize(std::u16string_view source, SourceOptions options);

} // namespace script::vbscript
