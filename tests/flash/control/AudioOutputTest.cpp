#include "flash/AudioOutput.h"
#include "flash/ServerOutput.h"

#include "flash/sound/Mixer.h"

#include <QElapsedTimer>
#include <QTest>

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <thread>

namespace flash
{
namespace
{

/// Counts what was taken of it.
class Tone : public SoundSource
{
public:
    void mix(std::span<sound::StereoFrame> frames) override
    {
        taken += frames.size();
        std::fill(frames.begin(), frames.end(), sound::StereoFrame{1000, -1000});
    }
    [[nodiscard]] bool isSilent() override { return silent; }
    std::size_t taken = 0;
    bool silent = false;
};

/// Stands in for the machine's devices: plugged in, pulled out, or hanging.
struct Machine {
    class Device : public OutputDevice
    {
    public:
        Device(Machine& machine, QIODevice& from) : m_machine(machine) { machine.reader = &from; }
        ~Device() override { m_machine.reader = nullptr; }
        [[nodiscard]] bool isLost() const override { return !m_machine.plugged; }

    private:
        Machine& m_machine;
    };
    std::unique_ptr<OutputDevice> open(QIODevice& from)
    {
        ++opened;
        return plugged ? std::make_unique<Device>(*this, from) : nullptr;
    }
    /// As much as a device takes in so many milliseconds.
    void play(int ms)
    {
        if (reader != nullptr && plugged && !hangs) (void)reader->read(4LL * sound::kMixRate * ms / 1000);
    }
    bool plugged = true, hangs = false;
    int opened = 0;
    QIODevice* reader = nullptr;
};

class AudioOutputTest : public testing::Test
{
protected:
    AudioOutputTest()
    {
        auto tone = std::make_unique<Tone>();
        source = tone.get();
        output = std::make_unique<AudioOutput>(std::move(tone),
                                               [this](QIODevice& from) { return machine.open(from); });
        QObject::connect(output.get(), &AudioOutput::lost, [this] { ++losses; });
        QObject::connect(output.get(), &AudioOutput::foundAgain, [this] { ++returns; });
    }
    void run(int ms)
    {
        constexpr int kStep = 30;
        for (int at = 0; at < ms; at += kStep) {
            machine.play(kStep);
            output->follow(kStep);
        }
    }
    Machine machine;
    Tone* source = nullptr; // the output's
    std::unique_ptr<AudioOutput> output;
    int losses = 0, returns = 0;
};

TEST_F(AudioOutputTest, ADeviceThatGoesIsTakenAgainWhenItComesBack)
{
    run(2000);
    ASSERT_TRUE(output->isPulling());
    EXPECT_NEAR(output->fedMs(), 2000, 100);
    machine.plugged = false;
    run(30);
    EXPECT_FALSE(output->isPulling()) << "the owner moves the sounds on at once";
    EXPECT_EQ(losses, 1);
    const int before = machine.opened;
    run(60'000);
    EXPECT_EQ(losses, 1) << "is told once";
    EXPECT_GE(machine.opened, before + 4);
    EXPECT_LE(machine.opened, before + 15) << "asking is not free";
    machine.plugged = true;
    run(11'000);
    EXPECT_TRUE(output->isPulling());
    EXPECT_EQ(returns, 1);
    EXPECT_LT(output->fedMs(), 11'000) << "counts from when it was opened";
}

TEST_F(AudioOutputTest, ADeviceThatStopsReadingCountsAsLost)
{
    run(500);
    machine.hangs = true;
    run(1000);
    EXPECT_TRUE(output->isPulling()) << "a hiccup is none";
    run(1000);
    EXPECT_FALSE(output->isPulling());
    EXPECT_EQ(losses, 1);
    // It takes a buffer full each time that it is opened, and no more.
    for (int i = 0; i < 200; ++i) {
        if (machine.reader != nullptr && output->fedMs() == 0)
            (void)machine.reader->read(4 * sound::kMixRate / 10);
        run(90);
    }
    EXPECT_EQ(losses, 1) << "is told once";
    EXPECT_EQ(returns, 0);
    EXPECT_LT(machine.opened, 8) << "is asked less and less often";
    machine.hangs = false;
    run(12'000);
    EXPECT_TRUE(output->isPulling());
    EXPECT_EQ(returns, 1);
}

TEST_F(AudioOutputTest, APauseOfTheProcessIsNoLoss)
{
    run(500);
    output->follow(3'600'000); // as after a night's sleep; nothing was read meanwhile
    output->follow(30);
    EXPECT_TRUE(output->isPulling());
    EXPECT_EQ(losses, 0);
}

TEST_F(AudioOutputTest, SilenceLetsGoOfTheDevice)
{
    source->silent = true;
    run(1000);
    EXPECT_EQ(machine.opened, 0);
    source->silent = false;
    run(100);
    EXPECT_TRUE(output->isPulling());
    source->silent = true;
    run(4000);
    EXPECT_FALSE(output->isPulling());
    EXPECT_EQ(losses, 0);
    source->silent = false;
    run(100);
    EXPECT_TRUE(output->isPulling());
}

/// Stands in for a sound server that is reached by waiting.
struct Server {
    class Stream : public SoundStream
    {
    public:
        explicit Stream(std::shared_ptr<Server> server) : m_server(std::move(server)) {}
        bool write(std::span<const sound::StereoFrame> frames) override
        {
            std::this_thread::sleep_for(std::chrono::milliseconds(2));
            if (!m_server->isUp) return false;
            m_server->heard += frames.size();
            if (frames.front().left != 1000) ++m_server->wrong;
            return true;
        }

    private:
        std::shared_ptr<Server> m_server;
    };
    std::atomic<bool> isUp = false;
    std::atomic<int> tries = 0, wrong = 0;
    std::atomic<std::size_t> heard = 0;
};

TEST(ServerOutput, FindsAServerThatComesBackAndNeverWaitsForIt)
{
    const auto server = std::make_shared<Server>();
    ServerOutput way(
        [server]() -> std::unique_ptr<SoundStream> {
            std::this_thread::sleep_for(std::chrono::milliseconds(100));
            ++server->tries;
            return server->isUp ? std::make_unique<Server::Stream>(server) : nullptr;
        },
        std::chrono::milliseconds(10));
    AudioOutput output(std::make_unique<Tone>(), [&](QIODevice& from) { return way.open(from); });
    int losses = 0;
    QObject::connect(&output, &AudioOutput::lost, [&] { ++losses; });
    qint64 longest = 0;
    const auto follow = [&](auto until) {
        QElapsedTimer patience, turn;
        for (patience.start(); !until() && patience.elapsed() < 10'000;) {
            turn.start();
            output.follow(30);
            longest = std::max(longest, turn.elapsed());
            QTest::qWait(1);
        }
        return until();
    };
    EXPECT_TRUE(follow([&] { return server->tries > 3; })) << "goes on trying";
    EXPECT_FALSE(output.isPulling()) << "the owner moves the sounds on meanwhile";
    server->isUp = true;
    EXPECT_TRUE(follow([&] { return server->heard > 20'000; }));
    EXPECT_TRUE(output.isPulling());
    EXPECT_EQ(losses, 0);
    server->isUp = false;
    EXPECT_TRUE(follow([&] { return losses == 1; }));
    server->isUp = true;
    const std::size_t before = server->heard;
    EXPECT_TRUE(follow([&] { return server->heard > before + 20'000; }));
    EXPECT_EQ(server->wrong, 0);
    EXPECT_LT(longest, 80) << "milliseconds that a turn took; to connect takes 100";
}

} // namespace
} // namespace flash
