#pragma once

#include "flash/avm2/interpreter/Code.h"
#include "flash/avm2/interpreter/Vm.h"
#include "flash/vm/Numbers.h"

#include <cmath>
#include <limits>
#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace flash::avm2
{

/// A number cut to an int: for one that no int can hold, the least int.
inline std::int32_t cut(double number)
{
#ifdef __SSE2__
    return _mm_cvttsd_si32(_mm_set_sd(number));
#else
    const bool fits = number > -2147483649.0 && number < 2147483648.0;
    return fits ? static_cast<std::int32_t>(number) : std::numeric_limits<std::int32_t>::min();
#endif
}
/// As Value::isInt(). What is no number has the pattern of a NaN, which equals nothing.
inline bool isInt(Value value) { return static_cast<double>(cut(value.number())) == value.number(); }

/// The 32 bits of a number.
inline std::int32_t narrow(double number)
{
#ifdef __SSE2__
    const std::int64_t whole = _mm_cvttsd_si64(_mm_set_sd(number));
    if (whole != std::numeric_limits<std::int64_t>::min()) [[likely]]
        return static_cast<std::int32_t>(whole);
#else
    constexpr double kLongs = 9.2e18;
    if (std::fabs(number) < kLongs) [[likely]]
        return static_cast<std::int32_t>(static_cast<std::int64_t>(number));
#endif
    return vm::toInt32(number);
}
inline bool isUint(Value value)
{
    return static_cast<double>(static_cast<std::uint32_t>(narrow(value.number()))) == value.number();
}

/// Whether a value is at once seen to be what coercing it to a type would make of it.
inline bool fitsType(Value value, const Traits* type)
{
    // By how often each is there.
    const Traits::Special special = type->special;
    if (special == Traits::Special::None) return value.isObject() && value.object()->traits() == type;
    if (special == Traits::Special::Int) return isInt(value);
    if (special == Traits::Special::Number) return value.isNumber();
    if (special == Traits::Special::String) return value.isString();
    if (special == Traits::Special::Uint) return isUint(value);
    return special == Traits::Special::Boolean && value.isBoolean();
}

/// An int as registers have it.
inline Value rawValue(std::int32_t value) { return vm::Value::fromBits(static_cast<std::uint32_t>(value)); }

/// One call of verified code. All its values lie on the machine's stack.
struct Frame {
    MethodEnv* env;
    Code* code;
    Unit* unit;
    Value* locals; ///< the registers begin with them
    Value* scopes;
    Value* stack;
    std::uint64_t withMask; ///< a bit for each scope that is a `with`
    std::uint32_t scopeCount;
    std::uint32_t resume;
    ScopeChain* chain; ///< the scopes as functions made here keep them; null: to be made
    const Ins* at;
    Value* result; ///< where the caller wants what the call gives
    Object* made;  ///< by the caller's `new`: this is what it wants instead; null: none
};

/// Runs verified code, and the verified code that it calls, some levels deep; what is deeper, and what
/// natives call, has an interpreter of its own. Lives on the C++ stack, where the collector finds what its
/// frames hold.
class Interpreter
{
public:
    explicit Interpreter(Vm& vm)
        : m_vm(vm), m_outer(vm.m_interpreter), m_stackEnd(vm.m_stack.get() + Vm::kStackValues)
    {
        vm.m_interpreter = this;
    }
    ~Interpreter() { m_vm.m_interpreter = m_outer; }
    Interpreter(const Interpreter&) = delete;
    Interpreter& operator=(const Interpreter&) = delete;
    /// @param window the receiver and, behind it, the arguments: they become the first registers
    Value execute(MethodEnv& env, Value* window, std::uint32_t given, Object* callee);
    /// What `this` is for a function that is called as such.
    static void bindReceiver(Vm& vm, const FunctionObject& closure, Value& receiver);
    /// Where the loop does what each RegisterOp stands for.
    const void* const* labels()
    {
        const void* const* labels = nullptr;
        run(&labels);
        return labels;
    }
    static constexpr std::size_t kDeepestCalls = 1000;
    /// Clears the frames of calls that are over or never were, here and in those that wait for this one: to
    /// the collector what they are left with would be in use.
    void forgetEnded();

private:
    /// Goes on with the present frame. @param labels where to put them, instead of running anything
    Value run(const void* const** labels = nullptr);
    void open(Frame& frame, MethodEnv& env, Value* window, std::uint32_t given, Object* callee);
    /// The last step: nothing can go wrong any more.
    void fill(Frame& frame, MethodEnv& env, Code& code, Value* window, std::uint32_t used)
    {
        m_vm.m_top = window + code.registers;
        if (m_vm.m_top > m_vm.m_highest) m_vm.m_highest = m_vm.m_top;
        Value* const scopes = window + code.locals;
        Value* const stack = scopes + code.maxScopes;
        for (std::uint32_t i = used; i < code.clearedLocals; ++i) window[i] = Value();
        if (code.startsWithThis) *scopes = *window;
        frame.env = &env;
        frame.code = &code;
        frame.unit = env.unit;
        frame.locals = window;
        frame.scopes = scopes;
        frame.stack = stack;
        frame.withMask = 0;
        frame.scopeCount = code.startsWithThis ? 1 : 0;
        frame.resume = code.entry;
        frame.chain = nullptr;
        frame.at = code.code.data();
    }
    static bool isSelf(const Code& code, Value self)
    {
        const Object* object = self.asObject();
        return code.self == nullptr ||
               (object != nullptr && (object->traits() == code.self || object->traits()->isA(code.self)));
    }
    /// Begins a call of a method that the receiver has.
    /// @param raws a bit for each argument that is raw, counted from the receiver
    /// @returns whether its frame is the present one now; otherwise it is over
    [[gnu::noinline]] bool begin(MethodEnv& env, Value* window, std::uint32_t count, std::uint32_t raws,
                                 Value* result)
    {
        return beginAny<true>(env, window, count, raws, result, nullptr, nullptr);
    }
    /// The same of any function.
    [[gnu::noinline]] bool beginAs(MethodEnv& env, Value* window, std::uint32_t count, Object* callee,
                                   Value* result, Object* made)
    {
        return beginAny<false>(env, window, count, 0, result, callee, made);
    }
    template <bool knowsSelf>
    [[gnu::always_inline]] bool beginAny(MethodEnv& env, Value* window, std::uint32_t count,
                                         std::uint64_t raws, Value* result, Object* callee, Object* made)
    {
        return beginDirect<knowsSelf>(env, window, count, result, made, raws) ||
               beginOther(env, window, count, callee, result, made, raws);
    }
    /// Begins a call, where that is simple: of verified code that has all its arguments, of the right types.
    /// @param raws what they are then, when it is not that simple
    template <bool knowsSelf>
    [[gnu::always_inline]] bool beginDirect(MethodEnv& env, Value* window, std::uint32_t count, Value* result,
                                            Object* made, std::uint64_t& raws)
    {
        Code* const code = env.code;
        if (code == nullptr || count != code->directCount || m_frame == m_lastFrame ||
            window + code->registers > m_stackEnd) [[unlikely]]
            return false;
        if constexpr (!knowsSelf) {
            if (!isSelf(*code, *window)) [[unlikely]]
                return false;
        }
        if (raws != code->rawParameters && !adapt(*code, window, raws)) [[unlikely]]
            return false;
        if (code->checksTypes && !areOfTypes(*code, window)) [[unlikely]] {
            raws = code->rawParameters;
            return false;
        }
        m_vm.check();
        m_vm.m_calls.push_back(&env);
        Frame* const frame = m_frame + 1;
        m_frame = frame;
        fill(*frame, env, *code, window, count + 1);
        frame->result = result;
        frame->made = made;
        return true;
    }
    /// Of the arguments that are not raw.
    static bool areOfTypes(const Code& code, const Value* window)
    {
        Traits* const* const types = code.parameterTypes.data();
        for (std::uint32_t i = 0; i < code.declared; ++i) {
            if (types[i] == nullptr || (i < 63 && (code.rawParameters >> (i + 1) & 1U) != 0)) continue;
            if (!fitsType(window[i + 1], types[i])) return false;
        }
        return true;
    }
    /// Makes arguments raw, or boxed, as code wants them. @returns false when one is of another type: then
    /// all of them are boxed, and `raws` is 0
    static bool adapt(const Code& code, Value* window, std::uint64_t& raws);
    static void box(Value* window, std::uint64_t raws);
    /// Begins any call. @returns whether its frame is the present one now; otherwise it is over
    bool beginOther(MethodEnv& env, Value* window, std::uint32_t count, Object* callee, Value* result,
                    Object* made, std::uint64_t raws);
    static void unbox(const Code& code, Value* window)
    {
        for (std::uint32_t i = 1; i <= code.declared; ++i) {
            if ((code.rawParameters >> i & 1U) != 0) window[i] = rawValue(narrow(window[i].number()));
        }
    }
    /// Ends the present call. @returns false when nobody in here has made it
    bool leave(Value returned)
    {
        Frame* const ended = m_frame;
        if (ended == m_frames) return false;
        m_vm.m_calls.pop_back();
        --m_frame;
        m_vm.m_top = m_frame->locals + m_frame->code->registers;
        *ended->result = ended->made != nullptr ? Value(ended->made) : returned;
        return true;
    }
    /// Gives up calls until there is one that handles what was thrown. @returns false when there is none
    bool unwind();
    bool handles(Frame& frame);
    /// Takes the runtime parts off the stack.
    Multiname multiname(const Ins& ins, Value*& sp);
    Value find(const Multiname& name, const Ins& ins, bool strict);
    Value getCached(Value base, const Ins& ins);
    Value getOfString(Value text, const Multiname& name, SiteCache& cache);
    void setCached(Value base, const Ins& ins, Value value);
    /// @param window the receiver and the arguments
    Value callCached(const Ins& ins, Value* window, std::uint32_t count);
    /// The method that a call is found to mean; null when it is not that simple.
    MethodEnv* methodOf(const Frame& frame, const Ins& ins, Value receiver)
    {
        const SiteCache& cache = frame.code->caches[static_cast<std::size_t>(ins.cache)];
        if (receiver.isObject() && cache.traits == receiver.object()->traits() &&
            cache.binding.kind == Binding::Kind::Method) [[likely]]
            return cache.traits->methods[static_cast<std::size_t>(cache.binding.id)];
        return cacheMethod(ins, receiver);
    }
    MethodEnv* cacheMethod(const Ins& ins, Value receiver);
    Value constructCached(const Ins& ins, Value constructor, Value* window);
    Value getSlotOr(const Ins& ins, Value base);
    void setSlotOr(const Ins& ins, Value base, Value value, bool isTyped);
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

    static constexpr std::size_t kLevels = 16;
    Vm& m_vm;
    Interpreter* const m_outer;   ///< the one whose native called this one; null: none
    Value* const m_stackEnd;      ///< of the machine's
    Frame* m_frame = nullptr;     ///< the present one
    Frame* m_lastFrame = nullptr; ///< from which on calls are deep
    std::size_t m_calls = 0;      ///< of the machine, with the first frame
    Frame m_frames[kLevels];
};

} // namespace flash::avm2
