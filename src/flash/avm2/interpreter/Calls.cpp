#include "flash/avm2/interpreter/Interpreter.h"
#include "flash/avm2/interpreter/Translator.h"
#include "flash/avm2/interpreter/Unit.h"

#include <algorithm>

namespace flash::avm2
{

namespace
{

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
    if (const VerifyFault wrong = verifyTypes(*this, env, *code, decoded); wrong.number != 0)
        throwError(ErrorClass::Verify, wrong.number, fromUtf8(wrong.text));
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
    if (m_calls.size() >= Interpreter::kDeepestCalls + spare ||
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
        std::size_t before;
        Level(TracedList<MethodEnv*>& calls, MethodEnv* env) : calls(calls), before(calls.size())
        {
            calls.push_back(env);
        }
        // Where an error ends it, those of the interpreter's frames are there still.
        ~Level() { calls.resize(before); }
    } level(m_calls, &env);
    if (env.native == nullptr) return runFrame(env, window, count, callee);
    if (static_cast<int>(count) < env.minArguments ||
        (env.maxArguments >= 0 && static_cast<int>(count) > env.maxArguments))
        wrongCount(env.minArguments, count);
    if (env.signature != nullptr) convertArguments(env, {window + 1, count});
    Call call{*this, window[0], window + 1, count, callee};
    return env.native(call);
}

Value Vm::callInPlace(Value function, Value* window, std::uint32_t count)
{
    if (auto* closure = as<FunctionObject>(function)) {
        Interpreter::bindReceiver(*this, *closure, window[0]);
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
    struct Release {
        Value*& top;
        Value* base;
        ~Release() { top = base; }
    } release{m_top, m_top};
    Interpreter interpreter(*this);
    return interpreter.execute(env, window, given, callee);
}

} // namespace flash::avm2
