#include "swfc/actionscript3/AssemblyWords.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>

namespace swfc::actionscript3
{

void AssemblyWords::expected(const std::string& what)
{
    error("expected " + what + ", found '" + std::string(m_word) + "'");
}

std::string_view AssemblyWords::word()
{
    const auto isBlank = [](char c) { return c == ' ' || c == '\t' || c == '\r'; };
    while (!m_rest.empty() && isBlank(m_rest.front())) m_rest.remove_prefix(1);
    std::size_t length = 0;
    if (!m_rest.empty() && m_rest.front() == '"') {
        length = 1;
        while (length < m_rest.size() && m_rest[length] != '"') length += m_rest[length] == '\\' ? 2 : 1;
        length = std::min(length + 1, m_rest.size());
    } else {
        while (length < m_rest.size() && !isBlank(m_rest[length])) ++length;
    }
    m_word = m_rest.substr(0, length);
    m_rest.remove_prefix(length);
    return m_word;
}

std::string_view AssemblyWords::peekWord()
{
    const std::string_view rest = m_rest;
    const std::string_view found = word();
    m_rest = rest;
    return found;
}

bool AssemblyWords::acceptWord(std::string_view text)
{
    if (peekWord() != text) return false;
    word();
    return true;
}

std::int64_t AssemblyWords::integer()
{
    std::string_view text = word();
    if (text.starts_with('#')) text.remove_prefix(1);
    std::int64_t value = 0;
    const auto read = std::from_chars(text.data(), text.data() + text.size(), value);
    if (read.ec != std::errc() || read.ptr != text.data() + text.size()) expected("a number");
    return value;
}

std::uint32_t AssemblyWords::count()
{
    const std::int64_t value = integer();
    if (value < 0 || value > kMaxNumber) expected("a number of at most 30 bits");
    return static_cast<std::uint32_t>(std::clamp<std::int64_t>(value, 0, kMaxNumber));
}

double AssemblyWords::number()
{
    const std::string written(word());
    char* end = nullptr;
    const double value = std::strtod(written.c_str(), &end);
    if (written.empty() || *end != '\0') expected("a number");
    return value;
}

std::string AssemblyWords::text()
{
    const std::string_view quoted = word();
    std::string value;
    if (quoted.size() < 2 || quoted.front() != '"' || quoted.back() != '"') {
        expected("a text in quotation marks");
        return value;
    }
    for (std::size_t i = 1; i + 1 < quoted.size(); ++i) {
        if (quoted[i] == '\\' && i + 2 < quoted.size()) {
            ++i;
            value += quoted[i] == 'n' ? '\n' : quoted[i] == 't' ? '\t' : quoted[i];
        } else {
            value += quoted[i];
        }
    }
    return value;
}

} // namespace swfc::actionscript3
