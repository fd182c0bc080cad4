#include "flash/control/Confinement.h"

#include <QTemporaryDir>

#include <arpa/inet.h>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/ptrace.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

namespace flash::control
{

namespace
{

/// What a movie's process may try. Each answers whether it came through.
struct Attempts {
    std::filesystem::path movieFolder, storage, above;

    [[nodiscard]] bool readsPasswords() const { return reads("/etc/passwd"); }
    [[nodiscard]] bool readsAboveTheMovie() const { return reads(above / "secret.txt"); }
    [[nodiscard]] bool readsBesideTheMovie() const { return reads(movieFolder / "data.txt"); }
    [[nodiscard]] bool readsThroughALink() const { return reads(movieFolder / "link.txt"); }
    [[nodiscard]] bool writesBesideTheMovie() const { return writes(movieFolder / "new.txt"); }
    [[nodiscard]] bool writesToTheStorage() const { return writes(storage / "record.sol"); }
    [[nodiscard]] bool deletesTheMovie() const { return unlink((movieFolder / "victim.txt").c_str()) == 0; }
    [[nodiscard]] bool connects() const
    {
        const int tcp = socket(AF_INET, SOCK_STREAM, 0);
        if (tcp < 0) return false;
        sockaddr_in nobody{};
        nobody.sin_family = AF_INET;
        nobody.sin_port = htons(9); // nothing listens there: refused by the other side is still a way out
        nobody.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        const bool reached =
            connect(tcp, reinterpret_cast<sockaddr*>(&nobody), sizeof nobody) == 0 || errno == ECONNREFUSED;
        close(tcp);
        return reached;
    }
    [[nodiscard]] bool runsAProgram() const
    {
        const pid_t child = fork();
        if (child < 0) return false;
        if (child == 0) {
            execl("/bin/true", "true", nullptr);
            _exit(1);
        }
        int status = 0;
        waitpid(child, &status, 0);
        return status == 0;
    }
    [[nodiscard]] bool tracesItsParent() const
    {
        if (ptrace(PTRACE_ATTACH, getppid(), nullptr, nullptr) != 0) return false;
        waitpid(getppid(), nullptr, __WALL);
        ptrace(PTRACE_DETACH, getppid(), nullptr, nullptr);
        return true;
    }
    [[nodiscard]] bool signalsItsParent() const { return kill(getppid(), 0) == 0; }

private:
    static bool reads(const std::filesystem::path& path)
    {
        const int file = open(path.c_str(), O_RDONLY);
        if (file >= 0) close(file);
        return file >= 0;
    }
    static bool writes(const std::filesystem::path& path)
    {
        const int file = open(path.c_str(), O_WRONLY | O_CREAT, 0600);
        if (file >= 0) close(file);
        return file >= 0;
    }
};

using Attempt = bool (Attempts::*)() const;

class Confined : public testing::Test
{
protected:
    void SetUp() override
    {
        if (!kUsualMeans.calls) GTEST_SKIP() << "a sanitizer needs what is taken away here";
    }
    Confined()
    {
        const std::filesystem::path base = m_folder.path().toStdString();
        m_attempts = {base / "movies", base / "storage", base};
        std::filesystem::create_directories(m_attempts.movieFolder);
        std::filesystem::create_directories(m_attempts.storage);
        for (const auto& path : {base / "secret.txt", m_attempts.movieFolder / "data.txt",
                                 m_attempts.movieFolder / "victim.txt"})
            close(open(path.c_str(), O_WRONLY | O_CREAT, 0600));
        std::filesystem::create_symlink(base / "secret.txt", m_attempts.movieFolder / "link.txt");
    }

    /// Tries it in a process of its own, confined by these means.
    bool comesThrough(Attempt attempt, Means means)
    {
        const pid_t child = fork();
        if (child == 0) {
            auto restraints = confineEarly(512U << 20U, means);
            for (const auto& one : confine({{m_attempts.movieFolder}, {m_attempts.storage}}, means))
                restraints.push_back(one);
            for (const auto& one : restraints) {
                if (!one.holds) _exit(kNotHere);
            }
            _exit((m_attempts.*attempt)() ? kCameThrough : kRefused);
        }
        int status = 0;
        waitpid(child, &status, 0);
        EXPECT_TRUE(WIFEXITED(status)) << "signal " << WTERMSIG(status);
        if (WEXITSTATUS(status) == kNotHere) m_missing = true;
        return WEXITSTATUS(status) == kCameThrough;
    }

    static constexpr int kRefused = 0, kCameThrough = 1, kNotHere = 2;
    static constexpr Means kNothing{false, false, false, false};
    QTemporaryDir m_folder;
    Attempts m_attempts;
    bool m_missing = false; // this system lacks one of the means
};

} // namespace

TEST_F(Confined, RefusesWhatAMovieHasNoBusinessWith)
{
    constexpr Means kFiles{false, false, true, false}, kCalls{false, false, false, true};
    constexpr Means kNames{false, true, false, false}, kAll{};
    struct Case {
        const char* name;
        Attempt attempt;
        bool free;                               // without anything
        std::optional<bool> files, calls, names; // by one means alone, where that decides it
        bool all;
    };
    const Case cases[] = {
        {"reads /etc/passwd", &Attempts::readsPasswords, true, false, {}, {}, false},
        {"reads above the movie", &Attempts::readsAboveTheMovie, true, false, {}, {}, false},
        {"reads through a link", &Attempts::readsThroughALink, true, false, {}, {}, false},
        {"reads beside the movie", &Attempts::readsBesideTheMovie, true, true, true, {}, true},
        {"writes beside the movie", &Attempts::writesBesideTheMovie, true, false, {}, {}, false},
        {"deletes beside the movie", &Attempts::deletesTheMovie, true, false, {}, {}, false},
        {"writes shared objects", &Attempts::writesToTheStorage, true, true, true, {}, true},
        {"connects", &Attempts::connects, true, {}, false, false, false},
        {"runs a program", &Attempts::runsAProgram, true, false, false, {}, false},
        {"signals its parent", &Attempts::signalsItsParent, true, {}, false, {}, false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const auto expectFor = [&](const char* means, Means which, std::optional<bool> through) {
            if (through) {
                EXPECT_EQ(comesThrough(c.attempt, which), *through) << means;
            }
        };
        expectFor("files alone", kFiles, c.files);
        expectFor("calls alone", kCalls, c.calls);
        expectFor("name spaces alone", kNames, c.names);
        expectFor("all means", kAll, c.all);
        if (m_missing) GTEST_SKIP() << "this system lacks one of the means";
        // Last, because what comes through leaves its trace.
        expectFor("no means", kNothing, c.free);
    }
}

TEST_F(Confined, DoesNotLookIntoItsParent)
{
    EXPECT_FALSE(comesThrough(&Attempts::tracesItsParent, {}));
    if (m_missing) GTEST_SKIP() << "this system lacks one of the means";
}

TEST(Confinement, MemoryEndsAtTheLimit)
{
    if (!kUsualMeans.limits) GTEST_SKIP() << "a sanitizer needs what is taken away here";
    const pid_t child = fork();
    if (child == 0) {
        confineEarly(64U << 20U, Means{true, false, false, false});
        void* much = malloc(128U << 20U);
        _exit(much == nullptr ? 0 : 1);
    }
    int status = 0;
    waitpid(child, &status, 0);
    ASSERT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 0);
}

} // namespace flash::control
