#include "script/vbscript/Engine.h"

#include "script/vbscript/Compiler.h"
#include "script/vbscript/DateTime.h"
#include "script/vbscript/Dictionary.h"
#include "script/vbscript/ErrObject.h"
#include "script/vbscript/Errors.h"
#include "script/vbscript/Parser.h"
#include "script/vbscript/RegExpObject.h"

#include <cstdlib>

namespace script::vbscript
{

namespace
{

constexpr std::size_t kFewFrames = 64;

} // namespace

EngineObject::EngineObject(Engine& engine, Kind kind)
    : Dispatch(kind), m_engine(&engine), m_previous(engine.m_lastObject)
{
    (m_previous ? m_previous->m_following : engine.m_firstObject) = this;
    engine.m_lastObject = this;
}

EngineObject::~EngineObject()
{
    if (!m_engine) return;
    (m_previous ? m_previous->m_following : m_engine->m_firstObject) = m_following;
    (m_following ? m_following->m_previous : m_engine->m_lastObject) = m_previous;
}

Engine::Engine(Host& host, const Options& options, const Limits& limits)
    : m_host(host), m_locale(options.locale), m_options(options), m_limits(limits),
      // The system gives zeroed pages as they are touched, so an idle engine costs nothing.
      m_stack(static_cast<Value*>(std::calloc(kStackValues, sizeof(Value))), std::free), m_sp(m_stack.get())
{
    if (!m_stack) throw std::bad_alloc();
    m_frames.reserve(kFewFrames);
    for (const auto& list : {stringIntrinsics(), searchIntrinsics(), numberIntrinsics(), dateIntrinsics(),
                             formatIntrinsics(), variantIntrinsics()}) {
        for (const Intrinsic& intrinsic : list) {
            Global& found = global(m_names.intern(intrinsic.name));
            found.kind = Global::Kind::Intrinsic;
            found.intrinsic = &intrinsic;
        }
    }
    for (const IntrinsicConstant& constant : intrinsicConstants()) {
        Global& found = global(m_names.intern(constant.name));
        found.kind = Global::Kind::Constant;
        found.value = constant.value;
    }
    Global& err = global(m_names.intern(u"Err"));
    err.kind = Global::Kind::HostObject;
    err.value = Value::object(new ErrObject(*this));
}

Engine::~Engine()
{
    tearDown();
    for (EngineObject* object = m_firstObject; object; object = object->m_following)
        object->m_engine = nullptr;
}

// Objects end in an orderly way first; what then still lives does so in circles or in the host's hands.
void Engine::tearDown()
{
    // By number: what Class_Terminate does may add globals. It still sees the host's objects.
    bool inTime = runTerminations();
    for (std::size_t i = 0; i < m_globals.size() && inTime; ++i) {
        if (m_globals[i]->kind == Global::Kind::Variable) m_globals[i]->value = Value();
        inTime = runTerminations();
    }
    if (inTime) terminateCircles();
    m_tornDown = true;
    for (const auto& one : m_globals) *one = Global();
    m_scope = nullptr;
    m_memberHosts.clear();
    m_dying.clear();
    while (m_firstObject) {
        std::vector<Ref<EngineObject>> alive;
        for (EngineObject* object = m_firstObject; object; object = object->m_following)
            alive.emplace_back(object);
        for (const auto& object : alive) object->clear();
        const EngineObject* const last = m_lastObject;
        const std::size_t before = alive.size();
        alive.clear();
        std::size_t left = 0;
        for (const EngineObject* object = m_firstObject; object; object = object->m_following) ++left;
        if (left >= before || last == nullptr) break;
    }
}

// Objects that hold each other end here, in the order in which they were made, while all that they refer to
// is still there.
void Engine::terminateCircles()
{
    std::vector<Ref<Instance>> left;
    for (EngineObject* object = m_firstObject; object; object = object->m_following) {
        if (object->kind() != Dispatch::Kind::Instance) continue;
        auto* instance = static_cast<Instance*>(object);
        if (instance->info->terminate && !instance->m_terminated) left.emplace_back(instance);
    }
    for (const Ref<Instance>& instance : left) {
        if (std::exchange(instance->m_terminated, true)) continue;
        m_dying.push_back(instance);
        if (!runTerminations()) return;
    }
}

Global& Engine::global(Symbol name)
{
    while (m_globals.size() <= name) m_globals.push_back(std::make_unique<Global>());
    return *m_globals[name];
}

void Engine::addObject(std::u16string_view name, Dispatch& object, bool addMembers)
{
    Global& found = global(m_names.intern(name));
    found = Global();
    found.kind = Global::Kind::HostObject;
    found.value = Value::object(&object);
    if (addMembers) m_memberHosts.emplace_back(&object);
}

/// @returns the first object with global members that has one of that name, or null
std::pair<Ref<Dispatch>, Dispatch::MemberId> Engine::hostMember(Symbol name) const
{
    for (const auto& host : m_memberHosts) {
        if (const auto id = host->memberId(m_names.spelling(name))) return {host, *id};
    }
    return {};
}

// A name that scripts have not defined may be a member of a host object whose members are global.
bool Engine::resolveHostMember(Symbol name, Global& found)
{
    const int hosts = static_cast<int>(m_memberHosts.size());
    if (found.hostsAsked == hosts) return false;
    const auto [host, id] = hostMember(name);
    if (!host) {
        found.hostsAsked = hosts;
        return false;
    }
    found.kind = Global::Kind::HostMember;
    found.value = Value::object(host.get());
    found.member = id;
    return true;
}

Result<std::unique_ptr<Program>> Engine::compileText(std::u16string_view source, bool isExpression,
                                                     const Surroundings& around, int firstLine)
{
    CHECK_RESULT(reserve(source.size() * 40)); // tokens, tree and code
    const std::u16string kept(source);
    auto tree = TRY_RESULT(isExpression ? parseExpression(kept, m_names)
                                        : parseCode(kept, m_names, {m_options.htmlComments, firstLine}));
    auto program = TRY_RESULT(compile(*tree, m_names, around));
    growGlobals();
    return program;
}

void Engine::growGlobals() { global(m_names.count() - 1); }

// Everything that a text declares outside procedures exists before its first statement runs.
Result<void> Engine::define(Program& program)
{
    for (const Declarator& variable : program.variables) {
        const Global& known = global(variable.name);
        if (!variable.isArray || known.kind != Global::Kind::Variable || !known.value.isArray()) continue;
        auto failed = fault(error::kTypeMismatch, m_names.spelling(variable.name));
        failed.value()->line = variable.position.line;
        failed.value()->column = variable.position.column;
        return failed;
    }
    for (Function* function : program.globalFunctions) {
        Global& found = global(function->name);
        found = Global();
        found.kind = Global::Kind::Procedure;
        found.function = function;
    }
    for (const auto& info : program.classes) {
        Global& found = global(info->name);
        found = Global();
        found.kind = Global::Kind::Class;
        found.info = info.get();
    }
    for (const Declarator& constant : program.constants) {
        Global& found = global(constant.name);
        found = Global();
        found.kind = Global::Kind::Constant;
        found.value = constant.literal;
    }
    for (const Declarator& variable : program.variables) {
        Global& found = global(variable.name);
        if (found.kind != Global::Kind::Variable) found = Global();
        found.kind = Global::Kind::Variable;
        if (variable.isArray) {
            found.value =
                Value::array(variable.bounds.empty() ? new Array() : new Array(variable.bounds, false));
        }
    }
    const auto declare = [this](const std::vector<Symbol>& names) {
        for (const Symbol name : names) {
            Global& found = global(name);
            if (found.kind == Global::Kind::Undefined && !resolveHostMember(name, found))
                found.kind = Global::Kind::Variable;
        }
    };
    declare(program.redimmed);
    if (!program.main->optionExplicit) declare(program.assigned);
    return {};
}

// A call from the host starts with a clean Err.
void Engine::forgetErrors()
{
    if (m_frames.empty()) m_error = ErrorState();
}

Result<Value> Engine::execute(std::u16string_view source, bool isExpression, int firstLine)
{
    forgetErrors();
    auto program = TRY_RESULT(compileText(source, isExpression, {}, firstLine));
    return runProgram(std::move(program));
}

Result<Value> Engine::callProcedure(std::u16string_view name, Arguments arguments)
{
    forgetErrors();
    const Global& found = global(m_names.intern(name));
    if (found.kind != Global::Kind::Procedure) return fault(error::kTypeMismatch, name);
    return call(*found.function, nullptr, arguments);
}

Result<Value> Engine::functionReference(std::u16string_view name)
{
    Global& found = global(m_names.intern(name));
    if (found.kind != Global::Kind::Procedure) return fault(error::kInvalidCall, u"GetRef");
    return Value::object(new FunctionReference(*this, *found.function));
}

Result<void> Engine::reserve(std::size_t bytes) const
{
    if (bytes > m_limits.heapBytes || HeapUse::bytes() > m_limits.heapBytes - bytes)
        return fault(error::kOutOfMemory);
    return {};
}

Result<Value> Engine::plain(const Value& value)
{
    const Value& resolved = value.resolved();
    if (!resolved.isObject()) return resolved;
    // A default value may be an object again; a chain of them that never ends is refused.
    Value current = resolved;
    for (int i = 0; i < 16 && current.isObject(); ++i) {
        if (!current.asObject()) return fault(error::kObjectNotSet);
        const Ref<Dispatch> kept(current.asObject());
        current =
            TRY_RESULT(kept->invokeIn(m_locale->id, Dispatch::kDefaultMember, Dispatch::Access::Get, {}));
    }
    if (current.isObject()) return fault(error::kTypeMismatch);
    return current;
}

double Engine::now()
{
    const auto given = m_host.now();
    return given ? *given : localNow();
}

Ref<Dispatch> Engine::newBuiltIn(std::u16string_view name)
{
    if (sameText(name, u"RegExp")) return Ref<Dispatch>(new RegExpObject(*this));
    return nullptr;
}

// Nothing else can be made, safe subset or not: this engine knows no other classes.
Ref<Dispatch> Engine::createObject(std::u16string_view programId)
{
    if (sameText(programId, u"Scripting.Dictionary")) return Ref<Dispatch>(new Dictionary(*this));
    if (sameText(programId, u"VBScript.RegExp")) return Ref<Dispatch>(new RegExpObject(*this));
    return nullptr;
}

Failed withSubject(Failed failed, std::u16string_view subject)
{
    Fault& found = *failed.value();
    if (found.subject.empty() && found.description.empty() && !found.uncatchable) found.subject = subject;
    return failed;
}

// ---- objects of script classes

Instance::Instance(Engine& engine, const ClassInfo& of)
    : EngineObject(engine, Kind::Instance), info(&of), fields(of.fields.size())
{
    for (std::size_t i = 0; i < fields.size(); ++i) {
        const Declarator& field = of.fields[i];
        if (!field.isArray) continue;
        fields[i] = Value::array(field.bounds.empty() ? new Array() : new Array(field.bounds, false));
    }
}

void Instance::dispose()
{
    if (m_engine && info->terminate && !m_terminated) {
        m_terminated = true;
        m_engine->becameUnreachable(*this);
        if (references() > 0) return;
    }
    delete this;
}

std::u16string Instance::typeName() const
{
    return m_engine ? m_engine->names().spelling(info->name) : u"Object";
}

// Private members are nobody else's business.
std::optional<Dispatch::MemberId> Instance::memberId(std::u16string_view name) const
{
    if (!m_engine) return std::nullopt;
    const Symbol symbol = m_engine->names().intern(name);
    const auto found = info->members.find(symbol);
    if (found == info->members.end()) return std::nullopt;
    const ClassMember& member = found->second;
    const auto isPublic = [](const Function* function) { return function && !function->isPrivate; };
    const bool known = member.field >= 0 ? !member.isPrivate
                                         : isPublic(member.call) || isPublic(member.get) ||
                                               isPublic(member.let) || isPublic(member.set);
    if (!known) return std::nullopt;
    return static_cast<MemberId>(symbol) + 1;
}

// Called by hosts and for default values; scripts reach members without this detour.
Result<Value> Instance::invoke(MemberId id, Access access, Arguments arguments)
{
    if (!m_engine) return fault(error::kNoSuchMember);
    if (id == kDefaultMember && !info->defaultMember) return fault(error::kNoSuchMember);
    const Symbol name = id == kDefaultMember ? *info->defaultMember : static_cast<Symbol>(id - 1);
    const auto found = info->members.find(name);
    if (found == info->members.end()) return fault(error::kNoSuchMember);
    const Ref<Instance> kept(this);
    if (access == Access::Put || access == Access::PutRef) return put(found->second, access, arguments);
    const ClassMember& member = found->second;
    if (member.field >= 0) {
        if (member.isPrivate) return fault(error::kNoSuchMember);
        if (!arguments.empty()) return fault(error::kWrongArguments);
        return fields[static_cast<std::size_t>(member.field)];
    }
    // A function is no property, unless it is what the object itself stands for.
    const bool readsOnly = access == Access::Get && id != kDefaultMember;
    Function* function = member.call && !readsOnly ? member.call : member.get;
    if (!function || function->isPrivate) return fault(error::kNoSuchMember);
    return m_engine->call(*function, this, arguments);
}

Result<Value> Instance::put(const ClassMember& member, Access access, Arguments arguments)
{
    if (arguments.empty()) return fault(error::kWrongArguments);
    const bool isSet = access == Access::PutRef;
    if (isSet && !arguments.back().isObject()) return fault(error::kObjectRequired);
    if (member.field >= 0) {
        if (member.isPrivate) return fault(error::kNoSuchMember);
        if (arguments.size() != 1) return fault(error::kWrongArguments);
        Value value = isSet ? arguments[0] : TRY_RESULT(m_engine->plain(arguments[0]));
        // Reading a default value may have taken the engine and the fields away.
        if (!m_engine) return fault(error::kNoSuchMember);
        fields[static_cast<std::size_t>(member.field)] = std::move(value);
        return Value();
    }
    Function* function = isSet ? member.set : member.let;
    if (!function || function->isPrivate) return fault(error::kNoSuchMember);
    return m_engine->call(*function, this, arguments);
}

// ---- the script as an object

std::optional<Dispatch::MemberId> ScriptScope::memberId(std::u16string_view name) const
{
    if (!m_engine) return std::nullopt;
    const Symbol symbol = m_engine->names().intern(name);
    const Global& found = m_engine->global(symbol);
    const bool known = found.kind == Global::Kind::Variable || found.kind == Global::Kind::Constant ||
                       found.kind == Global::Kind::Procedure || found.kind == Global::Kind::HostObject;
    if (!known) return std::nullopt;
    return static_cast<MemberId>(symbol) + 1;
}

Result<Value> ScriptScope::invoke(MemberId id, Access access, Arguments arguments)
{
    if (!m_engine || id == kDefaultMember) return fault(error::kNoSuchMember);
    Global& found = m_engine->global(static_cast<Symbol>(id - 1));
    if (access == Access::Put || access == Access::PutRef) {
        if (found.kind != Global::Kind::Variable) return fault(error::kIllegalAssignment);
        if (arguments.size() != 1) return fault(error::kWrongArguments);
        Value value = access == Access::PutRef ? arguments[0] : TRY_RESULT(m_engine->plain(arguments[0]));
        if (found.value.isArray() && found.value.asArray()->isLocked()) return fault(error::kArrayLocked);
        found.value = std::move(value);
        return Value();
    }
    if (found.kind == Global::Kind::Procedure) return m_engine->call(*found.function, nullptr, arguments);
    if (!found.hasValue()) return fault(error::kNoSuchMember);
    if (!arguments.empty()) return fault(error::kWrongArguments);
    return found.value;
}

Result<Value> FunctionReference::invoke(MemberId member, Access access, Arguments arguments)
{
    const bool calls = access == Access::Call || access == Access::GetOrCall || access == Access::Get;
    if (!m_engine || member != kDefaultMember || !calls) return fault(error::kNoSuchMember);
    const Ref<FunctionReference> kept(this);
    return m_engine->call(*function, nullptr, arguments);
}

} // namespace script::vbscript
