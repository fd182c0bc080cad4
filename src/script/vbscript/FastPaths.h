#pragma once

#include "script/vbscript/Code.h"

#include <cmath>

// What the machine does most, on values that an instruction finds ready. For Interpreter.cpp only, whose loop
// they become part of.
namespace script::vbscript
{

inline constexpr double kSafeSum = 1e300; // sums and products below it are finite

[[gnu::always_inline]] inline bool isIntegerOrLong(const Value& value)
{
    return value.type() == VarType::Integer || value.type() == VarType::Long;
}

// The fast halves of operators: on two numbers of common types, into the left one. What answers false has
// changed nothing and is left to the Engine's functions.

template <Op kOp>
[[gnu::always_inline]] inline bool calculate(Value& out, const Value& a, const Value& b)
{
    if (isIntegerOrLong(a) && isIntegerOrLong(b)) {
        const std::int64_t x = a.whole();
        const std::int64_t y = b.whole();
        const std::int64_t result = kOp == Op::Add ? x + y : kOp == Op::Subtract ? x - y : x * y;
        const bool isShort = a.type() == VarType::Integer && b.type() == VarType::Integer &&
                             result == static_cast<std::int16_t>(result);
        if (result != static_cast<std::int32_t>(result)) return false;
        out.overwriteWhole(isShort ? VarType::Integer : VarType::Long, static_cast<std::int32_t>(result));
        return true;
    }
    if (a.type() == VarType::Double && b.type() == VarType::Double) {
        const double x = a.asReal();
        const double y = b.asReal();
        const double result = kOp == Op::Add ? x + y : kOp == Op::Subtract ? x - y : x * y;
        if (!(std::fabs(result) < kSafeSum)) return false;
        out.overwriteReal(VarType::Double, result);
        return true;
    }
    return false;
}

template <Op kOp>
[[gnu::always_inline]] inline bool calculate(Value& a, const Value& b)
{
    return calculate<kOp>(a, a, b);
}

template <Op kOp>
[[gnu::always_inline]] inline bool divideWhole(Value& a, const Value& b)
{
    if (!isIntegerOrLong(a) || !isIntegerOrLong(b) || b.whole() <= 0) return false;
    const VarType type = a.type() == b.type() ? a.type() : VarType::Long;
    a.overwriteWhole(type, kOp == Op::Modulo ? a.whole() % b.whole() : a.whole() / b.whole());
    return true;
}

// The same by a constant whose reciprocal stands behind it: two multiplications instead of a division.
template <Op kOp>
[[gnu::always_inline]] inline bool divideByConstant(Value& a, const Value* constant, std::uint8_t flags)
{
    if ((flags & kHasReciprocal) == 0 || !isIntegerOrLong(a) || a.whole() < 0)
        return divideWhole<kOp>(a, constant[0]);
    __extension__ using Wide = unsigned __int128;
    const auto number = static_cast<std::uint64_t>(a.whole());
    const auto divisor = static_cast<std::uint64_t>(constant[0].whole());
    const auto reciprocal = static_cast<std::uint64_t>(constant[1].tenThousandths());
    const std::uint64_t result = kOp == Op::Modulo
                                     ? static_cast<std::uint64_t>(Wide{reciprocal * number} * divisor >> 64)
                                     : static_cast<std::uint64_t>(Wide{reciprocal} * number >> 64);
    const VarType type = a.type() == constant[0].type() ? a.type() : VarType::Long;
    a.overwriteWhole(type, static_cast<std::int32_t>(result));
    return true;
}

template <Op kOp, class T>
constexpr bool holds(T a, T b)
{
    switch (kOp) {
    case Op::Equal: return a == b;
    case Op::NotEqual: return a != b;
    case Op::Less: return a < b;
    case Op::Greater: return a > b;
    case Op::LessEqual: return a <= b;
    default: return a >= b;
    }
}

template <Op kOp>
[[gnu::always_inline]] inline bool compare(Value& a, const Value& b)
{
    if (a.isWhole() && b.isWhole()) {
        a.overwriteWhole(VarType::Boolean, holds<kOp>(a.whole(), b.whole()) ? -1 : 0);
        return true;
    }
    if (a.type() == VarType::Double && b.type() == VarType::Double) {
        a.overwriteWhole(VarType::Boolean, holds<kOp>(a.asReal(), b.asReal()) ? -1 : 0);
        return true;
    }
    return false;
}

template <Op kOp>
[[gnu::always_inline]] inline bool combine(Value& a, const Value& b)
{
    if (!a.isWhole() || a.type() != b.type()) return false;
    a.overwriteWhole(a.type(), kOp == Op::And ? a.whole() & b.whole() : a.whole() | b.whole());
    return true;
}

[[gnu::always_inline]] inline void pushCopy(Value*& sp, const Value& value)
{
    if (value.isPlain())
        (sp++)->overwritePlain(value);
    else
        new (sp++) Value(value.resolved());
}

// A simple value into a variable that holds a simple one: nothing is released that could run code.
[[gnu::always_inline]] inline bool storeSimple(Value& place, Value*& sp)
{
    Value& target = place.resolved();
    Value& value = sp[-1];
    const bool simple = (value.isPlain() || value.isString()) && (target.isPlain() || target.isString());
    if (!simple) return false;
    target = std::move(value);
    --sp;
    return true;
}

// An element that holds a simple value, by a whole index within a list; else null.
inline Value* simpleElement(const Value& holder, const Value& index)
{
    if (!holder.isArray() || !index.isWhole()) return nullptr;
    Array& array = *holder.asArray();
    if (array.bounds.size() != 1 || index.whole() < 0 || index.whole() > array.bounds[0]) return nullptr;
    Value& element = array.elements[static_cast<std::size_t>(index.whole())];
    return element.isPlain() ? &element : nullptr;
}

// Not in line: they would take the registers that calculating needs.
[[gnu::noinline]] inline bool readElement(const Value& holder, Value& index)
{
    const Value* element = simpleElement(holder.resolved(), index);
    if (element) index.overwritePlain(*element);
    return element != nullptr;
}

// value, index
[[gnu::noinline]] inline bool writeElement(const Value& variable, const Value* sp)
{
    const Value& holder = variable.resolved();
    if (!sp[-2].isPlain() || !holder.isArray() || holder.asArray()->isShared()) return false;
    Value* element = simpleElement(holder, sp[-1]);
    if (element) element->overwritePlain(sp[-2]);
    return element != nullptr;
}

// What an assignment of a number or a jump behind a comparison would do next, done at once.
[[gnu::always_inline]] inline void storeAhead(Value*& sp, const Instruction*& next, Value* locals)
{
    if (next->op != Op::StoreLocal || next->flags != 0) return;
    Value& target = locals[next->a];
    if (!target.isPlain()) return;
    target.overwritePlain(*--sp);
    ++next;
}
[[gnu::always_inline]] inline void jumpAhead(Value*& sp, const Instruction*& next, const Instruction* code)
{
    if (next->op != Op::JumpFalse) return;
    next = (--sp)->whole() == 0 ? code + next->a : next + 1;
}

// One round of a For loop that counts in whole numbers. @returns 1 to go on, 0 to leave, -1 for the slow way
[[gnu::always_inline]] inline int countOn(Value& variable, const Value* hidden)
{
    const bool whole =
        isIntegerOrLong(variable) && isIntegerOrLong(hidden[0]) && hidden[0].type() == hidden[1].type();
    if (!whole) return -1;
    const std::int32_t step = hidden[1].whole();
    const std::int64_t next = std::int64_t{variable.whole()} + step;
    const bool isShort = variable.type() == VarType::Integer && hidden[1].type() == VarType::Integer &&
                         next == static_cast<std::int16_t>(next);
    if (next != static_cast<std::int32_t>(next)) return -1;
    variable.overwriteWhole(isShort ? VarType::Integer : VarType::Long, static_cast<std::int32_t>(next));
    const bool goesOn = step >= 0 ? next <= hidden[0].whole() : next >= hidden[0].whole();
    return goesOn ? 1 : 0;
}

} // namespace script::vbscript
