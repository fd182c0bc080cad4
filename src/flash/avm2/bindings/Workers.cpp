#include "flash/avm2/bindings/Fields.h"
#include "flash/avm2/bindings/Library.h"
#include "flash/avm2/bindings/Player.h"
#include "flash/avm2/classes/ClassState.h"

// Workers are scripts that run beside the movie's own. There are none but the first: a movie that asks is
// told so, and does its work itself. Locks that only it could hold are kept, as code that works both ways
// takes them.
namespace flash::avm2
{

using classes::allocateNative;
using classes::selfAs;
using Kind = NativeMember::Kind;
using C = NativeConstant;

namespace
{

constexpr int kSince = 17;

// ---- Worker, WorkerDomain ----

struct WorkerTag {
    static constexpr const char* kClass = "flash.system.Worker";
};
using WorkerObject = FieldsOf<DispatcherObject, 1, WorkerTag>; ///< what it shares, by name

/// The only one of its class.
struct TheOne {
    Object* object = nullptr;
    void trace(Tracer& tracer) { tracer(object); }
};
void keepOne(Vm& vm, ClassObject& cls) { classes::addState<TheOne>(vm, cls); }

Object* theOne(Vm& vm, std::string_view name)
{
    ClassObject* cls = vm.nativeClass(name);
    auto& state = *classes::stateOf<TheOne>(*cls);
    if (state.object == nullptr) state.object = vm.instantiate(cls);
    return state.object;
}

Value currentWorker(Call& call) { return Value(theOne(call.vm, "flash.system::Worker")); }
Value currentDomain(Call& call) { return Value(theOne(call.vm, "flash.system::WorkerDomain")); }
Value workerState(Call& call) { return Value(call.vm.name("running").string()); }

Object* sharedBy(Call& call)
{
    Value& shared = selfAs<WorkerObject>(call, WorkerTag::kClass).fields[0];
    if (!shared.isObject()) shared = Value(call.vm.newObject());
    return shared.object();
}
Multiname sharedName(Call& call)
{
    const std::u16string key = textArg(call, 0, "key");
    return call.vm.publicName(call.vm.names().intern(key));
}
Value setShared(Call& call)
{
    const Multiname name = sharedName(call);
    Object* shared = sharedBy(call);
    if (call.arg(1).isNullish())
        shared->table().remove(name.name);
    else
        shared->table().set(name.name, call.arg(1));
    return {};
}
Value getShared(Call& call)
{
    const Multiname name = sharedName(call);
    Object* shared = sharedBy(call);
    const std::uint32_t at = shared->table().find(name.name);
    return at == PropertyTable::kMissing ? Value() : shared->table().at(at).value;
}

Value createWorker(Call& call)
{
    if (call.arg(0).isNullish()) throwNullParameter(call.vm, "swf");
    Player::of(call.vm).log("WorkerDomain.createWorker: there are no workers beside the first");
    return Value::null();
}
Value createChannel(Call& call)
{
    if (call.arg(0).isNullish()) throwNullParameter(call.vm, "receiver");
    return Value::null();
}
Value listWorkers(Call& call)
{
    ClassObject* list = call.vm.vectorOf(call.vm.nativeClass("flash.system::Worker")->instances);
    auto* made = as<VectorObject>(call.vm.construct(Value(list), {}));
    made->push(call.vm, currentWorker(call));
    return Value(made);
}

// ---- Mutex, Condition ----

struct MutexTag {
    static constexpr const char* kClass = "flash.concurrent.Mutex";
};
using MutexObject = FieldsOf<Object, 1, MutexTag>; ///< how often it was locked

Value lockMutex(Call& call)
{
    Value& count = selfAs<MutexObject>(call, MutexTag::kClass).fields[0];
    count = (count.isNumber() ? count.number() : 0) + 1;
    return true;
}
Value lock(Call& call)
{
    lockMutex(call);
    return {};
}
Value unlock(Call& call)
{
    Value& count = selfAs<MutexObject>(call, MutexTag::kClass).fields[0];
    if (!count.isNumber() || count.number() < 1)
        call.vm.throwError(ErrorClass::IllegalOperation, 1514, "unlock() with no preceding matching lock().");
    count = count.number() - 1;
    return {};
}

struct ConditionTag {
    static constexpr const char* kClass = "flash.concurrent.Condition";
};
using ConditionObject = FieldsOf<Object, 1, ConditionTag>; ///< its mutex

Value constructCondition(Call& call)
{
    auto& made = selfAs<ConditionObject>(call, ConditionTag::kClass);
    if (call.arg(0).isNullish()) throwNullParameter(call.vm, "mutex");
    made.fields[0] = call.arg(0);
    return {};
}
void needsLock(Call& call, int number, std::string_view what)
{
    const auto* mutex = as<MutexObject>(selfAs<ConditionObject>(call, ConditionTag::kClass).fields[0]);
    const bool isHeld = mutex != nullptr && mutex->fields[0].isNumber() && mutex->fields[0].number() > 0;
    if (!isHeld)
        call.vm.throwError(ErrorClass::IllegalOperation, number,
                           "Condition cannot " + std::string(what) + " if associated mutex is not owned.");
}
Value notify(Call& call)
{
    needsLock(call, 1516, "notify");
    return {};
}
Value notifyAll(Call& call)
{
    needsLock(call, 1517, "notifyAll");
    return {};
}
/// Nobody else could notify: the time is up at once.
Value wait(Call& call)
{
    needsLock(call, 1518, "wait");
    return false;
}

constexpr C kWorkerStates[] = {{"NEW", 0, "new"}, {"RUNNING", 0, "running"}, {"TERMINATED", 0, "terminated"}};
constexpr C kChannelStates[] = {{"CLOSED", 0, "closed"}, {"CLOSING", 0, "closing"}, {"OPEN", 0, "open"}};

constexpr NativeMember kWorker[] = {
    {"isSupported", Kind::StaticGetter, &isAlwaysFalse, 0, 0, nullptr, "Boolean"},
    {"current", Kind::StaticGetter, &currentWorker, 0, 0, nullptr, "Worker"},
    {"isPrimordial", Kind::Getter, &isAlwaysTrue, 0, 0, nullptr, "Boolean"},
    {"state", Kind::Getter, &workerState, 0, 0, nullptr, "String"},
    {"start", Kind::Method, &doNothing, 0, 0},
    {"terminate", Kind::Method, &isAlwaysFalse, 0, 0},
    {"setSharedProperty", Kind::Method, &setShared, 2, 2},
    {"getSharedProperty", Kind::Method, &getShared, 1, 1},
    {"createMessageChannel", Kind::Method, &createChannel, 1, 1},
};
constexpr NativeMember kDomain[] = {
    {"isSupported", Kind::StaticGetter, &isAlwaysFalse, 0, 0, nullptr, "Boolean"},
    {"current", Kind::StaticGetter, &currentDomain, 0, 0, nullptr, "WorkerDomain"},
    {"createWorker", Kind::Method, &createWorker, 1, 2},
    {"listWorkers", Kind::Method, &listWorkers, 0, 0},
};
constexpr NativeMember kChannel[] = {
    {"messageAvailable", Kind::Getter, &isAlwaysFalse, 0, 0, nullptr, "Boolean"},
    {"state", Kind::Getter, &isAlwaysNull, 0, 0, nullptr, "String"},
    {"send", Kind::Method, &doNothing, 1, 2},
    {"receive", Kind::Method, &isAlwaysNull, 0, 1},
    {"close", Kind::Method, &doNothing, 0, 0},
};
constexpr NativeMember kMutex[] = {
    {"isSupported", Kind::StaticGetter, &isAlwaysTrue, 0, 0, nullptr, "Boolean"},
    {"lock", Kind::Method, &lock, 0, 0},
    {"tryLock", Kind::Method, &lockMutex, 0, 0},
    {"unlock", Kind::Method, &unlock, 0, 0},
};
constexpr NativeMember kCondition[] = {
    {"isSupported", Kind::StaticGetter, &isAlwaysTrue, 0, 0, nullptr, "Boolean"},
    {"mutex", Kind::Getter, &getField<ConditionObject, 0>, 0, 0, nullptr, "Mutex"},
    {"wait", Kind::Method, &wait, 0, 1},
    {"notify", Kind::Method, &notify, 0, 0},
    {"notifyAll", Kind::Method, &notifyAll, 0, 0},
};

constexpr NativeClass later(NativeClass made)
{
    made.since = kSince;
    return made;
}
constexpr NativeClass refused(std::string_view name, std::string_view base,
                              std::span<const NativeMember> members)
{
    return {.package = "flash.system",
            .name = name,
            .base = base,
            .flags = NativeClass::Sealed | NativeClass::Final,
            .constructor = &refuseConstruction,
            .members = members,
            .setUp = &keepOne,
            .since = kSince};
}
constexpr NativeClass worker()
{
    NativeClass made = refused("Worker", "flash.events::EventDispatcher", kWorker);
    made.allocate = &allocateNative<WorkerObject>;
    return made;
}

constexpr NativeClass kClasses[] = {
    worker(),
    refused("WorkerDomain", {}, kDomain),
    refused("MessageChannel", "flash.events::EventDispatcher", kChannel),
    later(constantsOf("flash.system", "WorkerState", kWorkerStates)),
    later(constantsOf("flash.system", "MessageChannelState", kChannelStates)),
    {.package = "flash.concurrent",
     .name = "Mutex",
     .base = {},
     .flags = NativeClass::Sealed | NativeClass::Final,
     .minArguments = 0,
     .maxArguments = 0,
     .allocate = &allocateNative<MutexObject>,
     .members = kMutex,
     .since = kSince},
    {.package = "flash.concurrent",
     .name = "Condition",
     .base = {},
     .flags = NativeClass::Sealed | NativeClass::Final,
     .constructor = &constructCondition,
     .minArguments = 1,
     .maxArguments = 1,
     .allocate = &allocateNative<ConditionObject>,
     .members = kCondition,
     .since = kSince},
};

} // namespace

NativeLibrary workerLibrary() { return {kClasses, {}}; }

} // namespace flash::avm2
