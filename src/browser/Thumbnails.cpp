#include "browser/Thumbnails.h"

#include "base/Failure.h"
#include "browser/SaveJpg.h"
#include "browser/Texts.h"
#include "flash/FlashControl.h"
#include "platform/ProcessMemory.h"

#include <QApplication>
#include <QScopedValueRollback>
#include <QThread>
#include <QTime>
#include <QUrl>

#include <algorithm>
#include <cmath>

namespace browser
{
namespace
{

constexpr int kJpegQuality = 75;
/// Names no file and loads nothing.
constexpr const char* kNoMovie = "| no |";
/// How long scripts and nested clips get to settle on the chosen frame.
constexpr int kSettlingFrames = 8;
/// So often another frame is chosen when there is next to nothing to be seen: a fade, or a loader's frame.
constexpr int kMostFrames = 4;
constexpr double kBlankShare = 0.98;
constexpr double kShortestFrameMs = 10, kLongestFrameMs = 100;
constexpr int kPumpEveryMs = 15;

/// Of SWF's Quality.
constexpr int kLowQuality = 0, kHighQuality = 1;

/// @returns the share of the pixels that have the colour seen most often; colours that differ little are one
double shareOfCommonestColour(const cDIBSection& picture)
{
    constexpr unsigned kShades = 32;
    std::vector<int> counts(kShades * kShades * kShades);
    for (int y = 0; y < picture.Height(); ++y) {
        const std::uint8_t* pixel = picture.row(y);
        for (int x = 0; x < picture.Width(); ++x, pixel += 3)
            ++counts[(pixel[0] / 8U * kShades + pixel[1] / 8U) * kShades + pixel[2] / 8U];
    }
    return static_cast<double>(*std::max_element(counts.begin(), counts.end())) /
           (static_cast<double>(picture.Width()) * picture.Height());
}

} // namespace

int thumbnailFrame(int totalFrames, double random)
{
    return static_cast<int>(std::nearbyint(totalFrames * 0.3 + random * totalFrames * 0.6));
}

Thumbnails::Thumbnails(core::Application& application, BrowserHost& host, BrowserState& state)
    : m_application(application), m_host(host), m_state(state), m_files(application, m_quiet)
{
}

Thumbnails::~Thumbnails() { closeWindow(); }

void Thumbnails::makeAll(const std::vector<Order>& orders)
{
    if (m_atWork) return;
    const int count = static_cast<int>(orders.size());
    for (int number = 1; number <= count; ++number) {
        openWindow().setProgress(number, count);
        const Order& order = orders[static_cast<std::size_t>(number - 1)];
        MakeThumbnail(order.movie, order.thumbnail);
        if (m_state.skip || m_host.hasEnded()) break;
    }
    closeWindow();
}

frmShot& Thumbnails::openWindow()
{
    if (m_window.isNull()) {
        QWidget* dialog = QApplication::activeModalWidget();
        m_window = new frmShot(dialog != nullptr ? dialog : m_host.dialogParent(),
                               m_application.AppPath + "media/shot_shadow.png");
        QObject::connect(m_window, &frmShot::cancelled, m_window, [this] { m_state.skip = true; });
        QObject::connect(m_window, &frmShot::movieSkipped, m_window, [this] { m_dropped = true; });
        m_window->SWF().setScriptWatch([this] { return watch(); });
        m_window->SWF().setScriptTimeoutHandler([] { return true; });
        QObject::connect(&m_window->SWF(), &flash::FlashControl::crashed, m_window,
                         [this] { dropMovie("its process has ended"); });
    }
    return *m_window;
}

void Thumbnails::closeWindow()
{
    if (!m_atWork) delete m_window.data();
}

void Thumbnails::MakeThumbnail(const QString& movie, const QString& thumbnail)
{
    // Events are let through below; what they ask for meanwhile is not begun.
    if (m_atWork || core::fileExists(thumbnail)) return;
    const QScopedValueRollback atWork(m_atWork, true);
    m_state.skip = m_dropped = false;
    frmShot& window = openWindow();
    flash::FlashControl& control = window.SWF();
    m_clock.start();
    m_sincePump.start();
    m_memoryBefore = platform::residentBytes();
    window.setPath(movie);
    window.present(); // before the movie comes, which may take its time: there is a button to stop it
    pump();

    QString path = movie;
    if (path.right(4).toUpper() == ".EXE") {
        path = m_files.ExtractEXE(movie, media::ExtractTo::Cache);
        if (path.isEmpty()) path = kNoMovie;
    }
    load(path);

    QRandomGenerator random(seed ? *seed + m_made
                                 : static_cast<quint32>(QTime::currentTime().msecsSinceStartOfDay()));
    ++m_made;
    control.setQuality(m_host.hqShots() ? kHighQuality : kLowQuality);
    cDIBSection picture = bestPicture(random);
    if (!isGivenUp()) pump();
    if (!watch() && !SaveJPG(m_application, picture, thumbnail, kJpegQuality)) log(texts::kLogNoJpeg);
    // What went well stays to be seen until the next one comes.
    if (m_dropped) {
        control.LoadMovie(0, {});
        platform::returnFreeMemory();
    }
}

/// What cannot be loaded is shown as missing, and so comes out on its picture.
void Thumbnails::load(const QString& movie)
{
    flash::FlashControl& control = m_window->SWF();
    control.LoadMovie(0, {});
    m_window->showMissing(false);
    const bool marked = movie.contains('?');
    if (!control.LoadMovie(0, marked ? QUrl::fromLocalFile(movie).toString(QUrl::FullyEncoded) : movie))
        m_window->showMissing(true);
    while (control.isLoading() && !watch()) QThread::msleep(kPumpEveryMs);
}

cDIBSection Thumbnails::bestPicture(QRandomGenerator& random)
{
    flash::FlashControl& control = m_window->SWF();
    cDIBSection best;
    double bestShare = 2;
    for (int frame = 0; frame <= kMostFrames && bestShare > kBlankShare; ++frame) {
        // What was not loaded is pictured as it stands.
        const bool isLoaded = control.FrameNum() != -1;
        if (isLoaded && frame == kMostFrames) {
            // A movie that shows itself only when it is played from its beginning.
            control.Rewind();
            control.Play();
            for (int again = 0; again < kMostFrames; ++again) settle();
        } else if (isLoaded) {
            control.GotoFrame(thumbnailFrame(control.TotalFrames(), random.generateDouble()));
            settle();
        }
        // A movie that is given up is not even drawn: that may be what takes so long.
        if (watch()) return best;
        pump();
        cDIBSection picture;
        picture.CreateFromPicture(m_window->capture());
        const double share = shareOfCommonestColour(picture);
        if (share < bestShare) {
            best = std::move(picture);
            bestShare = share;
        }
        if (!isLoaded) break;
    }
    return best;
}

void Thumbnails::settle()
{
    flash::FlashControl& control = m_window->SWF();
    const double rate = control.frameRate();
    const double frameMs =
        rate > 0 ? std::clamp(1000 / rate, kShortestFrameMs, kLongestFrameMs) : kLongestFrameMs;
    for (int i = 0; i < kSettlingFrames && !watch(); ++i) control.advance(frameMs);
}

void Thumbnails::dropMovie(const char* why)
{
    if (m_dropped) return;
    m_dropped = true;
    log(QString(texts::kLogDropped) + why);
}

bool Thumbnails::watch()
{
    if (isGivenUp()) return true;
    if (m_sincePump.elapsed() < kPumpEveryMs) return false;
    pump();
    m_sincePump.start();
    if (m_host.hasEnded()) m_state.skip = true;
    if (m_clock.elapsed() > limits.timeMs) dropMovie("it takes too long");
    if (platform::residentBytes() - m_memoryBefore > limits.memoryBytes)
        dropMovie("it takes too much memory");
    return isGivenUp();
}

void Thumbnails::pump() { QCoreApplication::processEvents(); }

void Thumbnails::log(const QString& text)
{
    try {
        m_application.LogEvent(text);
    } catch (const base::Failure&) {
        // A journal that cannot be written does not stop the run.
    }
}

} // namespace browser
