#include "flash/avm1/classes/Filters.h"

#include "flash/avm1/classes/BitmapDataNative.h"
#include "flash/avm1/classes/FilterFields.h"

#include <utility>

namespace flash::avm1
{
namespace
{

using F = FilterField;

constexpr std::size_t kMaxProperties = 12;

// Accessors are plain functions, so there is one for every place in every class's table.
template <FilterKind Kind, std::size_t Index>
Value getProperty(Call& call)
{
    const auto* filter = call.native<FilterNative>();
    if (filter == nullptr || filter->kind != Kind) return {};
    return readFilterProperty(call.vm, *filter, filterProperties(Kind)[Index]);
}

template <FilterKind Kind, std::size_t Index>
Value setProperty(Call& call)
{
    auto* filter = call.native<FilterNative>();
    if (filter != nullptr && filter->kind == Kind)
        writeFilterProperty(call.vm, *filter, filterProperties(Kind)[Index], call.arg(0));
    return {};
}

template <FilterKind Kind>
Value constructFilter(Call& call)
{
    Object* self = call.self.asObject();
    if (self == nullptr || !call.isConstruct) return {};
    auto& filter = self->attachNew<FilterNative>(Kind);
    // Players up to version 9 let loops see it, unlike those of other classes.
    if (Kind != FilterKind::Base && !call.vm.host().isOfLaterPlayers())
        self->changeFlags(call.vm, call.vm.common().constructorInternal, 0, kDontEnum | kFrom6);
    const auto properties = filterProperties(Kind);
    for (std::size_t i = 0; i < properties.size() && i < call.count(); ++i)
        writeFilterProperty(call.vm, filter, properties[i], call.arg(i));
    return {};
}

Value clone(Call& call)
{
    const auto* filter = call.native<FilterNative>();
    if (filter == nullptr || filter->kind == FilterKind::Base) return {};
    Object* copy = call.vm.newObject(call.self.object()->protoValue().asObject());
    copy->attachNew<FilterNative>(*filter);
    return copy;
}

constexpr MemberInfo kBaseMembers[] = {{"clone", 0, 0, &clone}};

template <FilterKind Kind, std::size_t... Index>
void addAccessors(Vm& vm, Object* prototype, std::index_sequence<Index...>)
{
    constexpr NativeFunction kGetters[] = {&getProperty<Kind, Index>...};
    constexpr NativeFunction kSetters[] = {&setProperty<Kind, Index>...};
    const auto properties = filterProperties(Kind);
    const auto listing = filterListing(Kind);
    for (std::size_t place = 0; place < properties.size(); ++place) {
        std::size_t i = place;
        for (std::size_t k = 0; !listing.empty() && k < properties.size(); ++k)
            if (listing[place] == properties[k].name) i = k;
        // Below version 8 a filter has but what is assigned to it.
        const AccessorInfo accessor{properties[i].name, kFrom8, kGetters[i], kSetters[i]};
        vm.addAccessors(prototype, std::span(&accessor, 1), 0);
    }
}

/// @param base the constructor of BitmapFilter
template <FilterKind Kind>
void addClass(Vm& vm, Object* package, const char* name, Function* base)
{
    static_assert(Kind != FilterKind::Base);
    Function* constructor = vm.newFunction(&constructFilter<Kind>);
    // The prototype is itself a filter object of the base class, as `new BitmapFilter()` would make it.
    Object* prototype = vm.newObject(vm.prototypeOf(base));
    prototype->define(vm, vm.common().constructorInternal, base, kDontEnum);
    addAccessors<Kind>(vm, prototype, std::make_index_sequence<kMaxProperties>());
    constructor->define(vm, vm.common().prototype, prototype, kBuiltIn);
    package->define(vm, name, constructor, 0);
}

swf::Rgba rgba(double color, double alpha)
{
    const auto bits = static_cast<std::uint32_t>(color);
    return {static_cast<std::uint8_t>(bits >> 16), static_cast<std::uint8_t>(bits >> 8),
            static_cast<std::uint8_t>(bits), static_cast<std::uint8_t>(alpha)};
}

double rgbOf(swf::Rgba c) { return static_cast<double>((c.r << 16) | (c.g << 8) | c.b); }

swf::Filter describe(const FilterNative& f)
{
    const int passes = static_cast<int>(f[F::Quality]);
    const bool knockout = f[F::Knockout] != 0;
    const auto placement = static_cast<FilterPlacement>(static_cast<int>(f[F::Placement]));
    const bool inner = placement == FilterPlacement::Inner, onTop = placement == FilterPlacement::Full;
    switch (f.kind) {
    case FilterKind::DropShadow:
        return swf::DropShadowFilter{rgba(f[F::Color], f[F::Alpha]),
                                     f[F::BlurX],
                                     f[F::BlurY],
                                     f[F::Angle],
                                     f[F::Distance],
                                     f[F::Strength],
                                     f[F::Inner] != 0,
                                     knockout,
                                     f[F::HideObject] == 0,
                                     passes};
    case FilterKind::Glow:
        return swf::GlowFilter{rgba(f[F::Color], f[F::Alpha]),
                               f[F::BlurX],
                               f[F::BlurY],
                               f[F::Strength],
                               f[F::Inner] != 0,
                               knockout,
                               true,
                               passes};
    case FilterKind::Bevel:
        return swf::BevelFilter{rgba(f[F::Color], f[F::Alpha]),
                                rgba(f[F::ShadowColor], f[F::ShadowAlpha]),
                                f[F::BlurX],
                                f[F::BlurY],
                                f[F::Angle],
                                f[F::Distance],
                                f[F::Strength],
                                inner,
                                knockout,
                                true,
                                onTop,
                                passes};
    case FilterKind::GradientGlow:
    case FilterKind::GradientBevel: {
        swf::GradientFilter filter;
        filter.bevel = f.kind == FilterKind::GradientBevel;
        for (std::size_t i = 0; i < static_cast<std::size_t>(f.stopCount); ++i)
            filter.stops.push_back({f.stopRatios[i], rgba(f.stopColors[i], f.stopAlphas[i])});
        filter.blurX = f[F::BlurX];
        filter.blurY = f[F::BlurY];
        filter.angle = f[F::Angle];
        filter.distance = f[F::Distance];
        filter.strength = f[F::Strength];
        filter.inner = inner;
        filter.knockout = knockout;
        filter.onTop = onTop;
        filter.passes = passes;
        return filter;
    }
    case FilterKind::Convolution: {
        swf::ConvolutionFilter filter;
        filter.columns = static_cast<int>(f[F::MatrixX]);
        filter.rows = static_cast<int>(f[F::MatrixY]);
        filter.divisor = f[F::Divisor];
        filter.bias = f[F::Bias];
        filter.matrix = f.matrix; // at least columns * rows
        filter.defaultColor = rgba(f[F::Color], f[F::Alpha]);
        filter.clamp = f[F::Clamp] != 0;
        filter.preserveAlpha = f[F::PreserveAlpha] != 0;
        return filter;
    }
    case FilterKind::ColorMatrix: {
        swf::ColorMatrixFilter filter;
        for (std::size_t i = 0; i < filter.matrix.size() && i < f.matrix.size(); ++i)
            filter.matrix[i] = f.matrix[i];
        return filter;
    }
    case FilterKind::DisplacementMap: {
        swf::DisplacementMapFilter filter;
        const auto* map = f.map == nullptr ? nullptr : f.map->native<BitmapDataNative>();
        if (map != nullptr) filter.map = map->bitmap;
        filter.mapX = static_cast<int>(f.mapX);
        filter.mapY = static_cast<int>(f.mapY);
        filter.componentX = static_cast<int>(f[F::ComponentX]);
        filter.componentY = static_cast<int>(f[F::ComponentY]);
        filter.scaleX = f[F::ScaleX];
        filter.scaleY = f[F::ScaleY];
        filter.mode = static_cast<swf::DisplacementMapFilter::Mode>(f[F::Mode]);
        filter.color = rgba(f[F::Color], f[F::Alpha]);
        return filter;
    }
    case FilterKind::Blur:
    case FilterKind::Base:
    case FilterKind::Count: break;
    }
    return swf::BlurFilter{f[F::BlurX], f[F::BlurY], passes};
}

void setPlacement(FilterNative& f, bool inner, bool onTop)
{
    f[F::Placement] = static_cast<double>(onTop   ? FilterPlacement::Full
                                          : inner ? FilterPlacement::Inner
                                                  : FilterPlacement::Outer);
}

/// The reverse of describe(), one overload a kind; each answers the class's name.
struct Recorder {
    Heap& heap;
    FilterNative* made = nullptr;

    FilterNative& make(FilterKind kind)
    {
        made = heap.make<FilterNative>(kind);
        return *made;
    }
    template <class T>
    FilterNative& makeBlurred(FilterKind kind, const T& filter)
    {
        FilterNative& f = make(kind);
        f[F::BlurX] = filter.blurX;
        f[F::BlurY] = filter.blurY;
        f[F::Quality] = filter.passes;
        return f;
    }
    template <class T>
    FilterNative& makeThrown(FilterKind kind, const T& filter)
    {
        FilterNative& f = makeBlurred(kind, filter);
        f[F::Angle] = filter.angle;
        f[F::Distance] = filter.distance;
        f[F::Strength] = filter.strength;
        f[F::Knockout] = filter.knockout ? 1 : 0;
        return f;
    }

    const char* operator()(const swf::BlurFilter& filter)
    {
        makeBlurred(FilterKind::Blur, filter);
        return "BlurFilter";
    }
    const char* operator()(const swf::DropShadowFilter& filter)
    {
        FilterNative& f = makeThrown(FilterKind::DropShadow, filter);
        f[F::Color] = rgbOf(filter.color);
        f[F::Alpha] = filter.color.a;
        f[F::Inner] = filter.inner ? 1 : 0;
        f[F::HideObject] = filter.compositeSource ? 0 : 1;
        return "DropShadowFilter";
    }
    const char* operator()(const swf::GlowFilter& filter)
    {
        FilterNative& f = makeBlurred(FilterKind::Glow, filter);
        f[F::Color] = rgbOf(filter.color);
        f[F::Alpha] = filter.color.a;
        f[F::Strength] = filter.strength;
        f[F::Inner] = filter.inner ? 1 : 0;
        f[F::Knockout] = filter.knockout ? 1 : 0;
        return "GlowFilter";
    }
    const char* operator()(const swf::BevelFilter& filter)
    {
        FilterNative& f = makeThrown(FilterKind::Bevel, filter);
        f[F::Color] = rgbOf(filter.highlight);
        f[F::Alpha] = filter.highlight.a;
        f[F::ShadowColor] = rgbOf(filter.shadow);
        f[F::ShadowAlpha] = filter.shadow.a;
        setPlacement(f, filter.inner, filter.onTop);
        return "BevelFilter";
    }
    const char* operator()(const swf::GradientFilter& filter)
    {
        FilterNative& f =
            makeThrown(filter.bevel ? FilterKind::GradientBevel : FilterKind::GradientGlow, filter);
        f.stopCount = static_cast<int>(
            std::min<std::size_t>(filter.stops.size(), static_cast<std::size_t>(FilterNative::kMaxStops)));
        for (std::size_t i = 0; i < static_cast<std::size_t>(f.stopCount); ++i) {
            f.stopColors[i] = static_cast<std::uint32_t>(rgbOf(filter.stops[i].color));
            f.stopAlphas[i] = filter.stops[i].color.a;
            f.stopRatios[i] = filter.stops[i].ratio;
        }
        setPlacement(f, filter.inner, filter.onTop);
        return filter.bevel ? "GradientBevelFilter" : "GradientGlowFilter";
    }
    const char* operator()(const swf::ConvolutionFilter& filter)
    {
        FilterNative& f = make(FilterKind::Convolution);
        f[F::MatrixX] = filter.columns;
        f[F::MatrixY] = filter.rows;
        f.matrix = filter.matrix;
        f[F::Divisor] = filter.divisor;
        f[F::Bias] = filter.bias;
        f[F::Color] = rgbOf(filter.defaultColor);
        f[F::Alpha] = filter.defaultColor.a;
        f[F::Clamp] = filter.clamp ? 1 : 0;
        f[F::PreserveAlpha] = filter.preserveAlpha ? 1 : 0;
        return "ConvolutionFilter";
    }
    const char* operator()(const swf::ColorMatrixFilter& filter)
    {
        make(FilterKind::ColorMatrix).matrix.assign(filter.matrix.begin(), filter.matrix.end());
        return "ColorMatrixFilter";
    }
    const char* operator()(const swf::DisplacementMapFilter& filter)
    {
        FilterNative& f = make(FilterKind::DisplacementMap);
        f[F::ComponentX] = filter.componentX;
        f[F::ComponentY] = filter.componentY;
        f[F::ScaleX] = filter.scaleX;
        f[F::ScaleY] = filter.scaleY;
        f[F::Mode] = static_cast<double>(filter.mode);
        f[F::Color] = rgbOf(filter.color);
        f[F::Alpha] = filter.color.a;
        f.mapX = filter.mapX;
        f.mapY = filter.mapY;
        return "DisplacementMapFilter";
    }
};

/// The prototype of flash.PACKAGE.NAME as scripts left it, or null.
Object* classPrototype(Vm& vm, const char* package, const char* name)
{
    Object* object = vm.global();
    for (const char* step : {"flash", package, name, "prototype"}) {
        object = object->get(vm, vm.name(std::string_view(step))).asObject();
        if (object == nullptr) break;
    }
    return object;
}

} // namespace

void installFilters(Vm& vm, Object* package)
{
    Function* base = vm.newFunction(&constructFilter<FilterKind::Base>);
    Object* prototype = vm.newObject();
    prototype->define(vm, vm.common().constructor, base, kBuiltIn);
    for (const MemberInfo& member : kBaseMembers)
        prototype->define(vm, member.name, vm.newFunction(member.function, member.minArguments), kFrom8);
    base->define(vm, vm.common().prototype, prototype, kBuiltIn);
    package->define(vm, "BitmapFilter", base, 0);
    addClass<FilterKind::Blur>(vm, package, "BlurFilter", base);
    addClass<FilterKind::DropShadow>(vm, package, "DropShadowFilter", base);
    addClass<FilterKind::Glow>(vm, package, "GlowFilter", base);
    addClass<FilterKind::Bevel>(vm, package, "BevelFilter", base);
    addClass<FilterKind::GradientGlow>(vm, package, "GradientGlowFilter", base);
    addClass<FilterKind::GradientBevel>(vm, package, "GradientBevelFilter", base);
    addClass<FilterKind::Convolution>(vm, package, "ConvolutionFilter", base);
    addClass<FilterKind::ColorMatrix>(vm, package, "ColorMatrixFilter", base);
    addClass<FilterKind::DisplacementMap>(vm, package, "DisplacementMapFilter", base);
}

std::optional<swf::Filter> filterFromValue(Value value)
{
    const Object* object = value.asObject();
    const auto* filter = object == nullptr ? nullptr : object->native<FilterNative>();
    if (filter == nullptr || filter->kind == FilterKind::Base) return {};
    return describe(*filter);
}

std::vector<swf::Filter> filtersFromValue(Vm& vm, Value array)
{
    std::vector<swf::Filter> filters;
    Object* list = array.asObject();
    if (list == nullptr) return filters;
    constexpr double kMaxFilters = 64;
    const double length = toNumber(vm, list->get(vm, vm.common().length));
    for (std::uint32_t i = 0; i < length && i < kMaxFilters; ++i) {
        if (auto filter = filterFromValue(list->get(vm, vm.names().fromIndex(i)))) filters.push_back(*filter);
    }
    return filters;
}

Value filterToValue(Vm& vm, const swf::Filter& filter)
{
    Recorder recorder{vm.heap()};
    const char* name = std::visit(recorder, filter);
    Object* prototype = classPrototype(vm, "filters", name);
    if (prototype == nullptr) return {};
    Object* object = vm.newObject(prototype);
    object->attach(recorder.made);
    const auto* displacement = std::get_if<swf::DisplacementMapFilter>(&filter);
    Object* picture = displacement != nullptr && displacement->map != nullptr
                          ? classPrototype(vm, "display", "BitmapData")
                          : nullptr;
    if (picture != nullptr) {
        Object* map = vm.newObject(picture);
        map->attachNew<BitmapDataNative>(displacement->map);
        recorder.made->map = map;
    }
    return object;
}

Value filtersToValue(Vm& vm, std::span<const swf::Filter> filters)
{
    RootedValues values(vm.heap());
    for (const swf::Filter& filter : filters) values.push_back(filterToValue(vm, filter));
    return vm.newArray(*values);
}

} // namespace flash::avm1
