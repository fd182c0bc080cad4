#include "swfc/actionscript3/Lexer.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>

namespace swfc::actionscript3
{
namespace
{

// The longest first: the first that fits is taken.
constexpr std::string_view kPunctuators[] = {
    ">>>=", "===", "!==", ">>>", "<<=", ">>=", "&&=", "||=", "...", "==", "!=", "<=", ">=", "&&",
    "||",   "++",  "--",  "+=",  "-=",  "*=",  "/=",  "%=",  "&=",  "|=", "^=", "<<", ">>", "::",
    "..",   ".<",  "{",   "}",   "(",   ")",   "[",   "]",   ";",   ",",  ".",  "?",  ":",  "<",
    ">",    "=",   "+",   "-",   "*",   "/",   "%",   "&",   "|",   "^",  "!",  "~",  "@",
};

constexpr std::string_view kKeywords[] = {
    "as",     "break",      "case",    "catch",   "class",      "const",     "continue", "default",
    "delete", "do",         "else",    "extends", "false",      "finally",   "for",      "function",
    "if",     "implements", "import",  "in",      "instanceof", "interface", "internal", "is",
    "new",    "null",       "package", "private", "protected",  "public",    "return",   "super",
    "switch", "this",       "throw",   "true",    "try",        "typeof",    "use",      "var",
    "void",   "while",      "with",
};

bool isDigit(char c) { return c >= '0' && c <= '9'; }

int hexValue(char c)
{
    if (isDigit(c)) return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

} // namespace

bool isNameStart(char c)
{
    const auto u = static_cast<unsigned char>(c);
    return (u >= 'a' && u <= 'z') || (u >= 'A' && u <= 'Z') || u == '_' || u == '$' || u >= 0x80;
}
bool isNamePart(char c) { return isNameStart(c) || isDigit(c); }

void appendUtf8(std::string& out, std::uint32_t code)
{
    const auto put = [&](std::uint32_t byte) { out += static_cast<char>(byte); };
    if (code < 0x80) {
        put(code);
    } else if (code < 0x800) {
        put(0xC0 | code >> 6);
        put(0x80 | (code & 0x3F));
    } else if (code < 0x10000) {
        put(0xE0 | code >> 12);
        put(0x80 | (code >> 6 & 0x3F));
        put(0x80 | (code & 0x3F));
    } else {
        put(0xF0 | code >> 18);
        put(0x80 | (code >> 12 & 0x3F));
        put(0x80 | (code >> 6 & 0x3F));
        put(0x80 | (code & 0x3F));
    }
}

std::string describe(const Token& token)
{
    switch (token.kind) {
    case Token::Kind::End: return "end of script";
    case Token::Kind::Name:
    case Token::Kind::Keyword:
    case Token::Kind::Punctuator: return "'" + token.text + "'";
    case Token::Kind::Number: return "number " + token.text;
    case Token::Kind::String: return "text \"" + token.text.substr(0, 40) + "\"";
    case Token::Kind::RegExp: return "regular expression";
    }
    return {};
}

char Lexer::take()
{
    const char c = at();
    ++m_mark.offset;
    if (c == '\n' || (c == '\r' && at() != '\n')) {
        ++m_mark.line;
        m_mark.lineStart = static_cast<long>(m_mark.offset);
        m_newline = true;
    }
    return c;
}

std::string Lexer::takeUntil(std::string_view end, bool& found)
{
    std::string text;
    found = false;
    while (!atEnd()) {
        if (startsWith(end)) {
            skip(end.size());
            found = true;
            break;
        }
        text += take();
    }
    return text;
}

void Lexer::skipBlanks()
{
    constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
    while (!atEnd()) {
        const char c = at();
        if (c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\f' || c == '\v') {
            take();
        } else if (startsWith("//")) {
            while (!atEnd() && at() != '\n' && at() != '\r') take();
        } else if (startsWith("/*")) {
            const Position where = here();
            bool found = false;
            skip(2);
            takeUntil("*/", found);
            if (!found) error(where, "expected '*/' to end this comment, found end of script");
        } else if (startsWith(kByteOrderMark)) {
            skip(kByteOrderMark.size());
        } else {
            return;
        }
    }
}

Token Lexer::next()
{
    m_newline = m_mark.offset == 0;
    Token token;
    for (;;) {
        skipBlanks();
        token.newlineBefore = m_newline;
        token.where = here();
        token.begin = m_mark;
        if (atEnd()) return token;
        const char c = at();
        if (isNameStart(c)) {
            while (isNamePart(at())) token.text += take();
            token.kind = std::ranges::find(kKeywords, token.text) != std::end(kKeywords)
                             ? Token::Kind::Keyword
                             : Token::Kind::Name;
            return token;
        }
        if (isDigit(c) || (c == '.' && isDigit(at(1)))) {
            number(token);
            return token;
        }
        if (c == '"' || c == '\'') {
            string(token, take());
            return token;
        }
        for (const std::string_view punctuator : kPunctuators) {
            if (!startsWith(punctuator)) continue;
            skip(punctuator.size());
            token.kind = Token::Kind::Punctuator;
            token.text = punctuator;
            return token;
        }
        error(token.where, std::string("expected a statement, found '") + c + "'");
        take();
    }
}

void Lexer::number(Token& token)
{
    token.kind = Token::Kind::Number;
    const std::size_t start = m_mark.offset;
    token.isInteger = true;
    if (at() == '0' && (at(1) == 'x' || at(1) == 'X')) {
        skip(2);
        if (hexValue(at()) < 0) error(here(), "expected a hexadecimal digit after 0x");
        for (; hexValue(at()) >= 0; skip(1)) token.number = token.number * 16 + hexValue(at());
    } else {
        while (isDigit(at())) skip(1);
        if (at() == '.' && at(1) != '.') {
            token.isInteger = false;
            do skip(1);
            while (isDigit(at()));
        }
        if ((at() == 'e' || at() == 'E') &&
            (isDigit(at(1)) || ((at(1) == '+' || at(1) == '-') && isDigit(at(2))))) {
            token.isInteger = false;
            skip(2);
            while (isDigit(at())) skip(1);
        }
        const std::string_view digits = m_text.substr(start, m_mark.offset - start);
        const auto read = std::from_chars(digits.data(), digits.data() + digits.size(), token.number);
        // Too large or too small: which of both, the sign of the exponent says.
        if (read.ec == std::errc::result_out_of_range)
            token.number =
                digits.find("e-") != std::string_view::npos || digits.find("E-") != std::string_view::npos
                    ? 0
                    : std::numeric_limits<double>::infinity();
    }
    token.text = m_text.substr(start, m_mark.offset - start);
    if (isNameStart(at()))
        error(here(), "expected the end of a number, found '" + std::string(1, at()) + "'");
}

std::uint32_t Lexer::hexadecimal(int digits)
{
    std::uint32_t code = 0;
    for (int i = 0; i < digits; ++i) {
        if (hexValue(at()) < 0) {
            error(here(), "expected a hexadecimal digit in this escape");
            break;
        }
        code = code * 16 + static_cast<std::uint32_t>(hexValue(take()));
    }
    return code;
}

void Lexer::escape(std::string& value)
{
    const char c = take();
    switch (c) {
    case 'n': value += '\n'; return;
    case 't': value += '\t'; return;
    case 'r': value += '\r'; return;
    case 'b': value += '\b'; return;
    case 'f': value += '\f'; return;
    case 'v': value += '\v'; return;
    case '0': value += '\0'; return;
    case 'x': appendUtf8(value, hexadecimal(2)); return;
    case 'u': {
        std::uint32_t code = hexadecimal(4);
        // The two halves of a character beyond the first plane are one in UTF-8.
        if (code >= 0xD800 && code < 0xDC00 && startsWith("\\u")) {
            const Mark before = m_mark;
            skip(2);
            const std::uint32_t low = hexadecimal(4);
            if (low >= 0xDC00 && low < 0xE000)
                code = 0x10000 + ((code - 0xD800) << 10U) + (low - 0xDC00);
            else
                m_mark = before;
        }
        appendUtf8(value, code);
        return;
    }
    case '\r':
        if (at() == '\n') take();
        return;
    case '\n': return; // the text goes on in the next line
    default: value += c;
    }
}

void Lexer::string(Token& token, char quote)
{
    token.kind = Token::Kind::String;
    while (at() != quote) {
        if (atEnd() || at() == '\n' || at() == '\r') {
            error(token.where, "expected a quotation mark to end this text, found the end of the line");
            return;
        }
        const char c = take();
        if (c == '\\')
            escape(token.text);
        else
            token.text += c;
    }
    skip(1);
}

Token Lexer::regExp(const Token& slash)
{
    Token token = slash;
    token.kind = Token::Kind::RegExp;
    token.text.clear();
    m_mark = slash.begin;
    skip(1);
    bool inClass = false;
    while (inClass || at() != '/') {
        if (atEnd() || at() == '\n' || at() == '\r') {
            error(slash.where, "expected '/' to end this regular expression, found the end of the line");
            return token;
        }
        const char c = take();
        token.text += c;
        if (c == '\\' && !atEnd() && at() != '\n')
            token.text += take();
        else if (c == '[')
            inClass = true;
        else if (c == ']')
            inClass = false;
    }
    skip(1);
    while (isNamePart(at())) token.flags += take();
    return token;
}

} // namespace swfc::actionscript3
