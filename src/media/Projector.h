#pragma once

#include "base/ByteReader.h"
#include "media/MovieHeader.h"

namespace media
{

/// Executables below this length hold no movie.
inline constexpr std::size_t kShortestProjectorBytes = 1024;
/// A header and an end tag need more than 8 bytes.
inline constexpr std::size_t kShortestMovieBytes = 9;

/// Where a movie lies in an executable.
struct EmbeddedMovie {
    std::size_t offset; ///< bytes from the start of the executable
    std::size_t length; ///< as the movie's header states it; may pass the end of the file by one byte
};

/// Looks for a plain movie from the end of an executable towards its start: the signature "FWS", a version
/// below 8, a stated length that fits, and two zero bytes (the end tag) where it ends. The one nearest the
/// end wins. A movie that lacks only its very last byte is accepted on purpose; the missing byte counts as
/// zero.
/// @errors NotFound when there is none, Malformed when the one found states fewer than 9 bytes
base::Result<EmbeddedMovie> findEmbeddedMovie(base::Bytes executable);

/// The search for what findEmbeddedMovie() passes over: movies of any version, compressed ones, projectors of
/// other systems. The movie that the projector's footer points at; else the one nearest the end that is a
/// movie from its signature to its end tag, inflated where it is compressed.
/// @errors NotFound
base::Result<EmbeddedMovie> findAnyMovie(base::Bytes executable);

/// Whether a file that begins like this is a program: of Windows, Linux or the Mac.
[[nodiscard]] bool isExecutable(const FileHeader& header);

} // namespace media
