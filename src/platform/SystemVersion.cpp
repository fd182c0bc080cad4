#include "platform/SystemVersion.h"

#include <sys/utsname.h>

namespace platform
{

SystemVersion parseKernelRelease(std::string name, const std::string& release)
{
    SystemVersion found{std::move(name), release, {}};
    const std::size_t firstDot = release.find('.');
    if (firstDot == std::string::npos) return found;
    const std::size_t end = release.find_first_not_of("0123456789", firstDot + 1);
    if (end == std::string::npos) return found;
    found.version = release.substr(0, end);
    found.build = release.substr(release[end] == '.' ? end + 1 : end);
    return found;
}

SystemVersion systemVersion()
{
    utsname kernel{};
    if (::uname(&kernel) != 0) return {"Linux", {}, {}};
    return parseKernelRelease(kernel.sysname, kernel.release);
}

WindowsName windowsName(int platformId, int major, int minor)
{
    if (platformId == 0) return {"Win 32", 32};
    if (platformId == 1 && minor == 0) return {"Windows 95", 95};
    if (platformId == 1 && minor == 10) return {"Windows 98", 98};
    if (platformId == 2 && major == 3) return {"Windows NT 3.51", 351};
    if (platformId == 2 && major == 4) return {"Windows NT 4.0", 40};
    if (platformId == 2 && major == 5) return {"Windows 2000", 2000};
    return {"Unknown", 0};
}

} // namespace platform
