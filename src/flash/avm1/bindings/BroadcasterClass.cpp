#include "flash/avm1/bindings/Classes.h"
#include "flash/avm1/classes/ClassTable.h"

namespace flash::avm1
{

namespace
{

Object* listeners(Call& call)
{
    Object* self = call.self.asObject();
    return self ? self->get(call.vm, call.vm.name(std::string_view("_listeners"))).asObject() : nullptr;
}

Value removeListener(Call& call)
{
    Object* list = listeners(call);
    if (!list) return Value(false);
    Vm& vm = call.vm;
    const Name lengthName = vm.common().length;
    const int length = toInt32(vm, list->get(vm, lengthName));
    for (int i = 0; i < length; ++i) {
        const Value entry = list->get(vm, vm.names().fromIndex(static_cast<std::uint32_t>(i)));
        if (!looselyEqual(vm, entry, call.arg(0))) continue;
        vm.callMethod(list, "splice", {Value(i), Value(1)});
        return Value(true);
    }
    return Value(false);
}

Value addListener(Call& call)
{
    removeListener(call);
    if (Object* list = listeners(call)) call.vm.callMethod(list, "push", {call.arg(0)});
    return Value(true);
}

Value broadcastMessage(Call& call)
{
    Object* list = listeners(call);
    if (!list || call.count() == 0) return {};
    Vm& vm = call.vm;
    const Name method = toName(vm, call.arg(0));
    const int length = toInt32(vm, list->get(vm, vm.common().length));
    if (length <= 0) return {};
    // Those that join or leave meanwhile change nothing about who is told.
    RootedValues told(vm.heap());
    for (int i = 0; i < length; ++i)
        told->push_back(list->get(vm, vm.names().fromIndex(static_cast<std::uint32_t>(i))));
    for (std::size_t i = 0; i < told->size() && !vm.isUnwinding(); ++i)
        if (Object* listener = (*told)[i].asObject()) vm.callMethod(listener, method, call.args.subspan(1));
    return Value(true);
}

Value initialize(Call& call)
{
    if (Object* object = call.arg(0).asObject()) makeBroadcaster(call.vm, object);
    return {};
}

Value construct(Call&) { return {}; }

// clang-format off
constexpr LibraryFunction kStatics[] = {
    {"broadcastMessage", Written::Native, kHidden6, &broadcastMessage, 0, 12},
    {"addListener",      Written::Script, kHidden6, &addListener},
    {"removeListener",   Written::Script, kHidden6, &removeListener},
    {"initialize",       Written::Script, kHidden6, &initialize},
};
// clang-format on
constexpr int kNativeTable = 101;

} // namespace

void makeBroadcaster(Vm& vm, Object* object)
{
    // The functions are those that the class has now: scripts may have replaced them. Only the one that sends
    // is every broadcaster's own.
    Object* broadcaster = vm.global()->get(vm, vm.name(std::string_view("AsBroadcaster"))).asObject();
    for (const LibraryFunction& entry : kStatics) {
        if (entry.function == &initialize) continue;
        const Name name = vm.name(std::string_view(entry.name));
        Value function;
        if (entry.written == Written::Native)
            function = vm.newFunction(entry.function);
        else if (broadcaster)
            broadcaster->find(vm, name, function, broadcaster);
        object->define(vm, name, function, kHidden6);
    }
    object->define(vm, "_listeners", Value(vm.newArray()), kHidden6);
}

void installBroadcaster(StageBinding& binding)
{
    Vm& vm = binding.vm();
    Function* constructor = vm.defineClass("AsBroadcaster", &construct);
    defineFunctions(vm, constructor, kStatics, kNativeTable);
    constructor->changeFlags(vm, vm.common().prototype, kFrom6, 0);
}

Object* defineGlobalObject(Vm& vm, std::string_view name, std::span<const MemberInfo> members)
{
    Object* object = vm.newObject();
    vm.addMembers(object, members);
    vm.global()->define(vm, name, Value(object), kDontEnum | kDontDelete);
    return object;
}

void makeConstant(Vm& vm, Object* object)
{
    const Value objectClass = vm.global()->get(vm, vm.name(std::string_view("Object")));
    object->define(vm, vm.common().constructor, objectClass, kBuiltIn);
    object->changeFlags(vm, Name(), kBuiltIn | kReadOnly, 0);
}

} // namespace flash::avm1
