#pragma once

#include "swfc/Diagnostics.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace swfc::actionscript3
{

/// The words of one line of assembly after the other. A word that is not what is asked for is an error of
/// that line, and counts as zero or nothing.
class AssemblyWords
{
protected:
    explicit AssemblyWords(Diagnostics& diagnostics) : m_diagnostics(diagnostics) {}

    static constexpr std::uint32_t kMaxNumber = (1U << 30U) - 1;

    void error(const std::string& message) { m_diagnostics.error(m_where, message); }
    /// Says that something else than the last word had to be there.
    void expected(const std::string& what);

    /// @returns the next word, quotation marks included; empty at the end of the line
    std::string_view word();
    std::string_view peekWord();
    bool acceptWord(std::string_view text);
    /// With a `#` in front or without.
    std::int64_t integer();
    std::uint32_t count(); ///< at most kMaxNumber
    double number();
    std::string text(); ///< between quotation marks

    Diagnostics& m_diagnostics;
    Position m_where;
    std::string_view m_rest; ///< of the line
    std::string_view m_word; ///< the last one
};

} // namespace swfc::actionscript3
