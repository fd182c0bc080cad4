#include "flash/avm1/Amf0.h"

#include "base/TextCodes.h"
#include "flash/avm1/ArrayNative.h"
#include "flash/avm1/Convert.h"
#include "flash/avm1/classes/Boxed.h"

#include <algorithm>
#include <bit>
#include <limits>

namespace flash::avm1
{
namespace
{

enum class Type : std::uint8_t {
    Number = 0,
    Boolean,
    String,
    Object,
    MovieClip,
    Null,
    Undefined,
    Reference,
    EcmaArray,
    ObjectEnd,
    StrictArray,
    Date,
    LongString,
    Unsupported,
    RecordSet,
    Xml,
    TypedObject,
};

constexpr int kMostNested = 64;
constexpr std::size_t kMostReferences = 0xFFFF;
constexpr std::size_t kLongestShortText = 0xFFFF;

} // namespace

// ---- reading ----------------------------------------------------------------------------------------------

base::Result<std::uint32_t> Amf0Reader::count(int bytes)
{
    const base::Bytes found = TRY_RESULT(m_reader.bytes(static_cast<std::size_t>(bytes)));
    std::uint32_t value = 0;
    for (const std::uint8_t byte : found) value = value << 8 | byte;
    return value;
}

base::Result<double> Amf0Reader::number()
{
    const base::Bytes found = TRY_RESULT(m_reader.bytes(sizeof(double)));
    std::uint64_t bits = 0;
    for (const std::uint8_t byte : found) bits = bits << 8 | byte;
    return std::bit_cast<double>(bits);
}

base::Result<std::u16string> Amf0Reader::text(int lengthBytes)
{
    const std::uint32_t length = TRY_RESULT(count(lengthBytes));
    const base::Bytes found = TRY_RESULT(m_reader.bytes(length));
    return base::utf16FromUtf8({reinterpret_cast<const char*>(found.data()), found.size()});
}

base::Result<std::u16string> Amf0Reader::name() { return text(2); }

base::Result<Value> Amf0Reader::members(Object* object, int depth)
{
    for (;;) {
        const std::u16string key = TRY_RESULT(name());
        base::ByteReader ahead = m_reader;
        if (key.empty() && TRY_RESULT(ahead.u8()) == static_cast<std::uint8_t>(Type::ObjectEnd)) {
            m_reader = ahead;
            return Value(object);
        }
        const Value member = TRY_RESULT(value(depth + 1));
        object->put(m_vm, m_vm.name(key), member);
    }
}

base::Result<Value> Amf0Reader::list(int depth)
{
    const std::uint32_t length = TRY_RESULT(count(4));
    // Each element takes a byte at the least, so that a wrong length cannot ask for more than there is.
    if (length > m_reader.remaining())
        return base::fail(base::ErrorCode::Truncated, "a list is longer than its message");
    Object* array = m_vm.newArray();
    m_seen.push_back(array);
    for (std::uint32_t i = 0; i < length; ++i) {
        const Value element = TRY_RESULT(value(depth + 1));
        array->put(m_vm, m_vm.names().fromIndex(i), element);
    }
    return Value(array);
}

base::Result<Value> Amf0Reader::value(int depth)
{
    if (depth > kMostNested) return base::fail(base::ErrorCode::Malformed, "a message is nested too deeply");
    const auto type = static_cast<Type>(TRY_RESULT(m_reader.u8()));
    switch (type) {
    case Type::Number: return Value(TRY_RESULT(number()));
    case Type::Boolean: return Value(TRY_RESULT(m_reader.u8()) != 0);
    case Type::String: return Value(m_vm.string(TRY_RESULT(text(2))));
    case Type::LongString:
    case Type::Xml: return Value(m_vm.string(TRY_RESULT(text(4))));
    case Type::Null: return Value::null();
    case Type::MovieClip:
    case Type::RecordSet:
    case Type::Undefined:
    case Type::Unsupported: return Value();
    case Type::Reference: {
        const std::uint32_t index = TRY_RESULT(count(2));
        return index < m_seen.size() ? Value(m_seen[index]) : Value();
    }
    case Type::TypedObject: CHECK_RESULT(name()); [[fallthrough]];
    case Type::Object: m_seen.push_back(m_vm.newLiteral()); return members(m_seen.back(), depth);
    case Type::EcmaArray:
        CHECK_RESULT(count(4)); // what it is said to hold; the end mark decides
        m_seen.push_back(m_vm.newArray());
        return members(m_seen.back(), depth);
    case Type::StrictArray: return list(depth);
    case Type::Date: {
        const Value time(TRY_RESULT(number()));
        CHECK_RESULT(count(2)); // a time zone, which nobody sets
        Object* constructor = m_vm.global()->get(m_vm, m_vm.name(std::string_view("Date"))).asObject();
        return m_vm.construct(Value(constructor), std::span(&time, 1));
    }
    case Type::ObjectEnd: break;
    }
    return base::fail(base::ErrorCode::Malformed,
                      "a message holds a value of type " + std::to_string(static_cast<int>(type)));
}

// ---- writing ----------------------------------------------------------------------------------------------

void Amf0Writer::count(std::uint32_t value, int bytes)
{
    for (int shift = 8 * (bytes - 1); shift >= 0; shift -= 8)
        m_bytes.push_back(static_cast<std::uint8_t>(value >> shift));
}

void Amf0Writer::number(double number)
{
    const auto bits = std::bit_cast<std::uint64_t>(number);
    count(static_cast<std::uint32_t>(bits >> 32), 4);
    count(static_cast<std::uint32_t>(bits), 4);
}

void Amf0Writer::name(std::u16string_view name)
{
    std::string utf8 = base::utf8FromUtf16(name);
    utf8.resize(std::min(utf8.size(), kLongestShortText));
    count(static_cast<std::uint32_t>(utf8.size()), 2);
    m_bytes.insert(m_bytes.end(), utf8.begin(), utf8.end());
}

void Amf0Writer::text(std::u16string_view text)
{
    const std::string utf8 = base::utf8FromUtf16(text);
    const bool isLong = utf8.size() > kLongestShortText;
    m_bytes.push_back(static_cast<std::uint8_t>(isLong ? Type::LongString : Type::String));
    count(static_cast<std::uint32_t>(utf8.size()), isLong ? 4 : 2);
    m_bytes.insert(m_bytes.end(), utf8.begin(), utf8.end());
}

void Amf0Writer::members(Object* object, int depth)
{
    for (const Name member : object->enumerate(m_vm)) {
        const Value found = object->get(m_vm, member);
        if (found.asObject() != nullptr && found.asObject()->isFunction()) continue;
        name(member.view());
        write(found, depth + 1);
    }
    name(u"");
    m_bytes.push_back(static_cast<std::uint8_t>(Type::ObjectEnd));
}

void Amf0Writer::object(Object* object, int depth)
{
    const auto put = [this](Type type) { m_bytes.push_back(static_cast<std::uint8_t>(type)); };
    if (const auto* date = object->native<DateNative>()) {
        put(Type::Date);
        number(date->timeMs);
        count(0, 2);
        return;
    }
    if (const auto* boxed = object->native<Boxed>()) {
        write(boxed->value, depth);
        return;
    }
    if (const auto known = std::find(m_written.begin(), m_written.end(), object); known != m_written.end()) {
        put(Type::Reference);
        count(static_cast<std::uint32_t>(known - m_written.begin()), 2);
        return;
    }
    if (depth > kMostNested || object->isFunction() || m_vm.host().isStageObject(object) ||
        m_written.size() >= kMostReferences) {
        put(Type::Undefined);
        return;
    }
    m_written.push_back(object);
    if (const auto* array = object->native<ArrayNative>()) {
        put(Type::EcmaArray);
        count(static_cast<std::uint32_t>(
                  std::clamp(array->length(), 0.0, double{std::numeric_limits<std::uint32_t>::max()})),
              4);
    } else {
        put(Type::Object);
    }
    members(object, depth);
}

void Amf0Writer::write(Value value, int depth)
{
    const auto put = [this](Type type) { m_bytes.push_back(static_cast<std::uint8_t>(type)); };
    switch (value.type()) {
    case Value::Type::Number:
        put(Type::Number);
        number(value.number());
        break;
    case Value::Type::Boolean:
        put(Type::Boolean);
        m_bytes.push_back(value.boolean() ? 1 : 0);
        break;
    case Value::Type::String: text(toText(m_vm, value)); break;
    case Value::Type::Null: put(Type::Null); break;
    case Value::Type::Undefined: put(Type::Undefined); break;
    case Value::Type::Object: object(value.object(), depth); break;
    }
}

} // namespace flash::avm1
