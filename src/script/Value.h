#pragma once

#include <cassert>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace script
{

/// What a variant holds. The low bits are the number that the script function VarType answers
/// (varTypeNumber); the flags let the machine tell kinds apart with one test.
enum class VarType : std::uint16_t {
    CountedFlag = 0x100,
    WholeFlag = 0x400,
    ReferenceFlag = 0x4000,

    Empty = 0,
    Null = 1,
    Integer = 2 | WholeFlag, ///< 16 bits
    Long = 3 | WholeFlag,    ///< 32 bits
    Single = 4,
    Double = 5,
    Currency = 6,             ///< 64 bits, in ten-thousandths
    Date = 7,                 ///< days since 30 December 1899, the fraction is the time of day
    String = 8 | CountedFlag, ///< UTF-16
    Object = 9 | CountedFlag, ///< may be Nothing
    Error = 10,               ///< a code; also stands for an argument left out
    Boolean = 11 | WholeFlag,
    Byte = 17 | WholeFlag,
    Array = 8204 | CountedFlag, ///< of variants

    // Only inside the engine: where an argument is handed over by reference.
    Reference = ReferenceFlag,
    ElementReference = ReferenceFlag | CountedFlag,
};

constexpr bool hasFlag(VarType type, VarType flag)
{
    return (static_cast<unsigned>(type) & static_cast<unsigned>(flag)) != 0;
}
constexpr std::int16_t varTypeNumber(VarType type)
{
    return static_cast<std::int16_t>(static_cast<unsigned>(type) & 0x20FF);
}

/// Anything that variants share and count. Releases are iterative: a chain of a million objects each holding
/// the next one is freed without deep recursion. Not thread-safe, like the engine itself.
class Counted
{
public:
    Counted() = default;
    Counted(const Counted&) = delete;
    Counted& operator=(const Counted&) = delete;
    void addRef() { ++m_references; }
    void release()
    {
        if (--m_references == 0) bury(this);
    }
    [[nodiscard]] std::uint32_t references() const { return m_references; }

protected:
    virtual ~Counted() = default;
    /// Called once the last reference is gone. May keep the object alive by taking a new reference.
    virtual void dispose() { delete this; }

private:
    static void bury(Counted* dead);
    std::uint32_t m_references = 0;
};

/// A counted pointer.
template <class T>
class Ref
{
public:
    Ref() = default;
    Ref(std::nullptr_t) {} // NOLINT: a null pointer is a null reference
    explicit Ref(T* object) : m_object(object)
    {
        if (m_object) m_object->addRef();
    }
    Ref(const Ref& other) : Ref(other.m_object) {}
    Ref(Ref&& other) noexcept : m_object(std::exchange(other.m_object, nullptr)) {}
    template <class U>
    Ref(const Ref<U>& other) : Ref(other.get()) // NOLINT: to the base class
    {
    }
    ~Ref()
    {
        if (m_object) m_object->release();
    }
    Ref& operator=(Ref other) noexcept
    {
        std::swap(m_object, other.m_object);
        return *this;
    }
    [[nodiscard]] T* get() const { return m_object; }
    T* operator->() const { return m_object; }
    T& operator*() const { return *m_object; }
    explicit operator bool() const { return m_object != nullptr; }

private:
    T* m_object = nullptr;
};

template <class T, class... Arguments>
Ref<T> make(Arguments&&... arguments)
{
    return Ref<T>(new T(std::forward<Arguments>(arguments)...));
}

class Array;
class Dispatch;

/// How many bytes the strings and arrays of this thread's scripts take up, so that the engine can end a
/// script that asks for too much.
struct HeapUse {
    static std::size_t bytes();
    static void add(std::size_t count);
    static void remove(std::size_t count);
};

/// Characters that several strings share. Only its end grows: a string that ends where the buffer ends may be
/// appended to in place while older strings keep seeing their own shorter part. That makes s = s & t linear.
struct StringBuffer {
    /// In `used`: behind the characters stands half a one, a byte. Such a buffer never grows in place.
    static constexpr std::uint32_t kOddByte = UINT32_MAX;

    std::uint32_t references;
    std::uint32_t used;
    std::uint32_t capacity;

    [[nodiscard]] char16_t* data() { return reinterpret_cast<char16_t*>(this + 1); }
    static StringBuffer* create(std::size_t capacity);
    void release();
};

/// A reference to an array's element. Keeps the array locked (it cannot be resized) while it lives.
struct ElementReference;

/// A script variant: 16 bytes, copied cheaply. Strings and arrays behave as values, objects are shared.
class Value
{
public:
    /// Longest string in characters; making a longer one is "Out of string space".
    static constexpr std::size_t kMaxStringLength = 1U << 28;

    Value() : m_head(0), m_bits(0) {}
    Value(const Value& other) noexcept : m_head(other.m_head), m_bits(other.m_bits)
    {
        if (isCounted()) retain();
    }
    Value(Value&& other) noexcept : m_head(other.m_head), m_bits(other.m_bits) { other.m_head = 0; }
    ~Value()
    {
        if (isCounted()) drop();
    }
    Value& operator=(const Value& other) noexcept
    {
        Value copy(other);
        swap(copy);
        return *this;
    }
    Value& operator=(Value&& other) noexcept
    {
        Value taken(std::move(other));
        swap(taken);
        return *this;
    }
    void swap(Value& other) noexcept
    {
        std::swap(m_head, other.m_head);
        std::swap(m_bits, other.m_bits);
    }

    static Value null() { return Value(VarType::Null, 0, 0); }
    static Value boolean(bool value) { return Value(VarType::Boolean, 0, value ? -1 : 0); }
    static Value byte(std::uint8_t value) { return Value(VarType::Byte, 0, value); }
    static Value integer(std::int16_t value) { return Value(VarType::Integer, 0, value); }
    static Value longInteger(std::int32_t value) { return Value(VarType::Long, 0, value); }
    /// The smallest of Integer, Long and Double that holds the number.
    static Value number(std::int64_t value);
    static Value single(float value) { return real(VarType::Single, static_cast<double>(value)); }
    static Value real(double value) { return real(VarType::Double, value); }
    static Value date(double days) { return real(VarType::Date, days); }
    static Value currency(std::int64_t tenThousandths) { return Value(VarType::Currency, 0, tenThousandths); }
    static Value error(std::int32_t code) { return Value(VarType::Error, 0, code); }
    /// An argument that was left out: Foo 1, , 3
    static Value missing() { return error(kMissing); }
    /// @param text UTF-16, at most kMaxStringLength characters (cut there)
    static Value string(std::u16string_view text);
    /// A string out of bytes, two to the character and the lower one first. An odd byte at the end is kept
    /// for byteText and lost to everything that works with characters.
    static Value byteString(std::string_view bytes);
    /// @param object null for Nothing
    static Value object(Dispatch* object);
    static Value array(Array* array);
    static Value array(std::vector<Value> elements);

    [[nodiscard]] VarType type() const { return static_cast<VarType>(m_head & 0xFFFF); }
    [[nodiscard]] bool isEmpty() const { return type() == VarType::Empty; }
    [[nodiscard]] bool isNull() const { return type() == VarType::Null; }
    [[nodiscard]] bool isString() const { return type() == VarType::String; }
    [[nodiscard]] bool isObject() const { return type() == VarType::Object; }
    [[nodiscard]] bool isArray() const { return type() == VarType::Array; }
    [[nodiscard]] bool isMissing() const { return type() == VarType::Error && errorCode() == kMissing; }
    [[nodiscard]] bool isNumeric() const
    {
        return isWhole() || type() == VarType::Single || type() == VarType::Double ||
               type() == VarType::Currency;
    }
    /// Whether the number is kept as a whole one of at most 32 bits (Integer, Long, Byte, Boolean).
    [[nodiscard]] bool isWhole() const { return hasFlag(type(), VarType::WholeFlag); }
    [[nodiscard]] bool isReference() const { return hasFlag(type(), VarType::ReferenceFlag); }
    /// Whether copying and dropping it are no more than moving bits.
    [[nodiscard]] bool isPlain() const
    {
        return (m_head & (static_cast<unsigned>(VarType::CountedFlag) |
                          static_cast<unsigned>(VarType::ReferenceFlag))) == 0;
    }

    // The stored payload; each may be asked only of the types that carry it.
    [[nodiscard]] std::int32_t whole() const { return static_cast<std::int32_t>(m_bits); }
    [[nodiscard]] double asReal() const { return m_real; }
    [[nodiscard]] std::int64_t tenThousandths() const { return m_bits; }
    [[nodiscard]] std::int32_t errorCode() const { return static_cast<std::int32_t>(m_bits); }
    [[nodiscard]] std::u16string_view text() const
    {
        return m_buffer ? std::u16string_view(m_buffer->data(), length()) : std::u16string_view();
    }
    [[nodiscard]] bool hasOddByte() const { return m_buffer && m_buffer->used == StringBuffer::kOddByte; }
    [[nodiscard]] std::string_view byteText() const
    {
        if (!m_buffer) return {};
        return {reinterpret_cast<const char*>(m_buffer->data()),
                length() * sizeof(char16_t) + (hasOddByte() ? 1 : 0)};
    }
    [[nodiscard]] Dispatch* asObject() const { return m_object; }
    [[nodiscard]] Array* asArray() const { return m_array; }

    /// The array for writing: shared elements are copied first.
    Array* writableArray();
    /// Appends in place where possible. @returns false when the string would grow too long.
    static bool concat(const Value& left, std::u16string_view right, Value& result);

    // Inside the engine.
    static Value reference(Value* target)
    {
        Value result(VarType::Reference, 0, 0);
        result.m_target = target;
        return result;
    }
    static Value elementReference(Array* array, Value* element);
    [[nodiscard]] Value* referenced() const;
    [[nodiscard]] const Value& resolved() const { return isReference() ? *referenced() : *this; }
    [[nodiscard]] Value& resolved() { return isReference() ? *referenced() : *this; }
    void setWhole(VarType type, std::int32_t value)
    {
        if (isCounted()) drop();
        overwriteWhole(type, value);
    }
    // The same for a value that is known to be plain, and for memory that holds no value yet.
    void overwriteWhole(VarType type, std::int32_t value)
    {
        m_head = static_cast<std::uint64_t>(type);
        m_bits = value;
    }
    void overwriteReal(VarType type, double value)
    {
        m_head = static_cast<std::uint64_t>(type);
        m_real = value;
    }
    void overwritePlain(const Value& other)
    {
        m_head = other.m_head;
        m_bits = other.m_bits;
    }

private:
    static constexpr std::int32_t kMissing = static_cast<std::int32_t>(0x80020004U);
    static constexpr int kLengthShift = 32;

    Value(VarType type, std::uint32_t length, std::int64_t bits) : m_bits(bits) { setHead(type, length); }
    void setHead(VarType type, std::uint32_t length)
    {
        m_head = static_cast<std::uint64_t>(type) | static_cast<std::uint64_t>(length) << kLengthShift;
    }
    static Value real(VarType type, double value)
    {
        Value result;
        result.overwriteReal(type, value);
        return result;
    }
    friend struct ElementReference;
    [[nodiscard]] bool isCounted() const
    {
        return (m_head & static_cast<unsigned>(VarType::CountedFlag)) != 0;
    }
    [[nodiscard]] std::uint32_t length() const { return static_cast<std::uint32_t>(m_head >> kLengthShift); }
    void retain() const;
    void drop();

    // Both halves are written and read as a whole: a processor passes a value on from a store to a load that
    // follows only where the load is no wider than the store, and waits otherwise.
    std::uint64_t m_head; // the type, and from kLengthShift on the length of a string in characters
    union {
        std::int64_t m_bits; // of a whole number with its sign carried on
        double m_real;
        StringBuffer* m_buffer; // null for ""
        Dispatch* m_object;
        Array* m_array;
        Value* m_target;
        ElementReference* m_element;
    };
};
static_assert(sizeof(Value) == 16);

/// The elements of an array of any rank. Lower bounds are 0; the leftmost index runs fastest.
class Array final : public Counted
{
public:
    /// Most elements of one array; more is "Out of memory".
    static constexpr std::size_t kMaxElements = 1U << 26;

    /// An array without dimensions yet (Dim a()).
    Array() = default;
    /// @param bounds the highest index of each dimension, -1 for none; their product is within kMaxElements
    /// @param resizable whether ReDim is allowed
    Array(std::vector<std::int32_t> bounds, bool resizable);
    explicit Array(std::vector<Value> elements);
    Array(const Array& other, int)
        : bounds(other.bounds), elements(other.elements), resizable(other.resizable)
    {
        account();
    }

    /// @returns the number of elements, or nothing past kMaxElements
    static bool countElements(const std::vector<std::int32_t>& bounds, std::size_t& count);
    /// Changes the last dimension's highest index and keeps the elements.
    void resizeLast(std::int32_t bound);

    /// Whether several variables hold it, so that a write must copy it first.
    [[nodiscard]] bool isShared() const { return references() > 1 + locks; }
    /// Whether its elements must stay where they are: a variable may not be given another array now.
    [[nodiscard]] bool isLocked() const { return locks > 0 && !isShared(); }

    std::vector<std::int32_t> bounds; // the highest index of each dimension
    std::vector<Value> elements;
    bool resizable = true;
    std::uint32_t locks = 0; // while not 0 the elements may not move

private:
    ~Array() override;
    void account();
    std::size_t m_accounted = 0;
};

struct ElementReference final : Counted {
    ElementReference(Array* owner, Value* value) : array(owner), element(value) { ++array->locks; }
    ~ElementReference() override { --array->locks; }
    Ref<Array> array;
    Value* element;
};

inline Value* Value::referenced() const
{
    return type() == VarType::Reference ? m_target : m_element->element;
}

} // namespace script
