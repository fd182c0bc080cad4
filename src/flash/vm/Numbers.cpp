#include "flash/vm/Numbers.h"

#include "base/TextNumbers.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <limits>

namespace flash::vm
{

namespace
{

constexpr int kSignificantDigits = 15;
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

std::u16string widen(std::string_view ascii) { return {ascii.begin(), ascii.end()}; }

bool isSpace(char16_t unit) { return unit == u' ' || (unit >= u'\t' && unit <= u'\r'); }
bool isDigit(char16_t unit) { return unit >= u'0' && unit <= u'9'; }

int digitValue(char16_t unit)
{
    if (isDigit(unit)) return unit - u'0';
    if (unit >= u'a' && unit <= u'z') return unit - u'a' + 10;
    if (unit >= u'A' && unit <= u'Z') return unit - u'A' + 10;
    return 36;
}

/// @returns the length of the decimal number that the text starts with (sign and exponent included), or 0.
std::size_t decimalLength(std::u16string_view text)
{
    std::size_t at = 0;
    if (at < text.size() && (text[at] == u'-' || text[at] == u'+')) ++at;
    std::size_t digits = 0;
    while (at < text.size() && isDigit(text[at])) ++at, ++digits;
    if (at < text.size() && text[at] == u'.') {
        ++at;
        while (at < text.size() && isDigit(text[at])) ++at, ++digits;
    }
    if (digits == 0) return 0;
    if (at < text.size() && (text[at] == u'e' || text[at] == u'E')) {
        std::size_t exponent = at + 1;
        if (exponent < text.size() && (text[exponent] == u'-' || text[exponent] == u'+')) ++exponent;
        const std::size_t first = exponent;
        while (exponent < text.size() && isDigit(text[exponent])) ++exponent;
        if (exponent > first) at = exponent;
    }
    return at;
}

double decimal(std::u16string_view text)
{
    std::string ascii(text.begin(), text.end());
    std::string_view view = ascii;
    if (!view.empty() && view[0] == '+') view.remove_prefix(1);
    double value = 0;
    const auto [end, error] = std::from_chars(view.data(), view.data() + view.size(), value);
    if (error == std::errc::result_out_of_range) {
        value = base::valueOutOfRange(view);
        return view[0] == '-' ? -value : value;
    }
    return value;
}

/// All of the text as digits of a base. @returns not-a-number when there is anything else.
double wholeNumber(std::u16string_view digits, int radix)
{
    if (digits.empty()) return kNaN;
    double value = 0;
    for (const char16_t unit : digits) {
        const int digit = digitValue(unit);
        if (digit >= radix) return kNaN;
        value = value * radix + digit;
    }
    return value;
}

bool hasHexPrefix(std::u16string_view text)
{
    return text.size() >= 2 && text[0] == u'0' && (text[1] | 0x20) == u'x';
}

std::u16string formatInteger(double number, int radix)
{
    const bool negative = number < 0;
    double rest = std::floor(std::fabs(number));
    std::u16string digits;
    do {
        digits += u"0123456789abcdefghijklmnopqrstuvwxyz"[static_cast<int>(std::fmod(rest, radix))];
        rest = std::floor(rest / radix);
    } while (rest > 0);
    if (negative) digits += u'-';
    std::ranges::reverse(digits);
    return digits;
}

/// @param scientific "d.ddde+xx"
int significantDigits(std::string_view scientific)
{
    const auto digits = static_cast<int>(scientific.find('e'));
    return digits > 1 ? digits - 1 : digits;
}

} // namespace

std::u16string formatNumber(double number, int radix)
{
    if (std::isnan(number)) return u"NaN";
    if (std::isinf(number)) return number > 0 ? u"Infinity" : u"-Infinity";
    if (number == 0) return u"0";
    if (radix != 10) return formatInteger(number, radix);

    // Rounded to 15 digits the largest number would be beyond itself; it is written rounded down.
    if (std::fabs(number) == std::numeric_limits<double>::max())
        return number < 0 ? u"-1.79769313486231e+308" : u"1.79769313486231e+308";

    char scientific[64];
    const double magnitude = std::fabs(number);
    // The shortest text that means the number is mostly short enough.
    auto written =
        std::to_chars(scientific, scientific + sizeof scientific, magnitude, std::chars_format::scientific);
    constexpr double kMinPrecise = 1e-300; // below, numbers have fewer digits than are shown
    if (significantDigits({scientific, written.ptr}) > kSignificantDigits || magnitude < kMinPrecise) {
        // Rounded to 15 digits, halves upwards: a number that lies exactly between two texts needs one digit
        // more than is shown, and a few more tell it from its neighbours.
        constexpr int kTellingDigits = 40;
        written = std::to_chars(scientific, scientific + sizeof scientific, magnitude,
                                std::chars_format::scientific, kTellingDigits - 1);
        const bool isHalf = scientific[kSignificantDigits + 1] == '5' &&
                            std::all_of(scientific + kSignificantDigits + 2, scientific + kTellingDigits + 1,
                                        [](char digit) { return digit == '0'; });
        // The neighbour above rounds up, and as the half would.
        const double rounded =
            isHalf ? std::nextafter(magnitude, std::numeric_limits<double>::infinity()) : magnitude;
        written = std::to_chars(scientific, scientific + sizeof scientific, rounded,
                                std::chars_format::scientific, kSignificantDigits - 1);
    }
    const std::string_view text(scientific, static_cast<std::size_t>(written.ptr - scientific));
    const std::size_t mark = text.find('e');
    std::string digits(1, text[0]);
    if (mark > 1) digits += text.substr(2, mark - 2);
    int exponent = 0;
    const std::size_t exponentStart = text[mark + 1] == '+' ? mark + 2 : mark + 1;
    std::from_chars(text.data() + exponentStart, text.data() + text.size(), exponent);
    while (digits.size() > 1 && digits.back() == '0') digits.pop_back();

    std::string result = number < 0 ? "-" : "";
    const auto count = static_cast<int>(digits.size());
    if (exponent >= kSignificantDigits || exponent < -5) {
        result += digits[0];
        if (count > 1) result += "." + digits.substr(1);
        result += exponent < 0 ? "e-" : "e+";
        result += std::to_string(std::abs(exponent));
    } else if (exponent < 0) {
        result += "0." + std::string(static_cast<std::size_t>(-exponent - 1), '0') + digits;
    } else if (count <= exponent + 1) {
        result += digits + std::string(static_cast<std::size_t>(exponent + 1 - count), '0');
    } else {
        result += digits.substr(0, static_cast<std::size_t>(exponent) + 1) + "." +
                  digits.substr(static_cast<std::size_t>(exponent) + 1);
    }
    return widen(result);
}

double parseNumber(std::u16string_view text, int version)
{
    if (version >= 6 && !text.empty()) {
        // Hexadecimal and octal; a sign may stand before the octal zero or after the 0x.
        if (hasHexPrefix(text)) {
            std::u16string_view digits = text.substr(2);
            const bool negative = !digits.empty() && digits[0] == u'-';
            if (!digits.empty() && (digits[0] == u'-' || digits[0] == u'+')) digits.remove_prefix(1);
            const double value = wholeNumber(digits, 16);
            if (value != value) return kNaN;
            const auto wrapped =
                static_cast<std::int32_t>(static_cast<std::uint32_t>(std::fmod(value, 4294967296.0)));
            return negative ? -static_cast<double>(wrapped) : wrapped;
        }
        std::u16string_view unsignedText = text;
        const bool negative = text[0] == u'-';
        if (negative || text[0] == u'+') unsignedText.remove_prefix(1);
        if (unsignedText.size() > 1 && unsignedText[0] == u'0') {
            const double value = wholeNumber(unsignedText, 8);
            if (value == value) {
                const auto wrapped =
                    static_cast<std::int32_t>(static_cast<std::uint32_t>(std::fmod(value, 4294967296.0)));
                return negative ? -static_cast<double>(wrapped) : wrapped;
            }
        }
    }
    std::size_t start = 0;
    while (start < text.size() && isSpace(text[start])) ++start;
    const std::u16string_view rest = text.substr(start);
    const std::size_t length = decimalLength(rest);
    if (version < 5) return length == 0 ? 0.0 : decimal(rest.substr(0, length));
    if (length == 0 || length != rest.size()) return kNaN;
    // Texts know no negative zero.
    return decimal(rest) + 0.0;
}

double parseFloatPrefix(std::u16string_view text)
{
    std::size_t start = 0;
    while (start < text.size() && isSpace(text[start])) ++start;
    text.remove_prefix(start);
    const std::size_t length = decimalLength(text);
    return length == 0 ? kNaN : decimal(text.substr(0, length));
}

double parseIntPrefix(std::u16string_view text, int radix)
{
    const auto isSign = [](char16_t unit) { return unit == u'-' || unit == u'+'; };
    const auto skipSpace = [&] {
        const std::size_t before = text.size();
        while (!text.empty() && isSpace(text.front())) text.remove_prefix(1);
        return text.size() != before;
    };
    bool negative = false;
    const auto takeSign = [&] {
        if (text.empty() || !isSign(text[0])) return;
        negative = text[0] == u'-';
        text.remove_prefix(1);
    };
    // Prefixes count at the very beginning only, before any blank; there in every base.
    if (hasHexPrefix(text)) {
        text.remove_prefix(2);
        if (radix == 0) radix = 16;
        skipSpace();
        takeSign();
    } else if (!text.empty() && isSign(text[0]) && hasHexPrefix(text.substr(1))) {
        // A sign makes it no prefix; sign and zero are dropped, and what follows begins with an x.
        text.remove_prefix(2);
    } else {
        const bool indented = skipSpace();
        takeSign();
        if (radix == 0 && !indented && text.size() > 1 && text[0] == u'0' &&
            std::ranges::all_of(text, [](char16_t unit) { return unit >= u'0' && unit <= u'7'; }))
            radix = 8;
    }
    if (radix == 0) radix = 10;
    if (radix < 2 || radix > 36) return kNaN;
    double value = 0;
    std::size_t count = 0;
    for (; count < text.size() && digitValue(text[count]) < radix; ++count)
        value = value * radix + digitValue(text[count]);
    if (count == 0) return kNaN;
    return negative ? -value : value;
}

std::int32_t toInt32(double number) { return static_cast<std::int32_t>(toUint32(number)); }

std::uint32_t toUint32(double number)
{
    constexpr double kTwoTo32 = 4294967296.0;
    if (std::fabs(number) < kTwoTo32 / 2)
        return static_cast<std::uint32_t>(static_cast<std::int32_t>(number));
    if (!std::isfinite(number)) return 0;
    const double remainder = std::fmod(std::trunc(number), kTwoTo32);
    return static_cast<std::uint32_t>(static_cast<std::int64_t>(remainder));
}

} // namespace flash::vm
