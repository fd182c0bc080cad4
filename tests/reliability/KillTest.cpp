#include "TracedProcess.h"
#include "base/Files.h"
#include "media/MovieBytes.h"

#include <algorithm>
#include <filesystem>
#include <gtest/gtest.h>
#include <map>

// Nothing that the user has is lost when the program is killed while it writes: at every point each file is
// what it was or what it was to become.

namespace reliability
{
namespace
{

namespace fs = std::filesystem;
using Bytes = std::vector<std::uint8_t>;
using Snapshot = std::map<std::string, Bytes>; ///< by the path within the folder

constexpr std::uint64_t kMaxBytes = 64U << 20U;
constexpr const char* kWorker = ZORVEX_TESTS_DIR "/reliability_worker";

Snapshot snapshotOf(const fs::path& folder)
{
    Snapshot files;
    for (const auto& entry : fs::recursive_directory_iterator(folder))
        if (entry.is_regular_file())
            files[fs::relative(entry.path(), folder)] = base::readFile(entry.path(), kMaxBytes).value();
    return files;
}

bool isEither(const Bytes* found, const Bytes* before, const Bytes* after)
{
    const auto equals = [found](const Bytes* other) {
        return found == nullptr || other == nullptr ? found == other : *found == *other;
    };
    return equals(before) || equals(after);
}

const Bytes* find(const Snapshot& files, const std::string& name)
{
    const auto found = files.find(name);
    return found == files.end() ? nullptr : &found->second;
}

struct Operation {
    const char* name;
    int kills = 1000;    ///< at most at so many points, evenly spread over the operation
    bool sweeps = false; ///< doing it again removes what is left of the time before
};

class Killed : public testing::TestWithParam<Operation>
{
protected:
    Killed()
    {
        fs::create_directories(m_folder);
        prepare();
    }
    ~Killed() override { fs::remove_all(m_folder); }

    /// The folder as it stands before the operation: files as a user has them.
    void prepare() const
    {
        for (const auto& entry : fs::directory_iterator(m_folder)) fs::remove_all(entry.path());
        fs::create_directories(m_folder / "cache");
        const Bytes plain = media::plainMovie(kVersion, kMoviePadding);
        put("movie.swf", plain);
        put("packed.swf", media::compressedMovie(kVersion, kMoviePadding));
        put("saved.swf", {'o', 'l', 'd'});
        Bytes projector(kProjectorBytes + plain.size(), 'x');
        std::copy(plain.begin(), plain.end(), projector.begin() + kProjectorBytes);
        put("projector.exe", projector);
        put("settings.xml",
            base::readFile(PROJECT_SOURCE_DIR "/assets/program/settings.xml", kMaxBytes).value());
        fs::create_directories(m_folder / "stored");
    }
    void put(const char* name, const Bytes& content) const
    {
        ASSERT_TRUE(base::replaceFile(m_folder / name, content));
    }
    /// Of the user's own folder, as if they had lain there for a while. @returns how many there are
    int ageTemporaryFiles() const
    {
        int count = 0;
        for (const auto& entry : fs::directory_iterator(m_folder)) {
            if (entry.path().filename().native().find(".~") == std::string::npos) continue;
            fs::last_write_time(entry.path(), fs::file_time_type::clock::now() - 2 * base::kLeftOverAge);
            ++count;
        }
        return count;
    }
    [[nodiscard]] std::optional<Ending> run(long killAt) const
    {
        return runAndKill({kWorker, GetParam().name, m_folder.string()}, killAt);
    }

    static constexpr int kVersion = 6;
    static constexpr std::size_t kMoviePadding = 400'000, kProjectorBytes = 20'000;
    fs::path m_folder = fs::temp_directory_path() / ("zorvex-kill-" + std::to_string(getpid()));
};

TEST_P(Killed, LeavesEveryFileOldOrNew)
{
#ifdef __SANITIZE_ADDRESS__
    GTEST_SKIP() << "leaks cannot be looked for in a process that is traced";
#endif
    const Snapshot before = snapshotOf(m_folder);
    const auto whole = run(0);
    if (!whole) GTEST_SKIP() << "processes may not be traced here";
    ASSERT_EQ(whole->status, 0) << "the operation fails by itself";
    ASSERT_GT(whole->kernelCalls, 0);
    const Snapshot after = snapshotOf(m_folder);
    ASSERT_NE(before, after) << "the operation does nothing";

    const long kills = std::min<long>(GetParam().kills, whole->kernelCalls);
    int changed = 0, unchanged = 0, swept = 0;
    for (long number = 1; number <= kills; ++number) {
        const long point = number * whole->kernelCalls / kills;
        SCOPED_TRACE("killed at call " + std::to_string(point) + " of " + std::to_string(whole->kernelCalls));
        prepare();
        const auto ending = run(point);
        ASSERT_TRUE(ending.has_value());
        const Snapshot found = snapshotOf(m_folder);
        // What is new under a name of its own is a temporary file; every other one is old or new.
        for (const Snapshot* names : {&before, &after})
            for (const auto& [name, content] : *names)
                EXPECT_TRUE(isEither(find(found, name), find(before, name), find(after, name)))
                    << name << " is " << (find(found, name) ? find(found, name)->size() : 0) << " bytes long";
        (found == after ? changed : unchanged) += 1;
        // And nothing that is left of it is in the way.
        constexpr long kRepeatEach = 8;
        if (number % kRepeatEach == 0 && found != after) {
            swept += ageTemporaryFiles();
            const auto again = run(0);
            EXPECT_EQ(again->status, 0);
            if (GetParam().sweeps) {
                EXPECT_EQ(ageTemporaryFiles(), 0) << "left beside the user's movies";
            }
            const Snapshot repeated = snapshotOf(m_folder);
            for (const auto& [name, content] : after)
                EXPECT_TRUE(isEither(find(repeated, name), &content, &content)) << name;
        }
    }
    RecordProperty("kills", static_cast<int>(kills));
    if (GetParam().sweeps) {
        EXPECT_GT(swept, 0) << "nothing was left to be swept";
    }
    EXPECT_GT(unchanged, 0) << "no kill came before the change";
    std::printf("%s: %ld kills in %ld kernel calls, %d before the end, %d after\n", GetParam().name, kills,
                whole->kernelCalls, unchanged, changed);
}

INSTANTIATE_TEST_SUITE_P(AtAnyPoint, Killed,
                         testing::Values(Operation{"settings"}, Operation{"recent"},
                                         Operation{"compress", 1000, true},
                                         Operation{"decompress", 1000, true}, Operation{"header"},
                                         Operation{"saveAs", 1000, true}, Operation{"extract"},
                                         Operation{"extractOver", 1000, true}, Operation{"thumbnail", 80},
                                         Operation{"sharedObject"}),
                         [](const auto& info) { return std::string(info.param.name); });

} // namespace
} // namespace reliability
