#include "flash/swf/Filters.h"
#include "flash/swf/SoundTags.h"
#include "flash/swf/Tags.h"

namespace flash::swf::tags
{
namespace
{

enum : std::uint8_t { kStates = 0x0F, kHasFilters = 0x10, kHasBlendMode = 0x20 };

// Records up to the closing zero byte. Those before a damaged one are kept.
void readRecords(TagContext& tag, std::vector<ButtonRecord>& records)
{
    BodyReader& body = tag.body;
    while (!body.atEnd()) {
        const std::uint8_t flags = body.u8();
        if (flags == 0) return;
        ButtonRecord record;
        record.states = flags & kStates;
        record.characterId = body.u16();
        record.depth = body.u16();
        record.matrix = body.matrix();
        if (tag.info.form >= 2) {
            record.color = body.colorTransform(true);
            if ((flags & kHasFilters) != 0) {
                auto filters = readFilters(body);
                if (!filters) {
                    tag.warn(filters.error().what);
                    return;
                }
                record.filters = std::move(*filters);
            }
            if ((flags & kHasBlendMode) != 0) record.blend = readBlendMode(body);
        }
        if (body.overrun()) {
            tag.warn("button records end early");
            return;
        }
        if (!tag.builder.definitions().take(sizeof(ButtonRecord) + record.filters.size() * sizeof(Filter)))
            return;
        records.push_back(std::move(record));
    }
}

// Each starts with the distance to the next, which is 0 for the last.
void readConditions(TagContext& tag, std::vector<ButtonAction>& actions)
{
    constexpr std::uint16_t kConditions = 0x01FF;
    constexpr unsigned kKeyShift = 9;
    BodyReader& body = tag.body;
    while (body.remaining() > 0) {
        const std::size_t start = body.position();
        const std::uint16_t distance = body.u16();
        const std::uint16_t bits = body.u16();
        if (body.overrun()) {
            tag.warn("button actions end early");
            return;
        }
        ButtonAction action;
        action.conditions = bits & kConditions;
        action.keyCode = static_cast<std::uint8_t>(bits >> kKeyShift);
        const std::size_t next = start + distance;
        const bool last =
            distance == 0 || next < body.position() || next >= body.position() + body.remaining();
        action.actions.bytes = last ? body.rest() : body.bytes(next - body.position());
        if (!tag.builder.definitions().take(sizeof(ButtonAction))) return;
        actions.push_back(action);
    }
}

} // namespace

base::Result<void> defineButton(TagContext& tag)
{
    Button button;
    const std::uint16_t id = tag.body.u16();
    CHECK_RESULT(tag.body.check());
    readRecords(tag, button.records);
    if (!tag.body.atEnd()) button.actions.push_back({ButtonAction::OverDownToOverUp, 0, {tag.body.rest()}});
    tag.builder.define(id, std::move(button));
    return {};
}

base::Result<void> defineButton2(TagContext& tag)
{
    Button button;
    const std::uint16_t id = tag.body.u16();
    button.trackAsMenu = (tag.body.u8() & 1U) != 0;
    const std::size_t offsetField = tag.body.position();
    const std::uint16_t actionOffset = tag.body.u16();
    CHECK_RESULT(tag.body.check());
    BodyReader conditions = tag.body;
    readRecords(tag, button.records);
    if (actionOffset != 0) {
        conditions.seek(offsetField + actionOffset);
        if (conditions.overrun()) tag.warn("its actions lie past the end of the tag");
        tag.body = conditions;
        readConditions(tag, button.actions);
    }
    tag.builder.define(id, std::move(button));
    return {};
}

base::Result<void> defineButtonCxform(TagContext& tag)
{
    const std::uint16_t id = tag.body.u16();
    ColorTransform color = tag.body.colorTransform(false);
    CHECK_RESULT(tag.body.check());
    auto* button = tag.builder.find<Button>(id);
    if (!button) return base::fail(base::ErrorCode::NotFound, "there is no button " + std::to_string(id));
    // One for each record; encoders that write a single one mean it for all.
    for (ButtonRecord& record : button->records) {
        record.color = color;
        if (tag.body.atEnd()) continue;
        const ColorTransform next = tag.body.colorTransform(false);
        if (!tag.body.overrun()) color = next;
    }
    return {};
}

base::Result<void> defineButtonSound(TagContext& tag)
{
    const std::uint16_t id = tag.body.u16();
    std::array<Button::Cue, 4> cues;
    for (Button::Cue& cue : cues) {
        if (tag.body.atEnd()) break; // the cues that are silent may be left out at the end
        cue.soundId = tag.body.u16();
        if (cue.soundId != 0) cue.info = readSoundInfo(tag.body);
    }
    CHECK_RESULT(tag.body.check());
    auto* button = tag.builder.find<Button>(id);
    if (!button) return base::fail(base::ErrorCode::NotFound, "there is no button " + std::to_string(id));
    button->sounds = std::move(cues);
    return {};
}

} // namespace flash::swf::tags
