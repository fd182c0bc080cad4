#include "flash/avm2/bindings/DisplayEffects.h"

#include "flash/avm2/bindings/Conversions.h"
#include "flash/avm2/bindings/Display.h"
#include "flash/avm2/bindings/Library.h"
#include "flash/avm2/bindings/Shaders.h"
#include "flash/render/ShaderRun.h"

#include <cmath>

namespace flash::avm2::effects
{

namespace
{

Object* copied(Vm& vm, Object& filter, std::string_view cls)
{
    Object* made = vm.instantiate(vm.nativeClass(cls));
    for (std::uint32_t i = 0; i < made->slotCount() && i < filter.slotCount(); ++i)
        made->setSlot(i, filter.slot(i));
    return made;
}

/// A copy, as the player keeps its numbers.
Value displacement(Vm& vm, Object& filter)
{
    Object* made = copied(vm, filter, "flash.filters::DisplacementMapFilter");
    constexpr std::uint32_t kMapPoint = 1, kScaleX = 4, kScaleY = 5;
    if (Object* point = made->slot(kMapPoint).asObject(); point != nullptr) {
        const swf::Point at = pointOf(*point);
        made->setSlot(kMapPoint, newPoint(vm, std::trunc(at.x), std::trunc(at.y)));
    } else {
        made->setSlot(kMapPoint, newPoint(vm, 0, 0));
    }
    for (const std::uint32_t slot : {kScaleX, kScaleY})
        made->setSlot(slot, static_cast<double>(static_cast<float>(slotNumber(*made, slot))));
    return Value(made);
}

} // namespace

Value blendMode(Call& call)
{
    const stage::Node& node = displaySelf(call).node();
    return call.vm.string(render::blendShaderOf(node.filters()) != nullptr ? "shader"
                                                                           : blendModeName(node.blend()));
}
Value setBlendShader(Call& call)
{
    Object* shader = optionalArg(call, 0, "flash.display::Shader");
    stage::Node& node = displaySelf(call).node();
    std::vector<swf::Filter> filters = node.filters();
    if (render::blendShaderOf(filters) != nullptr) filters.pop_back();
    if (shader != nullptr) {
        filters.push_back(shaderBlendOf(call.vm, Value(shader)));
        node.setBlend(swf::BlendMode::Normal);
    }
    node.setFilters(std::move(filters));
    return {};
}
Value setBlendMode(Call& call)
{
    if (call.arg(0).isNullish())
        call.vm.throwError(ErrorClass::Type, 2007, "Parameter blendMode must be non-null.");
    const std::u16string_view name = call.vm.text(call.arg(0));
    const auto mode = blendModeOf(name);
    if (!mode && name != u"shader")
        call.vm.throwError(ErrorClass::Argument, 2008,
                           "Parameter blendMode must be one of the accepted values.");
    stage::Node& node = displaySelf(call).node();
    node.setBlend(mode.value_or(swf::BlendMode::Normal));
    if (mode && render::blendShaderOf(node.filters()) != nullptr) {
        std::vector<swf::Filter> filters = node.filters();
        filters.pop_back();
        node.setFilters(std::move(filters));
    }
    return {};
}
Value filters(Call& call)
{
    auto& object = displaySelf(call);
    auto* list = static_cast<ArrayObject*>(call.vm.newArray());
    const Root<Object> keep(call.vm.heap(), list);
    if (object.filterValues.empty()) {
        std::span<const swf::Filter> own = object.node().filters();
        if (render::blendShaderOf(own) != nullptr) own = own.first(own.size() - 1);
        for (const swf::Filter& filter : own) list->push(call.vm, newFilter(call.vm, filter));
        return Value(list);
    }
    RootedList<Value> kept(call.vm.heap(), object.filterValues.begin(), object.filterValues.end());
    for (std::size_t i = 0; i < kept.size(); ++i) list->push(call.vm, call.vm.callPublic(kept[i], "clone"));
    return Value(list);
}
/// Scripts find the map of a displacement and the kernel of a shader again, and not another one that looks
/// the same: the chain is kept as they have set it.
Value setFilters(Call& call)
{
    Vm& vm = call.vm;
    std::vector<swf::Filter> filters;
    RootedList<Value> kept(vm.heap());
    bool keeps = false;
    constexpr std::string_view kShader = "flash.filters::ShaderFilter";
    const Traits* mapped = vm.nativeClass("flash.filters::DisplacementMapFilter")->instances;
    const Traits* shaded = vm.nativeClass(kShader)->instances;
    auto* list = as<ArrayObject>(vm.coerce(call.arg(0), vm.classes().array->instances));
    for (std::uint32_t i = 0; list != nullptr && i < list->length(); ++i) {
        const Value value = list->at(vm, i);
        const auto filter = filterOf(vm, value);
        if (!filter)
            vm.throwError(ErrorClass::Argument, 2005,
                          "Parameter 0 is of the incorrect type. Should be type Filter.");
        filters.push_back(*filter);
        const bool isMapped = value.object()->traits()->isA(mapped);
        const bool isShader = value.object()->traits()->isA(shaded);
        keeps = keeps || isMapped || isShader;
        kept.push_back(isMapped   ? displacement(vm, *value.object())
                       : isShader ? Value(copied(vm, *value.object(), kShader))
                                  : newFilter(vm, *filter));
    }
    auto& object = displaySelf(call);
    object.filterValues.clear();
    if (keeps) object.filterValues.assign(kept->begin(), kept->end());
    const auto& before = object.node().filters();
    if (render::blendShaderOf(before) != nullptr) filters.push_back(before.back());
    object.node().setFilters(std::move(filters));
    return {};
}

} // namespace flash::avm2::effects
