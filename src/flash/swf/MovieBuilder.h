#pragma once

#include "flash/swf/Movie.h"

#include <array>
#include <memory>
#include <string_view>
#include <utility>

namespace flash::swf
{

/// Counts down what a parse may use up.
class Budget
{
public:
    explicit Budget(std::uint64_t bytes) : m_left(bytes) {}
    /// @returns whether the bytes were there to be taken; after the first refusal nothing is.
    bool take(std::uint64_t bytes)
    {
        if (bytes > m_left) {
            m_left = 0;
            m_exhausted = m_lacked = true;
        }
        if (m_exhausted) return false;
        m_left -= bytes;
        m_taken += bytes;
        return true;
    }
    /// Something that is bigger than what is left was not even begun.
    void lack() { m_lacked = true; }
    [[nodiscard]] std::uint64_t left() const { return m_left; }
    [[nodiscard]] std::uint64_t taken() const { return m_taken; }
    [[nodiscard]] bool isExhausted() const { return m_exhausted; }
    /// Whether anything was refused.
    [[nodiscard]] bool hasLacked() const { return m_lacked; }

private:
    std::uint64_t m_left, m_taken = 0;
    bool m_exhausted = false, m_lacked = false;
};

/// What the tags of one movie are gathered into.
class MovieBuilder
{
public:
    MovieBuilder(std::shared_ptr<Movie> movie, const ParseLimits& limits);

    [[nodiscard]] Movie& movie() { return *m_movie; }
    [[nodiscard]] int version() const { return m_movie->header.version; }
    [[nodiscard]] Budget& definitions() { return m_definitions; }
    /// Bytes of pixels.
    [[nodiscard]] Budget& bitmaps() { return m_bitmaps; }
    [[nodiscard]] int spriteDepth() const { return m_limits.spriteDepth; }

    /// Adds to the dictionary. An id that is taken keeps its first owner, as the genuine player does.
    void define(std::uint16_t id, CharacterData data);
    /// As above, for shapes that may be filled with bitmaps, which are looked up when the whole file is read.
    void defineShape(std::uint16_t id, std::shared_ptr<Shape> shape);
    void defineMorph(std::uint16_t id, std::shared_ptr<MorphShape> morph);
    /// For tags that complete an earlier definition; null when there is none of that kind.
    template <class T>
    [[nodiscard]] T* find(std::uint16_t id)
    {
        Character* found = character(id);
        return found ? std::get_if<T>(&found->data) : nullptr;
    }
    [[nodiscard]] Character* character(std::uint16_t id);

    void warn(std::string_view tag, std::size_t offset, std::string_view what);
    void count(std::uint16_t tagCode, std::uint64_t bytes);

    base::Bytes jpegTables; ///< of the movie's one JPEGTables tag

    /// Links bitmaps to the fills that name them and fills in what is known only at the end.
    void finish();

private:
    void link(std::vector<ShapeLayer>& layers) const;

    std::shared_ptr<Movie> m_movie;
    ParseLimits m_limits;
    Budget m_definitions, m_bitmaps;
    std::unordered_map<std::uint16_t, std::shared_ptr<Character>> m_characters;
    std::vector<std::shared_ptr<Shape>> m_shapes;
    std::vector<std::shared_ptr<MorphShape>> m_morphs;
    std::map<std::uint16_t, TagCount> m_counts;
    std::array<std::uint16_t, 2> m_firstTags{};
    std::size_t m_tags = 0;
};

} // namespace flash::swf
