#pragma once

#include "export/Settings.h"
#include "flash/Film.h"

#include <QImage>

#include <memory>
#include <vector>

namespace exporter
{

/// The pictures of a film in turn, as settings want them, with the sound between them.
class Strip
{
public:
    /// Open at the first picture.
    static base::Result<Strip> open(const Settings& settings);

    [[nodiscard]] QSize size() const { return m_picture.size(); }
    [[nodiscard]] Rate rate() const { return m_rate; }
    /// How many pictures there will be, or at most.
    [[nodiscard]] std::int64_t expected() const { return m_expected; }
    [[nodiscard]] const flash::Film& film() const { return *m_film; }
    [[nodiscard]] double ms() const { return momentOf(m_index) - momentOf(0); }

    /// The picture of this moment. @param isNew whether it differs from the one before
    const QImage& picture(bool& isNew);
    /// Goes to the next moment.
    /// @param heard is overwritten with the sound until then
    /// @returns false at the end: there is no picture then
    bool next(std::vector<flash::sound::StereoFrame>& heard);
    [[nodiscard]] bool isCutShort() const { return m_isCutShort; }

private:
    Strip() = default;
    [[nodiscard]] double momentOf(std::int64_t index) const;
    [[nodiscard]] bool isOver(const std::vector<flash::sound::StereoFrame>& heard);
    void lay(const Settings& settings);

    std::unique_ptr<flash::Film> m_film;
    Rate m_rate;
    double m_fromMs = 0, m_toMs = 0;
    End m_end = End::Timeline;
    QImage m_picture; // of the film, with its margins
    QImage m_movie;   // a window of m_picture: what the movie draws to
    std::int64_t m_index = 0, m_expected = 0, m_drawn = -1;
    double m_stillMs = 0;
    bool m_isCutShort = false;
};

} // namespace exporter
