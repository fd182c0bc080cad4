#include "flash/swf/Container.h"

#include "base/Inflate.h"

#include <algorithm>

namespace flash::swf
{
namespace
{

constexpr std::size_t kFixedHeaderBytes = 8; // signature, version, length

} // namespace

base::Result<PlainMovie> unpackMovie(base::Bytes file, std::uint64_t limit)
{
    if (file.size() < 3 || file[1] != 'W' || file[2] != 'S' ||
        (file[0] != 'F' && file[0] != 'C' && file[0] != 'Z'))
        return base::fail(base::ErrorCode::Malformed, "no movie: the signature is missing", 0);
    if (file.size() < kFixedHeaderBytes)
        return base::fail(base::ErrorCode::Truncated, "the movie ends within its header", file.size());

    PlainMovie movie;
    if (file[0] == 'F') {
        movie.bytes.assign(file.begin(), file.end());
        return movie;
    }
    // LZMA's stream stands behind its compressed length.
    const base::Inflated body = file[0] == 'C'
                                    ? base::inflateZlib(file.subspan(kFixedHeaderBytes), limit)
                                    : TRY_RESULT(base::inflateLzma(
                                          file.subspan(std::min(file.size(), kFixedHeaderBytes + 4)), limit));
    if (body.cut)
        return base::fail(base::ErrorCode::LimitReached,
                          "the movie inflates to more than " + std::to_string(limit) + " bytes");
    movie.bytes.reserve(kFixedHeaderBytes + body.bytes.size());
    movie.bytes.assign(file.begin(), file.begin() + kFixedHeaderBytes);
    movie.bytes[0] = 'F';
    movie.bytes.insert(movie.bytes.end(), body.bytes.begin(), body.bytes.end());
    movie.compressed = true;
    movie.complete = body.complete;
    return movie;
}

} // namespace flash::swf
