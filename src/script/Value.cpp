#include "script/Value.h"

#include "base/TextCodes.h"
#include "script/Dispatch.h"

#include <algorithm>
#include <bit>
#include <cstdlib>
#include <cstring>
#include <new>

namespace script
{

namespace
{

// While an object is freed, those that go with it wait here, to be freed one after another instead of one
// inside the other. Values live on one thread; each thread that runs scripts has its own. Nothing that needs
// destruction, because an engine may be among the last things of its thread to go.
thread_local std::vector<Counted*>* graveyard = nullptr;

thread_local std::size_t heapBytes = 0;

} // namespace

std::size_t HeapUse::bytes() { return heapBytes; }
void HeapUse::add(std::size_t count) { heapBytes += count; }
void HeapUse::remove(std::size_t count) { heapBytes -= count; }

void Counted::bury(Counted* dead)
{
    if (graveyard != nullptr) {
        graveyard->push_back(dead);
        return;
    }
    std::vector<Counted*> waiting;
    graveyard = &waiting;
    dead->dispose();
    while (!waiting.empty()) {
        Counted* next = waiting.back();
        waiting.pop_back();
        next->dispose();
    }
    graveyard = nullptr;
}

StringBuffer* StringBuffer::create(std::size_t capacity)
{
    void* memory = std::malloc(sizeof(StringBuffer) + capacity * sizeof(char16_t));
    if (!memory) throw std::bad_alloc();
    HeapUse::add(capacity * sizeof(char16_t));
    return new (memory) StringBuffer{1, 0, static_cast<std::uint32_t>(capacity)};
}

void StringBuffer::release()
{
    if (--references != 0) return;
    HeapUse::remove(capacity * sizeof(char16_t));
    std::free(this);
}

Value Value::number(std::int64_t value)
{
    if (value >= INT16_MIN && value <= INT16_MAX) return integer(static_cast<std::int16_t>(value));
    if (value >= INT32_MIN && value <= INT32_MAX) return longInteger(static_cast<std::int32_t>(value));
    return real(static_cast<double>(value));
}

Value Value::string(std::u16string_view text)
{
    text = text.substr(0, kMaxStringLength);
    Value result(VarType::String, static_cast<std::uint32_t>(text.size()), 0);
    result.m_buffer = nullptr;
    if (text.empty()) return result;
    result.m_buffer = StringBuffer::create(text.size());
    result.m_buffer->used = result.length();
    std::memcpy(result.m_buffer->data(), text.data(), text.size() * sizeof(char16_t));
    return result;
}

Value Value::byteString(std::string_view bytes)
{
    static_assert(std::endian::native == std::endian::little, "characters lie in memory lower byte first");
    bytes = bytes.substr(0, kMaxStringLength * sizeof(char16_t));
    const std::size_t whole = bytes.size() / sizeof(char16_t);
    Value result(VarType::String, static_cast<std::uint32_t>(whole), 0);
    result.m_buffer = nullptr;
    if (bytes.empty()) return result;
    const bool odd = bytes.size() % sizeof(char16_t) != 0;
    result.m_buffer = StringBuffer::create(whole + (odd ? 1 : 0));
    result.m_buffer->used = odd ? StringBuffer::kOddByte : result.length();
    std::memcpy(result.m_buffer->data(), bytes.data(), bytes.size());
    return result;
}

Value Value::object(Dispatch* object)
{
    Value result(VarType::Object, 0, 0);
    result.m_object = object;
    if (object) object->addRef();
    return result;
}

Value Value::array(Array* array)
{
    Value result(VarType::Array, 0, 0);
    result.m_array = array;
    array->addRef();
    return result;
}

Value Value::array(std::vector<Value> elements) { return array(new Array(std::move(elements))); }

Value Value::elementReference(Array* array, Value* element)
{
    Value result(VarType::ElementReference, 0, 0);
    result.m_element = new ElementReference(array, element);
    result.m_element->addRef();
    return result;
}

void Value::retain() const
{
    switch (type()) {
    case VarType::String:
        if (m_buffer) ++m_buffer->references;
        break;
    case VarType::Object:
        if (m_object) m_object->addRef();
        break;
    case VarType::Array: m_array->addRef(); break;
    default: m_element->addRef(); break;
    }
}

void Value::drop()
{
    // What the release runs must find nothing here any more.
    switch (static_cast<VarType>(std::exchange(m_head, 0) & 0xFFFF)) {
    case VarType::String:
        if (m_buffer) m_buffer->release();
        break;
    case VarType::Object:
        if (m_object) m_object->release();
        break;
    case VarType::Array: m_array->release(); break;
    default: m_element->release(); break;
    }
}

Array* Value::writableArray()
{
    assert(isArray() && "only arrays have elements");
    // Who locks an array (a For Each, an element lent out by reference) holds a reference to it and is to see
    // writes.
    if (m_array->isShared()) {
        Value copy = array(new Array(*m_array, 0));
        swap(copy);
    }
    return m_array;
}

bool Value::concat(const Value& left, std::u16string_view right, Value& result)
{
    const std::size_t length = std::size_t{left.length()} + right.size();
    if (length > kMaxStringLength) return false;
    StringBuffer* buffer = left.m_buffer;
    Value joined(VarType::String, static_cast<std::uint32_t>(length), 0);
    joined.m_buffer = nullptr;
    if (length == 0) {
        result = std::move(joined);
        return true;
    }
    if (buffer && buffer->used == left.length() && buffer->capacity >= length) {
        ++buffer->references;
    } else {
        // Short strings are seldom grown again; longer ones get room to double.
        const std::size_t room = left.length() < 32 ? length : length * 2;
        StringBuffer* grown = StringBuffer::create(std::min(room, kMaxStringLength));
        if (buffer) std::memcpy(grown->data(), buffer->data(), left.length() * sizeof(char16_t));
        buffer = grown;
    }
    if (!right.empty()) {
        std::memmove(buffer->data() + left.length(), right.data(), right.size() * sizeof(char16_t));
    }
    buffer->used = static_cast<std::uint32_t>(length);
    joined.m_buffer = buffer;
    result = std::move(joined);
    return true;
}

Array::Array(std::vector<std::int32_t> upper, bool mayResize) : bounds(std::move(upper)), resizable(mayResize)
{
    std::size_t count = 0;
    const bool fits = countElements(bounds, count);
    assert(fits && "the caller checks the size");
    if (fits) elements.resize(count);
    account();
}

Array::Array(std::vector<Value> values) : elements(std::move(values))
{
    bounds.push_back(static_cast<std::int32_t>(elements.size()) - 1);
    account();
}

Array::~Array() { HeapUse::remove(m_accounted); }

bool Array::countElements(const std::vector<std::int32_t>& bounds, std::size_t& count)
{
    count = 1;
    for (const std::int32_t bound : bounds) {
        if (bound < -1) return false;
        count *= static_cast<std::size_t>(bound) + 1;
        if (count > kMaxElements) return false;
    }
    return true;
}

void Array::resizeLast(std::int32_t bound)
{
    bounds.back() = bound;
    std::size_t count = 0;
    if (!countElements(bounds, count)) return;
    // Growing by one element at a time is common in scripts; the vector's own growth keeps that linear.
    elements.resize(count);
    account();
}

void Array::account()
{
    HeapUse::remove(m_accounted);
    m_accounted = elements.capacity() * sizeof(Value);
    HeapUse::add(m_accounted);
}

} // namespace script
