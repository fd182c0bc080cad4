#include "flash/avm1/classes/GeomValues.h"

#include "flash/avm1/classes/ClassTable.h"

#include <array>
#include <cmath>

namespace flash::avm1
{
namespace
{

double member(Vm& vm, Object* object, std::string_view name)
{
    return toNumber(vm, object->get(vm, vm.name(name)));
}

int wholePixels(double number)
{
    constexpr double kFar = 1 << 24;
    return number == number ? static_cast<int>(std::clamp(number, -kFar, kFar)) : 0;
}

/// flash.geom.NAME, or undefined.
Value geomClass(Vm& vm, std::string_view name)
{
    Object* object = vm.global();
    for (const std::string_view step : {std::string_view("flash"), std::string_view("geom")}) {
        object = object->get(vm, vm.name(step)).asObject();
        if (object == nullptr) return {};
    }
    return object->get(vm, vm.name(name));
}

std::int16_t multiplier(double number) { return static_cast<std::int16_t>(toInt32(number * 256)); }
std::int16_t addend(double number) { return static_cast<std::int16_t>(toInt32(number)); }

// ---- ColorTransform ---------------------------------------------------------------------------------------

constexpr std::array<const char*, 8> kMembers = {"redMultiplier",   "greenMultiplier", "blueMultiplier",
                                                 "alphaMultiplier", "redOffset",       "greenOffset",
                                                 "blueOffset",      "alphaOffset"};

/// The numbers as scripts gave them, in the order of kMembers and of the constructor.
struct ColorTransformNative final : Native {
    static inline const char kTag = 0;
    [[nodiscard]] const void* tag() const override { return &kTag; }
    std::array<double, 8> numbers{1, 1, 1, 1, 0, 0, 0, 0};
};

template <std::size_t Index>
Value getMember(Call& call)
{
    const auto* native = call.native<ColorTransformNative>();
    return native == nullptr ? Value() : Value(native->numbers[Index]);
}
template <std::size_t Index>
Value setMember(Call& call)
{
    if (auto* native = call.native<ColorTransformNative>())
        native->numbers[Index] = toNumber(call.vm, call.arg(0));
    return {};
}

Value getRgb(Call& call)
{
    const auto* native = call.native<ColorTransformNative>();
    if (native == nullptr) return {};
    const auto part = [&](std::size_t index) { return toInt32(native->numbers[index]); };
    return part(4) << 16 | part(5) << 8 | part(6);
}
Value setRgb(Call& call)
{
    auto* native = call.native<ColorTransformNative>();
    if (native == nullptr) return {};
    const auto rgb = static_cast<std::uint32_t>(toInt32(call.vm, call.arg(0)));
    for (std::size_t i = 0; i < 3; ++i) {
        native->numbers[i] = 0;
        native->numbers[4 + i] = rgb >> (16 - 8 * i) & 255;
    }
    return {};
}

Value concat(Call& call)
{
    auto* native = call.native<ColorTransformNative>();
    Object* other = call.arg(0).asObject();
    const auto* second = other == nullptr ? nullptr : other->native<ColorTransformNative>();
    if (native == nullptr || second == nullptr) return {};
    for (std::size_t i = 0; i < 4; ++i) {
        native->numbers[4 + i] += native->numbers[i] * second->numbers[4 + i];
        native->numbers[i] *= second->numbers[i];
    }
    return {};
}

Value describe(Call& call)
{
    // Written in script: it asks for the properties by name, of whatever `this` is.
    Object* self = call.self.asObject();
    if (self == nullptr) return {};
    std::u16string text = u"(";
    for (std::size_t i = 0; i < kMembers.size(); ++i) {
        const std::string_view name = kMembers[i];
        text += i == 0 ? u"" : u", ";
        text.append(name.begin(), name.end());
        text += u'=';
        text += toText(call.vm, self->get(call.vm, call.vm.name(name)));
    }
    return call.vm.string(text + u")");
}

Value construct(Call& call)
{
    Object* self = call.self.asObject();
    if (self == nullptr || !call.isConstruct) return {};
    auto& native = self->attachNew<ColorTransformNative>();
    // All eight, or the identity.
    for (std::size_t i = 0; call.count() >= kMembers.size() && i < kMembers.size(); ++i)
        native.numbers[i] = toNumber(call.vm, call.arg(i));
    return {};
}

// Below version 8 an object of this class has but what is assigned to it.
constexpr LibraryFunction kMethods[] = {{"concat", Written::Native, kFrom8, &concat},
                                        {"toString", Written::Script, 0, &describe}};

template <std::size_t... Index>
void addMembers(Vm& vm, Object* prototype, std::index_sequence<Index...>)
{
    const AccessorInfo accessors[] = {{kMembers[Index], kFrom8, &getMember<Index>, &setMember<Index>}...,
                                      {"rgb", kFrom8, &getRgb, &setRgb}};
    // Loops list alpha apart from the others.
    constexpr std::size_t kOrder[] = {3, 0, 1, 2, 7, 4, 5, 6, 8};
    for (const std::size_t place : kOrder) vm.addAccessors(prototype, {&accessors[place], 1}, 0);
}

} // namespace

std::optional<render::IntRect> rectFromValue(Vm& vm, Value value)
{
    Object* object = value.asObject();
    if (object == nullptr) return {};
    const int x = wholePixels(member(vm, object, "x")), y = wholePixels(member(vm, object, "y"));
    const int width = wholePixels(member(vm, object, "width"));
    const int height = wholePixels(member(vm, object, "height"));
    return render::IntRect{x, y, x + width, y + height};
}

swf::Point pointFromValue(Vm& vm, Value value)
{
    Object* object = value.asObject();
    if (object == nullptr) return {};
    Value x, y;
    if (!object->find(vm, vm.name(std::string_view("x")), x, object)) return {};
    if (!object->find(vm, vm.name(std::string_view("y")), y, object)) return {};
    const double number = toNumber(vm, x);
    return {number, toNumber(vm, y)};
}

std::optional<swf::Matrix> matrixFromValue(Vm& vm, Value value)
{
    Object* object = value.asObject();
    if (object == nullptr) return {};
    std::array<double, 6> numbers{};
    constexpr const char* kNames[] = {"a", "b", "c", "d", "tx", "ty"};
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        Value found;
        if (!object->find(vm, vm.name(std::string_view(kNames[i])), found, object)) return {};
        const double number = toNumber(vm, found);
        if (std::isfinite(number)) numbers[i] = number;
    }
    return swf::Matrix{numbers[0], numbers[1], numbers[2], numbers[3], numbers[4], numbers[5]};
}

std::optional<swf::ColorTransform> colorTransformFromValue(Vm&, Value value)
{
    const Object* object = value.asObject();
    const auto* native = object == nullptr ? nullptr : object->native<ColorTransformNative>();
    if (native == nullptr) return {};
    const std::array<double, 8>& numbers = native->numbers;
    return swf::ColorTransform{multiplier(numbers[0]), multiplier(numbers[1]), multiplier(numbers[2]),
                               multiplier(numbers[3]), addend(numbers[4]),     addend(numbers[5]),
                               addend(numbers[6]),     addend(numbers[7])};
}

Value newRectangle(Vm& vm, double x, double y, double width, double height)
{
    const Value args[] = {x, y, width, height};
    return vm.construct(geomClass(vm, "Rectangle"), args);
}

Value newPoint(Vm& vm, double x, double y)
{
    const Value args[] = {x, y};
    return vm.construct(geomClass(vm, "Point"), args);
}

Value newMatrix(Vm& vm, const swf::Matrix& m)
{
    const Value args[] = {m.a, m.b, m.c, m.d, m.tx, m.ty};
    return vm.construct(geomClass(vm, "Matrix"), args);
}

Value newColorTransform(Vm& vm, const swf::ColorTransform& t)
{
    const Value args[] = {t.redMul / 256.0, t.greenMul / 256.0, t.blueMul / 256.0, t.alphaMul / 256.0,
                          t.redAdd,         t.greenAdd,         t.blueAdd,         t.alphaAdd};
    return vm.construct(geomClass(vm, "ColorTransform"), args);
}

void installColorTransform(Vm& vm, Object* package)
{
    Function* constructor = vm.newFunction(&construct);
    Object* prototype = vm.newObject();
    prototype->define(vm, vm.common().constructor, constructor, kBuiltIn);
    addMembers(vm, prototype, std::make_index_sequence<kMembers.size()>());
    defineFunctions(vm, prototype, kMethods);
    constructor->define(vm, vm.common().prototype, prototype, kBuiltIn);
    package->define(vm, "ColorTransform", constructor, 0);
}

} // namespace flash::avm1
