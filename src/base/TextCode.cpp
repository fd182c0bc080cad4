#include "base/TextCode.h"

#include "base/Ascii.h"
#include "base/TextCodes.h"

#include <iconv.h>

#include <cstdint>

namespace base
{
namespace
{

struct Known {
    std::string_view name;
    const char* iconvName;
    bool hasPairs;
    std::string_view otherNames; ///< folded, between blanks
};

// clang-format off
constexpr Known kKnown[] = {
    {"windows-1251", "CP1251",      false, " 1251 cp1251 win1251 "},
    {"windows-1252", "CP1252",      false, " 1252 cp1252 win1252 ansi "},
    {"iso-8859-1",   "ISO-8859-1",  false, " latin1 iso88591 "},
    {"koi8-r",       "KOI8-R",      false, " koi8 "},
    {"windows-1250", "CP1250",      false, " 1250 cp1250 win1250 "},
    {"windows-1253", "CP1253",      false, " 1253 cp1253 win1253 "},
    {"windows-1254", "CP1254",      false, " 1254 cp1254 win1254 "},
    {"shift-jis",    "CP932",       true,  " sjis cp932 932 windows31j mskanji "},
    {"gbk",          "GBK",         true,  " gb2312 cp936 936 "},
    {"big5",         "BIG5",        true,  " cp950 950 "},
    {"euc-kr",       "UHC",         true,  " cp949 949 uhc ksc5601 "},
};
// clang-format on

/// Letters and digits, small.
std::string foldedName(std::string_view name)
{
    std::string folded;
    for (const char c : name) {
        if (isAsciiLetterOrDigit(c)) folded += asciiLower(c);
    }
    return folded;
}

const Known* knownCode(std::string_view name)
{
    const std::string folded = foldedName(name);
    if (folded.empty()) return nullptr;
    for (const Known& known : kKnown) {
        if (foldedName(known.name) == folded ||
            known.otherNames.find(" " + folded + " ") != std::string_view::npos)
            return &known;
    }
    return nullptr;
}

/// Asks the system about single characters.
class Converter
{
public:
    explicit Converter(const char* name) : m_handle(iconv_open("UTF-16LE", name)) {}
    ~Converter()
    {
        if (isOpen()) iconv_close(m_handle);
    }
    Converter(const Converter&) = delete;
    Converter& operator=(const Converter&) = delete;
    [[nodiscard]] bool isOpen() const { return m_handle != reinterpret_cast<iconv_t>(-1); }
    /// @returns the character that the bytes are, all of them together, or 0
    char16_t unit(std::string bytes)
    {
        iconv(m_handle, nullptr, nullptr, nullptr, nullptr);
        char out[8];
        char* in = bytes.data();
        char* to = out;
        std::size_t left = bytes.size(), room = sizeof out;
        if (iconv(m_handle, &in, &left, &to, &room) != 0 || left != 0 || room != sizeof out - 2) return 0;
        return static_cast<char16_t>(static_cast<unsigned char>(out[0]) | static_cast<unsigned char>(out[1])
                                                                              << 8);
    }

private:
    iconv_t m_handle;
};

} // namespace

std::shared_ptr<const TextCode> TextCode::named(std::string_view name)
{
    const Known* known = knownCode(name);
    if (known == nullptr) return nullptr;
    Converter converter(known->iconvName);
    if (!converter.isOpen()) return nullptr;
    std::shared_ptr<TextCode> code(new TextCode());
    for (unsigned byte = 0; byte < 256; ++byte) {
        const char first = static_cast<char>(byte);
        char16_t unit = byte < 0x80 ? static_cast<char16_t>(byte) : converter.unit({first});
        if (unit == 0 && byte != 0 && known->hasPairs) {
            std::u16string pairs(256, u'\0');
            bool any = false;
            for (unsigned second = 0x30; second < 0xFF; ++second) {
                pairs[second] = converter.unit({first, static_cast<char>(second)});
                any |= pairs[second] != 0;
            }
            if (any) code->m_pairs[byte] = std::move(pairs);
        }
        code->m_single[byte] = unit != 0 ? unit : static_cast<char16_t>(byte);
    }
    for (unsigned byte = 0; byte < 256; ++byte) {
        if (code->m_pairs[byte].empty()) {
            code->learn(static_cast<std::uint16_t>(byte), code->m_single[byte]);
            continue;
        }
        for (unsigned second = 0; second < 256; ++second) {
            if (code->m_pairs[byte][second] != 0)
                code->learn(static_cast<std::uint16_t>(byte << 8 | second), code->m_pairs[byte][second]);
        }
    }
    return code;
}

const TextCode& TextCode::ansi()
{
    static const std::shared_ptr<const TextCode> code = [] {
        auto found = named("windows-1251");
        // A system without its own code would be a strange one; the lower half is left then.
        return found != nullptr ? found : std::shared_ptr<const TextCode>(new TextCode());
    }();
    return *code;
}

void TextCode::learn(std::uint16_t code, char16_t unit) { m_codes.emplace(unit, code); }

std::uint16_t TextCode::codeOf(char16_t unit) const
{
    if (unit < 0x80) return unit;
    const auto found = m_codes.find(unit);
    return found == m_codes.end() ? 0 : found->second;
}

std::u16string TextCode::textOf(std::uint16_t code) const
{
    if (code > 0xFF) {
        if (const char16_t unit = unitOf(code); unit != 0) return {unit};
    }
    const char bytes[] = {static_cast<char>(code >> 8), static_cast<char>(code & 0xFF)};
    std::u16string text;
    if (bytes[0] != 0) text += decode({&bytes[0], 1});
    if (bytes[1] != 0) text += decode({&bytes[1], 1});
    return text;
}

char16_t TextCode::unitOf(std::uint16_t code) const
{
    const std::u16string& pairs = m_pairs[code >> 8];
    if (code < 0x100) return m_single[code];
    return pairs.empty() ? u'\0' : pairs[code & 0xFF];
}

std::u16string TextCode::decode(std::string_view bytes) const
{
    std::u16string text;
    text.reserve(bytes.size());
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        const auto byte = static_cast<unsigned char>(bytes[i]);
        if (i + 1 < bytes.size() && !m_pairs[byte].empty()) {
            const char16_t unit = m_pairs[byte][static_cast<unsigned char>(bytes[i + 1])];
            if (unit != 0) {
                text += unit;
                ++i;
                continue;
            }
        }
        text += byte < 0x80 ? static_cast<char16_t>(byte) : m_single[byte];
    }
    return text;
}

std::string TextCode::encode(std::u16string_view text, char replacement) const
{
    std::string bytes;
    bytes.reserve(text.size());
    for (const char16_t unit : text) {
        if (unit < 0x80) {
            bytes += static_cast<char>(unit);
            continue;
        }
        const auto found = m_codes.find(unit);
        if (found == m_codes.end()) {
            if (replacement != '\0') bytes += replacement;
            continue;
        }
        if (found->second > 0xFF) bytes += static_cast<char>(found->second >> 8);
        bytes += static_cast<char>(found->second & 0xFF);
    }
    return bytes;
}

std::string TextCode::utf8From(std::string_view bytes) const { return utf8FromUtf16(decode(bytes)); }

std::string TextCode::fromUtf8(std::string_view utf8, char replacement) const
{
    return encode(utf16FromUtf8(utf8), replacement);
}

} // namespace base
