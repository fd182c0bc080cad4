#include "flash/control/Confinement.h"
#include "flash/control/FileBroker.h"

#include <QTemporaryDir>

#include <arpa/inet.h>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/prctl.h>
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
    pid_t victim = -1;

    [[nodiscard]] bool readsPasswords() const { return reads("/etc/passwd"); }
    [[nodiscard]] bool readsAboveTheMovie() const { return reads(above / "secret.txt"); }
    [[nodiscard]] bool readsOverTheTop() const { return reads(movieFolder / "below/../../secret.txt"); }
    [[nodiscard]] bool readsThroughAFolder() const { return reads(movieFolder / "way/secret.txt"); }
    [[nodiscard]] bool readsItsParentsMemory() const
    {
        return reads("/proc/" + std::to_string(getppid()) + "/environ");
    }
    [[nodiscard]] bool readsBesideTheMovie() const { return reads(movieFolder / "data.txt"); }
    [[nodiscard]] bool readsThroughALink() const { return reads(movieFolder / "link.txt"); }
    [[nodiscard]] bool writesBesideTheMovie() const { return writes(movieFolder / "new.txt"); }
    [[nodiscard]] bool makesAFolder() const { return mkdir((above / "made").c_str(), 0700) == 0; }
    [[nodiscard]] bool movesTheMovie() const
    {
        return rename((movieFolder / "data.txt").c_str(), (storage / "stolen.txt").c_str()) == 0 &&
               rename((storage / "stolen.txt").c_str(), (movieFolder / "data.txt").c_str()) == 0;
    }
    [[nodiscard]] bool writesOutOfTheStorage() const { return writes(storage / "out.txt"); }
    /// As shared objects are: beside, then over; looked at, counted, removed.
    [[nodiscard]] bool writesToTheStorage() const
    {
        std::error_code error;
        std::string fresh = (storage / "record.XXXXXX").string();
        const int file = mkstemp(fresh.data());
        if (file < 0 || write(file, "kept", 4) != 4 || fchmod(file, 0644) != 0 || close(file) != 0)
            return false;
        const auto record = storage / "record.sol";
        if (rename(fresh.c_str(), record.c_str()) != 0) return false;
        int objects = 0;
        for (const auto& entry : std::filesystem::directory_iterator(storage, error))
            objects += entry.is_regular_file(error) && entry.file_size(error) == 4 ? 1 : 0;
        std::filesystem::create_directories(storage, error);
        return objects == 1 && !error && std::filesystem::remove(record, error);
    }
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
    /// As programs of a desktop find each other.
    [[nodiscard]] bool connectsToTheDesktop() const
    {
        const int local = socket(AF_UNIX, SOCK_STREAM, 0);
        if (local < 0) return false;
        sockaddr_un desktop{};
        desktop.sun_family = AF_UNIX;
        const std::string path = (above / "desktop").string();
        std::copy_n(path.c_str(), path.size() + 1, desktop.sun_path);
        const bool reached = connect(local, reinterpret_cast<sockaddr*>(&desktop), sizeof desktop) == 0;
        close(local);
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
    [[nodiscard]] bool tracesAnother() const
    {
        if (ptrace(PTRACE_SEIZE, victim, nullptr, nullptr) != 0) return false;
        ptrace(PTRACE_INTERRUPT, victim, nullptr, nullptr);
        waitpid(victim, nullptr, __WALL);
        ptrace(PTRACE_DETACH, victim, nullptr, nullptr);
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
        std::filesystem::create_directories(m_attempts.movieFolder / "below");
        std::filesystem::create_directories(m_attempts.movieFolder);
        std::filesystem::create_directories(m_attempts.storage);
        for (const auto& path : {base / "secret.txt", m_attempts.movieFolder / "data.txt",
                                 m_attempts.movieFolder / "victim.txt"})
            close(open(path.c_str(), O_WRONLY | O_CREAT, 0600));
        std::filesystem::create_symlink(base / "secret.txt", m_attempts.movieFolder / "link.txt");
        std::filesystem::create_symlink(base, m_attempts.movieFolder / "way");
        std::filesystem::create_symlink(base / "new.txt", m_attempts.storage / "out.txt");
        listen();
        m_attempts.victim = sleeper();
    }
    ~Confined() override
    {
        kill(m_attempts.victim, SIGKILL);
        waitpid(m_attempts.victim, nullptr, 0);
        close(m_desktop);
    }

    [[nodiscard]] ReachableFiles reachable() const
    {
        return {{m_attempts.movieFolder}, {m_attempts.storage}};
    }

    enum class Brokered : std::uint8_t { No, Yes };
    /// Tries it in a process of its own, confined by these means.
    bool comesThrough(Attempt attempt, Means means, Brokered brokered = Brokered::No)
    {
        const auto [near, far] = FileBroker::pair();
        FileBroker broker(near);
        const pid_t child = fork();
        if (child == 0) {
            auto restraints = confineEarly(512U << 20U, means);
            for (const auto& one : confine(reachable(), brokered == Brokered::Yes ? far : -1, means))
                restraints.push_back(one);
            for (const auto& one : restraints) {
                // What is not even tried is told, too.
                const bool isTried = means.files || one.name != "files (landlock)";
                if (isTried && !one.holds) _exit(kNotHere);
            }
            _exit((m_attempts.*attempt)() ? kCameThrough : kRefused);
        }
        close(far);
        broker.serve(reachable(), child);
        int status = 0;
        waitpid(child, &status, 0);
        EXPECT_TRUE(WIFEXITED(status)) << "signal " << WTERMSIG(status);
        if (WEXITSTATUS(status) == kNotHere) m_missing = true;
        return WEXITSTATUS(status) == kCameThrough;
    }

    void listen()
    {
        m_desktop = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        const std::string path = (m_attempts.above / "desktop").string();
        std::copy_n(path.c_str(), path.size() + 1, address.sun_path);
        ASSERT_EQ(bind(m_desktop, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
        ASSERT_EQ(::listen(m_desktop, 100), 0);
    }
    /// Another process of the same user, which lets anybody look into it.
    static pid_t sleeper()
    {
        const pid_t child = fork();
        if (child != 0) return child;
        prctl(PR_SET_PTRACER, PR_SET_PTRACER_ANY, 0, 0, 0);
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        for (;;) pause();
    }

    static constexpr int kRefused = 0, kCameThrough = 1, kNotHere = 2;
    static constexpr Means kNothing{false, false, false, false};
    QTemporaryDir m_folder;
    Attempts m_attempts;
    int m_desktop = -1;
    bool m_missing = false; // this system lacks one of the means
};

} // namespace

TEST_F(Confined, RefusesWhatAMovieHasNoBusinessWith)
{
    constexpr Means kFiles{false, false, true, false}, kCalls{false, false, false, true};
    constexpr Means kNames{false, true, false, false}, kAll{}, kAllButFiles{true, true, false, true};
    struct Case {
        const char* name;
        Attempt attempt;
        bool free; // without anything
        // By one means alone, where that decides it. Calls alone open nothing; with a broker, what it allows.
        std::optional<bool> files, calls, broker, names;
        bool all; // with the system's own confinement of files, and with the broker in its place
    };
    const Case cases[] = {
        {"reads /etc/passwd", &Attempts::readsPasswords, true, false, false, false, {}, false},
        {"reads above the movie", &Attempts::readsAboveTheMovie, true, false, false, false, {}, false},
        {"reads above by way of below", &Attempts::readsOverTheTop, true, false, false, false, {}, false},
        {"reads through a link", &Attempts::readsThroughALink, true, false, false, false, {}, false},
        {"reads through a linked folder",
         &Attempts::readsThroughAFolder,
         true,
         false,
         false,
         false,
         {},
         false},
        {"reads of its parent", &Attempts::readsItsParentsMemory, true, false, false, false, {}, false},
        {"reads beside the movie", &Attempts::readsBesideTheMovie, true, true, false, true, {}, true},
        {"writes beside the movie", &Attempts::writesBesideTheMovie, true, false, false, false, {}, false},
        {"writes through a link", &Attempts::writesOutOfTheStorage, true, false, false, false, {}, false},
        {"makes a folder above", &Attempts::makesAFolder, true, false, false, false, {}, false},
        {"moves what lies beside", &Attempts::movesTheMovie, true, false, false, false, {}, false},
        {"deletes beside the movie", &Attempts::deletesTheMovie, true, false, false, false, {}, false},
        {"writes shared objects", &Attempts::writesToTheStorage, true, true, false, true, {}, true},
        {"connects", &Attempts::connects, true, {}, false, false, false, false},
        {"connects to the desktop", &Attempts::connectsToTheDesktop, true, {}, false, false, {}, false},
        {"runs a program", &Attempts::runsAProgram, true, false, false, false, {}, false},
        {"signals its parent", &Attempts::signalsItsParent, true, {}, false, false, {}, false},
        {"traces another", &Attempts::tracesAnother, true, {}, false, false, {}, false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const auto expectFor = [&](const char* means, Means which, std::optional<bool> through,
                                   Brokered brokered = Brokered::No) {
            if (through) {
                EXPECT_EQ(comesThrough(c.attempt, which, brokered), *through) << means;
            }
        };
        expectFor("files alone", kFiles, c.files);
        expectFor("calls alone", kCalls, c.calls);
        expectFor("calls with a broker", kCalls, c.broker, Brokered::Yes);
        expectFor("name spaces alone", kNames, c.names);
        expectFor("all means", kAll, c.all);
        expectFor("all but files, with a broker", kAllButFiles, c.all, Brokered::Yes);
        if (m_missing) GTEST_SKIP() << "this system lacks one of the means";
        // Last, because what comes through leaves its trace.
        expectFor("no means", kNothing, c.free);
    }
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
