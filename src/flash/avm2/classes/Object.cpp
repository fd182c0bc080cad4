#include "flash/avm2/classes/Library.h"

namespace flash::avm2::classes
{

namespace
{

Value nothing(Call&) { return {}; }

Value hasOwnProperty(Call& call)
{
    Multiname name = call.vm.runtimeName(Multiname::of({}, call.vm.publicNs()), call.arg(0));
    name.key = {}; // the parameter is a text, or a qualified name
    return call.vm.hasOwn(call.self, name);
}

Value isPrototypeOf(Call& call)
{
    Object* self = call.self.asObject();
    Object* at = call.arg(0).asObject();
    if (at == nullptr && !call.arg(0).isNullish())
        at = call.vm.traitsOf(call.arg(0))->cls->prototype;
    else if (at != nullptr)
        at = at->proto();
    int left = 256;
    for (; at != nullptr && --left > 0; at = at->proto()) {
        if (at == self) return true;
    }
    return false;
}

Value propertyIsEnumerable(Call& call)
{
    Object* self = call.self.asObject();
    if (self == nullptr) return false;
    const Multiname name = call.vm.runtimeName(Multiname::of({}, call.vm.publicNs()), call.arg(0));
    if (name.index != Atom::kNotIndex) return call.vm.hasOwn(call.self, name);
    if (self->elements() == Object::Elements::Array && !name.name.isNull() &&
        name.name.arrayIndex() != Atom::kNotIndex)
        return self->hasExotic(call.vm, name);
    if (self->exotic() == Exotic::First || self->exotic() == Exotic::Last)
        return self->hasExotic(call.vm, name);
    if (name.name.isNull() || self->tableIfAny() == nullptr) return false;
    const std::uint32_t at = self->tableIfAny()->find(name.name);
    return at != PropertyTable::kMissing && !self->tableIfAny()->at(at).isHidden;
}

Value setPropertyIsEnumerable(Call& call)
{
    Object* self = call.self.asObject();
    // Dictionaries do not listen.
    if (self != nullptr && self->tableIfAny() != nullptr && self->exotic() != Exotic::First)
        self->tableIfAny()->setHidden(call.vm.names().intern(call.vm.toString(call.arg(0))),
                                      call.has(1) && !call.vm.toBoolean(call.arg(1)));
    return {};
}

Value objectToString(Call& call)
{
    if (as<ClassObject>(call.self) != nullptr)
        return call.vm.string(
            u"[class " +
            std::u16string(static_cast<ClassObject*>(call.self.object())->instances->name.view()) + u"]");
    const Traits* traits = call.vm.traitsOf(call.self);
    return call.vm.string(u"[object " + std::u16string(traits->name.view()) + u"]");
}

Value functionToString(Call& call)
{
    return call.vm.string(std::string_view(as<ClassObject>(call.self) != nullptr ? "[class Function]"
                                                                                 : "function Function() {}"));
}

Value toLocaleString(Call& call) { return objectToString(call); }
Value valueOf(Call& call) { return call.self; }

Value convertObject(Call& call)
{
    if (call.count == 0 || call.args[0].isNullish()) return call.vm.newObject();
    return call.args[0];
}

Value functionCall(Call& call)
{
    if (!isFunction(call.self)) call.vm.throwError(ErrorClass::Type, 1006, "value is not a function.");
    return call.self.object()->call(call.vm, call.arg(0), call.rest(1));
}

Value functionApply(Call& call)
{
    if (!isFunction(call.self)) call.vm.throwError(ErrorClass::Type, 1006, "value is not a function.");
    RootedList<Value> list(call.vm.heap());
    if (auto* array = as<ArrayObject>(call.arg(1))) {
        for (std::uint32_t i = 0; i < array->length(); ++i) {
            list.push_back(array->at(call.vm, i));
            call.vm.check();
        }
    } else if (call.count > 1 && !call.arg(1).isNullish()) {
        call.vm.throwError(ErrorClass::Type, 1116,
                           "second argument to Function.prototype.apply must be an array.");
    }
    return call.self.object()->call(call.vm, call.arg(0), *list);
}

Value functionLength(Call& call)
{
    auto* function = as<FunctionObject>(call.self);
    if (function == nullptr) return 1;
    if (function->env()->native != nullptr)
        return function->env()->maxArguments < 0 ? 0 : function->env()->maxArguments;
    return static_cast<double>(function->env()->info().parameterTypes.size());
}

Value functionPrototype(Call& call)
{
    auto* function = as<FunctionObject>(call.self);
    return function != nullptr ? function->prototype(call.vm) : Value();
}

Value setFunctionPrototype(Call& call)
{
    if (auto* function = as<FunctionObject>(call.self)) function->setPrototype(call.arg(0));
    return {};
}

Value emptyFunction(Call&) { return {}; }

Object* allocateFunction(Vm& vm, ClassObject&) { return vm.newFunction(&emptyFunction); }

Value makeFunction(Call& call)
{
    if (call.count > 0)
        call.vm.throwError(ErrorClass::Eval, 1066, "The form function('function body') is not supported.");
    return call.vm.newFunction(&emptyFunction);
}

Value classPrototype(Call& call)
{
    auto* cls = as<ClassObject>(call.self);
    return cls != nullptr ? Value(cls->prototype) : Value();
}

Value makeClass(Call& call) { return call.vm.coerce(call.arg(0), call.vm.classes().cls->instances); }

constexpr NativeMember kObjectMembers[] = {
    {"hasOwnProperty", Kind::As3, &hasOwnProperty, 0, 1},
    {"isPrototypeOf", Kind::As3, &isPrototypeOf, 0, 1},
    {"propertyIsEnumerable", Kind::As3, &propertyIsEnumerable, 0, 1},
    {"setPropertyIsEnumerable", Kind::Prototype, &setPropertyIsEnumerable, 1, 2},
    {"toString", Kind::Prototype, &objectToString, 0, -1},
    {"toLocaleString", Kind::Prototype, &toLocaleString, 0, -1},
    {"valueOf", Kind::Prototype, &valueOf, 0, -1},
};
constexpr NativeMember kFunctionMembers[] = {
    {"call", Kind::As3, &functionCall, 0, -1},
    {"apply", Kind::As3, &functionApply, 0, 2},
    {"toString", Kind::Prototype, &functionToString, 0, -1},
    {"toLocaleString", Kind::Prototype, &functionToString, 0, -1},
    {"length", Kind::Getter, &functionLength, 0, 0, nullptr, "int"},
    {"prototype", Kind::Getter, &functionPrototype, 0, 0, &setFunctionPrototype},
};
constexpr NativeMember kClassMembers[] = {
    {"prototype", Kind::Getter, &classPrototype},
};
constexpr NativeConstant kLengthOne[] = {{"length", 1}};

} // namespace

constinit const NativeClass kObject{.package = {},
                                    .name = "Object",
                                    .base = {},
                                    .constructor = &nothing,
                                    .minArguments = 0,
                                    .maxArguments = -1,
                                    .conversion = &convertObject,
                                    .members = kObjectMembers,
                                    .constants = kLengthOne};
constinit const NativeClass kClass{.package = {},
                                   .name = "Class",
                                   .base = {},
                                   .flags = NativeClass::Final,
                                   .conversion = &makeClass,
                                   .members = kClassMembers};
constinit const NativeClass kFunction{.package = {},
                                      .name = "Function",
                                      .base = {},
                                      .flags = NativeClass::Final,
                                      .constructor = &nothing,
                                      .allocate = &allocateFunction,
                                      .conversion = &makeFunction,
                                      .members = kFunctionMembers};

} // namespace flash::avm2::classes
