#include "swfc/source/MovieBuilder.h"
#include "swfc/source/Svg.h"

#include <algorithm>
#include <cmath>

namespace swfc::source
{
namespace
{

using output::Fill;
using output::Gradient;
using output::Line;
using output::Matrix;

constexpr double kGradientSquare = 1638.4; // pixels from edge to edge

std::string numberText(double value)
{
    std::string text = std::to_string(value);
    return text + " ";
}

/// Path data of rect, circle and ellipse.
std::string basicShapeData(Attributes& attributes)
{
    const auto n = numberText;
    if (attributes.element().name == "rect") {
        const double x = attributes.number("x", 0), y = attributes.number("y", 0);
        const double w = attributes.number("width", 0), h = attributes.number("height", 0);
        const double r = std::clamp(attributes.number("radius", 0), 0.0, std::max(0.0, std::min(w, h) / 2));
        if (r == 0) return "M" + n(x) + n(y) + "H" + n(x + w) + "V" + n(y + h) + "H" + n(x) + "Z";
        const std::string arc = "A" + n(r) + n(r) + "0 0 1 ";
        return "M" + n(x + r) + n(y) + "H" + n(x + w - r) + arc + n(x + w) + n(y + r) + "V" + n(y + h - r) +
               arc + n(x + w - r) + n(y + h) + "H" + n(x + r) + arc + n(x) + n(y + h - r) + "V" + n(y + r) +
               arc + n(x + r) + n(y) + "Z";
    }
    const double cx = attributes.number("cx", 0), cy = attributes.number("cy", 0);
    const bool circle = attributes.element().name == "circle";
    const double rx = attributes.number(circle ? "r" : "rx", 10),
                 ry = circle ? rx : attributes.number("ry", rx);
    const std::string arc = "A" + n(rx) + n(ry) + "0 0 1 ";
    return "M" + n(cx + rx) + n(cy) + arc + n(cx) + n(cy + ry) + arc + n(cx - rx) + n(cy) + arc + n(cx) +
           n(cy - ry) + arc + n(cx + rx) + n(cy) + "Z";
}

} // namespace

void MovieBuilder::gradientElement(const Element& element)
{
    Attributes attributes(element, m_diagnostics);
    Fill fill;
    fill.kind = Fill::Kind::Gradient;
    const std::string id = attributes.required("id");
    Gradient& gradient = fill.gradient;
    gradient.kind = static_cast<Gradient::Kind>(attributes.choice("type", {"linear", "radial", "focal"}));
    gradient.spread =
        static_cast<Gradient::Spread>(attributes.choice("spread", {"pad", "reflect", "repeat"}));
    gradient.linearRgb = attributes.choice("interpolation", {"rgb", "linear"}) == 1;
    if (gradient.kind == Gradient::Kind::Focal)
        gradient.focalPoint = std::clamp(attributes.number("focal", 0), -0.996, 0.996);
    const bool extended = gradient.kind == Gradient::Kind::Focal ||
                          gradient.spread != Gradient::Spread::Pad || gradient.linearRgb;
    if (extended) need(8, element, "focal gradients, spread and interpolation");
    if (const auto matrix = attributes.numbers("matrix", 6)) {
        const auto& m = *matrix;
        fill.matrix = {m[0], m[1], m[2], m[3], m[4], m[5]};
    } else if (gradient.kind == Gradient::Kind::Linear) {
        const double x1 = attributes.number("x1", 0), y1 = attributes.number("y1", 0);
        const double x2 = attributes.number("x2", 100), y2 = attributes.number("y2", y1);
        const double a = (x2 - x1) / kGradientSquare, b = (y2 - y1) / kGradientSquare;
        fill.matrix = {a, b, -b, a, (x1 + x2) / 2, (y1 + y2) / 2};
    } else {
        const double r = attributes.number("r", 50) / (kGradientSquare / 2);
        const double angle = attributes.number("rotate", 0) * 3.14159265358979323846 / 180;
        const double squeeze = attributes.number("squeeze", 1);
        fill.matrix = {
            r * std::cos(angle),           r * std::sin(angle),        -r * squeeze * std::sin(angle),
            r * squeeze * std::cos(angle), attributes.number("cx", 0), attributes.number("cy", 0)};
    }
    for (const auto& child : element.children) {
        Attributes stop(*child, m_diagnostics);
        if (child->name != "stop") {
            error(*child, "expected <stop> in <gradient>, found <" + child->name + ">");
            continue;
        }
        const double offset = std::clamp(stop.number("offset", 0), 0.0, 1.0);
        gradient.stops.push_back(
            {static_cast<std::uint8_t>(std::lround(offset * 255)), stop.color("color", {})});
    }
    const std::size_t most = m_version >= 8 ? 15 : 8;
    if (gradient.stops.empty() || gradient.stops.size() > most) {
        error(element, "expected 1 to " + std::to_string(most) + " stops in <gradient>");
        return;
    }
    if (!id.empty()) m_paints[id] = fill;
}

void MovieBuilder::patternElement(const Element& element)
{
    Attributes attributes(element, m_diagnostics);
    Fill fill;
    fill.kind = Fill::Kind::Bitmap;
    const std::string id = attributes.required("id");
    const Character* bitmap = lookUp(element, attributes.required("bitmap"), CharacterKind::Bitmap);
    fill.repeat = attributes.flag("repeat");
    fill.smooth = attributes.flag("smooth", true);
    if (const auto matrix = attributes.numbers("matrix", 6)) {
        const auto& m = *matrix;
        fill.matrix = {m[0], m[1], m[2], m[3], m[4], m[5]};
    } else {
        const double scale = attributes.number("scale", 1);
        fill.matrix = {scale, 0, 0, scale, attributes.number("x", 0), attributes.number("y", 0)};
    }
    if (bitmap == nullptr || id.empty()) return;
    fill.bitmapId = bitmap->id;
    m_paints[id] = fill;
}

/// A colour, or the id of a gradient or pattern.
std::optional<Fill> MovieBuilder::paint(Attributes& attributes, const std::string& attribute)
{
    const auto value = attributes.text(attribute);
    if (!value || *value == "none") return {};
    const auto named = m_paints.find(*value);
    if (named != m_paints.end()) return named->second;
    Fill fill;
    const auto color = parseColor(*value);
    if (!color) {
        attributes.error("expected a colour or the id of a gradient or pattern in " + attribute +
                         ", found '" + *value + "'");
        return {};
    }
    fill.color = *color;
    return fill;
}

std::optional<Line> MovieBuilder::line(Attributes& attributes, const std::string& prefix)
{
    const auto fill = paint(attributes, prefix + "stroke");
    Line line;
    line.width = attributes.number(prefix + "strokeWidth", 1);
    if (prefix.empty()) {
        const auto cap = [&](const char* name, int otherwise) {
            return static_cast<Line::Cap>(attributes.choice(name, {"round", "none", "square"}, otherwise));
        };
        const Line::Cap both = cap("cap", 0);
        line.startCap = cap("startCap", static_cast<int>(both));
        line.endCap = cap("endCap", static_cast<int>(both));
        line.join = static_cast<Line::Join>(attributes.choice("join", {"round", "bevel", "miter"}));
        line.miterLimit = std::clamp(attributes.number("miterLimit", 3), 1.0, 255.0);
        const int scales = attributes.choice("scale", {"both", "none", "horizontal", "vertical"});
        line.noHorizontalScale = scales == 1 || scales == 3;
        line.noVerticalScale = scales == 1 || scales == 2;
        line.pixelHinting = attributes.flag("hinting");
        line.noClose = attributes.flag("noClose");
    }
    if (!fill) return {};
    if (fill->kind == Fill::Kind::Solid)
        line.color = fill->color;
    else
        line.fill = fill;
    if (line.isExtended()) need(8, attributes.element(), "caps, joins, scaling and fills of strokes");
    return line;
}

std::optional<output::PathData> MovieBuilder::path(Attributes& attributes, const std::string& attribute)
{
    output::Matrix transform;
    if (const auto m = attributes.numbers("transform", 6))
        transform = {(*m)[0], (*m)[1], (*m)[2], (*m)[3], (*m)[4], (*m)[5]};
    const bool basic = attributes.element().name != "path";
    const std::string data = basic ? basicShapeData(attributes) : attributes.required(attribute);
    if (data.empty()) return {};
    auto parsed = output::parsePath(data, transform);
    if (parsed.error.empty()) return std::move(parsed.path);
    attributes.error(parsed.error);
    return {};
}

void MovieBuilder::shapePath(const Element& element, output::ShapeLayer& layer)
{
    if (element.name != "path" && element.name != "rect" && element.name != "circle" &&
        element.name != "ellipse") {
        error(element,
              "expected <path>, <rect>, <circle>, <ellipse> or <layer>, found <" + element.name + ">");
        return;
    }
    Attributes attributes(element, m_diagnostics);
    const auto data = path(attributes, "d");
    output::StyledOutline styled;
    const auto addFill = [&](const char* attribute) -> std::size_t {
        const auto fill = paint(attributes, attribute);
        if (!fill) return 0;
        layer.fills.push_back(*fill);
        return layer.fills.size();
    };
    const auto use = [&](const char* attribute) -> std::size_t {
        const int index = attributes.integer(attribute, 0, 0, 65535);
        if (static_cast<std::size_t>(index) <= layer.fills.size()) return static_cast<std::size_t>(index);
        attributes.error("expected the number of a fill above in this layer, found " + std::to_string(index));
        return 0;
    };
    // A fill of its own on the right; or, to share edges, fills on both sides, new or numbered.
    styled.rightFill = addFill("fill");
    if (attributes.has("left")) styled.leftFill = addFill("left");
    if (attributes.has("useLeft")) styled.leftFill = use("useLeft");
    if (attributes.has("useRight")) styled.rightFill = use("useRight");
    if (const auto stroke = line(attributes, "")) {
        layer.lines.push_back(*stroke);
        styled.line = layer.lines.size();
    }
    if (!data) return;
    styled.outline = output::toOutline(*data);
    layer.outlines.push_back(std::move(styled));
}

/// The picture that a shape takes from a file instead of having children.
std::vector<std::unique_ptr<Element>> MovieBuilder::svgDrawing(Attributes& attributes)
{
    const auto color = attributes.text("color");
    const auto content = readFile(attributes, "svg");
    if (!content) return {};
    const int file = m_diagnostics.addFile(besideFile(m_paths.back(), attributes.required("svg")));
    const std::string_view bytes(reinterpret_cast<const char*>(content->data()), content->size());
    const auto root = parseXml(bytes, file, m_diagnostics);
    if (root == nullptr) return {};
    if (root->name == "svg") return shapeOfSvg(*root, color);
    error(*root, "expected <svg> as the root of a picture, found <" + root->name + ">");
    return {};
}

void MovieBuilder::shapeElement(const Element& element)
{
    Attributes attributes(element, m_diagnostics);
    const auto id = define(attributes, CharacterKind::Shape);
    output::Shape shape;
    shape.nonZeroWinding = attributes.choice("rule", {"evenodd", "nonzero"}) == 1;
    if (shape.nonZeroWinding) need(8, element, "the nonzero rule");
    std::vector<std::unique_ptr<Element>> drawing;
    if (attributes.has("svg")) drawing = svgDrawing(attributes);
    for (const auto& child : attributes.has("svg") ? drawing : element.children) {
        output::ShapeLayer layer;
        if (child->name == "layer") {
            const Attributes none(*child, m_diagnostics);
            for (const auto& inner : child->children) shapePath(*inner, layer);
        } else {
            shapePath(*child, layer);
        }
        shape.layers.push_back(std::move(layer));
    }
    for (const auto& layer : shape.layers) {
        if (layer.fills.size() > 65534 || layer.lines.size() > 65534)
            error(element, "expected at most 65534 styles in a layer");
    }
    if (!id || m_diagnostics.hasErrors()) return;
    const auto tag = output::encodeShape(*id, shape);
    definitions().add(tag.code, tag.body);
}

void MovieBuilder::morphElement(const Element& element)
{
    Attributes attributes(element, m_diagnostics);
    const auto id = define(attributes, CharacterKind::Morph);
    output::MorphShape morph;
    for (const auto& child : element.children) {
        if (child->name != "path") {
            error(*child, "expected <path> in <morph>, found <" + child->name + ">");
            continue;
        }
        Attributes part(*child, m_diagnostics);
        const auto from = path(part, "d"), to = path(part, "to-d");
        const auto fill = paint(part, "fill"), toFill = part.has("to-fill") ? paint(part, "to-fill") : fill;
        const auto stroke = line(part, "");
        const auto toStroke = part.has("to-stroke") ? line(part, "to-") : std::nullopt;
        const auto toWidth = part.number("to-strokeWidth");
        output::MorphOutline outline;
        if (fill && toFill) {
            const bool same = fill->kind == toFill->kind && fill->gradient.kind == toFill->gradient.kind &&
                              fill->gradient.stops.size() == toFill->gradient.stops.size();
            if (!same) error(*child, "expected two fills of the same kind with the same number of stops");
            morph.fills.push_back({*fill, *toFill});
            outline.fill = morph.fills.size();
        }
        if (stroke) {
            output::MorphLine pair{*stroke, *stroke};
            if (toStroke) pair.end.color = toStroke->color;
            if (toStroke && toStroke->fill) pair.end.fill = toStroke->fill;
            if (toWidth) pair.end.width = *toWidth;
            if (pair.start.fill.has_value() != pair.end.fill.has_value())
                error(*child, "expected two strokes of the same kind");
            morph.lines.push_back(pair);
            outline.line = morph.lines.size();
        }
        if (!from || !to) continue;
        if (!output::toMorphOutlines(*from, *to, outline.start, outline.end)) {
            error(*child, "expected two paths with the same number of parts, found " +
                              std::to_string(from->size()) + " and " + std::to_string(to->size()));
            continue;
        }
        morph.outlines.push_back(std::move(outline));
    }
    if (!id || m_diagnostics.hasErrors()) return;
    const auto tag = output::encodeMorph(*id, morph);
    definitions().add(tag.code, tag.body);
}

} // namespace swfc::source
