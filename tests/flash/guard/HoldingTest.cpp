#include "../swf/MovieWriter.h"

#include "flash/Engine.h"
#include "flash/guard/Guard.h"
#include "flash/guard/Holding.h"
#include "flash/stage/Stage.h"

#include <QImage>
#include <QTemporaryDir>

#include <fstream>
#include <gtest/gtest.h>

// What a movie may hold of all that it loads.
namespace flash
{
namespace
{

constexpr std::size_t kMega = 1U << 20U;

class Host : public stage::HostEvents
{
public:
    void limitReached(std::string_view) override { ++limits; }
    void movieEnded(EndCause, std::string_view) override { ++ends; }
    int limits = 0, ends = 0;
};

class EngineHolding : public testing::Test
{
protected:
    EngineHolding() : m_engine(m_host, options()) {}
    static Engine::Options options()
    {
        Engine::Options options;
        options.mostHeldBytes = 5 * kMega;
        return options;
    }
    std::string write(const char* name, const swf::ByteList& bytes)
    {
        const std::string path = m_folder.filePath(name).toStdString();
        std::ofstream(path, std::ios::binary)
            .write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
        return path;
    }
    /// One that nobody knows a use for.
    static swf::ByteList tagOf(std::size_t bytes)
    {
        return swf::tag(700, swf::BodyWriter().raw(swf::ByteList(bytes, 'x')));
    }
    std::string writeMovie(const char* name, std::size_t bytes)
    {
        return write(name, swf::movieBytes(8, {tagOf(bytes), swf::kShowFrame}));
    }
    void load(int level, const std::string& name)
    {
        m_engine.act([&](stage::Stage& stage) {
            stage.loads().intoLevel(level, {name, stage.url(), stage::LoadRequest::Method::None, {}});
        });
        m_engine.advance(200);
    }
    bool isFilled(int level)
    {
        const stage::Clip* clip = m_engine.stage().displayList().level(level);
        return clip != nullptr && clip->bytesTotal() > 1000;
    }

    bool showsPicture(int level)
    {
        const stage::Clip* clip = m_engine.stage().displayList().level(level);
        return clip != nullptr && clip->content() == stage::Clip::Content::Picture;
    }

    QTemporaryDir m_folder;
    Host m_host;
    Engine m_engine;
};

TEST_F(EngineHolding, WhatIsLoadedTogetherHasOneBoundAndFreesItsRoom)
{
    writeMovie("big.swf", kMega);
    ASSERT_TRUE(m_engine.open(writeMovie("main.swf", 100)));
    for (int level = 1; level <= 8; ++level) load(level, "big.swf");
    for (int level = 1; level <= 8; ++level) EXPECT_EQ(isFilled(level), level <= 4) << level;
    EXPECT_EQ(m_host.limits, 1) << "the user is told, and once";
    EXPECT_EQ(m_host.ends, 0) << "the movie plays on";

    m_engine.act([](stage::Stage& stage) { stage.loads().unloadLevel(2); });
    m_engine.advance(200);
    load(6, "big.swf");
    EXPECT_TRUE(isFilled(6)) << "what was unloaded makes room";

    QImage picture(700, 700, QImage::Format_RGB32); // 1.9 MB of pixels, and hardly a file
    picture.fill(Qt::red);
    ASSERT_TRUE(picture.save(m_folder.filePath("picture.png")));
    load(7, "picture.png");
    EXPECT_FALSE(showsPicture(7));
    m_engine.act([](stage::Stage& stage) {
        stage.loads().unloadLevel(6);
        stage.loads().unloadLevel(1);
    });
    m_engine.advance(200);
    load(7, "picture.png");
    EXPECT_TRUE(showsPicture(7));

    // Into a clip as into a level, and a movie that fits just once fits.
    m_engine.act([](stage::Stage& stage) {
        for (int level = 1; level <= 8; ++level) stage.loads().unloadLevel(level);
    });
    m_engine.advance(200);
    writeMovie("large.swf", 3 * kMega);
    std::shared_ptr<stage::Clip> clip;
    m_engine.act([&](stage::Stage& stage) {
        clip = stage.root()->attachEmpty(1, "clip");
        stage.loads().intoClip(*clip, {"large.swf", stage.url(), stage::LoadRequest::Method::None, {}});
    });
    m_engine.advance(200);
    EXPECT_GT(clip->bytesTotal(), 3.0 * kMega);

    // Another movie begins with an account of its own.
    ASSERT_TRUE(m_engine.open(writeMovie("main.swf", 4 * kMega)));
    EXPECT_FALSE(m_engine.open(writeMovie("main.swf", 6 * kMega)));
    EXPECT_TRUE(m_engine.isOpen()) << "what played goes on";
}

TEST(Holding, CountsForWhoeverTakesIt)
{
    guard::Guard watch;
    watch.setMostHeld(1000);
    int reports = 0;
    watch.setReport([&](guard::Bound bound, std::string_view) { reports += bound == guard::Bound::Held; });
    EXPECT_TRUE(guard::Holding::take(1U << 30U)) << "nobody's turn: nobody's bound";
    std::shared_ptr<const std::vector<std::uint8_t>> file;
    {
        const guard::Turn turn(watch);
        auto first = guard::Holding::take(600);
        ASSERT_TRUE(first);
        EXPECT_EQ(guard::roomToHold(), 400U);
        EXPECT_FALSE(guard::Holding::take(401));
        EXPECT_EQ(guard::hold(std::vector<std::uint8_t>(500)), nullptr);
        EXPECT_EQ(reports, 1);
        file = guard::hold(std::vector<std::uint8_t>(400));
        ASSERT_NE(file, nullptr);
        guard::Holding moved = std::move(*first);
        first.reset();
        EXPECT_EQ(guard::roomToHold(), 0U);
        moved = {};
        EXPECT_EQ(guard::roomToHold(), 600U);
    }
    const auto ledger = watch.ledger();
    watch.renew();
    EXPECT_EQ(watch.ledger()->held(), 0U) << "what the movie before left counts no more";
    EXPECT_EQ(ledger->held(), 400U);
    file.reset(); // wherever, whenever
    EXPECT_EQ(ledger->held(), 0U);
}

} // namespace
} // namespace flash
