#include "flash/avm1/interpreter/Object.h"

#include "flash/avm1/classes/Classes.h"
#include "flash/avm1/interpreter/Boxed.h"

namespace flash::avm1::classes
{

namespace
{

Value construct(Call& call)
{
    if (call.count() > 0) {
        if (Object* object = toObject(call.vm, call.arg(0))) return object;
    }
    if (call.isConstruct) return {};
    return call.vm.newObject(nullptr);
}

Value addProperty(Call& call)
{
    Object* self = call.self.asObject();
    Object* getter = call.arg(1).asObject();
    Object* setter = call.arg(2).asObject();
    if (self == nullptr || getter == nullptr || !getter->isFunction()) return Value(false);
    if (setter == nullptr && !call.arg(2).isNull()) return Value(false);
    if (setter != nullptr && !setter->isFunction()) return Value(false);
    const Name name = toName(call.vm, call.arg(0));
    if (name.view().empty()) return Value(false);
    // A property that is there already keeps its flags.
    self->defineAccessor(call.vm, name, getter, setter, self->flagsOf(call.vm, name));
    return Value(true);
}

Value hasOwnProperty(Call& call)
{
    Object* self = toObject(call.vm, call.self);
    if (self == nullptr || call.count() == 0) return Value(false);
    const Name name = toName(call.vm, call.arg(0));
    // Nothing has a property without a name, even where one was put.
    if (name.view().empty()) return Value(false);
    return Value(self->hasOwn(call.vm, name) || self->hasHidden(call.vm, name));
}

Value isPropertyEnumerable(Call& call)
{
    Object* self = call.self.asObject();
    if (self == nullptr) return Value(false);
    const Name name = toName(call.vm, call.arg(0));
    RootedNames names(call.vm.heap());
    NameCollector collector(call.vm, names);
    if (self->hasHooks())
        self->nativeBase()->enumerateOwn(call.vm, *self, collector);
    else
        self->enumeratePlain(call.vm, collector);
    for (const Name candidate : names) {
        if (candidate.matches(name, call.vm.isCaseSensitive())) return Value(true);
    }
    return Value(false);
}

Value isPrototypeOf(Call& call)
{
    Object* self = call.self.asObject();
    Object* object = toObject(call.vm, call.arg(0));
    if (self == nullptr || object == nullptr) return Value(false);
    int depth = 0;
    for (object = object->listedPrototype(call.vm); object != nullptr && depth < Object::kMaxPrototypeChain;
         ++depth) {
        if (object == self) return Value(true);
        object = object->listedPrototype(call.vm);
    }
    return Value(false);
}

Value watch(Call& call)
{
    Object* self = call.self.asObject();
    Object* callback = call.arg(1).asObject();
    if (self == nullptr || callback == nullptr || !callback->isFunction()) return Value(false);
    self->watch(toName(call.vm, call.arg(0)), callback, call.arg(2));
    return Value(true);
}

Value unwatch(Call& call)
{
    Object* self = call.self.asObject();
    return Value(self != nullptr && self->unwatch(call.vm, toName(call.vm, call.arg(0))));
}

Value valueOf(Call& call) { return call.self; }

Value toString(Call& call)
{
    const Object* self = call.self.asObject();
    return call.vm.string(self != nullptr && self->isFunction() ? "[type Function]" : "[object Object]");
}

Value toLocaleString(Call& call)
{
    Object* self = call.self.asObject();
    return self == nullptr ? Value() : call.vm.callMethod(self, call.vm.common().toString, {});
}

/// Object.registerClass: which class attachMovie gives the clips of a library symbol.
Value registerClass(Call& call)
{
    if (call.count() < 2) return Value(false);
    Object* constructor = call.arg(1).asObject();
    if (constructor != nullptr && !constructor->isFunction()) return Value(false);
    if (constructor == nullptr && !call.arg(1).isNull()) return Value(false);
    call.vm.registerSymbolClass(toText(call.vm, call.arg(0)), constructor);
    return Value(true);
}

// clang-format off
constexpr MemberInfo kMembers[] = {
    // name                    min    flags   function            native
    {"watch",                  0,     kFrom6, &watch,             0},
    {"unwatch",                0,     kFrom6, &unwatch,           1},
    {"addProperty",            0,     kFrom6, &addProperty,       2},
    {"valueOf",                0,     0,      &valueOf,           3},
    {"toString",               0,     0,      &toString,          4},
    {"hasOwnProperty",         0,     kFrom6, &hasOwnProperty,    5},
    {"isPrototypeOf",          0,     kFrom6, &isPrototypeOf,     6},
    {"isPropertyEnumerable",   0,     kFrom6, &isPropertyEnumerable, 7},
    {"toLocaleString",         0,     0, &toLocaleString},
};
constexpr MemberInfo kStatics[] = {
    {"registerClass",          0,     0,      &registerClass,     8},
};
// clang-format on
constexpr int kNativeTable = 101;

} // namespace

void installObject(Vm& vm)
{
    Function* constructor = vm.newFunction(&construct);
    Object* prototype = vm.builtIns().object;
    prototype->define(vm, vm.common().constructor, constructor, kBuiltIn);
    constructor->define(vm, vm.common().prototype, prototype, kBuiltIn);
    vm.addMembers(prototype, kMembers, kNativeTable);
    vm.addMembers(constructor, kStatics, kNativeTable);
    // Written in script in the genuine library, so it can be a constructor.
    Value localeString;
    prototype->find(vm, vm.name("toLocaleString"), localeString, prototype);
    Object* ownPrototype = vm.newObject();
    ownPrototype->define(vm, vm.common().constructor, localeString, kBuiltIn);
    localeString.object()->define(vm, vm.common().prototype, ownPrototype, kBuiltIn);
    vm.registerNative(kNativeTable, 9, &construct);
    vm.builtIns().objectConstructor = constructor;
    constructor->changeFlags(vm, Name(), kBuiltIn | kReadOnly, 0);
    vm.global()->define(vm, "Object", constructor, kDontEnum);
}

} // namespace flash::avm1::classes
