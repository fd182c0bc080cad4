#include "base/TextCodes.h"

#include <array>
#include <cstdint>

namespace base
{
namespace
{

constexpr char16_t kReplacement = 0xFFFD;

// clang-format off
constexpr std::array<char16_t, 128> kAnsiUpperHalf = {
    0x0402, 0x0403, 0x201A, 0x0453, 0x201E, 0x2026, 0x2020, 0x2021, 0x20AC, 0x2030, 0x0409, 0x2039, 0x040A, 0x040C, 0x040B, 0x040F,
    0x0452, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014, kReplacement, 0x2122, 0x0459, 0x203A, 0x045A, 0x045C, 0x045B, 0x045F,
    0x00A0, 0x040E, 0x045E, 0x0408, 0x00A4, 0x0490, 0x00A6, 0x00A7, 0x0401, 0x00A9, 0x0404, 0x00AB, 0x00AC, 0x00AD, 0x00AE, 0x0407,
    0x00B0, 0x00B1, 0x0406, 0x0456, 0x0491, 0x00B5, 0x00B6, 0x00B7, 0x0451, 0x2116, 0x0454, 0x00BB, 0x0458, 0x0405, 0x0455, 0x0457,
    0x0410, 0x0411, 0x0412, 0x0413, 0x0414, 0x0415, 0x0416, 0x0417, 0x0418, 0x0419, 0x041A, 0x041B, 0x041C, 0x041D, 0x041E, 0x041F,
    0x0420, 0x0421, 0x0422, 0x0423, 0x0424, 0x0425, 0x0426, 0x0427, 0x0428, 0x0429, 0x042A, 0x042B, 0x042C, 0x042D, 0x042E, 0x042F,
    0x0430, 0x0431, 0x0432, 0x0433, 0x0434, 0x0435, 0x0436, 0x0437, 0x0438, 0x0439, 0x043A, 0x043B, 0x043C, 0x043D, 0x043E, 0x043F,
    0x0440, 0x0441, 0x0442, 0x0443, 0x0444, 0x0445, 0x0446, 0x0447, 0x0448, 0x0449, 0x044A, 0x044B, 0x044C, 0x044D, 0x044E, 0x044F,
};
// clang-format on

/// Decodes one character and moves past it; a malformed sequence takes one byte and gives kReplacement.
char32_t nextCodePoint(std::string_view text, std::size_t& at, bool& wellFormed)
{
    const auto byteAt = [&](std::size_t i) { return static_cast<std::uint8_t>(text[i]); };
    const std::uint8_t lead = byteAt(at);
    if (lead < 0x80) {
        ++at;
        return lead;
    }
    const std::size_t length = lead >= 0xF0 && lead <= 0xF4  ? 4
                               : lead >= 0xE0 && lead < 0xF0 ? 3
                               : lead >= 0xC2 && lead < 0xE0 ? 2
                                                             : 0;
    char32_t code = length == 0 ? 0 : lead & (0xFFU >> (length + 1));
    bool good = length != 0 && length <= text.size() - at;
    for (std::size_t i = 1; good && i < length; ++i) {
        good = (byteAt(at + i) & 0xC0) == 0x80;
        code = code << 6 | (byteAt(at + i) & 0x3F);
    }
    constexpr std::array<char32_t, 5> kMin = {0, 0, 0x80, 0x800, 0x10000};
    if (!good || code < kMin[length] || code > 0x10FFFF) {
        wellFormed = false;
        ++at;
        return kReplacement;
    }
    // Lone surrogates pass: text written by utf8FromUtf16 must come back as it was.
    if (code >= 0xD800 && code < 0xE000) wellFormed = false;
    at += length;
    return code;
}

void appendUtf8(std::string& out, char32_t code)
{
    if (code < 0x80) {
        out += static_cast<char>(code);
    } else if (code < 0x800) {
        out += static_cast<char>(0xC0 | code >> 6);
        out += static_cast<char>(0x80 | (code & 0x3F));
    } else if (code < 0x10000) {
        out += static_cast<char>(0xE0 | code >> 12);
        out += static_cast<char>(0x80 | (code >> 6 & 0x3F));
        out += static_cast<char>(0x80 | (code & 0x3F));
    } else {
        out += static_cast<char>(0xF0 | code >> 18);
        out += static_cast<char>(0x80 | (code >> 12 & 0x3F));
        out += static_cast<char>(0x80 | (code >> 6 & 0x3F));
        out += static_cast<char>(0x80 | (code & 0x3F));
    }
}

bool isHighSurrogate(char16_t unit) { return (unit & 0xFC00) == 0xD800; }
bool isLowSurrogate(char16_t unit) { return (unit & 0xFC00) == 0xDC00; }

} // namespace

std::u16string utf16FromAnsi(std::string_view ansi)
{
    std::u16string out;
    out.reserve(ansi.size());
    for (const char c : ansi) {
        const auto byte = static_cast<std::uint8_t>(c);
        out += byte < 0x80 ? static_cast<char16_t>(byte) : kAnsiUpperHalf[byte - 0x80];
    }
    return out;
}

std::string ansiFromUtf16(std::u16string_view utf16, char replacement)
{
    std::string out;
    out.reserve(utf16.size());
    for (std::size_t i = 0; i < utf16.size(); ++i) {
        const char16_t unit = utf16[i];
        if (unit < 0x80) {
            out += static_cast<char>(unit);
            continue;
        }
        std::size_t index = 0;
        while (index < kAnsiUpperHalf.size() && (kAnsiUpperHalf[index] != unit || unit == kReplacement))
            ++index;
        if (index < kAnsiUpperHalf.size()) {
            out += static_cast<char>(0x80 + index);
            continue;
        }
        if (replacement != '\0') out += replacement;
        // A pair is one character to the reader, so it gets one replacement.
        if (isHighSurrogate(unit) && i + 1 < utf16.size() && isLowSurrogate(utf16[i + 1])) ++i;
    }
    return out;
}

std::u16string utf16FromUtf8(std::string_view utf8)
{
    std::u16string out;
    out.reserve(utf8.size());
    bool wellFormed = true;
    for (std::size_t at = 0; at < utf8.size();) {
        const char32_t code = nextCodePoint(utf8, at, wellFormed);
        if (code < 0x10000) {
            out += static_cast<char16_t>(code);
        } else {
            out += static_cast<char16_t>(0xD7C0 + (code >> 10));
            out += static_cast<char16_t>(0xDC00 | (code & 0x3FF));
        }
    }
    return out;
}

std::u16string utf16FromLooseUtf8(std::string_view utf8)
{
    std::u16string out;
    out.reserve(utf8.size());
    for (std::size_t at = 0; at < utf8.size();) {
        const auto lead = static_cast<std::uint8_t>(utf8[at]);
        const std::size_t length = lead < 0xC0 ? 1 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : lead < 0xF8 ? 4 : 6;
        if (length == 1) {
            out += static_cast<char16_t>(lead);
            ++at;
            continue;
        }
        if (length > utf8.size() - at) break;
        if (length > 3) {
            // What lies beyond the basic plane takes two units, but only where it is well-formed.
            const std::string_view sequence = utf8.substr(at, length);
            if (isUtf8(sequence))
                out += utf16FromUtf8(sequence);
            else
                out += kReplacement;
            at += length;
            continue;
        }
        out += utf16FromUtf8(utf8.substr(at, length)).substr(0, isUtf8(utf8.substr(at, length)) ? 2 : 1);
        at += length;
    }
    return out;
}

std::u16string utf16FromCarelessUtf8(std::string_view utf8)
{
    if (isUtf8(utf8)) return utf16FromUtf8(utf8);
    std::u16string out;
    out.reserve(utf8.size());
    for (std::size_t at = 0; at < utf8.size();) {
        const auto lead = static_cast<std::uint8_t>(utf8[at]);
        const std::size_t length = lead < 0xC0 ? 1 : lead < 0xE0 ? 2 : 3;
        if (length > utf8.size() - at) break;
        std::uint32_t code = length == 1 ? lead : length == 2 ? lead & 0x1FU : lead & 0x0FU;
        for (std::size_t i = 1; i < length; ++i)
            code = (code << 6) + static_cast<std::uint8_t>(utf8[at + i]) - 0x80U;
        out += static_cast<char16_t>(code);
        at += length;
    }
    return out;
}

std::string utf8FromUtf16(std::u16string_view utf16)
{
    std::string out;
    out.reserve(utf16.size());
    for (std::size_t i = 0; i < utf16.size(); ++i) {
        char32_t code = utf16[i];
        if (isHighSurrogate(utf16[i]) && i + 1 < utf16.size() && isLowSurrogate(utf16[i + 1])) {
            code = 0x10000 + ((code & 0x3FF) << 10) + (utf16[i + 1] & 0x3FF);
            ++i;
        }
        appendUtf8(out, code);
    }
    return out;
}

std::string utf8FromAnsi(std::string_view ansi) { return utf8FromUtf16(utf16FromAnsi(ansi)); }

std::string ansiFromUtf8(std::string_view utf8, char replacement)
{
    return ansiFromUtf16(utf16FromUtf8(utf8), replacement);
}

bool isUtf8(std::string_view bytes)
{
    bool wellFormed = true;
    for (std::size_t at = 0; at < bytes.size() && wellFormed;) nextCodePoint(bytes, at, wellFormed);
    return wellFormed;
}

} // namespace base
