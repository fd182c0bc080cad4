#pragma once

#include "flash/avm2/interpreter/Code.h"
#include "flash/avm2/interpreter/Vm.h"

namespace flash::avm2
{

/// Whether a value is at once seen to be what coercing it to a type would make of it.
inline bool fitsType(Value value, const Traits* type)
{
    switch (type->special) {
    case Traits::Special::None: return value.isObject() && value.object()->traits() == type;
    case Traits::Special::Int: return value.isInt();
    case Traits::Special::Number: return value.isNumber();
    case Traits::Special::Boolean: return value.isBoolean();
    case Traits::Special::String: return value.isString();
    default: return false;
    }
}

/// One call of verified code. All its values lie on the machine's stack.
struct Frame {
    MethodEnv* env = nullptr;
    Code* code = nullptr;
    Unit* unit = nullptr;
    Value* locals = nullptr; ///< the registers begin with them
    Value* scopes = nullptr;
    Value* stack = nullptr;
    std::uint32_t scopeCount = 0;
    std::uint64_t withMask = 0;  ///< a bit for each scope that is a `with`
    ScopeChain* chain = nullptr; ///< the scopes as functions made here keep them; null: to be made
    const Ins* at = nullptr;
    std::uint32_t resume = 0;
};

class Interpreter
{
public:
    Interpreter(Vm& vm, Frame& frame) : m_vm(vm), m_frame(frame) {}
    Value run();

private:
    /// Takes the runtime parts off the stack.
    Multiname multiname(const Ins& ins, Value*& sp);
    Value find(const Multiname& name, const Ins& ins, bool strict);
    Value getCached(Value base, const Ins& ins);
    void setCached(Value base, const Ins& ins, Value value);
    /// @param window the receiver and the arguments
    Value callCached(const Ins& ins, Value* window);
    Value callEarly(const Ins& ins, Value* window);
    Value constructCached(const Ins& ins, Value* window);
    Value getSlotOr(const Ins& ins, Value base);
    void setSlotOr(const Ins& ins, Value base, Value value, bool isTyped);
    Value getAccessor(const Ins& ins, Value base);
    /// The element of an array at a number. @returns false when it is not that simple
    bool getElement(Value* sp);
    Value elementSlow(const Ins& ins, Value base, Value index);
    void setElementSlow(const Ins& ins, Value base, Value index, Value value);
    bool setElementFast(Object& object, std::uint32_t index, Value value);
    /// An instruction that works on the operand stack. @param sp its first free place
    void stackOp(const Ins& ins, Value* sp);
    void memoryOp(const Ins& ins, Value* sp);
    void callStackOp(const Ins& ins, Value* sp);
    Value pushNamespace(std::uint32_t index);
    void pushScope(Value value, bool isWith);
    ScopeChain* captured();
    Value outerScope(std::uint32_t index);
    Value globalScope();
    Value getSlot(Value base, std::uint32_t id);
    void setSlot(Value base, std::uint32_t id, Value value);
    Value newClass(std::uint32_t index, Value base);
    Value newObject(std::span<const Value> pairs);
    Value applyType(Value generic, std::span<const Value> types);
    Value callMethod(Value self, std::uint32_t id, std::span<const Value> args);
    void constructSuper(Value self, std::span<const Value> args);
    Traits* superTraits();
    Traits* lateType(Value type);
    bool isIn(Value name, Value object);
    Value escape(Value value, bool attribute);
    void setDefaultNamespace(Value value);
    bool hasNext(Value& object, Value& index);
    std::uint8_t* memory(Value address, std::size_t size);

    Vm& m_vm;
    Frame& m_frame;
};

} // namespace flash::avm2
