#include "flash/sound/Stretcher.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace flash::sound
{

void Stretcher::setSpeed(double speed)
{
    if (speed == m_speed) return;
    m_speed = speed;
    m_input.clear();
    m_tail.clear();
    m_output.clear();
    m_place = 0;
}

void Stretcher::mix(std::span<StereoFrame> out, const Source& source)
{
    if (m_speed == 1) return source(out);
    while (m_output.size() < out.size()) makePiece(source);
    const auto end = m_output.begin() + static_cast<std::ptrdiff_t>(out.size());
    std::copy(m_output.begin(), end, out.begin());
    m_output.erase(m_output.begin(), end);
}

void Stretcher::fetch(std::size_t frames, const Source& source)
{
    if (m_input.size() >= frames) return;
    const std::size_t had = m_input.size();
    m_input.resize(frames);
    source(std::span(m_input).subspan(had));
}

void Stretcher::makePiece(const Source& source)
{
    const auto wanted = static_cast<std::size_t>(std::lround(m_place));
    fetch(wanted + kReach + 2 * kOverlap, source);
    std::size_t place = wanted;
    if (m_tail.empty())
        m_tail.assign(m_input.begin() + static_cast<std::ptrdiff_t>(wanted),
                      m_input.begin() + static_cast<std::ptrdiff_t>(wanted + kOverlap));
    else
        place = bestPlace(wanted - std::min(wanted, kReach), wanted + kReach);
    for (std::size_t i = 0; i < kOverlap; ++i) {
        const auto blend = [i](int before, int now) {
            const int weight = static_cast<int>(i);
            constexpr int kWhole = static_cast<int>(kOverlap);
            return static_cast<std::int16_t>((before * (kWhole - weight) + now * weight) / kWhole);
        };
        const StereoFrame& now = m_input[place + i];
        m_output.push_back({blend(m_tail[i].left, now.left), blend(m_tail[i].right, now.right)});
    }
    const auto rest = m_input.begin() + static_cast<std::ptrdiff_t>(place + kOverlap);
    m_tail.assign(rest, rest + static_cast<std::ptrdiff_t>(kOverlap));
    m_place += static_cast<double>(kOverlap) * m_speed;
    // What lies before the reach of the next piece is of no more use.
    const auto next = static_cast<std::size_t>(m_place);
    const std::size_t done = std::min(next - std::min(next, kReach), m_input.size());
    m_input.erase(m_input.begin(), m_input.begin() + static_cast<std::ptrdiff_t>(done));
    m_place -= static_cast<double>(done);
}

/// Where the input is most like the tail: normalised correlation of both channels together, every fourth
/// frame, which is exact enough below 5 kHz.
std::size_t Stretcher::bestPlace(std::size_t from, std::size_t to) const
{
    constexpr std::size_t kStride = 4;
    double best = -std::numeric_limits<double>::infinity();
    std::size_t place = from;
    for (std::size_t at = from; at <= to; at += 2) {
        std::int64_t like = 0, power = 1;
        for (std::size_t i = 0; i < kOverlap; i += kStride) {
            const std::int64_t before = m_tail[i].left + m_tail[i].right;
            const std::int64_t now = m_input[at + i].left + m_input[at + i].right;
            like += before * now;
            power += now * now;
        }
        const double score = static_cast<double>(like) / std::sqrt(static_cast<double>(power));
        if (score <= best) continue;
        best = score;
        place = at;
    }
    return place;
}

} // namespace flash::sound
