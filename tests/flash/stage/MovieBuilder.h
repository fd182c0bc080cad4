#pragma once

#include "flash/swf/Movie.h"

#include <memory>
#include <string>
#include <string_view>
#include <utility>

namespace flash::stage::test
{

/// Builds movies by hand. Blocks are named by their bytes: a test's script host reads the name back.
class MovieBuilder
{
public:
    explicit MovieBuilder(int frames = 1, int widthPixels = 100, int heightPixels = 100)
    {
        m_movie->header.version = 7;
        m_movie->header.frameRate = 10;
        m_movie->header.frameSize = {0, widthPixels * 20, 0, heightPixels * 20};
        setFrames(m_movie->timeline, frames);
    }

    static void setFrames(swf::Timeline& timeline, int frames)
    {
        timeline.frames.resize(static_cast<std::size_t>(frames));
        timeline.statedFrameCount = static_cast<std::uint16_t>(frames);
    }

    void character(std::uint16_t id, swf::CharacterData data)
    {
        auto made = std::make_shared<swf::Character>();
        made->id = id;
        made->data = std::move(data);
        m_movie->characters[id] = made;
    }

    /// A filled square whose upper left corner is at (0, 0).
    void square(std::uint16_t id, int sizePixels, swf::Rgba color = {255, 0, 0, 255})
    {
        auto shape = std::make_shared<swf::Shape>();
        const int s = sizePixels * 20;
        shape->bounds = shape->edgeBounds = {0, s, 0, s};
        swf::ShapeLayer layer;
        swf::FillStyle fill;
        fill.color = color;
        layer.fills.push_back(fill);
        swf::EdgeRun run;
        run.fill1 = 1;
        run.edges = {{false, 0, 0, s, 0}, {false, 0, 0, s, s}, {false, 0, 0, 0, s}, {false, 0, 0, 0, 0}};
        layer.runs.push_back(run);
        shape->layers.push_back(layer);
        character(id, swf::ShapeCharacter{shape});
    }

    /// A sprite; its frames are filled through the returned timeline until the movie is taken.
    swf::Timeline& sprite(std::uint16_t id, int frames = 1)
    {
        auto timeline = std::make_shared<swf::Timeline>();
        setFrames(*timeline, frames);
        character(id, swf::Sprite{timeline});
        return *timeline;
    }

    static swf::PlaceObject placed(std::uint16_t id, std::uint16_t depth, double x = 0, double y = 0,
                                   std::string name = {})
    {
        swf::PlaceObject tag;
        tag.characterId = id;
        tag.depth = depth;
        tag.matrix = swf::Matrix{1, 0, 0, 1, x * 20, y * 20};
        if (!name.empty()) tag.name = std::move(name);
        return tag;
    }

    static swf::PlaceObject moved(std::uint16_t depth, double x, double y = 0)
    {
        swf::PlaceObject tag;
        tag.move = true;
        tag.depth = depth;
        tag.matrix = swf::Matrix{1, 0, 0, 1, x * 20, y * 20};
        return tag;
    }

    /// @param name must outlive the movie: a literal
    static swf::ActionBlock block(std::string_view name)
    {
        return {base::Bytes(reinterpret_cast<const std::uint8_t*>(name.data()), name.size())};
    }

    void tag(int frame, swf::ControlTag tag)
    {
        m_movie->timeline.frames[static_cast<std::size_t>(frame)].tags.push_back(std::move(tag));
    }
    static void tag(swf::Timeline& timeline, int frame, swf::ControlTag tag)
    {
        timeline.frames[static_cast<std::size_t>(frame)].tags.push_back(std::move(tag));
    }

    swf::Movie& movie() { return *m_movie; }
    std::shared_ptr<const swf::Movie> take() { return m_movie; }

private:
    std::shared_ptr<swf::Movie> m_movie = std::make_shared<swf::Movie>();
};

} // namespace flash::stage::test
