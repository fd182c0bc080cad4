#pragma once

#include "flash/avm2/interpreter/PropertyTable.h"
#include "flash/avm2/interpreter/Traits.h"

#include <memory>
#include <span>
#include <string_view>

namespace flash::avm2
{

struct Signature;
class Vm;

/// What a native function is given. The arguments stay where they are until it returns.
struct Call {
    Vm& vm;
    Value self;
    const Value* args;
    std::uint32_t count;
    Object* callee = nullptr;

    [[nodiscard]] Value arg(std::uint32_t i) const { return i < count ? args[i] : Value(); }
    [[nodiscard]] bool has(std::uint32_t i) const { return i < count; }
    [[nodiscard]] std::span<const Value> rest(std::uint32_t from) const
    {
        return from < count ? std::span<const Value>(args + from, count - from) : std::span<const Value>();
    }
};
using NativeFunction = Value (*)(Call&);
/// The simple case of a native, for loops that call it again and again: the receiver and the arguments are
/// what is expected, and nothing goes wrong. Runs no script and throws nothing.
/// @returns a hole, having changed nothing, when it is not that simple: the native itself is called then
using QuickFunction = Value (*)(Vm& vm, Value self, const Value* args);

/// In what ways an object answers for properties that its traits do not name.
enum class Exotic : std::uint8_t {
    None,
    Elements, ///< by number: arrays, vectors, bytes; everything else is ordinary
    First,    ///< is asked before its traits are (XML)
    Last,     ///< is asked for all that its traits do not name (proxies, dictionaries)
};

/// Anything scripts hold that is no primitive.
class Object : public Cell
{
public:
    Object(Traits* traits, Object* proto);
    ~Object() override;
    void trace(Tracer& tracer) override;

    [[nodiscard]] Traits* traits() const { return m_traits; }
    [[nodiscard]] Object* proto() const { return m_proto; }
    void setProto(Object* proto) { m_proto = proto; }
    [[nodiscard]] bool isDynamic() const { return !m_traits->isSealed; }

    [[nodiscard]] std::uint32_t slotCount() const { return m_slotCount; }
    [[nodiscard]] Value slot(std::uint32_t index) const { return m_slots[index]; }
    void setSlot(std::uint32_t index, Value value) { m_slots[index] = value; }
    [[nodiscard]] Value* slots() { return m_slots; }

    [[nodiscard]] PropertyTable* tableIfAny() const { return m_table.get(); }
    PropertyTable& table()
    {
        if (!m_table) m_table = std::make_unique<PropertyTable>();
        return *m_table;
    }

    [[nodiscard]] Exotic exotic() const { return m_exotic; }
    /// Lists whose elements code reaches without asking.
    enum class Elements : std::uint8_t { Other, Array, Vector };
    [[nodiscard]] Elements elements() const { return m_elements; }
    // Asked for exotic objects only. Each @returns whether it has taken care of the access.
    virtual bool getExotic(Vm&, const Multiname&, Value& /*result*/) { return false; }
    virtual bool setExotic(Vm&, const Multiname&, Value) { return false; }
    virtual bool hasExotic(Vm&, const Multiname&) { return false; }
    virtual bool deleteExotic(Vm&, const Multiname&, bool& /*deleted*/) { return false; }
    virtual bool callExotic(Vm&, const Multiname&, std::span<const Value>, Value& /*result*/)
    {
        return false;
    }
    // Walking: indices count from 1, 0 is the end. By default the dynamic properties.
    virtual std::uint32_t nextIndex(Vm& vm, std::uint32_t after);
    virtual Value nextName(Vm& vm, std::uint32_t index);
    virtual Value nextValue(Vm& vm, std::uint32_t index);
    /// Called when a script uses the object as a function.
    [[nodiscard]] virtual bool isCallable() const { return false; }
    virtual Value call(Vm& vm, Value self, std::span<const Value> args);
    virtual Value construct(Vm& vm, std::span<const Value> args);
    [[nodiscard]] virtual std::string_view typeOf() const { return "object"; }
    /// The element at an index, without a name. @returns false when it is not that simple
    virtual bool element(std::uint32_t /*index*/, Value& /*result*/) { return false; }
    /// Of a qualified name as a value: puts itself into `name`. @returns false for everything else
    virtual bool qualifiedName(Multiname& /*name*/) const { return false; }
    /// Of a namespace as a value; null for everything else.
    [[nodiscard]] virtual Namespace* namespaceCell() const { return nullptr; }
    /// What the fast memory instructions work on; empty for all but byte arrays.
    virtual std::span<std::uint8_t> bytes() { return {}; }
    [[nodiscard]] virtual bool isXml() const { return false; }
    /// The operator `..`
    virtual Value descendants(Vm& vm, const Multiname& name);
    /// @returns whether this is the native class that the tag stands for, for `as<T>()`.
    [[nodiscard]] virtual bool is(const void*) const { return false; }

protected:
    Traits* m_traits;
    Object* m_proto;
    Value* m_slots;
    std::unique_ptr<PropertyTable> m_table;
    std::uint32_t m_slotCount;
    Exotic m_exotic = Exotic::None;
    Elements m_elements = Elements::Other;

private:
    static constexpr std::uint32_t kInlineSlots = 4;
    Value m_inline[kInlineSlots];
};

/// @returns the object behind a value when it is a native of class T (which has a static kTag), or null.
template <class T>
T* as(Object* object)
{
    return object != nullptr && object->is(&T::kTag) ? static_cast<T*>(object) : nullptr;
}
template <class T>
T* as(const Value& value)
{
    return as<T>(value.asObject());
}
/// For a native class: `static int kTag;` and what asks for it.
#define AVM2_NATIVE(Base)                                                                                    \
    static constexpr char kTag = 0;                                                                          \
    [[nodiscard]] bool is(const void* tag) const override { return tag == &kTag || Base::is(tag); }

/// The scopes around a function, innermost last.
class ScopeChain final : public Cell
{
public:
    struct Scope {
        Object* object;
        bool isWith;
    };
    explicit ScopeChain(Object* domainGlobal) : global(domainGlobal) {}
    void trace(Tracer& tracer) override
    {
        tracer(global);
        for (const Scope& scope : scopes) tracer(scope.object);
    }
    TracedList<Scope> scopes;
    Object* global; ///< of the script; may be null for natives
};

class Code;

/// A function before it is bound to a scope: a method of a unit, or a native.
class MethodEnv final : public Cell
{
public:
    MethodEnv(Unit* unit, std::uint32_t method, ScopeChain* scope) : unit(unit), method(method), scope(scope)
    {
    }
    MethodEnv(NativeFunction native, std::string_view nativeName, int minArguments, int maxArguments)
        : native(native), nativeName(nativeName), minArguments(minArguments), maxArguments(maxArguments)
    {
    }
    void trace(Tracer& tracer) override;
    [[nodiscard]] const abc::MethodInfo& info() const;

    Unit* unit = nullptr;
    std::uint32_t method = 0;
    ScopeChain* scope = nullptr;
    NativeFunction native = nullptr;
    std::string_view nativeName;                      ///< static text
    std::int16_t minArguments = 0, maxArguments = -1; ///< arguments of a native; -1: any number
    static constexpr std::uint32_t kNotQuick = 0xFFFF'FFFF;
    std::uint32_t quickArguments = kNotQuick; ///< that there have to be for `quick`
    QuickFunction quick = nullptr;            ///< of some natives
    Traits* owner = nullptr;                  ///< whose method it is; for super
    Name name;                                ///< of the trait
    Namespace* ns = nullptr;
    enum class Role : std::uint8_t { Method, Getter, Setter, Function, Constructor, StaticInit, ScriptInit };
    Role role = Role::Function;
    Code* code = nullptr;                 ///< once verified
    const Signature* signature = nullptr; ///< of a native whose arguments are to be of certain classes
    const std::vector<Traits*>* argumentTypes = nullptr; ///< what it says, once it was called; null: anything
    Object* activationTraitsHolder = nullptr;
};

/// A function as a value; bound to its object when it was taken from one.
class FunctionObject final : public Object
{
public:
    AVM2_NATIVE(Object)
    FunctionObject(Vm& vm, MethodEnv* env);
    FunctionObject(Vm& vm, MethodEnv* env, Value self);
    void trace(Tracer& tracer) override;
    [[nodiscard]] bool isCallable() const override { return true; }
    Value call(Vm& vm, Value self, std::span<const Value> args) override;
    Value construct(Vm& vm, std::span<const Value> args) override;
    [[nodiscard]] std::string_view typeOf() const override { return "function"; }
    [[nodiscard]] bool isBound() const { return m_isBound; }
    [[nodiscard]] Value boundTo() const { return m_self; }
    [[nodiscard]] MethodEnv* env() const { return m_env; }
    /// The object that instances made by `new` inherit from.
    Value prototype(Vm& vm);
    void setPrototype(Value value)
    {
        m_prototype = value;
        m_hasPrototype = true;
    }
    [[nodiscard]] bool same(const FunctionObject& other) const
    {
        return m_isBound && other.m_isBound && m_env == other.m_env && m_self.bits() == other.m_self.bits();
    }

private:
    MethodEnv* m_env;
    Value m_self;
    bool m_isBound = false, m_hasPrototype = false;
    Value m_prototype;
};

using Allocator = Object* (*)(Vm&, ClassObject&);

class ClassObject final : public Object
{
public:
    AVM2_NATIVE(Object)
    ClassObject(Vm& vm, Traits* statics, Traits* instances, ClassObject* base);
    void trace(Tracer& tracer) override;
    [[nodiscard]] bool isCallable() const override { return true; }
    Value call(Vm& vm, Value self, std::span<const Value> args) override;
    Value construct(Vm& vm, std::span<const Value> args) override;

    Traits* const instances;
    ClassObject* const base;
    Object* prototype; ///< never null but for interfaces
    MethodEnv* constructor = nullptr;
    Allocator allocate = nullptr;        ///< inherited from the base
    NativeFunction conversion = nullptr; ///< called as a function; null: coerces
    bool isAbstract = false;             ///< may not be constructed by scripts
    ClassObject* generic = nullptr;      ///< what this applies to a type, for vectors
    /// Whether making an instance is to allocate it and to run the constructor, no more.
    [[nodiscard]] bool isPlain() const
    {
        return !instances->isInterface && !isAbstract && instances->special == Traits::Special::None;
    }
};

inline bool isFunction(Value value) { return value.isObject() && value.object()->isCallable(); }

} // namespace flash::avm2

template <>
class std::allocator<flash::avm2::ScopeChain::Scope>;
