#pragma once

#include "core/Text.h"

// The tree of all menus.

namespace player
{

enum class ItemKind { Menu, PopUp, End, Command, Check, Separator };

/// A line of the menus' table.
struct ItemInfo {
    ItemKind kind;
    const char* name;
    core::Text caption;
    /// Keys that are always the program's, separated by blanks: with Ctrl or Alt, function and media keys.
    const char* keys = "";
    /// Keys that are the movie's while it listens to the keyboard, by themselves then and with Ctrl always;
    /// those behind a "!" without Ctrl.
    const char* plainKeys = "";
    const char* icon = ""; ///< file of the menu set
};

/// Items of the pop-up menu and those of the menu bar that do the same: the pop-up shows their keys.
struct TwinInfo {
    const char* item;
    const char* of;
};

// clang-format off
inline constexpr ItemInfo kItems[] = {
    {ItemKind::Menu,      "MenuFile",       QT_TRANSLATE_NOOP("zorvex", "Файл")},
    {ItemKind::Command,   "mnuOpen",        QT_TRANSLATE_NOOP("zorvex", "Открыть..."),       "Ctrl+O", "", "open.png"},
    {ItemKind::Command,   "mnuSaveAs",      QT_TRANSLATE_NOOP("zorvex", "Сохранить как..."), "Ctrl+S Ctrl+Shift+S", "", "save.png"},
    {ItemKind::Command,   "mnuSaveVideo",   QT_TRANSLATE_NOOP("zorvex", "Сохранить как видео..."), "Ctrl+E"},
    {ItemKind::Command,   "mnuSaveFrame",   QT_TRANSLATE_NOOP("zorvex", "Сохранить кадр..."), "Ctrl+Shift+E"},
    {ItemKind::Command,   "mnuCopyFrame",   QT_TRANSLATE_NOOP("zorvex", "Копировать кадр"),  "Ctrl+C"},
    {ItemKind::Command,   "mnuClose",       QT_TRANSLATE_NOOP("zorvex", "Закрыть"),          "Ctrl+W"},
    {ItemKind::Separator, "mnuSep1",        "-"},
    {ItemKind::Command,   "mnuInfo",        QT_TRANSLATE_NOOP("zorvex", "Свойства"),         "Ctrl+I", "", "info.png"},
    {ItemKind::Separator, "mnuSep14",       "-"},
    {ItemKind::Command,   "mnuMRU0",        QT_TRANSLATE_NOOP("zorvex", "Список последних файлов")},
    {ItemKind::Command,   "mnuMRU1",        ""},
    {ItemKind::Command,   "mnuMRU2",        ""},
    {ItemKind::Command,   "mnuMRU3",        ""},
    {ItemKind::Command,   "mnuMRU4",        ""},
    {ItemKind::Separator, "mnuSep2",        "-"},
    {ItemKind::Command,   "mnuExit",        QT_TRANSLATE_NOOP("zorvex", "Выход"),            "Ctrl+Q", "", "exit.png"},
    {ItemKind::End,       "",               ""},

    {ItemKind::Menu,      "MenuView",       QT_TRANSLATE_NOOP("zorvex", "Вид")},
    {ItemKind::Check,     "mnuFullScreen",  QT_TRANSLATE_NOOP("zorvex", "Во весь экран"),    "F11 Alt+Return", "F"},
    {ItemKind::Check,     "mnuMenuBar",     QT_TRANSLATE_NOOP("zorvex", "Строка меню"),      "Ctrl+Shift+M"},
    {ItemKind::Check,     "mnuTopMost",     QT_TRANSLATE_NOOP("zorvex", "Поверх всех окон"), "Ctrl+T"},
    {ItemKind::Separator, "mnuSept",        "-"},
    {ItemKind::Menu,      "mnuQuality",     QT_TRANSLATE_NOOP("zorvex", "Качество")},
    {ItemKind::Check,     "mnuQLvl0",       QT_TRANSLATE_NOOP("zorvex", "Высокое")},
    {ItemKind::Check,     "mnuQLvl1",       QT_TRANSLATE_NOOP("zorvex", "Среднее")},
    {ItemKind::Check,     "mnuQLvl2",       QT_TRANSLATE_NOOP("zorvex", "Низкое")},
    {ItemKind::Separator, "mnuQLvl3",       "-"},
    {ItemKind::Check,     "mnuQLvl4",       QT_TRANSLATE_NOOP("zorvex", "Авто высокое")},
    {ItemKind::Check,     "mnuQLvl5",       QT_TRANSLATE_NOOP("zorvex", "Авто низкое")},
    {ItemKind::End,       "",               ""},
    {ItemKind::Menu,      "mnuZoom",        QT_TRANSLATE_NOOP("zorvex", "Увеличение")},
    {ItemKind::Command,   "mnuZoom50",      "50%",              "Ctrl+1"},
    {ItemKind::Command,   "mnuZoom100",     "100%",             "Ctrl+2"},
    {ItemKind::Command,   "mnuZoom200",     "200%",             "Ctrl+3"},
    {ItemKind::End,       "",               ""},
    {ItemKind::Menu,      "mnuScale",       QT_TRANSLATE_NOOP("zorvex", "Масштабирование")},
    {ItemKind::Check,     "mnuSMode0",      QT_TRANSLATE_NOOP("zorvex", "Показ всего")},
    {ItemKind::Check,     "mnuSMode1",      QT_TRANSLATE_NOOP("zorvex", "Без границ")},
    {ItemKind::Check,     "mnuSMode2",      QT_TRANSLATE_NOOP("zorvex", "Вписать в окно")},
    {ItemKind::End,       "",               ""},
    {ItemKind::Separator, "mnuSep4",        "-"},
    {ItemKind::Menu,      "mnuOp",          QT_TRANSLATE_NOOP("zorvex", "Видимость")},
    {ItemKind::Command,   "mnuOpFull",      QT_TRANSLATE_NOOP("zorvex", "Полная")},
    {ItemKind::Command,   "mnuOpSign",      QT_TRANSLATE_NOOP("zorvex", "Значительная")},
    {ItemKind::Command,   "mnuOpMed",       QT_TRANSLATE_NOOP("zorvex", "Средняя")},
    {ItemKind::Command,   "mnuOpSlite",     QT_TRANSLATE_NOOP("zorvex", "Небольшая")},
    {ItemKind::End,       "",               ""},
    {ItemKind::Separator, "mnuSep8",        "-"},
    {ItemKind::Menu,      "mnuSkin",        QT_TRANSLATE_NOOP("zorvex", "Шкурка"),           "", "", "skin.png"},
    {ItemKind::Command,   "mnuUpdSkin",     QT_TRANSLATE_NOOP("zorvex", "Обновить шкурку"),  "F5"},
    {ItemKind::Separator, "mnuSep10",       "-"},
    {ItemKind::Check,     "mnuSkinList0",   QT_TRANSLATE_NOOP("zorvex", "[ список шкурок ]")},
    {ItemKind::End,       "",               ""},
    {ItemKind::End,       "",               ""},

    {ItemKind::Menu,      "MenuPlayback",   QT_TRANSLATE_NOOP("zorvex", "Воспроизведение")},
    {ItemKind::Command,   "mnuPlay",        QT_TRANSLATE_NOOP("zorvex", "Воспроизвести"),    "MediaPlay MediaPause MediaTogglePlayPause", "Space",
                      "play.png"},
    {ItemKind::Command,   "mnuStop",        QT_TRANSLATE_NOOP("zorvex", "Остановить"),       "MediaStop", "Home"},
    {ItemKind::Separator, "mnuSep3",        "-"},
    {ItemKind::Command,   "mnuFFwd",        QT_TRANSLATE_NOOP("zorvex", "Кадр вперед"),      "", "Right ."},
    {ItemKind::Command,   "mnuRwd",         QT_TRANSLATE_NOOP("zorvex", "Кадр назад"),       "", "Left ,"},
    {ItemKind::Menu,      "mnuGoTo",        QT_TRANSLATE_NOOP("zorvex", "Перейти")},
    {ItemKind::Command,   "mnuGoTo0",       QT_TRANSLATE_NOOP("zorvex", "В начало"),         "", "!0"},
    {ItemKind::Command,   "mnuGoTo1",       "10%",              "", "!1"},
    {ItemKind::Command,   "mnuGoTo2",       "20%",              "", "!2"},
    {ItemKind::Command,   "mnuGoTo3",       "30%",              "", "!3"},
    {ItemKind::Command,   "mnuGoTo4",       "40%",              "", "!4"},
    {ItemKind::Command,   "mnuGoTo5",       "50%",              "", "!5"},
    {ItemKind::Command,   "mnuGoTo6",       "60%",              "", "!6"},
    {ItemKind::Command,   "mnuGoTo7",       "70%",              "", "!7"},
    {ItemKind::Command,   "mnuGoTo8",       "80%",              "", "!8"},
    {ItemKind::Command,   "mnuGoTo9",       "90%",              "", "!9"},
    {ItemKind::End,       "",               ""},
    {ItemKind::Command,   "mnuResume",      QT_TRANSLATE_NOOP("zorvex", "Продолжить с места"), "", "R"},
    {ItemKind::Menu,      "mnuSpeed",       QT_TRANSLATE_NOOP("zorvex", "Скорость")},
    {ItemKind::Command,   "mnuSlower",      QT_TRANSLATE_NOOP("zorvex", "Медленнее"),        "", "["},
    {ItemKind::Command,   "mnuFaster",      QT_TRANSLATE_NOOP("zorvex", "Быстрее"),          "", "]"},
    {ItemKind::Separator, "mnuSep20",       "-"},
    {ItemKind::Check,     "mnuSpeed25",     "25%"},
    {ItemKind::Check,     "mnuSpeed50",     "50%"},
    {ItemKind::Check,     "mnuSpeed75",     "75%"},
    {ItemKind::Check,     "mnuSpeed100",    "100%",             "", "Backspace"},
    {ItemKind::Check,     "mnuSpeed125",    "125%"},
    {ItemKind::Check,     "mnuSpeed150",    "150%"},
    {ItemKind::Check,     "mnuSpeed200",    "200%"},
    {ItemKind::Check,     "mnuSpeed400",    "400%"},
    {ItemKind::End,       "",               ""},
    {ItemKind::Separator, "mnuSep19",       "-"},
    {ItemKind::Command,   "mnuPrevious",    QT_TRANSLATE_NOOP("zorvex", "Предыдущий ролик"), "MediaPrevious", "PgUp"},
    {ItemKind::Command,   "mnuNext",        QT_TRANSLATE_NOOP("zorvex", "Следующий ролик"),  "MediaNext", "PgDown"},
    {ItemKind::Separator, "mnuSep11",       "-"},
    {ItemKind::Command,   "mnuVolumeUp",    QT_TRANSLATE_NOOP("zorvex", "Громче"),           "", "Up + ="},
    {ItemKind::Command,   "mnuVolumeDown",  QT_TRANSLATE_NOOP("zorvex", "Тише"),             "", "Down -"},
    {ItemKind::Check,     "mnuMute",        QT_TRANSLATE_NOOP("zorvex", "Выключить звук"),   "", "M", "sound.png"},
    {ItemKind::Separator, "mnuSep7",        "-"},
    {ItemKind::Check,     "mnuLoop",        QT_TRANSLATE_NOOP("zorvex", "Повтор"),           "", "L"},
    {ItemKind::Check,     "mnuRepeatAB",    QT_TRANSLATE_NOOP("zorvex", "Повтор отрезка: начало здесь"), "", "A"},
    {ItemKind::End,       "",               ""},

    {ItemKind::Menu,      "MenuTools",      QT_TRANSLATE_NOOP("zorvex", "Сервис")},
    {ItemKind::Command,   "mnuBrowse",      QT_TRANSLATE_NOOP("zorvex", "Обзор медиа"),      "Ctrl+B", "", "search.png"},
    {ItemKind::Command,   "mnuClearCache",  QT_TRANSLATE_NOOP("zorvex", "Удалить эскизы"),   "", "", "cleanup.png"},
    {ItemKind::Command,   "mnuCompress",    QT_TRANSLATE_NOOP("zorvex", "Снять сжатие")},
    {ItemKind::Check,     "mnuConsole",     QT_TRANSLATE_NOOP("zorvex", "Консоль"),          "F12", "", "console.png"},
    {ItemKind::Separator, "mnuSep6",        "-"},
    {ItemKind::Command,   "mnuOpt",         QT_TRANSLATE_NOOP("zorvex", "Параметры..."),     "Ctrl+P", "", "configure.png"},
    {ItemKind::End,       "",               ""},

    {ItemKind::Menu,      "MenuHelp",       QT_TRANSLATE_NOOP("zorvex", "Справка")},
    {ItemKind::Command,   "mnuHelpMe",      QT_TRANSLATE_NOOP("zorvex", "Вызов справки"),    "F1", "", "help.png"},
    {ItemKind::Command,   "mnuKeys",        QT_TRANSLATE_NOOP("zorvex", "Сочетания клавиш"), "Ctrl+F1"},
    {ItemKind::Separator, "mnuSep5",        "-"},
    {ItemKind::Command,   "mnuUpd",         QT_TRANSLATE_NOOP("zorvex", "Проверка обновлений")},
    {ItemKind::Command,   "mnuWeb",         "",                 "", "", "web.png"},
    {ItemKind::Command,   "mnuAbout",       QT_TRANSLATE_NOOP("zorvex", "О программе"),      "", "", "about.png"},
    {ItemKind::End,       "",               ""},

    {ItemKind::PopUp,     "PopUp",          "POPUP"},
    {ItemKind::Command,   "mnuPopPlay",     QT_TRANSLATE_NOOP("zorvex", "Воспроизвести")},
    // Named without the "u" on purpose; scripts know it so.
    {ItemKind::Command,   "mnPopStop",      QT_TRANSLATE_NOOP("zorvex", "Остановить")},
    {ItemKind::Check,     "mnuPopMute",     QT_TRANSLATE_NOOP("zorvex", "Выключить звук")},
    {ItemKind::Separator, "mnuSep17",       "-"},
    {ItemKind::Check,     "mnuPopHQ",       QT_TRANSLATE_NOOP("zorvex", "Высокое качество")},
    {ItemKind::Check,     "mnuPopLQ",       QT_TRANSLATE_NOOP("zorvex", "Низкое качество")},
    // Kept out of sight; scripts know it.
    {ItemKind::Separator, "mnuSep12",       "-"},
    {ItemKind::Separator, "mnuSep16",       "-"},
    {ItemKind::Check,     "mnuPopFullScreen", QT_TRANSLATE_NOOP("zorvex", "Во весь экран")},
    {ItemKind::Command,   "mnuPopBrowse",   QT_TRANSLATE_NOOP("zorvex", "Обзор медиа")},
    {ItemKind::Command,   "mnuPopInfo",     QT_TRANSLATE_NOOP("zorvex", "Свойства")},
    {ItemKind::Separator, "mnuSep13",       "-"},
    {ItemKind::Command,   "mnuPopOpen",     QT_TRANSLATE_NOOP("zorvex", "Открыть...")},
    {ItemKind::Command,   "mnuPopSaveAs",   QT_TRANSLATE_NOOP("zorvex", "Сохранить как...")},
    {ItemKind::Command,   "mnuPopClose",    QT_TRANSLATE_NOOP("zorvex", "Закрыть")},
    {ItemKind::Separator, "mnuSep18",       "-"},
    {ItemKind::Command,   "mnuPopAbout",    QT_TRANSLATE_NOOP("zorvex", "О программе")},
    {ItemKind::Separator, "mnuSep15",       "-"},
    {ItemKind::Command,   "mnuPopExit",     QT_TRANSLATE_NOOP("zorvex", "Выход")},
    {ItemKind::End,       "",               ""},
};
inline constexpr TwinInfo kTwins[] = {
    {"mnuPopPlay", "mnuPlay"},   {"mnPopStop", "mnuStop"},      {"mnuPopMute", "mnuMute"},
    {"mnuPopFullScreen", "mnuFullScreen"}, {"mnuPopBrowse", "mnuBrowse"}, {"mnuPopInfo", "mnuInfo"},
    {"mnuPopOpen", "mnuOpen"},   {"mnuPopSaveAs", "mnuSaveAs"}, {"mnuPopClose", "mnuClose"},
    {"mnuPopAbout", "mnuAbout"}, {"mnuPopExit", "mnuExit"},
};
// clang-format on

} // namespace player
