#include "player/Menus.h"

#include <QMenu>

#include <cassert>

namespace player
{
namespace
{

enum class Kind { Menu, PopUp, End, Command, Check, Separator };

struct ItemInfo {
    Kind kind;
    const char* name;
    const char* caption;
    const char* shortcut = nullptr;
};

// clang-format off
constexpr ItemInfo kItems[] = {
    {Kind::Menu,      "MenuFile",       "Файл"},
    {Kind::Command,   "mnuOpen",        "Открыть...", "Ctrl+O"},
    {Kind::Command,   "mnuSaveAs",      "Сохранить как...", "Ctrl+Shift+S"},
    {Kind::Command,   "mnuClose",       "Закрыть", "Ctrl+W"},
    {Kind::Separator, "mnuSep1",        ""},
    {Kind::Command,   "mnuInfo",        "Свойства"},
    {Kind::Separator, "mnuSep14",       ""},
    {Kind::Command,   "mnuMRU0",        "Список последних файлов"},
    {Kind::Command,   "mnuMRU1",        ""},
    {Kind::Command,   "mnuMRU2",        ""},
    {Kind::Command,   "mnuMRU3",        ""},
    {Kind::Command,   "mnuMRU4",        ""},
    {Kind::Separator, "mnuSep2",        ""},
    {Kind::Command,   "mnuExit",        "Выход", "Ctrl+Q"},
    {Kind::End,       "",               ""},

    {Kind::Menu,      "MenuView",       "Вид"},
    {Kind::Check,     "mnuFullScreen",  "Во весь экран", "F11"},
    {Kind::Check,     "mnuMenuBar",     "Строка меню"},
    {Kind::Check,     "mnuTopMost",     "Поверх всех окон"},
    {Kind::Separator, "mnuSept",        ""},
    {Kind::Menu,      "mnuQuality",     "Качество"},
    {Kind::Check,     "mnuQLvl0",       "Высокое"},
    {Kind::Check,     "mnuQLvl1",       "Среднее"},
    {Kind::Check,     "mnuQLvl2",       "Низкое"},
    {Kind::Separator, "mnuQLvl3",       ""},
    {Kind::Check,     "mnuQLvl4",       "Авто высокое"},
    {Kind::Check,     "mnuQLvl5",       "Авто низкое"},
    {Kind::End,       "",               ""},
    {Kind::Menu,      "mnuZoom",        "Увеличение"},
    {Kind::Command,   "mnuZoom50",      "50%"},
    {Kind::Command,   "mnuZoom100",     "100%"},
    {Kind::Command,   "mnuZoom200",     "200%"},
    {Kind::End,       "",               ""},
    {Kind::Menu,      "mnuScale",       "Масштабирование"},
    {Kind::Check,     "mnuSMode0",      "Показ всего"},
    {Kind::Check,     "mnuSMode1",      "Без границ"},
    {Kind::Check,     "mnuSMode2",      "Вписать в окно"},
    {Kind::End,       "",               ""},
    {Kind::Separator, "mnuSep4",        ""},
    {Kind::Menu,      "mnuOp",          "Видимость"},
    {Kind::Command,   "mnuOpFull",      "Полная"},
    {Kind::Command,   "mnuOpSign",      "Значительная"},
    {Kind::Command,   "mnuOpMed",       "Средняя"},
    {Kind::Command,   "mnuOpSlite",     "Небольшая"},
    {Kind::End,       "",               ""},
    {Kind::Separator, "mnuSep8",        ""},
    {Kind::Menu,      "mnuSkin",        "Шкурка"},
    {Kind::Command,   "mnuUpdSkin",     "Обновить шкурку"},
    {Kind::Separator, "mnuSep10",       ""},
    {Kind::Check,     "mnuSkinList0",   "[ список шкурок ]"},
    {Kind::End,       "",               ""},
    {Kind::End,       "",               ""},

    {Kind::Menu,      "MenuPlayback",   "Воспроизведение"},
    {Kind::Command,   "mnuPlay",        "Воспроизвести"},
    {Kind::Command,   "mnuStop",        "Остановить"},
    {Kind::Separator, "mnuSep3",        ""},
    {Kind::Command,   "mnuFFwd",        "Кадр вперед"},
    {Kind::Command,   "mnuRwd",         "Кадр назад"},
    {Kind::Separator, "mnuSep11",       ""},
    {Kind::Command,   "mnuVolumeUp",    "Громче"},
    {Kind::Command,   "mnuVolumeDown",  "Тише"},
    {Kind::Check,     "mnuMute",        "Выключить звук"},
    {Kind::Separator, "mnuSep7",        ""},
    {Kind::Check,     "mnuLoop",        "Повтор"},
    {Kind::End,       "",               ""},

    {Kind::Menu,      "MenuTools",      "Сервис"},
    {Kind::Command,   "mnuClearCache",  "Удалить эскизы"},
    {Kind::Command,   "mnuCompress",    "Снять сжатие"},
    {Kind::Separator, "mnuSep6",        ""},
    {Kind::Command,   "mnuOpt",         "Параметры..."},
    {Kind::End,       "",               ""},

    {Kind::Menu,      "MenuHelp",       "Справка"},
    {Kind::Command,   "mnuHelpMe",      "Вызов справки", "F1"},
    {Kind::End,       "",               ""},

    {Kind::PopUp,     "PopUp",          "POPUP"},
    {Kind::Command,   "mnuPopPlay",     "Воспроизвести"},
    // Named without the "u" on purpose; scripts know it so.
    {Kind::Command,   "mnPopStop",      "Остановить"},
    {Kind::Check,     "mnuPopMute",     "Выключить звук"},
    {Kind::Separator, "mnuSep17",       ""},
    {Kind::Check,     "mnuPopHQ",       "Высокое качество"},
    {Kind::Check,     "mnuPopLQ",       "Низкое качество"},
    {Kind::Separator, "mnuSep16",       ""},
    {Kind::Check,     "mnuPopFullScreen", "Во весь экран"},
    {Kind::Separator, "mnuSep13",       ""},
    {Kind::Command,   "mnuPopOpen",     "Открыть..."},
    {Kind::Command,   "mnuPopSaveAs",   "Сохранить как..."},
    {Kind::Command,   "mnuPopClose",    "Закрыть"},
    {Kind::Separator, "mnuSep15",       ""},
    {Kind::Command,   "mnuPopExit",     "Выход"},
    {Kind::End,       "",               ""},
};
// clang-format on

} // namespace

Menus::Menus(QWidget* window) : QObject(window), m_bar(new QMenuBar(window)), m_popUp(new QMenu(window))
{
    build();
    for (const char* name : {"mnuMRU1", "mnuMRU2", "mnuMRU3", "mnuMRU4"}) item(name).setVisible(false);
    item("mnuMRU0").setEnabled(false);
}

void Menus::build()
{
    QList<QMenu*> open; // innermost last
    for (const ItemInfo& info : kItems) {
        QAction* action = nullptr;
        switch (info.kind) {
        case Kind::Menu:
            open += open.isEmpty() ? m_bar->addMenu(info.caption) : open.last()->addMenu(info.caption);
            action = open.last()->menuAction();
            break;
        case Kind::PopUp:
            open += m_popUp;
            action = m_popUp->menuAction();
            break;
        case Kind::End: open.removeLast(); continue;
        case Kind::Separator: action = open.last()->addSeparator(); break;
        case Kind::Command:
        case Kind::Check:
            action = open.last()->addAction(info.caption);
            action->setCheckable(info.kind == Kind::Check);
            if (info.shortcut != nullptr) {
                action->setShortcut(QKeySequence(info.shortcut));
                // The menu bar may be hidden: the window itself keeps the shortcut.
                m_bar->parentWidget()->addAction(action);
            }
            break;
        }
        action->setObjectName(info.name);
        m_items[info.name] = action;
    }
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
    connect(&action, &QAction::triggered, this, [&action, command = std::move(command)](bool checked) {
        // Qt moves the mark before it calls; here the mark is the state, and only the command changes it.
        if (action.isCheckable()) action.setChecked(!checked);
        command();
    });
}

} // namespace player
