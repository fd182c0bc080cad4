#include "platform/ProcessMemory.h"

#include <fstream>

#if defined(__linux__)
#include <malloc.h>
#include <unistd.h>
#endif

namespace platform
{

std::int64_t residentBytes()
{
#if defined(__linux__)
    std::int64_t allPages = 0, residentPages = 0;
    std::ifstream("/proc/self/statm") >> allPages >> residentPages;
    return residentPages * sysconf(_SC_PAGESIZE);
#else
    return 0;
#endif
}

void returnFreeMemory()
{
#if defined(__GLIBC__)
    malloc_trim(0);
#endif
}

} // namespace platform
