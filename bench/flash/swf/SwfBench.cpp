#include "flash/swf/Movie.h"

#include <benchmark/benchmark.h>

#include <zlib.h>

namespace
{

using ByteList = std::vector<std::uint8_t>;

void append(ByteList& out, std::uint32_t value, unsigned bytes)
{
    for (unsigned i = 0; i < bytes; ++i) out.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
}

void appendTag(ByteList& out, unsigned code, const ByteList& body)
{
    append(out, code << 6U | 63U, 2);
    append(out, static_cast<std::uint32_t>(body.size()), 4);
    out.insert(out.end(), body.begin(), body.end());
}

ByteList movieHead()
{
    ByteList out{'F', 'W', 'S', 6, 0, 0, 0, 0, 0x78, 0x00, 0x05, 0x5F, 0x00, 0x00, 0x0F, 0xA0, 0x00};
    append(out, 12U << 8U, 2);
    append(out, 1, 2);
    return out;
}

// A shape of straight edges of 16 bits each: 1 1 0000, general, 2 + 2 bits of way. No styles.
ByteList edgesShape(unsigned id, std::size_t edges)
{
    ByteList body;
    append(body, id, 2);
    body.insert(body.end(), {0, 0, 0, 0}); // empty rectangle, no fills, no lines, no index bits
    std::uint64_t bits = 0;
    unsigned held = 0;
    const auto put = [&](unsigned value, unsigned count) {
        bits = bits << count | value;
        held += count;
        while (held >= 8) {
            body.push_back(static_cast<std::uint8_t>(bits >> (held - 8)));
            held -= 8;
        }
    };
    for (std::size_t i = 0; i < edges; ++i) {
        put(0b11'0010'1, 7);
        put(static_cast<unsigned>(i) & 15U, 4);
        put(static_cast<unsigned>(i >> 2U) & 15U, 4);
    }
    put(0, 6);
    put(0, 8);
    return body;
}

/// A plain movie of about a megabyte of edges.
ByteList shapesMovie()
{
    ByteList out = movieHead();
    for (unsigned id = 1; out.size() < (1U << 20U); ++id) appendTag(out, 2, edgesShape(id, 500));
    append(out, 0, 2);
    return out;
}

/// A plain movie of about a megabyte of placements, ten to a frame.
ByteList placementsMovie()
{
    ByteList out = movieHead();
    const ByteList place{0x0D, 5, 0, 0x16, 0x40, 0x48, 0x00, 0x4C, 0x40, 0x40};
    while (out.size() < (1U << 20U)) {
        for (int i = 0; i < 10; ++i) appendTag(out, 26, place);
        append(out, 0x40, 2);
    }
    append(out, 0, 2);
    return out;
}

void parse(benchmark::State& state, const ByteList& file)
{
    for ([[maybe_unused]] auto _ : state) {
        auto movie = flash::swf::parseMovie(file);
        if (!movie || !(*movie)->warnings.empty()) state.SkipWithError("the movie is not read cleanly");
        benchmark::DoNotOptimize(movie);
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(file.size()));
}

void parseShapes(benchmark::State& state) { parse(state, shapesMovie()); }
void parsePlacements(benchmark::State& state) { parse(state, placementsMovie()); }

void parseCompressed(benchmark::State& state)
{
    ByteList plain = shapesMovie();
    ByteList file(plain.begin(), plain.begin() + 8);
    file[0] = 'C';
    uLongf length = compressBound(plain.size());
    file.resize(8 + length);
    compress(file.data() + 8, &length, plain.data() + 8, plain.size() - 8);
    file.resize(8 + length);
    parse(state, file);
}

BENCHMARK(parseShapes);
BENCHMARK(parsePlacements);
BENCHMARK(parseCompressed);

} // namespace
