#pragma once

#include "flash/avm2/bindings/Events.h"
#include "flash/avm2/classes/Library.h"

#include <array>
#include <initializer_list>

// What the bindings of plain classes are put together from.
namespace flash::avm2
{

/// A native whose state is values that scripts may read and set, converted and checked as its table says.
template <class Base, std::size_t count, class Tag>
class FieldsOf : public Base
{
public:
    AVM2_NATIVE(Base)
    FieldsOf(Traits* traits, Object* proto) : Base(traits, proto) {}
    void trace(Tracer& tracer) override
    {
        Base::trace(tracer);
        for (const Value& value : fields) tracer(value);
    }
    static constexpr const char* kClass = Tag::kClass;
    std::array<Value, count> fields{};
};

enum class FieldType : std::uint8_t { Any, Int, Uint, Number, Boolean, String };

inline Value converted(Vm& vm, Value value, FieldType type)
{
    switch (type) {
    case FieldType::Any: return value;
    case FieldType::Int: return vm.toInt(value);
    case FieldType::Uint: return static_cast<double>(vm.toUint(value));
    case FieldType::Number: return vm.toNumber(value);
    case FieldType::Boolean: return vm.toBoolean(value);
    case FieldType::String: return vm.coerceString(value);
    }
    return value;
}

template <class T, std::size_t index>
Value getField(Call& call)
{
    return classes::selfAs<T>(call, T::kClass).fields[index];
}
template <class T, std::size_t index, FieldType type = FieldType::Any>
Value setField(Call& call)
{
    const Value value = converted(call.vm, call.arg(0), type);
    classes::selfAs<T>(call, T::kClass).fields[index] = value;
    return {};
}

/// An argument that must be of a class, or null. @throws 1034
inline Object* objectArg(Call& call, std::uint32_t i, std::string_view cls)
{
    return call.vm.coerce(call.arg(i), call.vm.nativeClass(cls)->instances).asObject();
}
[[noreturn]] inline void throwNullParameter(Vm& vm, std::string_view parameter)
{
    vm.throwError(ErrorClass::Type, 2007, "Parameter " + std::string(parameter) + " must be non-null.");
}
[[noreturn]] inline void throwNotAccepted(Vm& vm, std::string_view parameter)
{
    vm.throwError(ErrorClass::Argument, 2008,
                  "Parameter " + std::string(parameter) + " must be one of the accepted values.");
}
/// A text argument that must be there. @throws 2007
inline std::u16string textArg(Call& call, std::uint32_t i, std::string_view parameter)
{
    if (call.arg(i).isNullish()) throwNullParameter(call.vm, parameter);
    return std::u16string(call.vm.text(call.arg(i)));
}

/// An event with what its class's constructor takes.
inline EventObject* newEventWith(Vm& vm, std::string_view cls, std::string_view type,
                                 std::initializer_list<Value> more, bool bubbles = false,
                                 bool cancelable = false)
{
    RootedList<Value> args(vm.heap());
    args.push_back(Value(vm.name(type).string()));
    args.push_back(Value(bubbles));
    args.push_back(Value(cancelable));
    for (const Value value : more) args.push_back(value);
    return as<EventObject>(vm.construct(Value(vm.nativeClass(cls)), std::span<const Value>(*args)));
}
inline bool fireWith(Vm& vm, DispatcherObject& target, std::string_view cls, std::string_view type,
                     std::initializer_list<Value> more, bool bubbles = false, bool cancelable = false)
{
    return target.dispatch(vm, *newEventWith(vm, cls, type, more, bubbles, cancelable));
}
/// Status as peers of a network report it: a code and a level.
void fireNetStatus(Vm& vm, DispatcherObject& target, std::string_view code, std::string_view level);

/// A constructor that sets its object's variables in their order.
inline Value assignSlots(Call& call)
{
    Object& self = *call.self.object();
    for (std::uint32_t i = 0; i < call.count && i < self.slotCount(); ++i)
        call.vm.setSlotTyped(self, i, call.args[i]);
    return {};
}

/// A constructor of what only the player makes.
inline Value refuseConstruction(Call& call)
{
    call.vm.throwError(ErrorClass::Argument, 2012,
                       std::u16string(call.vm.traitsOf(call.self)->name.view()) +
                           u"$ class cannot be instantiated.");
}
/// Sets a variable that scripts only read.
inline void setReadOnly(Vm& vm, Object& object, std::string_view property, Value value)
{
    const Binding* binding = object.traits()->find(vm.publicName(property));
    if (binding != nullptr) vm.setSlotTyped(object, static_cast<std::uint32_t>(binding->id), value);
}

inline Value isAlwaysZero(Call&) { return 0; }
inline Value isAlwaysEmpty(Call& call) { return Value(call.vm.newArray()); } ///< a list
inline Value doNothing(Call&) { return {}; }
inline Value isAlwaysFalse(Call&) { return false; }
inline Value isAlwaysTrue(Call&) { return true; }
inline Value isAlwaysNull(Call&) { return Value::null(); }

constexpr NativeClass constantsOf(std::string_view package, std::string_view name,
                                  std::span<const NativeConstant> list)
{
    return {.package = package,
            .name = name,
            .base = {},
            .flags = NativeClass::Sealed | NativeClass::Final,
            .constants = list};
}
constexpr NativeClass staticsOf(std::string_view package, std::string_view name,
                                std::span<const NativeMember> members)
{
    return {.package = package,
            .name = name,
            .base = {},
            .flags = NativeClass::Sealed | NativeClass::Final,
            .members = members};
}

} // namespace flash::avm2
