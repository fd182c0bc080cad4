#pragma once

#include "browser/BrowserHost.h"
#include "browser/BrowserState.h"
#include "browser/cDIBSection.h"
#include "browser/frmShot.h"
#include "core/Application.h"
#include "media/MediaFiles.h"
#include "media/MediaHost.h"

#include <QElapsedTimer>
#include <QPointer>
#include <QRandomGenerator>

#include <optional>

namespace browser
{

/// The frame of a movie that its thumbnail shows: between 30 % and 90 % of it.
/// @param random 0 to 1, 1 excluded
int thumbnailFrame(int totalFrames, double random);

/// Makes the pictures that stand for movies: JPEG files in the cache, made once and kept until the cache is
/// cleared. A movie that hangs, loops for ever or eats memory is dropped at its limits and gets no picture.
/// While a movie is at work events are let through, so that the user can skip it or cancel.
class Thumbnails
{
public:
    struct Order {
        QString movie, thumbnail; ///< paths
    };
    /// What one movie may cost.
    struct Limits {
        int timeMs = 3000;                                  ///< of real time
        std::int64_t memoryBytes = std::int64_t{512} << 20; ///< that the process grows by
    };

    /// All are borrowed. @param state its skip flag is this one's
    Thumbnails(core::Application& application, BrowserHost& host, BrowserState& state);
    ~Thumbnails();
    Thumbnails(const Thumbnails&) = delete;
    Thumbnails& operator=(const Thumbnails&) = delete;

    /// Makes one thumbnail unless it is there. Leaves the progress window open.
    void MakeThumbnail(const QString& movie, const QString& thumbnail);
    /// Makes them one after the other, tells how far it is, and closes the progress window. Stops when the
    /// user cancels; what is made stays.
    void makeAll(const std::vector<Order>& orders);
    void closeWindow();

    /// The progress window; null when there is none.
    [[nodiscard]] frmShot* window() const { return m_window; }

    Limits limits;
    /// What frames are chosen by; nothing: the time of day.
    std::optional<quint32> seed;

private:
    frmShot& openWindow();
    void load(const QString& movie);
    /// The picture of a random frame, or of another one where that shows next to nothing.
    cDIBSection bestPicture(QRandomGenerator& random);
    void settle();
    void dropMovie(const char* why);
    [[nodiscard]] bool isGivenUp() const { return m_dropped || m_state.skip; }
    /// Lets events through and looks at the limits. @returns whether the movie at hand is given up
    bool watch();
    void pump();
    void log(const QString& text);

    core::Application& m_application;
    BrowserHost& m_host;
    BrowserState& m_state;
    media::NoMediaHost m_quiet;
    media::MediaFiles m_files; ///< for projectors; what it meets is not shown
    QPointer<frmShot> m_window;
    QElapsedTimer m_clock, m_sincePump;
    std::int64_t m_memoryBefore = 0;
    quint32 m_made = 0;
    bool m_dropped = false, m_atWork = false;
};

} // namespace browser
