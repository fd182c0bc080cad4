#include "flash/control/SharedMemory.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace flash::control
{

namespace
{

constexpr int kSizeSeals = F_SEAL_SHRINK | F_SEAL_GROW;

tl::unexpected<base::Error> failed(const char* call)
{
    return base::fail(base::ErrorCode::IoFailure,
                      std::string("shared memory: ") + call + ": " + std::strerror(errno));
}

} // namespace

SharedMemory::~SharedMemory()
{
    if (m_data != nullptr) munmap(m_data, m_size);
    if (m_descriptor >= 0) close(m_descriptor);
}

void SharedMemory::swap(SharedMemory& other) noexcept
{
    std::swap(m_descriptor, other.m_descriptor);
    std::swap(m_data, other.m_data);
    std::swap(m_size, other.m_size);
}

base::Result<SharedMemory> SharedMemory::create(std::size_t sizeBytes)
{
    SharedMemory memory;
    memory.m_descriptor = memfd_create("zorvex", MFD_CLOEXEC | MFD_ALLOW_SEALING);
    if (memory.m_descriptor < 0) return failed("memfd_create");
    if (ftruncate(memory.m_descriptor, static_cast<off_t>(sizeBytes)) != 0) return failed("ftruncate");
    if (fcntl(memory.m_descriptor, F_ADD_SEALS, kSizeSeals | F_SEAL_SEAL) != 0) return failed("seal");
    CHECK_RESULT(memory.map(sizeBytes));
    return memory;
}

base::Result<SharedMemory> SharedMemory::attach(int descriptor, std::size_t sizeBytes)
{
    SharedMemory memory;
    memory.m_descriptor = descriptor;
    struct stat found = {};
    if (descriptor < 0 || fstat(descriptor, &found) != 0) return failed("fstat");
    if (found.st_size < 0 || static_cast<std::size_t>(found.st_size) != sizeBytes)
        return base::fail(base::ErrorCode::Malformed, "shared memory: " + std::to_string(found.st_size) +
                                                          " bytes instead of " + std::to_string(sizeBytes));
    if ((fcntl(descriptor, F_GET_SEALS) & kSizeSeals) != kSizeSeals)
        return base::fail(base::ErrorCode::Malformed, "shared memory: its size is not sealed");
    CHECK_RESULT(memory.map(sizeBytes));
    return memory;
}

base::Result<void> SharedMemory::map(std::size_t sizeBytes)
{
    void* mapped = mmap(nullptr, sizeBytes, PROT_READ | PROT_WRITE, MAP_SHARED, m_descriptor, 0);
    if (mapped == MAP_FAILED) return failed("mmap");
    m_data = static_cast<std::uint8_t*>(mapped);
    m_size = sizeBytes;
    return {};
}

} // namespace flash::control
