#include "flash/avm1/bindings/Classes.h"
#include "flash/avm1/bindings/DataLoading.h"
#include "flash/avm1/classes/ClassTable.h"

namespace flash::avm1
{

namespace
{

Value decode(Call& call)
{
    Object* self = call.self.asObject();
    if (!self) return {};
    if (call.count() == 0) return Value(false);
    StageBinding::of(call).host().decodeVariables(self, std::u16string_view(textArg(call, 0)));
    return {};
}

Value onData(Call& call)
{
    Object* self = call.self.asObject();
    if (!self) return {};
    Vm& vm = call.vm;
    if (call.arg(0).isUndefined()) {
        vm.callMethod(self, "onLoad", {Value(false)});
        return {};
    }
    vm.callMethod(self, "decode", {call.arg(0)});
    self->put(vm, vm.name(std::string_view("loaded")), Value(true));
    vm.callMethod(self, "onLoad", {Value(true)});
    return {};
}
Value onLoad(Call&) { return {}; }

Value toStringMethod(Call& call)
{
    Object* self = call.self.asObject();
    // Written for version 6; the script of it comes to nothing before.
    if (!self || call.vm.version() < 6) return {};
    Vm& vm = call.vm;
    // Scripts may have replaced what this is made of, and see it at work.
    const auto escaped = [&vm](const Value& value) { return vm.callMethod(vm.global(), "escape", {value}); };
    const Root<Object> parts(vm.heap(), vm.newArray());
    for (const Name name : self->enumerate(vm)) {
        const std::u16string key = toText(vm, escaped(Value(vm.string(name.view()))));
        const std::u16string value = toText(vm, escaped(Value(toString(vm, self->get(vm, name)))));
        vm.callMethod(parts.get(), "push", {Value(vm.string(key + u'=' + value))});
    }
    return vm.callMethod(parts.get(), "join", {Value(vm.string(std::string_view("&")))});
}

Value construct(Call&) { return {}; }

// clang-format off
constexpr LibraryFunction kMembers[] = {
    {"decode",   Written::Native, kHidden6, &decode, 0, 3},
    {"onLoad",   Written::Script, kHidden6, &onLoad},
    {"onData",   Written::Script, kHidden6, &onData},
    {"toString", Written::Script, kHidden,  &toStringMethod},
};
// clang-format on

} // namespace

void installLoadVars(StageBinding& binding)
{
    Vm& vm = binding.vm();
    Function* constructor = vm.defineClass("LoadVars", &construct);
    defineFunctions(vm, vm.prototypeOf(constructor), kMembers, kLoadTable);
    addLoading(vm, vm.prototypeOf(constructor), kBuiltIn | kFrom6);
    vm.prototypeOf(constructor)
        ->define(vm, "contentType", Value(vm.string(std::string_view("application/x-www-form-urlencoded"))),
                 kDontEnum);
}

} // namespace flash::avm1
