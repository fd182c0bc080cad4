#pragma once

#include <QPushButton>
#include <QString>

#include <optional>

class QAction;

namespace player
{

/// Where films were left, so that they can be gone on with: of those over a minute, unless they were left at
/// their beginning or end. Kept between runs, the most recent fifty.
class Resume
{
public:
    static constexpr double kShortestFilmSeconds = 60;

    /// @param file that the places are kept in; empty: they are not
    explicit Resume(QString file) : m_file(std::move(file)) {}

    /// To be called when a movie goes.
    void remember(const QString& path, int frame, int totalFrames, double frameRate);
    /// @returns the frame that a film was left at, from 0
    [[nodiscard]] std::optional<int> placeOf(const QString& path) const;

private:
    const QString m_file;
};

/// Offers to go on, over the window's upper edge and for some seconds.
class ResumeOffer : public QPushButton
{
    Q_OBJECT
public:
    static void show(QWidget& window, const QString& text, QAction& action);
    static void take(QWidget& window);

private:
    ResumeOffer(QWidget& window, const QString& text);
};

} // namespace player
