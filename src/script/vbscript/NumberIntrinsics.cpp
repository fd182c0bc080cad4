#include "script/vbscript/IntrinsicTools.h"
#include "script/vbscript/Operators.h"

#include <cmath>

namespace script::vbscript
{

namespace
{

Result<Value> finite(double number)
{
    if (!std::isfinite(number)) return fault(error::kOverflow);
    return Value::real(number);
}

Result<Value> cBool(Engine& engine, ArgumentList a)
{
    return Value::boolean(TRY_RESULT(toBoolean(a[0], engine.locale())));
}
Result<Value> cByte(Engine& engine, ArgumentList a)
{
    return Value::byte(TRY_RESULT(toByte(a[0], engine.locale())));
}
Result<Value> cInt(Engine& engine, ArgumentList a)
{
    return Value::integer(TRY_RESULT(toInteger(a[0], engine.locale())));
}
Result<Value> cLng(Engine& engine, ArgumentList a)
{
    return Value::longInteger(TRY_RESULT(toLong(a[0], engine.locale())));
}
Result<Value> cSng(Engine& engine, ArgumentList a)
{
    return Value::single(TRY_RESULT(toSingle(a[0], engine.locale())));
}
Result<Value> cDbl(Engine& engine, ArgumentList a)
{
    return Value::real(TRY_RESULT(toDouble(a[0], engine.locale())));
}
Result<Value> cCur(Engine& engine, ArgumentList a)
{
    return Value::currency(TRY_RESULT(toCurrency(a[0], engine.locale())));
}
Result<Value> cStr(Engine& engine, ArgumentList a) { return toStringValue(a[0], engine.locale()); }

Result<Value> abs(Engine& engine, ArgumentList a)
{
    const Value& value = a[0];
    if (value.isNull()) return value;
    if (value.type() == VarType::Boolean) return Value::integer(static_cast<std::int16_t>(-value.whole()));
    if (value.type() == VarType::Currency && value.tenThousandths() >= 0) return value;
    if (value.isWhole() && value.whole() >= 0) return value;
    if (value.isWhole() || value.type() == VarType::Currency)
        return applyUnary(Operator::Negate, value, engine.locale());
    if (value.isEmpty()) return Value::integer(0);
    const double number = std::fabs(TRY_RESULT(toDouble(value, engine.locale())));
    if (value.type() == VarType::Single) return Value::single(static_cast<float>(number));
    return Value::real(number);
}

Result<Value> sgn(Engine& engine, ArgumentList a)
{
    if (a[0].isNull()) return fault(error::kInvalidNull);
    const double number = TRY_RESULT(toDouble(a[0], engine.locale()));
    return Value::integer(static_cast<std::int16_t>(number > 0 ? 1 : number < 0 ? -1 : 0));
}

// Int goes down, Fix towards zero; the type stays, but a text becomes Double.
Result<Value> wholePart(Engine& engine, const Value& value, double (*part)(double))
{
    switch (value.type()) {
    case VarType::Null: return value;
    case VarType::Empty: return Value::integer(0);
    case VarType::Boolean: return Value::integer(static_cast<std::int16_t>(value.whole()));
    case VarType::Byte:
    case VarType::Integer:
    case VarType::Long: return value;
    case VarType::Single: return Value::single(static_cast<float>(part(value.asReal())));
    case VarType::Date: return Value::date(part(value.asReal()));
    case VarType::Currency:
        return Value::currency(
            static_cast<std::int64_t>(part(static_cast<double>(value.tenThousandths()) / 10000.0)) * 10000);
    default: return Value::real(part(TRY_RESULT(toDouble(value, engine.locale()))));
    }
}
Result<Value> toInt(Engine& engine, ArgumentList a)
{
    return wholePart(engine, a[0], [](double x) { return std::floor(x); });
}
Result<Value> fix(Engine& engine, ArgumentList a)
{
    return wholePart(engine, a[0], [](double x) { return std::trunc(x); });
}

Result<Value> round(Engine& engine, ArgumentList a)
{
    if (a[0].isNull()) return a[0];
    const std::int32_t places = TRY_RESULT(longArgument(engine, a, 1, 0));
    if (places < 0 || places > 22) return fault(error::kInvalidCall);
    if (a[0].isWhole()) return a[0];
    if (a[0].isEmpty()) return Value::integer(0);
    const double number = TRY_RESULT(toDouble(a[0], engine.locale()));
    const double scale = std::pow(10.0, places);
    const double scaled = number * scale;
    const double rounded = std::fabs(scaled) < 1e15 ? roundHalfEven(scaled) / scale : number;
    if (a[0].type() == VarType::Single) return Value::single(static_cast<float>(rounded));
    if (a[0].type() == VarType::Date) return Value::date(rounded);
    if (a[0].type() == VarType::Currency)
        return Value::currency(static_cast<std::int64_t>(roundHalfEven(rounded * 10000)));
    return Value::real(rounded);
}

Result<Value> sqr(Engine& engine, ArgumentList a)
{
    const double number = TRY_RESULT(toDouble(a[0], engine.locale()));
    if (number < 0) return fault(error::kInvalidCall);
    return Value::real(std::sqrt(number));
}

Result<Value> log(Engine& engine, ArgumentList a)
{
    const double number = TRY_RESULT(toDouble(a[0], engine.locale()));
    if (number <= 0) return fault(error::kInvalidCall);
    return Value::real(std::log(number));
}

Result<Value> exp(Engine& engine, ArgumentList a)
{
    return finite(std::exp(TRY_RESULT(toDouble(a[0], engine.locale()))));
}
Result<Value> sin(Engine& engine, ArgumentList a)
{
    return finite(std::sin(TRY_RESULT(toDouble(a[0], engine.locale()))));
}
Result<Value> cos(Engine& engine, ArgumentList a)
{
    return finite(std::cos(TRY_RESULT(toDouble(a[0], engine.locale()))));
}
Result<Value> tan(Engine& engine, ArgumentList a)
{
    return finite(std::tan(TRY_RESULT(toDouble(a[0], engine.locale()))));
}
Result<Value> atn(Engine& engine, ArgumentList a)
{
    return finite(std::atan(TRY_RESULT(toDouble(a[0], engine.locale()))));
}

Result<Value> radix(Engine& engine, const Value& value, unsigned shift)
{
    if (value.isNull()) return value;
    const std::int32_t number = TRY_RESULT(toLong(value, engine.locale()));
    // Integers show 16 bits, everything else 32.
    auto bits = static_cast<std::uint32_t>(number);
    if (value.type() == VarType::Integer || value.type() == VarType::Boolean) bits &= 0xFFFF;
    std::u16string text;
    do {
        text.insert(text.begin(), u"0123456789ABCDEF"[bits & ((1U << shift) - 1)]);
        bits >>= shift;
    } while (bits != 0);
    return Value::string(text);
}
Result<Value> hex(Engine& engine, ArgumentList a) { return radix(engine, a[0], 4); }
Result<Value> oct(Engine& engine, ArgumentList a) { return radix(engine, a[0], 3); }

Result<Value> rnd(Engine& engine, ArgumentList a)
{
    if (given(a, 0)) {
        const float number = TRY_RESULT(toSingle(a[0], engine.locale()));
        if (number == 0) return Value::single(engine.random().last());
        if (number < 0) engine.random().restart(number);
    }
    return Value::single(engine.random().next());
}

Result<Value> randomize(Engine& engine, ArgumentList a)
{
    double number = engine.now() * 86400.0;
    if (given(a, 0)) number = TRY_RESULT(toDouble(a[0], engine.locale()));
    engine.random().stir(number);
    return Value();
}

Result<Value> rgb(Engine& engine, ArgumentList a)
{
    std::int32_t colour = 0;
    for (std::size_t i = 0; i < 3; ++i) {
        const std::int32_t part = TRY_RESULT(toLong(a[i], engine.locale()));
        if (part < 0) return fault(error::kInvalidCall);
        colour |= std::min(part, 255) << (8 * i);
    }
    return Value::longInteger(colour);
}

constexpr Intrinsic kTable[] = {
    {u"CBool", cBool, 1, 1}, {u"CByte", cByte, 1, 1}, {u"CInt", cInt, 1, 1}, {u"CLng", cLng, 1, 1},
    {u"CSng", cSng, 1, 1},   {u"CDbl", cDbl, 1, 1},   {u"CCur", cCur, 1, 1}, {u"CStr", cStr, 1, 1},
    {u"Abs", abs, 1, 1},     {u"Sgn", sgn, 1, 1},     {u"Int", toInt, 1, 1}, {u"Fix", fix, 1, 1},
    {u"Round", round, 1, 2}, {u"Sqr", sqr, 1, 1},     {u"Log", log, 1, 1},   {u"Exp", exp, 1, 1},
    {u"Sin", sin, 1, 1},     {u"Cos", cos, 1, 1},     {u"Tan", tan, 1, 1},   {u"Atn", atn, 1, 1},
    {u"Hex", hex, 1, 1},     {u"Oct", oct, 1, 1},     {u"Rnd", rnd, 0, 1},   {u"Randomize", randomize, 0, 1},
    {u"RGB", rgb, 3, 3},
};

} // namespace

std::span<const Intrinsic> numberIntrinsics() { return kTable; }

} // namespace script::vbscript
