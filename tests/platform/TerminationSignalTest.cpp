#include "platform/TerminationSignal.h"

#include "base/Files.h"

#include <QCoreApplication>
#include <QTimer>

#include <atomic>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

namespace platform
{
namespace
{

class Ending : public testing::Test
{
protected:
    Ending()
    {
        std::string pattern = testing::TempDir() + "endingXXXXXX";
        folder = ::mkdtemp(pattern.data());
    }
    ~Ending() override { std::filesystem::remove_all(folder); }
    [[nodiscard]] std::string contentOf(const char* name) const
    {
        const auto bytes = base::readFile(folder / name, 1000);
        return bytes ? std::string(bytes->begin(), bytes->end()) : "unreadable";
    }
    /// Runs `life` in a process of its own and asks that one to end. @returns its status, -1 for a crash
    template <class Life>
    int endOf(Life&& life)
    {
        int ready[2];
        EXPECT_EQ(::pipe(ready), 0);
        const pid_t child = ::fork();
        if (child == 0) {
            const TerminationSignal termination([] { ::_exit(7); });
            life();
            (void)!::write(ready[1], "x", 1);
            for (volatile bool forEver = true; forEver;) {
            }
        }
        char byte = 0;
        EXPECT_EQ(::read(ready[0], &byte, 1), 1);
        for (const int end : ready) ::close(end);
        const auto asked = std::chrono::steady_clock::now();
        ::kill(child, SIGTERM);
        int status = 0;
        ::waitpid(child, &status, 0);
        took = std::chrono::steady_clock::now() - asked;
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }
    std::filesystem::path folder;
    std::chrono::steady_clock::duration took{};
};

TEST_F(Ending, WhatCannotBeInterruptedStillSavesAndEnds)
{
    const std::vector<std::uint8_t> before{'o', 'l', 'd'};
    ASSERT_TRUE(base::replaceFile(folder / "settings", before));
    ASSERT_TRUE(base::replaceFile(folder / "journal", before));
    const auto word = [this](const char* content) {
        setLastWord({(folder / "settings").string(), content, (folder / "journal").string(), " line"});
    };
    EXPECT_EQ(endOf([&] {
                  word("earlier");
                  word("latest");
              }),
              0);
    EXPECT_LT(took, std::chrono::seconds(2));
    EXPECT_GE(took, std::chrono::milliseconds(kLastWordAfterMs));
    EXPECT_EQ(contentOf("settings"), "latest");
    EXPECT_EQ(contentOf("journal"), "old line");
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder), {}), 2);
}

TEST_F(Ending, WhatHasToStopIsStoppedFromTheSignalsHandler)
{
    static std::atomic<bool> stopped;
    int ready[2];
    ASSERT_EQ(::pipe(ready), 0);
    const pid_t child = ::fork();
    if (child == 0) {
        const TerminationSignal termination([] {}, []() noexcept { stopped = true; });
        (void)!::write(ready[1], "x", 1);
        while (!stopped) {
        }
        ::_exit(7);
    }
    char byte = 0;
    EXPECT_EQ(::read(ready[0], &byte, 1), 1);
    for (const int end : ready) ::close(end);
    ::kill(child, SIGTERM);
    int status = 0;
    ::waitpid(child, &status, 0);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 7);
}

TEST_F(Ending, AFolderThatTakesNothingKeepsNobodyAlive)
{
    EXPECT_EQ(endOf([this] {
                  setLastWord({(folder / "absent/settings").string(), "x",
                               (folder / "absent/journal").string(), "x"});
              }),
              0);
}

} // namespace
} // namespace platform
