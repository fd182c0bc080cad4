#pragma once

#include <bit>
#include <cstdint>

namespace script::vbscript
{

/// The language's own generator, a linear congruence over 24 bits. Scripts that seed it count on the
/// sequence.
class Random
{
public:
    float next()
    {
        m_seed = (m_seed * 16598013U + 12820163U) & 0xFFFFFF;
        return last();
    }
    [[nodiscard]] float last() const { return static_cast<float>(m_seed) / 16777216.0F; }
    /// Rnd of a negative number: the same number starts the same sequence.
    void restart(float number)
    {
        const auto bits = std::bit_cast<std::uint32_t>(number);
        m_seed = (bits + (bits >> 24)) & 0xFFFFFF;
    }
    /// Randomize: only the middle bits change, so the same number does not repeat a sequence.
    void stir(double number)
    {
        const auto high = static_cast<std::uint32_t>(std::bit_cast<std::uint64_t>(number) >> 32);
        m_seed = (m_seed & 0xFF) | (((high ^ (high >> 16)) & 0xFFFF) << 8);
    }

private:
    std::uint32_t m_seed = 0x50000;
};

} // namespace script::vbscript
