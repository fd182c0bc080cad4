#pragma once

#include "base/ByteReader.h"

#include <vector>

namespace flash::swf
{

struct Inflated {
    std::vector<std::uint8_t> bytes;
    bool complete = false; ///< the stream's own end was reached and its checksum is right
    bool cut = false;      ///< there was more than the limit
};

/// Inflates a zlib stream, growing the output as it comes, up to `limit` bytes. A damaged or short stream
/// yields what comes before the damage.
Inflated inflateStream(base::Bytes compressed, std::uint64_t limit);

/// A movie file with its compression removed: signature FWS, then the plain movie.
struct PlainMovie {
    std::vector<std::uint8_t> bytes;
    bool compressed = false;
    bool complete = true; ///< false: the compressed stream is damaged or short
};

/// @errors Malformed for what is no movie; Truncated when not even the 8 fixed bytes are there; LimitReached;
///         Unsupported for LZMA without the library.
base::Result<PlainMovie> unpackMovie(base::Bytes file, std::uint64_t limit);

} // namespace flash::swf
