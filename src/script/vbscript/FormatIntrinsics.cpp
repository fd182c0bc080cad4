#include "script/vbscript/DateTime.h"
#include "script/vbscript/IntrinsicTools.h"

#include <charconv>
#include <cmath>

namespace script::vbscript
{

namespace
{

constexpr int kDefaultPlaces = 2;

struct NumberStyle {
    int places = kDefaultPlaces;
    bool leadingDigit = true;
    bool parentheses = false;
    bool groups = true;
};

// (expression [, places [, leading digit [, parentheses [, groups]]]]); -2 means the system's setting
Result<NumberStyle> styleFrom(Engine& engine, ArgumentList a, bool isCurrency)
{
    if (a[0].isNull()) return fault(error::kTypeMismatch);
    NumberStyle style;
    style.parentheses = isCurrency && engine.locale().negativeCurrencyInParentheses;
    const std::int32_t places = TRY_RESULT(longArgument(engine, a, 1, -1));
    if (places < -1 || places > 99) return fault(error::kInvalidCall);
    if (places >= 0) style.places = places;
    bool* const choices[] = {&style.leadingDigit, &style.parentheses, &style.groups};
    for (std::size_t i = 0; i < 3; ++i) {
        const std::int32_t choice = TRY_RESULT(longArgument(engine, a, i + 2, -2));
        if (choice < -2 || choice > 0) return fault(error::kInvalidCall);
        if (choice != -2) *choices[i] = choice != 0;
    }
    return style;
}

// The digits of a number rounded half away from zero, the way people expect of printed figures.
std::string fixedDigits(double magnitude, int places)
{
    // 15 digits are what a Double holds for sure: rounding them first keeps 2.675 a half.
    char buffer[512];
    auto written =
        std::to_chars(buffer, buffer + sizeof buffer, magnitude, std::chars_format::scientific, 14);
    std::string text(buffer, written.ptr);
    const std::size_t mark = text.find('e');
    int exponent = 0;
    const std::size_t exponentBegin = text[mark + 1] == '+' ? mark + 2 : mark + 1;
    std::from_chars(text.data() + exponentBegin, text.data() + text.size(), exponent);
    std::string digits;
    for (const char c : text.substr(0, mark)) {
        if (c != '.') digits += c;
    }
    // digits = d.ddd x 10^exponent; bring the decimal point behind `whole` digits.
    int whole = exponent + 1;
    if (whole < 1) {
        digits.insert(0, static_cast<std::size_t>(1 - whole), '0');
        whole = 1;
    }
    const auto wanted = static_cast<std::size_t>(whole + places);
    if (digits.size() > wanted) {
        const bool up = digits[wanted] >= '5';
        digits.resize(wanted);
        if (up) {
            std::size_t i = digits.size();
            while (i > 0 && digits[i - 1] == '9') digits[--i] = '0';
            if (i > 0)
                ++digits[i - 1];
            else
                digits.insert(digits.begin(), '1'), ++whole;
        }
    }
    digits.resize(static_cast<std::size_t>(whole + places), '0');
    return digits.insert(static_cast<std::size_t>(whole), 1, '.');
}

// The number without its sign.
std::u16string magnitudeText(double magnitude, const NumberStyle& style, const Locale& locale)
{
    const std::string digits = fixedDigits(magnitude, style.places);
    const std::size_t point = digits.find('.');
    std::u16string text;
    for (std::size_t i = 0; i < point; ++i) {
        text += static_cast<char16_t>(digits[i]);
        const std::size_t left = point - 1 - i;
        if (style.groups && left > 0 && left % 3 == 0) text += locale.thousands;
    }
    if (style.places == 0) return text;
    if (!style.leadingDigit && text == u"0") text.clear();
    return text + locale.decimal + widened(digits.substr(point + 1));
}

bool isZero(const std::u16string& text) { return text.find_first_of(u"123456789") == std::u16string::npos; }

std::u16string signedText(const std::u16string& text, bool negative, bool parentheses)
{
    if (!negative || isZero(text)) return text;
    return parentheses ? u"(" + text + u")" : u"-" + text;
}

Result<Value> formatNumber(Engine& engine, ArgumentList a)
{
    const NumberStyle style = TRY_RESULT(styleFrom(engine, a, false));
    const double number = TRY_RESULT(toDouble(a[0], engine.locale()));
    return Value::string(
        signedText(magnitudeText(std::fabs(number), style, engine.locale()), number < 0, style.parentheses));
}

Result<Value> formatCurrencyValue(Engine& engine, ArgumentList a)
{
    const Locale& locale = engine.locale();
    const NumberStyle style = TRY_RESULT(styleFrom(engine, a, true));
    const double number = TRY_RESULT(toDouble(a[0], locale));
    const std::u16string text = magnitudeText(std::fabs(number), style, locale);
    const std::u16string sign(locale.currency);
    const std::u16string amount = locale.currencyBehind ? text + u'\xA0' + sign : sign + text;
    return Value::string(signedText(amount, number < 0 && !isZero(text), style.parentheses));
}

Result<Value> formatPercent(Engine& engine, ArgumentList a)
{
    const NumberStyle style = TRY_RESULT(styleFrom(engine, a, false));
    const double number = TRY_RESULT(toDouble(a[0], engine.locale())) * 100;
    if (!std::isfinite(number)) return fault(error::kOverflow);
    const std::u16string text = magnitudeText(std::fabs(number), style, engine.locale()) + u"%";
    return Value::string(signedText(text, number < 0, style.parentheses));
}

Result<Value> formatDateTime(Engine& engine, ArgumentList a)
{
    const Locale& locale = engine.locale();
    if (a[0].isNull()) return fault(error::kTypeMismatch);
    const double date = TRY_RESULT(toDate(a[0], locale));
    const std::int32_t format = TRY_RESULT(longArgument(engine, a, 1, 0));
    switch (format) {
    case 0: return Value::string(formatDate(date, locale));
    case 1: return Value::string(formatLongDate(date, locale));
    case 2: return Value::string(formatShortDate(dateParts(date), locale));
    case 3: return Value::string(formatLongTime(dateParts(date), locale));
    case 4: return Value::string(formatShortTime(dateParts(date)));
    default: return fault(error::kInvalidCall);
    }
}

constexpr Intrinsic kTable[] = {
    {u"FormatNumber", formatNumber, 1, 5},
    {u"FormatCurrency", formatCurrencyValue, 1, 5},
    {u"FormatPercent", formatPercent, 1, 5},
    {u"FormatDateTime", formatDateTime, 1, 2},
};

} // namespace

std::span<const Intrinsic> formatIntrinsics() { return kTable; }

} // namespace script::vbscript
