#include "flash/avm1/bindings/Amf0.h"

#include "base/TextCodes.h"
#include "flash/avm1/classes/XmlNode.h"
#include "flash/avm1/interpreter/ArrayNative.h"
#include "flash/avm1/interpreter/Boxed.h"
#include "flash/avm1/interpreter/Convert.h"

#include <bit>

namespace flash::avm1
{
namespace
{

enum Kind : std::uint8_t {
    kNumber = 0,
    kBoolean = 1,
    kText = 2,
    kObject = 3,
    kNull = 5,
    kUndefined = 6,
    kReference = 7,
    kNamedArray = 8,
    kEnd = 9,
    kPlainArray = 10,
    kDate = 11,
    kLongText = 12,
    kUnsupported = 13,
    kXml = 15,
    kClassObject = 16,
};

constexpr int kDeepest = 64;

} // namespace

// ---- writing ----------------------------------------------------------------------------------------------

void Amf0Writer::number(std::uint64_t value, int bytes)
{
    for (int i = bytes - 1; i >= 0; --i) m_out.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
}

void Amf0Writer::real(double value) { number(std::bit_cast<std::uint64_t>(value), 8); }

void Amf0Writer::name(std::string text)
{
    constexpr std::size_t kMax = 0xFFFF;
    if (text.size() > kMax) text.resize(kMax);
    number(text.size(), 2);
    append(text);
}

void Amf0Writer::properties(Object* object, int depth, base::Bytes closing)
{
    const RootedNames names = object->enumerate(m_vm);
    for (auto at = names.rbegin(); at != names.rend(); ++at) {
        if (!object->hasOwn(m_vm, *at)) continue;
        const Value held = object->get(m_vm, *at);
        if (!isWritten(held, depth)) continue;
        name(base::utf8FromUtf16(at->view()));
        value(held, depth);
        append(closing);
    }
}

bool Amf0Writer::isWritten(Value held, int depth)
{
    Object* object = held.asObject();
    if (object == nullptr) return true;
    const bool staged = m_vm.host().isClip(object) || m_vm.host().isStageObject(object);
    return !object->isFunction() && !staged && depth < kDeepest;
}

void Amf0Writer::text(std::u16string_view units, std::uint8_t brief, std::uint8_t lengthy)
{
    const std::string utf8 = base::utf8FromUtf16(units);
    const bool fits = utf8.size() <= 0xFFFF && brief == kText;
    m_out.push_back(fits ? brief : lengthy);
    number(utf8.size(), fits ? 2 : 4);
    append(utf8);
}

void Amf0Writer::value(Value held, int depth)
{
    if (held.isUndefined()) {
        m_out.push_back(kUndefined);
    } else if (held.isNullish()) {
        m_out.push_back(kNull);
    } else if (held.isBoolean()) {
        m_out.push_back(kBoolean);
        m_out.push_back(held.boolean() ? 1 : 0);
    } else if (held.isString()) {
        text(held.string()->view(), kText, kLongText);
    } else if (Object* object = held.asObject()) {
        objectValue(object, depth);
    } else {
        m_out.push_back(kNumber);
        real(toNumber(m_vm, held));
    }
}

void Amf0Writer::objectValue(Object* object, int depth)
{
    if (const auto* boxed = object->native<Boxed>()) {
        value(boxed->value, depth);
        return;
    }
    if (const auto* date = object->native<DateNative>()) {
        m_out.push_back(kDate);
        real(date->timeMs);
        number(0, 2); // minutes of the zone, which nobody reads
        return;
    }
    if (object->native<XmlNode>()) {
        text(xmlText(m_vm, object), kXml, kXml);
        return;
    }
    const auto known = m_references.find(object);
    if (known != m_references.end() && known->second <= 0xFFFF) {
        m_out.push_back(kReference);
        number(known->second, 2);
        return;
    }
    m_references.emplace(object, m_references.size());
    if (const auto* array = object->native<ArrayNative>()) {
        m_out.push_back(kNamedArray);
        number(static_cast<std::uint32_t>(std::min(array->length(), 4294967295.0)), 4);
    } else {
        m_out.push_back(kObject);
    }
    properties(object, depth + 1, {});
    number(0, 2);
    m_out.push_back(kEnd);
}

// ---- reading ----------------------------------------------------------------------------------------------

base::Result<std::uint64_t> Amf0Reader::number(int count)
{
    std::uint64_t result = 0;
    for (const std::uint8_t byte : TRY_RESULT(m_bytes.bytes(static_cast<std::size_t>(count))))
        result = result << 8 | byte;
    return result;
}

base::Result<double> Amf0Reader::real() { return std::bit_cast<double>(TRY_RESULT(number(8))); }

base::Result<std::u16string> Amf0Reader::text(int lengthBytes)
{
    const auto length = static_cast<std::size_t>(TRY_RESULT(number(lengthBytes)));
    const base::Bytes found = TRY_RESULT(m_bytes.bytes(length));
    return base::utf16FromUtf8({reinterpret_cast<const char*>(found.data()), found.size()});
}

base::Result<Value> Amf0Reader::textValue(int lengthBytes)
{
    return Value(m_vm.string(TRY_RESULT(text(lengthBytes))));
}

base::Result<Value> Amf0Reader::made(const char* className, Value argument)
{
    const Value constructor = m_vm.global()->get(m_vm, m_vm.name(std::string_view(className)));
    return m_vm.construct(constructor, {&argument, 1});
}

base::Result<Value> Amf0Reader::value(int depth)
{
    if (depth > kDeepest)
        return base::fail(base::ErrorCode::LimitReached, "values that are nested too deeply");
    const std::uint8_t marker = TRY_RESULT(m_bytes.u8());
    switch (marker) {
    case kNumber: return Value(TRY_RESULT(real()));
    case kBoolean: return Value(TRY_RESULT(m_bytes.u8()) != 0);
    case kText: return textValue(2);
    case kLongText: return textValue(4);
    case kNull: return Value::null();
    case kUndefined:
    case kUnsupported: return Value();
    case kXml: return made("XML", TRY_RESULT(textValue(4)));
    case kDate: {
        const double timeMs = TRY_RESULT(real());
        TRY_RESULT(number(2));
        return made("Date", Value(timeMs));
    }
    case kReference: {
        const auto index = static_cast<std::size_t>(TRY_RESULT(number(2)));
        if (index >= m_objects->size())
            return base::fail(base::ErrorCode::Malformed, "a value that refers to nothing");
        return (*m_objects)[index];
    }
    case kClassObject:
        TRY_RESULT(text(2)); // its class is not known here
        return members(m_vm.newLiteral(), depth);
    case kObject: return members(m_vm.newLiteral(), depth);
    case kNamedArray: TRY_RESULT(number(4)); return members(m_vm.newArray(), depth);
    case kPlainArray: return elements(depth);
    default: return base::fail(base::ErrorCode::Unsupported, "a value of kind " + std::to_string(marker));
    }
}

base::Result<Value> Amf0Reader::members(Object* object, int depth)
{
    m_objects->emplace_back(object);
    for (;;) {
        const std::u16string key = TRY_RESULT(text(2));
        if (key.empty() && !m_bytes.atEnd() && m_bytes.rest()[0] == kEnd) break;
        const Value held = TRY_RESULT(value(depth + 1));
        object->put(m_vm, m_vm.name(key), held);
    }
    TRY_RESULT(m_bytes.u8());
    return Value(object);
}

base::Result<Value> Amf0Reader::elements(int depth)
{
    Object* array = m_vm.newArray();
    m_objects->emplace_back(array);
    const auto count = static_cast<std::uint32_t>(TRY_RESULT(number(4)));
    for (std::uint32_t i = 0; i < count; ++i)
        array->put(m_vm, m_vm.names().fromIndex(i), TRY_RESULT(value(depth + 1)));
    return Value(array);
}

} // namespace flash::avm1
