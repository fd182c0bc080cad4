#include "script/vbscript/Operators.h"

#include "script/vbscript/Convert.h"
#include "script/vbscript/DateTime.h"
#include "script/vbscript/Errors.h"
#include "script/vbscript/Text.h"

#include <cmath>

namespace script::vbscript
{

namespace
{

Result<Value> checkedReal(VarType type, double result)
{
    if (!std::isfinite(result)) return fault(error::kOverflow);
    if (type == VarType::Single) {
        const auto narrow = static_cast<float>(result);
        if (!std::isfinite(narrow)) return fault(error::kOverflow);
        return Value::single(narrow);
    }
    if (type == VarType::Date) {
        if (result < kMinDate || result >= kEndDate) return fault(error::kOverflow);
        return Value::date(result);
    }
    return Value::real(result);
}

// The type in which + - * calculate: the wider of the two; texts count as Double, Empty and Boolean as
// Integer.
VarType arithmeticType(const Value& value)
{
    switch (value.type()) {
    case VarType::Empty:
    case VarType::Boolean: return VarType::Integer;
    case VarType::String: return VarType::Double;
    default: return value.type();
    }
}

int rank(VarType type)
{
    switch (type) {
    case VarType::Byte: return 0;
    case VarType::Integer: return 1;
    case VarType::Long: return 2;
    case VarType::Single: return 3;
    case VarType::Double: return 4;
    case VarType::Currency: return 5;
    case VarType::Date: return 6;
    default: return 7;
    }
}

VarType commonType(Operator operation, const Value& left, const Value& right)
{
    const VarType a = arithmeticType(left);
    const VarType b = arithmeticType(right);
    // A Single cannot hold every Long.
    if ((a == VarType::Single && b == VarType::Long) || (a == VarType::Long && b == VarType::Single))
        return VarType::Double;
    if (operation == Operator::Multiply) {
        if (a == VarType::Date || b == VarType::Date) return VarType::Double;
        const bool currency = a == VarType::Currency || b == VarType::Currency;
        if (currency && (rank(a) == 3 || rank(a) == 4 || rank(b) == 3 || rank(b) == 4))
            return VarType::Double;
    }
    if (operation == Operator::Subtract && a == VarType::Date && b == VarType::Date) return VarType::Double;
    return rank(a) > rank(b) ? a : b;
}

// A result that leaves Byte or Integer moves on to the next wider type, past Long to Double.
Value widenedWhole(VarType type, std::int64_t result)
{
    if (type == VarType::Byte && result >= 0 && result <= UINT8_MAX)
        return Value::byte(static_cast<std::uint8_t>(result));
    if (type != VarType::Long && result >= INT16_MIN && result <= INT16_MAX) {
        return Value::integer(static_cast<std::int16_t>(result));
    }
    if (result >= INT32_MIN && result <= INT32_MAX)
        return Value::longInteger(static_cast<std::int32_t>(result));
    return Value::real(static_cast<double>(result));
}

Result<Value> currencyResult(Operator operation, std::int64_t a, std::int64_t b)
{
    std::int64_t result = 0;
    bool overflow = false;
    if (operation == Operator::Add) {
        overflow = __builtin_add_overflow(a, b, &result);
    } else if (operation == Operator::Subtract) {
        overflow = __builtin_sub_overflow(a, b, &result);
    } else {
        const double product = roundHalfEven(static_cast<double>(a) * static_cast<double>(b) / 10000.0);
        overflow = std::fabs(product) >= 9.2e18;
        result = overflow ? 0 : static_cast<std::int64_t>(product);
    }
    if (overflow) return fault(error::kOverflow);
    return Value::currency(result);
}

Result<Value> arithmetic(Operator operation, const Value& left, const Value& right, const Locale& locale)
{
    const VarType type = commonType(operation, left, right);
    switch (type) {
    case VarType::Byte:
    case VarType::Integer:
    case VarType::Long: {
        const std::int64_t a = left.isEmpty() ? 0 : left.whole();
        const std::int64_t b = right.isEmpty() ? 0 : right.whole();
        const std::int64_t result = operation == Operator::Add        ? a + b
                                    : operation == Operator::Subtract ? a - b
                                                                      : a * b;
        return widenedWhole(type, result);
    }
    case VarType::Currency: {
        const std::int64_t a = TRY_RESULT(toCurrency(left, locale));
        const std::int64_t b = TRY_RESULT(toCurrency(right, locale));
        return currencyResult(operation, a, b);
    }
    case VarType::Single:
    case VarType::Double:
    case VarType::Date: {
        const double a = TRY_RESULT(toDouble(left, locale));
        const double b = TRY_RESULT(toDouble(right, locale));
        return checkedReal(type, operation == Operator::Add        ? a + b
                                 : operation == Operator::Subtract ? a - b
                                                                   : a * b);
    }
    default: return fault(error::kTypeMismatch);
    }
}

Result<Value> divide(const Value& left, const Value& right, const Locale& locale)
{
    const double a = TRY_RESULT(toDouble(left, locale));
    const double b = TRY_RESULT(toDouble(right, locale));
    if (b == 0) return a == 0 ? fault(error::kOverflow) : fault(error::kDivisionByZero);
    const bool single = left.type() == VarType::Single && right.type() == VarType::Single;
    return checkedReal(single ? VarType::Single : VarType::Double, a / b);
}

Result<Value> wholeDivision(Operator operation, const Value& left, const Value& right, const Locale& locale)
{
    const std::int64_t a = TRY_RESULT(toLong(left, locale));
    const std::int64_t b = TRY_RESULT(toLong(right, locale));
    if (b == 0) return fault(error::kDivisionByZero);
    const std::int64_t result = operation == Operator::IntegerDivide ? a / b : a % b;
    const auto narrow = [](const Value& value) {
        const VarType type = arithmeticType(value);
        return type == VarType::Byte || type == VarType::Integer;
    };
    if (left.type() == VarType::Byte && right.type() == VarType::Byte)
        return widenedWhole(VarType::Byte, result);
    return widenedWhole(narrow(left) && narrow(right) ? VarType::Integer : VarType::Long, result);
}

Result<Value> power(const Value& left, const Value& right, const Locale& locale)
{
    const double a = TRY_RESULT(toDouble(left, locale));
    const double b = TRY_RESULT(toDouble(right, locale));
    if ((a < 0 && b != std::trunc(b)) || (a == 0 && b < 0)) return fault(error::kInvalidCall);
    return checkedReal(VarType::Double, std::pow(a, b));
}

std::int32_t combineBits(Operator operation, std::int32_t a, std::int32_t b)
{
    switch (operation) {
    case Operator::And: return a & b;
    case Operator::Or: return a | b;
    case Operator::Xor: return a ^ b;
    case Operator::Eqv: return ~(a ^ b);
    default: return ~a | b; // Imp
    }
}

Value ofLogicalType(VarType type, std::int32_t bits)
{
    if (type == VarType::Boolean) return Value::boolean(bits != 0);
    if (type == VarType::Byte) return Value::byte(static_cast<std::uint8_t>(bits & 0xFF));
    if (type == VarType::Integer) return Value::integer(static_cast<std::int16_t>(bits));
    return Value::longInteger(bits);
}

// The texts that CBool knows besides numbers count as what they say.
std::optional<bool> logicalWord(const Value& value)
{
    return value.isString() ? booleanWord(value.text()) : std::nullopt;
}

Result<std::int32_t> logicalBits(const Value& value, const Locale& locale)
{
    if (const auto word = logicalWord(value)) return *word ? -1 : 0;
    return toLong(value, locale);
}

VarType logicalType(const Value& left, const Value& right)
{
    const auto one = [](const Value& value) {
        switch (value.type()) {
        case VarType::Boolean:
        case VarType::Byte:
        case VarType::Integer: return value.type();
        case VarType::String: return logicalWord(value) ? VarType::Boolean : VarType::Long;
        default: return VarType::Long; // Empty as well
        }
    };
    const VarType a = one(left);
    const VarType b = one(right);
    if (a == b) return a;
    return a == VarType::Long || b == VarType::Long ? VarType::Long : VarType::Integer;
}

// Null means "unknown": the result is known only where the other operand decides alone.
Result<Value> logicalWithNull(Operator operation, const Value& left, const Value& right, const Locale& locale)
{
    if (left.isNull() && right.isNull()) return Value::null();
    const Value& known = left.isNull() ? right : left;
    const std::int32_t bits = TRY_RESULT(logicalBits(known, locale));
    const bool decides = (operation == Operator::And && bits == 0) ||
                         (operation == Operator::Or && bits != 0) ||
                         (operation == Operator::Imp && (left.isNull() ? bits != 0 : bits == 0));
    if (!decides) return Value::null();
    if (operation == Operator::Imp && right.isNull()) return ofLogicalType(logicalType(known, known), -1);
    return ofLogicalType(logicalType(known, known), bits);
}

Result<Value> logical(Operator operation, const Value& left, const Value& right, const Locale& locale)
{
    if (left.isNull() || right.isNull()) return logicalWithNull(operation, left, right, locale);
    const std::int32_t a = TRY_RESULT(logicalBits(left, locale));
    const std::int32_t b = TRY_RESULT(logicalBits(right, locale));
    return ofLogicalType(logicalType(left, right), combineBits(operation, a, b));
}

// A whole number's text without the detour over a string of its own.
class Digits
{
public:
    std::u16string_view of(std::int32_t number)
    {
        std::uint32_t rest =
            number < 0 ? 0U - static_cast<std::uint32_t>(number) : static_cast<std::uint32_t>(number);
        char16_t* begin = std::end(m_characters);
        do *--begin = static_cast<char16_t>(u'0' + rest % 10);
        while ((rest /= 10) != 0);
        if (number < 0) *--begin = u'-';
        return {begin, static_cast<std::size_t>(std::end(m_characters) - begin)};
    }

private:
    char16_t m_characters[12];
};

Result<Value> concatenate(const Value& left, const Value& right, const Locale& locale)
{
    if (left.isNull() && right.isNull()) return Value::null();
    if (left.isString() && !left.hasOddByte() && right.isWhole() && right.type() != VarType::Boolean) {
        Digits digits;
        Value joined;
        if (!Value::concat(left, digits.of(right.whole()), joined)) return fault(error::kOutOfStringSpace);
        return joined;
    }
    const Value empty = Value::string(u"");
    const Value a = TRY_RESULT(toStringValue(left.isNull() ? empty : left, locale));
    const Value b = TRY_RESULT(toStringValue(right.isNull() ? empty : right, locale));
    if (a.hasOddByte() || b.hasOddByte()) {
        const std::string_view front = a.byteText();
        const std::string_view back = b.byteText();
        if (front.size() + back.size() > Value::kMaxStringLength * 2) return fault(error::kOutOfStringSpace);
        return Value::byteString(std::string(front).append(back));
    }
    Value joined;
    if (!Value::concat(a, b.text(), joined)) return fault(error::kOutOfStringSpace);
    return joined;
}

int sign(double a, double b) { return a < b ? -1 : a > b ? 1 : 0; }

Value comparison(Operator operation, std::optional<int> order)
{
    if (!order) return Value::null();
    switch (operation) {
    case Operator::Equal: return Value::boolean(*order == 0);
    case Operator::NotEqual: return Value::boolean(*order != 0);
    case Operator::Less: return Value::boolean(*order < 0);
    case Operator::Greater: return Value::boolean(*order > 0);
    case Operator::LessEqual: return Value::boolean(*order <= 0);
    default: return Value::boolean(*order >= 0);
    }
}

} // namespace

Result<std::optional<int>> compareValues(const Value& left, const Value& right, std::uint8_t literals,
                                         const Locale& locale)
{
    if (left.isNull() || right.isNull()) return std::optional<int>();
    if (left.isArray() || right.isArray()) return fault(error::kTypeMismatch);
    if (left.isWhole() && right.isWhole()) return sign(left.whole(), right.whole());
    if (left.isString() && right.isString()) {
        if (left.hasOddByte() || right.hasOddByte()) return left.byteText().compare(right.byteText());
        return left.text().compare(right.text());
    }
    if (left.isString() || right.isString()) {
        const Value& text = left.isString() ? left : right;
        const Value& other = left.isString() ? right : left;
        const int direction = left.isString() ? 1 : -1;
        if (other.isEmpty()) return direction * (text.text().empty() ? 0 : 1);
        // A logical value has no place among numbers here: it is compared as it is written.
        if (other.type() == VarType::Boolean) {
            const auto written = TRY_RESULT(toText(other, locale));
            return direction * text.text().compare(written);
        }
        const bool textIsLiteral = (literals & (left.isString() ? kLeftLiteral : kRightLiteral)) != 0;
        const bool otherIsLiteral = (literals & (left.isString() ? kRightLiteral : kLeftLiteral)) != 0;
        if (otherIsLiteral) {
            if ((literals & kNeverMismatched) != 0 && !isNumericText(text.text(), locale)) return direction;
            const double number = TRY_RESULT(toDouble(text, locale));
            const double against = TRY_RESULT(toDouble(other, locale));
            return direction * sign(number, against);
        }
        if (textIsLiteral) {
            const auto written = TRY_RESULT(toText(other, locale));
            return direction * text.text().compare(written);
        }
        return direction; // a number is less than any text
    }
    if (left.type() == VarType::Currency && right.type() == VarType::Currency) {
        const std::int64_t a = left.tenThousandths();
        const std::int64_t b = right.tenThousandths();
        return a < b ? -1 : a > b ? 1 : 0;
    }
    const double a = TRY_RESULT(toDouble(left, locale));
    const double b = TRY_RESULT(toDouble(right, locale));
    // The digits that a Single lacks make no difference.
    const bool single = (left.type() == VarType::Single && right.type() == VarType::Double) ||
                        (left.type() == VarType::Double && right.type() == VarType::Single);
    if (single) return sign(static_cast<float>(a), static_cast<float>(b));
    return sign(a, b);
}

Result<Value> applyBinary(Operator operation, const Value& left, const Value& right, std::uint8_t literals,
                          const Locale& locale)
{
    switch (operation) {
    case Operator::Concat: return concatenate(left, right, locale);
    case Operator::And:
    case Operator::Or:
    case Operator::Xor:
    case Operator::Eqv:
    case Operator::Imp: return logical(operation, left, right, locale);
    case Operator::Equal:
    case Operator::NotEqual:
    case Operator::Less:
    case Operator::Greater:
    case Operator::LessEqual:
    case Operator::GreaterEqual: {
        const auto order = TRY_RESULT(compareValues(left, right, literals, locale));
        return comparison(operation, order);
    }
    default: break;
    }
    if (left.isArray() || right.isArray() || left.isObject() || right.isObject())
        return fault(error::kTypeMismatch);
    if (left.isNull() || right.isNull()) return Value::null();
    switch (operation) {
    case Operator::Add:
        if ((left.isString() && (right.isString() || right.isEmpty())) ||
            (left.isEmpty() && right.isString())) {
            return concatenate(left, right, locale);
        }
        return arithmetic(operation, left, right, locale);
    case Operator::Subtract:
    case Operator::Multiply: return arithmetic(operation, left, right, locale);
    case Operator::Divide: return divide(left, right, locale);
    case Operator::IntegerDivide:
    case Operator::Modulo: return wholeDivision(operation, left, right, locale);
    case Operator::Power: return power(left, right, locale);
    default: return fault(error::kInvalidCall);
    }
}

Result<Value> applyUnary(Operator operation, const Value& operand, const Locale& locale)
{
    if (operand.isNull()) return operand;
    if (operation == Operator::Not) {
        const std::int32_t bits = TRY_RESULT(logicalBits(operand, locale));
        return ofLogicalType(logicalType(operand, operand), ~bits);
    }
    switch (operand.type()) {
    case VarType::Empty: return Value::integer(0);
    case VarType::Boolean:
    case VarType::Byte:
    case VarType::Integer:
    case VarType::Long:
        return widenedWhole(operand.type() == VarType::Long ? VarType::Long : VarType::Integer,
                            -std::int64_t{operand.whole()});
    case VarType::Currency:
        if (operand.tenThousandths() == INT64_MIN) return fault(error::kOverflow);
        return Value::currency(-operand.tenThousandths());
    case VarType::Single:
    case VarType::Double:
    case VarType::Date:
    case VarType::String: {
        const double number = TRY_RESULT(toDouble(operand, locale));
        return checkedReal(operand.isString() ? VarType::Double : operand.type(), -number);
    }
    default: return mismatch(operand);
    }
}

} // namespace script::vbscript
