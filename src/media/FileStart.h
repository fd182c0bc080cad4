#pragma once

#include "base/ByteReader.h"

#include <array>
#include <filesystem>
#include <fstream>

namespace media
{

/// Reads a file from its start, a small block at a time, for those who need its first bytes only.
class FileStart
{
public:
    static base::Result<FileStart> open(const std::filesystem::path& path);

    base::Result<void> skip(std::size_t count);
    /// @returns the next block, empty at the end of the file; it lives until the next call
    base::Result<base::Bytes> nextChunk();
    /// @returns up to `count` bytes (at most one block) from where the file stands
    base::Result<base::Bytes> bytes(std::size_t count);

private:
    static constexpr std::size_t kBlockBytes = 512;
    std::filebuf m_file;
    std::array<char, kBlockBytes> m_block{};
};

} // namespace media
