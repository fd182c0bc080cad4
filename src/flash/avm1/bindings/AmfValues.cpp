#include "flash/avm1/bindings/AmfValues.h"

#include "base/TextCodes.h"
#include "flash/avm1/classes/XmlNode.h"
#include "flash/avm1/interpreter/ArrayNative.h"
#include "flash/avm1/interpreter/Boxed.h"
#include "flash/avm1/interpreter/Convert.h"

namespace flash::avm1
{
namespace
{

constexpr int kMaxNesting = 64;

} // namespace

// ---- writing ----------------------------------------------------------------------------------------------

void AmfValueWriter::properties(Object* object, int depth, base::Bytes closing)
{
    const RootedNames names = object->enumerate(m_vm);
    for (auto at = names.rbegin(); at != names.rend(); ++at) {
        if (!object->hasOwn(m_vm, *at)) continue;
        const Value held = object->get(m_vm, *at);
        if (!isWritten(held, depth)) continue;
        m_out.name(base::utf8FromUtf16(at->view()));
        value(held, depth);
        m_out.append(closing);
    }
}

bool AmfValueWriter::isWritten(Value held, int depth)
{
    Object* object = held.asObject();
    if (object == nullptr) return true;
    const bool staged = m_vm.host().isClip(object) || m_vm.host().isStageObject(object);
    return !object->isFunction() && !staged && depth < kMaxNesting;
}

void AmfValueWriter::value(Value held, int depth)
{
    if (held.isUndefined())
        m_out.undefined();
    else if (held.isNullish())
        m_out.null();
    else if (held.isBoolean())
        m_out.boolean(held.boolean());
    else if (held.isString())
        m_out.text(base::utf8FromUtf16(held.string()->view()));
    else if (Object* object = held.asObject())
        objectValue(object, depth);
    else
        m_out.numberValue(toNumber(m_vm, held));
}

void AmfValueWriter::objectValue(Object* object, int depth)
{
    if (const auto* boxed = object->native<Boxed>()) return value(boxed->value, depth);
    if (const auto* date = object->native<DateNative>()) return m_out.date(date->timeMs);
    if (object->native<XmlNode>()) return m_out.xml(base::utf8FromUtf16(xmlText(m_vm, object)));
    m_kept.push_back(object);
    if (m_out.reference(object)) return;
    if (const auto* array = object->native<ArrayNative>())
        m_out.namedArray(static_cast<std::uint32_t>(std::min(array->length(), 4294967295.0)));
    else
        m_out.object();
    properties(object, depth + 1, {});
    m_out.end();
}

// ---- reading ----------------------------------------------------------------------------------------------

base::Result<Value> AmfValueReader::value() { return made(TRY_RESULT(m_reader.value()), 0); }

base::Result<Value> AmfValueReader::part(const net::AmfValue& of, int depth)
{
    return made(TRY_RESULT(m_reader.part(of)), depth + 1);
}

base::Result<Value> AmfValueReader::constructed(const char* className, Value argument)
{
    const Value constructor = m_vm.global()->get(m_vm, m_vm.name(std::string_view(className)));
    return m_vm.construct(constructor, {&argument, 1});
}

base::Result<Value> AmfValueReader::made(net::AmfValue read, int depth)
{
    using Kind = net::AmfValue::Kind;
    if (depth > kMaxNesting)
        return base::fail(base::ErrorCode::LimitReached, "values that are nested too deeply");
    Value result;
    Object* object = nullptr;
    switch (read.kind) {
    case Kind::Undefined: return Value();
    case Kind::Null: return Value::null();
    case Kind::Boolean: return Value(read.number != 0);
    case Kind::Number: return Value(read.number);
    case Kind::Text: return Value(m_vm.string(base::utf16FromUtf8(read.text)));
    case Kind::Reference: return (*m_objects)[read.count];
    case Kind::External:
        return base::fail(base::ErrorCode::Unsupported, "an object that only its class can read");
    case Kind::Xml:
        result = TRY_RESULT(constructed("XML", Value(m_vm.string(base::utf16FromUtf8(read.text)))));
        break;
    case Kind::Date: result = TRY_RESULT(constructed("Date", Value(read.number))); break;
    case Kind::Bytes: break; // nothing here holds bytes
    case Kind::Object:       // its class is not known here
    case Kind::Dictionary: object = m_vm.newLiteral(); break;
    case Kind::Array:
    case Kind::IntVector:
    case Kind::UintVector:
    case Kind::NumberVector:
    case Kind::ObjectVector: object = m_vm.newArray(); break;
    }
    if (object != nullptr) result = Value(object);
    if (read.isShared()) m_objects.push_back(result);
    if (object != nullptr) {
        CHECK_RESULT(fill(object, read, depth));
    }
    return result;
}

base::Result<void> AmfValueReader::fill(Object* object, net::AmfValue& read, int depth)
{
    if (read.kind == net::AmfValue::Kind::Object || read.kind == net::AmfValue::Kind::Array) {
        for (std::string name; TRY_RESULT(m_reader.nextMember(read, name));) {
            const Value held = TRY_RESULT(part(read, depth));
            object->put(m_vm, m_vm.name(base::utf16FromUtf8(name)), held);
        }
    }
    for (std::uint32_t i = 0; i < read.count; ++i) {
        const Value first = TRY_RESULT(part(read, depth));
        if (read.kind != net::AmfValue::Kind::Dictionary) {
            object->put(m_vm, m_vm.names().fromIndex(i), first);
            continue;
        }
        const Root<String> key(m_vm.heap(), m_vm.string(toText(m_vm, first)));
        const Value held = TRY_RESULT(part(read, depth));
        object->put(m_vm, m_vm.name(key->view()), held);
    }
    return {};
}

} // namespace flash::avm1
