#include "base/Ascii.h"
#include "flash/avm2/classes/DescribeType.h"
#include "flash/avm2/classes/Library.h"
#include "flash/avm2/classes/Xml.h"

#include <QChar>

#include <algorithm>
#include <array>
#include <cmath>

namespace flash::avm2::classes
{

namespace
{

Value trace(Call& call)
{
    std::u16string line;
    for (std::uint32_t i = 0; i < call.count; ++i) {
        if (i > 0) line += u' ';
        line += call.vm.text(call.args[i]);
    }
    // Every kind of line end is one.
    std::ranges::replace(line, u'\r', u'\n');
    // Halves of characters cannot be shown.
    constexpr char16_t kUnknown = 0xFFFD;
    for (std::size_t i = 0; i < line.size(); ++i) {
        if (QChar::isHighSurrogate(line[i]) && i + 1 < line.size() && QChar::isLowSurrogate(line[i + 1]))
            ++i;
        else if (QChar::isSurrogate(line[i]))
            line[i] = kUnknown;
    }
    call.vm.host().trace(line);
    return {};
}

/// The argument of a parameter that is a String, "undefined" by default: undefined that was given is null.
std::u16string_view textGiven(Call& call)
{
    if (call.has(0) && call.arg(0).isUndefined()) return u"null";
    return call.vm.text(call.arg(0));
}

Value parseInt(Call& call)
{
    std::u16string_view text = textGiven(call);
    const auto isSpace = [](char16_t unit) {
        return unit == u' ' || (unit >= 9 && unit <= 13) || unit == 0xA0 ||
               (unit >= 0x2000 && unit <= 0x200B) || unit == 0x2028 || unit == 0x2029 || unit == 0x3000;
    };
    while (!text.empty() && isSpace(text.front())) text.remove_prefix(1);
    std::int32_t radix = call.has(1) ? call.vm.toInt(call.arg(1)) : 0;
    bool negative = false;
    if (!text.empty() && (text[0] == u'-' || text[0] == u'+')) {
        negative = text[0] == u'-';
        text.remove_prefix(1);
    }
    const bool hasPrefix = text.size() >= 2 && text[0] == u'0' && (text[1] | 0x20) == u'x';
    if ((radix == 0 || radix == 16) && hasPrefix) {
        text.remove_prefix(2);
        radix = 16;
    }
    if (radix == 0) radix = 10;
    if (radix < 2 || radix > 36) return std::nan("");
    double value = 0;
    bool any = false;
    for (const char16_t unit : text) {
        const int digit = unit >= u'0' && unit <= u'9' ? unit - u'0'
                          : (unit | 0x20) >= u'a' && (unit | 0x20) <= u'z' && unit < 0x80
                              ? (unit | 0x20) - u'a' + 10
                              : 99;
        if (digit >= radix) break;
        value = value * radix + digit;
        any = true;
    }
    if (!any) return std::nan("");
    return negative ? -value : value;
}

Value parseFloat(Call& call)
{
    const std::u16string_view text = call.vm.text(call.arg(0));
    const std::size_t sign = std::min(text.find_first_not_of(u" \t\r\n"), text.size());
    const bool isSigned = sign < text.size() && (text[sign] == u'-' || text[sign] == u'+');
    if (text.substr(sign + (isSigned ? 1 : 0)).starts_with(u"Infinity"))
        return isSigned && text[sign] == u'-' ? -HUGE_VAL : HUGE_VAL;
    return vm::parseFloatPrefix(text);
}
Value isNaN(Call& call) { return std::isnan(call.vm.toNumber(call.arg(0))); }
Value isFinite(Call& call) { return std::isfinite(call.vm.toNumber(call.arg(0))); }

Value isXmlName(Call& call)
{
    if (call.arg(0).isNullish()) return false;
    return isXmlNameText(call.vm.text(call.arg(0)));
}

constexpr std::string_view kAlphanumeric = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789";

bool oneOf(char16_t unit, std::string_view set)
{
    return unit < 0x80 && set.find(static_cast<char>(unit)) != std::string_view::npos;
}

void appendHex(std::u16string& out, unsigned value, int digits)
{
    for (int shift = (digits - 1) * 4; shift >= 0; shift -= 4)
        out += u"0123456789ABCDEF"[value >> static_cast<unsigned>(shift) & 15U];
}

Value escape(Call& call)
{
    std::u16string result;
    for (const char16_t unit : textGiven(call)) {
        if (oneOf(unit, kAlphanumeric) || oneOf(unit, "@-_.*+/")) {
            result += unit;
        } else if (unit < 256) {
            result += u'%';
            appendHex(result, unit, 2);
        } else {
            result += u"%u";
            appendHex(result, unit, 4);
        }
    }
    return call.vm.string(std::move(result));
}

int hexAt(std::u16string_view text, std::size_t at, std::size_t digits)
{
    if (at + digits > text.size()) return -1;
    int value = 0;
    for (std::size_t i = 0; i < digits; ++i) {
        const int digit = base::hexDigit(text[at + i]);
        if (digit < 0) return -1;
        value = value * 16 + digit;
    }
    return value;
}

Value unescape(Call& call)
{
    const std::u16string text(textGiven(call));
    std::u16string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == u'%') {
            if (i + 1 < text.size() && text[i + 1] == u'u') {
                if (const int value = hexAt(text, i + 2, 4); value >= 0) {
                    result += static_cast<char16_t>(value);
                    i += 5;
                    continue;
                }
            } else if (const int value = hexAt(text, i + 1, 2); value >= 0) {
                result += static_cast<char16_t>(value);
                i += 2;
                continue;
            }
        }
        result += text[i];
    }
    return call.vm.string(std::move(result));
}

[[noreturn]] void throwInvalidUri(Call& call, std::string_view function)
{
    call.vm.throwError(ErrorClass::Uri, 1052,
                       "Invalid URI passed to " + std::string(function) + " function.");
}

Value encode(Call& call, std::string_view function, std::string_view kept)
{
    const std::u16string_view text = textGiven(call);
    std::u16string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char16_t unit = text[i];
        if (oneOf(unit, kAlphanumeric) || oneOf(unit, kept)) {
            result += unit;
            continue;
        }
        const bool isPair = unit >= 0xD800 && unit < 0xDC00 && i + 1 < text.size() && text[i + 1] >= 0xDC00 &&
                            text[i + 1] < 0xE000;
        if (unit >= 0xD800 && unit < 0xE000 && !isPair) throwInvalidUri(call, function);
        for (const char byte : toUtf8(text.substr(i, isPair ? 2 : 1))) {
            result += u'%';
            appendHex(result, static_cast<unsigned char>(byte), 2);
        }
        if (isPair) ++i;
    }
    return call.vm.string(std::move(result));
}

Value encodeUri(Call& call) { return encode(call, "encodeURI", ";/?:@&=+$,#-_.!~*'()"); }
Value encodeUriComponent(Call& call) { return encode(call, "encodeURIComponent", "-_.!~*'()"); }

/// @returns how many bytes of UTF-8 a character has that begins with this one, or 0 when none does
std::size_t lengthInUtf8(unsigned char lead)
{
    if (lead < 0x80) return 1;
    if (lead >= 0xC2 && lead < 0xE0) return 2;
    if (lead >= 0xE0 && lead < 0xF0) return 3;
    return lead >= 0xF0 && lead < 0xF5 ? 4 : 0;
}

Value decode(Call& call, std::string_view function, std::string_view kept)
{
    const std::u16string text(textGiven(call));
    std::u16string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != u'%') {
            result += text[i];
            continue;
        }
        const std::size_t start = i;
        std::string bytes;
        // A character is as many coded bytes as its first one says.
        for (std::size_t wanted = 1; bytes.size() < wanted; i += 3) {
            const int value = i < text.size() && text[i] == u'%' ? hexAt(text, i + 1, 2) : -1;
            if (value < 0 || (!bytes.empty() && (value & 0xC0) != 0x80)) throwInvalidUri(call, function);
            bytes += static_cast<char>(value);
            if (bytes.size() == 1) wanted = lengthInUtf8(static_cast<unsigned char>(value));
            if (wanted == 0) throwInvalidUri(call, function);
        }
        --i;
        if (bytes.size() == 1 && oneOf(static_cast<char16_t>(bytes[0]), kept))
            result += text.substr(start, 3);
        else
            result += fromUtf8(bytes);
    }
    return call.vm.string(std::move(result));
}

Value decodeUri(Call& call) { return decode(call, "decodeURI", ";/?:@&=+$,#"); }
Value decodeUriComponent(Call& call) { return decode(call, "decodeURIComponent", ""); }

constexpr NativeFunctionInfo kFunctions[] = {
    {"", "trace", &trace},
    {"", "parseInt", &parseInt, 0, 2},
    {"", "parseFloat", &parseFloat, 0, 1},
    {"", "isNaN", &isNaN, 0, 1},
    {"", "isFinite", &isFinite, 0, 1},
    {"", "isXMLName", &isXmlName, 0, 1},
    {"", "escape", &escape, 0, 1},
    {"", "unescape", &unescape, 0, 1},
    {"", "encodeURI", &encodeUri, 0, 1},
    {"", "encodeURIComponent", &encodeUriComponent, 0, 1},
    {"", "decodeURI", &decodeUri, 0, 1},
    {"", "decodeURIComponent", &decodeUriComponent, 0, 1},
};

} // namespace

std::span<const NativeFunctionInfo> topLevelFunctions() { return kFunctions; }

std::span<const NativeLibrary> library()
{
    static const NativeClass kOwn[] = {kObject,    kClass, kFunction, kArray, kString,    kNumber,
                                       kInt,       kUint,  kBoolean,  kMath,  kRegExp,    kVector,
                                       kNamespace, kQName, kDate,     kJson,  kByteArray, kDictionary,
                                       kProxy,     kXml,   kXmlList};
    static const std::array<NativeLibrary, 3> kLibraries = {
        NativeLibrary{kOwn, topLevelFunctions(), signatures()},
        NativeLibrary{errorClasses(), utilityFunctions()},
        NativeLibrary{utilityClasses(), describeFunctions(), {}, describeFlags()}};
    return kLibraries;
}

} // namespace flash::avm2::classes
