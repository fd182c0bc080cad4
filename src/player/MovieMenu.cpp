#include "player/MovieMenu.h"

#include "player/Texts.h"

#include <QApplication>

namespace player
{

namespace
{

using Menu = flash::FlashControl::Menu;

QString captionOf(const Menu::Item& item)
{
    switch (item.kind) {
    case Menu::Item::Kind::Own: return item.caption;
    case Menu::Item::Kind::Cut: return QString(texts::kTextCut);
    case Menu::Item::Kind::Copy: return QString(texts::kTextCopy);
    case Menu::Item::Kind::Paste: return QString(texts::kTextPaste);
    case Menu::Item::Kind::Clear: return QString(texts::kTextClear);
    case Menu::Item::Kind::SelectAll: return QString(texts::kTextSelectAll);
    case Menu::Item::Kind::OpenLink: return QString(texts::kLinkOpen);
    case Menu::Item::Kind::CopyLink: return QString(texts::kLinkCopy);
    }
    return {};
}

} // namespace

MovieMenu::MovieMenu(flash::FlashControl& control, QMenu& popUp) : m_control(control), m_popUp(popUp)
{
    connect(&popUp, &QMenu::aboutToHide, this, [this] {
        // What was chosen is told of after this.
        for (const QPointer<QAction>& action : std::exchange(m_shown, {}))
            if (action) action->deleteLater();
    });
    connect(&control, &flash::FlashControl::menuEnded, this, [this] {
        for (const QPointer<QAction>& action : m_shown)
            if (action) action->setVisible(false);
    });
}

bool MovieMenu::isUnderPointer(const QPoint& place) const
{
    const QWidget* found = QApplication::widgetAt(place);
    return m_control.isVisible() && found == &m_control;
}

void MovieMenu::fill(std::optional<QPoint> place)
{
    clear();
    if (place ? !isUnderPointer(*place) : !m_control.hasFocus()) return;
    std::optional<QPointF> at;
    if (place) at = m_control.mapFromGlobal(QPointF(*place));
    put(m_control.openMenu(at));
}

void MovieMenu::put(const Menu& menu)
{
    QAction* before = m_popUp.actions().value(0);
    const auto insert = [&](QAction* action) {
        m_popUp.insertAction(before, action);
        m_shown += action;
    };
    const auto separate = [&] {
        auto* line = new QAction(&m_popUp);
        line->setSeparator(true);
        insert(line);
    };
    for (int i = 0; i < menu.items.size(); ++i) {
        const Menu::Item& item = menu.items[i];
        if (item.separatorBefore && i > 0) separate();
        auto* action = new QAction(captionOf(item).replace('&', "&&"), &m_popUp);
        action->setEnabled(item.enabled);
        connect(action, &QAction::triggered, &m_control,
                [this, id = menu.id, i] { m_control.chooseMenuItem(id, i); });
        insert(action);
    }
    if (!menu.items.isEmpty()) separate();
}

void MovieMenu::clear()
{
    for (const QPointer<QAction>& action : std::exchange(m_shown, {})) delete action.data();
}

} // namespace player
