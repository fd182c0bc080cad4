#include "flash/control/PictureFeed.h"

#include <QTest>

#include <fcntl.h>
#include <gtest/gtest.h>

namespace flash::control
{

namespace
{

/// The window's end, and what a movie's end writes to it.
class PictureFeedTest : public testing::Test
{
protected:
    void say(const FromMovie& message) { ASSERT_TRUE(m_far.send(message)); }
    void show(int picture, std::uint32_t view, const Rectangle& changed)
    {
        say(Picture{static_cast<std::uint8_t>(picture), view, {changed}});
    }
    bool isReleased()
    {
        EXPECT_TRUE(m_far.receive());
        const auto body = m_far.next();
        if (!body) return false;
        const auto message = decodeToMovie(body->kind, body->bytes);
        return message && std::holds_alternative<Release>(*message);
    }

    int m_told = 0;
    PictureFeed m_feed{[this] { ++m_told; }};
    Channel m_far{m_feed.takeFarEnd(), Channel::Descriptors::Refused};
};

} // namespace

TEST_F(PictureFeedTest, TakesPicturesOfTheViewAskedForLast)
{
    ASSERT_TRUE(m_feed.setView(40, 30));
    show(0, 1, {0, 0, 40, 30});
    ASSERT_TRUE(QTest::qWaitFor([this] { return m_told > 0; }));
    ASSERT_TRUE(m_feed.take());
    EXPECT_TRUE(m_feed.isOfView());
    EXPECT_EQ(m_feed.paintable().size(), QSize(40, 30));
    EXPECT_EQ(m_feed.takeChanged(), QRegion(0, 0, 40, 30));
    // What is told of parts outside changes nothing there.
    show(1, 1, {30, 20, 2'000'000'000, 2'000'000'000});
    ASSERT_TRUE(m_feed.take());
    EXPECT_EQ(m_feed.takeChanged(), QRegion(30, 20, 10, 10));

    ASSERT_TRUE(m_feed.setView(20, 10));
    EXPECT_FALSE(m_feed.isOfView());
    show(2, 1, {0, 0, 40, 30});
    ASSERT_TRUE(m_feed.take());
    EXPECT_FALSE(m_feed.isOfView());
    EXPECT_EQ(m_feed.paintable().size(), QSize(40, 30)) << "stays until there is another";
    show(0, 2, {0, 0, 1, 1});
    ASSERT_TRUE(m_feed.take());
    EXPECT_TRUE(m_feed.isOfView());
    EXPECT_EQ(m_feed.takeChanged(), QRegion(0, 0, 20, 10)) << "all of it is new";
}

TEST_F(PictureFeedTest, GivesPicturesBackToWhoWaits)
{
    const auto memory = m_feed.setView(40, 30);
    ASSERT_TRUE(memory);
    auto far = PictureMemory::attach(fcntl(*memory, F_DUPFD_CLOEXEC, 0), 40, 30);
    ASSERT_TRUE(far);
    EXPECT_FALSE(m_feed.frame());
    far->setFrame(7);
    EXPECT_EQ(m_feed.frame(), 7);
    far->setFrame(-1);
    EXPECT_EQ(m_feed.frame(), -1);
    for (int picture = 0; picture < PictureMemory::kPictures; ++picture) {
        ASSERT_EQ(far->takeFree(), picture);
        far->hold(picture);
    }
    show(0, 1, {0, 0, 40, 30});
    ASSERT_TRUE(m_feed.take());
    EXPECT_EQ(far->takeFree(), -1);
    EXPECT_FALSE(isReleased());
    show(1, 1, {0, 0, 40, 30});
    ASSERT_TRUE(m_feed.take());
    EXPECT_TRUE(isReleased());
    EXPECT_EQ(far->takeFree(), 0);
}

TEST_F(PictureFeedTest, RefusesWhatIsNoPicture)
{
    ASSERT_TRUE(m_feed.setView(40, 30));
    show(0, 1, {0, 0, 40, 30});
    ASSERT_TRUE(m_feed.take());
    const auto refuses = [this](const FromMovie& message) {
        PictureFeed feed([] {});
        Channel far(feed.takeFarEnd(), Channel::Descriptors::Refused);
        EXPECT_TRUE(feed.setView(40, 30));
        EXPECT_TRUE(far.send(FromMovie(Picture{0, 1, {}})));
        EXPECT_TRUE(far.send(message));
        return !feed.take() && !feed.take() && feed.isOfView();
    };
    EXPECT_TRUE(refuses(Picture{PictureMemory::kPictures, 1, {}}));
    EXPECT_TRUE(refuses(Picture{0, 2, {}})) << "of a view that nobody has asked for";
    EXPECT_TRUE(refuses(Hello{}));
    EXPECT_FALSE(refuses(Picture{2, 1, {}}));
}

TEST_F(PictureFeedTest, WhatComesBeforeTheEndCounts)
{
    ASSERT_TRUE(m_feed.setView(40, 30));
    show(0, 1, {0, 0, 40, 30});
    m_far.shutDown();
    ASSERT_TRUE(m_feed.take()) << "an end is no fault";
    EXPECT_TRUE(m_feed.isOfView());
    ASSERT_TRUE(m_feed.take());
    EXPECT_EQ(m_feed.descriptor(), -1);
    const int told = m_told;
    QTest::qWait(20);
    EXPECT_EQ(m_told, told) << "and nobody hears of it for ever";
    EXPECT_TRUE(m_feed.take());
}

} // namespace flash::control
