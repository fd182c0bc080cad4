#pragma once

#include "base/ByteReader.h"

#include <vector>

namespace base
{

struct Inflated {
    std::vector<std::uint8_t> bytes;
    bool complete = false;    ///< the stream's own end was reached and its checksum is right
    bool cut = false;         ///< there was more than the limit
    bool damaged = false;     ///< what follows is no part of a stream; neither: the stream ends early
    std::size_t consumed = 0; ///< bytes of the input that the stream took
};

/// Inflates a zlib stream, growing the output as it comes, up to `limit` bytes. A damaged or short stream
/// yields what comes before the damage.
Inflated inflateZlib(Bytes compressed, std::uint64_t limit);

/// As inflateZlib, for LZMA: five bytes of properties, then the stream, which knows its own end or is
/// `plainLength` bytes long.
/// @param plainLength all ones when it is not known
/// @errors Truncated without the properties, LimitReached when there is no memory, Unsupported in a build
///         without the library
Result<Inflated> inflateLzma(Bytes compressed, std::uint64_t limit, std::uint64_t plainLength = ~0ULL);

} // namespace base
