#include "swfc/source/Svg.h"

#include <map>

namespace swfc::source
{
namespace
{

using Style = std::map<std::string, std::string>;

/// The attributes that children have from their parents, with what SVG says when nobody gives them.
const Style kInitialStyle = {{"fill", "#000"},
                             {"stroke", "none"},
                             {"stroke-width", "1"},
                             {"stroke-linecap", "butt"},
                             {"stroke-linejoin", "miter"}};

/// Then its caps are nowhere to be seen.
bool isClosed(const Element& element)
{
    if (element.name != "path") return true;
    for (const auto& attribute : element.attributes) {
        if (attribute.name != "d") continue;
        const std::size_t last = attribute.value.find_last_not_of(" \t\r\n");
        return last != std::string::npos && (attribute.value[last] == 'z' || attribute.value[last] == 'Z');
    }
    return false;
}

bool isColor(const std::string& value) { return value != "none"; }

void collect(const Element& parent, Style style, const std::optional<std::string>& color,
             std::vector<std::unique_ptr<Element>>& shape)
{
    for (const auto& attribute : parent.attributes) {
        const auto inherited = style.find(attribute.name);
        if (inherited != style.end()) inherited->second = attribute.value;
    }
    if (parent.name == "svg" || parent.name == "g") {
        for (const auto& child : parent.children) collect(*child, style, color, shape);
        return;
    }
    auto element = std::make_unique<Element>();
    element->name = parent.name;
    element->where = parent.where;
    const auto add = [&](const char* name, const std::string& value) {
        element->attributes.push_back({name, value});
    };
    for (const auto& attribute : parent.attributes) {
        if (style.contains(attribute.name)) continue;
        add(parent.name == "rect" && attribute.name == "rx" ? "radius" : attribute.name.c_str(),
            attribute.value);
    }
    add("fill", color && isColor(style["fill"]) ? *color : style["fill"]);
    if (isColor(style["stroke"])) {
        add("stroke", color.value_or(style["stroke"]));
        add("strokeWidth", style["stroke-width"]);
        if (!isClosed(parent))
            add("cap", style["stroke-linecap"] == "butt" ? "none" : style["stroke-linecap"]);
        add("join", style["stroke-linejoin"]);
    }
    shape.push_back(std::move(element));
}

} // namespace

std::vector<std::unique_ptr<Element>> shapeOfSvg(const Element& svg, const std::optional<std::string>& color)
{
    std::vector<std::unique_ptr<Element>> shape;
    collect(svg, kInitialStyle, color, shape);
    return shape;
}

} // namespace swfc::source
