#include "player/Menus.h"

#include "core/Version.h"
#include "media/Texts.h"
#include "player/MenuTree.h"
#include "player/Shortcuts.h"
#include "player/Texts.h"

#include <cassert>

namespace player
{
namespace
{

/// Keys that go on while they are held down; for the others a second press is meant as one.
bool repeats(const ItemInfo& info)
{
    const QString name = info.name;
    return name == "mnuFFwd" || name == "mnuRwd" || name.startsWith("mnuVolume");
}

} // namespace

Menus::Menus(QWidget* window)
    : QObject(window), m_bar(new ui::MenuBar(window)), m_popUp(new ui::Menu(m_set, {}, window))
{
    build();
    for (const TwinInfo& twin : kTwins) item(twin.item).setShortcutVisibleInContextMenu(true);
    showTwinsKeys();
    m_bar->addShortcuts();
    item("mnuWeb").setText(core::kHomeAddress);
    item("mnuMRU0").setEnabled(false);
    item("mnuSep12").setVisible(false);
}

void Menus::build()
{
    QList<QMenu*> open; // innermost last
    for (const ItemInfo& info : kItems) {
        QAction* action = nullptr;
        switch (info.kind) {
        case ItemKind::Menu: {
            auto* menu = new ui::Menu(m_set, info.caption, m_bar);
            action = open.isEmpty() ? m_bar->addMenu(menu) : open.last()->addMenu(menu);
            open += menu;
            watch(*menu);
            break;
        }
        case ItemKind::PopUp:
            watch(*m_popUp);
            open += m_popUp;
            action = m_popUp->menuAction();
            action->setText(info.caption);
            break;
        case ItemKind::End: open.removeLast(); continue;
        case ItemKind::Separator:
            action = open.last()->addSeparator();
            action->setText(info.caption); // not drawn; what scripts read
            break;
        case ItemKind::Command:
        case ItemKind::Check:
            action = open.last()->addAction(info.caption);
            action->setCheckable(info.kind == ItemKind::Check);
            action->setVisible(false);
            action->setAutoRepeat(repeats(info));
            action->setShortcuts(shortcutsOf(info.keys, info.plainKeys, m_showsPlainKeys));
            // The menu bar may be hidden: the window itself keeps the shortcut.
            if (!action->shortcuts().isEmpty()) m_bar->parentWidget()->addAction(action);
            break;
        }
        action->setObjectName(info.name);
        m_items[info.name] = action;
    }
}

void Menus::showTwinsKeys()
{
    // They do nothing there: nobody looks for shortcuts in a menu that hangs on no window.
    for (const TwinInfo& twin : kTwins) item(twin.item).setShortcuts(item(twin.of).shortcuts());
}

void Menus::watch(QMenu& menu) { connect(&menu, &QMenu::aboutToShow, this, &Menus::refreshShortcuts); }

void Menus::refreshShortcuts()
{
    const bool plain = !m_movieHasKeyboard();
    if (plain == m_showsPlainKeys) return;
    m_showsPlainKeys = plain;
    for (const ItemInfo& info : kItems)
        if (*info.plainKeys != '\0')
            item(info.name).setShortcuts(shortcutsOf(info.keys, info.plainKeys, plain));
    showTwinsKeys();
}

QAction& Menus::item(const QString& name) const
{
    const auto found = m_items.find(name);
    assert(found != m_items.end() && "no such menu item");
    return *found->second;
}

QAction* Menus::find(const QString& name) const
{
    for (const auto& [known, action] : m_items)
        if (known.compare(name, Qt::CaseInsensitive) == 0) return action;
    return nullptr;
}

QAction& Menus::addCheck(const QString& menu, const QString& name)
{
    if (QAction* known = find(name)) return *known;
    QAction* action = item(menu).menu()->addAction(QString());
    action->setCheckable(true);
    action->setObjectName(name);
    m_items[name] = action;
    return *action;
}

void Menus::connectItem(const QString& name, std::function<void()> command)
{
    QAction& action = item(name);
    action.setVisible(!action.text().isEmpty());
    connect(&action, &QAction::triggered, this, [&action, command = std::move(command)](bool checked) {
        // Qt moves the mark before it calls; here the mark is the state, and only the command changes it.
        if (action.isCheckable()) action.setChecked(!checked);
        command();
    });
}

std::map<QString, core::Text> Menus::knownCaptions() const
{
    constexpr core::Text kChanging[] = {texts::kMenuPause,
                                        texts::kMenuPlay,
                                        texts::kMenuSectionFrom,
                                        texts::kMenuSectionTo,
                                        texts::kMenuSectionOff,
                                        media::texts::kMenuCompress,
                                        media::texts::kMenuDecompress};
    std::map<QString, core::Text> known;
    for (const ItemInfo& info : kItems) {
        if (*info.name == '\0') continue;
        const QString caption = item(info.name).text();
        const auto learn = [&](const core::Text& text) {
            if (!caption.isEmpty() && caption == QString(text)) known.insert_or_assign(info.name, text);
        };
        for (const core::Text& text : kChanging) learn(text);
        learn(info.caption);
    }
    return known;
}

void Menus::translate(const std::map<QString, core::Text>& captions)
{
    for (const auto& [name, text] : captions) item(name).setText(text);
    m_bar->addShortcuts();
}

void Menus::AssignMenus(const QString& folder)
{
    m_set.load(folder);
    for (const ItemInfo& info : kItems)
        if (*info.icon != '\0') m_set.addIcon(item(info.name).text(), info.icon);
}

} // namespace player
