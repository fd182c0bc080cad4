#include "flash/avm2/bindings/Fields.h"
#include "flash/avm2/bindings/Graphics.h"
#include "flash/avm2/bindings/Library.h"
#include "flash/avm2/interpreter/Collections.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

// flash.filters: what scripts set of a filter, within the values that there are.
namespace flash::avm2
{

using Kind = NativeMember::Kind;

namespace
{

/// What becomes of a value that is set.
enum class Range : std::uint8_t {
    Any,
    Unit,     ///< 0 to 1
    Byte,     ///< 0 to 255: how far and how strong
    Passes,   ///< 0 to 15
    Side,     ///< 0 to 15, of a matrix
    Text,     ///< not null
    Mode,     ///< one of a displacement's
    List,     ///< not null; a copy, so that what is changed in it has to be set again
    Matrix20, ///< the same, of 20 numbers
    NotNull,
};
/// A member of a filter; its slot is as far in the filter as it is in the table.
struct Field {
    const char* name;
    Range range = Range::Any;
};

enum class By : std::uint8_t { Property, Constructor };

Value within(Call& call, Value value, double most)
{
    const double number = call.vm.toNumber(value);
    return std::isnan(number) ? 0.0 : std::clamp(number, 0.0, most);
}
Value listOf(Vm& vm, std::span<const double> numbers)
{
    Root<ArrayObject> made(vm.heap(), static_cast<ArrayObject*>(vm.newArray()));
    for (const double number : numbers) made->push(vm, Value(number));
    return Value(made.get());
}

Value ranged(Call& call, const Field& field, Value value, By by)
{
    Vm& vm = call.vm;
    constexpr double kFar = 255, kMost = 15;
    if (value.isNullish() && field.range >= Range::Text) {
        // Left out it is as by default.
        if (by == By::Constructor && field.range != Range::Text && field.range != Range::Mode) return value;
        throwNullParameter(vm, field.name);
    }
    switch (field.range) {
    case Range::Any:
    case Range::Text:
    case Range::NotNull: return value;
    case Range::Unit: return within(call, value, 1);
    case Range::Byte: return within(call, value, kFar);
    case Range::Passes:
    case Range::Side: return within(call, value, kMost);
    case Range::Mode: {
        const std::u16string_view mode = vm.text(value);
        for (const std::u16string_view known : {u"wrap", u"clamp", u"ignore", u"color"}) {
            if (mode == known) return value;
        }
        throwNotAccepted(vm, field.name);
    }
    case Range::List: return listOf(vm, numbersOf(vm, value));
    case Range::Matrix20: {
        std::vector<double> numbers = numbersOf(vm, value);
        constexpr std::size_t kNumbers = 20;
        numbers.resize(kNumbers);
        return listOf(vm, numbers);
    }
    }
    return value;
}

Object& filterSelf(Call& call, std::size_t slot)
{
    Object* self = call.self.asObject();
    if (self == nullptr || slot >= self->slotCount())
        call.vm.throwError(ErrorClass::Type, 1034,
                           "Type Coercion failed: cannot convert to flash.filters.BitmapFilter.");
    return *self;
}

/// A filter of the player's own kind, whatever class of a script it is of.
Value cloned(Call& call)
{
    Object* self = call.self.asObject();
    ClassObject* cls = self->traits()->cls;
    while (cls->constructor != nullptr && cls->constructor->native == nullptr && cls->base != nullptr)
        cls = cls->base;
    Object* made = call.vm.instantiate(cls);
    for (std::uint32_t i = 0; i < made->slotCount() && i < self->slotCount(); ++i)
        made->setSlot(i, self->slot(i));
    return Value(made);
}
constexpr NativeMember kClone[] = {{"clone", Kind::Method, &cloned, 0, 0}};

template <const auto& fields>
struct Members {
    template <std::size_t i>
    static Value get(Call& call)
    {
        const Value value = filterSelf(call, i).slot(static_cast<std::uint32_t>(i));
        const bool isList = fields[i].range == Range::List || fields[i].range == Range::Matrix20;
        return isList && !value.isNullish() ? listOf(call.vm, numbersOf(call.vm, value)) : value;
    }
    template <std::size_t i>
    static Value set(Call& call)
    {
        Object& self = filterSelf(call, i);
        const Value value = ranged(call, fields[i], call.arg(0), By::Property);
        call.vm.setSlotTyped(self, static_cast<std::uint32_t>(i), value);
        return {};
    }
    static Value construct(Call& call)
    {
        Object& self = filterSelf(call, fields.size() - 1);
        for (std::uint32_t i = 0; i < call.count && i < fields.size(); ++i)
            call.vm.setSlotTyped(self, i, ranged(call, fields[i], call.args[i], By::Constructor));
        // A matrix that changes nothing.
        if constexpr (fields[0].range == Range::Matrix20) {
            if (self.slot(0).isNullish())
                self.setSlot(0, listOf(call.vm, std::array<double, 20>{1, 0, 0, 0, 0, 0, 1, 0, 0, 0, //
                                                                       0, 0, 1, 0, 0, 0, 0, 0, 1, 0}));
        }
        return {};
    }
    static constexpr auto kList = []<std::size_t... i>(std::index_sequence<i...>)
    {
        return std::array<NativeMember, sizeof...(i) + 1>{
            NativeMember{fields[i].name, Kind::Getter, &get<i>, 0, 0, &set<i>}..., kClone[0]};
    }
    (std::make_index_sequence<fields.size()>());
};

template <const auto& fields>
constexpr NativeClass filter(std::string_view name, std::string_view slots)
{
    return {.package = "flash.filters",
            .name = name,
            .base = "flash.filters::BitmapFilter",
            .flags = NativeClass::Sealed,
            .constructor = &Members<fields>::construct,
            .minArguments = 0,
            .maxArguments = -1,
            .members = Members<fields>::kList,
            .slots = slots};
}

// In the order of the constructors' arguments, as are the slots.
constexpr auto kBlur =
    std::to_array<Field>({{"blurX", Range::Byte}, {"blurY", Range::Byte}, {"quality", Range::Passes}});
constexpr auto kGlow = std::to_array<Field>({{"color"},
                                             {"alpha", Range::Unit},
                                             {"blurX", Range::Byte},
                                             {"blurY", Range::Byte},
                                             {"strength", Range::Byte},
                                             {"quality", Range::Passes},
                                             {"inner"},
                                             {"knockout"}});
constexpr auto kShadow = std::to_array<Field>({{"distance"},
                                               {"angle"},
                                               {"color"},
                                               {"alpha", Range::Unit},
                                               {"blurX", Range::Byte},
                                               {"blurY", Range::Byte},
                                               {"strength", Range::Byte},
                                               {"quality", Range::Passes},
                                               {"inner"},
                                               {"knockout"},
                                               {"hideObject"}});
constexpr auto kBevel = std::to_array<Field>({{"distance"},
                                              {"angle"},
                                              {"highlightColor"},
                                              {"highlightAlpha", Range::Unit},
                                              {"shadowColor"},
                                              {"shadowAlpha", Range::Unit},
                                              {"blurX", Range::Byte},
                                              {"blurY", Range::Byte},
                                              {"strength", Range::Byte},
                                              {"quality", Range::Passes},
                                              {"type", Range::Text},
                                              {"knockout"}});
constexpr auto kColorMatrix = std::to_array<Field>({{"matrix", Range::Matrix20}});
constexpr auto kDisplacement = std::to_array<Field>({{"mapBitmap", Range::NotNull},
                                                     {"mapPoint", Range::NotNull},
                                                     {"componentX"},
                                                     {"componentY"},
                                                     {"scaleX"},
                                                     {"scaleY"},
                                                     {"mode", Range::Mode},
                                                     {"color"},
                                                     {"alpha", Range::Unit}});
constexpr auto kConvolution = std::to_array<Field>({{"matrixX", Range::Side},
                                                    {"matrixY", Range::Side},
                                                    {"matrix", Range::List},
                                                    {"divisor"},
                                                    {"bias"},
                                                    {"preserveAlpha"},
                                                    {"clamp"},
                                                    {"color"},
                                                    {"alpha", Range::Unit}});
constexpr auto kGradient = std::to_array<Field>({{"distance"},
                                                 {"angle"},
                                                 {"colors", Range::List},
                                                 {"alphas", Range::List},
                                                 {"ratios", Range::List},
                                                 {"blurX", Range::Byte},
                                                 {"blurY", Range::Byte},
                                                 {"strength", Range::Byte},
                                                 {"quality", Range::Passes},
                                                 {"type", Range::Text},
                                                 {"knockout"}});

constexpr std::string_view kGradientSlots =
    "@distance:Number=4 @angle:Number=45 @colors:* @alphas:* @ratios:* @blurX:Number=4 @blurY:Number=4 "
    "@strength:Number=1 @quality:int=1 @type:String=inner @knockout:Boolean";

constexpr NativeClass kClasses[] = {
    {.package = "flash.filters",
     .name = "BitmapFilter",
     .base = {},
     .flags = NativeClass::Sealed,
     .constructor = &doNothing,
     .members = kClone},
    filter<kBlur>("BlurFilter", "@blurX:Number=4 @blurY:Number=4 @quality:int=1"),
    filter<kGlow>("GlowFilter",
                  "@color:uint=16711680 @alpha:Number=1 @blurX:Number=6 @blurY:Number=6 @strength:Number=2 "
                  "@quality:int=1 @inner:Boolean @knockout:Boolean"),
    filter<kShadow>("DropShadowFilter",
                    "@distance:Number=4 @angle:Number=45 @color:uint @alpha:Number=1 @blurX:Number=4 "
                    "@blurY:Number=4 @strength:Number=1 @quality:int=1 @inner:Boolean @knockout:Boolean "
                    "@hideObject:Boolean"),
    filter<kBevel>("BevelFilter",
                   "@distance:Number=4 @angle:Number=45 @highlightColor:uint=16777215 "
                   "@highlightAlpha:Number=1 @shadowColor:uint @shadowAlpha:Number=1 @blurX:Number=4 "
                   "@blurY:Number=4 @strength:Number=1 @quality:int=1 @type:String=inner @knockout:Boolean"),
    filter<kColorMatrix>("ColorMatrixFilter", "@matrix:*"),
    filter<kDisplacement>("DisplacementMapFilter",
                          "@mapBitmap:* @mapPoint:* @componentX:uint @componentY:uint @scaleX:Number "
                          "@scaleY:Number @mode:String=wrap @color:uint @alpha:Number"),
    filter<kConvolution>("ConvolutionFilter",
                         "@matrixX:Number @matrixY:Number @matrix:* @divisor:Number=1 @bias:Number "
                         "@preserveAlpha:Boolean=true @clamp:Boolean=true @color:uint @alpha:Number"),
    filter<kGradient>("GradientGlowFilter", kGradientSlots),
    filter<kGradient>("GradientBevelFilter", kGradientSlots),
    {.package = "flash.filters",
     .name = "ShaderFilter",
     .base = "flash.filters::BitmapFilter",
     .flags = NativeClass::Sealed,
     .constructor = &assignSlots,
     .members = kClone,
     .slots = "shader:* leftExtension:int topExtension:int rightExtension:int bottomExtension:int"},
};

} // namespace

NativeLibrary filterLibrary() { return {kClasses, {}}; }

} // namespace flash::avm2
