#include "flash/control/FileBroker.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <optional>
#include <string>
#include <string_view>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

namespace flash::control
{

namespace
{

namespace fs = std::filesystem;

/// Closed at the end of its life.
class Owned
{
public:
    Owned() = default;
    explicit Owned(int descriptor) : m_descriptor(descriptor) {}
    Owned(Owned&& other) noexcept : m_descriptor(std::exchange(other.m_descriptor, -1)) {}
    Owned& operator=(Owned&& other) noexcept
    {
        std::swap(m_descriptor, other.m_descriptor);
        return *this;
    }
    ~Owned()
    {
        if (m_descriptor >= 0) close(m_descriptor);
    }
    [[nodiscard]] int get() const { return m_descriptor; }
    [[nodiscard]] bool isOpen() const { return m_descriptor >= 0; }

private:
    int m_descriptor = -1;
};

bool isWithin(const fs::path& path, const fs::path& root)
{
    return std::mismatch(root.begin(), root.end(), path.begin(), path.end()).first == root.end();
}

bool writes(std::uint32_t flags)
{
    return (flags & O_ACCMODE) != O_RDONLY || (flags & (O_CREAT | O_TRUNC)) != 0;
}

/// A name in a folder that is held, so that nothing can be changed on the way to it.
struct Place {
    Owned folder;
    std::string name;
};

/// Goes down a path that has been made canonical. A link on the way was put there since, and is an error.
std::optional<Place> placeOf(const fs::path& canonical)
{
    Owned folder(open("/", O_PATH | O_DIRECTORY | O_CLOEXEC));
    std::string name = "/";
    for (const fs::path& part : canonical.relative_path()) {
        if (name != "/")
            folder = Owned(openat(folder.get(), name.c_str(), O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
        if (!folder.isOpen()) return std::nullopt;
        name = part.string();
    }
    return Place{std::move(folder), std::move(name)};
}

} // namespace

// ---- the rules --------------------------------------------------------------------------------------------

class FileBroker::Rules
{
public:
    struct Answer {
        int result = -EACCES;
        Owned attached;
        std::string text;
    };

    Rules(const ReachableFiles& files, pid_t client) : m_own("/proc/" + std::to_string(client))
    {
        for (const fs::path& path : files.read) add(path, m_read);
        for (const fs::path& path : files.write) add(path, m_write);
    }

    [[nodiscard]] Answer answer(const BrokerRequest& request, const fs::path& path,
                                const fs::path& second) const
    {
        using What = BrokerRequest::What;
        if (!path.is_absolute() || path.native().find('\0') != std::string::npos) return {};
        switch (request.what) {
        case What::Open: return opened(path, request.flags, request.mode);
        case What::Look: return look(path, request.flags);
        case What::Access: return access(path, request.mode);
        case What::ReadLink: return readLink(path);
        case What::Unlink:
            return change(path, [&](const Place& at) {
                return unlinkat(at.folder.get(), at.name.c_str(),
                                static_cast<int>(request.flags & AT_REMOVEDIR));
            });
        case What::MakeFolder:
            return change(path, [&](const Place& at) {
                return mkdirat(at.folder.get(), at.name.c_str(), request.mode & 0777U);
            });
        case What::Rename: {
            if (!second.is_absolute() || second.native().find('\0') != std::string::npos) return {};
            return change(path, [&](const Place& from) {
                return change(second,
                              [&](const Place& to) {
                                  return renameat(from.folder.get(), from.name.c_str(), to.folder.get(),
                                                  to.name.c_str());
                              }).result == 0
                           ? 0
                           : -1;
            });
        }
        }
        return {};
    }

private:
    void add(const fs::path& path, std::vector<fs::path>& to)
    {
        std::error_code none;
        // Whoever finds out what a path really means looks at each folder on it.
        constexpr int kMaxLinks = 20;
        fs::path at = fs::absolute(path, none).lexically_normal();
        for (int links = 0; links < kMaxLinks; ++links) {
            fs::path before, next;
            for (auto part = at.begin(); part != at.end(); ++part) {
                before /= *part;
                m_onTheWay.push_back(before);
                if (!fs::is_symlink(before, none)) continue;
                next = before.parent_path() / fs::read_symlink(before, none);
                for (++part; part != at.end(); ++part) next /= *part;
                break;
            }
            if (next.empty()) break;
            at = next.lexically_normal();
        }
        const fs::path real = fs::canonical(path, none);
        if (!none) to.push_back(real);
    }

    [[nodiscard]] bool mayWrite(const fs::path& real) const
    {
        return std::ranges::any_of(m_write, [&](const fs::path& root) { return isWithin(real, root); });
    }
    [[nodiscard]] bool mayRead(const fs::path& real) const
    {
        return mayWrite(real) ||
               std::ranges::any_of(m_read, [&](const fs::path& root) { return isWithin(real, root); });
    }
    /// Nothing is told of what lies elsewhere, not even whether it is there.
    [[nodiscard]] bool mayLookAt(const fs::path& path) const
    {
        const fs::path plain = path.lexically_normal();
        return mayRead(plain) || std::ranges::find(m_onTheWay, plain) != m_onTheWay.end();
    }

    enum class Last : std::uint8_t { Followed, AsItIs };
    /// @returns the path without links, or nothing, with the answer to give in `failure`
    [[nodiscard]] std::optional<fs::path> real(const fs::path& path, Last last, int& failure) const
    {
        std::error_code error;
        fs::path found = last == Last::Followed ? fs::canonical(path, error)
                                                : fs::canonical(path.parent_path(), error) / path.filename();
        // A name that ends in nothing or in dots means a folder on the way.
        const std::string name = path.filename().string();
        if (last == Last::AsItIs && (name.empty() || name == "." || name == ".."))
            found = fs::canonical(path, error);
        failure = error && mayLookAt(path) ? -error.value() : -EACCES;
        if (error) return std::nullopt;
        return found;
    }

    /// The entries of /proc that a process finds itself by.
    [[nodiscard]] std::optional<fs::path> own(const fs::path& path) const
    {
        constexpr std::string_view kSelf = "/proc/self/";
        for (const std::string_view name : {"statm", "stat", "status", "maps"}) {
            if (path.native() == std::string(kSelf).append(name)) return m_own / name;
        }
        return std::nullopt;
    }

    [[nodiscard]] Answer opened(const fs::path& path, std::uint32_t flags, std::uint32_t mode) const
    {
        constexpr std::uint32_t kKnown =
            O_ACCMODE | O_CREAT | O_EXCL | O_TRUNC | O_APPEND | O_DIRECTORY | O_NOFOLLOW | O_PATH;
        Answer answer;
        std::optional<fs::path> found = own(path);
        if (found) {
            if (writes(flags)) return {};
        } else {
            if (path.native().starts_with("/proc/")) return {};
            const bool asItIs = (flags & (O_CREAT | O_NOFOLLOW)) != 0;
            found = real(path, asItIs ? Last::AsItIs : Last::Followed, answer.result);
            if (!found) return answer;
            answer.result = -EACCES;
            if (!(writes(flags) ? mayWrite(*found) : mayRead(*found))) return answer;
        }
        const auto place = placeOf(*found);
        if (!place) return answer;
        // What is no file and no folder could keep us waiting, or is more than it seems.
        const int file =
            openat(place->folder.get(), place->name.c_str(),
                   static_cast<int>((flags & kKnown) | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC),
                   mode & 0777U);
        if (file < 0) {
            answer.result = -errno;
            return answer;
        }
        answer.attached = Owned(file);
        struct stat status = {};
        if (fstat(file, &status) != 0 ||
            (!S_ISREG(status.st_mode) && !S_ISDIR(status.st_mode) && !isNamed(*found)))
            return {};
        if ((flags & O_PATH) == 0) fcntl(file, F_SETFL, fcntl(file, F_GETFL) & ~O_NONBLOCK);
        answer.result = 0;
        return answer;
    }

    /// A device is only for who has leave for this very one.
    [[nodiscard]] bool isNamed(const fs::path& real) const
    {
        return std::ranges::find(m_read, real) != m_read.end();
    }

    [[nodiscard]] Answer look(const fs::path& path, std::uint32_t flags) const
    {
        Answer answer;
        const bool asItIs = (flags & AT_SYMLINK_NOFOLLOW) != 0;
        auto found = own(path);
        if (!found) {
            found = real(path, asItIs ? Last::AsItIs : Last::Followed, answer.result);
            if (!found) return answer;
            if (!mayLookAt(*found)) return {};
        }
        const auto place = placeOf(*found);
        if (!place) return answer;
        Owned file(openat(place->folder.get(), place->name.c_str(), O_PATH | O_NOFOLLOW | O_CLOEXEC));
        answer.result = file.isOpen() ? 0 : -errno;
        answer.attached = std::move(file);
        return answer;
    }

    [[nodiscard]] Answer access(const fs::path& path, std::uint32_t mode) const
    {
        Answer answer;
        auto found = own(path);
        if (!found) {
            found = real(path, Last::Followed, answer.result);
            if (!found) return answer;
            const bool may = (mode & W_OK) != 0   ? mayWrite(*found)
                             : (mode & R_OK) != 0 ? mayRead(*found)
                                                  : mayLookAt(*found);
            if (!may || (mode & X_OK) != 0) return {};
        }
        const auto place = placeOf(*found);
        if (!place) return answer;
        answer.result = faccessat(place->folder.get(), place->name.c_str(),
                                  static_cast<int>(mode & (R_OK | W_OK)), 0) == 0
                            ? 0
                            : -errno;
        return answer;
    }

    [[nodiscard]] Answer readLink(const fs::path& path) const
    {
        Answer answer;
        const auto found = real(path, Last::AsItIs, answer.result);
        if (!found) return answer;
        if (!mayLookAt(*found)) return {};
        const auto place = placeOf(*found);
        if (!place) return answer;
        std::array<char, PATH_MAX> target{};
        const ssize_t length =
            readlinkat(place->folder.get(), place->name.c_str(), target.data(), target.size());
        answer.result = length < 0 ? -errno : static_cast<int>(length);
        if (length > 0) answer.text.assign(target.data(), static_cast<std::size_t>(length));
        return answer;
    }

    template <class Work>
    [[nodiscard]] Answer change(const fs::path& path, Work&& work) const
    {
        Answer answer;
        const auto found = real(path, Last::AsItIs, answer.result);
        if (!found) return answer;
        if (!mayWrite(*found)) {
            // Whoever makes a whole path of folders begins with those that are there.
            struct stat status = {};
            answer.result = mayLookAt(*found) && stat(found->c_str(), &status) == 0 ? -EEXIST : -EACCES;
            return answer;
        }
        const auto place = placeOf(*found);
        if (!place) return answer;
        errno = EACCES;
        answer.result = work(*place) == 0 ? 0 : -errno;
        return answer;
    }

    fs::path m_own;
    std::vector<fs::path> m_read, m_write; // without links
    std::vector<fs::path> m_onTheWay;      // to them
};

// ---- the connection ---------------------------------------------------------------------------------------

std::pair<int, int> FileBroker::pair()
{
    std::array<int, 2> ends{-1, -1};
    if (socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends.data()) != 0) return {-1, -1};
    return {ends[0], ends[1]};
}

FileBroker::FileBroker(int socket) : m_socket(socket) {}

FileBroker::~FileBroker()
{
    shutdown(m_socket, SHUT_RDWR);
    if (m_thread.joinable()) m_thread.join();
    close(m_socket);
}

void FileBroker::serve(const ReachableFiles& files, pid_t client)
{
    if (m_rules) return;
    m_rules = std::make_unique<Rules>(files, client);
    m_thread = std::thread([this] {
        answerAll();
        shutdown(m_socket, SHUT_RDWR); // nobody waits for an answer any more
    });
}

void FileBroker::answerAll()
{
    std::vector<char> packet(kMaxRequestBytes);
    for (;;) {
        const ssize_t got = recv(m_socket, packet.data(), packet.size(), MSG_TRUNC);
        if (got < 0 && errno == EINTR) continue;
        if (got <= 0) return;
        const auto bytes = static_cast<std::size_t>(got);
        BrokerRequest request;
        // Who asks like this is none of ours any more.
        if (bytes < sizeof request || bytes > packet.size()) return;
        std::memcpy(&request, packet.data(), sizeof request);
        if (request.pathBytes > PATH_MAX || request.secondBytes > PATH_MAX ||
            bytes != sizeof request + request.pathBytes + request.secondBytes)
            return;
        const char* text = packet.data() + sizeof request;
        const auto answer = m_rules->answer(request, std::string(text, request.pathBytes),
                                            std::string(text + request.pathBytes, request.secondBytes));

        BrokerAnswer head{answer.result};
        std::array<iovec, 2> parts{
            {{&head, sizeof head}, {const_cast<char*>(answer.text.data()), answer.text.size()}}};
        msghdr message{};
        message.msg_iov = parts.data();
        message.msg_iovlen = answer.text.empty() ? 1 : 2;
        alignas(cmsghdr) std::array<char, CMSG_SPACE(sizeof(int))> control{};
        if (answer.result == 0 && answer.attached.isOpen()) {
            message.msg_control = control.data();
            message.msg_controllen = control.size();
            cmsghdr* rights = CMSG_FIRSTHDR(&message);
            rights->cmsg_level = SOL_SOCKET;
            rights->cmsg_type = SCM_RIGHTS;
            rights->cmsg_len = CMSG_LEN(sizeof(int));
            const int descriptor = answer.attached.get();
            std::memcpy(CMSG_DATA(rights), &descriptor, sizeof descriptor);
        }
        if (sendmsg(m_socket, &message, MSG_NOSIGNAL) < 0 && errno != EINTR) return;
    }
}

} // namespace flash::control
