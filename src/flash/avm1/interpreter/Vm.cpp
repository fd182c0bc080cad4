#include "flash/avm1/interpreter/Vm.h"

#include "flash/avm1/interpreter/ArrayNative.h"
#include "flash/avm1/interpreter/Code.h"
#include "flash/avm1/interpreter/Interpreter.h"

#include "base/TextCodes.h"
#include "flash/guard/Guard.h"

#include <algorithm>
#include <cstdlib>
#include <new>

namespace flash::avm1
{

Vm::Vm(Host& host, void (*installClasses)(Vm&))
    : m_host(host), m_names(m_heap),
      m_stack(static_cast<Value*>(std::malloc(kStackValues * sizeof(Value))), std::free)
{
    if (m_stack == nullptr) throw std::bad_alloc();
    m_heap.addRootSource([this](Tracer& tracer) { traceRoots(tracer); });
    m_heap.addSweepHook([this] { dropDeadCaches(); });
    m_emptyShape = m_heap.make<Shape>();
    m_builtIns.object = m_heap.make<Object>(*this, nullptr);
    m_builtIns.function = m_heap.make<Object>(*this, m_builtIns.object);
    m_global = m_heap.make<Object>(*this, nullptr);
    installClasses(*this);
}

Vm::~Vm() = default;

void Vm::setLimits(int calls, double timeoutMs)
{
    m_nestedCalls = calls > 0 ? std::min(calls, kMaxNestedCalls) : kUsualNestedCalls;
    m_timeoutMs = timeoutMs > 0 ? std::min(timeoutMs, kMaxTimeoutMs) : kUsualTimeoutMs;
}

void Vm::traceRoots(Tracer& tracer)
{
    tracer(m_global);
    tracer(m_emptyShape);
    for (const Object* prototype :
         {m_builtIns.object, m_builtIns.function, m_builtIns.array, m_builtIns.string, m_builtIns.number,
          m_builtIns.boolean, m_builtIns.date, m_builtIns.error, m_builtIns.functionConstructor,
          m_builtIns.arrayConstructor, m_builtIns.objectConstructor})
        tracer(prototype);
    tracer(m_exception);
    for (const Value value : m_registers) tracer(value);
    if (m_frame != nullptr) {
        for (const Value* value = m_stack.get(); value != m_frame->top; ++value) tracer(*value);
    }
    // A movie that nothing but its code holds on to has left the stage for good.
    std::unordered_map<const void*, long> blocks;
    for (const auto& [bytes, code] : m_code) ++blocks[code->owner().get()];
    for (const auto& [bytes, code] : m_code) {
        const std::shared_ptr<const void>& owner = code->owner();
        if (owner == nullptr || owner.use_count() > blocks[owner.get()]) tracer(code);
    }
    for (const auto& entry : m_natives) tracer(entry.second);
    for (const auto& [movie, classes] : m_symbolClasses)
        for (const auto& entry : classes) tracer(entry.second);
    for (const auto& [id, timer] : m_timers) {
        tracer(timer.function);
        tracer(timer.self);
        tracer(timer.method);
        for (const Value value : timer.args) tracer(value);
    }
}

void Vm::dropDeadCaches()
{
    std::erase_if(m_code, [](const auto& entry) { return !Heap::isMarked(entry.second); });
    for (const auto& entry : m_code) entry.second->dropDeadCaches();
    m_stringClass.epoch = m_stringPrototype.epoch = 0;
}

Value PropertyCache::look(Vm& vm, Object& object, Name name)
{
    Caching caching;
    const Object::Found found = object.find(vm, name, caching);
    if (found.where != Object::Found::Where::Slot || found.holder != &object) return {};
    shape = object.shape();
    slot = found.slot;
    epoch = vm.epoch();
    return object.slot(slot);
}

// ---- running ---------------------------------------------------------------------------------------------

Code* Vm::codeFor(const std::shared_ptr<const void>& owner, swf::ActionBlock block, int version)
{
    Code*& code = m_code[block.bytes.data()];
    if (code == nullptr) code = m_heap.make<Code>(*this, owner, block.bytes, version);
    return code;
}

void Vm::run(const std::shared_ptr<const void>& owner, swf::ActionBlock block, int version, Object* target)
{
    if (block.isEmpty()) return;
    Interpreter::runBlock(*this, *codeFor(owner, block, version), target);
}

Value Vm::call(Value function, Value self, std::span<const Value> args)
{
    return Interpreter::invoke(*this, function, self, args);
}

Value Vm::callMethod(Object* object, Name method, std::span<const Value> args)
{
    Value function;
    Object* holder = nullptr;
    if (!Interpreter::lookup(*this, object, method, object, function, holder)) return {};
    return Interpreter::invoke(*this, function, object, args, {holder, false});
}

Value Vm::callMethod(Object* object, std::string_view method, std::initializer_list<Value> args)
{
    return callMethod(object, name(method), std::span<const Value>(args.begin(), args.size()));
}

Value Vm::callAccessor(Object* function, Value self, std::span<const Value> args, Object* holder)
{
    if (m_accessorDepth >= kMaxNestedAccessors) return {};
    ++m_accessorDepth;
    const Value result = Interpreter::invoke(*this, function, self, args, {holder, false});
    --m_accessorDepth;
    return result;
}

Value Vm::callWatcher(Object* function, Value self, std::span<const Value> args, Object* holder)
{
    return Interpreter::invoke(*this, function, self, args, {holder, false});
}

Value Vm::construct(Value constructor, std::span<const Value> args)
{
    return Interpreter::construct(*this, constructor, args);
}

void Vm::constructOn(Object* object, Function* constructor, std::span<const Value> args)
{
    object->define(*this, common().constructorInternal, constructor, kDontEnum | kFrom6);
    if (m_version < 7) object->define(*this, common().constructor, constructor, kDontEnum);
    Interpreter::invoke(*this, constructor, object, args, {prototypeOf(constructor), true});
}

bool Vm::checkLoop()
{
    Interpreter::safepoint(*this);
    return isUnwinding();
}

bool Vm::hasRoomFor(std::size_t bytes)
{
    const auto fits = [&] { return m_heap.bytesInUse() + bytes <= guard::kMaxScriptBytes; };
    if (fits()) return true;
    m_heap.collect();
    return fits();
}

bool Vm::takesMemory(std::size_t bytes)
{
    if (hasRoomFor(bytes)) return true;
    abortScript("The scripts of this movie need too much memory and were stopped.");
    return false;
}

bool Vm::takesText(std::size_t units)
{
    if (units <= guard::kLongestText) return true;
    abortScript("A text grew beyond all bounds; the scripts of this movie were stopped.");
    return false;
}

void Vm::abortScript(std::string_view why) { Interpreter::abort(*this, why); }

void Vm::reportUncaught()
{
    if (m_thrown) {
        const Value exception = Interpreter::takeException(*this);
        m_aborted = false;
        m_host.reportError(toText(*this, exception));
        // Making text of it may have thrown again.
        m_thrown = false;
    }
    m_aborted = false;
    m_exception = Value();
}

bool Vm::isConstructing() const { return m_frame != nullptr && m_frame->isConstruct; }

Object* Vm::target() const { return m_frame == nullptr ? nullptr : m_frame->target; }

// ---- paths and variables ---------------------------------------------------------------------------------

namespace
{

std::size_t variableSeparator(std::u16string_view path)
{
    const std::size_t at = path.find_last_of(u".:");
    if (at != std::u16string_view::npos && (at == 0 || path[at - 1] != u'.')) return at;
    return path.rfind(u'/');
}

} // namespace

Value Vm::getVariable(Object* clip, std::u16string_view path)
{
    const std::size_t at = variableSeparator(path);
    const bool plain = at == std::u16string_view::npos;
    Object* object =
        plain ? clip
              : resolveTarget(clip, path.substr(0, std::max<std::size_t>(at, path[at] == u'/' ? 1 : 0)));
    return object == nullptr ? Value() : object->get(*this, name(plain ? path : path.substr(at + 1)));
}

void Vm::setVariable(Object* clip, std::u16string_view path, Value value)
{
    const std::size_t at = variableSeparator(path);
    const bool plain = at == std::u16string_view::npos;
    Object* object =
        plain ? clip
              : resolveTarget(clip, path.substr(0, std::max<std::size_t>(at, path[at] == u'/' ? 1 : 0)));
    if (object != nullptr) object->put(*this, name(plain ? path : path.substr(at + 1)), value);
}

// ---- making things ---------------------------------------------------------------------------------------

String* Vm::string(std::u16string text)
{
    if (!takesText(text.size())) text = {};
    m_heap.noteExternalBytes(text.size() * sizeof(char16_t));
    return m_heap.make<String>(std::move(text));
}

String* Vm::string(std::string_view latin1) { return m_names.intern(latin1).string(); }

String* Vm::string(char16_t unit) { return m_names.fromUnit(unit).string(); }

Object* Vm::newObject() { return m_heap.make<Object>(*this, m_builtIns.object); }
Object* Vm::newObject(Object* prototype) { return m_heap.make<Object>(*this, prototype); }

Object* Vm::newLiteral()
{
    Object* object = newObject();
    object->define(*this, common().constructor, m_builtIns.objectConstructor, kBuiltIn);
    return object;
}

Object* Vm::newArray(std::span<const Value> elements)
{
    Object* array = newObject(m_builtIns.array);
    array->define(*this, common().constructor, m_builtIns.arrayConstructor, kBuiltIn);
    array->attachNew<ArrayNative>().assign(elements);
    m_heap.noteExternalBytes(elements.size_bytes() + sizeof(ArrayNative));
    return array;
}

Function* Vm::newFunction(NativeFunction function, int minArguments)
{
    return m_heap.make<Function>(*this, function, minArguments);
}

Function* Vm::newScriptLike(NativeFunction native)
{
    Function* function = newFunction(native);
    Object* prototype = newObject();
    prototype->define(*this, common().constructor, function, kBuiltIn);
    function->define(*this, common().prototype, prototype, kBuiltIn);
    return function;
}

void Vm::addMembers(Object* object, std::span<const MemberInfo> members, int nativeTable)
{
    for (const MemberInfo& member : members) {
        Function* function = newFunction(member.function, member.minArguments);
        function->setBrief(member.isBrief);
        object->define(*this, name(member.name), function,
                       static_cast<std::uint16_t>(kBuiltIn | member.flags));
        if (nativeTable >= 0 && member.nativeIndex >= 0)
            m_natives[{nativeTable, member.nativeIndex}] = function;
    }
}

void Vm::addAccessors(Object* object, std::span<const AccessorInfo> accessors, std::uint16_t flags)
{
    for (const AccessorInfo& accessor : accessors) {
        Function* getter = accessor.getter == nullptr ? nullptr : newFunction(accessor.getter);
        Function* setter = accessor.setter == nullptr ? nullptr : newFunction(accessor.setter, 1);
        object->defineAccessor(*this, name(accessor.name), getter, setter,
                               static_cast<std::uint16_t>(flags | accessor.flags));
    }
}

Function* Vm::defineClass(std::string_view className, NativeFunction constructor,
                          std::span<const MemberInfo> prototypeMembers, std::uint16_t flags, int nativeTable)
{
    Function* function = newFunction(constructor);
    Object* prototype = newObject();
    prototype->define(*this, common().constructor, function, kBuiltIn);
    function->define(*this, common().prototype, prototype, kBuiltIn);
    addMembers(prototype, prototypeMembers, nativeTable);
    m_global->define(*this, className, function, static_cast<std::uint16_t>(kDontEnum | flags));
    return function;
}

Object* Vm::prototypeOf(Object* constructor)
{
    Value prototype;
    constructor->find(*this, common().prototype, prototype, constructor);
    return prototype.asObject();
}

void Vm::registerNative(int table, int index, NativeFunction function, int minArguments)
{
    m_natives[{table, index}] = newFunction(function, minArguments);
}

Function* Vm::nativeByNumber(int table, int index)
{
    const auto found = m_natives.find({table, index});
    if (found == m_natives.end()) return nullptr;
    // Each call makes another object.
    return newFunction(found->second->nativeFunction(), found->second->minArguments());
}

void Vm::registerSymbolClass(const std::u16string& symbol, Object* constructor)
{
    std::erase_if(m_symbolClasses, [](const auto& entry) {
        const auto& movie = entry.first;
        // The bucket of scripts without a movie stays.
        return movie.expired() && movie.owner_before(std::weak_ptr<const void>()) !=
                                      std::weak_ptr<const void>().owner_before(movie);
    });
    std::weak_ptr<const void> movie;
    if (m_frame != nullptr) movie = m_frame->code->owner();
    Function* function = constructor == nullptr ? nullptr : constructor->asFunction();
    if (function == nullptr)
        m_symbolClasses[movie].erase(symbol);
    else
        m_symbolClasses[movie][symbol] = function;
}

Function* Vm::symbolClass(const std::weak_ptr<const void>& movie, const std::u16string& symbol) const
{
    const auto classes = m_symbolClasses.find(movie);
    if (classes == m_symbolClasses.end()) return nullptr;
    const auto found = classes->second.find(symbol);
    return found == classes->second.end() ? nullptr : found->second;
}

// ---- timers ----------------------------------------------------------------------------------------------

int Vm::addTimer(Value function, Value self, Value method, std::span<const Value> args, double periodMs,
                 bool repeats)
{
    // Timers are looked at once a frame at most; a shorter period would only run them more often at one time.
    constexpr double kShortestPeriodMs = 10;
    const double period = std::max(periodMs, kShortestPeriodMs);
    const int id = m_nextTimer++;
    if (m_timers.size() >= guard::kMaxTimers) {
        guard::refuse(guard::Bound::Timers, "The movie starts too many timers; further ones do not run");
        return id;
    }
    m_timers.emplace(id, Timer{function,
                               self,
                               method,
                               {args.begin(), args.end()},
                               period,
                               m_host.timeMs() + period,
                               repeats,
                               m_version});
    return id;
}

void Vm::advanceTimers()
{
    if (m_disabled) m_timers.clear();
    const double now = m_host.timeMs();
    while (true) {
        constexpr std::size_t kComparedPerStep = 64;
        guard::check(static_cast<std::uint32_t>(1 + m_timers.size() / kComparedPerStep));
        const auto next =
            std::ranges::min_element(m_timers, {}, [](const auto& entry) { return entry.second.dueMs; });
        if (next == m_timers.end() || next->second.dueMs > now) return;
        const Timer timer = next->second;
        if (timer.repeats)
            next->second.dueMs += timer.periodMs;
        else
            m_timers.erase(next);
        const RootedValues kept(m_heap, timer.args.begin(), timer.args.end());
        const VersionScope versionScope(*this, timer.version);
        if (timer.method.isUndefined())
            call(timer.function, timer.self, *kept);
        else if (Object* object = timer.self.asObject())
            callMethod(object, toName(*this, timer.method), *kept);
    }
}

std::optional<double> Vm::nextTimerMs() const
{
    if (m_disabled) return {};
    const auto next =
        std::ranges::min_element(m_timers, {}, [](const auto& entry) { return entry.second.dueMs; });
    if (next == m_timers.end()) return {};
    return next->second.dueMs;
}

void Vm::collectIfDue()
{
    if (!m_heap.shouldCollect()) return;
    m_heap.collect();
    if (!m_disabled && !hasRoomFor(0)) static_cast<void>(takesMemory(0));
}

} // namespace flash::avm1
