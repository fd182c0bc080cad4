#include "player/Lifecycle.h"

#include "base/Failure.h"
#include "base/Files.h"
#include "core/StartUp.h"
#include "core/Version.h"
#include "flash/FlashControl.h"
#include "player/Advice.h"
#include "player/Cache.h"
#include "player/MovieScreen.h"
#include "player/PageAddresses.h"
#include "player/Placement.h"
#include "player/PlayerHost.h"
#include "player/PlayerSettings.h"
#include "player/Texts.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QScopeGuard>
#include <QStandardPaths>
#include <QTimer>
#include <QUrl>
#include <QWidget>
#include <QWindow>

#include <new>

namespace player
{
namespace
{

constexpr QSize kWelcomeSize{550, 440};
// A window that the system does not show, because it is minimised, is not waited for.
constexpr qint64 kWindowPatienceMs = 300;
constexpr int kStepMs = 10;

/// What the window does at the start when no file is named.
enum StartUp { kWelcome = 0, kBrowser = 1, kMaxRecent = 2 };

const char* wordOf(Lifecycle::UnloadMode mode)
{
    switch (mode) {
    case Lifecycle::UnloadMode::ControlMenu: return "Control Menu";
    case Lifecycle::UnloadMode::FormCode: return "Form Code";
    case Lifecycle::UnloadMode::Windows: return "Windows";
    case Lifecycle::UnloadMode::TaskManager: return "Task Manager";
    }
    return "";
}

} // namespace

void Lifecycle::Form_Load()
{
    m_isLoading = true;
    const auto end = qScopeGuard([this] { m_isLoading = false; });
    sweep();
    // A step that fails is reported, and the next one follows.
    const auto step = [this](auto&& action) { m_host.handled(texts::kPlaceFormLoad, action); };
    step([this] {
        m_application.LogEvent({});
        m_application.LogEvent(" :: Form Load");
        m_application.LogEvent("Flash " +
                               QString::number(m_movieScreen.control().FlashVersion(), 16).toUpper());
    });
    m_movieScreen.control().setStorageFolder(
        QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + "/zorvex/shared");
    // The browser's page shows pictures that lie in the cache.
    m_movieScreen.control().setSharedFolder(m_application.GadgetsPath, m_application.CachePath);
    step([this] { m_host.LoadOpts(); });
    step([this] { m_host.EnumSkins(); });
    step([this] { m_host.CreateSkin(); });
    step([this] { m_host.UpdateSkin(); });
    m_host.SetCaption(core::kProductName);
    // Outside a development session the menus are drawn with their pictures.
    if (m_application.RunningCompiled) m_host.AssignMenus();
    step([this] { openFirst(); });
    if (m_ended) return;
    showWindow();
    QTimer::singleShot(0, &m_window, [this] {
        if (!m_ended) m_host.joinDesktop();
    });
}

void Lifecycle::showWindow()
{
    if (std::exchange(m_isShown, true)) return;
    m_host.handled(texts::kPlaceFormLoad, [this] { m_host.SetVisual(); });
    m_placement.show();
}

void Lifecycle::showWindowFirst()
{
    if (m_isShown || !m_isLoading || m_ended) return;
    showWindow();
    QElapsedTimer waited;
    waited.start();
    const auto isThere = [this] { return m_window.windowHandle() && m_window.windowHandle()->isExposed(); };
    while (!isThere() && !m_ended && waited.elapsed() < kWindowPatienceMs)
        QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents, kStepMs);
    // Once more for what it shows.
    QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
}

void Lifecycle::sweep()
{
    int swept = 0;
    for (const QString& folder : {m_application.SettingsPath, m_application.CachePath})
        if (!folder.isEmpty()) swept += base::sweepTemporaryFiles(core::filePath(folder));
    if (swept > 0)
        m_host.logQuietly(QString("Temporary files of a run that was killed: %1 removed").arg(swept));
}

void Lifecycle::openFirst()
{
    m_hasArgument = !m_commandLine.isEmpty();
    if (m_hasArgument) return m_host.openFiles(core::argumentsOf(m_commandLine));
    switch (m_settings.options().startUp) {
    case kWelcome: return m_host.CloseMedia({});
    case kBrowser: return m_host.BrowseMedia();
    // An empty path shows the welcome page.
    case kMaxRecent: return m_host.LoadFlash(m_settings.recentPaths().value(0), {});
    default: return;
    }
}

void Lifecycle::Form_QueryUnload(UnloadMode mode) { Quit(QString("Query Unload by ") + wordOf(mode), true); }

void Lifecycle::Quit(const QString& reason, bool saveOptions)
{
    if (m_ended) return;
    // Whatever fails on the way out, the way leads out.
    const auto step = [](auto&& action) {
        try {
            action();
        } catch (const base::Failure&) {
        } catch (const std::bad_alloc&) {
        }
    };
    if (saveOptions) step([this] { m_host.SaveOpts(); });
    m_ended = true;
    m_host.setUpdateTimerEnabled(false);
    m_movieScreen.control().interrupt();
    m_movieScreen.control().setSuspended(true);
    step([this] { CleanCache(m_application.CachePath, m_settings.options().cacheMode); });
    step([&] {
        m_application.LogLast({});
        m_application.LogLast("<B>Quit: " + reason + "</B>");
    });
    m_window.hide();
    QCoreApplication::exit(0);
}

void Lifecycle::CloseMedia(const QString& message)
{
    m_application.LogEvent({});
    m_application.LogEvent(" :: Close Flash");
    m_host.setMediaInfoEnabled(false);
    const QString failed = QFileInfo(m_host.takeFailedFile()).fileName();
    const QString page = m_application.GadgetsPath.isEmpty()
                             ? QString()
                             : welcomePage(m_application, message, m_settings.options().noAnimation) +
                                   (message.isEmpty() ? moviesForPage(m_application, m_settings.recentPaths())
                                                      : failureForPage(failed, adviceOn(message)));
    bool shown = false;
    if (core::fileExists(filePartOf(page))) {
        m_host.LoadFlash(page, texts::kWelcomeCaption);
        // A page that cannot be shown leaves what was there.
        shown = m_movieScreen.showsControl() && m_movieScreen.control().Movie() == page;
    }
    if (!shown) {
        m_host.setUpdateTimerEnabled(false);
        // A window that was made for a small movie would cut the panel.
        if (!m_host.isFullScreen() && !m_window.isMaximized())
            m_window.resize(m_window.size().expandedTo(kWelcomeSize));
        const QString named = failed.isEmpty() ? message : QString(texts::kFailedFile).arg(failed, message);
        const QString advice = adviceOn(message);
        m_movieScreen.showWelcome(message.isEmpty()  ? QString()
                                  : advice.isEmpty() ? named
                                                     : named + '\n' + advice);
        m_host.refreshMovieCommands();
    }
    m_host.SetStatus(texts::kReady);
    m_host.SetCaption(core::kProductName);
}

} // namespace player
