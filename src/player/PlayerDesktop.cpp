#include "player/Player.h"

#include "browser/DialogStyle.h"
#include "browser/SaveJpg.h"
#include "browser/Thumbnails.h"
#include "core/Look.h"
#include "core/Version.h"
#include "flash/FlashControl.h"
#include "media/CacheName.h"
#include "player/Texts.h"

#include <QApplication>
#include <QFileInfo>
#include <QPainter>

#include <algorithm>
#include <cmath>

// The player as the desktop sees it: its controls for whatever plays, and the screen that stays lit.

namespace player
{
namespace
{

constexpr const char* kDesktopEntry = "zorvex";
constexpr double kMicroseconds = 1e6;
constexpr const char* kPlacesFile = "places.txt";

qint64 toUs(int frames, double rate)
{
    return rate > 0 ? static_cast<qint64>(static_cast<double>(frames) / rate * kMicroseconds) : 0;
}

} // namespace

void Player::joinDesktop() { m_session.start(core::kProductName, kDesktopEntry); }

void Player::tellDesktop()
{
    m_session.refresh();
    const bool watches = isFullScreen() && HasMovie() && control().Playing() && !hasEnded();
    m_awake.setAwake(watches, core::kProductName, texts::kAwakeReason);
}

platform::MediaState Player::mediaState() const
{
    platform::MediaState state;
    const flash::FlashControl& movie = control();
    state.volume = Volume() / 100.0;
    state.rate = movie.speed();
    state.loops = movie.Loop();
    state.isFullScreen = isFullScreen();
    state.hasMovie = HasMovie();
    if (!state.hasMovie) return state;
    using Playing = platform::MediaState::Playing;
    state.playing = movie.Playing()         ? Playing::Runs
                    : movie.FrameNum() <= 0 ? Playing::Stopped
                                            : Playing::Paused;
    state.path = mediaInfo().OriginalPath;
    state.title = QFileInfo(state.path).completeBaseName();
    const QString picture = m_application.CachePath + media::CacheName(state.path, ".jpg");
    if (core::fileExists(picture)) state.picture = picture;
    // A movie of one frame has no length: what happens in it does not come to an end.
    if (movie.TotalFrames() > 1) {
        state.lengthUs = toUs(movie.TotalFrames(), movie.frameRate());
        state.positionUs = toUs(std::max(0, movie.FrameNum()), movie.frameRate());
    }
    return state;
}

void Player::keepPicture()
{
    if (m_shownMovie.isEmpty() || !isVisible() || control().isBusy() || m_application.CachePath.isEmpty())
        return;
    const QString target = m_application.CachePath + media::CacheName(m_shownMovie, ".jpg");
    if (core::fileExists(target)) return;
    const QSize size(browser::kShotWidth, browser::kShotHeight);
    QImage picture(size, QImage::Format_RGB32);
    picture.fill(QColor(core::look::kInk));
    const QImage seen =
        control().grab().toImage().scaled(size, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    QPainter(&picture).drawImage((size.width() - seen.width()) / 2, (size.height() - seen.height()) / 2,
                                 seen);
    browser::cDIBSection pixels;
    pixels.CreateFromPicture(picture);
    // What shows next to nothing is left to the browser, which looks at several frames.
    if (browser::shareOfCommonestColour(pixels) > browser::kBlankShare) return;
    constexpr int kQuality = 75;
    browser::SaveJPG(m_application, pixels, target, kQuality);
}

void Player::keepPlace()
{
    if (m_shownMovie.isEmpty() || control().isBusy()) return;
    Resume(m_application.SettingsPath + kPlacesFile)
        .remember(m_shownMovie, control().FrameNum(), control().TotalFrames(), control().frameRate());
}

void Player::offerToResume()
{
    QAction& item = m_menus.item("mnuResume");
    item.setEnabled(false);
    if (m_shownMovie.isEmpty()) return;
    m_resumeFrame = Resume(m_application.SettingsPath + kPlacesFile).placeOf(m_shownMovie);
    if (m_resumeFrame && *m_resumeFrame >= control().TotalFrames()) m_resumeFrame.reset();
    item.setEnabled(m_resumeFrame.has_value());
    if (m_resumeFrame)
        ResumeOffer::show(*this, QString(texts::kResumeOffer).arg(GetTime(*m_resumeFrame)), item);
}

void Player::resume()
{
    if (!m_resumeFrame || !HasMovie()) return;
    ResumeOffer::take(*this);
    m_transport.goTo(*m_resumeFrame);
    m_transport.tellPlace();
    UpdateInfo();
}

void Player::sessionPlay()
{
    if (HasMovie()) PlayMedia();
    UpdateInfo();
}

void Player::sessionPause()
{
    if (HasMovie()) PauseMedia();
    UpdateInfo();
}

void Player::sessionPlayPause() { control().Playing() ? sessionPause() : sessionPlay(); }

void Player::sessionStop()
{
    if (HasMovie()) StopMedia();
    UpdateInfo();
}

void Player::sessionWalk(int step)
{
    sessionLater(texts::kPlaceOpen, [this, step] {
        if (HasMovie()) walkMovies(step);
    });
}

void Player::sessionOpen(const QString& path)
{
    sessionLater(texts::kPlaceOpen, [this, path] { openFiles({path}); });
}

void Player::sessionQuit()
{
    sessionLater(texts::kPlaceQuit, [this] { close(); });
}

void Player::sessionSeek(qint64 positionUs)
{
    if (!HasMovie()) return;
    m_transport.goTo(static_cast<int>(
        std::lround(static_cast<double>(positionUs) / kMicroseconds * control().frameRate())));
    UpdateInfo();
}

void Player::sessionSetVolume(double volume)
{
    if (!std::isfinite(volume)) return;
    if (Muted()) MuteSound(false);
    SetSound(static_cast<int>(std::lround(std::clamp(volume, 0.0, 1.0) * 100)), 0);
    UpdateInfo();
}

void Player::sessionSetLoop(bool loops)
{
    if (control().Loop() != loops) m_menus.item("mnuLoop").trigger();
    UpdateInfo();
}

/// The nearest of the speeds that the menu has.
void Player::sessionSetRate(double rate)
{
    const auto distance = [rate](int percent) { return std::abs(percent / 100.0 - rate); };
    m_transport.setSpeed(
        *std::min_element(std::begin(Transport::kSpeeds), std::end(Transport::kSpeeds),
                          [&](int one, int other) { return distance(one) < distance(other); }));
    UpdateInfo();
}

void Player::sessionRaise()
{
    if (isMinimized()) ZoomWindow(0);
    raise();
    activateWindow();
}

/// Later, so that who asks has his answer first.
void Player::sessionLater(core::Text place, std::function<void()> action)
{
    QTimer::singleShot(0, this, [this, place, action = std::move(action)] {
        if (!hasEnded() && QApplication::activeModalWidget() == nullptr) handled(place, action);
    });
}

} // namespace player
