#pragma once

#include "swfc/actionscript/Lexer.h"
#include "swfc/actionscript3/Token.h"

#include <algorithm>
#include <string_view>

namespace swfc::actionscript3
{

using actionscript::SourceText;

/// Cuts a text into tokens one by one. What a slash or an angle bracket begins, only the parser knows: it
/// asks again where it expects a regular expression, and reads XML by characters.
class Lexer
{
public:
    Lexer(const SourceText& source, Diagnostics& diagnostics)
        : m_source(source), m_text(source.text),
          m_diagnostics(diagnostics), m_mark{0, source.start.line, 1 - source.start.column}
    {
    }

    Token next();
    /// Reads the token that begins here as a regular expression.
    Token regExp(const Token& slash);

    [[nodiscard]] const Mark& mark() const { return m_mark; }
    void seek(const Mark& mark) { m_mark = mark; }
    void beQuiet() { m_isQuiet = true; }
    /// Only within a line.
    void skip(std::size_t bytes) { m_mark.offset += bytes; }
    [[nodiscard]] bool atEnd() const { return m_mark.offset >= m_text.size(); }
    [[nodiscard]] char at(std::size_t ahead = 0) const
    {
        return m_mark.offset + ahead < m_text.size() ? m_text[m_mark.offset + ahead] : '\0';
    }
    [[nodiscard]] bool startsWith(std::string_view text) const
    {
        return m_text.substr(std::min(m_mark.offset, m_text.size())).starts_with(text);
    }
    /// One byte, counting lines.
    char take();
    /// @returns everything before `end`, which is taken as well; all that is left when it does not come.
    std::string takeUntil(std::string_view end, bool& found);
    [[nodiscard]] Position here() const
    {
        return {m_source.start.file, m_mark.line,
                static_cast<int>(static_cast<long>(m_mark.offset) - m_mark.lineStart) + 1};
    }

private:
    void skipBlanks();
    void number(Token& token);
    void string(Token& token, char quote);
    void escape(std::string& value);
    std::uint32_t hexadecimal(int digits);
    void error(Position where, const std::string& message)
    {
        if (!m_isQuiet) m_diagnostics.error(where, message);
    }

    const SourceText& m_source;
    std::string_view m_text; // of m_source
    Diagnostics& m_diagnostics;
    Mark m_mark;
    bool m_newline = true, m_isQuiet = false;
};

bool isNameStart(char c);
bool isNamePart(char c);
void appendUtf8(std::string& out, std::uint32_t code);

} // namespace swfc::actionscript3
