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

EngineObject::EngineObject(Engine& engine) : m_engine(&engine) { engine.m_objects.insert(this); }

EngineObject::~EngineObject()
{
    if (m_engine) m_engine->m_objects.erase(this);
}

Engine::Engine(Host& host, const Locale& locale, bool safeSubset, const Limits& limits)
    : m_host(host), m_locale(&locale), m_safeSubset(safeSubset), m_limits(limits),
      // The system gives zeroed pages as they are touched, so an idle engine costs nothing.
      m_stack(static_cast<Value*>(std::calloc(kStackValues, sizeof(Value))), std::free), m_sp(m_stack.get())
{
    if (!m_stack) throw std::bad_alloc();
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
    for (EngineObject* object : m_objects) object->detach();
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
    m_tornDown = true;
    for (const auto& one : m_globals) *one = Global();
    m_memberHosts.clear();
    m_dying.clear();
    while (!m_objects.empty()) {
        std::vector<Ref<EngineObject>> alive;
        alive.reserve(m_objects.size());
        for (EngineObject* object : m_objects) alive.emplace_back(object);
        for (const auto& object : alive) object->clear();
        const std::size_t before = alive.size();
        alive.clear();
        if (m_objects.size() >= before) break;
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
                                                     const Surroundings& around)
{
    CHECK_RESULT(reserve(source.size() * 40)); // tokens, tree and code
    const std::u16string kept(source);
    auto tree = TRY_RESULT(isExpression ? parseExpression(kept, m_names) : parseCode(kept, m_names));
    auto program = TRY_RESULT(compile(*tree, m_names, around));
    growGlobals();
    return program;
}

void Engine::growGlobals() { global(m_names.count() - 1); }

// Everything that a text declares outside procedures exists before its first statement runs.
void Engine::define(Program& program)
{
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
    if (program.main->optionExplicit) return;
    for (const Symbol name : program.assigned) {
        Global& found = global(name);
        if (found.kind == Global::Kind::Undefined && !resolveHostMember(name, found))
            found.kind = Global::Kind::Variable;
    }
}

Result<Value> Engine::execute(std::u16string_view source, bool isExpression)
{
    auto program = TRY_RESULT(compileText(source, isExpression, {}));
    return runProgram(std::move(program));
}

Result<Value> Engine::callProcedure(std::u16string_view name, Arguments arguments)
{
    Global& found = global(m_names.intern(name));
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
    : EngineObject(engine), info(&of), fields(of.fields.size())
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

std::optional<Dispatch::MemberId> Instance::memberId(std::u16string_view name) const
{
    if (!m_engine) return std::nullopt;
    const Symbol symbol = m_engine->names().intern(name);
    const auto found = info->members.find(symbol);
    if (found == info->members.end()) return std::nullopt;
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
    const ClassMember& member = found->second;
    const Ref<Instance> kept(this);
    if (access == Access::Put || access == Access::PutRef) {
        if (member.field >= 0 && !member.isPrivate && arguments.size() == 1) {
            fields[static_cast<std::size_t>(member.field)] = arguments[0];
            return Value();
        }
        Function* function = access == Access::PutRef && member.set ? member.set : member.let;
        if (!function || function->isPrivate) return fault(error::kNoSuchMember);
        return m_engine->call(*function, this, arguments);
    }
    if (member.field >= 0 && !member.isPrivate && arguments.empty())
        return fields[static_cast<std::size_t>(member.field)];
    Function* function = member.call ? member.call : member.get;
    if (!function || function->isPrivate) return fault(error::kNoSuchMember);
    return m_engine->call(*function, this, arguments);
}

Result<Value> FunctionReference::invoke(MemberId member, Access access, Arguments arguments)
{
    const bool calls = access == Access::Call || access == Access::GetOrCall || access == Access::Get;
    if (!m_engine || member != kDefaultMember || !calls) return fault(error::kNoSuchMember);
    const Ref<FunctionReference> kept(this);
    return m_engine->call(*function, nullptr, arguments);
}

} // namespace script::vbscript
