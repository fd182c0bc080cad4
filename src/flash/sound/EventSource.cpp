#include "flash/sound/EventSource.h"

#include <algorithm>

namespace flash::sound
{

namespace
{

constexpr int kFullLevel = 32768;

} // namespace

EventSource::EventSource(std::unique_ptr<SampleSource> sound, const swf::SoundInfo& info)
    : m_sound(std::move(sound)), m_info(info)
{
    std::stable_sort(m_info.envelope.begin(), m_info.envelope.end(),
                     [](const auto& a, const auto& b) { return a.position44 < b.position44; });
    rewind();
}

void EventSource::rewind()
{
    m_loopsLeft = std::max<int>(m_info.loops, 1);
    m_played = 0;
    m_envelopeNext = 0;
    m_position = m_info.inPoint;
    m_sound->seek(m_position);
}

std::size_t EventSource::readOnce(std::span<StereoFrame> out)
{
    if (m_position >= m_info.outPoint) return 0;
    const std::uint64_t room = m_info.outPoint - m_position;
    const std::size_t got = m_sound->read(out.first(std::min<std::uint64_t>(room, out.size())));
    m_position += got;
    return got;
}

std::size_t EventSource::read(std::span<StereoFrame> out)
{
    std::size_t done = 0;
    while (done < out.size() && m_loopsLeft > 0) {
        const std::size_t got = readOnce(out.subspan(done));
        done += got;
        if (done == out.size()) break;
        const bool empty = got == 0 && m_position == m_info.inPoint;
        if (--m_loopsLeft == 0 || empty) {
            m_loopsLeft = 0;
            break;
        }
        m_position = m_info.inPoint;
        m_sound->seek(m_position);
    }
    applyEnvelope(out.first(done));
    return done;
}

void EventSource::applyEnvelope(std::span<StereoFrame> frames)
{
    const auto& points = m_info.envelope;
    if (points.empty()) {
        m_played += frames.size();
        return;
    }
    for (StereoFrame& frame : frames) {
        while (m_envelopeNext < points.size() && points[m_envelopeNext].position44 <= m_played)
            ++m_envelopeNext;
        double left = 0, right = 0;
        if (m_envelopeNext == 0 || m_envelopeNext == points.size()) {
            const auto& point = points[m_envelopeNext == 0 ? 0 : m_envelopeNext - 1];
            left = point.left;
            right = point.right;
        } else {
            const auto& before = points[m_envelopeNext - 1];
            const auto& after = points[m_envelopeNext];
            const double share = static_cast<double>(m_played - before.position44) /
                                 static_cast<double>(after.position44 - before.position44);
            left = before.left + (after.left - before.left) * share;
            right = before.right + (after.right - before.right) * share;
        }
        frame.left = static_cast<std::int16_t>(frame.left * std::min<double>(left, kFullLevel) / kFullLevel);
        frame.right =
            static_cast<std::int16_t>(frame.right * std::min<double>(right, kFullLevel) / kFullLevel);
        ++m_played;
    }
}

} // namespace flash::sound
