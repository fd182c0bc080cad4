#pragma once

#include "base/ByteReader.h"

#include <chrono>
#include <filesystem>
#include <string>
#include <vector>

namespace base
{

/// Reads a whole file.
/// @errors NotFound, Denied or IoFailure; LimitReached when it is longer than `limitBytes`.
Result<std::vector<std::uint8_t>> readFile(const std::filesystem::path& path, std::uint64_t limitBytes);

/// A file that is being written under a temporary name beside its own. At every instant the target is either
/// wholly old or wholly new; without commit() it is untouched, and the temporary file goes.
class PendingFile
{
public:
    /// @errors Denied, NotFound or IoFailure; `what` holds the system's own text.
    static Result<PendingFile> create(const std::filesystem::path& target);
    PendingFile(PendingFile&& other) noexcept;
    PendingFile& operator=(PendingFile&&) = delete;
    ~PendingFile();

    /// Open for reading and writing.
    [[nodiscard]] int descriptor() const { return m_descriptor; }
    /// @errors Denied or IoFailure (disk full among them)
    Result<void> write(Bytes bytes);
    /// Flushes the file to the disk and renames it over the target, whose permissions are kept.
    /// @errors Denied or IoFailure
    Result<void> commit();

private:
    PendingFile(std::filesystem::path target, std::string temporary, int descriptor)
        : m_target(std::move(target)), m_temporary(std::move(temporary)), m_descriptor(descriptor)
    {
    }

    std::filesystem::path m_target;
    std::string m_temporary; // empty: nothing is left to remove
    int m_descriptor = -1;
};

/// Writes `parts` one after another as a PendingFile.
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
