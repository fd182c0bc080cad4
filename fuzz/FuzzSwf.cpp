#include "TagMutator.h"

#include "flash/swf/Describe.h"
#include "flash/swf/Movie.h"

#include <cstddef>
#include <cstdint>

// Small budgets keep a run fast and make the limits themselves part of what is tried.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace flash::swf;
    const ParseLimits limits{
        .inflatedBytes = 4U << 20U, .bitmapBytes = 4U << 20U, .definitionBytes = 16U << 20U};
    const base::Bytes input(data, size);
    if (const auto movie = parseMovie(input, limits)) {
        (void)describe(**movie);
        for (const auto& [id, character] : (*movie)->characters)
            if (const auto* morph = std::get_if<MorphCharacter>(&character->data))
                (void)interpolate(*morph->morph, 40000);
    }
    (void)decodePicture(input, limits);
    return 0;
}

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t maxSize,
                                               unsigned seed)
{
    return fuzz::mutateMovie(data, size, maxSize, seed, 0);
}

extern "C" std::size_t LLVMFuzzerCustomCrossOver(const std::uint8_t* first, std::size_t firstSize,
                                                 const std::uint8_t* second, std::size_t secondSize,
                                                 std::uint8_t* out, std::size_t maxSize, unsigned seed)
{
    return fuzz::crossMovies(first, firstSize, second, secondSize, out, maxSize, seed, 0);
}
