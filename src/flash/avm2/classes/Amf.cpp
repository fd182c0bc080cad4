#include "flash/avm2/classes/Amf.h"

#include "flash/net/SharedObjectFile.h"

#include <algorithm>

namespace flash::avm2::classes
{

namespace
{

constexpr int kMaxNesting = 200;
using net::AmfVersion;
using Kind = net::AmfValue::Kind;

bool isDate(Vm& vm, Object* object) { return object->traits()->isA(vm.classes().date->instances); }

std::string markupOf(Vm& vm, Value document)
{
    return toUtf8(vm.text(vm.callPublic(document, "toXMLString")));
}

/// The public members that every instance of a class has, in the order in which they are written.
RootedList<Name> sealedMembers(Vm& vm, Object* object)
{
    RootedList<Name> sealed(vm.heap());
    for (const Traits::Entry& entry : object->traits()->entries()) {
        const bool isVariable =
            entry.binding.kind == Binding::Kind::Slot || (entry.binding.kind == Binding::Kind::Accessor &&
                                                          entry.binding.id >= 0 && entry.binding.setter >= 0);
        if (isVariable && entry.ns->isPublic()) sealed.push_back(entry.name);
    }
    return sealed;
}

std::string aliasOf(Vm& vm, const Traits* traits)
{
    std::u16string alias;
    for (const auto& [name, cls] : vm.aliases()) {
        if (traits != nullptr && traits->cls == cls) alias = name;
    }
    return toUtf8(alias);
}

/// How many elements stand at the beginning of an array without a gap.
std::uint32_t denseLength(Vm& vm, ArrayObject& array)
{
    std::uint32_t dense = 0;
    while (dense < array.length() && array.holds(vm, dense)) ++dense;
    return dense;
}

/// What the writers of both versions share. Accessors run while they write, so that what they were given is
/// held, and written to the byte array at the end only.
template <class Output>
class Writer
{
public:
    Writer(Vm& vm, Output& out) : m_vm(vm), m_out(out), m_kept(vm.heap()) {}
    virtual ~Writer() = default;

    void value(Value value, int depth = 0)
    {
        if (depth > kMaxNesting) m_vm.throwError(ErrorClass::Error, 1023, "Stack overflow occurred.");
        m_vm.check();
        switch (value.type()) {
        case Value::Type::Undefined: m_out.undefined(); return;
        case Value::Type::Null: m_out.null(); return;
        case Value::Type::Boolean: m_out.boolean(value.boolean()); return;
        case Value::Type::Number: m_out.numberValue(value.number()); return;
        case Value::Type::String: m_out.text(toUtf8(value.string()->view())); return;
        case Value::Type::Object: object(value.object(), depth);
        }
    }

protected:
    virtual void object(Object* object, int depth) = 0;
    /// @returns what tells this object from others while the writer lives
    const void* identity(Object* object)
    {
        m_kept.push_back(Value(object));
        return object;
    }
    /// Calls write(name, value) for what loops over the object see, from a place on.
    template <class Write>
    void eachVisible(Object* object, std::uint32_t from, Write write)
    {
        for (std::uint32_t at = 0; (at = object->nextIndex(m_vm, at)) != 0;) {
            if (at <= from) continue;
            const std::string name = toUtf8(m_vm.text(object->nextName(m_vm, at)));
            const Value item = object->nextValue(m_vm, at);
            if (!isFunction(item)) write(name, item);
        }
    }

    Vm& m_vm;
    Output& m_out;

private:
    RootedList<Value> m_kept;
};

class Writer3 final : public Writer<net::Amf3Writer>
{
public:
    using Writer::Writer;

private:
    void object(Object* object, int depth) override
    {
        const Value value(object);
        const void* id = identity(object);
        if (object->isCallable())
            m_out.undefined();
        else if (object->isXml())
            m_out.xml(markupOf(m_vm, value), id);
        else if (isDate(m_vm, object))
            m_out.date(m_vm.toNumber(m_vm.getPublic(value, "time")), id);
        else if (auto* bytes = as<ByteArrayObject>(value))
            m_out.bytes(bytes->content, id);
        else if (auto* array = as<ArrayObject>(value))
            writeArray(*array, id, depth);
        else if (auto* vector = as<VectorObject>(value))
            writeVector(*vector, id, depth);
        else
            writePlain(object, id, depth);
    }
    void writeArray(ArrayObject& array, const void* id, int depth)
    {
        const std::uint32_t dense = denseLength(m_vm, array);
        if (!m_out.array(dense, id)) return;
        for (std::uint32_t at = 0; (at = array.nextIndex(m_vm, at)) != 0;) {
            if (at <= dense) continue;
            m_out.name(toUtf8(m_vm.text(array.nextName(m_vm, at))));
            value(array.nextValue(m_vm, at), depth + 1);
        }
        m_out.end();
        for (std::uint32_t i = 0; i < dense; ++i) value(array.at(m_vm, i), depth + 1);
    }
    void writeVector(VectorObject& vector, const void* id, int depth)
    {
        const auto special =
            vector.elementType() != nullptr ? vector.elementType()->special : Traits::Special::None;
        const Kind kind = special == Traits::Special::Int      ? Kind::IntVector
                          : special == Traits::Special::Uint   ? Kind::UintVector
                          : special == Traits::Special::Number ? Kind::NumberVector
                                                               : Kind::ObjectVector;
        const auto count = static_cast<std::uint32_t>(vector.items.size());
        if (!m_out.vector(kind, count, vector.isFixed, aliasOf(m_vm, vector.elementType()), id)) return;
        for (std::uint32_t i = 0; i < count; ++i) {
            // A script called meanwhile may have shortened it.
            const Value item = i < vector.items.size() ? vector.items[i] : Value();
            if (kind == Kind::NumberVector)
                m_out.real(m_vm.toNumber(item));
            else if (kind == Kind::ObjectVector)
                value(item, depth + 1);
            else
                m_out.number(m_vm.toUint(item), 4);
        }
    }
    void writePlain(Object* object, const void* id, int depth)
    {
        const RootedList<Name> sealed = sealedMembers(m_vm, object);
        std::vector<std::string> names;
        for (const Name name : sealed) names.push_back(toUtf8(name.view()));
        if (!m_out.object(id, aliasOf(m_vm, object->traits()), names, object->isDynamic())) return;
        for (std::size_t i = 0; i < sealed.size(); ++i)
            value(m_vm.get(Value(object), m_vm.publicName(sealed[i])), depth + 1);
        if (!object->isDynamic()) return;
        eachVisible(object, 0, [&](const std::string& name, Value item) {
            m_out.name(name);
            value(item, depth + 1);
        });
        m_out.end();
    }
};

class Writer0 final : public Writer<net::Amf0Writer>
{
public:
    using Writer::Writer;

private:
    void object(Object* object, int depth) override
    {
        const Value value(object);
        if (object->isCallable()) return m_out.undefined();
        if (object->isXml()) return m_out.xml(markupOf(m_vm, value));
        if (isDate(m_vm, object)) return m_out.date(m_vm.toNumber(m_vm.getPublic(value, "time")));
        if (as<ByteArrayObject>(value) != nullptr || as<VectorObject>(value) != nullptr) {
            // The older version has no form for these.
            net::Amf3Writer newer;
            Writer3(m_vm, newer).value(value, depth);
            m_out.switchToAmf3();
            const std::vector<std::uint8_t> written = newer.take();
            return m_out.append(base::Bytes(written));
        }
        if (m_out.reference(identity(object))) return;
        const auto member = [&](const std::string& name, Value item) {
            m_out.name(name);
            this->value(item, depth + 1);
        };
        if (auto* array = as<ArrayObject>(value)) {
            const std::uint32_t dense = denseLength(m_vm, *array);
            if (dense == array->length() && array->nextIndex(m_vm, dense) == 0) {
                m_out.plainArray(dense);
                for (std::uint32_t i = 0; i < dense; ++i) this->value(array->at(m_vm, i), depth + 1);
                return;
            }
            m_out.namedArray(array->length());
        } else {
            m_out.object(aliasOf(m_vm, object->traits()));
            for (const Name name : sealedMembers(m_vm, object)) {
                const Value item = m_vm.get(value, m_vm.publicName(name));
                if (!isFunction(item)) member(toUtf8(name.view()), item);
            }
        }
        if (object->isDynamic()) eachVisible(object, 0, member);
        m_out.end();
    }
};

/// The bytes of a script's array, from its position on.
class ArraySource final : public net::AmfSource
{
public:
    explicit ArraySource(ByteArrayObject& array) : m_array(array) {}
    base::Result<base::Bytes> take(std::size_t count) override
    {
        const std::size_t at = std::min(m_array.position, m_array.content.size());
        if (count > m_array.content.size() - at)
            return base::fail(base::ErrorCode::Truncated, "a value that goes on beyond the end");
        m_array.position = at + count;
        return base::Bytes(m_array.content).subspan(at, count);
    }

private:
    ByteArrayObject& m_array;
};

/// @throws EOFError when there is no value
template <class T>
T taken(Vm& vm, base::Result<T> result)
{
    if (!result) vm.throwError(ErrorClass::Eof, 2030, "End of file was encountered.");
    return std::move(*result);
}

class Reader
{
public:
    /// @param reader outlives this one
    Reader(Vm& vm, net::AmfReader& reader) : m_vm(vm), m_reader(reader), m_objects(vm.heap()) {}

    Value value() { return made(taken(m_reader.value()), 0); }

private:
    template <class T>
    T taken(base::Result<T> result)
    {
        return classes::taken(m_vm, std::move(result));
    }
    Value part(const net::AmfValue& of, int depth) { return made(taken(m_reader.part(of)), depth + 1); }
    Value text(const std::string& utf8) { return Value(m_vm.string(fromUtf8(utf8))); }
    Value remember(Value value)
    {
        m_objects.push_back(value);
        return value;
    }

    Value made(net::AmfValue read, int depth)
    {
        if (depth > kMaxNesting) m_vm.throwError(ErrorClass::Eof, 2030, "End of file was encountered.");
        m_vm.check();
        switch (read.kind) {
        case Kind::Undefined: return {};
        case Kind::Null: return Value::null();
        case Kind::Boolean: return read.number != 0;
        case Kind::Number: return read.number;
        case Kind::Text: return text(read.text);
        case Kind::Reference: return m_objects[read.count];
        case Kind::External:
            m_vm.throwError(ErrorClass::Argument, 2173,
                            u"Unable to read object in stream. The class " + fromUtf8(read.text) +
                                u" does not implement flash.utils.IExternalizable but is aliased to an "
                                u"externalizable class.");
        default: break;
        }
        const Value result = empty(read);
        if (read.isShared()) remember(result);
        fill(result, read, depth);
        return result;
    }
    /// The object before anything is put into it.
    Value empty(const net::AmfValue& read)
    {
        switch (read.kind) {
        case Kind::Xml: {
            const Value markup = text(read.text);
            return m_vm.classes().xml != nullptr ? m_vm.construct(Value(m_vm.classes().xml), {&markup, 1})
                                                 : markup;
        }
        case Kind::Date: {
            const Value time(read.number);
            return m_vm.construct(Value(m_vm.classes().date), {&time, 1});
        }
        case Kind::Bytes: {
            auto* bytes = static_cast<ByteArrayObject*>(m_vm.instantiate(m_vm.classes().byteArray));
            bytes->content = read.bytes;
            return bytes;
        }
        case Kind::Array: return m_vm.newArray();
        case Kind::IntVector: return vector(m_vm.classes().integer->instances);
        case Kind::UintVector: return vector(m_vm.classes().uinteger->instances);
        case Kind::NumberVector: return vector(m_vm.classes().number->instances);
        case Kind::ObjectVector: {
            const auto element = m_vm.aliases().find(fromUtf8(read.text));
            const ClassObject* cls =
                element != m_vm.aliases().end() ? element->second : m_vm.classes().object;
            return vector(cls->instances);
        }
        default: break;
        }
        const auto alias = m_vm.aliases().find(fromUtf8(read.text));
        return alias != m_vm.aliases().end() ? m_vm.construct(Value(alias->second), {})
                                             : Value(m_vm.newObject());
    }
    Value vector(Traits* element)
    {
        ClassObject* cls = m_vm.vectorOf(element);
        return m_vm.heap().make<VectorObject>(cls->instances, cls->prototype);
    }
    /// What a class makes of a member is its own affair: an error is traced and the reading goes on.
    void set(Value into, Name name, Value item)
    {
        try {
            m_vm.set(into, m_vm.publicName(name), item);
        } catch (const ScriptThrow&) {
            m_vm.host().trace(m_vm.text(m_vm.thrown()));
        }
    }
    void put(Value into, Name name, Value item)
    {
        auto* array = as<ArrayObject>(into);
        if (array != nullptr && name.arrayIndex() != Atom::kNotIndex)
            array->put(m_vm, name.arrayIndex(), item);
        else
            set(into, name, item);
    }
    void fill(Value into, net::AmfValue& read, int depth)
    {
        if (read.kind == Kind::Object || read.kind == Kind::Array) {
            for (std::string name; taken(m_reader.nextMember(read, name));) {
                put(into, m_vm.name(fromUtf8(name)), part(read, depth));
            }
        }
        auto* array = as<ArrayObject>(into);
        auto* vector = as<VectorObject>(into);
        for (std::uint32_t i = 0; i < read.count; ++i) {
            const Value item = part(read, depth);
            if (array != nullptr) array->put(m_vm, i, item);
            if (vector != nullptr) vector->push(m_vm, item);
            if (read.kind == Kind::Dictionary) part(read, depth);
        }
        if (vector != nullptr) vector->isFixed = read.isFixed;
    }

    Vm& m_vm;
    net::AmfReader& m_reader;
    RootedList<Value> m_objects; ///< by the numbers that references have
};

} // namespace

void writeAmf(Vm& vm, ByteArrayObject& out, Value value, int encoding)
{
    net::Amf0Writer older;
    net::Amf3Writer newer;
    const bool isOlder = encoding == static_cast<int>(AmfVersion::Amf0);
    if (isOlder)
        Writer0(vm, older).value(value);
    else
        Writer3(vm, newer).value(value);
    out.write(vm, isOlder ? older.take() : newer.take());
}

Value readAmf(Vm& vm, ByteArrayObject& in, int encoding)
{
    ArraySource source(in);
    net::AmfReader reader(source, encoding == 0 ? AmfVersion::Amf0 : AmfVersion::Amf3);
    return Reader(vm, reader).value();
}

namespace
{

template <class ValueWriter, class Output>
std::vector<std::uint8_t> writtenMembers(Vm& vm, Object& data)
{
    Output members;
    ValueWriter writer(vm, members);
    for (std::uint32_t at = 0; (at = data.nextIndex(vm, at)) != 0;) {
        members.name(toUtf8(vm.text(data.nextName(vm, at))));
        writer.value(data.nextValue(vm, at));
        members.append(base::Bytes(&net::kMemberClosing, 1));
    }
    return members.take();
}

} // namespace

std::vector<std::uint8_t> writeSharedObject(Vm& vm, std::string_view name, Object& data, int encoding)
{
    const bool isOlder = encoding == static_cast<int>(AmfVersion::Amf0);
    const auto members = isOlder ? writtenMembers<Writer0, net::Amf0Writer>(vm, data)
                                 : writtenMembers<Writer3, net::Amf3Writer>(vm, data);
    return net::sharedObjectFile(name, isOlder ? AmfVersion::Amf0 : AmfVersion::Amf3, members);
}

int readSharedObject(Vm& vm, Value data, std::span<const std::uint8_t> file)
{
    net::AmfBytes source(file);
    const AmfVersion version = taken(vm, net::readSharedObjectHead(source));
    net::AmfReader reader(source, version);
    Reader values(vm, reader);
    while (!source.atEnd()) {
        const Name name = vm.name(fromUtf8(taken(vm, reader.name())));
        vm.set(data, vm.publicName(name), values.value());
        taken(vm, reader.number(1)); // what closes it
    }
    return static_cast<int>(version);
}

} // namespace flash::avm2::classes
