#include "base/Files.h"

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
    Descriptor file(::mkostemp(temporary.data(), O_CLOEXEC));
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

} // namespace base
