#include "browser/Thumbnails.h"

#include "base/Failure.h"
#include "browser/SaveJpg.h"
#include "browser/Texts.h"
#include "core/Files.h"
#include "flash/FlashControl.h"
#include "platform/ProcessMemory.h"

#include <QApplication>
#include <QFileInfo>
#include <QScopedValueRollback>
#include <QThread>
#include <QTime>
#include <QTimer>
#include <QUrl>

#include <algorithm>
#include <cmath>
#include <utility>

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
constexpr int kMaxFrames = 4;
constexpr double kShortestFrameMs = 10, kLongestFrameMs = 100;
constexpr int kPumpEveryMs = 15;
/// Each takes a process with the engine's memory.
constexpr int kMaxParallel = 8;

/// Of SWF's Quality.
constexpr int kLowQuality = 0, kHighQuality = 1;

} // namespace

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

int thumbnailFrame(int totalFrames, double random)
{
    return static_cast<int>(std::nearbyint(totalFrames * 0.3 + random * totalFrames * 0.6));
}

Thumbnails::Thumbnails(core::Application& application, BrowserHost& host, BrowserState& state)
    : sideBySide(std::clamp(QThread::idealThreadCount(), 1, kMaxParallel)), m_application(application),
      m_host(host), m_state(state), m_files(application, m_quiet)
{
}

Thumbnails::~Thumbnails() { closeWindow(); }

void Thumbnails::MakeThumbnail(const QString& movie, const QString& thumbnail)
{
    make({{movie, thumbnail}}, false);
}

void Thumbnails::makeAll(const std::vector<Order>& orders)
{
    if (m_atWork) return;
    make(orders, true);
    closeWindow();
}

// ---- all of them ------------------------------------------------------------------------------------------

void Thumbnails::make(const std::vector<Order>& orders, bool tellsProgress)
{
    // Events are let through below; what they ask for meanwhile is not begun.
    if (m_atWork) return;
    const QScopedValueRollback atWork(m_atWork, true);
    m_state.skip = false;
    // A movie in this process cannot be left alone with its work.
    const auto most = static_cast<std::size_t>(flash::FlashControl::givesOwnProcesses() ? sideBySide : 1);
    std::size_t next = 0;
    m_sincePump.start();
    QTimer heartbeat; // the limits are looked at while no movie says anything
    heartbeat.start(kPumpEveryMs);
    while (!m_state.skip) {
        while (next < orders.size() && m_works.size() < most && !m_state.skip) {
            const Order& order = orders[next++];
            if (!isWanted(order)) continue;
            openWindow();
            const int place = freePlace();
            m_works.push_back(begin(order, static_cast<int>(next), place));
            show(tellsProgress, orders.size());
            // Before the movie comes, which may take its time: there is a button to stop it.
            m_window->present();
            QCoreApplication::processEvents();
            if (m_window.isNull()) m_state.skip = true; // its parent has gone
            if (!isGivenUp(*m_works.back())) load(place, order.movie);
        }
        if (m_works.empty()) break;
        bool isIdle = true;
        for (std::size_t i = 0; i < m_works.size();) {
            Work& work = *m_works[i];
            if (!isGivenUp(work) && controlOf(work.place).isBehind()) {
                ++i;
                continue;
            }
            isIdle = false;
            if (!isGivenUp(work) && !proceed(work)) {
                ++i;
                continue;
            }
            finish(work);
            m_works.erase(m_works.begin() + static_cast<std::ptrdiff_t>(i));
            show(tellsProgress, orders.size());
        }
        if (isIdle) QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        if (m_window.isNull()) m_state.skip = true;
        watch();
    }
    // Cancelled: what is at work ends with its place.
    for (const auto& work : m_works) finish(*work);
    m_works.clear();
}

bool Thumbnails::hasFailed(const QString& movie) const
{
    const auto failed = m_failed.constFind(movie);
    return failed != m_failed.cend() && *failed == core::fileChanged(movie);
}

bool Thumbnails::isWanted(const Order& order) const
{
    const QDateTime changed = core::fileChanged(order.movie);
    if (hasFailed(order.movie)) return false;
    if (!core::fileExists(order.thumbnail)) return true;
    // A file that claims to be of the future would be pictured again and again.
    return changed.isValid() && changed <= QDateTime::currentDateTime() &&
           core::fileChanged(order.thumbnail) < changed;
}

void Thumbnails::noteFailure(const QString& movie) { m_failed.insert(movie, core::fileChanged(movie)); }

int Thumbnails::freePlace() const
{
    int place = 0;
    while (workIn(place) != nullptr) ++place;
    return place;
}

Thumbnails::Work* Thumbnails::workIn(int place) const
{
    const auto found = std::find_if(m_works.begin(), m_works.end(),
                                    [place](const auto& work) { return work->place == place; });
    return found == m_works.end() ? nullptr : found->get();
}

/// The movie that has been at work for longest is the one that is seen, named, and skipped.
void Thumbnails::show(bool tellsProgress, std::size_t count)
{
    if (m_works.empty() || m_window.isNull()) return;
    const Work& oldest = *m_works.front();
    if (tellsProgress) m_window->setProgress(oldest.number, static_cast<int>(count));
    m_window->setPath(oldest.order.movie);
    m_window->showPlace(oldest.place);
}

void Thumbnails::watch()
{
    if (m_sincePump.elapsed() < kPumpEveryMs) return;
    QCoreApplication::processEvents();
    m_sincePump.start();
    if (m_host.hasEnded() || m_window.isNull()) m_state.skip = true;
    if (m_state.skip) return;
    for (const auto& work : m_works) {
        const auto process = controlOf(work->place).processId();
        const std::int64_t needed =
            process != 0 ? platform::residentBytes(process) : platform::residentBytes() - work->memoryBefore;
        if (work->clock.elapsed() > limits.timeMs) drop(*work, "it takes too long");
        if (needed > limits.memoryBytes) drop(*work, "it takes too much memory");
    }
}

// ---- the window -------------------------------------------------------------------------------------------

frmShot& Thumbnails::openWindow()
{
    if (m_window.isNull()) {
        QWidget* dialog = QApplication::activeModalWidget();
        m_window = new frmShot(dialog != nullptr ? dialog : m_host.dialogParent(),
                               m_application.AppPath + "media/shot_shadow.png");
        QObject::connect(m_window, &frmShot::cancelled, m_window, [this] { m_state.skip = true; });
        QObject::connect(m_window, &frmShot::movieSkipped, m_window, [this] {
            if (!m_works.empty()) m_works.front()->isDropped = true;
        });
        equip(0);
    }
    return *m_window;
}

flash::FlashControl& Thumbnails::controlOf(int place)
{
    while (m_window->places() <= place) {
        const int fresh = m_window->places();
        (void)m_window->SWF(fresh);
        equip(fresh);
    }
    return m_window->SWF(place);
}

void Thumbnails::equip(int place)
{
    flash::FlashControl& control = m_window->SWF(place);
    control.setWaits(false);
    control.setKeepsProcess(true);
    control.setScriptWatch([this, place] { return watchScripts(place); });
    control.setScriptTimeoutHandler([] { return true; });
    const auto drops = [this, place](const char* why) {
        return [this, place, why] {
            if (Work* work = workIn(place)) drop(*work, why);
        };
    };
    QObject::connect(&control, &flash::FlashControl::crashed, m_window, drops("its process has ended"));
    QObject::connect(&control, &flash::FlashControl::ranOutOfMemory, m_window,
                     drops("it takes too much memory"));
    QObject::connect(&control, &flash::FlashControl::refused, m_window, [this, place] {
        if (workIn(place) != nullptr) m_window->showMissing(place, true);
    });
}

bool Thumbnails::watchScripts(int place)
{
    watch();
    const Work* work = workIn(place);
    return work == nullptr || isGivenUp(*work);
}

void Thumbnails::closeWindow()
{
    if (!m_atWork) delete m_window.data();
}

// ---- one movie --------------------------------------------------------------------------------------------

std::unique_ptr<Thumbnails::Work> Thumbnails::begin(const Order& order, int number, int place)
{
    auto work = std::make_unique<Work>(order, number, place);
    work->random.seed(seed ? *seed + m_made
                           : static_cast<quint32>(QTime::currentTime().msecsSinceStartOfDay()) + m_made);
    ++m_made;
    work->clock.start();
    work->memoryBefore = platform::residentBytes();
    controlOf(place).setQuality(m_host.hqShots() ? kHighQuality : kLowQuality);
    return work;
}

/// What cannot be loaded is shown as missing, and so comes out on its picture.
void Thumbnails::load(int place, const QString& movie)
{
    flash::FlashControl& control = controlOf(place);
    // Beside its own process there is nothing to be kept of the one before.
    if (!control.hasOwnProcess()) control.LoadMovie(0, {});
    m_window->showMissing(place, false);
    QString path = movie;
    if (path.right(4).toUpper() == ".EXE") {
        path = m_files.ExtractEXE(movie, media::ExtractTo::Cache);
        if (path.isEmpty()) path = kNoMovie;
    }
    const bool marked = path.contains('?');
    if (control.LoadMovie(0, marked ? QUrl::fromLocalFile(path).toString(QUrl::FullyEncoded) : path)) return;
    control.LoadMovie(0, {}); // nor is that one pictured again
    m_window->showMissing(place, true);
}

bool Thumbnails::proceed(Work& work)
{
    // What was not loaded is pictured as it stands.
    const bool isLoaded = controlOf(work.place).FrameNum() != -1;
    if (work.looks > 0 || !isLoaded) judge(work);
    if (!isLoaded || work.looks > kMaxFrames || work.bestShare <= kBlankShare) return true;
    chooseFrame(work);
    ++work.looks;
    return false;
}

/// A random frame, and others where that shows next to nothing.
void Thumbnails::chooseFrame(Work& work)
{
    flash::FlashControl& control = controlOf(work.place);
    if (work.looks < kMaxFrames) {
        control.GotoFrame(thumbnailFrame(control.TotalFrames(), work.random.generateDouble()));
        settle(work);
        return;
    }
    // A movie that shows itself only when it is played from its beginning.
    control.Rewind();
    control.Play();
    for (int again = 0; again < kMaxFrames; ++again) settle(work);
}

void Thumbnails::settle(Work& work)
{
    flash::FlashControl& control = controlOf(work.place);
    const double rate = control.frameRate();
    const double frameMs =
        rate > 0 ? std::clamp(1000 / rate, kShortestFrameMs, kLongestFrameMs) : kLongestFrameMs;
    for (int i = 0; i < kSettlingFrames && !isGivenUp(work); ++i) {
        control.advance(frameMs);
        watch();
    }
}

void Thumbnails::judge(Work& work)
{
    // A movie that is given up is not even drawn: that may be what takes so long.
    if (isGivenUp(work)) return;
    cDIBSection picture;
    picture.CreateFromPicture(m_window->capture(work.place));
    const double share = shareOfCommonestColour(picture);
    if (share >= work.bestShare) return;
    work.best = std::move(picture);
    work.bestShare = share;
}

void Thumbnails::finish(Work& work)
{
    if (!isGivenUp(work)) watch();
    if (!isGivenUp(work) && !SaveJPG(m_application, work.best, work.order.thumbnail, kJpegQuality))
        log(texts::kLogNoJpeg);
    // What went well stays to be seen until the next one comes.
    if (isGivenUp(work) && !m_window.isNull()) {
        controlOf(work.place).LoadMovie(0, {});
        platform::returnFreeMemory();
    }
}

void Thumbnails::drop(Work& work, const char* why)
{
    if (std::exchange(work.isDropped, true)) return;
    noteFailure(work.order.movie);
    log(QString(texts::kLogDropped) + why);
}

void Thumbnails::log(const QString& text)
{
    try {
        m_application.LogEvent(text);
    } catch (const base::Failure&) {
        // A journal that cannot be written does not stop the run.
    }
}

} // namespace browser
