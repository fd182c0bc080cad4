#pragma once

#include "flash/avm1/interpreter/Object.h"

namespace flash::avm1
{

class Code;
class Vm;
struct FunctionCode;

/// What a native function is called with.
struct Call {
    Vm& vm;
    Value self;                  ///< `this`; may be anything
    std::span<const Value> args; ///< at least as many as the function's table says
    Function* callee;
    bool isConstruct = false; ///< called by `new` or `super()`: self is the object under construction

    /// @returns the argument, or undefined.
    [[nodiscard]] Value arg(std::size_t index) const
    {
        return index < args.size() ? args[index] : Value::undefined();
    }
    [[nodiscard]] std::size_t count() const { return args.size(); }
    /// @returns the native side of `this`, or null when `this` is not of that class.
    template <class T>
    [[nodiscard]] T* native() const
    {
        Object* object = self.asObject();
        return object == nullptr ? nullptr : object->native<T>();
    }
};

using NativeFunction = Value (*)(Call&);

/// One line of a class's table. Called with fewer arguments than `minArguments`, the function is not run and
/// the call yields undefined.
struct MemberInfo {
    const char* name;
    int minArguments;
    std::uint16_t flags; ///< of the property, besides kBuiltIn
    NativeFunction function;
    int nativeIndex = -1; ///< what ASnative(table, index) calls it; -1 for none
    /// What it costs does not grow with the text or list that it is called on.
    bool isBrief = false;
};

/// A property of a class's prototype with a native getter and setter (null: read-only).
struct AccessorInfo {
    const char* name;
    std::uint16_t flags;
    NativeFunction getter;
    NativeFunction setter;
};

/// A chain of objects in which names are looked for, innermost first.
class Scope final : public Cell
{
public:
    enum class Kind : std::uint8_t { Target, With, Activation };
    Scope(Kind kind, Object* object, Scope* outer) : kind(kind), object(object), outer(outer) {}
    void trace(Tracer& tracer) override;
    Kind kind;
    Object* object;
    Scope* outer;
};

/// A callable object: native, or script code closed over its scope and the clip it was defined in.
class Function final : public Object
{
public:
    Function(Vm& vm, NativeFunction native, int minArguments);
    Function(Vm& vm, FunctionCode& code, Code* owner, const TracedList<Value>* pool, Scope* scope,
             Object* definingTarget);

    [[nodiscard]] bool isNative() const { return m_native != nullptr; }
    [[nodiscard]] NativeFunction nativeFunction() const { return m_native; }
    [[nodiscard]] int minArguments() const { return m_minArguments; }
    /// As MemberInfo::isBrief.
    [[nodiscard]] bool isBrief() const { return m_isBrief; }
    void setBrief(bool brief) { m_isBrief = brief; }
    [[nodiscard]] FunctionCode* code() const { return m_code; }
    /// The constant pool in force where the function was made; may be null.
    [[nodiscard]] const TracedList<Value>* pool() const { return m_pool; }
    [[nodiscard]] Code* owner() const { return m_owner; }
    [[nodiscard]] Scope* scope() const { return m_scope; }
    /// The clip whose script made the function: the base of its paths and variables.
    [[nodiscard]] Object* definingTarget() const { return m_target; }

    void trace(Tracer& tracer) override;

private:
    void becomeFunction(Vm& vm);
    NativeFunction m_native = nullptr;
    int m_minArguments = 0;
    bool m_isBrief = false;
    FunctionCode* m_code = nullptr; // inside m_owner
    const TracedList<Value>* m_pool = nullptr;
    Code* m_owner = nullptr;
    Scope* m_scope = nullptr;
    Object* m_target = nullptr;
};

inline Function* Object::asFunction() { return m_isFunction ? static_cast<Function*>(this) : nullptr; }

} // namespace flash::avm1
