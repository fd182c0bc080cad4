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

namespace base
{
namespace
{

constexpr std::string_view kTemporaryEnd = ".tmp";

/// Whether replaceFile() gives its temporary files such names.
bool isTemporaryName(std::string_view name)
{
    constexpr std::size_t kRandom = 6;
    if (!name.ends_with(kTemporaryEnd)) return false;
    name.remove_suffix(kTemporaryEnd.size());
    if (name.size() < kRandom + 2 || name[name.size() - kRandom - 1] != '.') return false;
    const auto random = name.substr(name.size() - kRandom);
    return std::all_of(random.begin(), random.end(), [](unsigned char c) { return std::isalnum(c) != 0; });
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
    [[nodiscard]] int release() { return std::exchange(m_number, -1); }

private:
    int m_number;
};

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

Result<void> replaceFile(const std::filesystem::path& target, std::span<const Bytes> parts)
{
    std::string temporary = target.string() + ".XXXXXX";
    temporary += kTemporaryEnd;
    Descriptor file(::mkostemps(temporary.data(), static_cast<int>(kTemporaryEnd.size()), O_CLOEXEC));
    if (file.number() < 0) return systemError(target);

    const auto giveUp = [&]() -> tl::unexpected<Error> {
        auto error = systemError(target);
        ::unlink(temporary.c_str());
        return error;
    };
    struct stat status {
    };
    mode_t mode = 0;
    if (::stat(target.c_str(), &status) == 0) {
        mode = status.st_mode & 07777;
    } else {
        // There is no way to read the mask but to set it; 022 is what nearly every desktop has.
        mode = 0644;
    }
    for (const Bytes part : parts)
        if (!writeAll(file.number(), part)) return giveUp();
    if (::fchmod(file.number(), mode) != 0) return giveUp();
    if (::fsync(file.number()) != 0) return giveUp();
    if (::close(file.release()) != 0) return giveUp();
    if (::rename(temporary.c_str(), target.c_str()) != 0) return giveUp();
    return {};
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
    int swept = 0;
    std::error_code error;
    const auto now = std::filesystem::file_time_type::clock::now();
    for (std::filesystem::directory_iterator entry(folder, error), end; !error && entry != end;
         entry.increment(error)) {
        std::error_code gone;
        if (!isTemporaryName(entry->path().filename().native()) || !entry->is_regular_file(gone)) continue;
        const auto age = now - entry->last_write_time(gone);
        // A clock that was put back makes files of the future.
        const bool isOld = age > leastAge || age < -leastAge;
        if (!gone && isOld && std::filesystem::remove(entry->path(), gone)) ++swept;
    }
    return swept;
}

} // namespace base
