#include "script/vbscript/Convert.h"

#include "base/TextNumbers.h"
#include "script/vbscript/DateTime.h"
#include "script/vbscript/Errors.h"
#include "script/vbscript/Text.h"

#include <charconv>
#include <cmath>

namespace script::vbscript
{

namespace
{

constexpr std::size_t kMaxNumberText = 400;

std::optional<double> parseRadix(std::u16string_view text)
{
    if (text.size() < 3 || text[0] != u'&') return std::nullopt;
    const bool hexadecimal = lowerCase(text[1]) == u'h';
    if (!hexadecimal && lowerCase(text[1]) != u'o') return std::nullopt;
    text.remove_prefix(2);
    const bool isLong = text.back() == u'&';
    if (isLong) text.remove_suffix(1);
    if (text.empty()) return std::nullopt;
    std::uint64_t bits = 0;
    for (const char16_t c : text) {
        const int digit = hexDigit(c);
        if (digit < 0 || (!hexadecimal && digit > 7)) return std::nullopt;
        bits = bits * (hexadecimal ? 16 : 8) + static_cast<std::uint64_t>(digit);
        if (bits > UINT32_MAX) return std::nullopt;
    }
    if (bits <= UINT16_MAX && !isLong) return static_cast<std::int16_t>(static_cast<std::uint16_t>(bits));
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(bits));
}

// Rounds a number to whole and checks that the type holds it.
template <class T>
Result<T> narrowed(double number)
{
    const double rounded = roundHalfEven(number);
    if (!(rounded >= static_cast<double>(std::numeric_limits<T>::min()) &&
          rounded <= static_cast<double>(std::numeric_limits<T>::max()))) {
        return fault(error::kOverflow);
    }
    return static_cast<T>(rounded);
}

template <class T>
Result<T> toWhole(const Value& value, const Locale& locale)
{
    if (value.isWhole()) {
        if (value.whole() < std::numeric_limits<T>::min() || value.whole() > std::numeric_limits<T>::max()) {
            return fault(error::kOverflow);
        }
        return static_cast<T>(value.whole());
    }
    const double number = TRY_RESULT(toDouble(value, locale));
    return narrowed<T>(number);
}

std::u16string formatCurrency(std::int64_t tenThousandths, const Locale& locale)
{
    const bool negative = tenThousandths < 0;
    const std::uint64_t magnitude = negative ? ~static_cast<std::uint64_t>(tenThousandths) + 1
                                             : static_cast<std::uint64_t>(tenThousandths);
    std::u16string text = widened(std::to_string(magnitude / 10000));
    std::string fraction = std::to_string(magnitude % 10000 + 10000).substr(1);
    while (!fraction.empty() && fraction.back() == '0') fraction.pop_back();
    if (!fraction.empty()) text += locale.decimal + widened(fraction);
    return negative ? u"-" + text : text;
}

} // namespace

double roundHalfEven(double number)
{
    // The default rounding mode of floating point is half to even; nothing in the process changes it.
    return std::nearbyint(number);
}

std::u16string quoted(const Value& value)
{
    switch (value.type()) {
    case VarType::String: return u"[string: \"" + std::u16string(value.text().substr(0, 64)) + u"\"]";
    case VarType::Array: return u"[array]";
    case VarType::Object: return u"[object]";
    case VarType::Null: return u"[null]";
    default: {
        auto text = toText(value, Locale::english());
        return u"[number: " + (text ? *text : std::u16string()) + u"]";
    }
    }
}

Failed mismatch(const Value& value)
{
    if (value.isNull()) return fault(error::kInvalidNull);
    if (value.isString()) return fault(error::kTypeMismatch, quoted(value));
    return fault(error::kTypeMismatch);
}

std::optional<double> parseNumber(std::u16string_view text, const Locale& locale)
{
    text = trimmed(text);
    if (text.empty() || text.size() > kMaxNumberText) return std::nullopt;
    if (text[0] == u'&') return parseRadix(text);
    bool negative = false;
    bool isSigned = false;
    const auto takeSign = [&](char16_t c) {
        if (isSigned || (c != u'-' && c != u'+')) return false;
        isSigned = true;
        negative = c == u'-';
        return true;
    };
    const auto takeCurrency = [&] {
        if (text.size() <= locale.currency.size()) return;
        if (text.substr(0, locale.currency.size()) == locale.currency) {
            text = trimmed(text.substr(locale.currency.size()));
        } else if (text.substr(text.size() - locale.currency.size()) == locale.currency) {
            text = trimmed(text.substr(0, text.size() - locale.currency.size()));
        }
    };
    if (text.front() == u'(' && text.back() == u')' && text.size() > 2) {
        negative = isSigned = true;
        text = trimmed(text.substr(1, text.size() - 2));
    }
    takeCurrency();
    if (!text.empty() && takeSign(text.front())) text = trimmed(text.substr(1));
    takeCurrency();
    if (!text.empty() && takeSign(text.back())) text = trimmed(text.substr(0, text.size() - 1));

    std::string digits;
    bool anyDigit = false;
    bool point = false;
    std::size_t i = 0;
    for (; i < text.size(); ++i) {
        const char16_t c = text[i];
        if (isDigit(c)) {
            digits += static_cast<char>(c);
            anyDigit = true;
        } else if (c == locale.decimal && !point) {
            digits += '.';
            point = true;
        } else if ((c == locale.thousands || (isSpace(locale.thousands) && isSpace(c))) && anyDigit &&
                   !point) {
            continue;
        } else {
            break;
        }
    }
    if (!anyDigit) return std::nullopt;
    if (i < text.size()) {
        // "D" marks an exponent as well.
        const char16_t mark = lowerCase(text[i]);
        if (mark != u'e' && mark != u'd') return std::nullopt;
        digits += 'e';
        ++i;
        if (i < text.size() && (text[i] == u'-' || text[i] == u'+')) {
            if (text[i] == u'-') digits += '-';
            ++i;
        }
        const std::size_t begin = i;
        for (; i < text.size() && isDigit(text[i]); ++i) digits += static_cast<char>(text[i]);
        if (i == begin || i < text.size()) return std::nullopt;
    }
    if (digits.front() == '.') digits.insert(digits.begin(), '0');
    double number = 0;
    const auto [end, code] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    // Callers report infinity as an overflow.
    if (code == std::errc::result_out_of_range) return base::valueOutOfRange(digits);
    if (code != std::errc()) return std::nullopt;
    return negative ? -number : number;
}

bool isNumericText(std::u16string_view text, const Locale& locale)
{
    const auto number = parseNumber(text, locale);
    return number && std::isfinite(*number);
}

Result<double> toDouble(const Value& value, const Locale& locale)
{
    switch (value.type()) {
    case VarType::Empty: return 0.0;
    case VarType::Integer:
    case VarType::Long:
    case VarType::Byte:
    case VarType::Boolean: return value.whole();
    case VarType::Single:
    case VarType::Double:
    case VarType::Date: return value.asReal();
    case VarType::Currency: return static_cast<double>(value.tenThousandths()) / 10000.0;
    case VarType::String: {
        if (const auto number = parseNumber(value.text(), locale)) {
            if (!std::isfinite(*number)) return fault(error::kOverflow);
            return *number;
        }
        return mismatch(value);
    }
    default: return mismatch(value);
    }
}

Result<std::int32_t> toLong(const Value& value, const Locale& locale)
{
    return toWhole<std::int32_t>(value, locale);
}
Result<std::int16_t> toInteger(const Value& value, const Locale& locale)
{
    return toWhole<std::int16_t>(value, locale);
}

Result<std::uint8_t> toByte(const Value& value, const Locale& locale)
{
    // True is 255, all bits set; as a number -1 it would not fit.
    if (value.type() == VarType::Boolean) return static_cast<std::uint8_t>(value.whole() != 0 ? 255 : 0);
    return toWhole<std::uint8_t>(value, locale);
}

Result<float> toSingle(const Value& value, const Locale& locale)
{
    const double number = TRY_RESULT(toDouble(value, locale));
    if (std::fabs(number) > static_cast<double>(std::numeric_limits<float>::max()))
        return fault(error::kOverflow);
    return static_cast<float>(number);
}

Result<std::int64_t> toCurrency(const Value& value, const Locale& locale)
{
    if (value.type() == VarType::Currency) return value.tenThousandths();
    if (value.isWhole()) return std::int64_t{value.whole()} * 10000;
    const double number = TRY_RESULT(toDouble(value, locale));
    // A Double has too few bits for large amounts in ten-thousandths; for small ones its own rounding keeps
    // 0.00005 a half.
    constexpr double kExact = 9007199254740992.0;
    const long double scaled = std::fabs(number) * 10000.0 < kExact
                                   ? static_cast<long double>(roundHalfEven(number * 10000.0))
                                   : std::nearbyint(static_cast<long double>(number) * 10000.0L);
    if (!(std::fabs(scaled) < 9223372036854775807.0L)) return fault(error::kOverflow);
    return static_cast<std::int64_t>(scaled);
}

std::optional<bool> booleanWord(std::u16string_view text)
{
    if (sameText(text, u"true") || sameText(text, u"#true#")) return true;
    if (sameText(text, u"false") || sameText(text, u"#false#")) return false;
    return std::nullopt;
}

Result<bool> toBoolean(const Value& value, const Locale& locale)
{
    if (value.isWhole()) return value.whole() != 0;
    if (value.isString()) {
        if (const auto word = booleanWord(trimmed(value.text()))) return *word;
    }
    const double number = TRY_RESULT(toDouble(value, locale));
    return number != 0;
}

Result<double> toDate(const Value& value, const Locale& locale)
{
    double days = 0;
    if (value.isString()) {
        if (const auto date = parseDate(value.text(), locale, currentYear())) return *date;
        const auto number = parseNumber(value.text(), locale);
        if (!number) return mismatch(value);
        days = *number;
    } else {
        days = TRY_RESULT(toDouble(value, locale));
    }
    if (!(days > kMinDate - 1 && days < kEndDate)) return fault(error::kOverflow);
    return days;
}

std::u16string formatReal(double number, int significantDigits, const Locale& locale)
{
    if (std::isnan(number)) return u"-1.#IND";
    if (std::isinf(number)) return number < 0 ? u"-1.#INF" : u"1.#INF";
    if (number == 0) return u"0";
    char buffer[40];
    const auto written = std::to_chars(buffer, buffer + sizeof buffer, std::fabs(number),
                                       std::chars_format::scientific, significantDigits - 1);
    const std::string_view scientific(buffer, static_cast<std::size_t>(written.ptr - buffer));
    const std::size_t mark = scientific.find('e');
    std::string digits;
    for (const char c : scientific.substr(0, mark)) {
        if (c != '.') digits += c;
    }
    while (digits.size() > 1 && digits.back() == '0') digits.pop_back();
    int exponent = 0;
    std::string_view exponentText = scientific.substr(mark + 1);
    if (exponentText.front() == '+') exponentText.remove_prefix(1);
    std::from_chars(exponentText.data(), exponentText.data() + exponentText.size(), exponent);

    std::u16string text;
    if (number < 0) text += u'-';
    const auto count = static_cast<int>(digits.size());
    const std::u16string wide = widened(digits);
    // Written out in full while no more places are needed than the type has digits.
    if (exponent >= 0 && exponent < significantDigits) {
        if (count <= exponent + 1) {
            return text + wide + std::u16string(static_cast<std::size_t>(exponent + 1 - count), u'0');
        }
        const auto whole = static_cast<std::size_t>(exponent + 1);
        return text + wide.substr(0, whole) + locale.decimal + wide.substr(whole);
    }
    if (exponent < 0 && count - 1 - exponent <= significantDigits) {
        return text + u"0" + locale.decimal + std::u16string(static_cast<std::size_t>(-exponent - 1), u'0') +
               wide;
    }
    text += wide[0];
    if (count > 1) text += locale.decimal + wide.substr(1);
    std::u16string places = widened(std::to_string(std::abs(exponent)));
    if (places.size() < 2) places.insert(places.begin(), u'0');
    return text + (exponent < 0 ? u"E-" : u"E+") + places;
}

Result<std::u16string> toText(const Value& value, const Locale& locale)
{
    switch (value.type()) {
    case VarType::Empty: return std::u16string();
    case VarType::String: return std::u16string(value.text());
    case VarType::Boolean: return std::u16string(value.whole() != 0 ? u"True" : u"False");
    case VarType::Integer:
    case VarType::Long:
    case VarType::Byte: return widened(std::to_string(value.whole()));
    case VarType::Single: return formatReal(value.asReal(), 7, locale);
    case VarType::Double: return formatReal(value.asReal(), 15, locale);
    case VarType::Currency: return formatCurrency(value.tenThousandths(), locale);
    case VarType::Date: return formatDate(value.asReal(), locale);
    case VarType::Error: return u"Error " + widened(std::to_string(value.errorCode()));
    default: return mismatch(value);
    }
}

Result<Value> toStringValue(const Value& value, const Locale& locale)
{
    if (value.isString()) return value;
    const auto text = TRY_RESULT(toText(value, locale));
    return Value::string(text);
}

std::u16string typeNameOf(const Value& value)
{
    switch (value.type()) {
    case VarType::Empty: return u"Empty";
    case VarType::Null: return u"Null";
    case VarType::Integer: return u"Integer";
    case VarType::Long: return u"Long";
    case VarType::Single: return u"Single";
    case VarType::Double: return u"Double";
    case VarType::Currency: return u"Currency";
    case VarType::Date: return u"Date";
    case VarType::String: return u"String";
    case VarType::Object: return value.asObject() ? value.asObject()->typeName() : u"Nothing";
    case VarType::Error: return u"Error";
    case VarType::Boolean: return u"Boolean";
    case VarType::Byte: return u"Byte";
    case VarType::Array: return u"Variant()";
    default: return value.isReference() ? typeNameOf(value.resolved()) : u"Unknown";
    }
}

} // namespace script::vbscript
