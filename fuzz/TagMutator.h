#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <random>
#include <vector>

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t maxSize);

// Changes movies tag by tag, so that lengths stay true and a change deep in one tag does not cost the rest.
namespace fuzz
{

struct TaggedMovie {
    struct Tag {
        std::uint16_t code = 0;
        std::vector<std::uint8_t> body;
    };
    static constexpr std::size_t kLongForm = 63, kFixedHeader = 8, kSprite = 39, kSpriteHead = 4;

    std::vector<std::uint8_t> prefix, head; ///< what stands before the movie; its header with the frame size
    std::vector<Tag> tags;

    static std::vector<Tag> readTags(const std::uint8_t* at, const std::uint8_t* end)
    {
        std::vector<Tag> tags;
        while (end - at >= 2) {
            const unsigned word = at[0] | static_cast<unsigned>(at[1]) << 8U;
            at += 2;
            std::size_t length = word & kLongForm;
            if (length == kLongForm) {
                if (end - at < 4) break;
                std::uint32_t wide = 0;
                std::memcpy(&wide, at, sizeof(wide));
                length = wide;
                at += 4;
            }
            length = std::min<std::size_t>(length, static_cast<std::size_t>(end - at));
            tags.push_back({static_cast<std::uint16_t>(word >> 6U), {at, at + length}});
            at += length;
        }
        return tags;
    }
    static void writeTags(const std::vector<Tag>& tags, std::vector<std::uint8_t>& out)
    {
        for (const Tag& tag : tags) {
            const bool isLong = tag.body.size() >= kLongForm;
            const std::size_t word =
                static_cast<std::size_t>(tag.code) << 6U | (isLong ? kLongForm : tag.body.size());
            out.push_back(static_cast<std::uint8_t>(word));
            out.push_back(static_cast<std::uint8_t>(word >> 8U));
            if (isLong)
                for (unsigned shift = 0; shift < 32; shift += 8)
                    out.push_back(static_cast<std::uint8_t>(tag.body.size() >> shift));
            out.insert(out.end(), tag.body.begin(), tag.body.end());
        }
    }

    /// @returns false for what is no plain movie
    bool read(const std::uint8_t* data, std::size_t size, std::size_t prefixBytes)
    {
        if (size < prefixBytes + kFixedHeader + 5 || std::memcmp(data + prefixBytes, "FWS", 3) != 0)
            return false;
        const std::uint8_t* movie = data + prefixBytes;
        const std::size_t rect = (5U + 4U * (movie[kFixedHeader] >> 3U) + 7U) / 8U;
        const std::size_t headBytes = kFixedHeader + rect + 4;
        if (size < prefixBytes + headBytes) return false;
        prefix.assign(data, movie);
        head.assign(movie, movie + headBytes);
        tags = readTags(movie + headBytes, data + size);
        return true;
    }
    [[nodiscard]] std::vector<std::uint8_t> write() const
    {
        std::vector<std::uint8_t> out = prefix;
        out.insert(out.end(), head.begin(), head.end());
        writeTags(tags, out);
        const std::size_t length = out.size() - prefix.size();
        for (std::size_t i = 0; i < 4; ++i)
            out[prefix.size() + 4 + i] = static_cast<std::uint8_t>(length >> 8 * i);
        return out;
    }
};

inline void mutateBytes(std::vector<std::uint8_t>& bytes, std::size_t room)
{
    const std::size_t size = bytes.size(), most = size + room;
    bytes.resize(std::max<std::size_t>(most, 1));
    bytes.resize(LLVMFuzzerMutate(bytes.data(), size, bytes.size()));
}

inline void mutateTags(std::vector<TaggedMovie::Tag>& tags, std::mt19937& random, std::size_t room)
{
    if (tags.empty()) {
        tags.push_back({1, {}});
        return;
    }
    const auto pick = [&random](std::size_t count) { return random() % count; };
    const std::size_t at = pick(tags.size()), other = pick(tags.size());
    switch (pick(12)) {
    case 0: std::swap(tags[at], tags[other]); break;
    case 1: tags.insert(tags.begin() + static_cast<std::ptrdiff_t>(at), TaggedMovie::Tag(tags[other])); break;
    case 2: tags.erase(tags.begin() + static_cast<std::ptrdiff_t>(at)); break;
    case 3: tags[at].code = static_cast<std::uint16_t>(pick(95)); break;
    case 4: tags[at].body.resize(pick(tags[at].body.size() + 1)); break;
    default:
        auto& body = tags[at].body;
        if (tags[at].code == TaggedMovie::kSprite && body.size() > TaggedMovie::kSpriteHead && pick(4) != 0) {
            auto inner =
                TaggedMovie::readTags(body.data() + TaggedMovie::kSpriteHead, body.data() + body.size());
            mutateTags(inner, random, room);
            body.resize(TaggedMovie::kSpriteHead);
            TaggedMovie::writeTags(inner, body);
        } else {
            mutateBytes(body, room);
        }
    }
}

/// LLVMFuzzerCustomMutator for inputs that are `prefixBytes` of the target's own and a plain movie.
inline std::size_t mutateMovie(std::uint8_t* data, std::size_t size, std::size_t maxSize, unsigned seed,
                               std::size_t prefixBytes)
{
    constexpr std::size_t kRoom = 64;
    std::mt19937 random(seed);
    TaggedMovie movie;
    if (random() % 16 == 0 || !movie.read(data, size, prefixBytes))
        return LLVMFuzzerMutate(data, size, maxSize);
    const unsigned what = random() % 12;
    if (what == 0 && prefixBytes > 0)
        LLVMFuzzerMutate(movie.prefix.data(), movie.prefix.size(), movie.prefix.size());
    else if (what == 1)
        LLVMFuzzerMutate(movie.head.data() + 3, movie.head.size() - 3, movie.head.size() - 3);
    else
        mutateTags(movie.tags, random, kRoom);
    const std::vector<std::uint8_t> out = movie.write();
    if (out.size() > maxSize) return LLVMFuzzerMutate(data, size, maxSize);
    std::copy(out.begin(), out.end(), data);
    return out.size();
}

/// LLVMFuzzerCustomCrossOver: tags of the second movie go into the first.
inline std::size_t crossMovies(const std::uint8_t* first, std::size_t firstSize, const std::uint8_t* second,
                               std::size_t secondSize, std::uint8_t* out, std::size_t maxSize, unsigned seed,
                               std::size_t prefixBytes)
{
    std::mt19937 random(seed);
    TaggedMovie movie, other;
    if (!movie.read(first, firstSize, prefixBytes) || !other.read(second, secondSize, prefixBytes)) return 0;
    if (other.tags.empty()) return 0;
    const std::size_t from = random() % other.tags.size(), to = random() % (movie.tags.size() + 1);
    const std::size_t count = 1 + random() % std::min<std::size_t>(other.tags.size() - from, 8);
    const auto start = other.tags.begin() + static_cast<std::ptrdiff_t>(from);
    movie.tags.insert(movie.tags.begin() + static_cast<std::ptrdiff_t>(to), start,
                      start + static_cast<std::ptrdiff_t>(count));
    const std::vector<std::uint8_t> bytes = movie.write();
    if (bytes.size() > maxSize) return 0;
    std::copy(bytes.begin(), bytes.end(), out);
    return bytes.size();
}

} // namespace fuzz
