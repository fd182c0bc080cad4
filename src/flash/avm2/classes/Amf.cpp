#include "flash/avm2/classes/ByteArray.h"

#include <algorithm>
#include <bit>

namespace flash::avm2::classes
{

namespace
{

constexpr int kDeepest = 200;

/// The newer format: numbers of seven bits to a byte, references to what came before.
class Writer
{
public:
    Writer(Vm& vm, ByteArrayObject& out) : m_vm(vm), m_out(out), m_objects(vm.heap()), m_strings(vm.heap()) {}

    void value(Value value, int depth = 0)
    {
        if (depth > kDeepest) m_vm.throwError(ErrorClass::Error, 1023, "Stack overflow occurred.");
        m_vm.check();
        switch (value.type()) {
        case Value::Type::Undefined: byte(0x00); return;
        case Value::Type::Null: byte(0x01); return;
        case Value::Type::Boolean: byte(value.boolean() ? 0x03 : 0x02); return;
        case Value::Type::Number:
            if (value.isInt() && std::fabs(value.number()) < (1 << 28) &&
                !(value.number() == 0 && std::signbit(value.number()))) {
                byte(0x04);
                u29(static_cast<std::uint32_t>(m_vm.toInt(value)) & 0x1FFF'FFFFU);
            } else {
                byte(0x05);
                number(value.number());
            }
            return;
        case Value::Type::String:
            byte(0x06);
            text(value.string()->view());
            return;
        case Value::Type::Object: object(value, depth);
        }
    }

private:
    void byte(std::uint8_t value) { m_out.write(m_vm, {&value, 1}); }
    void u29(std::uint32_t value)
    {
        if (value >= 0x200000) {
            byte(static_cast<std::uint8_t>(0x80U | value >> 22U));
            byte(static_cast<std::uint8_t>(0x80U | (value >> 15U & 0x7FU)));
            byte(static_cast<std::uint8_t>(0x80U | (value >> 8U & 0x7FU)));
            byte(static_cast<std::uint8_t>(value));
            return;
        }
        if (value >= 0x4000) byte(static_cast<std::uint8_t>(0x80U | value >> 14U));
        if (value >= 0x80) byte(static_cast<std::uint8_t>(0x80U | (value >> 7U & 0x7FU)));
        byte(static_cast<std::uint8_t>(value & 0x7FU));
    }
    void number(double value)
    {
        auto bytes = std::bit_cast<std::array<std::uint8_t, 8>>(value);
        std::ranges::reverse(bytes);
        m_out.write(m_vm, bytes);
    }
    void text(std::u16string_view text)
    {
        const std::string bytes = toUtf8(text);
        if (!bytes.empty()) {
            const auto known = std::ranges::find(m_texts, bytes);
            if (known != m_texts.end()) {
                u29(static_cast<std::uint32_t>(known - m_texts.begin()) << 1U);
                return;
            }
            m_texts.push_back(bytes);
        }
        u29(static_cast<std::uint32_t>(bytes.size()) << 1U | 1U);
        m_out.write(m_vm, {reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()});
    }
    bool reference(Value value)
    {
        for (std::size_t i = 0; i < m_objects.size(); ++i) {
            if (m_objects[i].bits() != value.bits()) continue;
            u29(static_cast<std::uint32_t>(i) << 1U);
            return true;
        }
        m_objects.push_back(value);
        return false;
    }
    void object(Value value, int depth)
    {
        Object* object = value.object();
        if (object->isCallable()) {
            byte(0x00);
        } else if (object->isXml()) {
            byte(0x0B);
            if (reference(value)) return;
            const std::string bytes = toUtf8(m_vm.text(m_vm.callPublic(value, "toXMLString")));
            u29(static_cast<std::uint32_t>(bytes.size()) << 1U | 1U);
            m_out.write(m_vm, {reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()});
        } else if (object->traits()->isA(m_vm.classes().date->instances)) {
            byte(0x08);
            if (reference(value)) return;
            u29(1);
            number(m_vm.toNumber(m_vm.getPublic(value, "time")));
        } else if (auto* bytes = as<ByteArrayObject>(value)) {
            byte(0x0C);
            if (reference(value)) return;
            u29(static_cast<std::uint32_t>(bytes->content.size()) << 1U | 1U);
            const std::vector<std::uint8_t> copy = bytes->content;
            m_out.write(m_vm, copy);
        } else if (auto* array = as<ArrayObject>(value)) {
            byte(0x09);
            if (reference(value)) return;
            std::uint32_t dense = 0;
            while (dense < array->length() && array->holds(m_vm, dense)) ++dense;
            u29(dense << 1U | 1U);
            for (std::uint32_t at = 0; (at = array->nextIndex(m_vm, at)) != 0;) {
                if (at <= dense) continue;
                text(m_vm.text(array->nextName(m_vm, at)));
                this->value(array->nextValue(m_vm, at), depth + 1);
            }
            text(u"");
            for (std::uint32_t i = 0; i < dense; ++i) this->value(array->at(m_vm, i), depth + 1);
        } else if (auto* vector = as<VectorObject>(value)) {
            writeVector(*vector, value, depth);
        } else {
            byte(0x0A);
            if (reference(value)) return;
            plain(value, depth);
        }
    }
    void writeVector(VectorObject& vector, Value value, int depth)
    {
        const auto special =
            vector.elementType() != nullptr ? vector.elementType()->special : Traits::Special::None;
        const bool isInt = special == Traits::Special::Int, isUint = special == Traits::Special::Uint,
                   isNumber = special == Traits::Special::Number;
        byte(isInt ? 0x0D : isUint ? 0x0E : isNumber ? 0x0F : 0x10);
        if (reference(value)) return;
        u29(static_cast<std::uint32_t>(vector.items.size()) << 1U | 1U);
        byte(vector.isFixed ? 1 : 0);
        if (!isInt && !isUint && !isNumber) text(u"");
        for (std::size_t i = 0; i < vector.items.size(); ++i) {
            if (isNumber)
                number(m_vm.toNumber(vector.items[i]));
            else if (isInt || isUint) {
                const std::uint32_t word = m_vm.toUint(vector.items[i]);
                for (int shift = 24; shift >= 0; shift -= 8)
                    byte(static_cast<std::uint8_t>(word >> static_cast<unsigned>(shift)));
            } else
                this->value(vector.items[i], depth + 1);
        }
    }
    void plain(Value value, int depth)
    {
        Object* object = value.object();
        std::u16string alias;
        for (const auto& [name, cls] : m_vm.aliases()) {
            if (object->traits()->cls == cls) alias = name;
        }
        RootedList<Name> sealed(m_vm.heap());
        for (const Traits::Entry& entry : object->traits()->entries()) {
            const bool isVariable = entry.binding.kind == Binding::Kind::Slot ||
                                    (entry.binding.kind == Binding::Kind::Accessor && entry.binding.id >= 0 &&
                                     entry.binding.setter >= 0);
            if (isVariable && entry.ns->isPublic()) sealed.push_back(entry.name);
        }
        const bool isDynamic = object->isDynamic();
        u29(static_cast<std::uint32_t>(sealed.size()) << 4U | (isDynamic ? 8U : 0U) | 3U);
        text(alias);
        for (const Name name : sealed) text(name.view());
        for (std::size_t i = 0; i < sealed.size(); ++i)
            this->value(m_vm.get(value, m_vm.publicName(sealed[i])), depth + 1);
        if (!isDynamic) return;
        for (std::uint32_t at = 0; (at = object->nextIndex(m_vm, at)) != 0;) {
            const Value item = object->nextValue(m_vm, at);
            if (isFunction(item)) continue;
            text(m_vm.text(object->nextName(m_vm, at)));
            this->value(item, depth + 1);
        }
        text(u"");
    }

    Vm& m_vm;
    ByteArrayObject& m_out;
    RootedList<Value> m_objects, m_strings;
    std::vector<std::string> m_texts;
};

class Reader
{
public:
    Reader(Vm& vm, ByteArrayObject& in) : m_vm(vm), m_in(in), m_objects(vm.heap()) {}

    Value value(int depth = 0)
    {
        if (depth > kDeepest) fail();
        m_vm.check();
        switch (byte()) {
        case 0x00: return {};
        case 0x01: return Value::null();
        case 0x02: return false;
        case 0x03: return true;
        case 0x04: {
            const std::uint32_t bits = u29();
            return static_cast<std::int32_t>(bits << 3U) >> 3;
        }
        case 0x05: return number();
        case 0x06: return Value(m_vm.string(text()));
        case 0x07:
        case 0x0B: {
            const std::uint32_t head = u29();
            if ((head & 1U) == 0) return known(head >> 1U);
            const auto bytes = m_in.read(m_vm, head >> 1U);
            const Value args[] = {Value(
                m_vm.string(std::string_view(reinterpret_cast<const char*>(bytes.data()), bytes.size())))};
            return remember(m_vm.classes().xml != nullptr ? m_vm.construct(Value(m_vm.classes().xml), args)
                                                          : args[0]);
        }
        case 0x08: {
            const std::uint32_t head = u29();
            if ((head & 1U) == 0) return known(head >> 1U);
            const Value args[] = {Value(number())};
            return remember(m_vm.construct(Value(m_vm.classes().date), args));
        }
        case 0x09: return array(depth);
        case 0x0A: return object(depth);
        case 0x0C: {
            const std::uint32_t head = u29();
            if ((head & 1U) == 0) return known(head >> 1U);
            const auto bytes = m_in.read(m_vm, head >> 1U);
            auto* made = static_cast<ByteArrayObject*>(m_vm.instantiate(m_vm.classes().byteArray));
            made->content.assign(bytes.begin(), bytes.end());
            return remember(Value(made));
        }
        case 0x0D: return vector(m_vm.classes().integer->instances, depth);
        case 0x0E: return vector(m_vm.classes().uinteger->instances, depth);
        case 0x0F: return vector(m_vm.classes().number->instances, depth);
        case 0x10: return vector(m_vm.classes().object->instances, depth);
        default: fail();
        }
    }

private:
    [[noreturn]] void fail() { m_vm.throwError(ErrorClass::Eof, 2030, "End of file was encountered."); }
    std::uint8_t byte() { return m_in.read(m_vm, 1)[0]; }
    std::uint32_t u29()
    {
        std::uint32_t value = 0;
        for (int i = 0; i < 3; ++i) {
            const std::uint32_t next = byte();
            if (next < 0x80) return value << 7U | next;
            value = value << 7U | (next & 0x7FU);
        }
        return value << 8U | byte();
    }
    double number()
    {
        std::array<std::uint8_t, 8> bytes{};
        std::ranges::copy(m_in.read(m_vm, 8), bytes.begin());
        std::ranges::reverse(bytes);
        return std::bit_cast<double>(bytes);
    }
    std::u16string text()
    {
        const std::uint32_t head = u29();
        if ((head & 1U) == 0) {
            if (head >> 1U >= m_texts.size()) fail();
            return m_texts[head >> 1U];
        }
        const auto bytes = m_in.read(m_vm, head >> 1U);
        std::u16string result = fromUtf8({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
        if (!result.empty()) m_texts.push_back(result);
        return result;
    }
    Value known(std::uint32_t index)
    {
        if (index >= m_objects.size()) fail();
        return m_objects[index];
    }
    Value remember(Value value)
    {
        m_objects.push_back(value);
        return value;
    }
    Value array(int depth)
    {
        const std::uint32_t head = u29();
        if ((head & 1U) == 0) return known(head >> 1U);
        auto* made = static_cast<ArrayObject*>(m_vm.newArray());
        remember(Value(made));
        for (std::u16string name = text(); !name.empty(); name = text())
            m_vm.set(Value(made), m_vm.publicName(m_vm.name(name)), value(depth + 1));
        for (std::uint32_t i = 0; i < head >> 1U; ++i) made->put(m_vm, i, value(depth + 1));
        return made;
    }
    Value vector(Traits* element, int depth)
    {
        const std::uint32_t head = u29();
        if ((head & 1U) == 0) return known(head >> 1U);
        const bool isFixed = byte() != 0;
        const auto special = element->special;
        if (special == Traits::Special::Object) text();
        ClassObject* cls = m_vm.vectorOf(element);
        auto* made = m_vm.heap().make<VectorObject>(cls->instances, cls->prototype);
        remember(Value(made));
        for (std::uint32_t i = 0; i < head >> 1U; ++i) {
            if (special == Traits::Special::Number)
                made->push(m_vm, number());
            else if (special == Traits::Special::Object)
                made->push(m_vm, value(depth + 1));
            else {
                std::uint32_t word = 0;
                for (int k = 0; k < 4; ++k) word = word << 8U | byte();
                made->push(m_vm, special == Traits::Special::Int ? Value(static_cast<std::int32_t>(word))
                                                                 : Value(word));
            }
        }
        made->isFixed = isFixed;
        return made;
    }
    struct Class {
        std::u16string alias;
        bool isDynamic = false;
        std::vector<std::u16string> names;
    };
    Value object(int depth)
    {
        const std::uint32_t head = u29();
        if ((head & 1U) == 0) return known(head >> 1U);
        Class cls;
        if ((head & 2U) == 0) {
            if (head >> 2U >= m_classes.size()) fail();
            cls = m_classes[head >> 2U];
        } else {
            cls.isDynamic = (head & 8U) != 0;
            cls.alias = text();
            for (std::uint32_t i = 0; i < head >> 4U; ++i) cls.names.push_back(text());
            m_classes.push_back(cls);
        }
        const auto alias = m_vm.aliases().find(cls.alias);
        const Value made = alias != m_vm.aliases().end() ? m_vm.construct(Value(alias->second), {})
                                                         : Value(m_vm.newObject());
        remember(made);
        const auto put = [&](const std::u16string& name, Value item) {
            const Multiname multiname = m_vm.publicName(m_vm.name(name));
            if (alias == m_vm.aliases().end() || m_vm.has(made, multiname) || made.object()->isDynamic())
                m_vm.set(made, multiname, item);
        };
        for (const std::u16string& name : cls.names) put(name, value(depth + 1));
        if (!cls.isDynamic) return made;
        for (std::u16string name = text(); !name.empty(); name = text()) put(name, value(depth + 1));
        return made;
    }

    Vm& m_vm;
    ByteArrayObject& m_in;
    RootedList<Value> m_objects;
    std::vector<std::u16string> m_texts;
    std::vector<Class> m_classes;
};

} // namespace

void writeAmf(Vm& vm, ByteArrayObject& out, Value value, int) { Writer(vm, out).value(value); }
Value readAmf(Vm& vm, ByteArrayObject& in, int) { return Reader(vm, in).value(); }

} // namespace flash::avm2::classes
