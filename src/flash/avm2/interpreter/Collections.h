#pragma once

#include "flash/avm2/interpreter/Vm.h"

// Natives that code makes by instructions of its own: arrays, vectors, names.
namespace flash::avm2
{

class ArrayObject final : public Object
{
public:
    AVM2_NATIVE(Object)
    ArrayObject(Traits* traits, Object* proto) : Object(traits, proto)
    {
        m_exotic = Exotic::Elements;
        m_elements = Elements::Array;
    }
    void trace(Tracer& tracer) override;
    bool getExotic(Vm& vm, const Multiname& name, Value& result) override;
    bool setExotic(Vm& vm, const Multiname& name, Value value) override;
    bool hasExotic(Vm& vm, const Multiname& name) override;
    bool deleteExotic(Vm& vm, const Multiname& name, bool& deleted) override;
    std::uint32_t nextIndex(Vm& vm, std::uint32_t after) override;
    Value nextName(Vm& vm, std::uint32_t index) override;
    Value nextValue(Vm& vm, std::uint32_t index) override;
    bool element(std::uint32_t index, Value& result) override
    {
        if (index >= items.size() || items[index].isHole()) return false;
        result = items[index];
        return true;
    }
    [[nodiscard]] std::uint32_t length() const { return m_length; }
    void setLength(std::uint32_t length);
    /// Undefined where there is nothing, in the prototypes neither.
    Value at(Vm& vm, std::uint32_t index);
    void put(Vm& vm, std::uint32_t index, Value value);
    bool erase(Vm& vm, std::uint32_t index);
    bool holds(Vm& vm, std::uint32_t index);
    void push(Vm& vm, Value value) { put(vm, m_length, value); }
    /// All elements in `items`, as far as that is possible: for functions that work on the whole.
    void makeDense(Vm& vm);

    /// The first elements; holes are Value::hole(). What lies far behind is a dynamic property.
    TracedList<Value> items;

private:
    static bool indexOf(const Multiname& name, std::uint32_t& index);
    static constexpr std::uint32_t kWidestGap = 1 << 16;
    std::uint32_t m_length = 0;
};

class VectorObject final : public Object
{
public:
    AVM2_NATIVE(Object)
    VectorObject(Traits* traits, Object* proto) : Object(traits, proto)
    {
        m_exotic = Exotic::Elements;
        m_elements = Elements::Vector;
    }
    void trace(Tracer& tracer) override;
    bool getExotic(Vm& vm, const Multiname& name, Value& result) override;
    bool setExotic(Vm& vm, const Multiname& name, Value value) override;
    bool hasExotic(Vm& vm, const Multiname& name) override;
    bool deleteExotic(Vm& vm, const Multiname& name, bool& deleted) override;
    std::uint32_t nextIndex(Vm& vm, std::uint32_t after) override;
    Value nextName(Vm& vm, std::uint32_t index) override;
    Value nextValue(Vm& vm, std::uint32_t index) override;
    bool element(std::uint32_t index, Value& result) override
    {
        if (index >= items.size()) return false;
        result = items[index];
        return true;
    }
    [[nodiscard]] Traits* elementType() const { return m_traits->element; }
    [[nodiscard]] Value initial() const;
    void resize(Vm& vm, double length);
    void push(Vm& vm, Value value);
    [[noreturn]] void outOfRange(Vm& vm, double index) const;

    TracedList<Value> items;
    bool isFixed = false;
};

class NamespaceObject final : public Object
{
public:
    AVM2_NATIVE(Object)
    NamespaceObject(Traits* traits, Object* proto) : Object(traits, proto) {}
    void trace(Tracer& tracer) override
    {
        Object::trace(tracer);
        tracer(ns);
        tracer(prefix);
    }
    [[nodiscard]] Namespace* namespaceCell() const override { return ns; }
    std::uint32_t nextIndex(Vm&, std::uint32_t after) override { return after < 2 ? after + 1 : 0; }
    Value nextName(Vm& vm, std::uint32_t index) override;
    Value nextValue(Vm& vm, std::uint32_t index) override;
    Namespace* ns = nullptr;
    Value prefix; ///< undefined: none is known
};

class QNameObject final : public Object
{
public:
    AVM2_NATIVE(Object)
    QNameObject(Traits* traits, Object* proto) : Object(traits, proto) {}
    void trace(Tracer& tracer) override
    {
        Object::trace(tracer);
        tracer(ns);
        tracer(name);
        tracer(prefix);
    }
    bool qualifiedName(Multiname& multiname) const override;
    std::uint32_t nextIndex(Vm&, std::uint32_t after) override { return after < 2 ? after + 1 : 0; }
    Value nextName(Vm& vm, std::uint32_t index) override;
    Value nextValue(Vm& vm, std::uint32_t index) override;
    Namespace* ns = nullptr; ///< null: any
    Name name;               ///< null: any
    Value prefix;            ///< of the namespace that it was made of; undefined: none is known
    bool attribute = false;
};

QNameObject* newQName(Vm& vm, Namespace* ns, Name name);

} // namespace flash::avm2
