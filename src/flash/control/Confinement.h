#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

// What a process that plays a movie gives up, so that a movie that takes the engine over finds nothing to
// reach.
namespace flash::control
{

/// One of the system's means, and whether it holds here.
struct Restraint {
    std::string name;
    bool holds = false;
    std::string reason; ///< why it does not, in the system's words
};

/// Which means to use: all, but for tests of each one alone.
struct Means {
    bool limits = true, nameSpaces = true;
    bool files = true; ///< the system's own (Landlock)
    bool calls =
        true; ///< with it, and without the one before, files are opened by a FileBroker or not at all
};
#ifdef __SANITIZE_ADDRESS__
// A sanitizer reserves terabytes of addresses and looks into its own threads at the end.
inline constexpr Means kUsualMeans{.limits = false, .nameSpaces = true, .files = true, .calls = false};
#else
inline constexpr Means kUsualMeans{};
#endif
/// Those, and as a system without one would have them: ZORVEX_WITHOUT_LANDLOCK=1, for tests.
Means usualMeans();
/// Whether the system itself can confine a process to some files.
bool confinesFiles(Means means);

/// First half, at the very start of the process, while it has one thread: no new privileges, no core dumps,
/// ends with its parent, limits, and user and network name spaces of its own.
/// @param memoryBytes what the process may have for itself
std::vector<Restraint> confineEarly(std::uint64_t memoryBytes, Means means = usualMeans());

/// What may be touched on the disk; everything else is refused by the kernel from then on.
struct ReachableFiles {
    std::vector<std::filesystem::path> read;  ///< files, or folders and what lies below
    std::vector<std::filesystem::path> write; ///< folders: files and folders below are made, changed, removed
};

/// Second half, once the movie is known and before its first byte is looked at: files and system calls.
/// Cannot be taken back. What does not exist is left out.
/// @param broker a socket with a FileBroker at its other end, for where the system confines no files; -1:
///               none, and then none are opened there
std::vector<Restraint> confine(const ReachableFiles& files, int broker = -1, Means means = usualMeans());

/// The fonts and libraries that the engine opens while it plays.
std::vector<std::filesystem::path> systemFiles();

} // namespace flash::control
