#include "flash/avm2/interpreter/Interpreter.h"
#include "flash/avm2/interpreter/Translator.h"
#include "flash/avm2/interpreter/Unit.h"

#include <algorithm>

namespace flash::avm2
{

namespace
{

constexpr std::size_t kDeepestCalls = 1000;
constexpr std::size_t kSpareCalls = 32;
constexpr std::uintptr_t kNativeBytesPerCall = 16384;
constexpr std::uintptr_t kMaxNativeStack = std::uintptr_t{5} << 20;

/// What `this` of a method is an instance of; null where it can be anything.
Traits* selfOf(const MethodEnv& env) { return env.role == MethodEnv::Role::Function ? nullptr : env.owner; }

} // namespace

void Vm::stackOverflow() { throwError(ErrorClass::Error, 1023, "Stack overflow occurred."); }

void Vm::wrongCount(int minimum, std::uint32_t given)
{
    throwError(ErrorClass::Argument, 1063,
               u"Argument count mismatch on " + callStack().front() + u". Expected " + numberText(minimum) +
                   u", got " + numberText(given) + u".");
}

void Vm::resolveTypes(Code& code, const MethodEnv& env)
{
    const abc::MethodInfo& info = env.info();
    // This may run scripts: the lists are changed at the end.
    RootedList<Traits*> types(m_heap);
    for (const std::uint32_t type : info.parameterTypes) types.push_back(env.unit->type(*this, type));
    code.returnType = env.unit->type(*this, info.returnType);
    if (code.returnType == m_classes.voidType) code.returnType = nullptr;
    code.parameterTypes = *types;
    code.declared = static_cast<std::uint32_t>(info.parameterTypes.size());
    code.minArguments = code.declared - static_cast<std::uint32_t>(
                                            std::min<std::size_t>(info.optionals.size(), code.declared));
    code.takesMore = (info.flags & (abc::MethodInfo::NeedRest | abc::MethodInfo::NeedArguments)) != 0;
    code.isUnchecked = env.role == MethodEnv::Role::Function && info.optionals.empty() &&
                       std::ranges::all_of(code.parameterTypes, [](auto* type) { return type == nullptr; });
}

Code* Vm::verified(MethodEnv& env)
{
    const abc::MethodInfo& info = env.info();
    if (info.body < 0) throwError(ErrorClass::Verify, 1001, "The method is not implemented.");
    Traits* self = selfOf(env);
    const auto fits = [&](const Code* code) {
        return code != nullptr && code->self == self &&
               (code->isFunction == (env.role == MethodEnv::Role::Function));
    };
    if (Code* known = env.unit->codeOf(env.method); fits(known)) {
        env.code = known;
        return known;
    }
    auto* code = m_heap.make<Code>();
    const Root<Code> kept(m_heap, code);
    code->self = self;
    code->isFunction = env.role == MethodEnv::Role::Function;
    Decoded decoded;
    const VerifyFault fault = verify(*env.unit, static_cast<std::uint32_t>(info.body), *code, decoded);
    if (fault.number != 0) throwError(ErrorClass::Verify, fault.number, fromUtf8(fault.text));
    resolveTypes(*code, env);
    if ((info.flags & abc::MethodInfo::NeedActivation) != 0) makeActivation(*code, env.scope);
    Translator(*this, decoded, *code).run();
    env.unit->codeOf(env.method) = code;
    env.code = code;
    return code;
}

Value Vm::invoke(MethodEnv& env, Value self, std::span<const Value> args, Object* callee)
{
    // The arguments may lie in a list that goes away meanwhile.
    struct Release {
        Value*& top;
        Value* base;
        ~Release() { top = base; }
    } release{m_top, m_top};
    Value* const window = m_top;
    if (static_cast<std::size_t>(m_stack.get() + kStackValues - window) < args.size() + 1) stackOverflow();
    window[0] = self;
    std::ranges::copy(args, window + 1);
    m_top = window + args.size() + 1;
    m_highest = std::max(m_highest, m_top);
    return enter(env, window, static_cast<std::uint32_t>(args.size()), callee);
}

Value Vm::enter(MethodEnv& env, Value* window, std::uint32_t count, Object* callee)
{
    check();
    if (m_calls.empty()) {
        m_startedMs = m_host.realTimeMs();
        m_stackBase = reinterpret_cast<std::uintptr_t>(__builtin_frame_address(0));
    }
    // Making the error that says so takes some calls itself: a few more are allowed meanwhile.
    const std::size_t spare = static_cast<std::size_t>(m_depth) * kSpareCalls;
    if (m_calls.size() >= kDeepestCalls + spare ||
        m_stackBase - reinterpret_cast<std::uintptr_t>(__builtin_frame_address(0)) >
            kMaxNativeStack + spare * kNativeBytesPerCall) [[unlikely]] {
        struct Spare {
            int& depth;
            explicit Spare(int& depth) : depth(depth) { ++depth; }
            ~Spare() { --depth; }
        } more(m_depth);
        if (m_depth > 1) throw ScriptAborted{};
        stackOverflow();
    }
    struct Level {
        TracedList<MethodEnv*>& calls;
        Level(TracedList<MethodEnv*>& calls, MethodEnv* env) : calls(calls) { calls.push_back(env); }
        ~Level() { calls.pop_back(); }
    } level(m_calls, &env);
    if (env.native == nullptr) return runFrame(env, window, count, callee);
    if (static_cast<int>(count) < env.minArguments ||
        (env.maxArguments >= 0 && static_cast<int>(count) > env.maxArguments))
        wrongCount(env.minArguments, count);
    Call call{*this, window[0], window + 1, count, callee};
    return env.native(call);
}

Value Vm::callInPlace(Value function, Value* window, std::uint32_t count)
{
    if (auto* closure = as<FunctionObject>(function)) {
        if (closure->isBound()) {
            window[0] = closure->boundTo();
        } else if (window[0].isNullish()) {
            const ScopeChain* scope = closure->env()->scope;
            Object* global = scope != nullptr ? scope->global : nullptr;
            window[0] = global != nullptr ? Value(global) : Value(nativeGlobal());
        }
        return enter(*closure->env(), window, count, closure);
    }
    return call(function, window[0], std::span<const Value>(window + 1, count));
}

Value Vm::constructInPlace(Value constructor, Value* window, std::uint32_t count)
{
    auto* cls = as<ClassObject>(constructor);
    if (cls == nullptr || !cls->isPlain())
        return construct(constructor, std::span<const Value>(window + 1, count));
    Object* const made = instantiate(cls);
    window[0] = made;
    if (cls->constructor != nullptr) enter(*cls->constructor, window, count, cls);
    return made;
}

Value Vm::runFrame(MethodEnv& env, Value* window, std::uint32_t given, Object* callee)
{
    Code* const code = env.code != nullptr ? env.code : verified(env);
    const std::uint32_t declared = code->declared;
    if ((given < code->minArguments || (given > declared && !code->takesMore)) && !code->isUnchecked)
        wrongCount(static_cast<int>(code->minArguments), given);
    const std::size_t size = code->frameSize();
    if (static_cast<std::size_t>(m_stack.get() + kStackValues - window) <
        std::max<std::size_t>(size, given + 1))
        stackOverflow();
    Value more;
    if (code->takesMore) [[unlikely]] {
        const std::span<const Value> args(window + 1, given);
        if ((env.info().flags & abc::MethodInfo::NeedRest) != 0) {
            more = newArray(given > declared ? args.subspan(declared) : std::span<const Value>());
        } else {
            Object* arguments = newArray(args);
            arguments->table().set(m_common.callee,
                                   callee != nullptr
                                       ? Value(callee)
                                       : Value(m_heap.make<FunctionObject>(*this, &env, window[0])));
            arguments->table().setHidden(m_common.callee, true);
            more = arguments;
        }
    }
    if (code->self != nullptr) {
        Object* self = window[0].asObject();
        if (self == nullptr || (self->traits() != code->self && !self->traits()->isA(code->self)))
            throwError(ErrorClass::Verify, 1035, "Illegal super expression found in method.");
    }
    struct Release {
        Value*& top;
        Value* base;
        ~Release() { top = base; }
    } release{m_top, m_top};
    m_top = window + size;
    m_highest = std::max(m_highest, m_top);
    for (std::uint32_t i = 0; i < declared; ++i) {
        Value value;
        if (i < given)
            value = window[i + 1];
        else if (i >= code->minArguments)
            value = env.unit->constant(*this, env.info().optionals[i - code->minArguments]);
        Traits* type = code->parameterTypes[i];
        if (type == nullptr || fitsType(value, type))
            window[i + 1] = value;
        else
            window[i + 1] = coerce(value, type);
    }
    std::uint32_t used = declared + 1;
    if (code->takesMore) window[used++] = more;
    for (Value* at = window + used; at < window + code->stackBase(); ++at) *at = Value();

    Frame frame;
    frame.env = &env;
    frame.code = code;
    frame.unit = env.unit;
    frame.locals = window;
    frame.scopes = window + code->locals;
    frame.stack = window + code->stackBase();
    Interpreter interpreter(*this, frame);
    const std::size_t depth = m_calls.size();
    for (;;) {
        try {
            return interpreter.run();
        } catch (const ScriptThrow&) {
            while (m_calls.size() > depth) m_calls.pop_back();
            m_top = window + size;
            const auto at = static_cast<std::uint32_t>(frame.at - code->code.data());
            const Code::Handler* found = nullptr;
            const Value thrown = m_thrown;
            for (const Code::Handler& handler : code->handlers) {
                if (at < handler.from || at >= handler.to) continue;
                if (handler.type != 0 && !isType(thrown, env.unit->type(*this, handler.type))) continue;
                found = &handler;
                break;
            }
            if (found == nullptr) throw;
            m_thrown = {};
            std::fill(frame.scopes, window + size, Value());
            frame.scopeCount = 0;
            frame.withMask = 0;
            frame.chain = nullptr;
            frame.stack[0] = thrown;
            frame.resume = found->target;
        }
    }
}

} // namespace flash::avm2
