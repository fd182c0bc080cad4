#pragma once

#include "../swf/MovieWriter.h"
#include "flash/AudioOutput.h"

#include <QElapsedTimer>
#include <QTimer>

#include <array>
#include <vector>

namespace flash::test
{

/// What a stand-in device has heard, frames.
struct Heard {
    qint64 frames = 0; ///< since the first that was no silence
    qint64 silent = 0; ///< of them: the source had nothing in time
    int gaps = 0;      ///< stretches of those
    qint64 late = 0;   ///< that the device played before anybody filled its buffer again
};

/// Plays like a sound device with a buffer of so many milliseconds and writes down where there was nothing to
/// play. Looks after its buffer from the event loop, as the real one does.
class StandInOutput : public OutputDevice
{
public:
    StandInOutput(QIODevice& from, Heard& heard, int bufferMs = 90)
        : m_from(from), m_heard(heard), m_capacity(sound::kMixRate * bufferMs / 1000)
    {
        m_timer.setTimerType(Qt::PreciseTimer);
        QObject::connect(&m_timer, &QTimer::timeout, [this] { fill(); });
        m_timer.start(10);
        fill();
        m_clock.start();
    }
    [[nodiscard]] bool isLost() const override { return false; }

private:
    void fill()
    {
        if (m_clock.isValid()) {
            const qint64 played = m_clock.nsecsElapsed() * sound::kMixRate / 1'000'000'000;
            m_level -= played - m_played;
            m_played = played;
        }
        if (m_level < 0) {
            if (m_heard.frames > 0) m_heard.late -= m_level;
            m_level = 0;
        }
        std::vector<sound::StereoFrame> frames(static_cast<std::size_t>(m_capacity - m_level));
        const qint64 got = m_from.read(reinterpret_cast<char*>(frames.data()),
                                       static_cast<qint64>(frames.size() * sizeof(sound::StereoFrame)));
        const qint64 count = got / static_cast<qint64>(sizeof(sound::StereoFrame));
        m_level += count;
        for (qint64 i = 0; i < count; ++i) {
            const auto& frame = frames[static_cast<std::size_t>(i)];
            const bool isSilent = frame.left == 0 && frame.right == 0;
            if (isSilent && m_heard.frames == 0) continue;
            ++m_heard.frames;
            if (isSilent) ++m_heard.silent;
            if (isSilent && !m_wasSilent) ++m_heard.gaps;
            m_wasSilent = isSilent;
        }
    }

    QIODevice& m_from;
    Heard& m_heard;
    const qint64 m_capacity;
    qint64 m_level = 0, m_played = 0;
    bool m_wasSilent = false;
    QElapsedTimer m_clock;
    QTimer m_timer;
};

/// A sound without a pause, no sample of which is silence. 25 frames a second, two of them.
inline swf::ByteList soundingMovie()
{
    using swf::BodyWriter;
    using swf::tag;
    constexpr unsigned kSamples = 4410;
    BodyWriter sound;
    sound.u16(1).u8(0x3E).u32(kSamples);                     // not compressed, 44100 Hz, 16 bits, mono
    for (unsigned i = 0; i < kSamples; ++i) sound.u16(4000); // never through zero
    return swf::movieBytes(
        6, {tag(14, sound), tag(15, BodyWriter().u16(1).u8(4).u16(60000)), swf::kShowFrame, swf::kShowFrame},
        2);
}

} // namespace flash::test
