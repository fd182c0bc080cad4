#include "flash/avm2/interpreter/Interpreter.h"
#include "flash/avm2/interpreter/Unit.h"

#include <algorithm>
#include <bit>

// Frames: how they begin, how they end, and what becomes of them when something is thrown.
namespace flash::avm2
{

namespace
{

bool isInitializer(const MethodEnv& env)
{
    return env.role == MethodEnv::Role::StaticInit || env.role == MethodEnv::Role::ScriptInit;
}

} // namespace

Value Interpreter::execute(MethodEnv& env, Value* window, std::uint32_t given, Object* callee)
{
    m_calls = m_vm.m_calls.size();
    // What a function says of the names in XML holds as long as it runs; what a class or a script says, for
    // good.
    struct Restore {
        Namespace*& place;
        Namespace* before;
        ~Restore()
        {
            if (before != nullptr) place = before;
        }
    } restore{m_vm.defaultXmlNs, isInitializer(env) ? nullptr : m_vm.defaultXmlNs};
    m_lastFrame = m_frames + std::min(kLevels - 1, kDeepestCalls - std::min(m_calls, kDeepestCalls));
    open(m_frames[0], env, window, given, callee);
    m_frame = m_frames;
    for (bool isResumed = false;; isResumed = true) {
        try {
            // A loop that throws each time around never comes to the checks of its jumps.
            if (isResumed) m_vm.check();
            return run();
        } catch (const ScriptThrow&) {
            if (!unwind()) throw;
        }
    }
}

void Interpreter::forgetEnded()
{
    for (Interpreter* each = this; each != nullptr; each = each->m_outer) {
        Frame* const first = each->m_frame == nullptr ? each->m_frames : each->m_frame + 1;
        std::fill(first, std::end(each->m_frames), Frame{});
    }
}

void Interpreter::bindReceiver(Vm& vm, const FunctionObject& closure, Value& receiver)
{
    if (closure.isBound()) {
        receiver = closure.boundTo();
    } else if (receiver.isNullish()) {
        const ScopeChain* scope = closure.env()->scope;
        Object* global = scope != nullptr ? scope->global : nullptr;
        receiver = global != nullptr ? Value(global) : Value(vm.nativeGlobal());
    }
}

/// Sees to the arguments: their number, their types, the rest of them. May run script.
void Interpreter::open(Frame& frame, MethodEnv& env, Value* window, std::uint32_t given, Object* callee)
{
    Vm& vm = m_vm;
    Code* const code = env.code != nullptr ? env.code : vm.verified(env);
    const std::uint32_t declared = code->declared;
    if ((given < code->minArguments || (given > declared && !code->takesMore)) && !code->isUnchecked)
        vm.wrongCount(static_cast<int>(code->minArguments), given);
    const std::size_t size = code->frameSize();
    if (static_cast<std::size_t>(vm.m_stack.get() + Vm::kStackValues - window) <
        std::max<std::size_t>(size, given + 1))
        vm.stackOverflow();
    Value more;
    if (code->takesMore) [[unlikely]] {
        const std::span<const Value> args(window + 1, given);
        if ((env.info().flags & abc::MethodInfo::NeedRest) != 0) {
            more = vm.newArray(given > declared ? args.subspan(declared) : std::span<const Value>());
        } else {
            Object* arguments = vm.newArray(args);
            const Value own = callee != nullptr ? Value(callee)
                                                : Value(vm.heap().make<FunctionObject>(vm, &env, window[0]));
            arguments->table().set(vm.common().callee, own);
            arguments->table().setHidden(vm.common().callee, true);
            more = arguments;
        }
    }
    if (!isSelf(*code, window[0]))
        vm.throwError(ErrorClass::Verify, 1035, "Illegal super expression found in method.");
    vm.m_top = window + size;
    vm.m_highest = std::max(vm.m_highest, vm.m_top);
    for (std::uint32_t i = 0; i < declared; ++i) {
        Value value;
        if (i < given)
            value = window[i + 1];
        else if (i >= code->minArguments)
            value = env.unit->constant(vm, env.info().optionals[i - code->minArguments]);
        Traits* type = code->parameterTypes[i];
        if (type == nullptr || fitsType(value, type))
            window[i + 1] = value;
        else
            window[i + 1] = vm.coerce(value, type);
    }
    std::uint32_t used = declared + 1;
    if (code->takesMore) window[used++] = more;
    if (code->rawParameters != 0) unbox(*code, window);
    fill(frame, env, *code, window, used);
    frame.result = nullptr;
    frame.made = nullptr;
}

void Interpreter::box(Value* window, std::uint64_t raws)
{
    for (; raws != 0; raws &= raws - 1) {
        Value& value = window[std::countr_zero(raws)];
        value = static_cast<std::int32_t>(value.bits());
    }
}

bool Interpreter::adapt(const Code& code, Value* window, std::uint64_t& raws)
{
    box(window, raws);
    raws = 0;
    for (std::uint64_t left = code.rawParameters; left != 0; left &= left - 1) {
        const auto i = static_cast<std::size_t>(std::countr_zero(left));
        if (!fitsType(window[i], code.parameterTypes[i - 1])) return false;
    }
    unbox(code, window);
    raws = code.rawParameters;
    return true;
}

/// Natives, calls that are not as simple as most, and those that go too deep.
bool Interpreter::beginOther(MethodEnv& env, Value* window, std::uint32_t count, Object* callee,
                             Value* result, Object* made, std::uint64_t raws)
{
    Vm& vm = m_vm;
    box(window, raws);
    if (env.native == nullptr &&
        (m_frame == m_lastFrame || (env.info().flags & abc::MethodInfo::SetDxns) != 0)) {
        const Value value = vm.enter(env, window, count, callee);
        *result = made != nullptr ? Value(made) : value;
        return false;
    }
    if (env.code != nullptr && env.code->slotRead >= 0 && count == 0) {
        const Object* const self = window->asObject();
        const auto slot = static_cast<std::uint32_t>(env.code->slotRead);
        if (self != nullptr && slot < self->slotCount() && made == nullptr) {
            *result = self->slot(slot);
            return false;
        }
    }
    vm.check();
    vm.m_calls.push_back(&env);
    if (env.native != nullptr) {
        if (static_cast<int>(count) < env.minArguments ||
            (env.maxArguments >= 0 && static_cast<int>(count) > env.maxArguments))
            vm.wrongCount(env.minArguments, count);
        if (env.signature != nullptr) vm.convertArguments(env, {window + 1, count});
        Call call{vm, window[0], window + 1, count, callee};
        const Value value = env.native(call);
        vm.m_calls.pop_back();
        *result = made != nullptr ? Value(made) : value;
        return false;
    }
    Frame* const frame = m_frame + 1;
    open(*frame, env, window, count, callee);
    frame->result = result;
    frame->made = made;
    m_frame = frame;
    return true;
}

bool Interpreter::unwind()
{
    for (;; --m_frame) {
        m_vm.m_calls.resize(m_calls + static_cast<std::size_t>(m_frame - m_frames));
        m_vm.m_top = m_frame->locals + m_frame->code->frameSize();
        if (handles(*m_frame)) return true;
        if (m_frame == m_frames) return false;
    }
}

bool Interpreter::handles(Frame& frame)
{
    const Code& code = *frame.code;
    const auto at = static_cast<std::uint32_t>(frame.at - code.code.data());
    const Value thrown = m_vm.m_thrown;
    const auto fits = [&](const Code::Handler& handler) {
        if (at < handler.from || at >= handler.to) return false;
        return handler.type == 0 || m_vm.isType(thrown, frame.unit->type(m_vm, handler.type));
    };
    const Code::Handler* found = nullptr;
    try {
        for (const Code::Handler& handler : code.handlers) {
            if (!fits(handler)) continue;
            found = &handler;
            break;
        }
    } catch (const ScriptThrow&) {
        return false; // a type that cannot be found: that is what is thrown from here on
    }
    if (found == nullptr) return false;
    m_vm.m_thrown = {};
    std::fill(frame.scopes, frame.locals + code.frameSize(), Value());
    frame.scopeCount = 0;
    frame.withMask = 0;
    frame.chain = nullptr;
    frame.stack[0] = thrown;
    frame.resume = found->target;
    return true;
}

} // namespace flash::avm2
