#pragma once

#include "browser/BrowserHost.h"
#include "browser/BrowserState.h"
#include "browser/cDIBSection.h"
#include "browser/frmShot.h"
#include "core/Application.h"
#include "media/MediaFiles.h"
#include "media/MediaHost.h"

#include <QDateTime>
#include <QElapsedTimer>
#include <QHash>
#include <QPointer>
#include <QRandomGenerator>

#include <memory>
#include <optional>
#include <utility>

namespace browser
{

/// The frame of a movie that its thumbnail shows: between 30 % and 90 % of it.
/// @param random 0 to 1, 1 excluded
int thumbnailFrame(int totalFrames, double random);

/// @returns the share of the pixels that have the colour seen most often; colours that differ little are one
double shareOfCommonestColour(const cDIBSection& picture);
/// A picture with a larger share of one colour shows next to nothing.
inline constexpr double kBlankShare = 0.98;

/// Makes the pictures that stand for movies: JPEG files in the cache, made once and kept until the cache is
/// cleared. A movie that hangs, loops for ever or eats memory is dropped at its limits and gets no picture.
/// While movies are at work events are let through, so that the user can skip one or cancel. Where movies get
/// processes of their own, several are at work at the same time; which frames are chosen does not depend on
/// that.
class Thumbnails
{
public:
    struct Order {
        QString movie, thumbnail; ///< paths
    };
    /// What one movie may cost.
    struct Limits {
        int timeMs = 3000;                                  ///< of real time
        std::int64_t memoryBytes = std::int64_t{512} << 20; ///< that it needs
    };

    /// All are borrowed. @param state its skip flag is this one's
    Thumbnails(core::Application& application, BrowserHost& host, BrowserState& state);
    ~Thumbnails();
    Thumbnails(const Thumbnails&) = delete;
    Thumbnails& operator=(const Thumbnails&) = delete;

    /// Makes one thumbnail unless it is there. Leaves the progress window open.
    void MakeThumbnail(const QString& movie, const QString& thumbnail);
    /// Makes them in their order, tells how far it is, and closes the progress window. Stops when the user
    /// cancels; what is made stays.
    void makeAll(const std::vector<Order>& orders);
    void closeWindow();
    /// Whether a thumbnail is missing or older than its movie. One that failed in this run is tried again
    /// only when the movie's file has changed.
    [[nodiscard]] bool isWanted(const Order& order) const;

    /// Whether it got no picture in this run, and its file is still the same.
    [[nodiscard]] bool hasFailed(const QString& movie) const;

    /// The progress window; null when there is none.
    [[nodiscard]] frmShot* window() const { return m_window; }

    Limits limits;
    /// How many movies with processes of their own are at work at the same time.
    int sideBySide;
    /// What frames are chosen by; nothing: the time of day.
    std::optional<quint32> seed;

private:
    /// One movie on its way to a picture.
    struct Work {
        Work(Order ordered, int ofAll, int at) : order(std::move(ordered)), number(ofAll), place(at) {}

        Order order;
        int number, place; ///< of the orders, from 1; in the window
        QRandomGenerator random;
        QElapsedTimer clock;
        std::int64_t memoryBefore = 0; ///< of this process
        int looks = 0;                 ///< at how many frames
        cDIBSection best;
        double bestShare = 2;
        bool isDropped = false;
    };

    void make(const std::vector<Order>& orders, bool tellsProgress);
    frmShot& openWindow();
    flash::FlashControl& controlOf(int place);
    std::unique_ptr<Work> begin(const Order& order, int number, int place);
    void load(int place, const QString& movie);
    /// Goes on with a movie that has done what it was told. @returns whether it has got its picture
    bool proceed(Work& work);
    void chooseFrame(Work& work);
    void settle(Work& work);
    void judge(Work& work);
    void finish(Work& work);
    void drop(Work& work, const char* why);
    [[nodiscard]] bool isGivenUp(const Work& work) const { return work.isDropped || m_state.skip; }
    /// Lets events through and looks at the limits of all that is at work.
    void watch();
    bool watchScripts(int place);
    /// What the movies of a place are told, and where they are heard.
    void equip(int place);
    [[nodiscard]] Work* workIn(int place) const;
    void noteFailure(const QString& movie);
    [[nodiscard]] int freePlace() const;
    void show(bool tellsProgress, std::size_t count);
    void log(const QString& text);

    core::Application& m_application;
    BrowserHost& m_host;
    BrowserState& m_state;
    media::NoMediaHost m_quiet;
    media::MediaFiles m_files; ///< for projectors; what it meets is not shown
    QPointer<frmShot> m_window;
    QElapsedTimer m_sincePump;
    std::vector<std::unique_ptr<Work>> m_works; ///< the oldest first
    quint32 m_made = 0;
    bool m_atWork = false;
    QHash<QString, QDateTime> m_failed; ///< movies without a picture, and the time of their files then
};

} // namespace browser
