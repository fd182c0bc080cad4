#pragma once

#include <QString>

#include <functional>

namespace player
{

/// Lets what movies say into the journal, but no flood of it: so many lines a second, so long a line, so many
/// characters from one opening to the next. What is left out is counted and told.
class MovieJournal
{
public:
    using Clock = std::function<qint64()>; ///< milliseconds, never going back
    static constexpr qsizetype kLongestLine = 1000;
    static constexpr int kLinesAtOnce = 500, kLinesPerSecond = 50;
    static constexpr qsizetype kMaxCharacters = 1'000'000;

    MovieJournal(std::function<void(const QString&)> write, Clock clock)
        : m_write(std::move(write)), m_clock(std::move(clock)), m_last(m_clock())
    {
    }
    void write(const QString& line);
    /// The user has opened a movie: it has a share of its own.
    void movieOpened();

private:
    void tellLeftOut();

    std::function<void(const QString&)> m_write;
    Clock m_clock;
    qint64 m_last;
    double m_lines = kLinesAtOnce; ///< that may be written now
    qsizetype m_characters = 0;
    qint64 m_leftOut = 0;
    bool m_isFull = false;
};

} // namespace player
