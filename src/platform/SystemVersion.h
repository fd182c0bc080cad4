#pragma once

#include <string>

// What differs between operating systems stays behind the small headers of this folder. Nothing here knows of
// the player, a skin or a movie.

namespace platform
{

/// The running system as the event log names it.
struct SystemVersion {
    std::string name;    ///< "Windows" or what the kernel calls itself, "Linux"
    std::string version; ///< major "." minor, empty when the system does not tell
    std::string build;   ///< what stands behind major and minor, empty when the system does not tell
};

/// A kernel release such as "6.1.0-18-amd64" is split into version "6.1" and build "0-18-amd64".
SystemVersion parseKernelRelease(std::string name, const std::string& release);

SystemVersion systemVersion();

/// Name and numeric code of a Windows system. Every system with major number 5 is a "Windows 2000" on
/// purpose.
struct WindowsName {
    const char* name;
    int code;
};
WindowsName windowsName(int platformId, int major, int minor);

} // namespace platform
