#include "platform/ProcessMemory.h"

#include <fstream>
#include <string>

#if defined(__linux__)
#include <malloc.h>
#include <unistd.h>
#endif

namespace platform
{

namespace
{

std::int64_t residentBytesOf([[maybe_unused]] const std::string& process)
{
    std::int64_t residentPages = 0;
#if defined(__linux__)
    std::int64_t allPages = 0;
    std::ifstream("/proc/" + process + "/statm") >> allPages >> residentPages;
    residentPages *= sysconf(_SC_PAGESIZE);
#endif
    return residentPages;
}

} // namespace

std::int64_t residentBytes() { return residentBytesOf("self"); }
std::int64_t residentBytes(std::int64_t processId) { return residentBytesOf(std::to_string(processId)); }

void returnFreeMemory()
{
#if defined(__GLIBC__)
    malloc_trim(0);
#endif
}

} // namespace platform
