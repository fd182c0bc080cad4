#include "base/Files.h"

#include <csignal>
#include <fcntl.h>
#include <fstream>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>

namespace base
{
namespace
{

class ReplaceFile : public testing::Test
{
protected:
    ReplaceFile()
    {
        std::string pattern = testing::TempDir() + "filesXXXXXX";
        folder = ::mkdtemp(pattern.data());
    }
    ~ReplaceFile() override { std::filesystem::remove_all(folder); }
    [[nodiscard]] std::size_t entries() const
    {
        return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator(folder),
                                                      std::filesystem::directory_iterator()));
    }
    std::filesystem::path folder;
    const std::vector<std::uint8_t> oldContent{'o', 'l', 'd'};
    const std::vector<std::uint8_t> newContent{'n', 'e', 'w', '!'};
};

TEST_F(ReplaceFile, KeepsPermissionsAndLeavesNothingBehind)
{
    const auto target = folder / "movie.swf";
    ASSERT_TRUE(replaceFile(target, oldContent));
    ASSERT_EQ(::chmod(target.c_str(), 0600), 0);
    ASSERT_TRUE(replaceFile(target, newContent));
    EXPECT_EQ(readFile(target, 100).value(), newContent);
    struct stat status {
    };
    ASSERT_EQ(::stat(target.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0600U);
    EXPECT_EQ(entries(), 1U);
}

TEST_F(ReplaceFile, LeavesTheOldContentWhenTheNewCannotTakeItsPlace)
{
    // A folder cannot be replaced by a file: the rename is the step that fails.
    const auto target = folder / "taken";
    std::filesystem::create_directory(target);
    std::ofstream(target / "inside") << "kept";
    EXPECT_FALSE(replaceFile(target, newContent));
    EXPECT_TRUE(std::filesystem::exists(target / "inside"));
    EXPECT_EQ(entries(), 1U);
}

TEST_F(ReplaceFile, KeepsTheOldContentWhenWritingStopsPartWay)
{
    const auto target = folder / "movie.swf";
    ASSERT_TRUE(replaceFile(target, oldContent));
    // A limit on file sizes fails a write in the middle, as a full disk does.
    rlimit before{};
    ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &before), 0);
    const rlimit small{2, before.rlim_max};
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &small), 0);
    const auto result = replaceFile(target, newContent);
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &before), 0);
    std::signal(SIGXFSZ, handler);
    ASSERT_FALSE(result);
    EXPECT_EQ(result.error().code, ErrorCode::IoFailure);
    EXPECT_EQ(readFile(target, 100).value(), oldContent);
    EXPECT_EQ(entries(), 1U);
}

TEST_F(ReplaceFile, NamesAFullDisk)
{
    const auto full = replaceFile("/dev/full/x", newContent);
    EXPECT_FALSE(isDiskFull(full.error())) << "there is no such folder";
    EXPECT_TRUE(
        isDiskFull(Error{ErrorCode::IoFailure, "a.swf: " + std::generic_category().message(ENOSPC), {}}));
    EXPECT_FALSE(
        isDiskFull(Error{ErrorCode::IoFailure, "a.swf: " + std::generic_category().message(EIO), {}}));
}

TEST_F(ReplaceFile, WhatAKilledProcessLeftIsSwept)
{
    const auto target = folder / "settings.xml";
    for (int i = 0; i < 20; ++i) {
        const pid_t child = ::fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            const std::vector<std::uint8_t> large(1 << 20, 'x');
            for (;;) (void)replaceFile(target, large);
        }
        ::usleep(static_cast<useconds_t>(1000 * i));
        ::kill(child, SIGKILL);
        ::waitpid(child, nullptr, 0);
    }
    // Names that only look alike are the user's own.
    const char* const kKept[] = {"a.tmp",         "settings.xml.~abc.tmp", "settings.xml.backup.tmp",
                                 "x.~abcdef.txt", ".~abcdef.tmp",          "settings.xml~",
                                 "y.~abcde_.tmp"};
    for (const char* name : kKept) std::ofstream(folder / name) << "kept";
    std::filesystem::create_directories(folder / "folder.~abcdef.tmp");
    std::filesystem::create_symlink(folder / "a.tmp", folder / "link.~abcdef.tmp");
    constexpr std::size_t kLeft = std::size(kKept) + 3; // and the target
    ASSERT_TRUE(replaceFile(target, newContent));
    (void)sweepTemporaryFiles(folder, std::chrono::hours(1));
    const std::size_t before = entries();
    EXPECT_EQ(sweepTemporaryFiles(folder, std::chrono::seconds(0)), static_cast<int>(before - kLeft));
    EXPECT_EQ(entries(), kLeft);
    EXPECT_EQ(readFile(target, 100).value(), newContent);
}

TEST_F(ReplaceFile, BesideTheUsersFilesOnlyWhatWasToBecomeTheOneAtHandIsSwept)
{
    const auto movie = folder / "movie.swf";
    const auto make = [&](const char* name) { std::ofstream(folder / name) << "half"; };
    make("movie.swf.~aB3xY9.tmp");
    make("movie.swf.~000000.tmp");
    make("other.swf.~aB3xY9.tmp");
    make("movie.swf.x.~aB3xY9.tmp");
    EXPECT_EQ(sweepTemporaryFilesOf(movie), 0) << "they may be at work";
    EXPECT_EQ(sweepTemporaryFilesOf(movie, std::chrono::seconds(0)), 2);
    EXPECT_EQ(entries(), 2U);
    // An old one that a process still holds open for writing is at work, however slow.
    const int held = ::open((folder / "movie.swf.~aaaaaa.tmp").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    struct flock whole {
    };
    whole.l_type = F_WRLCK;
    ASSERT_EQ(::fcntl(held, F_OFD_SETLK, &whole), 0);
    ::usleep(20'000);
    EXPECT_EQ(sweepTemporaryFilesOf(movie, std::chrono::seconds(0)), 0);
    ::close(held);
    EXPECT_EQ(sweepTemporaryFilesOf(movie, std::chrono::seconds(0)), 1);
}

TEST_F(ReplaceFile, ReadingStopsAtTheLimit)
{
    const auto target = folder / "movie.swf";
    ASSERT_TRUE(replaceFile(target, newContent));
    EXPECT_EQ(readFile(target, 3).error().code, ErrorCode::LimitReached);
    EXPECT_EQ(readFile(folder / "absent", 3).error().code, ErrorCode::NotFound);
    EXPECT_FALSE(readFile(folder, 3));
}

} // namespace
} // namespace base
