#include "swfc/source/MovieBuilder.h"

#include <algorithm>
#include <cmath>

namespace swfc::source
{
namespace
{

bool isFilterName(const std::string& name)
{
    constexpr const char* kNames[] = {"blur",         "shadow",        "glow",        "bevel",
                                      "gradientGlow", "gradientBevel", "convolution", "colorMatrix"};
    return std::any_of(std::begin(kNames), std::end(kNames),
                       [&](const char* known) { return name == known; });
}

} // namespace

std::vector<output::Filter> MovieBuilder::filters(const Element& element)
{
    std::vector<output::Filter> found;
    for (const auto& child : element.children) {
        if (!isFilterName(child->name)) {
            if (child->name != "script")
                error(*child,
                      "expected a filter or <script> in <" + element.name + ">, found <" + child->name + ">");
            continue;
        }
        if (const auto one = filter(*child)) found.push_back(*one);
    }
    if (found.size() > 255) error(element, "expected at most 255 filters");
    return found;
}

std::optional<output::Filter> MovieBuilder::filter(const Element& element)
{
    using Kind = output::Filter::Kind;
    Attributes attributes(element, m_diagnostics);
    output::Filter filter;
    const std::string& name = element.name;
    filter.kind = name == "blur"            ? Kind::Blur
                  : name == "shadow"        ? Kind::DropShadow
                  : name == "glow"          ? Kind::Glow
                  : name == "bevel"         ? Kind::Bevel
                  : name == "gradientGlow"  ? Kind::GradientGlow
                  : name == "gradientBevel" ? Kind::GradientBevel
                  : name == "convolution"   ? Kind::Convolution
                                            : Kind::ColorMatrix;
    if (filter.kind == Kind::ColorMatrix) {
        filter.matrix = attributes.numbers("matrix", 20).value_or(std::vector<double>(20, 0));
        return filter;
    }
    if (filter.kind == Kind::Convolution) {
        filter.columns = attributes.integer("columns", 3, 1, 15);
        filter.rows = attributes.integer("rows", 3, 1, 15);
        const auto count = static_cast<std::size_t>(filter.columns * filter.rows);
        filter.matrix = attributes.numbers("matrix", count).value_or(std::vector<double>(count, 0));
        filter.divisor = attributes.number("divisor", 1);
        filter.bias = attributes.number("bias", 0);
        filter.clamp = attributes.flag("clamp", true);
        filter.preserveAlpha = attributes.flag("preserveAlpha", true);
        filter.color = attributes.color("color", {0, 0, 0, 0});
        return filter;
    }
    const double blur = std::clamp(attributes.number("blur", 4), 0.0, 255.0);
    filter.blurX = std::clamp(attributes.number("blurX", blur), 0.0, 255.0);
    filter.blurY = std::clamp(attributes.number("blurY", blur), 0.0, 255.0);
    filter.passes = attributes.integer("quality", 1, 1, 15);
    if (filter.kind == Kind::Blur) return filter;
    filter.strength = std::clamp(attributes.number("strength", 1), 0.0, 127.0);
    filter.knockout = attributes.flag("knockout");
    filter.inner = attributes.flag("inner");
    if (filter.kind == Kind::DropShadow || filter.kind == Kind::Glow || filter.kind == Kind::Bevel) {
        filter.color = attributes.color("color", {0, 0, 0, 255});
    }
    if (filter.kind != Kind::Glow) {
        filter.angleDegrees = attributes.number("angle", 45);
        filter.distance = std::clamp(attributes.number("distance", 4), -32000.0, 32000.0);
    }
    if (filter.kind == Kind::DropShadow) filter.hideObject = attributes.flag("hideObject");
    if (filter.kind == Kind::Bevel) filter.highlight = attributes.color("highlight", {255, 255, 255, 255});
    const bool graded = filter.kind == Kind::GradientGlow || filter.kind == Kind::GradientBevel;
    if (graded || filter.kind == Kind::Bevel) filter.onTop = attributes.flag("onTop");
    for (const auto& child : element.children) {
        Attributes stop(*child, m_diagnostics);
        if (!graded || child->name != "stop")
            error(*child, "expected nothing but <stop> in gradient filters, found <" + child->name + ">");
        const double offset = std::clamp(stop.number("offset", 0), 0.0, 1.0);
        filter.stops.push_back(
            {stop.color("color", {}), static_cast<std::uint8_t>(std::lround(offset * 255))});
    }
    if (graded && (filter.stops.empty() || filter.stops.size() > 15))
        error(element, "expected 1 to 15 <stop>");
    return filter;
}

} // namespace swfc::source
