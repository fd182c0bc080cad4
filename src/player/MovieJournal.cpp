#include "player/MovieJournal.h"

#include <algorithm>

namespace player
{

void MovieJournal::write(const QString& line)
{
    const qint64 now = m_clock();
    constexpr double kMsPerSecond = 1000;
    m_lines = std::min<double>(kLinesAtOnce,
                               m_lines + static_cast<double>(now - m_last) * kLinesPerSecond / kMsPerSecond);
    m_last = now;
    if (m_isFull || m_lines < 1) {
        ++m_leftOut;
        return;
    }
    tellLeftOut();
    m_lines -= 1;
    const QString written = line.size() > kLongestLine ? line.left(kLongestLine) + "..." : line;
    m_characters += written.size();
    m_write(written);
    if (m_characters < kMaxCharacters) return;
    m_isFull = true;
    m_write("The movie has filled its share of the journal; what more it says is left out.");
}

void MovieJournal::tellLeftOut()
{
    if (m_leftOut == 0) return;
    m_write(QString("(%1 lines of the movie are left out)").arg(m_leftOut));
    m_leftOut = 0;
}

void MovieJournal::movieOpened()
{
    tellLeftOut();
    m_characters = 0;
    m_isFull = false;
}

} // namespace player
