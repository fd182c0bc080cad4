#include "script/vbscript/Lexer.h"

#include "base/TextNumbers.h"
#include "script/vbscript/DateTime.h"
#include "script/vbscript/Errors.h"
#include "script/vbscript/Text.h"

#include <charconv>
#include <cmath>
#include <limits>
#include <string>
#include <unordered_map>

namespace script::vbscript
{

namespace
{

constexpr std::size_t kMaxIdentifier = 255;

// In the order of the enumeration.
constexpr std::u16string_view kKeywords[] = {
    u"and",           u"byref",   u"byval",    u"call",   u"case",   u"class",
    u"const",         u"dim",     u"do",       u"each",   u"else",   u"elseif",
    u"empty",         u"end",     u"eqv",      u"erase",  u"error",  u"execute",
    u"executeglobal", u"exit",    u"explicit", u"false",  u"for",    u"function",
    u"get",           u"goto",    u"if",       u"imp",    u"in",     u"is",
    u"let",           u"loop",    u"me",       u"mod",    u"new",    u"next",
    u"not",           u"nothing", u"null",     u"on",     u"option", u"or",
    u"preserve",      u"private", u"property", u"public", u"redim",  u"rem",
    u"resume",        u"select",  u"set",      u"step",   u"stop",   u"sub",
    u"then",          u"to",      u"true",     u"until",  u"wend",   u"while",
    u"with",          u"xor",     u"default",
};
static_assert(std::size(kKeywords) == static_cast<std::size_t>(Keyword::None));

// Words with a meaning in one place only; elsewhere they name things.
bool isContextual(Keyword keyword)
{
    switch (keyword) {
    case Keyword::Default:
    case Keyword::Error:
    case Keyword::Execute:
    case Keyword::ExecuteGlobal:
    case Keyword::Explicit:
    case Keyword::Property:
    case Keyword::Step: return true;
    default: return false;
    }
}

const std::unordered_map<std::u16string_view, Keyword>& keywords()
{
    static const auto table = [] {
        std::unordered_map<std::u16string_view, Keyword> words;
        for (std::size_t i = 0; i < std::size(kKeywords); ++i)
            words.emplace(kKeywords[i], static_cast<Keyword>(i));
        return words;
    }();
    return table;
}

bool isLetter(char16_t c)
{
    // Letters beyond ASCII are let through in names: scripts of the time were written in the system's code
    // page.
    return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z') ||
           (c >= 0xC0 && lowerCase(c) != upperCase(c));
}
bool isNamePart(char16_t c) { return isLetter(c) || isDigit(c) || c == u'_'; }
bool isLineEnd(char16_t c) { return c == u'\n' || c == u'\r' || c == 0x2028 || c == 0x2029; }
bool isBlank(char16_t c) { return !isLineEnd(c) && isSpace(c); }

class Lexer
{
public:
    Lexer(std::u16string_view source, SourceOptions options)
        : m_source(source), m_line(options.firstLine), m_htmlComments(options.htmlComments)
    {
    }

    Result<std::vector<Token>> run()
    {
        for (;;) {
            CHECK_RESULT(skipBlanks());
            m_start = m_position;
            if (atEnd()) {
                add(TokenKind::EndOfLine);
                add(TokenKind::EndOfFile);
                return std::move(m_tokens);
            }
            CHECK_RESULT(readToken());
        }
    }

private:
    [[nodiscard]] bool atEnd() const { return m_position >= m_source.size(); }
    [[nodiscard]] char16_t peek(std::size_t ahead = 0) const
    {
        return m_position + ahead < m_source.size() ? m_source[m_position + ahead] : u'\0';
    }

    Failed failAt(int number, std::size_t position) const
    {
        auto failed = fault(number);
        failed.value()->line = m_line;
        failed.value()->column = static_cast<int>(position - m_lineStart) + 1;
        return failed;
    }

    Token& add(TokenKind kind)
    {
        // Several line ends in a row mean no more than one.
        if (kind == TokenKind::EndOfLine && !m_tokens.empty() && m_tokens.back().kind == kind)
            return m_tokens.back();
        Token& token = m_tokens.emplace_back();
        token.kind = kind;
        token.line = m_line;
        token.column = static_cast<int>(m_start - m_lineStart) + 1;
        return token;
    }

    void newLine()
    {
        if (peek() == u'\r' && peek(1) == u'\n') ++m_position;
        ++m_position;
        ++m_line;
        m_lineStart = m_position;
    }

    // Also passes over " _" at the end of a line.
    Result<void> skipBlanks()
    {
        m_continued = false;
        for (;;) {
            while (!atEnd() && isBlank(peek())) ++m_position;
            if (peek() != u'_') return {};
            std::size_t after = m_position + 1;
            while (after < m_source.size() && isBlank(m_source[after])) ++after;
            if (after < m_source.size() && !isLineEnd(m_source[after])) return {};
            m_position = after;
            if (atEnd()) return {};
            newLine();
            m_continued = true;
        }
    }

    void skipComment()
    {
        while (!atEnd() && !isLineEnd(peek())) ++m_position;
    }

    [[nodiscard]] bool startsHtmlComment() const
    {
        if (!m_htmlComments) return false;
        const auto rest = m_source.substr(m_position, 4);
        if (rest != u"<!--" && rest.substr(0, 3) != u"-->") return false;
        return m_tokens.empty() || m_tokens.back().kind == TokenKind::EndOfLine;
    }

    Result<void> readToken()
    {
        const char16_t c = peek();
        if (isLineEnd(c)) {
            add(TokenKind::EndOfLine);
            newLine();
            return {};
        }
        if (c == u'\'' || startsHtmlComment()) {
            skipComment();
            return {};
        }
        if (isLetter(c)) return readWord();
        if (c == u'[') return readBracketed();
        if (isDigit(c) || (c == u'.' && isDigit(peek(1)))) return readNumber();
        if (c == u'"') return readString();
        if (c == u'#') return readDate();
        if (c == u'&' && startsRadixNumber()) return readRadixNumber();
        return readSign();
    }

    Result<void> readWord()
    {
        while (isNamePart(peek())) ++m_position;
        const auto spelling = m_source.substr(m_start, m_position - m_start);
        if (spelling.size() > kMaxIdentifier) return failAt(error::kIdentifierTooLong, m_start);
        const bool isMember = !m_tokens.empty() && (m_tokens.back().kind == TokenKind::Dot ||
                                                    m_tokens.back().kind == TokenKind::LeadingDot);
        const auto found = spelling.size() <= 13 ? keywords().find(folded(spelling)) : keywords().end();
        const Keyword keyword = found == keywords().end() ? Keyword::None : found->second;
        if (keyword == Keyword::Rem && !isMember) {
            skipComment();
            return {};
        }
        const bool isName = isMember || keyword == Keyword::None || isContextual(keyword);
        Token& token = add(isName ? TokenKind::Identifier : TokenKind::Keyword);
        token.spelling = spelling;
        if (!isMember) token.keyword = keyword;
        return {};
    }

    Result<void> readBracketed()
    {
        while (!atEnd() && !isLineEnd(peek()) && peek() != u']') ++m_position;
        if (peek() != u']') return failAt(error::kExpectedBracket, m_position);
        const auto spelling = m_source.substr(m_start + 1, m_position - m_start - 1);
        ++m_position;
        if (spelling.size() > kMaxIdentifier) return failAt(error::kIdentifierTooLong, m_start);
        add(TokenKind::Identifier).spelling = spelling;
        return {};
    }

    Result<void> readNumber()
    {
        const std::size_t begin = m_position;
        bool whole = true;
        while (isDigit(peek())) ++m_position;
        if (peek() == u'.') {
            whole = false;
            ++m_position;
            while (isDigit(peek())) ++m_position;
        }
        if (lowerCase(peek()) == u'e') {
            const std::size_t sign = peek(1) == u'+' || peek(1) == u'-' ? 2 : 1;
            if (isDigit(peek(sign))) {
                whole = false;
                m_position += sign;
                while (isDigit(peek())) ++m_position;
            }
        }
        // A word may follow without a blank: If x=1Then.
        std::string digits;
        for (const char16_t c : m_source.substr(begin, m_position - begin)) digits += static_cast<char>(c);
        double value = 0;
        const auto [end, code] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
        if (code == std::errc::result_out_of_range && base::valueOutOfRange(digits) != 0)
            return failAt(error::kInvalidNumber, m_start);
        Token& token = add(TokenKind::Number);
        token.value = whole && value <= INT32_MAX ? Value::number(static_cast<std::int64_t>(value))
                                                  : Value::real(value);
        return {};
    }

    // "a"&hello joins two texts; &HFF is a number, also in &HFFor&H1.
    [[nodiscard]] bool startsRadixNumber() const
    {
        const bool hexadecimal = lowerCase(peek(1)) == u'h';
        if (!hexadecimal && lowerCase(peek(1)) != u'o') return false;
        std::size_t length = 2;
        while (isRadixDigit(peek(length), hexadecimal)) ++length;
        if (length == 2) return false;
        std::size_t end = length;
        while (isNamePart(peek(end))) ++end;
        if (end == length) return true;
        const auto word = keywords().find(folded(m_source.substr(m_position + length, end - length)));
        return word != keywords().end();
    }
    static bool isRadixDigit(char16_t c, bool hexadecimal)
    {
        const int digit = hexDigit(c);
        return digit >= 0 && (hexadecimal || digit <= 7);
    }

    Result<void> readRadixNumber()
    {
        ++m_position;
        const bool hexadecimal = lowerCase(peek()) == u'h';
        ++m_position;
        std::uint64_t bits = 0;
        for (; isRadixDigit(peek(), hexadecimal); ++m_position) {
            bits = bits * (hexadecimal ? 16 : 8) + static_cast<std::uint64_t>(hexDigit(peek()));
            if (bits > UINT32_MAX) return failAt(error::kInvalidNumber, m_start);
        }
        Token& token = add(TokenKind::Number);
        // Without the closing "&" a number of up to 16 bits is a signed 16-bit one: &HFFFF is -1. The type is
        // then that of any literal, the smallest that holds the number.
        const bool isLong = peek() == u'&' && !isNamePart(peek(1)) && peek(1) != u'"';
        if (isLong) ++m_position;
        if (bits <= UINT16_MAX && !isLong)
            token.value = Value::integer(static_cast<std::int16_t>(static_cast<std::uint16_t>(bits)));
        else
            token.value = Value::number(static_cast<std::int32_t>(static_cast<std::uint32_t>(bits)));
        return {};
    }

    Result<void> readString()
    {
        std::u16string text;
        ++m_position;
        for (;;) {
            if (atEnd() || isLineEnd(peek())) return failAt(error::kUnterminatedString, m_position);
            const char16_t c = peek();
            ++m_position;
            if (c == u'"') {
                if (peek() != u'"') break;
                ++m_position;
            }
            text += c;
        }
        add(TokenKind::String).value = Value::string(text);
        return {};
    }

    Result<void> readDate()
    {
        ++m_position;
        const std::size_t begin = m_position;
        while (!atEnd() && !isLineEnd(peek()) && peek() != u'#') ++m_position;
        if (peek() != u'#') return failAt(error::kSyntax, m_start);
        // Literals are read the American way, whatever the locale.
        const auto days =
            parseDate(m_source.substr(begin, m_position - begin), Locale::english(), currentYear());
        if (!days) return failAt(error::kSyntax, m_start);
        ++m_position;
        add(TokenKind::Date).value = Value::date(*days);
        return {};
    }

    Result<void> readSign()
    {
        const char16_t c = peek();
        const char16_t next = peek(1);
        TokenKind kind{};
        std::size_t length = 1;
        switch (c) {
        case u':': kind = TokenKind::Colon; break;
        case u'(': kind = TokenKind::LeftParen; break;
        case u')': kind = TokenKind::RightParen; break;
        case u',': kind = TokenKind::Comma; break;
        case u'.': kind = isBehindExpression() ? TokenKind::Dot : TokenKind::LeadingDot; break;
        case u'+': kind = TokenKind::Plus; break;
        case u'-': kind = TokenKind::Minus; break;
        case u'*': kind = TokenKind::Times; break;
        case u'/': kind = TokenKind::Divide; break;
        case u'\\': kind = TokenKind::IntegerDivide; break;
        case u'^': kind = TokenKind::Power; break;
        case u'&': kind = TokenKind::Concat; break;
        case u'=':
            kind = TokenKind::Equal;
            // Also written the other way round.
            if (next == u'<' || next == u'>') {
                kind = next == u'<' ? TokenKind::LessEqual : TokenKind::GreaterEqual;
                length = 2;
            }
            break;
        case u'<':
            kind = next == u'=' ? TokenKind::LessEqual : next == u'>' ? TokenKind::NotEqual : TokenKind::Less;
            length = kind == TokenKind::Less ? 1 : 2;
            break;
        case u'>':
            kind = next == u'='   ? TokenKind::GreaterEqual
                   : next == u'<' ? TokenKind::NotEqual
                                  : TokenKind::Greater;
            length = kind == TokenKind::Greater ? 1 : 2;
            break;
        default: return failAt(error::kInvalidCharacter, m_position);
        }
        add(kind);
        m_position += length;
        return {};
    }

    // Tells a.b from a .b (the second is a call of a with a member of the With object).
    [[nodiscard]] bool isBehindExpression() const
    {
        if (m_tokens.empty() || m_position == 0) return false;
        const Token& last = m_tokens.back();
        const bool ends = last.kind == TokenKind::RightParen || last.kind == TokenKind::Identifier ||
                          (last.kind == TokenKind::Keyword && standsForValue(last.keyword));
        if (!ends) return false;
        // A line that begins with a dot carries on with a member of what the last one ended in.
        return last.kind == TokenKind::RightParen || m_continued || !isSpace(m_source[m_position - 1]);
    }
    static bool standsForValue(Keyword keyword)
    {
        return keyword == Keyword::Me || keyword == Keyword::Nothing || keyword == Keyword::Null ||
               keyword == Keyword::Empty || keyword == Keyword::True || keyword == Keyword::False;
    }

    std::u16string_view m_source;
    std::vector<Token> m_tokens;
    std::size_t m_position = 0;
    std::size_t m_start = 0;
    std::size_t m_lineStart = 0;
    int m_line;
    bool m_htmlComments;
    bool m_continued = false; // " _" stands between the last token and this one
};

} // namespace

Result<std::vector<Token>> tokenize(std::u16string_view source, SourceOptions options)
{
    return Lexer(source, options).run();
}

} // namespace script::vbscript
