#include "script/vbscript/Convert.h"
#include "script/vbscript/Engine.h"
#include "script/vbscript/Errors.h"

#include <algorithm>

namespace script::vbscript
{

namespace
{

// A time slice counts for no more than this: what lies beyond was spent waiting in the host (a dialog).
constexpr auto kLongestSlice = std::chrono::milliseconds(250);

constexpr std::size_t kLongText = 1024; // characters that are about as much work as a step

} // namespace

Failed Engine::named(Failed failed, Symbol name) const
{
    return withSubject(std::move(failed), m_names.spelling(name));
}

// ---- frames

Result<void> Engine::pushFrame(Function& function, std::size_t count, Value* result, Ref<Instance> me,
                               bool discards)
{
    if (count != function.byReference.size())
        return fault(error::kWrongArguments, m_names.spelling(function.name));
    Value* locals = m_sp - count;
    const std::size_t need = function.slots + function.maxStack + kSpareValues;
    const auto used = static_cast<std::size_t>(locals - m_stack.get());
    if (m_frames.size() >= kMaxFrames || used + need > kStackValues) {
        return fault(error::kOutOfStack, m_names.spelling(function.name));
    }
    for (std::size_t i = 0; i < count; ++i) {
        if (locals[i].isReference() && function.byReference[i] == 0) {
            Value copy = locals[i].resolved();
            locals[i] = std::move(copy);
        }
    }
    for (Value* end = locals + function.slots; m_sp < end; ++m_sp) new (m_sp) Value();
    --m_ticks;
    Frame& made = m_frames.emplace_back();
    made.function = &function;
    made.next = function.code.data();
    made.locals = locals;
    made.result = result;
    made.me = std::move(me);
    made.discards = discards;
    return {};
}

void Engine::popFrame()
{
    // What the frame held may run code when it is freed; it goes last.
    Frame& top = m_frames.back();
    Value* result = top.result;
    const Ref<Instance> me = std::move(top.me);
    const auto extras = std::move(top.extras);
    if (top.isTermination) {
        m_waiting = top.waiting;
        if (mustTerminate()) park();
    }
    m_frames.pop_back();
    dropTo(result);
}

Result<Value> Engine::call(Function& function, Instance* me, Arguments arguments)
{
    if (m_nestedRuns >= kMaxNestedRuns || m_tornDown)
        return fault(error::kOutOfStack, m_names.spelling(function.name));
    if (arguments.size() + static_cast<std::size_t>(m_sp - m_stack.get()) + kSpareValues > kStackValues)
        return fault(error::kOutOfStack);
    Value* bottom = m_sp;
    for (const Value& argument : arguments) push(argument.resolved());
    if (auto pushed = pushFrame(function, arguments.size(), bottom, Ref<Instance>(me), false); !pushed) {
        dropTo(bottom);
        return Failed(std::move(pushed).error());
    }
    frame().isBoundary = true;
    return run();
}

Result<Value> Engine::runProgram(std::unique_ptr<Program> program)
{
    CHECK_RESULT(define(*program));
    Function& main = *program->main;
    const bool lasts = program->isLasting();
    if (lasts) m_programs.push_back(std::move(program));
    return call(main, nullptr, {});
}

void Engine::becameUnreachable(Instance& instance)
{
    if (m_tornDown) return;
    m_dying.emplace_back(&instance);
    park();
}

// Has the machine look up from its work after this instruction.
void Engine::park()
{
    if (m_isParked) return;
    m_isParked = true;
    m_ticksAside = std::exchange(m_ticks, -1);
}

// Work that is worth so many steps, so that the clock is looked at in time.
void Engine::spend(std::size_t steps)
{
    int& left = m_isParked ? m_ticksAside : m_ticks;
    left -= static_cast<int>(std::min(steps, static_cast<std::size_t>(kTicksBetweenChecks)));
}

// Outside of any call. Counts as one call, so that objects which make new ones when they end run out of time.
bool Engine::runTerminations()
{
    if (m_dying.empty() || m_nestedRuns > 0) return true;
    ++m_nestedRuns;
    m_used = {};
    m_lastCheck = std::chrono::steady_clock::now();
    bool inTime = true;
    while (!m_dying.empty() && inTime) {
        const Ref<Instance> instance = std::move(m_dying.front());
        m_dying.pop_front();
        m_waiting = m_dying.size();
        // There is nobody to report an error to.
        const auto ended = call(*instance->info->terminate, instance.get(), {});
        inTime = ended || !ended.error()->uncatchable;
        m_waiting = 0;
    }
    --m_nestedRuns;
    while (!m_dying.empty()) m_dying.pop_front();
    return inTime;
}

// Class_Terminate runs as soon as the instruction that released the object is done. What does not fit on the
// stack now is tried again later. Objects that wait already do so until this one has ended, so that their
// number does not become the depth of the stack; those that it releases itself come at once.
bool Engine::beginTermination()
{
    const auto first = m_dying.begin() + static_cast<std::ptrdiff_t>(m_waiting);
    const Ref<Instance> instance = *first;
    if (!pushFrame(*instance->info->terminate, 0, m_sp, instance, true)) return false;
    m_dying.erase(first);
    frame().isTermination = true;
    frame().waiting = std::exchange(m_waiting, m_dying.size());
    return true;
}

// Every now and then between two instructions: time, memory and the ends of objects.
Result<void> Engine::attend()
{
    if (std::exchange(m_isParked, false)) m_ticks = m_ticksAside;
    const bool isDue = m_ticks < 0;
    if (isDue) m_ticks = kTicksBetweenChecks;
    if (mustTerminate() && !beginTermination()) park();
    if (!isDue) return {};
    m_steps += kTicksBetweenChecks;
    if (m_limits.steps != 0 && m_steps > m_limits.steps) {
        auto failed = fault(error::kInterrupted);
        failed.value()->uncatchable = true;
        return failed;
    }
    CHECK_RESULT(reserve(0));
    return checkTime();
}

Result<void> Engine::checkTime()
{
    const auto now = std::chrono::steady_clock::now();
    m_used += std::min<std::chrono::steady_clock::duration>(now - m_lastCheck, kLongestSlice);
    m_lastCheck = now;
    if (m_limits.timeout.count() == 0 || m_used <= m_limits.timeout) return {};
    if (m_host.continueAfterTimeout()) {
        m_used = {};
        return {};
    }
    auto failed = fault(error::kInterrupted);
    failed.value()->uncatchable = true;
    return failed;
}

void Engine::finishCall(Value* result, Value value)
{
    dropTo(result);
    push(std::move(value));
}

// ---- calls by name

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
        if (arguments[i].isReference()) {
            Value copy = arguments[i].resolved();
            arguments[i] = std::move(copy);
        }
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
    dropReferences(arguments, count);
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

void Engine::dropReferences(Value* arguments, std::size_t count)
{
    for (; count > 0; --count, ++arguments) {
        if (!arguments->isReference()) continue;
        Value copy = arguments->resolved();
        *arguments = std::move(copy);
    }
}

// ---- members

std::u16string Engine::siteText(const MemberSite& site)
{
    const std::u16string& member = m_names.spelling(site.name);
    return site.object ? m_names.spelling(*site.object) + u"." + member : member;
}

Result<Dispatch*> Engine::objectOf(const Value& value, const MemberSite& site)
{
    const Value& resolved = value.resolved();
    const std::u16string subject = site.object ? m_names.spelling(*site.object) : std::u16string();
    if (!resolved.isObject()) {
        if (!subject.empty()) return fault(error::kObjectRequired, subject);
        return fault(error::kObjectRequired,
                     resolved.isEmpty() ? m_names.spelling(site.name) : quoted(resolved));
    }
    if (!resolved.asObject()) return fault(error::kObjectNotSet, subject);
    return resolved.asObject();
}

Result<const ClassMember*> Engine::instanceMember(Instance& object, MemberSite& site)
{
    if (site.layout != object.info) {
        const auto found = object.info->members.find(site.name);
        if (found == object.info->members.end()) return fault(error::kNoSuchMember, siteText(site));
        site.layout = object.info;
        site.member = &found->second;
    }
    return site.member;
}

// The number of the site's member, which is asked for once for objects of one layout.
Result<void> Engine::findMember(const Dispatch& object, MemberSite& site)
{
    const void* layout = object.layout();
    if (layout && layout == site.layout) return {};
    const auto id = object.memberId(m_names.spelling(site.name));
    if (!id) return fault(error::kNoSuchMember, siteText(site));
    site.id = *id;
    site.layout = layout;
    return {};
}

Result<void> Engine::callMember(MemberSite& site, std::size_t count, std::uint8_t flags)
{
    Value* bottom = m_sp - count - 1;
    const Value& holder = bottom->resolved();
    if (!holder.isObject() || !holder.asObject()) {
        auto failed = objectOf(holder, site);
        return Failed(std::move(failed).error());
    }
    const Ref<Dispatch> object(holder.asObject());
    Result<void> called;
    if (object->kind() == Dispatch::Kind::Instance) {
        auto& instance = static_cast<Instance&>(*object);
        const ClassMember* member = TRY_RESULT(instanceMember(instance, site));
        called = callInstance(instance, *member, count, flags, bottom);
    } else {
        CHECK_RESULT(findMember(*object, site));
        called = callDispatch(*object, site.id, count, flags, bottom);
    }
    if (!called) return withSubject(Failed(std::move(called).error()), siteText(site));
    return {};
}

Result<void> Engine::callInstance(Instance& object, const ClassMember& member, std::size_t count,
                                  std::uint8_t flags, Value* result)
{
    const bool inside = frame().function->owner == object.info;
    if (member.field >= 0) {
        Value& field = object.fields[static_cast<std::size_t>(member.field)];
        const Symbol name = object.info->fields[static_cast<std::size_t>(member.field)].name;
        if (member.isPrivate && !inside) return fault(error::kNoSuchMember, m_names.spelling(name));
        if (count > 0) return callVariable(field, name, count, flags, result);
        finishCall(result, field);
        return {};
    }
    Function* function = member.call ? member.call : member.get;
    if (!function || (function->isPrivate && !inside)) return fault(error::kNoSuchMember);
    if (function == member.get && function->byReference.empty() && count > 0) {
        // The arguments index what the property answers.
        Value answer = TRY_RESULT(call(*function, &object, {}));
        return callVariable(answer, function->name, count, flags, result);
    }
    return pushFrame(*function, count, result, Ref<Instance>(&object), false);
}

// object, arguments..., value ->; what lies from `bottom` on goes as well
Result<void> Engine::putMember(MemberSite& site, std::size_t count, std::uint8_t flags, Value* bottom)
{
    Value* holder = m_sp - count - 2;
    Dispatch* found = TRY_RESULT(objectOf(*holder, site));
    const Ref<Dispatch> object(found);
    if (object->kind() == Dispatch::Kind::Instance) {
        auto& instance = static_cast<Instance&>(*object);
        const ClassMember* member = TRY_RESULT(instanceMember(instance, site));
        return putInstance(instance, *member, site.name, count, flags, bottom);
    }
    CHECK_RESULT(findMember(*object, site));
    dropReferences(holder + 1, count + 1);
    const bool isSet = (flags & kSet) != 0;
    if (isSet && !m_sp[-1].isObject()) return fault(error::kObjectRequired);
    const auto access = isSet ? Dispatch::Access::PutRef : Dispatch::Access::Put;
    auto put = object->invokeIn(m_locale->id, site.id, access, Arguments(holder + 1, count + 1));
    if (!put) return withSubject(Failed(std::move(put).error()), siteText(site));
    dropTo(bottom);
    return {};
}

Result<void> Engine::putInstance(Instance& object, const ClassMember& member, Symbol name, std::size_t count,
                                 std::uint8_t flags, Value* bottom)
{
    const bool inside = frame().function->owner == object.info;
    if ((flags & kSet) != 0 && !m_sp[-1].isObject()) return fault(error::kObjectRequired, quoted(m_sp[-1]));
    if (member.field >= 0) {
        if (member.isPrivate && !inside) return fault(error::kNoSuchMember, m_names.spelling(name));
        Value& field = object.fields[static_cast<std::size_t>(member.field)];
        if (count > 0) return putIndexed(field, name, count, flags, bottom);
        CHECK_RESULT(store(field, pop(), flags));
        dropTo(bottom);
        return {};
    }
    // Property Let takes an object as it is; what becomes of it is its own affair.
    Function* function = (flags & kSet) != 0 ? member.set : member.let;
    if (!function && (flags & kSet) == 0 && m_sp[-1].isObject()) function = member.set;
    if (!function && member.get && member.get->byReference.empty() && count > 0) {
        // object.Items(1) = 2, where Items answers an array or a collection
        Value answer = TRY_RESULT(call(*member.get, &object, {}));
        return putIndexed(answer, name, count, flags, bottom);
    }
    if (!function || (function->isPrivate && !inside)) {
        return fault(member.get ? error::kWrongArguments : error::kNoSuchMember, m_names.spelling(name));
    }
    return pushFrame(*function, count + 1, bottom, Ref<Instance>(&object), true);
}

// arguments..., value -> ; what lies from `bottom` on goes as well
Result<void> Engine::putIndexed(Value& base, Symbol name, std::size_t count, std::uint8_t flags,
                                Value* bottom)
{
    Value& target = base.resolved();
    if (target.isArray()) {
        auto found = element(*target.writableArray(), m_sp - count - 1, count);
        if (!found) return named(Failed(std::move(found).error()), name);
        Value value = pop();
        // Fetching a default value may run code; the element is looked up again afterwards.
        if ((flags & kSet) == 0 && value.isObject()) {
            value = TRY_RESULT(plain(value));
            if (!target.isArray()) return fault(error::kTypeMismatch, m_names.spelling(name));
            found = element(*target.writableArray(), m_sp - count, count);
            if (!found) return named(Failed(std::move(found).error()), name);
        }
        CHECK_RESULT(store(**found, std::move(value), flags));
        dropTo(bottom);
        return {};
    }
    if (!target.isObject()) return fault(error::kTypeMismatch, m_names.spelling(name));
    if (!target.asObject()) return fault(error::kObjectNotSet, m_names.spelling(name));
    const Ref<Dispatch> object(target.asObject());
    dropReferences(m_sp - count - 1, count + 1);
    if (object->kind() == Dispatch::Kind::Instance) {
        auto& instance = static_cast<Instance&>(*object);
        const auto own = instance.info->defaultMember;
        if (!own) return fault(error::kNoSuchMember, m_names.spelling(name));
        return putInstance(instance, instance.info->members.find(*own)->second, *own, count, flags, bottom);
    }
    const auto access = (flags & kSet) != 0 ? Dispatch::Access::PutRef : Dispatch::Access::Put;
    auto put = object->invokeIn(m_locale->id, Dispatch::kDefaultMember, access,
                                Arguments(m_sp - count - 1, count + 1));
    if (!put) return named(Failed(std::move(put).error()), name);
    dropTo(bottom);
    return {};
}

// arguments..., value -> ; what lies from `bottom` on goes as well
Result<void> Engine::putGlobal(Symbol name, std::size_t count, std::uint8_t flags, Value* bottom)
{
    Global& found = *m_globals[name];
    if (found.kind == Global::Kind::Undefined) {
        if (Value* declared = declaredHere(name)) return putIndexed(*declared, name, count, flags, bottom);
        resolveHostMember(name, found);
    }
    switch (found.kind) {
    case Global::Kind::Variable:
    case Global::Kind::HostObject: return putIndexed(found.value, name, count, flags, bottom);
    case Global::Kind::HostMember:
    case Global::Kind::Intrinsic: {
        // Left = 10 cannot mean the function either.
        const auto [host, id] = found.kind == Global::Kind::Intrinsic
                                    ? hostMember(name)
                                    : std::pair(Ref<Dispatch>(found.value.asObject()), found.member);
        if (!host) return fault(error::kIllegalAssignment, m_names.spelling(name));
        dropReferences(m_sp - count - 1, count + 1);
        const auto access = (flags & kSet) != 0 ? Dispatch::Access::PutRef : Dispatch::Access::Put;
        auto put = host->invokeIn(m_locale->id, id, access, Arguments(m_sp - count - 1, count + 1));
        if (!put) return named(Failed(std::move(put).error()), name);
        dropTo(bottom);
        return {};
    }
    case Global::Kind::Undefined:
        if (frame().function->optionExplicit) return fault(error::kUndefinedVariable, m_names.spelling(name));
        return fault(error::kTypeMismatch, m_names.spelling(name));
    default: return fault(error::kIllegalAssignment, m_names.spelling(name));
    }
}

} // namespace script::vbscript
