#include "flash/swf/Tags.h"

// Tags about the timeline and the movie as a whole.
namespace flash::swf::tags
{
namespace
{

using Names = std::vector<std::pair<std::uint16_t, std::string>>;

// A list that ends early keeps the names before its end.
Names readNames(TagContext& tag, unsigned count)
{
    Names names;
    for (unsigned i = 0; i < count; ++i) {
        const std::uint16_t id = tag.body.u16();
        std::string name = tag.body.string();
        if (tag.body.overrun()) {
            tag.warn("announces " + std::to_string(count) + " names, holds " + std::to_string(i));
            break;
        }
        if (!tag.builder.definitions().take(3 * sizeof(Names::value_type))) break;
        names.emplace_back(id, std::move(name));
    }
    return names;
}

} // namespace

base::Result<void> defineSprite(TagContext& tag)
{
    if (tag.spriteDepth >= tag.builder.spriteDepth())
        return base::fail(base::ErrorCode::LimitReached, "sprites are nested too deep");
    const std::uint16_t id = tag.body.u16();
    const std::uint16_t frameCount = tag.body.u16();
    CHECK_RESULT(tag.body.check());
    auto timeline = std::make_shared<Timeline>(parseTimeline(tag.builder, tag.body, tag.spriteDepth + 1));
    timeline->statedFrameCount = frameCount;
    tag.builder.define(id, Sprite{std::move(timeline)});
    return {};
}

base::Result<void> defineScalingGrid(TagContext& tag)
{
    const std::uint16_t id = tag.body.u16();
    const Rect grid = tag.body.rect();
    CHECK_RESULT(tag.body.check());
    Character* character = tag.builder.character(id);
    if (!character)
        return base::fail(base::ErrorCode::NotFound, "there is no character " + std::to_string(id));
    character->scalingGrid = grid;
    return {};
}

base::Result<void> setBackgroundColor(TagContext& tag)
{
    const Rgba color = tag.body.rgb();
    CHECK_RESULT(tag.body.check());
    Movie& movie = tag.builder.movie();
    // The first one is the stage's from the start; later ones change it as their frames are played.
    if (!movie.hasBackground) movie.background = color;
    movie.hasBackground = true;
    tag.add(SetBackground{color});
    return {};
}

base::Result<void> doAction(TagContext& tag)
{
    tag.add(DoAction{{tag.body.rest()}});
    return {};
}

base::Result<void> doInitAction(TagContext& tag)
{
    const std::uint16_t spriteId = tag.body.u16();
    CHECK_RESULT(tag.body.check());
    tag.add(DoInitAction{spriteId, {tag.body.rest()}});
    return {};
}

base::Result<void> frameLabel(TagContext& tag)
{
    tag.frame.label = tag.body.string();
    tag.frame.isAnchor = !tag.body.atEnd() && tag.body.u8() == 1;
    return {};
}

base::Result<void> exportAssets(TagContext& tag)
{
    ExportAssets assets;
    const std::uint16_t count = tag.body.u16();
    CHECK_RESULT(tag.body.check());
    assets.names = readNames(tag, count);
    for (const auto& [id, name] : assets.names) tag.builder.movie().exports.insert_or_assign(name, id);
    tag.add(std::move(assets));
    return {};
}

base::Result<void> importAssets(TagContext& tag)
{
    ImportAssets assets;
    assets.url = tag.body.string();
    if (tag.info.form >= 2) tag.body.skip(2); // reserved: 1, 0
    const std::uint16_t count = tag.body.u16();
    CHECK_RESULT(tag.body.check());
    assets.names = readNames(tag, count);
    tag.add(std::move(assets));
    return {};
}

base::Result<void> fileAttributes(TagContext& tag)
{
    constexpr std::uint8_t kUseNetwork = 0x01, kActionScript3 = 0x08;
    constexpr int kFirstVersionWithActionScript3 = 9;
    const std::uint8_t flags = tag.body.u8();
    CHECK_RESULT(tag.body.check());
    Movie& movie = tag.builder.movie();
    movie.usesNetwork = (flags & kUseNetwork) != 0;
    movie.isAs3 = (flags & kActionScript3) != 0 && movie.header.version >= kFirstVersionWithActionScript3;
    return {};
}

base::Result<void> metadata(TagContext& tag)
{
    tag.builder.movie().metadata = tag.body.string();
    return {};
}

base::Result<void> scriptLimits(TagContext& tag)
{
    const std::uint16_t maxRecursion = tag.body.u16();
    const std::uint16_t timeoutSeconds = tag.body.u16();
    CHECK_RESULT(tag.body.check());
    tag.builder.movie().scriptMaxRecursion = maxRecursion;
    tag.builder.movie().scriptTimeoutSeconds = timeoutSeconds;
    return {};
}

base::Result<void> setTabIndex(TagContext& tag)
{
    const std::uint16_t depth = tag.body.u16();
    const std::uint16_t index = tag.body.u16();
    CHECK_RESULT(tag.body.check());
    tag.add(SetTabIndex{depth, index});
    return {};
}

base::Result<void> otherMachine(TagContext&)
{
    return base::fail(base::ErrorCode::Unsupported, "belongs to ActionScript 3 and is ignored");
}

} // namespace flash::swf::tags
