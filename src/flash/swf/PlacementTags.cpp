#include "flash/swf/Filters.h"
#include "flash/swf/Tags.h"

// Tags that put characters on the display list and take them off.
namespace flash::swf::tags
{
namespace
{

// First byte of PlaceObject2 and 3, then the second of PlaceObject3.
enum : std::uint8_t {
    kMove = 0x01,
    kHasCharacter = 0x02,
    kHasMatrix = 0x04,
    kHasColorTransform = 0x08,
    kHasRatio = 0x10,
    kHasName = 0x20,
    kHasClipDepth = 0x40,
    kHasClipActions = 0x80,
};
enum : std::uint8_t {
    kHasFilters = 0x01,
    kHasBlendMode = 0x02,
    kHasCacheAsBitmap = 0x04,
    kHasClassName = 0x08,
    kHasImage = 0x10,
    kHasVisible = 0x20,
    kHasOpaqueBackground = 0x40,
};

// Reads an optional field; @returns whether it was there and whole.
template <class T, class Read>
bool readField(BodyReader& body, bool present, std::optional<T>& field, Read read)
{
    if (!present) return true;
    T value = read();
    if (body.overrun()) return false;
    field = std::move(value);
    return true;
}

// Event flags are 16 bits wide before version 6 and 32 from then on. A list that ends early keeps the
// handlers before its end.
void readClipActions(TagContext& tag, std::vector<ClipAction>& actions)
{
    BodyReader& body = tag.body;
    const bool wide = tag.builder.version() >= 6;
    const auto eventFlags = [&] { return wide ? body.u32() : std::uint32_t{body.u16()}; };
    body.u16(); // reserved
    eventFlags();
    while (!body.overrun()) {
        const std::uint32_t events = eventFlags();
        if (events == 0) break;
        std::uint32_t length = body.u32();
        ClipAction action;
        action.events = events;
        if (wide && (events & kClipKeyPress) != 0 && length > 0) {
            action.keyCode = body.u8(); // counted in the length
            --length;
        }
        if (body.overrun()) break;
        if (length > body.remaining()) {
            tag.warn("clip action runs past the end of the tag");
            length = static_cast<std::uint32_t>(body.remaining());
        }
        action.actions.bytes = body.bytes(length);
        if (!tag.builder.definitions().take(sizeof(ClipAction))) break;
        actions.push_back(action);
    }
    if (body.overrun()) tag.warn("clip actions end early");
}

} // namespace

base::Result<void> placeObject(TagContext& tag)
{
    PlaceObject place;
    place.characterId = tag.body.u16();
    place.depth = tag.body.u16();
    CHECK_RESULT(tag.body.check());
    const Matrix matrix = tag.body.matrix();
    place.matrix = tag.body.overrun() ? Matrix{} : matrix;
    if (!tag.body.atEnd()) {
        const ColorTransform color = tag.body.colorTransform(false);
        if (!tag.body.overrun()) place.color = color;
    }
    tag.add(std::move(place));
    return {};
}

base::Result<void> placeObject2(TagContext& tag)
{
    BodyReader& body = tag.body;
    const std::uint8_t flags = body.u8();
    const std::uint8_t more = tag.info.form >= 3 ? body.u8() : std::uint8_t{0};
    PlaceObject place;
    place.move = (flags & kMove) != 0;
    place.hasImage = (more & kHasImage) != 0;
    place.depth = body.u16();
    CHECK_RESULT(body.check());

    base::Result<std::vector<Filter>> filters;
    // In the order of the file; what follows a damaged field cannot be found, what precedes it is kept.
    const bool whole =
        readField(body, (more & kHasClassName) != 0, place.className, [&] { return body.string(); }) &&
        readField(body, (flags & kHasCharacter) != 0, place.characterId, [&] { return body.u16(); }) &&
        readField(body, (flags & kHasMatrix) != 0, place.matrix, [&] { return body.matrix(); }) &&
        readField(body, (flags & kHasColorTransform) != 0, place.color,
                  [&] { return body.colorTransform(true); }) &&
        readField(body, (flags & kHasRatio) != 0, place.ratio, [&] { return body.u16(); }) &&
        readField(body, (flags & kHasName) != 0, place.name, [&] { return body.string(); }) &&
        readField(body, (flags & kHasClipDepth) != 0, place.clipDepth, [&] { return body.u16(); }) &&
        readField(body, (more & kHasFilters) != 0, place.filters,
                  [&] {
                      filters = readFilters(body);
                      return filters ? std::move(*filters) : std::vector<Filter>{};
                  }) &&
        filters.has_value() &&
        readField(body, (more & kHasBlendMode) != 0, place.blend, [&] { return readBlendMode(body); }) &&
        // Some encoders set the flag and leave the byte out.
        readField(body, (more & kHasCacheAsBitmap) != 0, place.cacheAsBitmap,
                  [&] { return body.atEnd() || body.u8() != 0; }) &&
        readField(body, (more & kHasVisible) != 0, place.visible, [&] { return body.u8() != 0; }) &&
        readField(body, (more & kHasOpaqueBackground) != 0, place.opaqueBackground,
                  [&] { return body.rgba(); });
    if (whole && (flags & kHasClipActions) != 0) readClipActions(tag, place.clipActions);
    if (!filters)
        tag.warn(filters.error().what);
    else if (!whole)
        tag.warn("ends early; the fields before its end are used");
    if (place.filters) tag.builder.definitions().take(place.filters->size() * sizeof(Filter));
    tag.add(std::move(place));
    return {};
}

base::Result<void> removeObject(TagContext& tag)
{
    RemoveObject remove;
    if (tag.info.form == 1) remove.characterId = tag.body.u16();
    remove.depth = tag.body.u16();
    CHECK_RESULT(tag.body.check());
    tag.add(remove);
    return {};
}

} // namespace flash::swf::tags
