#pragma once

#include "PlayMovie.h"

#include <initializer_list>
#include <vector>

// Movies around one tag of which only the body is tried.
namespace fuzz
{

class OneTagMovie
{
public:
    explicit OneTagMovie(std::uint8_t version)
        : m_bytes{'F', 'W', 'S', version, 0, 0, 0, 0, 0x60, 0, 0x3E, 0x80, 0, 0x3E, 0x80, 0, 20, 1, 0}
    {
    }
    void tag(unsigned code, base::Bytes body)
    {
        const unsigned word = code << 6U | 0x3FU;
        put({static_cast<std::uint8_t>(word), static_cast<std::uint8_t>(word >> 8U)});
        for (unsigned shift = 0; shift < 32; shift += 8)
            m_bytes.push_back(static_cast<std::uint8_t>(body.size() >> shift));
        m_bytes.insert(m_bytes.end(), body.begin(), body.end());
    }
    void tag(unsigned code, std::initializer_list<std::uint8_t> body)
    {
        tag(code, base::Bytes(body.begin(), body.size()));
    }
    /// With the character's number in front of the body.
    void define(unsigned code, std::uint8_t id, base::Bytes rest)
    {
        std::vector<std::uint8_t> body{id, 0};
        body.insert(body.end(), rest.begin(), rest.end());
        tag(code, body);
    }
    void place(std::uint8_t id, std::uint8_t depth) { tag(26, {6, depth, 0, id, 0, 0}); }
    void play()
    {
        tag(1, {});
        tag(0, {});
        for (std::size_t i = 0; i < 4; ++i)
            m_bytes[4 + i] = static_cast<std::uint8_t>(m_bytes.size() >> 8 * i);
        fuzz::play(m_bytes, {});
    }

private:
    void put(std::initializer_list<std::uint8_t> bytes) { m_bytes.insert(m_bytes.end(), bytes); }
    std::vector<std::uint8_t> m_bytes;
};

} // namespace fuzz
