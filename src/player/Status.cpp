#include "player/Status.h"

#include "player/Texts.h"

#include <cmath>
#include <limits>

namespace player
{

QString GetTime(qint32 frames, float frameRate)
{
    const double time = static_cast<double>(frames) / static_cast<double>(frameRate);
    const double whole = std::nearbyint(time); // halves to even, the mode that every thread starts in
    if (!(std::abs(whole) <= std::numeric_limits<qint32>::max())) return {};
    const auto seconds = static_cast<int>(std::fmod(whole, 60.0));
    const double minutes = std::nearbyint((time - seconds) / 60.0);
    if (std::abs(minutes) > std::numeric_limits<qint16>::max()) return {};
    return QString::number(static_cast<int>(minutes)) + (seconds >= 10 ? ":" : ":0") +
           QString::number(seconds);
}

void Status::ToggleTimeMode() { m_timeMode = m_timeMode + 1 > 5 ? 0 : m_timeMode + 1; }

void Status::update(qint32 frame, qint32 totalFrames, float frameRate)
{
    if (m_timeMode < 0 || m_timeMode > 5) return;
    const qint32 counts[] = {frame, totalFrames - frame, totalFrames};
    const qint32 count = counts[m_timeMode % 3];
    informationText =
        texts::kTimeModes[m_timeMode] + (m_timeMode < 3 ? GetTime(count, frameRate) : QString::number(count));
}

} // namespace player
