#pragma once

#include <QString>

namespace player
{

/// Minutes and seconds of a count of frames, "62:05": minutes without padding or limit, no hours. Seconds are
/// rounded to whole ones, halves to even.
/// @param frameRate frames a second; with 0 the answer is empty
QString GetTime(qint32 frames, float frameRate);

/// The information line and the status word, as the skin or the control bar shows them.
class Status
{
public:
    /// 0 to 2: time gone, left, in all; 3 to 5: the same in frames. Another mode leaves the text as it is.
    [[nodiscard]] int timeMode() const { return m_timeMode; }
    void setTimeMode(int mode) { m_timeMode = mode; }
    void ToggleTimeMode();

    /// Rebuilds the information text.
    void update(qint32 frame, qint32 totalFrames, float frameRate);

    QString informationText;
    QString statusText;

private:
    int m_timeMode = 0;
};

} // namespace player
