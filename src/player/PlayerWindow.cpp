#include "player/Player.h"

#include "flash/FlashControl.h"
#include "ui/Menu.h"

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

void Player::ShowPopUp()
{
    if (isUnbidden()) return;
    m_menus.setChecked("mnuPopHQ", control().Quality() == 1);
    m_menus.setChecked("mnuPopLQ", control().Quality() == 0);
    m_menus.item("mnuPopPlay").setText(m_menus.item("mnuPlay").text());
    m_menus.popUp().popup(QCursor::pos());
}

void Player::ShowMenu()
{
    if (isUnbidden()) return;
    auto* menu = new ui::Menu(m_menus.menuSet(), {}, this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->addActions(m_menus.bar().actions());
    menu->popup(QCursor::pos());
}

void Player::ShowDialog(QDialog& dialog)
{
    dialog.setWindowFlag(Qt::WindowStaysOnTopHint, m_menus.isChecked("mnuTopMost"));
    dialog.exec();
}

} // namespace player
