#include "ui/Menu.h"

#include "ui/Mnemonics.h"

#include <QApplication>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QStyleOption>
#include <QToolTip>

namespace ui
{
namespace
{

QHash<const QAction*, int> chosenFor(const QList<QAction*>& items)
{
    QStringList captions;
    for (const QAction* item : items)
        captions += item->isVisible() && !item->isSeparator() ? item->text() : QString();
    const QList<int> positions = chooseMnemonics(captions);
    QHash<const QAction*, int> chosen;
    for (int i = 0; i < items.size(); ++i) chosen.insert(items[i], positions[i]);
    return chosen;
}

void mark(QStyleOptionMenuItem& option, const QAction& item, int position)
{
    const auto tab = option.text.indexOf('\t');
    option.text = withMnemonic(item.text(), position) + (tab < 0 ? QString() : option.text.mid(tab));
}

} // namespace

Menu::Menu(const MenuSet& set, const QString& caption, QWidget* parent) : QMenu(caption, parent), m_set(set)
{
}

int Menu::mnemonic(const QAction& item) const
{
    if (m_mnemonics.isEmpty()) m_mnemonics = chosenFor(actions());
    return m_mnemonics.value(&item, -1);
}

void Menu::actionEvent(QActionEvent* event)
{
    m_mnemonics.clear();
    QMenu::actionEvent(event);
}

void Menu::initStyleOption(QStyleOptionMenuItem* option, const QAction* action) const
{
    QMenu::initStyleOption(option, action);
    if (action == nullptr || action->isSeparator()) return;
    // Asked anew each time: an item whose caption changes has another caption's icon, or none.
    option->icon = m_set.icon(action->text());
    mark(*option, *action, mnemonic(*action));
}

QAction* Menu::itemFor(QChar letter) const
{
    if (!letter.isLetterOrNumber()) return nullptr;
    for (QAction* item : actions()) {
        const int position = mnemonic(*item);
        if (position >= 0 && item->text()[position].toUpper() == letter.toUpper()) return item;
    }
    return nullptr;
}

bool Menu::event(QEvent* event)
{
    if (event->type() != QEvent::ToolTip) return QMenu::event(event);
    const auto* request = static_cast<QHelpEvent*>(event);
    QAction* item = actionAt(request->pos());
    // An action without a tooltip gives its caption for one.
    if (item == nullptr || item->toolTip().size() <= item->text().size()) {
        QToolTip::hideText();
        event->ignore();
    } else {
        QToolTip::showText(request->globalPos(), item->toolTip(), this, actionGeometry(item));
    }
    return true;
}

void Menu::keyPressEvent(QKeyEvent* event)
{
    const bool plain =
        (event->modifiers() & ~(Qt::ShiftModifier | Qt::AltModifier | Qt::KeypadModifier)) == 0;
    if (!plain || event->text().size() != 1) return QMenu::keyPressEvent(event);
    const QChar letter = event->text().at(0);
    QAction* item = itemFor(letter);
    if (item == nullptr) item = itemFor(otherLayout(letter));
    if (item == nullptr || !item->isEnabled()) return QMenu::keyPressEvent(event);
    event->accept();
    setActiveAction(item);
    QKeyEvent choose(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier);
    QMenu::keyPressEvent(&choose);
}

MenuBar::MenuBar(QWidget* parent) : QMenuBar(parent) { setNativeMenuBar(false); }

void MenuBar::addShortcuts()
{
    qDeleteAll(std::exchange(m_shortcuts, {}));
    m_mnemonics = chosenFor(actions());
    for (QAction* menu : actions()) {
        const int position = m_mnemonics.value(menu, -1);
        if (position < 0) continue;
        const QChar letter = menu->text()[position].toUpper();
        for (const QChar key : {letter, otherLayout(letter)}) {
            if (!key.isLetter()) continue;
            // The window's, because a bar that is hidden hears no key.
            auto* shortcut = new QShortcut(QKeySequence(QString("Alt+") + key), parentWidget());
            m_shortcuts += shortcut;
            const auto open = [this, menu] { openMenu(*menu); };
            connect(shortcut, &QShortcut::activated, this, open);
            // Both names of a key may be known to the system at once.
            connect(shortcut, &QShortcut::activatedAmbiguously, this, open);
        }
    }
}

void MenuBar::openMenu(QAction& menu)
{
    if (isVisible()) return setActiveAction(&menu);
    if (menu.menu() == nullptr || QApplication::activePopupWidget() != nullptr) return;
    menu.menu()->popup(parentWidget()->mapToGlobal(QPoint(0, 0)));
    menu.menu()->setActiveAction(menu.menu()->actions().value(0));
}

void MenuBar::initStyleOption(QStyleOptionMenuItem* option, const QAction* action) const
{
    QMenuBar::initStyleOption(option, action);
    mark(*option, *action, m_mnemonics.value(action, -1));
}

} // namespace ui
