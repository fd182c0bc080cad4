#include "swfc/source/MovieBuilder.h"

#include "swfc/source/Handlers.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace swfc::source
{
namespace
{

using output::Tag;

constexpr std::uint32_t kMaxFrames = 16000;

double eased(double t, int ease)
{
    switch (ease) {
    case 1: return t * t * t;
    case 2: return 1 - (1 - t) * (1 - t) * (1 - t);
    case 3: return t * t * (3 - 2 * t);
    default: return t;
    }
}

output::Filter between(const output::Filter& from, const output::Filter& to, double t)
{
    output::Filter mixed = to;
    const auto mix = [&](double a, double b) { return a + (b - a) * t; };
    const auto mixColor = [&](output::Rgba a, output::Rgba b) {
        const auto channel = [&](int x, int y) { return static_cast<std::uint8_t>(std::lround(mix(x, y))); };
        return output::Rgba{channel(a.r, b.r), channel(a.g, b.g), channel(a.b, b.b), channel(a.a, b.a)};
    };
    mixed.blurX = mix(from.blurX, to.blurX);
    mixed.blurY = mix(from.blurY, to.blurY);
    mixed.angleDegrees = mix(from.angleDegrees, to.angleDegrees);
    mixed.distance = mix(from.distance, to.distance);
    mixed.strength = mix(from.strength, to.strength);
    mixed.color = mixColor(from.color, to.color);
    mixed.highlight = mixColor(from.highlight, to.highlight);
    for (std::size_t i = 0; i < std::min(from.matrix.size(), to.matrix.size()); ++i)
        mixed.matrix[i] = mix(from.matrix[i], to.matrix[i]);
    return mixed;
}

Placement between(const Placement& from, const Placement& to, double t)
{
    Placement mixed = to;
    const auto mix = [&](double a, double b) { return a + (b - a) * t; };
    mixed.x = mix(from.x, to.x);
    mixed.y = mix(from.y, to.y);
    mixed.scaleX = mix(from.scaleX, to.scaleX);
    mixed.scaleY = mix(from.scaleY, to.scaleY);
    mixed.rotate = mix(from.rotate, to.rotate);
    mixed.skewX = mix(from.skewX, to.skewX);
    mixed.skewY = mix(from.skewY, to.skewY);
    mixed.ratio = mix(from.ratio, to.ratio);
    for (std::size_t i = 0; i < 4; ++i) {
        mixed.color.multiply[i] = mix(from.color.multiply[i], to.color.multiply[i]);
        mixed.color.add[i] = mix(from.color.add[i], to.color.add[i]);
    }
    if (from.matrix && to.matrix) {
        const output::Matrix &a = *from.matrix, &b = *to.matrix;
        mixed.matrix = output::Matrix{mix(a.a, b.a), mix(a.b, b.b),   mix(a.c, b.c),
                                      mix(a.d, b.d), mix(a.tx, b.tx), mix(a.ty, b.ty)};
    }
    const bool sameKinds =
        std::equal(from.filters.begin(), from.filters.end(), to.filters.begin(), to.filters.end(),
                   [](const auto& a, const auto& b) { return a.kind == b.kind; });
    for (std::size_t i = 0; sameKinds && i < to.filters.size(); ++i)
        mixed.filters[i] = between(from.filters[i], to.filters[i], t);
    return mixed;
}

/// What a placing tag says; what is absent stays as it is.
struct PlaceTag {
    int depth = 0;
    bool move = false;
    std::optional<std::uint16_t> character;
    bool matrix = false, color = false, ratio = false, filters = false;
    std::optional<std::string> name;
    int clipDepth = 0, blend = 0;
    std::optional<bool> cache;
    std::optional<std::vector<std::uint8_t>> clipActions;
};

void writePlace(output::TagList& tags, const PlaceTag& tag, const Placement& placement)
{
    const bool extended = tag.filters || tag.blend > 0 || tag.cache;
    output::BitWriter out;
    out.u8((tag.clipActions ? 0x80U : 0U) | (tag.clipDepth > 0 ? 0x40U : 0U) | (tag.name ? 0x20U : 0U) |
           (tag.ratio ? 0x10U : 0U) | (tag.color ? 0x08U : 0U) | (tag.matrix ? 0x04U : 0U) |
           (tag.character ? 0x02U : 0U) | (tag.move ? 0x01U : 0U));
    if (extended) out.u8((tag.cache ? 4U : 0U) | (tag.blend > 0 ? 2U : 0U) | (tag.filters ? 1U : 0U));
    out.u16(static_cast<std::uint32_t>(tag.depth));
    if (tag.character) out.u16(*tag.character);
    if (tag.matrix) writeMatrix(out, placement.toMatrix());
    if (tag.color) writeColorTransform(out, placement.color);
    if (tag.ratio)
        out.u16(static_cast<std::uint32_t>(std::lround(std::clamp(placement.ratio, 0.0, 1.0) * 65535)));
    if (tag.name) out.text(*tag.name);
    if (tag.clipDepth > 0) out.u16(static_cast<std::uint32_t>(tag.clipDepth));
    if (tag.filters) writeFilters(out, placement.filters);
    if (tag.blend > 0) out.u8(static_cast<std::uint32_t>(tag.blend));
    if (tag.cache) out.u8(*tag.cache ? 1 : 0);
    if (tag.clipActions) out.append(*tag.clipActions);
    tags.add(extended ? Tag::PlaceObject3 : Tag::PlaceObject2, out);
}

} // namespace

output::Matrix Placement::toMatrix() const
{
    if (matrix) return *matrix;
    const auto radians = [](double degrees) { return degrees * std::numbers::pi / 180; };
    return {scaleX * std::cos(radians(rotate + skewY)),
            scaleX * std::sin(radians(rotate + skewY)),
            -scaleY * std::sin(radians(rotate + skewX)),
            scaleY * std::cos(radians(rotate + skewX)),
            x,
            y};
}

/// Reads where and how something stands. @returns whether anything was said.
bool MovieBuilder::placement(Attributes& attributes, Placement& placement)
{
    bool said = false;
    const auto number = [&](const char* name, double& value) {
        const auto given = attributes.number(name);
        if (!given) return;
        value = *given;
        said = true;
        placement.matrix.reset();
    };
    number("x", placement.x);
    number("y", placement.y);
    number("scale", placement.scaleX);
    if (attributes.has("scale")) placement.scaleY = placement.scaleX;
    number("scaleX", placement.scaleX);
    number("scaleY", placement.scaleY);
    number("rotate", placement.rotate);
    number("skewX", placement.skewX);
    number("skewY", placement.skewY);
    if (const auto m = attributes.numbers("matrix", 6)) {
        placement.matrix = output::Matrix{(*m)[0], (*m)[1], (*m)[2], (*m)[3], (*m)[4], (*m)[5]};
        said = true;
    }
    if (const auto multiply = attributes.numbers("multiply", 4)) {
        std::copy(multiply->begin(), multiply->end(), placement.color.multiply.begin());
        said = true;
    }
    if (const auto add = attributes.numbers("add", 4)) {
        std::copy(add->begin(), add->end(), placement.color.add.begin());
        said = true;
    }
    if (const auto alpha = attributes.number("alpha")) {
        placement.color.multiply[3] = *alpha;
        said = true;
    }
    if (const auto ratio = attributes.number("ratio")) {
        placement.ratio = *ratio;
        said = true;
    }
    if (attributes.has("picture")) {
        placement.ratio = attributes.integer("picture", 0, 0, 65535) / 65535.0;
        said = true;
    }
    return said;
}

void MovieBuilder::placeElement(const Element& element, Timeline& timeline)
{
    Attributes attributes(element, m_diagnostics);
    const Character* character = lookUp(element, attributes.required("id"));
    PlaceTag tag;
    tag.depth = attributes.integer("depth", 1, 1, 16383);
    const bool replace = attributes.flag("replace");
    Placement placed =
        replace && timeline.depths.contains(tag.depth) ? timeline.depths[tag.depth] : Placement{};
    placement(attributes, placed);
    tag.matrix = !replace || placed.matrix || placed.toMatrix() != output::Matrix{};
    tag.color = placed.color != output::ColorTransform{};
    tag.ratio = placed.ratio != 0;
    if (const auto name = attributes.text("name")) tag.name = encoded(*name, element);
    tag.clipDepth = attributes.integer("clipDepth", 0, 1, 16383);
    tag.blend = attributes.choice("blend", {"", "normal", "layer", "multiply", "screen", "lighten", "darken",
                                            "difference", "add", "subtract", "invert", "alpha", "erase",
                                            "overlay", "hardlight"});
    if (attributes.has("cache")) tag.cache = attributes.flag("cache");
    placed.filters = filters(element);
    tag.filters = !placed.filters.empty();
    if (tag.filters || tag.blend > 0 || tag.cache) need(8, element, "filters, blend modes and cache");
    tag.clipActions = clipActions(element);
    tag.move = replace;
    if (timeline.depths.contains(tag.depth) && !replace) {
        attributes.error("expected a free depth, found something at depth " + std::to_string(tag.depth) +
                         " (use replace=\"yes\")");
    }
    if (replace && !timeline.depths.contains(tag.depth))
        attributes.error("expected something at depth " + std::to_string(tag.depth) + " to replace");
    if (character == nullptr) return;
    tag.character = character->id;
    timeline.depths[tag.depth] = placed;
    std::erase_if(timeline.moving, [&](const auto& moving) { return moving.depth == tag.depth; });
    writePlace(timeline.tags, tag, placed);
}

void MovieBuilder::moveElement(const Element& element, Timeline& timeline)
{
    Attributes attributes(element, m_diagnostics);
    const int depth = attributes.integer("depth", 1, 1, 16383);
    const int over = attributes.integer("over", 1, 1, 16000);
    const int ease = attributes.choice("ease", {"linear", "in", "out", "inout"});
    const auto found = timeline.depths.find(depth);
    Placement target = found == timeline.depths.end() ? Placement{} : found->second;
    placement(attributes, target);
    const auto wantedFilters = filters(element);
    if (!wantedFilters.empty()) {
        need(8, element, "filters");
        target.filters = wantedFilters;
    }
    if (found == timeline.depths.end()) {
        attributes.error("expected something at depth " + std::to_string(depth) + " to move");
        return;
    }
    std::erase_if(timeline.moving, [&](const auto& moving) { return moving.depth == depth; });
    timeline.moving.push_back({depth, over, over, ease, found->second, target, !wantedFilters.empty()});
}

void MovieBuilder::removeElement(const Element& element, Timeline& timeline)
{
    Attributes attributes(element, m_diagnostics);
    const int depth = attributes.integer("depth", 1, 1, 16383);
    if (timeline.depths.erase(depth) == 0) {
        attributes.error("expected something at depth " + std::to_string(depth) + " to remove");
        return;
    }
    std::erase_if(timeline.moving, [&](const auto& moving) { return moving.depth == depth; });
    output::BitWriter out;
    out.u16(static_cast<std::uint32_t>(depth));
    timeline.tags.add(Tag::RemoveObject2, out);
}

/// Writes the moves under way, the sound's share and the end of the frame.
void MovieBuilder::showFrame(Timeline& timeline)
{
    for (Timeline::Moving& moving : timeline.moving) {
        --moving.left;
        const double done =
            eased(static_cast<double>(moving.total - moving.left) / moving.total, moving.ease);
        const Placement now = moving.left == 0 ? moving.to : between(moving.from, moving.to, done);
        PlaceTag tag;
        tag.depth = moving.depth;
        tag.move = true;
        tag.matrix = moving.from.toMatrix() != moving.to.toMatrix();
        tag.color = moving.from.color != moving.to.color;
        tag.ratio = moving.from.ratio != moving.to.ratio;
        tag.filters = moving.filters;
        writePlace(timeline.tags, tag, now);
        timeline.depths[moving.depth] = now;
    }
    std::erase_if(timeline.moving, [](const auto& moving) { return moving.left == 0; });
    streamBlock(timeline);
    if (timeline.isMain && !m_exports.empty()) {
        output::BitWriter out;
        out.u16(static_cast<std::uint32_t>(m_exports.size()));
        for (const auto& [id, name] : m_exports) {
            out.u16(id);
            out.text(name);
        }
        timeline.tags.add(Tag::ExportAssets, out);
        m_exports.clear();
    }
    timeline.tags.add(Tag::ShowFrame);
    ++timeline.frames;
}

void MovieBuilder::frameElement(const Element& element, Timeline& timeline)
{
    Attributes attributes(element, m_diagnostics);
    if (timeline.isMain && timeline.frames == 0) m_scriptsAt = timeline.tags.bytes().size();
    const auto label = attributes.text("label");
    const bool anchor = attributes.flag("anchor");
    const int duration = attributes.integer("duration", 1, 1, static_cast<int>(kMaxFrames));
    if (timeline.frames + static_cast<std::uint32_t>(duration) > kMaxFrames) {
        error(element, "expected at most 16000 frames");
        return;
    }
    if (label) {
        output::BitWriter out;
        out.text(encoded(*label, element));
        if (anchor) out.u8(1);
        if (anchor) need(6, element, "anchors");
        timeline.tags.add(Tag::FrameLabel, out);
    }
    for (const auto& child : element.children) frameChild(*child, timeline);
    for (int i = 0; i < duration; ++i) showFrame(timeline);
}

void MovieBuilder::frameChild(const Element& element, Timeline& timeline)
{
    if (element.name == "place")
        placeElement(element, timeline);
    else if (element.name == "move")
        moveElement(element, timeline);
    else if (element.name == "remove")
        removeElement(element, timeline);
    else if (element.name == "script")
        scriptElement(element, timeline);
    else if (element.name == "startSound")
        startElement(element, timeline);
    else if (element.name == "stream")
        streamElement(element, timeline);
    else if (element.name == "background") {
        Attributes attributes(element, m_diagnostics);
        output::BitWriter out;
        writeRgb(out, attributes.color("color", {255, 255, 255, 255}));
        timeline.tags.add(Tag::SetBackgroundColor, out);
    } else if (element.name == "tabIndex") {
        Attributes attributes(element, m_diagnostics);
        need(7, element, "tab indices");
        output::BitWriter out;
        out.u16(static_cast<std::uint32_t>(attributes.integer("depth", 1, 1, 16383)));
        out.u16(static_cast<std::uint32_t>(attributes.integer("index", 0, 0, 65535)));
        timeline.tags.add(Tag::SetTabIndex, out);
    } else {
        error(element, "expected <place>, <move>, <remove>, <script>, <startSound>, <stream>, <background> "
                       "or <tabIndex>, found <" +
                           element.name + ">");
    }
}

void MovieBuilder::initElement(const Element& element, Timeline& timeline)
{
    Attributes attributes(element, m_diagnostics);
    if (!need(6, element, "<init>")) return;
    const Character* sprite = lookUp(element, attributes.required("sprite"), CharacterKind::Sprite);
    if (!needOlderScript(element, "<init>")) return;
    actionscript::ScriptContext context = scriptContext();
    output::BitWriter out;
    out.u16(sprite == nullptr ? 0 : sprite->id);
    out.append(actionscript::compileScript(scriptText(element), context));
    timeline.tags.add(Tag::DoInitAction, out);
}

void MovieBuilder::scale9(Attributes& attributes, std::uint16_t id)
{
    const auto grid = attributes.numbers("scale9", 4);
    if (!grid) return;
    need(8, attributes.element(), "scale9");
    output::BitWriter out;
    out.u16(id);
    writeBounds(out, {(*grid)[0], (*grid)[0] + (*grid)[2], (*grid)[1], (*grid)[1] + (*grid)[3]});
    definitions().add(Tag::DefineScalingGrid, out);
}

void MovieBuilder::spriteElement(const Element& element)
{
    Attributes attributes(element, m_diagnostics);
    const auto id = define(attributes, CharacterKind::Sprite);
    const auto linked = m_isActionScript3 ? attributes.text("class") : std::nullopt;
    Timeline timeline;
    children(element, timeline);
    if (timeline.frames == 0) showFrame(timeline);
    timeline.tags.add(Tag::End);
    if (!id) return;
    output::BitWriter out;
    out.u16(*id);
    out.u16(timeline.frames);
    out.append(timeline.tags.bytes());
    definitions().add(Tag::DefineSprite, out);
    scale9(attributes, *id);
    if (linked || !timeline.scripts.empty())
        link(*id, CharacterKind::Sprite, linked.value_or(""), element.where, std::move(timeline.scripts));
}

/// The handlers in the <script> of a placement.
std::optional<std::vector<std::uint8_t>> MovieBuilder::clipActions(const Element& element)
{
    std::optional<std::vector<std::uint8_t>> written;
    for (const auto& child : element.children) {
        if (child->name != "script") continue;
        const Attributes none(*child, m_diagnostics);
        if (!need(5, *child, "handlers of clips")) continue;
        actionscript::ScriptContext context = scriptContext();
        const auto handlers = actionscript::compileHandlers(scriptText(*child), context);
        if (written) error(*child, "expected one <script> in <place>");
        written = encodeClipHandlers(handlers, m_version, m_diagnostics);
    }
    return written;
}

} // namespace swfc::source
