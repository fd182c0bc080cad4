#include "flash/avm2/interpreter/Vm.h"

#include "flash/avm2/interpreter/Interpreter.h"
#include "flash/avm2/interpreter/Verifier.h"
#include "flash/guard/Guard.h"

#include <algorithm>

namespace flash::avm2
{

namespace
{

constexpr std::size_t kDeepestCalls = 1000;
constexpr std::size_t kSpareCalls = 32;
constexpr std::uintptr_t kNativeBytesPerCall = 16384;
constexpr std::uintptr_t kMaxNativeStack = std::uintptr_t{5} << 20;
constexpr int kChecksBetweenLooks = 4000;

} // namespace

Vm::Vm(Host& host, std::span<const NativeLibrary> libraries)
    : m_names(m_heap), m_host(host), m_stack(new Value[kStackValues]), m_top(m_stack.get()),
      m_budget(kChecksBetweenLooks)
{
    m_heap.addRootSource([this](Tracer& tracer) { traceRoots(tracer); });
    m_common = {name("constructor"), name("prototype"), name("length"),  name("toString"), name("valueOf"),
                name("toJSON"),      name("name"),      name("message"), name(""),         name("callee")};
    m_public = ns(Namespace::Kind::Public, "");
    m_as3 = ns(Namespace::Kind::Public, "http://adobe.com/AS3/2006/builtin");
    m_proxy = ns(Namespace::Kind::Public, "http://www.adobe.com/2006/actionscript/flash/proxy");
    defaultXmlNs = m_public;
    for (const NativeLibrary& library : libraries) {
        for (const NativeClass& spec : library.classes) m_nativeClasses[{spec.package, spec.name}] = &spec;
        for (const NativeFunctionInfo& info : library.functions)
            m_nativeFunctions[{info.package, info.name}] = &info;
    }
    m_system = m_heap.make<Domain>(nullptr);
    makeCore();
}

Vm::~Vm() = default;

void Vm::traceRoots(Tracer& tracer)
{
    for (const Value* at = m_stack.get(); at < m_top; ++at) tracer(*at);
    for (const auto& [key, ns] : m_namespaces) tracer(ns);
    tracer(m_system);
    tracer(movieDomain);
    tracer(m_nativeGlobal);
    tracer(m_thrown);
    tracer(defaultXmlNs);
    for (const MethodEnv* env : m_calls) tracer(env);
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

std::vector<std::u16string> Vm::callStack()
{
    std::vector<std::u16string> result;
    for (std::size_t i = m_calls.size(); i-- > 0;) {
        const MethodEnv& env = *m_calls[i];
        std::u16string line;
        if (env.owner != nullptr) {
            line = env.owner->qualifiedName();
            if (env.role == MethodEnv::Role::Constructor) {
            } else if (env.role == MethodEnv::Role::ScriptInit) {
                line = u"global$init";
            } else if (env.role == MethodEnv::Role::StaticInit) {
                line += u"cinit";
            } else {
                line += u"/";
                if (env.role == MethodEnv::Role::Getter) line += u"get ";
                if (env.role == MethodEnv::Role::Setter) line += u"set ";
                line += qualified(env.ns, env.name);
            }
        } else if (env.native != nullptr) {
            line = u"global/" + fromUtf8(env.nativeName);
        } else {
            const Name name = env.name;
            line = name.isNull() || name.view().empty() ? u"Function/<anonymous>"
                                                        : u"Function/" + std::u16string(name.view());
        }
        result.push_back(line + u"()");
    }
    return result;
}

Domain* Vm::currentDomain()
{
    for (std::size_t i = m_calls.size(); i-- > 0;) {
        if (m_calls[i]->unit != nullptr) return m_calls[i]->unit->domain();
    }
    return movieDomain != nullptr ? movieDomain : m_system;
}

Code* Vm::verified(MethodEnv& env)
{
    if (env.code != nullptr) return env.code;
    const abc::MethodInfo& info = env.info();
    if (info.body < 0) throwError(ErrorClass::Verify, 1001, "The method is not implemented.");
    Code*& known = env.unit->codeOf(env.method);
    if (known == nullptr) {
        auto* code = m_heap.make<Code>();
        const VerifyFault fault = verify(*env.unit, static_cast<std::uint32_t>(info.body), *code);
        if (fault.number != 0) throwError(ErrorClass::Verify, fault.number, fromUtf8(fault.text));
        known = code;
    }
    env.code = known;
    return known;
}

Value Vm::call(Value function, Value self, std::span<const Value> args)
{
    Object* object = function.asObject();
    if (object == nullptr || !object->isCallable())
        throwError(ErrorClass::Type, 1006,
                   function.isNullish() ? "value is not a function." : "value is not a function.");
    return object->call(*this, self, args);
}

Value Vm::construct(Value constructor, std::span<const Value> args)
{
    Object* object = constructor.asObject();
    if (object == nullptr) {
        traitsOf(constructor);
        throwError(ErrorClass::Type, 1007, "Instantiation attempted on a non-constructor.");
    }
    return object->construct(*this, args);
}

void Vm::constructSuper(ClassObject& cls, Object& self, std::span<const Value> args)
{
    if (cls.constructor != nullptr) invoke(*cls.constructor, Value(&self), args);
}

Value Vm::invoke(MethodEnv& env, Value self, std::span<const Value> args, Object* callee)
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
            kMaxNativeStack + spare * kNativeBytesPerCall) {
        struct Spare {
            int& depth;
            explicit Spare(int& depth) : depth(depth) { ++depth; }
            ~Spare() { --depth; }
        } more(m_depth);
        if (m_depth > 1) throw ScriptAborted{};
        throwError(ErrorClass::Error, 1023, "Stack overflow occurred.");
    }
    struct Level {
        TracedList<MethodEnv*>& calls;
        Level(TracedList<MethodEnv*>& calls, MethodEnv* env) : calls(calls) { calls.push_back(env); }
        ~Level() { calls.pop_back(); }
    } level(m_calls, &env);
    if (env.native == nullptr) return run(env, self, args, callee);
    const auto count = static_cast<std::uint32_t>(args.size());
    if (static_cast<int>(count) < env.minArguments ||
        (env.maxArguments >= 0 && static_cast<int>(count) > env.maxArguments))
        throwError(ErrorClass::Argument, 1063,
                   u"Argument count mismatch on " + callStack().front() + u". Expected " +
                       numberText(env.minArguments) + u", got " + numberText(count) + u".");
    // The arguments may lie in a list that goes away meanwhile.
    struct Arguments {
        Vm& vm;
        Value* at;
        Arguments(Vm& vm, std::span<const Value> args) : vm(vm), at(vm.m_top)
        {
            if (static_cast<std::size_t>(vm.m_stack.get() + kStackValues - at) < args.size())
                vm.throwError(ErrorClass::Error, 1023, "Stack overflow occurred.");
            std::ranges::copy(args, at);
            vm.m_top += args.size();
        }
        ~Arguments() { vm.m_top = at; }
    } kept(*this, args);
    Call call{*this, self, kept.at, count, callee};
    return env.native(call);
}

Value Vm::run(MethodEnv& env, Value self, std::span<const Value> args, Object* callee)
{
    Code* code = verified(env);
    const abc::MethodInfo& info = env.info();
    const auto declared = static_cast<std::uint32_t>(info.parameterTypes.size());
    if (!code->typesKnown) {
        TracedList<Traits*> types;
        for (const std::uint32_t type : info.parameterTypes) types.push_back(env.unit->type(*this, type));
        code->returnType = env.unit->type(*this, info.returnType);
        code->parameterTypes = std::move(types);
        code->typesKnown = true;
        if (code->returnType == m_classes.voidType) code->returnType = nullptr;
    }
    const auto given = static_cast<std::uint32_t>(args.size());
    const auto required = declared - static_cast<std::uint32_t>(info.optionals.size());
    const bool takesMore = (info.flags & (abc::MethodInfo::NeedRest | abc::MethodInfo::NeedArguments)) != 0;
    const bool isUnchecked = env.role == MethodEnv::Role::Function && code->returnType == nullptr &&
                             info.optionals.empty() &&
                             std::ranges::all_of(code->parameterTypes, [](auto* t) { return t == nullptr; });
    if ((given < required && !isUnchecked) || (given > declared && !takesMore && !isUnchecked))
        throwError(ErrorClass::Argument, 1063,
                   u"Argument count mismatch on " + callStack().front() + u". Expected " +
                       numberText(required) + u", got " + numberText(given) + u".");

    Frame frame;
    frame.env = &env;
    frame.code = code;
    frame.unit = env.unit;
    frame.abc = &env.unit->abc();
    const std::size_t size = code->locals + code->maxScopes + code->maxStack + 2;
    Value* const base = m_top;
    if (static_cast<std::size_t>(m_stack.get() + kStackValues - base) < size)
        throwError(ErrorClass::Error, 1023, "Stack overflow occurred.");
    std::fill(base, base + size, Value());
    struct Release {
        Value*& top;
        Value* base;
        ~Release() { top = base; }
    } release{m_top, base};
    m_top = base + size;
    frame.locals = base;
    frame.scopes = base + code->locals;
    frame.stack = frame.scopes + code->maxScopes;
    frame.locals[0] = self;
    for (std::uint32_t i = 0; i < declared; ++i) {
        Value value;
        if (i < given)
            value = args[i];
        else if (i >= required)
            value = env.unit->constant(*this, info.optionals[i - required]);
        frame.locals[i + 1] =
            code->parameterTypes[i] != nullptr ? coerce(value, code->parameterTypes[i]) : value;
    }
    if ((info.flags & abc::MethodInfo::NeedRest) != 0) {
        frame.locals[declared + 1] =
            newArray(given > declared ? args.subspan(declared) : std::span<const Value>());
    } else if ((info.flags & abc::MethodInfo::NeedArguments) != 0) {
        Object* arguments = newArray(args);
        arguments->table().set(m_common.callee, callee != nullptr
                                                    ? Value(callee)
                                                    : Value(m_heap.make<FunctionObject>(*this, &env, self)));
        arguments->table().setHidden(m_common.callee, true);
        frame.locals[declared + 1] = arguments;
    }
    Interpreter interpreter(*this, frame);
    const std::size_t depth = m_calls.size();
    for (;;) {
        try {
            return interpreter.run();
        } catch (const ScriptThrow&) {
            while (m_calls.size() > depth) m_calls.pop_back();
            m_top = base + size;
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
            std::fill(frame.scopes, frame.stack + code->maxStack + 2, Value());
            frame.scopeCount = 0;
            frame.withMask = 0;
            frame.chain = nullptr;
            frame.stack[0] = thrown;
            frame.stackDepth = 1;
            frame.resume = found->target;
        }
    }
}

} // namespace flash::avm2
