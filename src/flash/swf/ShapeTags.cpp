#include "flash/swf/ShapeRecords.h"
#include "flash/swf/Tags.h"

namespace flash::swf::tags
{
namespace
{

// Styles come from the file, indices too; an index past the styles paints nothing.
void dropBadIndices(Shape& shape)
{
    for (ShapeLayer& layer : shape.layers) {
        for (EdgeRun& run : layer.runs) {
            if (run.fill0 > layer.fills.size()) run.fill0 = 0;
            if (run.fill1 > layer.fills.size()) run.fill1 = 0;
            if (run.line > layer.lines.size()) run.line = 0;
        }
    }
}

} // namespace

base::Result<void> defineShape(TagContext& tag)
{
    constexpr std::uint8_t kUsesWindingRule = 0x04;
    BodyReader& body = tag.body;
    const StyleForm form{tag.info.form};
    auto shape = std::make_shared<Shape>();
    const std::uint16_t id = body.u16();
    shape->bounds = body.rect();
    shape->edgeBounds = shape->bounds;
    bool usesWinding = false;
    if (form.number >= 4) {
        shape->edgeBounds = body.rect();
        usesWinding = (body.u8() & kUsesWindingRule) != 0;
    }
    Budget& budget = tag.builder.definitions();
    auto styles = readStyles(body, form, budget);
    if (!styles) return tl::make_unexpected(std::move(styles).error());
    shape->layers.push_back(std::move(*styles));
    if (const auto done = readShapeRecords(body, &form, *shape, budget); !done)
        tag.warn(done.error().what + "; the edges before it are used");
    else if (body.overrun())
        tag.warn("ends within its edges; those before the end are used");
    dropBadIndices(*shape);
    for (ShapeLayer& layer : shape->layers) layer.nonZeroWinding = usesWinding;
    tag.builder.defineShape(id, std::move(shape));
    return {};
}

} // namespace flash::swf::tags
