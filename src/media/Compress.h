#pragma once

#include "base/ByteReader.h"

#include <filesystem>
#include <functional>
#include <vector>

namespace media
{

/// Bytes to a zlib stream.
/// @param level    zlib's, 0 to 9
/// @param progress is told now and then how much is done, 0 to 1; its answer "false" ends the work
/// @errors LimitReached when it was ended
base::Result<std::vector<std::uint8_t>> CompressData(base::Bytes source, int level,
                                                     const std::function<bool(double)>& progress = {});

/// A zlib stream to bytes. Memory grows with what the stream really yields, whatever length a header states.
/// @param expectedLength the most bytes that are accepted
/// @errors Malformed when the stream is damaged, Truncated when it ends early, LimitReached when it holds
/// more
base::Result<std::vector<std::uint8_t>> DecompressData(base::Bytes source, std::uint64_t expectedLength);

/// The plain body of a compressed movie, of either compression.
/// @param file   a whole movie file that begins with "CWS" or "ZWS"
/// @param limit  the most bytes that are accepted
/// @errors as for DecompressData
base::Result<std::vector<std::uint8_t>> decompressMovie(base::Bytes file, std::uint64_t limit);

/// Opens a compressed movie and inflates the first bytes of its body, touching no more of the file than they
/// take.
/// @returns up to `count` bytes, fewer when the body is shorter
/// @errors  as for DecompressData, and those of reading the file
base::Result<std::vector<std::uint8_t>> decompressStart(const std::filesystem::path& movie,
                                                        std::size_t count);

} // namespace media
