#include "base/TextNumbers.h"
#include "flash/avm2/interpreter/Vm.h"

#include <charconv>
#include <cmath>

namespace flash::avm2
{

std::u16string widen(std::string_view ascii) { return {ascii.begin(), ascii.end()}; }

std::u16string fromUtf8(std::string_view utf8)
{
    std::u16string text;
    text.reserve(utf8.size());
    for (std::size_t i = 0; i < utf8.size();) {
        const auto first = static_cast<unsigned char>(utf8[i]);
        const std::size_t length = first < 0x80        ? 1
                                   : first >> 5U == 6  ? 2
                                   : first >> 4U == 14 ? 3
                                   : first >= 0xF0     ? 4
                                                       : 0;
        std::uint32_t code = length == 1   ? first
                             : length == 2 ? first & 0x1FU
                             : length == 3 ? first & 0x0FU
                                           : first & 0x07U;
        bool good = length != 0 && i + length <= utf8.size();
        for (std::size_t k = 1; good && k < length; ++k) {
            const auto next = static_cast<unsigned char>(utf8[i + k]);
            good = (next & 0xC0U) == 0x80;
            code = code << 6U | (next & 0x3FU);
        }
        // What is written longer than it needs to be, or lies beyond all characters, is no character.
        constexpr std::uint32_t kMin[] = {0, 0, 0x80, 0x800, 0x10000};
        good = good && code >= kMin[length] && code <= 0x10FFFF;
        if (!good) {
            text += static_cast<char16_t>(first);
            ++i;
            continue;
        }
        i += length;
        if (code >= 0x10000) {
            code -= 0x10000;
            text += static_cast<char16_t>(0xD800 + (code >> 10U & 0x3FFU));
            text += static_cast<char16_t>(0xDC00 + (code & 0x3FFU));
        } else {
            text += static_cast<char16_t>(code);
        }
    }
    return text;
}

std::string toUtf8(std::u16string_view text)
{
    std::string utf8;
    utf8.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        std::uint32_t code = text[i];
        if (code >= 0xD800 && code < 0xDC00 && i + 1 < text.size() && text[i + 1] >= 0xDC00 &&
            text[i + 1] < 0xE000)
            code = 0x10000 + ((code - 0xD800) << 10U) + (text[++i] - 0xDC00U);
        if (code < 0x80) {
            utf8 += static_cast<char>(code);
        } else if (code < 0x800) {
            utf8 += static_cast<char>(0xC0U | code >> 6U);
            utf8 += static_cast<char>(0x80U | (code & 0x3FU));
        } else if (code < 0x10000) {
            utf8 += static_cast<char>(0xE0U | code >> 12U);
            utf8 += static_cast<char>(0x80U | (code >> 6U & 0x3FU));
            utf8 += static_cast<char>(0x80U | (code & 0x3FU));
        } else {
            utf8 += static_cast<char>(0xF0U | code >> 18U);
            utf8 += static_cast<char>(0x80U | (code >> 12U & 0x3FU));
            utf8 += static_cast<char>(0x80U | (code >> 6U & 0x3FU));
            utf8 += static_cast<char>(0x80U | (code & 0x3FU));
        }
    }
    return utf8;
}

std::u16string numberText(double number)
{
    if (std::isnan(number)) return u"NaN";
    if (std::isinf(number)) return number > 0 ? u"Infinity" : u"-Infinity";
    if (number == 0) return u"0";
    char digits[40];
    const auto end =
        std::to_chars(digits, digits + sizeof digits, std::fabs(number), std::chars_format::scientific).ptr;
    std::string mantissa;
    const char* at = digits;
    for (; at < end && *at != 'e'; ++at) {
        if (*at != '.') mantissa += *at;
    }
    int exponent = 0;
    const char* sign = at + 1;
    if (sign < end && *sign == '+') ++sign;
    std::from_chars(sign, end, exponent);
    std::string text = number < 0 ? "-" : "";
    const int count = static_cast<int>(mantissa.size());
    if (exponent >= 0 && exponent < 21) {
        if (count <= exponent + 1)
            text += mantissa + std::string(static_cast<std::size_t>(exponent + 1 - count), '0');
        else
            text += mantissa.substr(0, static_cast<std::size_t>(exponent) + 1) + "." +
                    mantissa.substr(static_cast<std::size_t>(exponent) + 1);
    } else if (exponent < 0 && exponent >= -6) {
        text += "0." + std::string(static_cast<std::size_t>(-exponent - 1), '0') + mantissa;
    } else {
        text += mantissa.substr(0, 1);
        if (count > 1) text += "." + mantissa.substr(1);
        text += exponent < 0 ? "e-" : "e+";
        text += std::to_string(std::abs(exponent));
    }
    return widen(text);
}

double textNumber(std::u16string_view text)
{
    const auto isSpace = [](char16_t unit) {
        return unit == u' ' || (unit >= 9 && unit <= 13) || unit == 0x00A0 || unit == 0x2028 ||
               unit == 0x2029 || unit == 0xFEFF || unit == 0x3000 || (unit >= 0x2000 && unit <= 0x200B);
    };
    while (!text.empty() && isSpace(text.front())) text.remove_prefix(1);
    while (!text.empty() && (isSpace(text.back()) || text.back() == 0)) text.remove_suffix(1);
    if (text.empty()) return 0;
    bool negative = false;
    if (text[0] == u'-' || text[0] == u'+') {
        negative = text[0] == u'-';
        text.remove_prefix(1);
    }
    double value = std::nan("");
    if (text == u"Infinity") {
        value = HUGE_VAL;
    } else if (text.size() > 2 && text[0] == u'0' && (text[1] | 0x20) == u'x') {
        value = 0;
        for (const char16_t unit : text.substr(2)) {
            const int digit = unit >= u'0' && unit <= u'9'                     ? unit - u'0'
                              : (unit | 0x20) >= u'a' && (unit | 0x20) <= u'f' ? (unit | 0x20) - u'a' + 10
                                                                               : -1;
            if (digit < 0) return std::nan("");
            value = value * 16 + digit;
        }
    } else if (!text.empty() && (text[0] == u'.' || (text[0] >= u'0' && text[0] <= u'9'))) {
        std::string ascii;
        for (const char16_t unit : text) ascii += unit < 0x80 ? static_cast<char>(unit) : '?';
        const auto [end, error] = std::from_chars(ascii.data(), ascii.data() + ascii.size(), value);
        if (error == std::errc::invalid_argument || end != ascii.data() + ascii.size()) return std::nan("");
        if (error == std::errc::result_out_of_range) value = base::valueOutOfRange(ascii);
    }
    return negative ? -value : value;
}

bool Vm::toBoolean(Value value)
{
    switch (value.type()) {
    case Value::Type::Boolean: return value.boolean();
    case Value::Type::Number: return value.number() != 0 && !std::isnan(value.number());
    case Value::Type::String: return value.string()->length() != 0;
    case Value::Type::Object: return true;
    default: return false;
    }
}

Value Vm::toPrimitive(Value value, Hint hint)
{
    Object* object = value.asObject();
    if (object == nullptr) return value;
    const bool textFirst = hint == Hint::String || (hint == Hint::Default && m_classes.date != nullptr &&
                                                    object->traits()->isA(m_classes.date->instances));
    for (int turn = 0; turn < 2; ++turn) {
        const bool isText = textFirst == (turn == 0);
        const Value result =
            callProperty(value, publicName(isText ? m_common.toString : m_common.valueOf), {});
        if (!result.isObject()) return result;
    }
    throwError(ErrorClass::Type, 1050, u"Cannot convert " + className(value) + u" to primitive.");
}

double Vm::toNumber(Value value)
{
    switch (value.type()) {
    case Value::Type::Number: return value.number();
    case Value::Type::Boolean: return value.boolean() ? 1 : 0;
    case Value::Type::Null: return 0;
    case Value::Type::String: return textNumber(value.string()->view());
    case Value::Type::Object: return toNumber(toPrimitive(value, Hint::Number));
    default: return std::nan("");
    }
}

std::int32_t Vm::toInt(Value value) { return vm::toInt32(toNumber(value)); }

String* Vm::toString(Value value)
{
    switch (value.type()) {
    case Value::Type::String: return value.string();
    case Value::Type::Number:
        if (value.isInt() && value.number() >= 0)
            return m_names.fromIndex(static_cast<std::uint32_t>(value.number())).string();
        return string(numberText(value.number()));
    case Value::Type::Boolean: return name(value.boolean() ? "true" : "false").string();
    case Value::Type::Null: return name("null").string();
    case Value::Type::Undefined: return name("undefined").string();
    case Value::Type::Object: return toString(toPrimitive(value, Hint::String));
    }
    return m_common.empty.string();
}

bool Vm::isType(Value value, Traits* type)
{
    if (type == nullptr) return true;
    switch (type->special) {
    case Traits::Special::Object: return !value.isNullish();
    case Traits::Special::Int: return value.isInt();
    case Traits::Special::Uint:
        return value.isNumber() && value.number() >= 0 && value.number() <= 4294967295.0 &&
               value.number() == std::floor(value.number());
    case Traits::Special::Number: return value.isNumber();
    case Traits::Special::Boolean: return value.isBoolean();
    case Traits::Special::String: return value.isString();
    case Traits::Special::Void: return value.isUndefined();
    case Traits::Special::None: break;
    }
    return value.isObject() && value.object()->traits()->isA(type);
}

Value Vm::coerce(Value value, Traits* type)
{
    if (type == nullptr) return value;
    switch (type->special) {
    case Traits::Special::Object: return value.isUndefined() ? Value::null() : value;
    case Traits::Special::Int: return toInt(value);
    case Traits::Special::Uint: return toUint(value);
    case Traits::Special::Number: return toNumber(value);
    case Traits::Special::Boolean: return toBoolean(value);
    case Traits::Special::String: return value.isString() ? value : coerceString(value);
    case Traits::Special::Void: return {};
    case Traits::Special::None: break;
    }
    if (value.isNullish()) return Value::null();
    if (value.isObject() && value.object()->traits()->isA(type)) return value;
    std::u16string shown;
    if (value.isString())
        shown = u"\"" + std::u16string(value.string()->view()) + u"\"";
    else if (value.isObject()) {
        shown = className(value);
        if (as<ClassObject>(value) != nullptr) shown += u"$";
        shown += u"@00000000000";
    } else
        shown = std::u16string(text(value));
    std::u16string wanted = type->qualifiedName();
    if (const auto at = wanted.find(u"::"); at != std::u16string::npos) wanted.replace(at, 2, u".");
    throwError(ErrorClass::Type, 1034,
               u"Type Coercion failed: cannot convert " + shown + u" to " + wanted + u".");
}

bool Vm::strictEquals(Value a, Value b)
{
    if (a.isNumber() && b.isNumber()) return a.number() == b.number();
    if (a.isString() && b.isString())
        return a.string() == b.string() || a.string()->view() == b.string()->view();
    if (a.isObject() && b.isObject()) {
        if (a.bits() == b.bits()) return true;
        auto* left = as<FunctionObject>(a);
        auto* right = as<FunctionObject>(b);
        if (left != nullptr && right != nullptr) return left->same(*right);
        return a.object()->namespaceCell() != nullptr &&
               a.object()->namespaceCell() == b.object()->namespaceCell();
    }
    return a.bits() == b.bits();
}

bool Vm::equals(Value a, Value b)
{
    for (;;) {
        if (a.type() == b.type()) {
            if (a.isObject() && (a.object()->isXml() || b.object()->isXml()) && xml.equals != nullptr)
                return xml.equals(*this, a, b);
            return strictEquals(a, b);
        }
        if (a.isNullish() && b.isNullish()) return true;
        if (xml.equals != nullptr &&
            ((a.isObject() && a.object()->isXml()) || (b.isObject() && b.object()->isXml())))
            return xml.equals(*this, a, b);
        if (a.isNullish() || b.isNullish()) return false;
        if (a.isBoolean())
            a = a.boolean() ? 1 : 0;
        else if (b.isBoolean())
            b = b.boolean() ? 1 : 0;
        else if (a.isObject())
            a = toPrimitive(a);
        else if (b.isObject())
            b = toPrimitive(b);
        else if (a.isString())
            a = toNumber(a);
        else
            b = toNumber(b);
    }
}

Vm::Order Vm::compare(Value a, Value b)
{
    a = toPrimitive(a, Hint::Number);
    b = toPrimitive(b, Hint::Number);
    if (a.isString() && b.isString())
        return a.string()->view() < b.string()->view() ? Order::Less : Order::NotLess;
    const double left = toNumber(a), right = toNumber(b);
    if (std::isnan(left) || std::isnan(right)) return Order::Undefined;
    return left < right ? Order::Less : Order::NotLess;
}

Value Vm::add(Value a, Value b)
{
    if (a.isNumber() && b.isNumber()) return a.number() + b.number();
    if (a.isObject() && b.isObject() && a.object()->isXml() && b.object()->isXml() && xml.add != nullptr)
        return xml.add(*this, a, b);
    // Beside a text or a date everything is a text; objects are not asked for their value.
    const auto joins = [&](Value value) {
        return value.isString() || (value.isObject() && m_classes.date != nullptr &&
                                    value.object()->traits()->isA(m_classes.date->instances));
    };
    if (!joins(a) && !joins(b)) {
        a = toPrimitive(a);
        b = toPrimitive(b);
    }
    if (joins(a) || joins(b)) {
        String* left = toString(a);
        String* right = toString(b);
        if (left->isEmpty()) return right;
        if (right->isEmpty()) return left;
        constexpr std::size_t kMax = std::size_t{1} << 25;
        if (left->length() + right->length() > kMax)
            throwError(ErrorClass::Error, 1000, "The system is out of memory.");
        return m_heap.make<String>(left, right);
    }
    return toNumber(a) + toNumber(b);
}

Value Vm::typeOf(Value value)
{
    switch (value.type()) {
    case Value::Type::Undefined: return name("undefined").string();
    case Value::Type::Number: return name("number").string();
    case Value::Type::Boolean: return name("boolean").string();
    case Value::Type::String: return name("string").string();
    case Value::Type::Object: return name(value.object()->typeOf()).string();
    default: return name("object").string();
    }
}

bool Vm::instanceOf(Value value, Value type)
{
    Object* proto = nullptr;
    if (auto* cls = as<ClassObject>(type))
        proto = cls->prototype;
    else if (auto* function = as<FunctionObject>(type))
        proto = function->prototype(*this).asObject();
    else {
        throwError(ErrorClass::Type, 1040, "The right-hand side of instanceof must be a class or function.");
    }
    if (value.isUndefined()) traitsOf(value);
    if (value.isNull()) return false;
    Object* at = value.isObject() ? value.object()->proto() : traitsOf(value)->cls->prototype;
    if (proto == nullptr) return false;
    int left = 256;
    for (; at != nullptr && --left > 0; at = at->proto()) {
        if (at == proto) return true;
    }
    return false;
}

std::u16string Vm::className(Value value)
{
    if (value.isNull()) return u"null";
    if (value.isUndefined()) return u"void";
    if (auto* cls = as<ClassObject>(value)) return cls->instances->qualifiedName();
    // A method taken from its object is of a class that scripts cannot name.
    if (auto* function = as<FunctionObject>(value); function != nullptr && function->isBound())
        return u"builtin.as$0::MethodClosure";
    // Whole numbers of more than 29 bits are stored as others are, and it shows.
    constexpr double kSmall = 1 << 28;
    if (value.isInt() && (value.number() >= kSmall || value.number() < -kSmall))
        return m_classes.number->instances->qualifiedName();
    return traitsOf(value)->qualifiedName();
}

} // namespace flash::avm2
