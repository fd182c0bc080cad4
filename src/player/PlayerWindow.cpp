#include "player/Player.h"

#include "flash/FlashControl.h"
#include "platform/WindowSystem.h"
#include "player/KeysDialog.h"
#include "player/SizingFrame.h"
#include "player/Texts.h"
#include "player/WindowKeys.h"
#include "ui/Menu.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QCursor>
#include <QDialog>

// The player's window as scripts see and change it, and the menus that are shown in it.

namespace player
{

void Player::MoveObject(QObject* control)
{
    auto* widget = qobject_cast<QWidget*>(control);
    if (widget != nullptr && widget != this && isAncestorOf(widget)) m_drag.moveObject(*widget);
}

void Player::setWidth(double twips)
{
    resize(toPixels(twips) - (frameGeometry().width() - width()), height());
}

void Player::setHeight(double twips)
{
    resize(width(), toPixels(twips) - (frameGeometry().height() - height()));
}

void Player::setWindowStateNumber(int state)
{
    if (state == 1) return Minimize();
    ZoomWindow(state == 2 ? 1 : 0);
}

void Player::AssignMenus()
{
    m_menus.AssignMenus(m_application.AppPath + "media/menus/" + options().menus + '/');
}

void Player::ShowPopUp() { showPopUpAt(QCursor::pos(), Asked::ByPointer); }

void Player::showPopUpAt(QPoint place, Asked asked)
{
    if (isUnbidden()) return;
    m_movieMenu.fill(asked == Asked::ByPointer ? std::optional(place) : std::nullopt);
    m_menus.setChecked("mnuPopHQ", control().Quality() == 1);
    m_menus.setChecked("mnuPopLQ", control().Quality() == 0);
    m_menus.item("mnuPopPlay").setText(m_menus.item("mnuPlay").text());
    m_menus.popUp().popup(place);
}

void Player::ShowMenu() { showMenuAt(QCursor::pos()); }

void Player::showMenuAt(QPoint place)
{
    if (isUnbidden()) return;
    auto* menu = new ui::Menu(m_menus.menuSet(), {}, this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->addActions(m_menus.bar().actions());
    menu->popup(place);
}

QPoint Player::menuCorner() const
{
    constexpr int kIn = 8;
    return m_client->mapToGlobal(QPoint(kIn, kIn));
}

void Player::contextMenuEvent(QContextMenuEvent* event)
{
    event->reason() == QContextMenuEvent::Keyboard ? showPopUpAt(menuCorner(), Asked::ByKey) : ShowPopUp();
}

void Player::connectKeys()
{
    const auto chooseFirst = [](QMenu* menu) {
        if (menu != nullptr) menu->setActiveAction(menu->actions().value(0));
    };
    new WindowKeys(*this, control(),
                   {[this, chooseFirst] {
                        if (m_menus.bar().isVisible())
                            return m_menus.bar().setActiveAction(m_menus.bar().actions().first());
                        showMenuAt(menuCorner());
                        chooseFirst(qobject_cast<QMenu*>(QApplication::activePopupWidget()));
                    },
                    [this, chooseFirst] {
                        showPopUpAt(menuCorner(), Asked::ByKey);
                        chooseFirst(qobject_cast<QMenu*>(QApplication::activePopupWidget()));
                    },
                    [this](int direction) {
                        if (const auto percent = m_placement.zoomStep(direction))
                            tell(QString(texts::kZoomIs).arg(*percent));
                    }});
    connect(&m_skinWindow.sizingFrame(), &SizingFrame::pressed, this,
            [this](Qt::Edges edges) { m_drag.resizeWindow(*this, edges); });
    constexpr int kSettlesMs = 120;
    m_windowSettles.setSingleShot(true);
    m_windowSettles.setInterval(kSettlesMs);
    connect(&m_windowSettles, &QTimer::timeout, this, &Player::followWindow);
}

void Player::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::WindowStateChange) {
        m_placement.refreshZoomItems();
        m_windowSettles.start();
    }
    QWidget::changeEvent(event);
}

void Player::followWindow()
{
    if (hasEnded() || !isVisible() || isMinimized()) return;
    const bool fills = QWidget::isFullScreen();
    if (!platform::isAloneWithDisplay() && fills != isFullScreen()) {
        if (!fills) m_pageQueue.refuse("FULLSCREEN");
        m_placement.followFullScreen(fills);
    }
    UpdateInfo(); // what the skin shows of the window's state
}

void Player::showKeys()
{
    if (isUnbidden()) return;
    frmKeys keys(this, m_menus);
    ShowDialog(keys);
}

void Player::ShowDialog(QDialog& dialog)
{
    dialog.setWindowFlag(Qt::WindowStaysOnTopHint, m_menus.isChecked("mnuTopMost"));
    dialog.exec();
}

} // namespace player
