#include "flash/avm2/bindings/Globalization.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <optional>

// Numbers and amounts of money as a locale writes and reads them.
namespace flash::avm2::globalization
{

using classes::allocateNative;
using Kind = NativeMember::Kind;

namespace
{

// The slots that both formatters begin with, in their order.
enum Slot : std::uint32_t {
    DecimalSeparator,
    DigitsType,
    FractionalDigits,
    GroupingPattern,
    GroupingSeparator,
    LeadingZero,
    NegativeSymbol,
    TrailingZeros,
    UseGrouping,
    NegativeFormat,
    PositiveFormat, ///< of currencies
};
constexpr std::string_view kSlots =
    "decimalSeparator:String digitsType:uint fractionalDigits:int groupingPattern:String "
    "groupingSeparator:String leadingZero:Boolean negativeSymbol:String trailingZeros:Boolean "
    "useGrouping:Boolean negativeNumberFormat:uint";
constexpr std::string_view kCurrencySlots =
    "decimalSeparator:String digitsType:uint fractionalDigits:int groupingPattern:String "
    "groupingSeparator:String leadingZero:Boolean negativeSymbol:String trailingZeros:Boolean "
    "useGrouping:Boolean negativeCurrencyFormat:uint positiveCurrencyFormat:uint";
constexpr int kMostDigits = 20; // behind the separator that are written; a double has no more to say

// N: the number, C: the currency, -: the sign. By the formats' numbers.
constexpr std::array<std::u16string_view, 5> kNegative = {u"(N)", u"-N", u"- N", u"N-", u"N -"};
constexpr std::array<std::u16string_view, 16> kNegativeCurrency = {
    u"(CN)", u"-CN",  u"C-N",  u"CN-",  u"(NC)", u"-NC",  u"N-C",   u"NC-",
    u"-N C", u"-C N", u"N C-", u"C N-", u"C -N", u"N- C", u"(C N)", u"(N C)"};
constexpr std::array<std::u16string_view, 4> kPositiveCurrency = {u"CN", u"NC", u"C N", u"N C"};

/// What a formatter has been set to.
struct Style {
    QString decimal, grouping, minus;
    char16_t zero = u'0';
    int digits = 2;
    std::u16string groups;
    bool leadingZero = true, trailingZeros = true, groupsDigits = true;
};
Style styleOf(Call& call)
{
    Vm& vm = call.vm;
    const LocaleObject& self = localeSelf(call);
    const auto text = [&](Slot slot) {
        const Value value = self.slot(slot);
        return value.isNullish() ? QString() : qtext(vm.text(value));
    };
    Style style;
    style.decimal = text(DecimalSeparator);
    style.grouping = text(GroupingSeparator);
    style.minus = text(NegativeSymbol);
    style.groups = text(GroupingPattern).toStdU16String();
    style.zero = static_cast<char16_t>(vm.toUint(self.slot(DigitsType)));
    style.digits = std::clamp(vm.toInt(self.slot(FractionalDigits)), 0, kMostDigits);
    style.leadingZero = vm.toBoolean(self.slot(LeadingZero));
    style.trailingZeros = vm.toBoolean(self.slot(TrailingZeros));
    style.groupsDigits = vm.toBoolean(self.slot(UseGrouping));
    return style;
}

/// "3;2;*": three digits, then twos for ever; without the star the last group is what is left.
QString grouped(const QString& digits, const Style& style)
{
    std::vector<int> sizes;
    bool repeats = false;
    int size = 0;
    for (const char16_t unit : style.groups) {
        if (unit >= u'0' && unit <= u'9')
            size = std::min(size * 10 + (unit - u'0'), 1000);
        else if (unit == u';' && size > 0)
            sizes.push_back(std::exchange(size, 0));
        else if (unit == u'*')
            repeats = true;
    }
    if (size > 0) sizes.push_back(size);
    if (sizes.empty() || style.grouping.isEmpty()) return digits;
    QString made;
    qsizetype end = digits.size();
    for (std::size_t i = 0; end > 0; ++i) {
        if (i >= sizes.size() && !repeats) break;
        const qsizetype take = std::min<qsizetype>(end, sizes[std::min(i, sizes.size() - 1)]);
        made.prepend(digits.mid(end - take, take));
        end -= take;
        if (end > 0) made.prepend(style.grouping);
    }
    return digits.left(end) + made;
}

/// Without its sign.
QString magnitude(double value, const Style& style)
{
    QString text = QString::number(std::abs(value), 'f', style.digits);
    QString whole = text.section('.', 0, 0), fraction = text.section('.', 1);
    if (!style.trailingZeros)
        while (fraction.endsWith('0')) fraction.chop(1);
    if (!style.leadingZero && whole == "0" && !fraction.isEmpty()) whole.clear();
    if (style.groupsDigits) whole = grouped(whole, style);
    if (!fraction.isEmpty()) whole += style.decimal + fraction;
    if (style.zero != u'0') {
        for (QChar& unit : whole)
            if (unit >= QChar(u'0') && unit <= QChar(u'9'))
                unit = QChar(static_cast<char16_t>(style.zero + (unit.unicode() - u'0')));
    }
    return whole;
}
bool isZero(double value, const Style& style)
{
    return QString::number(std::abs(value), 'f', style.digits).toDouble() == 0;
}
QString laidOut(std::u16string_view form, const QString& number, const QString& currency,
                const QString& minus)
{
    QString made;
    for (const char16_t unit : form) {
        if (unit == u'N')
            made += number;
        else if (unit == u'C')
            made += currency;
        else if (unit == u'-')
            made += minus;
        else
            made += QChar(unit);
    }
    return made;
}

void setUp(Call& call)
{
    LocaleObject& self = takeLocale(call);
    Vm& vm = call.vm;
    const QLocale& locale = self.locale;
    const auto set = [&](Slot slot, const QString& text) { self.setSlot(slot, textValue(vm, text)); };
    set(DecimalSeparator, locale.decimalPoint());
    set(GroupingSeparator, locale.groupSeparator());
    set(NegativeSymbol, "-");
    const bool isIndian = locale.territory() == QLocale::India;
    set(GroupingPattern, isIndian ? "3;2;*" : "3;*");
    const QString zero = locale.zeroDigit();
    self.setSlot(DigitsType, static_cast<double>(zero.isEmpty() ? u'0' : zero[0].unicode()));
    self.setSlot(FractionalDigits, 2);
    for (const Slot slot : {LeadingZero, TrailingZeros, UseGrouping}) self.setSlot(slot, true);
    self.setSlot(NegativeFormat, 1);
}

// ---- NumberFormatter ----

Value makeNumbers(Call& call)
{
    setUp(call);
    return {};
}
/// A format's number that is none leaves the usual one.
std::u16string_view formAt(Call& call, Slot slot, std::span<const std::u16string_view> forms,
                           std::size_t usual)
{
    const std::uint32_t index = call.vm.toUint(localeSelf(call).slot(slot));
    return forms[index < forms.size() ? index : usual];
}
QString unwritable(double value)
{
    return std::isnan(value) ? QString("NaN") : value < 0 ? QString("-Infinity") : QString("Infinity");
}
Value formatNumber(Call& call)
{
    LocaleObject& self = localeSelf(call);
    self.last = status::kNoError;
    const double value = call.vm.toNumber(call.arg(0));
    if (!std::isfinite(value)) return textValue(call.vm, unwritable(value));
    const Style style = styleOf(call);
    const QString number = magnitude(value, style);
    if (!(value < 0) || isZero(value, style)) return textValue(call.vm, number);
    return textValue(call.vm, laidOut(formAt(call, NegativeFormat, kNegative, 1), number, {}, style.minus));
}

struct Read {
    double value = std::numeric_limits<double>::quiet_NaN();
    qsizetype begin = 0, end = 0; ///< of the text
};

int digitOf(QChar unit, const Style& style)
{
    const int own = unit.unicode() - style.zero;
    if (own >= 0 && own <= 9) return own;
    const int plain = unit.unicode() - u'0';
    return plain >= 0 && plain <= 9 ? plain : -1;
}
/// The digits that begin at a place. @returns nothing where there are none
std::optional<Read> readDigits(const QString& text, qsizetype begin, const Style& style)
{
    std::string digits;
    bool hasPoint = false;
    qsizetype at = begin;
    for (; at < text.size();) {
        const QStringView rest = QStringView(text).mid(at);
        const int digit = digitOf(text[at], style);
        const auto followedByDigit = [&](qsizetype length) {
            return at + length < text.size() && digitOf(text[at + length], style) >= 0;
        };
        if (digit >= 0) {
            digits += static_cast<char>('0' + digit);
            ++at;
        } else if (!hasPoint && !style.decimal.isEmpty() && rest.startsWith(style.decimal) &&
                   followedByDigit(style.decimal.size())) {
            hasPoint = true;
            digits += '.';
            at += style.decimal.size();
        } else if (!hasPoint && !digits.empty() && !style.grouping.isEmpty() &&
                   rest.startsWith(style.grouping) && followedByDigit(style.grouping.size())) {
            at += style.grouping.size();
        } else {
            break;
        }
    }
    if (digits.empty() || digits == ".") return std::nullopt;
    return Read{QString::fromStdString(digits).toDouble(), begin, at};
}
bool isSpace(QChar unit) { return unit.isSpace(); }
bool isMinus(QChar unit, const Style& style)
{
    return unit == '-' || unit == QChar(0x2212) || (style.minus.size() == 1 && unit == style.minus[0]);
}

/// The first number in a text, with its sign or its parentheses.
std::optional<Read> readNumber(const QString& text, const Style& style)
{
    for (qsizetype at = 0; at < text.size(); ++at) {
        auto found = readDigits(text, at, style);
        if (!found) continue;
        qsizetype before = found->begin, after = found->end;
        while (before > 0 && isSpace(text[before - 1])) --before;
        while (after < text.size() && isSpace(text[after])) ++after;
        const bool leads = before > 0 && isMinus(text[before - 1], style);
        const bool follows = after < text.size() && isMinus(text[after], style);
        const bool isWithin =
            before > 0 && after < text.size() && text[before - 1] == '(' && text[after] == ')';
        if (leads || isWithin) found->begin = before - 1;
        if ((follows && !leads) || isWithin) found->end = after + 1;
        if (leads || follows || isWithin) found->value = -found->value;
        return found;
    }
    return std::nullopt;
}
Value newNumberResult(Call& call, const Read& read)
{
    return call.vm.construct(Value(call.vm.nativeClass("flash.globalization::NumberParseResult")),
                             std::array<Value, 3>{Value(read.value), Value(static_cast<double>(read.begin)),
                                                  Value(static_cast<double>(read.end))});
}
Value parse(Call& call)
{
    LocaleObject& self = localeSelf(call);
    self.last = status::kNoError;
    const auto found = readNumber(qtextArg(call, 0, "parseString"), styleOf(call));
    if (!found) self.last = status::kParseError;
    return newNumberResult(call, found.value_or(Read{}));
}
/// The text must be nothing but the number.
Value parseNumber(Call& call)
{
    LocaleObject& self = localeSelf(call);
    self.last = status::kNoError;
    const QString text = qtextArg(call, 0, "parseString");
    const auto found = readNumber(text, styleOf(call));
    const bool isAll = found && QStringView(text).left(found->begin).trimmed().isEmpty() &&
                       QStringView(text).mid(found->end).trimmed().isEmpty();
    if (!isAll) self.last = status::kParseError;
    return isAll ? found->value : std::numeric_limits<double>::quiet_NaN();
}

constexpr NativeMember kNumbers[] = {
    GLOBALIZATION_MEMBERS,
    {"formatInt", Kind::Method, &formatNumber, 1, 1},
    {"formatUint", Kind::Method, &formatNumber, 1, 1},
    {"formatNumber", Kind::Method, &formatNumber, 1, 1},
    {"parse", Kind::Method, &parse, 1, 1},
    {"parseNumber", Kind::Method, &parseNumber, 1, 1},
};

// ---- CurrencyFormatter ----

Value makeCurrencies(Call& call)
{
    setUp(call);
    LocaleObject& self = localeSelf(call);
    const QLocale& locale = self.locale;
    self.currencyCode = locale.currencySymbol(QLocale::CurrencyIsoCode).toStdU16String();
    self.currencySymbol = locale.currencySymbol(QLocale::CurrencySymbol).toStdU16String();
    if (self.currencyCode.empty()) self.currencyCode = u"XXX";
    // How the locale lays an amount out is seen from one.
    const QString sample = locale.toCurrencyString(1.0);
    const bool leads = sample.indexOf(qtext(self.currencySymbol)) <= 0;
    const bool spaced = std::ranges::any_of(sample, isSpace);
    self.setSlot(PositiveFormat, (leads ? 0 : 1) + (spaced ? 2 : 0));
    constexpr int kUsual[] = {1, 5, 9, 8};
    const bool isAmerican = locale.territory() == QLocale::UnitedStates;
    self.setSlot(NegativeFormat, isAmerican ? 0 : kUsual[(leads ? 0 : 1) + (spaced ? 2 : 0)]);
    return {};
}
Value currencyCode(Call& call) { return Value(call.vm.string(localeSelf(call).currencyCode)); }
Value currencySymbol(Call& call) { return Value(call.vm.string(localeSelf(call).currencySymbol)); }
Value setCurrency(Call& call)
{
    LocaleObject& self = localeSelf(call);
    const std::u16string code = textArg(call, 0, "currencyISOCode"),
                         symbol = textArg(call, 1, "currencySymbol");
    const bool isCode = code.size() == 3 &&
                        std::ranges::all_of(code, [](char16_t unit) { return unit >= u'A' && unit <= u'Z'; });
    self.last = isCode ? status::kNoError : status::kIllegal;
    if (!isCode) return {};
    self.currencyCode = code;
    self.currencySymbol = symbol;
    return {};
}
/// Of the locale's own currency everybody knows what the sign stands for.
Value isSymbolSafe(Call& call)
{
    const LocaleObject& self = localeSelf(call);
    const QString code = qtextArg(call, 0, "requestedISOCode");
    return code == self.locale.currencySymbol(QLocale::CurrencyIsoCode);
}
Value formatCurrency(Call& call)
{
    LocaleObject& self = localeSelf(call);
    self.last = status::kNoError;
    const double value = call.vm.toNumber(call.arg(0));
    const QString currency = qtext(call.vm.toBoolean(call.arg(1)) ? self.currencySymbol : self.currencyCode);
    if (!std::isfinite(value)) return textValue(call.vm, unwritable(value));
    const Style style = styleOf(call);
    const bool negative = value < 0 && !isZero(value, style);
    const std::u16string_view form = negative ? formAt(call, NegativeFormat, kNegativeCurrency, 1)
                                              : formAt(call, PositiveFormat, kPositiveCurrency, 0);
    return textValue(call.vm, laidOut(form, magnitude(value, style), currency, style.minus));
}
Value parseCurrency(Call& call)
{
    LocaleObject& self = localeSelf(call);
    self.last = status::kNoError;
    const QString text = qtextArg(call, 0, "inputString").trimmed();
    Style style = styleOf(call);
    auto found = readNumber(text, style);
    QString rest;
    if (found) {
        rest = (text.left(found->begin) + text.mid(found->end)).trimmed();
        // The sign may stand on the currency's other side: -$5, (5 $).
        const bool isWithin = rest.startsWith('(') && rest.endsWith(')');
        const bool leads = !rest.isEmpty() && isMinus(rest.front(), style);
        const bool follows = !rest.isEmpty() && isMinus(rest.back(), style);
        if (isWithin)
            rest = rest.mid(1, rest.size() - 2).trimmed();
        else if (leads)
            rest = rest.mid(1).trimmed();
        else if (follows)
            rest.chop(1);
        if (isWithin || leads || follows) found->value = -std::abs(found->value);
    } else {
        self.last = status::kParseError;
    }
    const std::array<Value, 2> args{Value(found.value_or(Read{}).value), textValue(call.vm, rest.trimmed())};
    return call.vm.construct(Value(call.vm.nativeClass("flash.globalization::CurrencyParseResult")), args);
}

constexpr NativeMember kCurrencies[] = {
    GLOBALIZATION_MEMBERS,
    {"currencyISOCode", Kind::Getter, &currencyCode, 0, 0, nullptr, "String"},
    {"currencySymbol", Kind::Getter, &currencySymbol, 0, 0, nullptr, "String"},
    {"setCurrency", Kind::Method, &setCurrency, 2, 2},
    {"formattingWithCurrencySymbolIsSafe", Kind::Method, &isSymbolSafe, 1, 1},
    {"format", Kind::Method, &formatCurrency, 1, 2},
    {"parse", Kind::Method, &parseCurrency, 1, 1},
};

constexpr NativeClass formatter(std::string_view name, NativeFunction constructor,
                                std::span<const NativeMember> members, std::string_view slots)
{
    return {.package = "flash.globalization",
            .name = name,
            .base = {},
            .flags = NativeClass::Sealed | NativeClass::Final,
            .constructor = constructor,
            .minArguments = 1,
            .maxArguments = 1,
            .allocate = &allocateNative<LocaleObject>,
            .members = members,
            .slots = slots};
}
constexpr NativeClass result(std::string_view name, std::string_view slots)
{
    return {.package = "flash.globalization",
            .name = name,
            .base = {},
            .flags = NativeClass::Sealed | NativeClass::Final,
            .constructor = &assignSlots,
            .minArguments = 0,
            .maxArguments = 3,
            .slots = slots};
}
constexpr NativeClass kClasses[] = {
    formatter("NumberFormatter", &makeNumbers, kNumbers, kSlots),
    formatter("CurrencyFormatter", &makeCurrencies, kCurrencies, kCurrencySlots),
    result("NumberParseResult", "value:Number=nan startIndex:int endIndex:int"),
    result("CurrencyParseResult", "value:Number=nan currencyString:String="),
};

constexpr std::string_view kText = R"(
flash.globalization::NumberFormatter
  (String) requestedLocaleIDName-:String actualLocaleIDName-:String lastOperationStatus-:String
  ^getAvailableLocaleIDNames():Vector<String> decimalSeparator:String digitsType:uint fractionalDigits:int groupingPattern:String
  groupingSeparator:String leadingZero:Boolean negativeSymbol-:String trailingZeros:Boolean useGrouping:Boolean
  negativeNumberFormat:uint formatInt(int):String formatUint(uint):String formatNumber(Number):String parse(String):NumberParseResult
  parseNumber(String):Number
flash.globalization::CurrencyFormatter
  (String) requestedLocaleIDName-:String actualLocaleIDName-:String lastOperationStatus-:String
  ^getAvailableLocaleIDNames():Vector<String> decimalSeparator:String digitsType:uint fractionalDigits:int groupingPattern:String
  groupingSeparator:String leadingZero:Boolean negativeSymbol-:String trailingZeros:Boolean useGrouping:Boolean
  negativeCurrencyFormat:uint positiveCurrencyFormat:uint currencyISOCode-:String currencySymbol-:String
  setCurrency(String,String):void formattingWithCurrencySymbolIsSafe(String):Boolean format(Number,Boolean=):String
  parse(String):CurrencyParseResult
flash.globalization::NumberParseResult
  (Number=,int=,int=) value-:Number startIndex-:int endIndex-:int
flash.globalization::CurrencyParseResult
  (Number=,String=) value-:Number currencyString-:String
)";

} // namespace

NativeLibrary numberLibrary() { return {kClasses, {}, kText}; }

} // namespace flash::avm2::globalization
