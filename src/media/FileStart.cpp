#include "media/FileStart.h"

#include <algorithm>
#include <cerrno>
#include <system_error>

namespace media
{

base::Result<FileStart> FileStart::open(const std::filesystem::path& path)
{
    // Anything but a regular file could keep its reader waiting for ever.
    std::error_code error;
    const auto status = std::filesystem::status(path, error);
    if (!std::filesystem::exists(status))
        return base::fail(base::ErrorCode::NotFound, path.string() + ": not found");
    if (!std::filesystem::is_regular_file(status))
        return base::fail(base::ErrorCode::Denied, path.string() + ": not a regular file");
    FileStart file;
    file.m_file.pubsetbuf(nullptr, 0); // the blocks are the only buffer
    errno = 0;
    if (file.m_file.open(path, std::ios::in | std::ios::binary) == nullptr)
        return base::fail(base::ErrorCode::Denied,
                          path.string() + ": " + std::generic_category().message(errno));
    return file;
}

base::Result<void> FileStart::skip(std::size_t count)
{
    if (m_file.pubseekoff(static_cast<std::streamoff>(count), std::ios::cur, std::ios::in) < 0)
        return base::fail(base::ErrorCode::IoFailure, "cannot seek");
    return {};
}

base::Result<base::Bytes> FileStart::nextChunk() { return bytes(kBlockBytes); }

base::Result<base::Bytes> FileStart::bytes(std::size_t count)
{
    const auto wanted = static_cast<std::streamsize>(std::min(count, kBlockBytes));
    const std::streamsize found = m_file.sgetn(m_block.data(), wanted);
    if (found < 0) return base::fail(base::ErrorCode::IoFailure, "cannot read");
    return base::Bytes(reinterpret_cast<const std::uint8_t*>(m_block.data()),
                       static_cast<std::size_t>(found));
}

} // namespace media
