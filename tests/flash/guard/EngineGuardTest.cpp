#include "../swf/MovieWriter.h"

#include "flash/Engine.h"
#include "flash/guard/Guard.h"

#include <QTemporaryDir>

#include <chrono>
#include <csignal>
#include <fstream>
#include <gtest/gtest.h>
#include <new>
#include <thread>
#include <unistd.h>

// How a movie ends that cannot go on.
namespace flash
{
namespace
{

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

class Host : public stage::HostEvents
{
public:
    void movieEnded(EndCause, std::string_view why) override { ends.emplace_back(why); }
    void logLine(std::string_view line) override { lines.emplace_back(line); }
    bool abortSlowScript() override
    {
        ++questions;
        return true;
    }
    std::vector<std::string> ends, lines;
    int questions = 0;
};

class EngineGuard : public testing::Test
{
protected:
    /// A movie of `frames` frames whose first runs `actions`.
    std::string movie(const swf::ByteList& actions, unsigned frames = 2)
    {
        std::vector<swf::ByteList> tags = {swf::tag(12, swf::BodyWriter().raw(actions))};
        for (unsigned i = 0; i < frames; ++i) tags.push_back(swf::kShowFrame);
        const swf::ByteList bytes = swf::movieBytes(6, tags, frames);
        const std::string path = m_folder.filePath("movie.swf").toStdString();
        std::ofstream(path, std::ios::binary)
            .write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
        return path;
    }
    const swf::ByteList kEndless = {0x99, 2, 0, 0xFB, 0xFF, 0}; // jumps to itself
    const swf::ByteList kNothing = {0};

    QTemporaryDir m_folder;
    Host m_host;
    Engine m_engine{m_host, {}};
};

TEST_F(EngineGuard, AnInterruptionEndsAnEndlessScriptAtOnce)
{
    std::jthread interrupter([this] {
        std::this_thread::sleep_for(200ms);
        m_engine.interrupt(Engine::Until::NextMovie);
    });
    const auto begin = Clock::now();
    EXPECT_FALSE(m_engine.open(movie(kEndless)));
    EXPECT_LT(Clock::now() - begin, 3s);
    EXPECT_FALSE(m_engine.isOpen());
    EXPECT_EQ(m_host.ends.size(), 1U);
    EXPECT_EQ(m_host.questions, 0) << "nobody is asked about what ends anyway";
    m_engine.advance(1000);

    ASSERT_TRUE(m_engine.open(movie(kNothing)));
    m_engine.advance(1000);
    EXPECT_TRUE(m_engine.isOpen()) << "the next movie plays";
    EXPECT_EQ(m_host.ends.size(), 1U);
}

TEST_F(EngineGuard, WhatIsInterruptedForEverOpensNoMovieAnyMore)
{
    ASSERT_TRUE(m_engine.open(movie(kNothing)));
    m_engine.interrupt(Engine::Until::Ever);
    m_engine.advance(1000);
    EXPECT_FALSE(m_engine.isOpen());
    EXPECT_FALSE(m_engine.open(movie(kEndless)));
    EXPECT_EQ(m_engine.getVariable("_root.x"), "");
}

TEST_F(EngineGuard, ASignalsHandlerEndsEveryMovieOfTheProcess)
{
    const std::string endless = movie(kEndless);
    // In a process of its own: there is no way back.
    EXPECT_EXIT(
        {
            std::signal(SIGALRM, [](int) { Engine::interruptAll(); });
            ::alarm(1);
            const auto begin = Clock::now();
            const bool opened = m_engine.open(endless).has_value();
            const bool inTime = Clock::now() - begin < 4s;
            Engine other(m_host, {});
            ::_exit(!opened && inTime && m_host.questions == 0 && !other.open(endless) ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
}

TEST_F(EngineGuard, AMovieEndsWhereTheMemoryDoes)
{
    struct Case {
        const char* name;
        std::function<void()> fault;
    };
    const Case kCases[] = {
        {"no memory", [] { throw std::bad_alloc(); }},
        {"more than any memory", [] { throw std::length_error("vector"); }},
        {"out of bounds", [] { throw guard::MovieEnded(guard::MovieEnded::Cause::Time, "test"); }},
    };
    for (const Case& c : kCases) {
        SCOPED_TRACE(c.name);
        m_host.ends.clear();
        ASSERT_TRUE(m_engine.open(movie(kNothing)));
        EXPECT_FALSE(m_engine.act([&](stage::Stage&) { c.fault(); }));
        EXPECT_FALSE(m_engine.isOpen());
        EXPECT_EQ(m_host.ends.size(), 1U);
        m_engine.advance(100);
    }
    ASSERT_TRUE(m_engine.open(movie(kNothing)));
    EXPECT_TRUE(m_engine.act([](stage::Stage&) {}));
}

TEST(Guard, LooksAtTheClockOnlyDuringATurn)
{
    guard::check(1'000'000); // nobody's turn: nothing to look at
    guard::Guard watch;
    watch.interrupt(guard::Guard::Until::NextMovie);
    guard::check(1'000'000);
    {
        const guard::Turn turn(watch);
        EXPECT_EQ(guard::current(), &watch);
        EXPECT_THROW(guard::check(1'000'000), guard::MovieEnded);
        watch.setEnding(true);
        EXPECT_NO_THROW(guard::check(1'000'000));
    }
    EXPECT_EQ(guard::current(), nullptr);
}

std::size_t g_resident = 0;
int g_measures = 0;

void work(guard::Guard& watch, std::chrono::microseconds time)
{
    const guard::Turn turn(watch);
    watch.lookAround();
    for (const auto begin = Clock::now(); Clock::now() - begin < time;) {}
}

TEST(Guard, MeasuresMemoryByTheWorkThatIsDone)
{
    g_resident = g_measures = 0;
    guard::Guard watch([] {
        ++g_measures;
        return g_resident;
    });
    watch.renew();
    work(watch, 0us);
    g_measures = 0;
    for (int i = 0; i < 100; ++i) work(watch, 10us);
    EXPECT_LE(g_measures, 2) << "a movie that does next to nothing is left alone";
    g_resident = guard::kMaxGrowthBytes + 1;
    EXPECT_THROW(
        {
            for (int i = 0; i < 25; ++i) work(watch, 1ms);
        },
        guard::MovieEnded)
        << "20 ms of work, in however small pieces";
    EXPECT_THROW(
        {
            const guard::Turn turn(watch);
            for (const auto begin = Clock::now(); Clock::now() - begin < 2s;) guard::check();
        },
        guard::MovieEnded)
        << "or in one";
    g_resident = 0;
    work(watch, 0us);
}

TEST(Guard, ReportsEachBoundOnceForAMovie)
{
    int reports = 0;
    guard::Guard watch;
    watch.setReport([&](guard::Bound, std::string_view) { ++reports; });
    const guard::Turn turn(watch);
    for (int i = 0; i < 5; ++i) guard::refuse(guard::Bound::Loads, "too many");
    guard::refuse(guard::Bound::Texts, "too long");
    EXPECT_EQ(reports, 2);
    watch.renew();
    guard::refuse(guard::Bound::Loads, "too many");
    EXPECT_EQ(reports, 3);
}

} // namespace
} // namespace flash
