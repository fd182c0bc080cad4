#include "flash/avm2/interpreter/Vm.h"

#include "flash/avm2/interpreter/Interpreter.h"
#include "flash/guard/Guard.h"

#include <algorithm>

namespace flash::avm2
{

namespace
{

constexpr int kChecksBetweenLooks = 4000;

} // namespace

Vm::Vm(Host& host, std::span<const NativeLibrary> libraries)
    : m_names(m_heap), m_host(host), m_stack(new Value[kStackValues]), m_top(m_stack.get()),
      m_highest(m_stack.get()), m_budget(kChecksBetweenLooks)
{
    m_heap.addRootSource([this](Tracer& tracer) { traceRoots(tracer); });
    m_common = {name("constructor"), name("prototype"), name("length"),  name("toString"), name("valueOf"),
                name("toJSON"),      name("name"),      name("message"), name(""),         name("callee")};
    m_public = ns(Namespace::Kind::Public, "");
    m_as3 = ns(Namespace::Kind::Public, "http://adobe.com/AS3/2006/builtin");
    m_proxy = ns(Namespace::Kind::Public, "http://www.adobe.com/2006/actionscript/flash/proxy");
    defaultXmlNs = m_public;
    for (const NativeLibrary& library : libraries) {
        m_signatures.add(library.signatures);
        for (const NativeClass& spec : library.classes) {
            m_nativeClasses[{spec.package, spec.name}] = &spec;
            if (spec.since > 0)
                m_since[{name(spec.name).cell(), ns(Namespace::Kind::Public, spec.package)}] = spec.since;
        }
        for (const NativeValue& value : library.values)
            m_nativeValues[{name(value.name).cell(), ns(Namespace::Kind::Public, value.package)}] =
                value.number;
        for (const NativeFunctionInfo& info : library.functions)
            m_nativeFunctions[{info.package, info.name}] = &info;
    }
    m_system = m_heap.make<Domain>(nullptr);
    makeCore();
}

Vm::~Vm() = default;

void Vm::traceRoots(Tracer& tracer)
{
    if (m_interpreter != nullptr) m_interpreter->forgetEnded();
    for (const Value* at = m_stack.get(); at < m_top; ++at) tracer(*at);
    // Frames are not cleared when they begin: what they find there has to be alive.
    std::fill(m_top, m_highest, Value());
    for (const auto& [key, ns] : m_namespaces) tracer(ns);
    tracer(m_system);
    tracer(movieDomain);
    tracer(m_nativeGlobal);
    tracer(m_thrown);
    tracer(defaultXmlNs);
    for (const MethodEnv* env : m_calls) tracer(env);
    for (const auto& [key, since] : m_since) tracer(key.first);
    for (const auto& [key, value] : m_nativeValues) {
        tracer(key.first);
        tracer(key.second);
        tracer(value);
    }
    for (const auto& [key, cls] : m_vectors) tracer(cls);
    for (const auto& [key, cls] : m_aliases) tracer(cls);
    const BuiltIns& c = m_classes;
    for (const ClassObject* cls :
         {c.object, c.cls, c.function, c.string, c.number, c.integer, c.uinteger, c.boolean, c.array, c.error,
          c.nameSpace, c.qname, c.xml, c.xmlList, c.vector, c.date, c.regExp, c.byteArray, c.dictionary})
        tracer(cls);
    tracer(c.voidType);
    const Common& n = m_common;
    for (const Name name : {n.constructor, n.prototype, n.length, n.toString, n.valueOf, n.toJSON, n.name,
                            n.message, n.empty, n.callee})
        tracer(name);
}

Namespace* Vm::ns(Namespace::Kind kind, Name uri)
{
    Namespace*& known = m_namespaces[{static_cast<int>(kind), uri.cell()}];
    if (known == nullptr) known = m_heap.make<Namespace>(kind, uri);
    return known;
}

String* Vm::string(std::string_view utf8) { return string(fromUtf8(utf8)); }

void Vm::slowCheck()
{
    if (m_heap.shouldCollect()) m_heap.collect();
    if (m_heap.bytesInUse() > guard::kMaxScriptBytes) {
        m_heap.collect();
        if (m_heap.bytesInUse() > guard::kMaxScriptBytes) {
            m_disabled = true;
            m_host.log("The scripts were stopped: they need too much memory");
            throw ScriptAborted{};
        }
    }
    if (m_disabled) throw ScriptAborted{};
    if (m_budget > 0) return;
    m_budget = kChecksBetweenLooks;
    if (guard::Guard* guard = guard::current()) guard->lookAround();
    const double elapsed = m_host.realTimeMs() - m_startedMs;
    if (elapsed < m_timeoutMs) return;
    if (m_host.askToStopScript(elapsed / 1000)) {
        m_disabled = true;
        m_host.log("The scripts were stopped: they take too long");
        throw ScriptAborted{};
    }
    m_startedMs = m_host.realTimeMs();
}

void Vm::report()
{
    const Value value = m_thrown;
    m_thrown = {};
    try {
        // What goes wrong in there is offered to nobody.
        if (const auto offer = std::exchange(offerUncaught, nullptr)) {
            const bool isTaken = offer(value);
            offerUncaught = offer;
            if (isTaken) return;
        }
        m_host.uncaught(describeThrown(value));
    } catch (const ScriptThrow&) {
        m_thrown = {};
    } catch (const ScriptAborted&) {
    }
}

void Vm::throwValue(Value value)
{
    m_thrown = value;
    throw ScriptThrow{};
}

void Vm::throwError(ErrorClass cls, int number, std::u16string_view text)
{
    static constexpr const char* kClasses[] = {"Error",
                                               "TypeError",
                                               "ReferenceError",
                                               "RangeError",
                                               "ArgumentError",
                                               "VerifyError",
                                               "SyntaxError",
                                               "URIError",
                                               "EvalError",
                                               "flash.errors::IOError",
                                               "flash.errors::EOFError",
                                               "flash.errors::IllegalOperationError",
                                               "SecurityError"};
    ClassObject* errorClass = nativeClass(kClasses[static_cast<int>(cls)]);
    const std::u16string message =
        number == 0 ? std::u16string(text) : u"Error #" + numberText(number) + u": " + std::u16string(text);
    const Value args[] = {Value(string(message)), Value(number)};
    throwValue(construct(Value(errorClass), args));
}

void Vm::throwError(ErrorClass cls, int number, std::string_view text)
{
    throwError(cls, number, fromUtf8(text));
}

std::u16string Vm::describeThrown(Value value)
{
    if (value.isObject() && classes().error != nullptr &&
        value.object()->traits()->isA(classes().error->instances)) {
        const Value stack = callPublic(value, "getStackTrace");
        if (stack.isString()) return std::u16string(stack.string()->view());
    }
    return std::u16string(text(value));
}

std::u16string Vm::methodText(const MethodEnv& env)
{
    std::u16string line;
    if (env.owner != nullptr) {
        line = env.owner->qualifiedName();
        if (env.role == MethodEnv::Role::Constructor) {
        } else if (env.role == MethodEnv::Role::ScriptInit) {
            line = u"global$init() [TU=]";
        } else if (env.role == MethodEnv::Role::StaticInit) {
            line += u"$cinit";
        } else {
            if (env.owner->cls == nullptr && env.owner->base == m_classes.cls->instances) line += u"$";
            line += u"/";
            if (env.role == MethodEnv::Role::Getter) line += u"get ";
            if (env.role == MethodEnv::Role::Setter) line += u"set ";
            // Only names in namespaces of their own tell so.
            const bool isOwn = env.ns != nullptr && (env.ns->kind == Namespace::Kind::Public ||
                                                     env.ns->kind == Namespace::Kind::Explicit);
            line += qualified(isOwn ? env.ns : nullptr, env.name);
        }
    } else if (env.native != nullptr) {
        line = u"global/" + (env.ns != nullptr ? qualified(env.ns, env.name) : fromUtf8(env.nativeName));
    } else {
        const Name name = env.name;
        line = name.isNull() || name.view().empty() ? u"MethodInfo-" + numberText(env.method)
                                                    : u"Function/" + std::u16string(name.view());
    }
    return env.role == MethodEnv::Role::ScriptInit ? line : line + u"()";
}

std::vector<std::u16string> Vm::callStack()
{
    std::vector<std::u16string> result;
    for (std::size_t i = m_calls.size(); i-- > 0;) result.push_back(methodText(*m_calls[i]));
    return result;
}

int Vm::apiVersion() const
{
    for (std::size_t i = m_calls.size(); i-- > 0;) {
        if (m_calls[i]->unit != nullptr) return m_calls[i]->unit->version;
    }
    return version;
}

Domain* Vm::currentDomain()
{
    for (std::size_t i = m_calls.size(); i-- > 0;) {
        if (m_calls[i]->unit != nullptr) return m_calls[i]->unit->domain();
    }
    return movieDomain != nullptr ? movieDomain : m_system;
}

Value Vm::call(Value function, Value self, std::span<const Value> args)
{
    Object* object = function.asObject();
    if (object == nullptr || !object->isCallable())
        throwError(ErrorClass::Type, 1006, "value is not a function.");
    return object->call(*this, self, args);
}

Value Vm::construct(Value constructor, std::span<const Value> args)
{
    Object* object = constructor.asObject();
    if (object == nullptr)
        throwError(ErrorClass::Type, 1007, "Instantiation attempted on a non-constructor.");
    return object->construct(*this, args);
}

void Vm::constructSuper(ClassObject& cls, Object& self, std::span<const Value> args)
{
    if (cls.constructor != nullptr) invoke(*cls.constructor, Value(&self), args);
}

} // namespace flash::avm2
