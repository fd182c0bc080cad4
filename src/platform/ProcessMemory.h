#pragma once

#include <cstdint>

namespace platform
{

/// @returns bytes of memory that this process holds now; 0 when the system does not tell
std::int64_t residentBytes();
/// As above, of another process.
std::int64_t residentBytes(std::int64_t processId);

/// Hands memory that is free but kept for later back to the system.
void returnFreeMemory();

} // namespace platform
