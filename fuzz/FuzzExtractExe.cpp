#include "media/Projector.h"

#include <cstdlib>

// The search for a movie in an executable: what it finds must lie within the file, but for the one byte that
// may be missing at its end.

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const auto movie = media::findEmbeddedMovie(base::Bytes(data, size));
    if (movie && (movie->length < media::kShortestMovieBytes || movie->offset + movie->length > size + 1))
        std::abort();
    return 0;
}
