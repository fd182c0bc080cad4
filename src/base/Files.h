#pragma once

#include "base/ByteReader.h"

#include <chrono>
#include <filesystem>
#include <vector>

namespace base
{

/// Reads a whole file.
/// @errors NotFound, Denied or IoFailure; LimitReached when it is longer than `limitBytes`.
Result<std::vector<std::uint8_t>> readFile(const std::filesystem::path& path, std::uint64_t limitBytes);

/// Writes `parts` one after another to a temporary file beside `target`, flushes it to the disk and renames
/// it over `target`. At every instant `target` is either wholly old or wholly new; on failure it is untouched
/// and the temporary file is gone. The permissions of an existing target are kept.
/// @errors Denied or IoFailure (disk full among them); `what` holds the system's own text.
Result<void> replaceFile(const std::filesystem::path& target, std::span<const Bytes> parts);

inline Result<void> replaceFile(const std::filesystem::path& target, Bytes content)
{
    return replaceFile(target, std::span(&content, 1));
}

/// Whether an error of these functions came of a disk, or a user's share of it, that is full.
bool isDiskFull(const Error& error);

/// Younger temporary files may be another process's, and at work.
constexpr std::chrono::seconds kLeftOverAge{60};

/// Removes the temporary files that a replaceFile() of this user left in a folder when its process was
/// killed. Whatever else lies there stays: their names are nobody else's.
/// @returns how many
int sweepTemporaryFiles(const std::filesystem::path& folder, std::chrono::seconds leastAge = kLeftOverAge);
/// The same, of those that were to become one file.
int sweepTemporaryFilesOf(const std::filesystem::path& target, std::chrono::seconds leastAge = kLeftOverAge);

} // namespace base
