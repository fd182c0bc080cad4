#pragma once

#include "media/Compress.h"
#include "media/MovieHeader.h"

#include <algorithm>
#include <cstring>
#include <gtest/gtest.h>
#include <lzma.h>
#include <string>
#include <vector>

// Movies made byte by byte for the tests of this folder.

namespace media
{

using ByteVector = std::vector<std::uint8_t>;

/// A frame rectangle of `fieldBits` wide fields from zero to the given maxima, then rate, count and a
/// background colour tag.
inline ByteVector frameHeader(unsigned fieldBits, std::uint32_t widthTwips, std::uint32_t heightTwips)
{
    std::string bits;
    const auto put = [&bits](std::uint32_t value, unsigned count) {
        while (count-- > 0) bits += (value >> count & 1U) != 0 ? '1' : '0';
    };
    put(fieldBits, 5);
    put(0, fieldBits);
    put(widthTwips, fieldBits);
    put(0, fieldBits);
    put(heightTwips, fieldBits);
    while (bits.size() % 8 != 0) bits += '0';
    ByteVector bytes;
    for (std::size_t at = 0; at < bits.size(); at += 8)
        bytes.push_back(static_cast<std::uint8_t>(std::stoi(bits.substr(at, 8), nullptr, 2)));
    for (const int byte : {0x80, 24, 0x2C, 0x01, 0x43, 0x02, 0x0A, 0xB0, 0xFF})
        bytes.push_back(static_cast<std::uint8_t>(byte));
    return bytes;
}

/// 550 x 400, 24 frames a second, 300 frames, background 0AB0FF, one frame shown, and an unknown tag of
/// `padding` bytes before the end tag.
inline ByteVector movieBody(std::size_t padding = 100)
{
    ByteVector body = frameHeader(15, 11000, 8000);
    for (const std::size_t byte : {std::size_t{0x40}, std::size_t{0}, std::size_t{0x3F}, std::size_t{0xAF},
                                   padding & 0xFF, padding >> 8 & 0xFF, padding >> 16 & 0xFF, padding >> 24})
        body.push_back(static_cast<std::uint8_t>(byte));
    for (std::size_t i = 0; i < padding; ++i) body.push_back(static_cast<std::uint8_t>(1 + i * 7 % 251));
    body.insert(body.end(), {0, 0});
    return body;
}

inline ByteVector withHeader(const char* signature, int version, std::uint32_t length, base::Bytes body)
{
    FileHeader header;
    header.version = static_cast<std::uint8_t>(version);
    header.fileLength = length;
    const auto head = header.withSignature(signature);
    ByteVector file(head.begin(), head.end());
    file.insert(file.end(), body.begin(), body.end());
    return file;
}

inline ByteVector plainMovie(int version = 6, std::size_t padding = 100)
{
    const ByteVector body = movieBody(padding);
    return withHeader("FWS", version, static_cast<std::uint32_t>(body.size() + 8), body);
}

inline ByteVector compressedMovie(int version = 6, std::size_t padding = 100)
{
    const ByteVector body = movieBody(padding);
    return withHeader("CWS", version, static_cast<std::uint32_t>(body.size() + 8),
                      CompressData(body, 9).value());
}

/// The movie of movieBody(), compressed by LZMA; the stream does not mark its end.
inline ByteVector lzmaMovie()
{
    const ByteVector body = movieBody();
    lzma_options_lzma options;
    lzma_lzma_preset(&options, 6);
    lzma_stream stream = LZMA_STREAM_INIT;
    ByteVector alone(body.size() + 1000);
    EXPECT_EQ(lzma_alone_encoder(&stream, &options), LZMA_OK);
    stream.next_in = body.data();
    stream.avail_in = body.size();
    stream.next_out = alone.data();
    stream.avail_out = alone.size();
    EXPECT_EQ(lzma_code(&stream, LZMA_FINISH), LZMA_STREAM_END);
    alone.resize(stream.total_out);
    lzma_end(&stream);
    // Compressed length, properties, stream; the library puts the plain length between the last two.
    ByteVector packed(4);
    const auto length = static_cast<std::uint32_t>(alone.size() - 13);
    std::memcpy(packed.data(), &length, sizeof length);
    packed.insert(packed.end(), alone.begin(), alone.begin() + 5);
    packed.insert(packed.end(), alone.begin() + 13, alone.end());
    return withHeader("ZWS", 13, static_cast<std::uint32_t>(body.size() + 8), packed);
}

/// An executable's start, `before` bytes in all, then `movie`, then `after` bytes.
inline ByteVector projector(const ByteVector& movie, std::size_t before = 2000, std::size_t after = 8)
{
    ByteVector file(before + movie.size() + after, 0xCC);
    file[0] = 'M';
    file[1] = 'Z';
    std::copy(movie.begin(), movie.end(), file.begin() + static_cast<std::ptrdiff_t>(before));
    return file;
}

} // namespace media
