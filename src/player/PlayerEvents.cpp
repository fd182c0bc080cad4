#include "player/Player.h"

#include "core/Files.h"
#include "flash/FlashControl.h"
#include "player/Shortcuts.h"
#include "player/Texts.h"

#include <QCloseEvent>
#include <QKeyEvent>
#include <QMimeData>
#include <QPainter>
#include <QUrl>

// What the window system sends to the player's window: files that are dropped, keys before they reach the
// movie, the wish to close.

namespace player
{
namespace
{

/// Never a move: the program that the file comes from would delete it.
void takeCopyOf(QDropEvent& event)
{
    if (!event.possibleActions().testFlag(Qt::CopyAction)) return event.ignore();
    event.setDropAction(Qt::CopyAction);
    event.accept();
}

} // namespace

void Player::closeEvent(QCloseEvent* event)
{
    handled(texts::kPlaceQuit, [this] { Form_QueryUnload(UnloadMode::ControlMenu); });
    event->accept();
}

void Player::dragEnterEvent(QDragEnterEvent* event)
{
    const QList<QUrl> urls = event->mimeData()->urls();
    if (!urls.isEmpty() && urls.first().isLocalFile()) takeCopyOf(*event);
}

void Player::dropEvent(QDropEvent* event)
{
    const QList<QUrl> urls = event->mimeData()->urls();
    if (urls.isEmpty() || !urls.first().isLocalFile() || !event->possibleActions().testFlag(Qt::CopyAction))
        return;
    takeCopyOf(*event);
    QStringList paths;
    for (const QUrl& url : urls)
        if (url.isLocalFile()) paths += core::localFile(url);
    activateWindow();
    // Later, so that the program that the file comes from is not kept waiting for the movie.
    QTimer::singleShot(0, this, [this, paths] { handled(texts::kPlaceOpen, [&] { openFiles(paths); }); });
}

void Player::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    m_skinWindow.paintGround(painter);
}

bool Player::isOfFormerMovie(const QEvent& event)
{
    switch (event.type()) {
    case QEvent::MouseButtonPress: m_isPressedSinceOpened = true; return false;
    case QEvent::MouseButtonDblClick:
    case QEvent::MouseButtonRelease: return !m_isPressedSinceOpened;
    default: return false;
    }
}

bool Player::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == m_client) {
        if (event->type() == QEvent::Resize) m_skinWindow.clientResized();
        return false;
    }
    if (event->type() == QEvent::ShortcutOverride &&
        belongsToMovie(*static_cast<QKeyEvent*>(event), control().listensToKeys())) {
        event->accept();
        return true;
    }
    // The second press of a double click that has opened this movie meant what was there before.
    if (watched == &control() && isOfFormerMovie(*event)) return true;
    // The movie has the keyboard, but for the key that leaves full screen.
    if (event->type() == QEvent::KeyPress && isFullScreen() &&
        static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape) {
        FullScreen(false);
        return true;
    }
    return QWidget::eventFilter(watched, event);
}

} // namespace player
