#include "flash/avm1/bindings/StoredValues.h"

#include "base/TextCodes.h"
#include "flash/avm1/ArrayNative.h"
#include "flash/avm1/classes/Boxed.h"
#include "flash/avm1/classes/XmlNode.h"

#include <bit>
#include <string>
#include <unordered_map>

namespace flash::avm1
{

namespace
{

enum Marker : std::uint8_t {
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
constexpr std::uint8_t kHead[] = {0x00, 0xBF};
constexpr std::uint8_t kMagic[] = {'T', 'C', 'S', 'O', 0, 4, 0, 0, 0, 0};

class Writer
{
public:
    explicit Writer(Vm& vm) : m_vm(vm) {}

    void number(std::uint64_t value, int bytes)
    {
        for (int i = bytes - 1; i >= 0; --i) m_out.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
    }
    void real(double value) { number(std::bit_cast<std::uint64_t>(value), 8); }
    void name(std::string text)
    {
        constexpr std::size_t kLongest = 0xFFFF;
        if (text.size() > kLongest) text.resize(kLongest);
        number(text.size(), 2);
        append(text);
    }
    void append(std::string_view text) { m_out.insert(m_out.end(), text.begin(), text.end()); }
    void append(base::Bytes bytes) { m_out.insert(m_out.end(), bytes.begin(), bytes.end()); }

    /// Properties in the order in which they were made. @param closing what follows each value
    void properties(Object* object, int depth, base::Bytes closing)
    {
        const std::vector<Name> names = object->enumerate(m_vm);
        for (auto at = names.rbegin(); at != names.rend(); ++at) {
            if (!object->hasOwn(m_vm, *at)) continue;
            const Value held = object->get(m_vm, *at);
            if (!isStored(held, depth)) continue;
            name(base::utf8FromUtf16(at->view()));
            value(held, depth);
            append(closing);
        }
    }

    std::vector<std::uint8_t> take() { return std::move(m_out); }

private:
    [[nodiscard]] bool isStored(Value held, int depth)
    {
        Object* object = held.asObject();
        if (object == nullptr) return true;
        const bool staged = m_vm.host().isClip(object) || m_vm.host().isStageObject(object);
        return !object->isFunction() && !staged && depth < kDeepest;
    }

    void text(std::u16string_view units, Marker brief, Marker lengthy)
    {
        const std::string utf8 = base::utf8FromUtf16(units);
        const bool fits = utf8.size() <= 0xFFFF && brief == kText;
        m_out.push_back(fits ? brief : lengthy);
        number(utf8.size(), fits ? 2 : 4);
        append(utf8);
    }

    void value(Value held, int depth)
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

    void objectValue(Object* object, int depth)
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

    Vm& m_vm;
    std::vector<std::uint8_t> m_out;
    std::unordered_map<const Object*, std::size_t> m_references;
};

class Reader
{
public:
    Reader(Vm& vm, base::Bytes bytes) : m_vm(vm), m_bytes(bytes), m_objects(vm.heap()) {}

    base::Result<void> file(Object* data)
    {
        const base::Bytes head = TRY_RESULT(m_bytes.bytes(sizeof kHead));
        TRY_RESULT(number(4)); // the length, which the file itself tells
        const base::Bytes magic = TRY_RESULT(m_bytes.bytes(sizeof kMagic));
        if (!std::equal(head.begin(), head.end(), kHead) || !std::equal(magic.begin(), magic.end(), kMagic))
            return base::fail(base::ErrorCode::Malformed, "a shared object that does not begin as one");
        TRY_RESULT(text(2));
        TRY_RESULT(number(4)); // the version of the encoding
        while (!m_bytes.atEnd()) {
            const std::u16string key = TRY_RESULT(text(2));
            const Value held = TRY_RESULT(value(0));
            data->put(m_vm, m_vm.name(key), held);
            TRY_RESULT(m_bytes.u8());
        }
        return {};
    }

private:
    base::Result<std::uint64_t> number(int count)
    {
        std::uint64_t result = 0;
        for (const std::uint8_t byte : TRY_RESULT(m_bytes.bytes(static_cast<std::size_t>(count))))
            result = result << 8 | byte;
        return result;
    }
    base::Result<double> real() { return std::bit_cast<double>(TRY_RESULT(number(8))); }
    base::Result<std::u16string> text(int lengthBytes)
    {
        const auto length = static_cast<std::size_t>(TRY_RESULT(number(lengthBytes)));
        const base::Bytes found = TRY_RESULT(m_bytes.bytes(length));
        return base::utf16FromUtf8({reinterpret_cast<const char*>(found.data()), found.size()});
    }
    base::Result<Value> textValue(int lengthBytes)
    {
        return Value(m_vm.string(TRY_RESULT(text(lengthBytes))));
    }
    base::Result<Value> made(const char* className, Value argument)
    {
        const Value constructor = m_vm.global()->get(m_vm, m_vm.name(std::string_view(className)));
        return m_vm.construct(constructor, {&argument, 1});
    }

    base::Result<Value> value(int depth)
    {
        if (depth > kDeepest)
            return base::fail(base::ErrorCode::LimitReached, "a shared object that is nested too deeply");
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
                return base::fail(base::ErrorCode::Malformed, "a shared object that refers to nothing");
            return (*m_objects)[index];
        }
        case kClassObject:
            TRY_RESULT(text(2)); // its class is not known here
            return members(m_vm.newLiteral(), depth);
        case kObject: return members(m_vm.newLiteral(), depth);
        case kNamedArray: TRY_RESULT(number(4)); return members(m_vm.newArray(), depth);
        case kPlainArray: return elements(depth);
        default:
            return base::fail(base::ErrorCode::Unsupported,
                              "a shared object with a value of kind " + std::to_string(marker));
        }
    }

    base::Result<Value> members(Object* object, int depth)
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

    base::Result<Value> elements(int depth)
    {
        Object* array = m_vm.newArray();
        m_objects->emplace_back(array);
        const auto count = static_cast<std::uint32_t>(TRY_RESULT(number(4)));
        for (std::uint32_t i = 0; i < count; ++i)
            array->put(m_vm, m_vm.names().fromIndex(i), TRY_RESULT(value(depth + 1)));
        return Value(array);
    }

    Vm& m_vm;
    base::ByteReader m_bytes;
    RootedValues m_objects; ///< by the numbers that references have
};

} // namespace

std::vector<std::uint8_t> encodeStored(Vm& vm, Object* data, std::string_view name)
{
    Writer body(vm);
    body.append(base::Bytes(kMagic));
    body.name(std::string(name));
    body.number(0, 4);
    constexpr std::uint8_t kClosing[] = {0};
    body.properties(data, 0, kClosing);
    const std::vector<std::uint8_t> bytes = body.take();
    Writer file(vm);
    file.append(base::Bytes(kHead));
    file.number(bytes.size(), 4);
    file.append(base::Bytes(bytes));
    return file.take();
}

base::Result<void> decodeStored(Vm& vm, Object* data, base::Bytes bytes)
{
    return Reader(vm, bytes).file(data);
}

} // namespace flash::avm1
