#pragma once

#include "flash/avm1/interpreter/Code.h"
#include "flash/avm1/interpreter/Function.h"
#include "flash/avm1/interpreter/Vm.h"

namespace flash::avm1
{

/// One running piece of code. Lives on the C++ stack, its operands and registers on the machine's.
struct Frame {
    Vm& vm;
    Frame* outer = nullptr;
    Code* code = nullptr;
    const Body* body = nullptr;
    const ConstantPool* pool = nullptr;
    const Instruction* ip = nullptr; ///< the next one

    Value* base = nullptr; ///< of the operands
    Value* top = nullptr;  ///< one past the last operand
    Value* limit = nullptr;
    Value* registers = nullptr;
    unsigned registerCount = 0;
    static constexpr unsigned kSharedRegisters = 4;

    Value self{};
    Scope* scope = nullptr;
    Object* activation = nullptr; ///< null in timeline code, and in functions that need none
    Object* target = nullptr;     ///< null after a SetTarget that led nowhere
    Object* baseTarget = nullptr; ///< the clip that SetTarget("") goes back to
    Function* callee = nullptr;
    Function* caller = nullptr;
    std::span<const Value> args{};
    Object* superBase = nullptr; ///< the prototype object that holds this method; super starts above it

    Value argumentsValue{}, superValue{}; ///< made at first use
    Value result{};
    bool returned = false;
    bool isConstruct = false;  ///< called by `new`
    bool targetIsLost = false; ///< SetTarget led nowhere: the root stands in, but only with its variables
    bool endsWithClip = false; ///< a clip's own script, which stops when the clip is removed
    int version = 8;
    int withDepth = 0;
    const struct Region* region = nullptr; ///< innermost

    // Operands. An empty stack yields undefined.
    void push(Value value)
    {
        if (top == limit) [[unlikely]]
            return overflow();
        *top++ = value;
    }
    Value pop() { return top == base ? Value() : *--top; }
    [[nodiscard]] Value peek() const { return top == base ? Value() : top[-1]; }
    [[nodiscard]] std::size_t operandCount() const { return static_cast<std::size_t>(top - base); }
    void overflow();

    [[nodiscard]] Value registerValue(unsigned number) const
    {
        return number < registerCount ? registers[number] : Value();
    }
    void setRegister(unsigned number, Value value)
    {
        if (number < registerCount) registers[number] = value;
    }
    [[nodiscard]] bool isCaseSensitive() const { return version >= 7; }
    /// Where variables go: after a SetTarget that led nowhere they stay with the script's own clip.
    [[nodiscard]] Object* variableTarget() const { return target != nullptr ? target : baseTarget; }
};

/// The stretch of code that a `with` or `try` body is. Leaving it, by whatever way, ends the nested loop.
struct Region {
    std::uint32_t start, end; ///< byte offsets
    const Region* outer;
};

/// `super` inside of a method: members are looked up above the method's own prototype, with the same `this`.
class SuperNative final : public Native
{
public:
    static constexpr char kTag = 0;
    SuperNative(Value self, Object* base) : self(self), base(base) {}
    [[nodiscard]] const void* tag() const override { return &kTag; }
    [[nodiscard]] Exotic exotic() const override { return Exotic::Opaque; }
    void trace(Tracer& tracer) override;
    bool getOwn(Vm& vm, Object& object, Name name, Value receiver, Value& result) override;
    /// Outside of methods it is written like a function.
    Value primitive(Vm& vm, Object& object) override;
    /// @returns the object above `base` that has the member, or null.
    Object* holderOf(Vm& vm, Name name) const;
    Value self;
    Object* base; ///< as Frame::superBase
};

struct CallOptions {
    Object* superBase = nullptr;
    bool isConstruct = false;
    bool isWritten = false; ///< it stands in a script, rather than following from what one does
};

/// The machine's inner side: what actions work with.
struct Interpreter {
    /// Runs from frame.ip until the code or the region ends, a return, or a throw.
    static void loop(Frame& frame);
    /// Runs a part of the frame's code as a region of its own.
    static void runRegion(Frame& frame, std::uint32_t start, std::uint32_t end)
    {
        runRegion(frame, start, end, start);
    }
    /// @param entry where in it to begin
    static void runRegion(Frame& frame, std::uint32_t start, std::uint32_t end, std::uint32_t entry);
    /// @returns whether the next instruction lies outside of the innermost region.
    static bool leftRegion(const Frame& frame);
    static constexpr int kMaxNestedRegions = 1024;
    static void jump(Frame& frame, std::uint32_t instruction);
    /// Counts work and looks at the clock and the heap from time to time.
    static void safepoint(Vm& vm)
    {
        if (--vm.m_budget <= 0 || vm.m_heap.shouldCollect()) [[unlikely]]
            safepointDue(vm);
    }
    static void safepointDue(Vm& vm);

    static Value invoke(Vm& vm, Value callable, Value self, std::span<const Value> args,
                        const CallOptions& options = {});
    static Value invokeScript(Vm& vm, Function* function, Value self, std::span<const Value> args,
                              const CallOptions& options);
    static Value invokeSuper(Vm& vm, SuperNative& super, std::span<const Value> args);
    static Value construct(Vm& vm, Value constructor, std::span<const Value> args);
    /// @returns from version 10 on, the timelines' register that stands behind those of a function; or null
    static Value* registerBeyond(const Frame& frame, unsigned number)
    {
        const bool stands = frame.version >= 10 && number >= frame.registerCount;
        return stands && number < Frame::kSharedRegisters ? &frame.vm.m_registers[number] : nullptr;
    }
    static void runBlock(Vm& vm, Code& code, Object* target);

    /// As Object::find, and says which object had the property.
    static bool lookup(Vm& vm, Object* object, Name name, Value receiver, Value& result, Object*& holder);
    /// Members of any value: primitives are looked up in their class's prototype.
    static Value getMember(Vm& vm, Value base, Name name);
    static Value getMemberCached(Frame& frame, Value base, Value key, std::uint32_t cache);
    /// @param holder receives the object that has the method, where `super` inside of it starts.
    static Value getMethodCached(Frame& frame, Value base, Name name, Object*& holder, std::uint32_t cache);
    /// @returns the object whose slot `cache.slot` is that member of texts, or null when the cache does not
    ///          know
    static Object* cachedStringMember(const InlineCache& cache, Vm& vm, Name name)
    {
        Object* prototype = vm.m_builtIns.string;
        const bool isKnown = cache.admits(*prototype, name.cell(), vm.epoch()) && vm.isBuiltInString();
        return isKnown ? cache.holderOr(prototype) : nullptr;
    }
    static void setMemberCached(Frame& frame, Value base, Value key, Value value, std::uint32_t cache);

    static Value getVariable(Frame& frame, Name name, Object** thisOfCall = nullptr);
    static Value getVariableCached(Frame& frame, Name name, std::uint32_t cache,
                                   Object** thisOfCall = nullptr);
    static void setVariableCached(Frame& frame, Name name, Value value, std::uint32_t cache);
    static void setVariable(Frame& frame, Name name, Value value);
    static bool deleteVariable(Frame& frame, Name name);
    /// `this`, `arguments` and `super` of the running call. @returns whether the name is one of them.
    static bool getOwnOfCall(Frame& frame, Name name, Value& result);
    static Value getPlainVariable(Frame& frame, Name name, Object** thisOfCall);
    static Value getPath(Frame& frame, Name name, Object** thisOfCall);
    static void setPath(Frame& frame, Name name, Value value);
    /// @returns the object that a path leads to, its first step being anything in scope; or null.
    static Object* resolve(Frame& frame, std::u16string_view path);
    static void preload(Frame& frame, const FunctionHead& head);
    static Value argumentsObject(Frame& frame);
    static Value superObject(Frame& frame);

    /// To be called after what may have removed clips.
    static void checkClip(Frame& frame);
    static void throwValue(Vm& vm, Value value);
    static void abort(Vm& vm, std::string_view why);
    static bool isThrown(const Vm& vm) { return vm.m_thrown; }
    static bool isUnwinding(const Vm& vm) { return vm.isUnwinding(); }
    static Value takeException(Vm& vm);
    static Value* registers(Vm& vm) { return vm.m_registers; }
};

} // namespace flash::avm1
