#include "swfc/actionscript/Lexer.h"

#include "base/TextCodes.h"
#include "swfc/actionscript/Spelling.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

namespace swfc::actionscript
{
namespace
{

constexpr std::size_t kMaxTokens = 8'000'000;
constexpr std::size_t kDeepestInclude = 32;
constexpr int kMaxIncludes = 1024;

bool isNameStart(char c)
{
    const auto u = static_cast<unsigned char>(c);
    return (u >= 'a' && u <= 'z') || (u >= 'A' && u <= 'Z') || u == '_' || u == '$' || u >= 0x80;
}
bool isDigit(char c) { return c >= '0' && c <= '9'; }
bool isNamePart(char c) { return isNameStart(c) || isDigit(c); }

int hexValue(char c)
{
    if (isDigit(c)) return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

struct Inclusion {
    SourceFiles& files;
    Diagnostics& diagnostics;
    int version;
    std::vector<std::string> active; // paths from the outermost file inwards
    int count = 0;
    std::vector<Token> tokens;
};

class Lexer
{
public:
    Lexer(const SourceText& source, Inclusion& shared)
        : m_source(source), m_text(source.text), m_shared(shared), m_line(source.start.line),
          m_lineStart(1 - source.start.column)
    {
    }
    void run();

private:
    [[nodiscard]] char at(std::size_t ahead = 0) const
    {
        return m_at + ahead < m_text.size() ? m_text[m_at + ahead] : '\0';
    }
    [[nodiscard]] Position here() const
    {
        return {m_source.start.file, m_line, static_cast<int>(static_cast<long>(m_at) - m_lineStart) + 1};
    }
    void newLine()
    {
        ++m_line;
        m_lineStart = static_cast<long>(m_at) + 1;
        m_newline = true;
    }
    void error(const std::string& message) { m_shared.diagnostics.error(m_where, message); }
    bool skipBlanks();
    void emit(Tok kind, std::string text = {}, double number = 0)
    {
        m_shared.tokens.push_back({kind, m_newline, m_where, std::move(text), number});
        m_newline = false;
    }
    void number();
    void string(char quote);
    void escape(std::string& value);
    void word();
    void include();
    bool slashPath();
    [[nodiscard]] bool afterOperand() const;
    void punctuator();

    const SourceText& m_source;
    std::string_view m_text; // of m_source
    Inclusion& m_shared;
    std::size_t m_at = 0;
    int m_line;
    long m_lineStart; // offset of the line's first byte; before the text's start when it begins mid-line
    bool m_newline = true;
    Position m_where;
};

/// @returns false at the end of the text.
bool Lexer::skipBlanks()
{
    for (; m_at < m_text.size(); ++m_at) {
        const char c = at();
        if (c == '\n' || (c == '\r' && at(1) != '\n')) {
            newLine();
        } else if (c == '/' && at(1) == '/') {
            while (m_at + 1 < m_text.size() && at(1) != '\n' && at(1) != '\r') ++m_at;
        } else if (c == '/' && at(1) == '*') {
            m_where = here();
            const std::size_t end = m_text.find("*/", m_at + 2);
            if (end == std::string_view::npos) {
                error("expected '*/' to end this comment, found end of script");
                m_at = m_text.size();
                return false;
            }
            for (; m_at <= end; ++m_at) {
                if (at() == '\n') newLine();
            }
        } else if (c != ' ' && c != '\t' && c != '\r' && c != '\f' && c != '\v') {
            // A byte order mark counts as blank.
            if (m_text.substr(m_at, 3) != "\xEF\xBB\xBF") return true;
            m_at += 2;
        }
    }
    return false;
}

void Lexer::number()
{
    const std::size_t start = m_at;
    double value = 0;
    if (at() == '0' && (at(1) == 'x' || at(1) == 'X')) {
        m_at += 2;
        if (hexValue(at()) < 0) error("expected a hexadecimal digit after 0x");
        for (; hexValue(at()) >= 0; ++m_at) value = value * 16 + hexValue(at());
    } else if (at() == '0' && at(1) >= '0' && at(1) <= '7') {
        for (++m_at; at() >= '0' && at() <= '7'; ++m_at) value = value * 8 + (at() - '0');
    } else {
        while (isDigit(at())) ++m_at;
        if (at() == '.') {
            for (++m_at; isDigit(at()); ++m_at) {
            }
        }
        if (at() == 'e' || at() == 'E') {
            const std::size_t sign = at(1) == '+' || at(1) == '-' ? 1 : 0;
            if (isDigit(at(1 + sign))) {
                for (m_at += 1 + sign; isDigit(at()); ++m_at) {
                }
            }
        }
        const auto parsed = std::from_chars(m_text.data() + start, m_text.data() + m_at, value);
        if (parsed.ec == std::errc::result_out_of_range) {
            const std::string_view digits = m_text.substr(start, m_at - start);
            const std::size_t exponent = digits.find_first_of("eE");
            const bool tiny = exponent != std::string_view::npos && exponent + 1 < digits.size() &&
                              digits[exponent + 1] == '-';
            value = tiny ? 0 : HUGE_VAL;
        }
    }
    if (isNamePart(at())) error("expected an operator or ';' after a number, found a name");
    emit(Tok::Number, std::string(m_text.substr(start, m_at - start)), value);
}

void Lexer::escape(std::string& value)
{
    const char c = at();
    ++m_at;
    constexpr std::string_view kNames = "ntrbfv";
    constexpr std::string_view kValues = "\n\t\r\b\f\v";
    if (const std::size_t known = kNames.find(c); known != std::string_view::npos) {
        value += kValues[known];
        return;
    }
    const int digits = c == 'x' ? 2 : c == 'u' ? 4 : 0;
    if (digits == 0) {
        if (c == '0') error("expected a string without \\0: texts end at a zero byte");
        value += c;
        return;
    }
    int code = 0;
    for (int i = 0; i < digits; ++i, ++m_at) {
        if (hexValue(at()) < 0) {
            error("expected " + std::to_string(digits) + " hexadecimal digits after \\" + c);
            return;
        }
        code = code * 16 + hexValue(at());
    }
    if (code == 0) error("expected a string without \\0: texts end at a zero byte");
    const auto unit = static_cast<char16_t>(code);
    value += base::utf8FromUtf16(std::u16string_view(&unit, 1));
}

void Lexer::string(char quote)
{
    std::string value;
    ++m_at;
    while (true) {
        if (m_at >= m_text.size() || at() == '\n' || at() == '\r') {
            error(std::string("expected ") + quote + " to end this string, found end of line");
            break;
        }
        const char c = at();
        if (c == '\0') error("expected a string without zero bytes");
        ++m_at;
        if (c == quote) break;
        if (c == '\\' && m_at < m_text.size()) {
            if (at() == '\n' || (at() == '\r' && at(1) == '\n')) {
                if (at() == '\r') ++m_at;
                const bool newline = m_newline;
                newLine();
                m_newline = newline;
                ++m_at;
            } else {
                escape(value);
            }
        } else {
            value += c;
        }
    }
    emit(Tok::String, std::move(value));
}

void Lexer::word()
{
    const std::size_t start = m_at;
    for (++m_at; isNamePart(at()); ++m_at) {
    }
    const std::string_view text = m_text.substr(start, m_at - start);
    const auto found = keywords().find(text);
    if (found == keywords().end()) {
        if (text[0] == '#') {
            error("expected '#include', found '" + std::string(text.substr(0, 40)) + "'");
            return;
        }
        emit(Tok::Identifier, std::string(text));
    } else if (found->second == Tok::Include) {
        include();
    } else {
        emit(found->second, std::string(text));
    }
}

void Lexer::include()
{
    while (at() == ' ' || at() == '\t') ++m_at;
    if (at() != '"' && at() != '\'') {
        error("expected a quoted file name after #include");
        return;
    }
    string(at());
    const std::string name = m_shared.tokens.back().text;
    m_newline = m_shared.tokens.back().newlineBefore;
    m_shared.tokens.pop_back();
    const std::string path = besideFile(m_source.path, name);
    if (std::find(m_shared.active.begin(), m_shared.active.end(), path) != m_shared.active.end()) {
        error("expected a file that does not include itself, found '" + name + "'");
        return;
    }
    if (m_shared.active.size() >= kDeepestInclude || ++m_shared.count > kMaxIncludes) {
        error("expected at most 32 nested and 1024 inclusions");
        return;
    }
    const auto content = m_shared.files.read(path);
    if (!content) {
        error("expected a readable file '" + name + "': " + content.error().what);
        return;
    }
    SourceText included;
    included.text.assign(content->begin(), content->end());
    included.path = path;
    included.start = {m_shared.diagnostics.addFile(path), 1, 1};
    if (!base::isUtf8(included.text)) included.text = base::utf8FromAnsi(included.text);
    m_shared.active.push_back(path);
    Lexer(included, m_shared).run();
    m_shared.active.pop_back();
    m_newline = true;
}

bool Lexer::afterOperand() const
{
    if (m_shared.tokens.empty()) return false;
    const Token& last = m_shared.tokens.back();
    if (last.kind == Tok::Identifier) {
        constexpr std::string_view kOperators[] = {"add", "and", "eq", "ge",  "gt",
                                                   "le",  "lt",  "ne", "not", "or"};
        return std::find(std::begin(kOperators), std::end(kOperators), last.text) == std::end(kOperators);
    }
    return last.kind == Tok::Number || last.kind == Tok::String || last.kind == Tok::SlashPath ||
           last.kind == Tok::RightParen;
}

/// "/a/b:v", "../a", "a/b:v", "a:v": a path where an operand is due. A division or a conditional needs blanks
/// around its sign in version 4.
/// @returns whether there was one.
bool Lexer::slashPath()
{
    if (m_shared.version != 4 || afterOperand()) return false;
    if (!m_shared.tokens.empty() && m_shared.tokens.back().kind == Tok::Case) return false;
    std::size_t end = m_at;
    bool isPath = false;
    const auto c = [&](std::size_t i) { return i < m_text.size() ? m_text[i] : '\0'; };
    while (true) {
        if (c(end) == '/' && c(end + 1) != '*' && c(end + 1) != '/' && c(end + 1) != '=') {
            ++end;
            isPath = true;
        } else if (c(end) == '.' && c(end + 1) == '.') {
            end += 2;
            isPath = true;
        } else if (c(end) == ':' && isNameStart(c(end + 1))) {
            for (++end; isNamePart(c(end)); ++end) {
            }
            isPath = true;
            break;
        } else if (isNamePart(c(end)) && (end > m_at || isNameStart(c(end)))) {
            for (++end; isNamePart(c(end)); ++end) {
            }
        } else {
            break;
        }
    }
    if (!isPath) return false;
    std::string text(m_text.substr(m_at, end - m_at));
    m_at = end;
    emit(Tok::SlashPath, std::move(text));
    return true;
}

void Lexer::punctuator()
{
    for (const Punctuator& candidate : punctuators()) {
        if (m_text.substr(m_at, candidate.text.size()) != candidate.text) continue;
        m_at += candidate.text.size();
        emit(candidate.kind);
        return;
    }
    error(std::string("expected a statement or an operator, found the character '") + at() + "'");
    ++m_at;
}

void Lexer::run()
{
    while (skipBlanks()) {
        m_where = here();
        if (m_shared.tokens.size() >= kMaxTokens) {
            error("expected a script of at most 8 million words and signs");
            return;
        }
        const char c = at();
        if (slashPath()) continue;
        if (isNameStart(c) || c == '#') {
            word();
        } else if (isDigit(c) || (c == '.' && isDigit(at(1)))) {
            number();
        } else if (c == '"' || c == '\'') {
            string(c);
        } else {
            punctuator();
        }
    }
    m_where = here();
}

} // namespace

std::vector<Token> tokenize(const SourceText& source, int version, SourceFiles& files,
                            Diagnostics& diagnostics)
{
    Inclusion shared{files, diagnostics, version, {source.path}, 0, {}};
    Lexer lexer(source, shared);
    lexer.run();
    Position end = source.start;
    if (!shared.tokens.empty()) end = shared.tokens.back().where;
    shared.tokens.push_back({Tok::End, true, end, {}, 0});
    return std::move(shared.tokens);
}

} // namespace swfc::actionscript
