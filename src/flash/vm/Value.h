#pragma once

#include <bit>
#include <cmath>
#include <cstdint>
#include <memory>

namespace flash::vm
{

class Cell;
class String;

/// A script value in 64 bits. Numbers are stored as they are; everything else hides in the bit patterns of
/// NaNs that arithmetic does not produce: a tag in the upper 16 bits, a pointer or a flag in the lower 48.
///
/// What an object is, a machine says itself: each has a value class of its own that knows its objects, and is
/// otherwise this one.
class Value
{
public:
    enum class Type : std::uint8_t { Number, Undefined, Null, Boolean, String, Object };

    constexpr Value() : m_bits(kUndefined) {}
    Value(double number) : m_bits(number == number ? std::bit_cast<std::uint64_t>(number) : kCanonicalNaN) {}
    Value(int number) : Value(static_cast<double>(number)) {}
    Value(unsigned number) : Value(static_cast<double>(number)) {}
    Value(bool flag) : m_bits(kBoolean | static_cast<std::uint64_t>(flag)) {}
    /// A null pointer becomes undefined, which is what scripts see of things that are gone.
    Value(String* string) : m_bits(string == nullptr ? kUndefined : kString | pointerBits(string)) {}
    // A literal would otherwise turn into `true` without a word.
    Value(const char*) = delete;
    Value(const char16_t*) = delete;

    static constexpr Value undefined() { return Value(); }
    static constexpr Value null() { return Value(Bits{kNull}); }

    /// Marks an absent element of an array. Never seen by scripts.
    static constexpr Value hole() { return Value(Bits{kBoolean | 2}); }
    [[nodiscard]] bool isHole() const { return m_bits == (kBoolean | 2); }

    [[nodiscard]] Type type() const
    {
        return m_bits < kUndefined ? Type::Number
                                   : static_cast<Type>((m_bits >> 48) - (kUndefined >> 48) + 1);
    }
    [[nodiscard]] bool isNumber() const { return m_bits < kUndefined; }
    [[nodiscard]] bool isUndefined() const { return m_bits == kUndefined; }
    [[nodiscard]] bool isNull() const { return m_bits == kNull; }
    [[nodiscard]] bool isNullish() const { return isUndefined() || isNull(); }
    [[nodiscard]] bool isBoolean() const { return (m_bits >> 48) == (kBoolean >> 48); }
    [[nodiscard]] bool isString() const { return (m_bits >> 48) == (kString >> 48); }
    [[nodiscard]] bool isObject() const { return (m_bits >> 48) == (kObject >> 48); }

    // Each of these is to be asked only of a value of that type.
    [[nodiscard]] double number() const { return std::bit_cast<double>(m_bits); }
    [[nodiscard]] bool boolean() const { return (m_bits & 1) != 0; }
    [[nodiscard]] String* string() const { return reinterpret_cast<String*>(m_bits & kPointerMask); }
    /// @returns the cell of an object or a string.
    [[nodiscard]] Cell* cell() const { return reinterpret_cast<Cell*>(m_bits & kPointerMask); }

    /// The bits: equal bits mean the same object, the same string cell, or the same number (NaN included).
    [[nodiscard]] std::uint64_t bits() const { return m_bits; }
    static Value fromBits(std::uint64_t bits) { return Value(Bits{bits}); }

protected:
    struct Bits {
        std::uint64_t value;
    };
    constexpr explicit Value(Bits bits) : m_bits(bits.value) {}
    /// @param object a cell, by its own address; null becomes undefined
    static Value ofObject(const void* object)
    {
        return Value(Bits{object == nullptr ? kUndefined : kObject | pointerBits(object)});
    }

private:
    static std::uint64_t pointerBits(const void* pointer)
    {
        return static_cast<std::uint64_t>(reinterpret_cast<std::uintptr_t>(pointer));
    }

    static constexpr std::uint64_t kCanonicalNaN = 0x7FF8'0000'0000'0000;
    // In the order of Type.
    static constexpr std::uint64_t kUndefined = 0xFFF9'0000'0000'0000;
    static constexpr std::uint64_t kNull = 0xFFFA'0000'0000'0000;
    static constexpr std::uint64_t kBoolean = 0xFFFB'0000'0000'0000;
    static constexpr std::uint64_t kString = 0xFFFC'0000'0000'0000;
    static constexpr std::uint64_t kObject = 0xFFFD'0000'0000'0000;
    static constexpr std::uint64_t kPointerMask = 0x0000'FFFF'FFFF'FFFF;

    std::uint64_t m_bits;
};

static_assert(sizeof(Value) == 8);

} // namespace flash::vm

// Left without a definition: a std::vector of these would hide them from the collector. Use a RootedList
// where it is a variable, a TracedList where it is part of a cell.
template <>
class std::allocator<flash::vm::Value>;
