#include "player/Player.h"

#include "core/Version.h"
#include "flash/FlashControl.h"
#include "platform/Shell.h"
#include "player/PageAddresses.h"
#include "player/Texts.h"
#include "ui/AboutScreen.h"
#include "ui/HelpWindow.h"
#include "ui/Texts.h"

#include <QApplication>
#include <QMessageBox>
#include <QScopedValueRollback>
#include <QUrl>
#include <QWindow>

// What the player does outside of the movie, for the user, for pages and for movies: each may only as much as
// it was asked for.

namespace player
{
namespace
{

// A window that was started minimised is not waited for.
constexpr qint64 kShowPatienceMs = 1000;

} // namespace

void Player::openHelp()
{
    if (m_help == nullptr) {
        m_help = new ui::HelpWindow(this, m_application.AppPath + "media/help/");
        m_help->setAttribute(Qt::WA_DeleteOnClose);
        if (!m_help->showPage("help")) {
            delete m_help;
            return openKnown(QUrl::fromLocalFile(m_application.AppPath + "Readme.txt"));
        }
    }
    m_help->show();
    m_help->raise();
    m_help->activateWindow();
}

void Player::WebUpdate()
{
    if (*core::kUpdateAddress != '\0' && !isUnbidden()) openKnown(QUrl(core::kUpdateAddress));
}

void Player::BrowseMedia()
{
    if (!isUnbidden()) m_browser.BrowseMedia();
}

void Player::Properties()
{
    if (!isUnbidden()) m_browser.Properties(mediaInfo());
}

bool Player::isUnbidden()
{
    if (!m_skinWindow.skin().bridge().runsByItself()) return false;
    logQuietly("Not done for the skin: the user has not asked for it");
    return true;
}

void Player::openKnown(const QUrl& url)
{
    // A skin's loop would fill the screen with browsers, however it was begun.
    constexpr qint64 kAtMostEveryMs = 1000;
    if (m_sinceOpened.isValid() && m_sinceOpened.elapsed() < kAtMostEveryMs) return;
    m_sinceOpened.start();
    if (platform::openWithSystem(url)) return;
    QMessageBox::warning(this, core::kProductName,
                         QString(texts::kNothingOpens).arg(url.toDisplayString(QUrl::PreferLocalFile)));
}

void Player::mnuWeb_Click() { openKnown(QUrl(core::kHomeAddress)); }

void Player::About()
{
    if (isUnbidden()) return;
    m_application.LogEvent({});
    m_application.LogEvent(" :: About");
    ShowWaitScreen();
    ui::frmAbout about(
        this, aboutPage(m_application, ui::texts::kGreetings, ui::texts::kThanks, options().noAnimation),
        control().Quality());
    ShowDialog(about);
    HideWaitScreen();
}

Outside::Sender Player::senderOfSignal() const
{
    const flash::FlashControl& movie = control();
    Outside::Sender sender{filePartOf(movie.senderMovie()), movie.senderIsPage(), movie.senderHasRead(),
                           movie.senderAct()};
    // A projector's movie lies in the cache: the user knows the projector.
    if (sender.path == mediaInfo().MoviePath) sender.path = mediaInfo().OriginalPath;
    return sender;
}

bool Player::isOccupied() const
{
    return QApplication::activeModalWidget() != nullptr || m_browser.isBusy() || control().isBusy();
}

bool Player::isOnScreen() const
{
    // A movie's first frame comes before the window, and the window manager chooses the window's place later
    // still: a question waits for the window that it is to lie over.
    const bool isShown = windowHandle() != nullptr && windowHandle()->isExposed();
    return isShown || m_sinceMade.elapsed() >= kShowPatienceMs;
}

PageOutcome Player::carryOut(const PageRequest& request)
{
    const QScopedValueRollback carried(m_carriedOut, &request);
    PageOutcome outcome = PageOutcome::Done;
    const auto procedure = [&] {
        outcome = request.isAddress ? openOutside(request.argument)
                                    : runPageCommand(*this, request.command, request.argument);
    };
    if (request.sender.isOwnPage) {
        handled(texts::kPlacePage, procedure);
        return outcome;
    }
    try {
        procedure();
    } catch (const base::Failure& failure) {
        // No error screen that a movie could call up with every frame.
        noteOfMovie("Failed for the movie: " + core::HtmlEscape(request.command) + ": " +
                    QString::fromStdString(failure.description()));
        return PageOutcome::Declined;
    }
    return outcome;
}

void Player::LogEvent(const QString& text)
{
    if (m_carriedOut != nullptr && !m_carriedOut->sender.isOwnPage)
        m_movieJournal.write(text);
    else
        m_application.LogEvent(text);
}

bool Player::isPageAddress(const QString& path) const
{
    return liesWithin(filePartOf(path), m_application.GadgetsPath);
}

PageOutcome Player::openOutside(const QString& target)
{
    if (m_carriedOut == nullptr) return PageOutcome::Done;
    return m_outside.isDeclined(target, m_carriedOut->sender) ? PageOutcome::Declined : PageOutcome::Done;
}

PageOutcome Player::helpWanted()
{
    if (!isOwnPage()) return openOutside(m_application.AppPath + "Readme.txt");
    openHelp();
    return PageOutcome::Done;
}

PageOutcome Player::updateWanted()
{
    if (*core::kUpdateAddress == '\0') return PageOutcome::Done;
    if (!isOwnPage()) return openOutside(core::kUpdateAddress);
    WebUpdate();
    return PageOutcome::Done;
}

} // namespace player
