#pragma once

#include "flash/avm2/abc/Abc.h"
#include "flash/avm2/interpreter/Names.h"

#include <unordered_map>
#include <vector>

namespace flash::avm2
{

class ClassObject;
class MethodEnv;
class Traits;
class Unit;
class Vm;
struct Signature;

/// What a name stands for in the traits of an object.
struct Binding {
    enum class Kind : std::uint8_t { None, Slot, Const, Method, Accessor };
    Kind kind = Kind::None;
    std::int32_t id = -1;     ///< slot; method or getter in the method table (-1: none)
    std::int32_t setter = -1; ///< in the method table
};

/// The type of a slot or parameter: looked up when it is first needed, as it may be defined later.
struct TypeRef {
    Unit* unit = nullptr;   ///< null: it is no movie's
    std::uint32_t name = 0; ///< multiname of the unit; 0: any
    Traits* resolved = nullptr;
    const Signature* native = nullptr; ///< of a built-in class's variable, whose type is not looked up yet
    [[nodiscard]] bool isFinal() const { return unit == nullptr && native == nullptr; }
};

/// The fixed part of objects of one class (or of a class itself, a script, an activation): names, slots with
/// their types, methods. Complete before the first object has it, and never changed again.
class Traits final : public Cell
{
public:
    enum class Special : std::uint8_t { None, Object, Int, Uint, Number, Boolean, String, Void };

    Traits(Name name, Namespace* ns, Traits* base) : name(name), ns(ns) { derive(base); }
    /// To be called once, before anything is added.
    void derive(Traits* from)
    {
        base = from;
        if (base != nullptr) inherit();
    }
    void trace(Tracer& tracer) override;

    [[nodiscard]] const Binding* find(const Multiname& multiname) const;
    [[nodiscard]] const Binding* find(Name name, Namespace* ns) const;
    /// Adds or overrides.
    void bind(Name name, Namespace* ns, Binding binding);
    std::int32_t addSlot(TypeRef type, Value initial);
    std::int32_t addMethod(MethodEnv* method);
    /// Adds a method under a name, in the place of the one it overrides: callers that know a base class find
    /// it there. Binds it.
    enum class MethodKind : std::uint8_t { Method, Getter, Setter };
    void bindMethod(Name name, Namespace* ns, MethodKind kind, MethodEnv* method);
    /// A class sees the protected names of its base under its own protected namespace, too.
    void alias(Namespace* from, Namespace* to);
    /// Functions of interfaces are found under the interface's namespace.
    void implement(Vm& vm, Traits* interface);
    [[nodiscard]] bool isA(const Traits* other) const;
    [[nodiscard]] std::u16string qualifiedName() const { return qualified(ns, name); }

    struct Entry {
        Name name;
        Namespace* ns = nullptr;
        Binding binding;
        std::int32_t next = -1;
        const abc::Trait* source = nullptr; ///< for describeType; null for natives
        Unit* unit = nullptr;
        Traits* declaredBy = nullptr;
        const abc::Trait* setterSource = nullptr; ///< of an accessor's other half
        Unit* setterUnit = nullptr;
    };
    [[nodiscard]] const std::vector<Entry, vm::TracedAllocator<Entry>>& entries() const { return m_entries; }
    Entry* entry(Name name, Namespace* ns);

    Name name;
    Namespace* ns;
    Traits* base = nullptr;
    ClassObject* cls = nullptr; ///< whose instances have these traits; null for classes, scripts, activations
    Namespace* protectedNs = nullptr;
    Special special = Special::None;
    bool isSealed = false, isFinal = false, isInterface = false;
    bool isVector = false;
    Traits* element = nullptr; ///< of a vector; null: any
    TracedList<TypeRef> slotTypes;
    TracedList<Value> slotInitials;
    TracedList<MethodEnv*> methods;
    TracedList<Traits*> interfaces; ///< all of them, inherited ones included

private:
    void inherit();
    std::unordered_map<const Atom*, std::int32_t> m_first;
    std::vector<Entry, vm::TracedAllocator<Entry>> m_entries;
};

} // namespace flash::avm2
