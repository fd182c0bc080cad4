#pragma once

#include "base/ByteReader.h"

#include <vector>

namespace flash::swf
{

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
