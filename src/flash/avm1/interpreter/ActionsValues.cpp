#include "flash/avm1/interpreter/Actions.h"
#include "flash/avm1/interpreter/Interpreter.h"

#include "base/TextCodes.h"

#include <algorithm>
#include <cmath>

// Actions on plain values: arithmetic, comparison, text, the operand stack.
namespace flash::avm1::actions
{

namespace
{

/// Version 4 knows no booleans: conditions are 1 and 0.
Value truth(const Frame& frame, bool flag) { return frame.version < 5 ? Value(flag ? 1 : 0) : Value(flag); }

double popNumber(Frame& frame) { return avm1::toNumber(frame.vm, frame.pop()); }
String* popString(Frame& frame) { return avm1::toString(frame.vm, frame.pop()); }

template <class Operation>
void numeric(Frame& frame, Operation operation)
{
    const double rhs = popNumber(frame);
    const double lhs = popNumber(frame);
    frame.push(Value(operation(lhs, rhs)));
}

/// Scripts see through valueOf which side is converted first; it differs from action to action.
template <class Operation>
void numericLeftFirst(Frame& frame, Operation operation)
{
    const Value rhs = frame.pop();
    const double left = avm1::toNumber(frame.vm, frame.pop());
    frame.push(Value(operation(left, avm1::toNumber(frame.vm, rhs))));
}

template <class Operation>
void bitwise(Frame& frame, Operation operation)
{
    const std::int32_t rhs = avm1::toInt32(frame.vm, frame.pop());
    const std::int32_t lhs = avm1::toInt32(frame.vm, frame.pop());
    frame.push(Value(operation(lhs, rhs)));
}

/// Takes `count` units from `start` on, which is 1-based; what lies outside is cut off, a negative count
/// means all.
std::u16string extract(std::u16string_view text, std::int32_t start, std::int32_t count)
{
    const auto size = static_cast<std::int32_t>(text.size());
    start = std::clamp(start, 1, size + 1) - 1;
    if (count < 0 || count > size - start) count = size - start;
    return std::u16string(text.substr(static_cast<std::size_t>(start), static_cast<std::size_t>(count)));
}

} // namespace

void add(Frame& frame, const Instruction&)
{
    numericLeftFirst(frame, [](double a, double b) { return a + b; });
}
void subtract(Frame& frame, const Instruction&)
{
    numeric(frame, [](double a, double b) { return a - b; });
}
void multiply(Frame& frame, const Instruction&)
{
    const auto product = [](double a, double b) { return a * b; };
    if (frame.version < 8) return numeric(frame, product);
    numericLeftFirst(frame, product);
}

void divide(Frame& frame, const Instruction&)
{
    const double divisor = popNumber(frame);
    const double dividend = popNumber(frame);
    if (divisor == 0 && frame.version < 5)
        frame.push(Value(frame.vm.string("#ERROR#")));
    else
        frame.push(Value(dividend / (divisor + 0.0))); // a negative zero divides like a positive one
}

void modulo(Frame& frame, const Instruction&)
{
    numeric(frame, [](double a, double b) { return std::fmod(a, b); });
}

void increment(Frame& frame, const Instruction&) { frame.push(Value(popNumber(frame) + 1)); }
void decrement(Frame& frame, const Instruction&) { frame.push(Value(popNumber(frame) - 1)); }

void equals(Frame& frame, const Instruction&)
{
    const double rhs = popNumber(frame);
    const double lhs = popNumber(frame);
    frame.push(truth(frame, lhs == rhs));
}

void less(Frame& frame, const Instruction&)
{
    const Value rhs = frame.pop();
    const double lhs = popNumber(frame);
    frame.push(truth(frame, lhs < avm1::toNumber(frame.vm, rhs)));
}

void logicalAnd(Frame& frame, const Instruction&)
{
    const bool rhs = avm1::toBoolean(frame.vm, frame.pop());
    const bool lhs = avm1::toBoolean(frame.vm, frame.pop());
    frame.push(truth(frame, lhs && rhs));
}

void logicalOr(Frame& frame, const Instruction&)
{
    const bool rhs = avm1::toBoolean(frame.vm, frame.pop());
    const bool lhs = avm1::toBoolean(frame.vm, frame.pop());
    frame.push(truth(frame, lhs || rhs));
}

void logicalNot(Frame& frame, const Instruction&)
{
    frame.push(truth(frame, !avm1::toBoolean(frame.vm, frame.pop())));
}

void stringEquals(Frame& frame, const Instruction&)
{
    String* rhs = popString(frame);
    String* lhs = popString(frame);
    frame.push(truth(frame, lhs->view() == rhs->view()));
}

void stringLess(Frame& frame, const Instruction&)
{
    String* rhs = popString(frame);
    String* lhs = popString(frame);
    frame.push(truth(frame, lhs->view() < rhs->view()));
}

void stringGreater(Frame& frame, const Instruction&)
{
    String* rhs = popString(frame);
    String* lhs = popString(frame);
    frame.push(truth(frame, lhs->view() > rhs->view()));
}

void stringLength(Frame& frame, const Instruction&)
{
    frame.push(Value(static_cast<double>(popString(frame)->length())));
}
void mbStringLength(Frame& frame, const Instruction& instruction) { stringLength(frame, instruction); }

void stringExtract(Frame& frame, const Instruction&)
{
    const std::int32_t count = avm1::toInt32(frame.vm, frame.pop());
    const std::int32_t start = avm1::toInt32(frame.vm, frame.pop());
    frame.push(Value(frame.vm.string(extract(popString(frame)->view(), start, count))));
}
void mbStringExtract(Frame& frame, const Instruction& instruction) { stringExtract(frame, instruction); }

void stringAdd(Frame& frame, const Instruction&)
{
    String* rhs = popString(frame);
    String* lhs = popString(frame);
    frame.push(Value(concatenated(frame.vm, lhs, rhs)));
}

namespace
{

/// @param wholeCode of two bytes, where the text has such characters; otherwise of the first alone
void pushCharacterCode(Frame& frame, bool wholeCode)
{
    const std::u16string_view text = popString(frame)->view();
    if (text.empty()) return frame.push(Value(0));
    // From version 10 on half a pair of units is no character.
    const bool isHalf = (text[0] & 0xF800) == 0xD800;
    if (frame.version >= 10 && isHalf) return frame.push(Value(0xFFFD));
    if (frame.version >= 6 || text[0] < 0x80) return frame.push(Value(static_cast<int>(text[0])));
    const std::uint16_t code = frame.vm.host().textCode().codeOf(text[0]);
    if (code == 0) return frame.push(Value(static_cast<int>('?')));
    frame.push(Value(static_cast<int>(code > 0xFF && !wholeCode ? code >> 8 : code)));
}

} // namespace

void charToAscii(Frame& frame, const Instruction&) { pushCharacterCode(frame, false); }
void mbCharToAscii(Frame& frame, const Instruction&) { pushCharacterCode(frame, true); }

namespace
{

/// @param bothBytes in version 5: a code of two bytes stands for both; otherwise for the second, unless the
///                  two are one character
void pushCharacter(Frame& frame, bool bothBytes)
{
    const std::int32_t number = avm1::toInt32(frame.vm, frame.pop());
    const auto code = static_cast<std::uint16_t>(number);
    if (frame.version < 6) {
        // A first byte of zero ends the text already.
        if (bothBytes && code != number && code < 0x100) return frame.push(Value(frame.vm.string("")));
        const base::TextCode& textCode = frame.vm.host().textCode();
        const bool whole = bothBytes || textCode.unitOf(code) != 0;
        const auto shown = static_cast<std::uint16_t>(whole ? code : code & 0xFF);
        return frame.push(Value(frame.vm.string(textCode.textOf(shown))));
    }
    if (code == 0) return frame.push(Value(frame.vm.string("")));
    frame.push(Value(frame.vm.string(static_cast<char16_t>(code))));
}

} // namespace

void asciiToChar(Frame& frame, const Instruction&) { pushCharacter(frame, false); }
void mbAsciiToChar(Frame& frame, const Instruction&) { pushCharacter(frame, true); }

void add2(Frame& frame, const Instruction&)
{
    const Value rhs = frame.pop();
    const Value lhs = frame.pop();
    frame.push(avm1::add(frame.vm, lhs, rhs));
}

void less2(Frame& frame, const Instruction&)
{
    const Value rhs = frame.pop();
    const Value lhs = frame.pop();
    frame.push(avm1::lessThan(frame.vm, lhs, rhs));
}

void greater(Frame& frame, const Instruction&)
{
    const Value rhs = frame.pop();
    const Value lhs = frame.pop();
    frame.push(avm1::lessThan(frame.vm, rhs, lhs));
}

void equals2(Frame& frame, const Instruction&)
{
    const Value rhs = frame.pop();
    const Value lhs = frame.pop();
    frame.push(Value(avm1::looselyEqual(frame.vm, lhs, rhs)));
}

void strictEquals(Frame& frame, const Instruction&)
{
    const Value rhs = frame.pop();
    const Value lhs = frame.pop();
    frame.push(Value(avm1::strictlyEqual(lhs, rhs) || avm1::isSameInstance(frame.vm, lhs, rhs)));
}

void toNumber(Frame& frame, const Instruction&) { frame.push(Value(popNumber(frame))); }
void toString(Frame& frame, const Instruction&) { frame.push(Value(popString(frame))); }
void toInteger(Frame& frame, const Instruction&) { frame.push(Value(avm1::toInt32(popNumber(frame)))); }
void typeOf(Frame& frame, const Instruction&)
{
    frame.push(Value(frame.vm.string(avm1::typeOf(frame.vm, frame.pop()))));
}

void bitAnd(Frame& frame, const Instruction&)
{
    bitwise(frame, [](std::int32_t a, std::int32_t b) { return a & b; });
}
void bitOr(Frame& frame, const Instruction&)
{
    bitwise(frame, [](std::int32_t a, std::int32_t b) { return a | b; });
}
void bitXor(Frame& frame, const Instruction&)
{
    bitwise(frame, [](std::int32_t a, std::int32_t b) { return a ^ b; });
}
void bitLeftShift(Frame& frame, const Instruction&)
{
    bitwise(frame, [](std::int32_t a, std::int32_t b) {
        return static_cast<std::int32_t>(static_cast<std::uint32_t>(a) << (b & 31));
    });
}
void bitRightShift(Frame& frame, const Instruction&)
{
    bitwise(frame, [](std::int32_t a, std::int32_t b) { return a >> (b & 31); });
}
void bitUnsignedRightShift(Frame& frame, const Instruction&)
{
    const std::int32_t rhs = avm1::toInt32(frame.vm, frame.pop());
    const std::int32_t lhs = avm1::toInt32(frame.vm, frame.pop());
    const std::uint32_t shifted = static_cast<std::uint32_t>(lhs) >> (rhs & 31);
    // Versions up to 9 give the signed reading of the same bits.
    frame.push(frame.version <= 9 ? Value(static_cast<std::int32_t>(shifted)) : Value(shifted));
}

void pop(Frame& frame, const Instruction&) { frame.pop(); }
void pushDuplicate(Frame& frame, const Instruction&)
{
    const Value value = frame.pop();
    frame.push(value);
    frame.push(value);
}
void stackSwap(Frame& frame, const Instruction&)
{
    const Value upper = frame.pop();
    const Value lower = frame.pop();
    frame.push(upper);
    frame.push(lower);
}

void storeRegister(Frame& frame, const Instruction& instruction)
{
    if (Value* shared = Interpreter::registerBeyond(frame, instruction.a))
        *shared = frame.peek();
    else
        frame.setRegister(instruction.a, frame.peek());
}
void constantPool(Frame& frame, const Instruction& instruction)
{
    frame.pool = &frame.code->pool(instruction.b);
}
void pushLiteral(Frame& frame, const Instruction& instruction)
{
    frame.push(frame.code->literal(instruction.b));
}
void pushRegister(Frame& frame, const Instruction& instruction)
{
    const Value* shared = Interpreter::registerBeyond(frame, instruction.b);
    frame.push(shared != nullptr ? *shared : frame.registerValue(instruction.b));
}
void pushConstant(Frame& frame, const Instruction& instruction)
{
    const bool present = frame.pool != nullptr && instruction.b < frame.pool->size();
    frame.push(present ? (*frame.pool)[instruction.b] : Value());
}

} // namespace flash::avm1::actions
