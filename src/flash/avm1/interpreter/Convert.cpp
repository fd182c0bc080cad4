#include "flash/avm1/interpreter/Convert.h"

#include "flash/avm1/interpreter/Boxed.h"
#include "flash/avm1/interpreter/Vm.h"

#include <cmath>
#include <limits>

namespace flash::avm1
{

namespace
{

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

Value callConversion(Vm& vm, Object* object, Name method)
{
    Value function;
    // Without such a method there is no value either.
    if (!object->find(vm, method, function, object)) return {};
    return vm.call(function, object, {});
}

} // namespace

Value toPrimitive(Vm& vm, Value value, Hint hint)
{
    if (!value.isObject()) return value;
    Object* object = value.object();
    if (vm.host().isClip(object)) return value;
    // Dates prefer their text, from version 6 on.
    const bool text = hint == Hint::String ||
                      (hint == Hint::None && vm.version() >= 6 && object->native<DateNative>() != nullptr);
    const Value result = callConversion(vm, object, text ? vm.common().toString : vm.common().valueOf);
    // A clip counts as a primitive here.
    const bool stays = !result.isObject() || vm.host().isClip(result.object());
    return stays ? result : value;
}

double toNumber(Vm& vm, Value value)
{
    switch (value.type()) {
    case Value::Type::Number: return value.number();
    case Value::Type::Boolean: return value.boolean() ? 1 : 0;
    case Value::Type::Undefined:
    case Value::Type::Null: return vm.version() >= 7 ? kNaN : 0;
    case Value::Type::String: return parseNumber(value.string()->view(), vm.version());
    case Value::Type::Object: break;
    }
    const Value primitive = toPrimitive(vm, value, Hint::Number);
    if (primitive.isObject()) return vm.version() >= 5 ? kNaN : 0;
    return toNumber(vm, primitive);
}

std::int32_t toInt32(Vm& vm, Value value) { return toInt32(toNumber(vm, value)); }

bool toBoolean(Vm& vm, Value value)
{
    switch (value.type()) {
    case Value::Type::Boolean: return value.boolean();
    case Value::Type::Number: return !std::isnan(value.number()) && value.number() != 0;
    case Value::Type::String: {
        if (vm.version() >= 7) return !value.string()->isEmpty();
        const double number = parseNumber(value.string()->view(), vm.version());
        return !std::isnan(number) && number != 0;
    }
    case Value::Type::Object: return true;
    case Value::Type::Undefined:
    case Value::Type::Null: break;
    }
    return false;
}

String* toString(Vm& vm, Value value)
{
    switch (value.type()) {
    case Value::Type::String: return value.string();
    case Value::Type::Number: return vm.string(formatNumber(value.number()));
    case Value::Type::Boolean:
        if (vm.version() < 5) return vm.string(value.boolean() ? "1" : "0");
        return (value.boolean() ? vm.common().trueText : vm.common().falseText).string();
    case Value::Type::Undefined:
        return (vm.version() >= 7 ? vm.common().undefined : vm.common().empty).string();
    case Value::Type::Null: return vm.common().null.string();
    case Value::Type::Object: break;
    }
    // A text in an object is that text, whatever its toString would say.
    if (const Boxed* boxed = value.object()->native<Boxed>(); boxed != nullptr && boxed->value.isString())
        return boxed->value.string();
    if (Native* native = value.object()->nativeBase()) {
        // What stands on the stage is written as its path, without asking toString.
        const Value path = native->primitive(vm, *value.object());
        if (path.isString()) return path.string();
    }
    const Value primitive = toPrimitive(vm, value, Hint::String);
    // An answer that is no text does not count.
    if (primitive.isString()) return primitive.string();
    return vm.string(value.object()->isFunction() ? "[type Function]" : "[type Object]");
}

std::u16string toText(Vm& vm, Value value) { return std::u16string(toString(vm, value)->view()); }

Name toName(Vm& vm, Value value)
{
    if (value.isString()) return vm.names().intern(value.string());
    if (value.isNumber()) {
        const double number = value.number();
        if (number >= 0 && number < 1e9 && number == std::floor(number))
            return vm.names().fromIndex(static_cast<std::uint32_t>(number));
    }
    return vm.names().intern(toString(vm, value));
}

Object* toObject(Vm& vm, Value value)
{
    const auto box = [&](Object* prototype) {
        // As `new` would have made it.
        Object* object = vm.newObject(prototype);
        Value constructor;
        prototype->getPlain(vm, vm.common().constructor, prototype, constructor);
        object->define(vm, vm.common().constructorInternal, constructor, kDontEnum | kFrom6);
        if (vm.version() < 7) object->define(vm, vm.common().constructor, constructor, kDontEnum);
        object->attachNew<Boxed>(value);
        return object;
    };
    switch (value.type()) {
    case Value::Type::Object: return value.object();
    case Value::Type::String: {
        Object* object = box(vm.builtIns().string);
        object->define(vm, vm.common().length, Value(static_cast<double>(value.string()->length())),
                       kBuiltIn);
        return object;
    }
    case Value::Type::Number: return box(vm.builtIns().number);
    case Value::Type::Boolean: return box(vm.builtIns().boolean);
    case Value::Type::Undefined:
    case Value::Type::Null: break;
    }
    return nullptr;
}

bool strictlyEqual(Value a, Value b)
{
    // Not-a-number equals itself here.
    if (a.isNumber() && b.isNumber()) return a.number() == b.number() || a.bits() == b.bits();
    if (a.isString() && b.isString()) return a.bits() == b.bits() || a.string()->view() == b.string()->view();
    return a.bits() == b.bits();
}

bool isSameInstance(Vm& vm, Value a, Value b)
{
    if (!a.isObject() || !b.isObject()) return false;
    Host& host = vm.host();
    return host.isClip(a.object()) && host.isClip(b.object()) &&
           host.targetPath(a.object()) == host.targetPath(b.object());
}

bool looselyEqual(Vm& vm, Value a, Value b)
{
    if (a.isNullish() && b.isNullish()) return true;
    const auto isClip = [&](Value value) { return value.isObject() && vm.host().isClip(value.object()); };
    if (a.type() == b.type() && isClip(a) == isClip(b)) {
        if (vm.version() >= 6 || !a.isObject() || isClip(a))
            return strictlyEqual(a, b) || isSameInstance(vm, a, b);
        // Version 5 asks both, the right one first, even when they are one.
        const Value right = toPrimitive(vm, b, Hint::Number);
        const Value left = toPrimitive(vm, a, Hint::Number);
        // A clip that comes out is no object any more, and has the other one asked again, for its number.
        if (left.isObject() && right.isObject() && isClip(left) == isClip(right))
            return left.bits() == right.bits();
        if (!left.isObject() && !right.isObject()) return looselyEqual(vm, left, right);
        const double number = toNumber(vm, left);
        return number == toNumber(vm, right);
    }
    if (a.isObject() || b.isObject()) {
        const Value left = toPrimitive(vm, a, Hint::Number);
        const Value right = toPrimitive(vm, b, Hint::Number);
        if (left.isObject() || right.isObject()) {
            if (vm.version() >= 6) return left.bits() == right.bits();
            if (left.bits() == right.bits()) return true;
            // Version 5 goes on to compare numbers.
            const double number = toNumber(vm, left);
            return number == toNumber(vm, right);
        }
        return looselyEqual(vm, left, right);
    }
    if (a.isNullish() || b.isNullish()) return false;
    return toNumber(vm, a) == toNumber(vm, b);
}

Value lessThan(Vm& vm, Value a, Value b)
{
    const Value left = toPrimitive(vm, a, Hint::Number);
    // An object on the left decides: the right side is not even asked. A clip is no object here.
    const auto isPlain = [&](Value value) { return value.isObject() && !vm.host().isClip(value.object()); };
    if (isPlain(left)) return Value(false);
    const Value right = toPrimitive(vm, b, Hint::Number);
    if (left.isString() && right.isString()) {
        // The empty text comes after all others.
        if (left.string()->isEmpty() || right.string()->isEmpty())
            return Value(!left.string()->isEmpty() && right.string()->isEmpty());
        return Value(left.string()->view() < right.string()->view());
    }
    if (isPlain(right)) return Value(false);
    const double x = toNumber(vm, left);
    const double y = toNumber(vm, right);
    if (std::isnan(x) || std::isnan(y)) return Value::undefined();
    return Value(x < y);
}

String* concatenated(Vm& vm, String* first, String* second)
{
    if (!vm.takesText(first->length() + second->length())) return vm.string(std::u16string());
    return vm.heap().make<String>(first, second);
}

Value add(Vm& vm, Value a, Value b)
{
    // The right side is asked first; scripts see the order.
    const Value right = toPrimitive(vm, b);
    const Value left = toPrimitive(vm, a);
    if (left.isString() || right.isString()) {
        String* first = toString(vm, left);
        String* second = toString(vm, right);
        return Value(concatenated(vm, first, second));
    }
    const double sum = toNumber(vm, left);
    return Value(sum + toNumber(vm, right));
}

std::string_view typeOf(Vm&, Value value)
{
    switch (value.type()) {
    case Value::Type::Number: return "number";
    case Value::Type::Undefined: return "undefined";
    case Value::Type::Null: return "null";
    case Value::Type::Boolean: return "boolean";
    case Value::Type::String: return "string";
    case Value::Type::Object: break;
    }
    return value.object()->typeOf();
}

} // namespace flash::avm1
