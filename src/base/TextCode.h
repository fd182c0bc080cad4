#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace base
{

/// An 8-bit text code, of one or of one and two bytes to a character, as the systems of their time had them.
/// Immutable; every byte has a character, so that single bytes survive the way there and back: those that the
/// code leaves open stand for the control characters U+0080 to U+009F of the same number, as on Windows.
class TextCode
{
public:
    /// @param name as users and files spell it: windows-1251, Latin-1, ISO-8859-1, KOI8-R, Shift-JIS, GBK,
    ///             Big5, EUC-KR and their usual other names, in any case
    /// @returns null for a name that is not known, or a code that this system cannot convert
    static std::shared_ptr<const TextCode> named(std::string_view name);
    /// The system's own: windows-1251.
    static const TextCode& ansi();

    [[nodiscard]] std::u16string decode(std::string_view bytes) const;
    /// @param replacement stands for each character that the code lacks; '\0' drops such characters
    [[nodiscard]] std::string encode(std::u16string_view text, char replacement = '?') const;
    [[nodiscard]] std::string utf8From(std::string_view bytes) const;
    [[nodiscard]] std::string fromUtf8(std::string_view utf8, char replacement = '?') const;
    /// @returns the code of one UTF-16 unit, of up to 16 bits; 0 where there is none
    [[nodiscard]] std::uint16_t codeOf(char16_t unit) const;
    /// @returns the character of a code of up to 16 bits; 0 where there is none
    [[nodiscard]] char16_t unitOf(std::uint16_t code) const;
    /// @returns the character of a code of up to 16 bits, or those of its two bytes in turn when it is none;
    ///          a NUL byte ends the text
    [[nodiscard]] std::u16string textOf(std::uint16_t code) const;

private:
    TextCode() : m_pairs(256) {}
    void learn(std::uint16_t code, char16_t unit);
    char16_t m_single[256] = {};
    std::vector<std::u16string> m_pairs; // by first byte: 256 characters by second byte, or none at all
    std::unordered_map<char16_t, std::uint16_t> m_codes;
};

} // namespace base
