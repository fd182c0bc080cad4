#include "flash/avm2/classes/Library.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <limits>
#include <numbers>

namespace flash::avm2::classes
{

namespace
{

double selfNumber(Call& call, const char* what)
{
    if (call.self.isNumber()) return call.self.number();
    if (call.self.isObject() && call.self.object() == call.vm.classes().number->prototype) return 0;
    if (call.self.isObject() && call.self.object() == call.vm.classes().integer->prototype) return 0;
    if (call.self.isObject() && call.self.object() == call.vm.classes().uinteger->prototype) return 0;
    call.vm.throwError(ErrorClass::Type, 1004,
                       fromUtf8("Method " + std::string(what) + " was invoked on an incompatible object."));
}

std::u16string inRadix(double number, int radix)
{
    if (std::isnan(number)) return u"NaN";
    if (std::isinf(number)) return number > 0 ? u"Infinity" : u"-Infinity";
    const bool negative = number < 0;
    double rest = std::floor(std::fabs(number));
    std::u16string digits;
    do {
        digits += u"0123456789abcdefghijklmnopqrstuvwxyz"[static_cast<int>(std::fmod(rest, radix))];
        rest = std::floor(rest / radix);
    } while (rest > 0 && digits.size() < 1100);
    if (negative && digits != u"0") digits += u'-';
    std::ranges::reverse(digits);
    return digits;
}

Value toString(Call& call)
{
    const double number = selfNumber(call, "Number.prototype.toString");
    const int radix = call.has(0) ? call.vm.toInt(call.arg(0)) : 10;
    if (radix < 2 || radix > 36)
        call.vm.throwError(ErrorClass::Range, 1003,
                           u"The radix argument must be between 2 and 36; got " + numberText(radix) + u".");
    return call.vm.string(radix == 10 ? numberText(number) : inRadix(number, radix));
}

Value valueOf(Call& call) { return selfNumber(call, "Number.prototype.valueOf"); }

/// The player's own way: rounded as decimal text, "e+21" from 1e21 on.
std::string printed(const char* format, int digits, double number)
{
    std::array<char, 1200> text{};
    std::snprintf(text.data(), text.size(), format, digits, number);
    return text.data();
}

std::string exponentTrimmed(std::string text)
{
    // C writes at least two digits of the exponent.
    const auto at = text.find('e');
    if (at == std::string::npos) return text;
    std::size_t digit = at + 2;
    while (digit + 1 < text.size() && text[digit] == '0') text.erase(digit, 1);
    return text;
}

/// As toExponential() writes: what does not fit is cut off, not rounded; an exponent of zero is left out, and
/// zero itself has the exponent at which the player gives up looking for its first digit.
std::string truncatedScientific(double number, int digits)
{
    if (number == 0)
        return digits == 0 ? "1e-15" : "0." + std::string(static_cast<std::size_t>(digits), '0') + "e-16";
    // Every digit of the number: a double has no more than 767.
    std::string text = printed("%.*e", 780, number);
    const auto point = text.find('.');
    const auto mark = text.find('e');
    std::string exponent = text.substr(mark);
    text.resize(digits == 0 ? point : point + 1 + static_cast<std::size_t>(digits));
    if (exponent == "e+00") exponent.clear();
    return exponentTrimmed(text + exponent);
}

/// The whole number nearest to one of at least 1, with zeros for the digits that do not tell it from others.
std::string wholeDigits(double number)
{
    std::array<char, 400> text{};
    const auto end = std::to_chars(text.data(), text.data() + text.size(), std::round(number),
                                   std::chars_format::scientific)
                         .ptr;
    std::string digits;
    int exponent = 0;
    for (const char* at = text.data(); at < end; ++at) {
        if (*at == 'e') {
            exponent = std::atoi(at + 1);
            break;
        }
        if (*at >= '0' && *at <= '9') digits += *at;
    }
    digits.resize(std::max<std::size_t>(digits.size(), static_cast<std::size_t>(exponent) + 1), '0');
    return number < 0 ? "-" + digits : digits;
}

bool notFinite(double number, std::u16string& text)
{
    if (std::isfinite(number)) return false;
    text = numberText(number);
    return true;
}

Value toFixed(Call& call)
{
    const double number = selfNumber(call, "Number.prototype.toFixed");
    const int digits = call.vm.toInt(call.arg(0));
    if (digits < 0 || digits > 20)
        call.vm.throwError(
            ErrorClass::Range, 1002,
            "Number.toPrecision has a range of 1 to 21. Number.toFixed and Number.toExponential have a range "
            "of 0 to 20. Specified value is not within expected range.");
    std::u16string text;
    if (!notFinite(number, text)) {
        // Of no digits after the point the player shows no more before it than tell the number from others.
        if (digits == 0 && std::fabs(number) >= 1) {
            text = widen(wholeDigits(number));
        } else {
            // What lies half-way, and only an odd number of halves of the last binary place does, goes away
            // from zero.
            const bool isHalfWay = std::fabs(std::fmod(std::ldexp(number, digits + 1), 2)) == 1;
            const double away = std::copysign(std::numeric_limits<double>::infinity(), number);
            text = widen(printed("%.*f", digits, isHalfWay ? std::nextafter(number, away) : number + 0.0));
        }
    }
    return call.vm.string(std::move(text));
}

Value toExponential(Call& call)
{
    const double number = selfNumber(call, "Number.prototype.toExponential");
    const int digits = call.vm.toInt(call.arg(0));
    if (digits < 0 || digits > 20)
        call.vm.throwError(
            ErrorClass::Range, 1002,
            "Number.toPrecision has a range of 1 to 21. Number.toFixed and Number.toExponential have a range "
            "of 0 to 20. Specified value is not within expected range.");
    std::u16string text;
    if (!notFinite(number, text)) text = widen(truncatedScientific(number, digits));
    return call.vm.string(std::move(text));
}

Value toPrecision(Call& call)
{
    const double number = selfNumber(call, "Number.prototype.toPrecision");
    const int digits = call.vm.toInt(call.arg(0));
    if (digits < 1 || digits > 21)
        call.vm.throwError(
            ErrorClass::Range, 1002,
            "Number.toPrecision has a range of 1 to 21. Number.toFixed and Number.toExponential have a range "
            "of 0 to 20. Specified value is not within expected range.");
    std::u16string text;
    if (notFinite(number, text)) return call.vm.string(std::move(text));
    const std::string scientific = printed("%.*e", digits - 1, number);
    const int exponent = std::atoi(scientific.c_str() + scientific.find('e') + 1);
    if (number == 0) return call.vm.string(std::string_view(printed("%.*f", digits, 0)));
    // However small the number is, it has its zeros written out.
    if (exponent >= digits) return call.vm.string(std::string_view(exponentTrimmed(scientific)));
    return call.vm.string(std::string_view(printed("%.*f", std::max(0, digits - 1 - exponent), number)));
}

Value convertNumber(Call& call) { return call.has(0) ? call.vm.toNumber(call.arg(0)) : 0.0; }
Value convertInt(Call& call) { return call.vm.toInt(call.arg(0)); }
Value convertUint(Call& call) { return call.vm.toUint(call.arg(0)); }
Value convertBoolean(Call& call) { return call.vm.toBoolean(call.arg(0)); }

Value booleanToString(Call& call)
{
    if (call.self.isBoolean()) return call.vm.toString(call.self);
    if (call.self.isObject() && call.self.object() == call.vm.classes().boolean->prototype)
        return call.vm.name("false").string();
    call.vm.throwError(ErrorClass::Type, 1004,
                       "Method Boolean.prototype.toString was invoked on an incompatible object.");
}

Value booleanValueOf(Call& call)
{
    if (call.self.isBoolean()) return call.self;
    if (call.self.isObject() && call.self.object() == call.vm.classes().boolean->prototype) return false;
    call.vm.throwError(ErrorClass::Type, 1004,
                       "Method Boolean.prototype.valueOf was invoked on an incompatible object.");
}

template <double (*function)(double)>
Value one(Call& call)
{
    return function(call.vm.toNumber(call.arg(0)));
}

template <double (*function)(double)>
Value quickOne(Vm&, Value, const Value* args)
{
    if (!args[0].isNumber()) return Value::hole();
    return function(args[0].number());
}
constexpr NativeMember mathOfOne(std::string_view name, NativeFunction function, QuickFunction quick)
{
    return {name, Kind::Static, function, 1, 1, nullptr, {}, quick, 1};
}

double roundHalfUp(double number) { return std::floor(number + 0.5); }

Value power(Call& call)
{
    const double base = call.vm.toNumber(call.arg(0)), exponent = call.vm.toNumber(call.arg(1));
    if (std::isnan(exponent)) return exponent;
    if (std::fabs(base) == 1 && std::isinf(exponent)) return std::nan("");
    return std::pow(base, exponent);
}

Value arcTangent2(Call& call)
{
    const double y = call.vm.toNumber(call.arg(0));
    return std::atan2(y, call.vm.toNumber(call.arg(1)));
}

template <bool wantsMost>
Value extreme(Call& call)
{
    double best = wantsMost ? -HUGE_VAL : HUGE_VAL;
    for (std::uint32_t i = 0; i < call.count; ++i) {
        const double number = call.vm.toNumber(call.args[i]);
        if (std::isnan(number) || std::isnan(best))
            best = std::nan("");
        else if (wantsMost ? number > best || (number == 0 && best == 0 && !std::signbit(number))
                           : number < best || (number == 0 && best == 0 && std::signbit(number)))
            best = number;
    }
    return best;
}

/// Of two numbers, one of which is greater.
template <bool wantsMost>
Value quickExtreme(Vm&, Value, const Value* args)
{
    if (!args[0].isNumber() || !args[1].isNumber()) return Value::hole();
    const double a = args[0].number(), b = args[1].number();
    if (!(a < b) && !(b < a)) return Value::hole();
    return (a < b) == wantsMost ? b : a;
}

double randomOf(Vm& vm) { return (vm.host().random() >> 1U) / 2147483648.0; }
Value randomNumber(Call& call) { return randomOf(call.vm); }
Value quickRandom(Vm& vm, Value, const Value*) { return randomOf(vm); }

constexpr NativeMember kMembers[] = {
    {"toString", Kind::As3, &toString, 0, -1},
    {"toLocaleString", Kind::Prototype, &toString, 0, -1},
    {"valueOf", Kind::As3, &valueOf, 0, -1},
    {"toFixed", Kind::As3, &toFixed, 0, 1},
    {"toExponential", Kind::As3, &toExponential, 0, 1},
    {"toPrecision", Kind::As3, &toPrecision, 0, 1},
};
constexpr NativeConstant kNumberConstants[] = {
    {"MAX_VALUE", std::numeric_limits<double>::max()},
    {"MIN_VALUE", std::numeric_limits<double>::denorm_min()},
    {"NaN", std::numeric_limits<double>::quiet_NaN()},
    {"POSITIVE_INFINITY", std::numeric_limits<double>::infinity()},
    {"NEGATIVE_INFINITY", -std::numeric_limits<double>::infinity()},
    {"length", 1},
};
constexpr NativeConstant kIntConstants[] = {
    {"MAX_VALUE", 2147483647.0}, {"MIN_VALUE", -2147483648.0}, {"length", 1}};
constexpr NativeConstant kUintConstants[] = {{"MAX_VALUE", 4294967295.0}, {"MIN_VALUE", 0}, {"length", 1}};
constexpr NativeConstant kLengthOne[] = {{"length", 1}};
constexpr NativeMember kBooleanMembers[] = {
    {"toString", Kind::As3, &booleanToString, 0, -1},
    {"valueOf", Kind::As3, &booleanValueOf, 0, -1},
};
constexpr NativeMember kMathMembers[] = {
    mathOfOne("abs", &one<std::fabs>, &quickOne<std::fabs>),
    mathOfOne("acos", &one<std::acos>, &quickOne<std::acos>),
    mathOfOne("asin", &one<std::asin>, &quickOne<std::asin>),
    mathOfOne("atan", &one<std::atan>, &quickOne<std::atan>),
    mathOfOne("ceil", &one<std::ceil>, &quickOne<std::ceil>),
    mathOfOne("cos", &one<std::cos>, &quickOne<std::cos>),
    mathOfOne("exp", &one<std::exp>, &quickOne<std::exp>),
    mathOfOne("floor", &one<std::floor>, &quickOne<std::floor>),
    mathOfOne("log", &one<std::log>, &quickOne<std::log>),
    mathOfOne("round", &one<roundHalfUp>, &quickOne<roundHalfUp>),
    mathOfOne("sin", &one<std::sin>, &quickOne<std::sin>),
    mathOfOne("sqrt", &one<std::sqrt>, &quickOne<std::sqrt>),
    mathOfOne("tan", &one<std::tan>, &quickOne<std::tan>),
    {"atan2", Kind::Static, &arcTangent2, 2, 2},
    {"pow", Kind::Static, &power, 2, 2},
    {"max", Kind::Static, &extreme<true>, 0, -1, nullptr, {}, &quickExtreme<true>, 2},
    {"min", Kind::Static, &extreme<false>, 0, -1, nullptr, {}, &quickExtreme<false>, 2},
    {"random", Kind::Static, &randomNumber, 0, 0, nullptr, {}, &quickRandom},
};
constexpr NativeConstant kMathConstants[] = {
    {"E", std::numbers::e},           {"LN10", std::numbers::ln10},   {"LN2", std::numbers::ln2},
    {"LOG10E", std::numbers::log10e}, {"LOG2E", std::numbers::log2e}, {"PI", std::numbers::pi},
    {"SQRT1_2", 0.7071067811865476},  {"SQRT2", std::numbers::sqrt2},
};

/// `new Number(x)` is a number, no object around one.
Object* allocateNothing(Vm& vm, ClassObject& cls)
{
    return vm.heap().make<Object>(cls.instances, cls.prototype);
}

} // namespace

constinit const NativeClass kNumber{.package = {},
                                    .name = "Number",
                                    .base = {},
                                    .flags = NativeClass::Sealed | NativeClass::Final,
                                    .allocate = &allocateNothing,
                                    .conversion = &convertNumber,
                                    .members = kMembers,
                                    .constants = kNumberConstants};
constinit const NativeClass kInt{.package = {},
                                 .name = "int",
                                 .base = {},
                                 .flags = NativeClass::Sealed | NativeClass::Final,
                                 .allocate = &allocateNothing,
                                 .conversion = &convertInt,
                                 .members = kMembers,
                                 .constants = kIntConstants};
constinit const NativeClass kUint{.package = {},
                                  .name = "uint",
                                  .base = {},
                                  .flags = NativeClass::Sealed | NativeClass::Final,
                                  .allocate = &allocateNothing,
                                  .conversion = &convertUint,
                                  .members = kMembers,
                                  .constants = kUintConstants};
constinit const NativeClass kBoolean{.package = {},
                                     .name = "Boolean",
                                     .base = {},
                                     .flags = NativeClass::Sealed | NativeClass::Final,
                                     .allocate = &allocateNothing,
                                     .conversion = &convertBoolean,
                                     .members = kBooleanMembers,
                                     .constants = kLengthOne};
constinit const NativeClass kMath{.package = {},
                                  .name = "Math",
                                  .base = {},
                                  .flags = NativeClass::Sealed | NativeClass::Final | NativeClass::Abstract,
                                  .members = kMathMembers,
                                  .constants = kMathConstants};

} // namespace flash::avm2::classes
