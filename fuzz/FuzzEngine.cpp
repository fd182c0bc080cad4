#include "PlayMovie.h"
#include "TagMutator.h"

// A whole movie, played and drawn while a user clicks and types. The first bytes are what the user does, the
// last of them the code of the movie's texts, too; the rest is the movie.

namespace
{
constexpr std::size_t kInputBytes = 24;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size < kInputBytes) return 0;
    const base::Bytes all(data, size);
    const char* const textCode = fuzz::kTextCodes[data[kInputBytes - 1] % std::size(fuzz::kTextCodes)];
    fuzz::play(all.subspan(kInputBytes), all.first(kInputBytes), {}, false, textCode);
    return 0;
}

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t maxSize,
                                               unsigned seed)
{
    return fuzz::mutateMovie(data, size, maxSize, seed, kInputBytes);
}

extern "C" std::size_t LLVMFuzzerCustomCrossOver(const std::uint8_t* first, std::size_t firstSize,
                                                 const std::uint8_t* second, std::size_t secondSize,
                                                 std::uint8_t* out, std::size_t maxSize, unsigned seed)
{
    return fuzz::crossMovies(first, firstSize, second, secondSize, out, maxSize, seed, kInputBytes);
}
