// What a name with arguments stands for when it is called: a procedure, a function of the language, an array,
// an object, a text to be executed.

#include "script/vbscript/Engine.h"
#include "script/vbscript/Errors.h"
#include "script/vbscript/Reference.h"

namespace script::vbscript
{

namespace
{

constexpr std::size_t kLongText = 1024; // characters that are about as much work as a step

} // namespace

Failed Engine::named(Failed failed, Symbol name) const
{
    return withSubject(std::move(failed), m_names.spelling(name));
}

void Engine::finishCall(Value* result, Value value)
{
    dropTo(result);
    push(std::move(value));
}

Result<void> Engine::callGlobal(Symbol name, std::size_t count, std::uint8_t flags)
{
    Global& found = *m_globals[name];
    switch (found.kind) {
    case Global::Kind::Procedure: return pushFrame(*found.function, count, m_sp - count, nullptr, false);
    case Global::Kind::Intrinsic:
        if (!found.intrinsic->takes(count)) {
            // Left by itself cannot mean the function; the window's Left it may.
            const auto [host, id] = hostMember(name);
            if (host) return callHost(*host, id, name, count, flags);
        }
        return callIntrinsic(*found.intrinsic, count);
    case Global::Kind::Variable:
    case Global::Kind::Constant:
    case Global::Kind::HostObject: return callVariable(found.value, name, count, flags, m_sp - count);
    case Global::Kind::HostMember: {
        const Ref<Dispatch> host(found.value.asObject());
        return callHost(*host, found.member, name, count, flags);
    }
    case Global::Kind::Undefined:
        if (Value* declared = declaredHere(name))
            return callVariable(*declared, name, count, flags, m_sp - count);
        if (resolveHostMember(name, found)) return callGlobal(name, count, flags);
        if (frame().function->optionExplicit) return fault(error::kUndefinedVariable, m_names.spelling(name));
        break;
    case Global::Kind::Class: break;
    }
    return fault(error::kTypeMismatch, m_names.spelling(name));
}

Result<void> Engine::callHost(Dispatch& host, Dispatch::MemberId member, Symbol name, std::size_t count,
                              std::uint8_t flags)
{
    auto called = callDispatch(host, member, count, flags, m_sp - count);
    if (!called) return named(Failed(std::move(called).error()), name);
    return {};
}

Result<void> Engine::callIntrinsic(const Intrinsic& intrinsic, std::size_t count)
{
    if (!intrinsic.takes(count)) return fault(error::kWrongArguments, intrinsic.name);
    Value* arguments = m_sp - count;
    for (std::size_t i = 0; i < count; ++i) {
        dereference(arguments[i]);
        if (arguments[i].isString() && arguments[i].text().size() > kLongText)
            spend(arguments[i].text().size() / kLongText);
        if (intrinsic.kind != Intrinsic::Kind::Raw && arguments[i].isObject()) {
            Value value = TRY_RESULT(plain(arguments[i]));
            arguments[i] = std::move(value);
        }
    }
    if (intrinsic.kind >= Intrinsic::Kind::Eval) return executeText(intrinsic.kind);
    auto result = intrinsic.call(*this, std::span<Value>(arguments, count));
    if (!result) {
        // A function names itself rather than the value that it could not use.
        auto failed = Failed(std::move(result).error());
        if (!failed.value()->subject.empty() && failed.value()->subject.front() == u'[')
            failed.value()->subject.clear();
        return withSubject(std::move(failed), intrinsic.name);
    }
    finishCall(arguments, std::move(*result));
    return {};
}

// What a text executed now sees: the frame of a text lies right above the one it was executed in.
Surroundings Engine::surroundings() const
{
    Surroundings found;
    std::size_t at = m_frames.size() - 1;
    if (m_frames[at].function->isMain && !m_frames[at].function->seesLocals) return found;
    found.functions.push_back(m_frames[at].function);
    while (m_frames[at].function->seesLocals) found.functions.push_back(m_frames[--at].function);
    if (m_frames[at].extras) found.declared = &m_frames[at].extras->declared;
    return found;
}

// Eval, Execute and ExecuteGlobal: the text becomes a frame above the current one, whose locals it sees.
Result<void> Engine::executeText(Intrinsic::Kind kind)
{
    if (!m_sp[-1].isString()) {
        // Eval of a number is that number.
        if (kind == Intrinsic::Kind::Eval) return {};
        return fault(error::kTypeMismatch);
    }
    const Value source = m_sp[-1];
    Surroundings around;
    if (kind != Intrinsic::Kind::ExecuteGlobal) around = surroundings();
    if (around.functions.size() >= kMaxNestedTexts) return fault(error::kOutOfStack);
    auto program = TRY_RESULT(compileText(source.text(), kind == Intrinsic::Kind::Eval, around));
    CHECK_RESULT(define(*program));
    Function& main = *program->main;
    const std::size_t outer = m_frames.size() - 1;
    drop(1);
    CHECK_RESULT(pushFrame(main, 0, m_sp,
                           kind == Intrinsic::Kind::ExecuteGlobal ? nullptr : m_frames[outer].me, false));
    for (const Capture& capture : main.captures) {
        Value* target = nullptr;
        if (capture.outerSlot >= 0) {
            target = m_frames[outer - capture.depth].locals + capture.outerSlot;
        } else {
            auto& extras = m_frames[outer - capture.depth].extras;
            if (!extras) extras = std::make_unique<FrameExtras>();
            if (capture.declared) extras->declared.insert(capture.name);
            auto& variable = extras->variables[capture.name];
            if (!variable) variable = std::make_unique<Value>();
            target = variable.get();
        }
        frame().locals[capture.slot] = target->isReference() ? *target : Value::reference(target);
    }
    if (program->isLasting()) {
        m_programs.push_back(std::move(program));
    } else {
        frame().extras = std::make_unique<FrameExtras>();
        frame().extras->program = std::move(program);
    }
    return {};
}

Result<void> Engine::callVariable(Value& callee, Symbol name, std::size_t count, std::uint8_t flags,
                                  Value* result)
{
    Value& value = callee.resolved();
    if (value.isArray() && count > 0) {
        const bool reference = (flags & kWantReference) != 0;
        Array* array = reference ? value.writableArray() : value.asArray();
        auto found = element(*array, m_sp - count, count);
        if (!found) return named(Failed(std::move(found).error()), name);
        finishCall(result, reference ? Value::elementReference(array, *found) : **found);
        return {};
    }
    if (value.isObject()) {
        if (!value.asObject()) return fault(error::kObjectNotSet, m_names.spelling(name));
        const Ref<Dispatch> object(value.asObject());
        auto called = callDefault(*object, count, flags, result);
        if (!called) return named(Failed(std::move(called).error()), name);
        return {};
    }
    return fault(error::kTypeMismatch, m_names.spelling(name));
}

// object(arguments): what the object itself stands for.
Result<void> Engine::callDefault(Dispatch& object, std::size_t count, std::uint8_t flags, Value* result)
{
    if (object.kind() == Dispatch::Kind::FunctionReference) {
        Function& function = *static_cast<FunctionReference&>(object).function;
        return pushFrame(function, count, result, nullptr, false);
    }
    if (object.kind() == Dispatch::Kind::Instance) {
        auto& instance = static_cast<Instance&>(object);
        if (const auto name = instance.info->defaultMember) {
            const ClassMember& member = instance.info->members.find(*name)->second;
            return callInstance(instance, member, count, flags, result);
        }
    }
    return callDispatch(object, Dispatch::kDefaultMember, count, flags, result);
}

// Objects of the host see values; what one of them may change is written back afterwards.
Result<void> Engine::callDispatch(Dispatch& object, Dispatch::MemberId id, std::size_t count,
                                  std::uint8_t flags, Value* result)
{
    Value* arguments = m_sp - count;
    const bool writes = count > 0 && object.writesArguments(id);
    std::vector<Value> references;
    if (writes) references.assign(arguments, m_sp);
    dereference(arguments, count);
    const auto access = (flags & kStatementCall) != 0 ? Dispatch::Access::Call : Dispatch::Access::GetOrCall;
    auto value = TRY_RESULT(
        writes ? object.invokeByReference(m_locale->id, id, access, std::span<Value>(arguments, count))
               : object.invokeIn(m_locale->id, id, access, Arguments(arguments, count)));
    for (std::size_t i = 0; i < references.size(); ++i) {
        if (references[i].isReference())
            CHECK_RESULT(store(references[i], std::move(arguments[i]), kPreserve));
    }
    finishCall(result, std::move(value));
    return {};
}

} // namespace script::vbscript
