#include "base/Files.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace base
{
namespace
{

// A temporary file is named after its target: TARGET.~aB3xYz.tmp. Nobody else names files so: where the user
// keeps his own, nothing but such a name tells what may be swept.
constexpr std::string_view kTemporaryMark = ".~", kTemporaryEnd = ".tmp";
constexpr std::size_t kRandom = 6;

/// @returns the name of the target; empty when replaceFile() gives its temporary files no such names.
std::string_view targetOfTemporary(std::string_view name)
{
    constexpr std::size_t kAdded = kTemporaryMark.size() + kRandom + kTemporaryEnd.size();
    if (name.size() <= kAdded || !name.ends_with(kTemporaryEnd)) return {};
    const auto random = name.substr(name.size() - kTemporaryEnd.size() - kRandom, kRandom);
    const auto isRandom = [](unsigned char c) { return std::isalnum(c) != 0; };
    if (!std::all_of(random.begin(), random.end(), isRandom)) return {};
    const auto target = name.substr(0, name.size() - kAdded);
    return name.substr(target.size(), kTemporaryMark.size()) == kTemporaryMark ? target : std::string_view();
}

/// Closes a file descriptor on every way out.
class Descriptor
{
public:
    explicit Descriptor(int number) : m_number(number) {}
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor()
    {
        if (m_number >= 0) ::close(m_number);
    }
    [[nodiscard]] int number() const { return m_number; }

private:
    int m_number;
};

// Told by a lock, where the system has those that belong to an open file, that somebody is at work on a file.
bool lock([[maybe_unused]] int descriptor, [[maybe_unused]] short kind)
{
#ifdef F_OFD_SETLK
    struct flock whole {
    };
    whole.l_type = kind;
    whole.l_whence = SEEK_SET;
    return ::fcntl(descriptor, F_OFD_SETLK, &whole) == 0 || (errno != EAGAIN && errno != EACCES);
#else
    return true;
#endif
}

/// Whether a temporary file was left by a process of this user that is no more.
bool isLeftOver(const std::filesystem::path& path, std::chrono::seconds leastAge)
{
    const Descriptor file(::open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    struct stat status {
    };
    if (file.number() < 0 || ::fstat(file.number(), &status) != 0 || !S_ISREG(status.st_mode)) return false;
    if (status.st_uid != ::geteuid() || status.st_nlink != 1) return false;
    const auto written =
        std::chrono::seconds(status.st_mtim.tv_sec) + std::chrono::nanoseconds(status.st_mtim.tv_nsec);
    const auto age = std::chrono::system_clock::now().time_since_epoch() - written;
    // A clock that was put back makes files of the future.
    return (age > leastAge || age < -leastAge) && lock(file.number(), F_RDLCK);
}

template <class IsOurs>
int sweep(const std::filesystem::path& folder, std::chrono::seconds leastAge, IsOurs&& isOurs)
{
    int swept = 0;
    std::error_code error;
    for (std::filesystem::directory_iterator entry(folder, error), end; !error && entry != end;
         entry.increment(error)) {
        const std::string name = entry->path().filename();
        const auto target = targetOfTemporary(name);
        if (target.empty() || !isOurs(target) || !isLeftOver(entry->path(), leastAge)) continue;
        std::error_code gone;
        if (std::filesystem::remove(entry->path(), gone)) ++swept;
    }
    return swept;
}

tl::unexpected<Error> systemError(const std::filesystem::path& path)
{
    const int number = errno;
    const ErrorCode code = number == ENOENT                      ? ErrorCode::NotFound
                           : number == EACCES || number == EPERM ? ErrorCode::Denied
                           : number == EROFS                     ? ErrorCode::Denied
                                                                 : ErrorCode::IoFailure;
    return fail(code, path.string() + ": " + std::generic_category().message(number));
}

bool writeAll(int descriptor, Bytes bytes)
{
    while (!bytes.empty()) {
        const ssize_t written = ::write(descriptor, bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR) continue;
        if (written < 0) return false;
        bytes = bytes.subspan(static_cast<std::size_t>(written));
    }
    return true;
}

} // namespace

Result<std::vector<std::uint8_t>> readFile(const std::filesystem::path& path, std::uint64_t limitBytes)
{
    const Descriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
    if (file.number() < 0) return systemError(path);
    struct stat status {
    };
    if (::fstat(file.number(), &status) != 0) return systemError(path);
    if (!S_ISREG(status.st_mode)) return fail(ErrorCode::Denied, path.string() + ": not a regular file");
    const auto size = static_cast<std::uint64_t>(status.st_size);
    if (size > limitBytes) return fail(ErrorCode::LimitReached, path.string() + ": too long");
    std::vector<std::uint8_t> content(size);
    std::size_t filled = 0;
    while (filled < content.size()) {
        const ssize_t count = ::read(file.number(), content.data() + filled, content.size() - filled);
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return systemError(path);
        if (count == 0) break; // the file shrank since it was measured
        filled += static_cast<std::size_t>(count);
    }
    content.resize(filled);
    return content;
}

Result<PendingFile> PendingFile::create(const std::filesystem::path& target)
{
    std::string temporary = target.string();
    temporary.append(kTemporaryMark).append(kRandom, 'X').append(kTemporaryEnd);
    const int file = ::mkostemps(temporary.data(), static_cast<int>(kTemporaryEnd.size()), O_CLOEXEC);
    if (file < 0) return systemError(target);
    (void)lock(file, F_WRLCK); // until it is closed: nobody sweeps it
    return PendingFile(target, std::move(temporary), file);
}

PendingFile::PendingFile(PendingFile&& other) noexcept
    : m_target(std::move(other.m_target)), m_temporary(std::exchange(other.m_temporary, {})),
      m_descriptor(std::exchange(other.m_descriptor, -1))
{
}

PendingFile::~PendingFile()
{
    if (m_descriptor >= 0) ::close(m_descriptor);
    if (!m_temporary.empty()) ::unlink(m_temporary.c_str());
}

Result<void> PendingFile::write(Bytes bytes)
{
    if (!writeAll(m_descriptor, bytes)) return systemError(m_target);
    return {};
}

Result<void> PendingFile::commit()
{
    struct stat status {
    };
    // There is no way to read the mask of new files but to set it; 022 is what nearly every desktop has.
    const mode_t mode = ::stat(m_target.c_str(), &status) == 0 ? status.st_mode & 07777 : 0644;
    if (::fchmod(m_descriptor, mode) != 0 || ::fsync(m_descriptor) != 0) return systemError(m_target);
    if (::close(std::exchange(m_descriptor, -1)) != 0) return systemError(m_target);
    if (::rename(m_temporary.c_str(), m_target.c_str()) != 0) return systemError(m_target);
    m_temporary.clear();
    return {};
}

Result<void> replaceFile(const std::filesystem::path& target, std::span<const Bytes> parts)
{
    PendingFile file = TRY_RESULT(PendingFile::create(target));
    for (const Bytes part : parts) CHECK_RESULT(file.write(part));
    return file.commit();
}

bool isDiskFull(const Error& error)
{
    if (error.code != ErrorCode::IoFailure) return false;
    const auto& category = std::generic_category();
    return std::ranges::any_of(std::array{ENOSPC, EDQUOT, EFBIG}, [&](int number) {
        return error.what.ends_with(": " + category.message(number));
    });
}

int sweepTemporaryFiles(const std::filesystem::path& folder, std::chrono::seconds leastAge)
{
    return sweep(folder, leastAge, [](std::string_view) { return true; });
}

int sweepTemporaryFilesOf(const std::filesystem::path& target, std::chrono::seconds leastAge)
{
    const std::string name = target.filename();
    const auto folder = target.has_parent_path() ? target.parent_path() : std::filesystem::path(".");
    return sweep(folder, leastAge, [&](std::string_view found) { return found == name; });
}

} // namespace base
