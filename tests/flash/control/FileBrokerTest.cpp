#include "flash/control/FileBroker.h"

#include <QTemporaryDir>

#include <cstring>
#include <fcntl.h>
#include <fstream>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

namespace flash::control
{

namespace
{

/// Asks a broker as a process would that has been taken over: any bytes at all.
class Broker : public testing::Test
{
protected:
    Broker() : m_base(m_folder.path().toStdString())
    {
        std::filesystem::create_directories(m_base / "movie");
        std::filesystem::create_directories(m_base / "kept");
        std::ofstream(m_base / "movie/data.txt") << "data";
        std::ofstream(m_base / "secret.txt") << "secret";
        connect();
    }
    ~Broker() override { close(m_socket); }

    void connect()
    {
        m_broker.reset();
        if (m_socket >= 0) close(m_socket);
        const auto [near, far] = FileBroker::pair();
        m_socket = far;
        m_broker = std::make_unique<FileBroker>(near);
        m_broker->serve({{m_base / "movie", "/dev/null"}, {m_base / "kept"}}, getpid());
    }

    static std::vector<char> packet(BrokerRequest request, const std::string& path,
                                    const std::string& second = {})
    {
        request.pathBytes = static_cast<std::uint16_t>(path.size());
        request.secondBytes = static_cast<std::uint16_t>(second.size());
        std::vector<char> bytes(sizeof request);
        std::memcpy(bytes.data(), &request, sizeof request);
        bytes.insert(bytes.end(), path.begin(), path.end());
        bytes.insert(bytes.end(), second.begin(), second.end());
        return bytes;
    }
    /// @returns the result; nothing when the broker has hung up
    std::optional<int> ask(const std::vector<char>& bytes)
    {
        if (send(m_socket, bytes.data(), bytes.size(), MSG_NOSIGNAL) < 0) return std::nullopt;
        BrokerAnswer answer;
        iovec part{&answer, sizeof answer};
        alignas(cmsghdr) std::array<char, CMSG_SPACE(sizeof(int))> control{};
        msghdr message{};
        message.msg_iov = &part;
        message.msg_iovlen = 1;
        message.msg_control = control.data();
        message.msg_controllen = control.size();
        if (recvmsg(m_socket, &message, MSG_CMSG_CLOEXEC) <= 0) return std::nullopt;
        if (const cmsghdr* rights = CMSG_FIRSTHDR(&message); rights != nullptr) {
            int descriptor = -1;
            std::memcpy(&descriptor, CMSG_DATA(rights), sizeof descriptor);
            close(descriptor);
        }
        return answer.result;
    }

    using What = BrokerRequest::What;
    QTemporaryDir m_folder;
    std::filesystem::path m_base;
    int m_socket = -1;
    std::unique_ptr<FileBroker> m_broker;
};

} // namespace

TEST_F(Broker, HangsUpOnWhatIsNoRequest)
{
    const auto good = packet({What::Open, O_RDONLY, 0, 0, 0}, m_base / "movie/data.txt");
    EXPECT_EQ(ask(good), 0);
    std::vector<std::vector<char>> bad;
    for (std::size_t length = 1; length < good.size(); length += 3)
        bad.emplace_back(good.begin(), good.begin() + static_cast<std::ptrdiff_t>(length));
    bad.push_back(good);
    bad.back().push_back('x');
    bad.emplace_back(kMaxRequestBytes + 1000, '/');
    bad.emplace_back(sizeof(BrokerRequest), '\xFF');
    for (const auto& bytes : bad) {
        SCOPED_TRACE(bytes.size());
        connect();
        EXPECT_EQ(ask(bytes), std::nullopt);
    }
}

TEST_F(Broker, RefusesWhatNoOrdinaryProgramAsksFor)
{
    using namespace std::string_literals;
    const std::string data = m_base / "movie/data.txt", kept = m_base / "kept/a.sol";
    struct Case {
        const char* name;
        BrokerRequest request;
        std::string path, second;
    };
    const Case cases[] = {
        {"no such kind", {static_cast<What>(77)}, data, {}},
        {"an empty name", {What::Open}, {}, {}},
        {"a relative name", {What::Open}, "movie/data.txt", {}},
        {"a name with an end in it", {What::Open}, data + "\0/../../secret.txt"s, {}},
        {"writing where only reading is", {What::Open, O_RDWR}, data, {}},
        {"emptying where only reading is", {What::Open, O_TRUNC}, data, {}},
        {"making where only reading is", {What::Open, O_CREAT, 0600}, m_base / "movie/new.txt", {}},
        {"its own folder by number", {What::Open}, "/proc/self/cwd/secret.txt", {}},
        {"another's memory", {What::Open}, "/proc/1/maps", {}},
        {"writing to the broker's process", {What::Open, O_RDWR}, "/proc/self/status", {}},
        {"moving a secret in", {What::Rename}, m_base / "secret.txt", kept},
        {"moving something out", {What::Rename}, kept, m_base / "movie/out.swf"},
        {"moving to nowhere", {What::Rename}, kept, {}},
        {"a device of the other kind", {What::Open}, "/dev/zero", {}},
        {"whether a secret is there", {What::Look}, m_base / "secret.txt", {}},
        {"whether a secret is not there", {What::Look}, m_base / "other.txt", {}},
        {"where a link leads to", {What::ReadLink}, "/proc/self/exe", {}},
    };
    std::ofstream(m_base / "kept/a.sol") << "kept";
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const auto result = ask(packet(c.request, c.path, c.second));
        ASSERT_TRUE(result.has_value()) << "an answer, and the next one is listened to";
        EXPECT_LT(*result, 0);
    }
    EXPECT_EQ(ask(packet({What::Look}, m_base / "secret.txt")),
              ask(packet({What::Look}, m_base / "other.txt")))
        << "nobody learns what is there";
    EXPECT_EQ(ask(packet({What::Open}, "/dev/null")), 0) << "the very device that was named";
    EXPECT_EQ(ask(packet({What::Rename}, kept, m_base / "kept/b.sol")), 0);
    EXPECT_TRUE(std::filesystem::exists(m_base / "secret.txt"));
}

TEST_F(Broker, IsNotLedAwayByALinkThatIsPutThereMeanwhile)
{
    // Somebody else exchanges a folder for a link as often as he can; what is opened is never the secret.
    std::filesystem::create_directories(m_base / "movie/way");
    std::ofstream(m_base / "movie/way/secret.txt") << "ok";
    std::atomic<bool> ends = false;
    std::thread exchanger([&] {
        std::filesystem::create_symlink(m_base, m_base / "movie/link");
        while (!ends) {
            std::filesystem::rename(m_base / "movie/way", m_base / "movie/aside");
            std::filesystem::rename(m_base / "movie/link", m_base / "movie/way");
            std::filesystem::rename(m_base / "movie/way", m_base / "movie/link");
            std::filesystem::rename(m_base / "movie/aside", m_base / "movie/way");
        }
    });
    const auto request = packet({What::Open}, m_base / "movie/way/secret.txt");
    int opened = 0;
    for (int i = 0; i < 3000; ++i) {
        ASSERT_GT(send(m_socket, request.data(), request.size(), MSG_NOSIGNAL), 0);
        BrokerAnswer answer;
        iovec part{&answer, sizeof answer};
        alignas(cmsghdr) std::array<char, CMSG_SPACE(sizeof(int))> control{};
        msghdr message{};
        message.msg_iov = &part;
        message.msg_iovlen = 1;
        message.msg_control = control.data();
        message.msg_controllen = control.size();
        ASSERT_GT(recvmsg(m_socket, &message, 0), 0);
        const cmsghdr* rights = CMSG_FIRSTHDR(&message);
        if (rights == nullptr) continue;
        int descriptor = -1;
        std::memcpy(&descriptor, CMSG_DATA(rights), sizeof descriptor);
        std::array<char, 8> text{};
        EXPECT_EQ(read(descriptor, text.data(), text.size()), 2) << "longer: the secret";
        close(descriptor);
        ++opened;
    }
    ends = true;
    exchanger.join();
    EXPECT_GT(opened, 0);
}

} // namespace flash::control
