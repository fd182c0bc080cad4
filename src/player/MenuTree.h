#pragma once

// The tree of all menus.

namespace player
{

enum class ItemKind { Menu, PopUp, End, Command, Check, Separator };

/// A line of the menus' table.
struct ItemInfo {
    ItemKind kind;
    const char* name;
    const char* caption;
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
    {ItemKind::Menu,      "MenuFile",       "Файл"},
    {ItemKind::Command,   "mnuOpen",        "Открыть...",       "Ctrl+O", "", "open.png"},
    {ItemKind::Command,   "mnuSaveAs",      "Сохранить как...", "Ctrl+S Ctrl+Shift+S", "", "save.png"},
    {ItemKind::Command,   "mnuSaveVideo",   "Сохранить как видео...", "Ctrl+E"},
    {ItemKind::Command,   "mnuSaveFrame",   "Сохранить кадр...", "Ctrl+Shift+E"},
    {ItemKind::Command,   "mnuCopyFrame",   "Копировать кадр",  "Ctrl+C"},
    {ItemKind::Command,   "mnuClose",       "Закрыть",          "Ctrl+W"},
    {ItemKind::Separator, "mnuSep1",        "-"},
    {ItemKind::Command,   "mnuInfo",        "Свойства",         "Ctrl+I", "", "info.png"},
    {ItemKind::Separator, "mnuSep14",       "-"},
    {ItemKind::Command,   "mnuMRU0",        "Список последних файлов"},
    {ItemKind::Command,   "mnuMRU1",        ""},
    {ItemKind::Command,   "mnuMRU2",        ""},
    {ItemKind::Command,   "mnuMRU3",        ""},
    {ItemKind::Command,   "mnuMRU4",        ""},
    {ItemKind::Separator, "mnuSep2",        "-"},
    {ItemKind::Command,   "mnuExit",        "Выход",            "Ctrl+Q", "", "exit.png"},
    {ItemKind::End,       "",               ""},

    {ItemKind::Menu,      "MenuView",       "Вид"},
    {ItemKind::Check,     "mnuFullScreen",  "Во весь экран",    "F11 Alt+Return", "F"},
    {ItemKind::Check,     "mnuMenuBar",     "Строка меню",      "Ctrl+Shift+M"},
    {ItemKind::Check,     "mnuTopMost",     "Поверх всех окон", "Ctrl+T"},
    {ItemKind::Separator, "mnuSept",        "-"},
    {ItemKind::Menu,      "mnuQuality",     "Качество"},
    {ItemKind::Check,     "mnuQLvl0",       "Высокое"},
    {ItemKind::Check,     "mnuQLvl1",       "Среднее"},
    {ItemKind::Check,     "mnuQLvl2",       "Низкое"},
    {ItemKind::Separator, "mnuQLvl3",       "-"},
    {ItemKind::Check,     "mnuQLvl4",       "Авто высокое"},
    {ItemKind::Check,     "mnuQLvl5",       "Авто низкое"},
    {ItemKind::End,       "",               ""},
    {ItemKind::Menu,      "mnuZoom",        "Увеличение"},
    {ItemKind::Command,   "mnuZoom50",      "50%",              "Ctrl+1"},
    {ItemKind::Command,   "mnuZoom100",     "100%",             "Ctrl+2"},
    {ItemKind::Command,   "mnuZoom200",     "200%",             "Ctrl+3"},
    {ItemKind::End,       "",               ""},
    {ItemKind::Menu,      "mnuScale",       "Масштабирование"},
    {ItemKind::Check,     "mnuSMode0",      "Показ всего"},
    {ItemKind::Check,     "mnuSMode1",      "Без границ"},
    {ItemKind::Check,     "mnuSMode2",      "Вписать в окно"},
    {ItemKind::End,       "",               ""},
    {ItemKind::Separator, "mnuSep4",        "-"},
    {ItemKind::Menu,      "mnuOp",          "Видимость"},
    {ItemKind::Command,   "mnuOpFull",      "Полная"},
    {ItemKind::Command,   "mnuOpSign",      "Значительная"},
    {ItemKind::Command,   "mnuOpMed",       "Средняя"},
    {ItemKind::Command,   "mnuOpSlite",     "Небольшая"},
    {ItemKind::End,       "",               ""},
    {ItemKind::Separator, "mnuSep8",        "-"},
    {ItemKind::Menu,      "mnuSkin",        "Шкурка",           "", "", "skin.png"},
    {ItemKind::Command,   "mnuUpdSkin",     "Обновить шкурку",  "F5"},
    {ItemKind::Separator, "mnuSep10",       "-"},
    {ItemKind::Check,     "mnuSkinList0",   "[ список шкурок ]"},
    {ItemKind::End,       "",               ""},
    {ItemKind::End,       "",               ""},

    {ItemKind::Menu,      "MenuPlayback",   "Воспроизведение"},
    {ItemKind::Command,   "mnuPlay",        "Воспроизвести",    "MediaPlay MediaPause MediaTogglePlayPause", "Space",
                      "play.png"},
    {ItemKind::Command,   "mnuStop",        "Остановить",       "MediaStop", "Home"},
    {ItemKind::Separator, "mnuSep3",        "-"},
    {ItemKind::Command,   "mnuFFwd",        "Кадр вперед",      "", "Right ."},
    {ItemKind::Command,   "mnuRwd",         "Кадр назад",       "", "Left ,"},
    {ItemKind::Menu,      "mnuGoTo",        "Перейти"},
    {ItemKind::Command,   "mnuGoTo0",       "В начало",         "", "!0"},
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
    {ItemKind::Command,   "mnuResume",      "Продолжить с места", "", "R"},
    {ItemKind::Menu,      "mnuSpeed",       "Скорость"},
    {ItemKind::Command,   "mnuSlower",      "Медленнее",        "", "["},
    {ItemKind::Command,   "mnuFaster",      "Быстрее",          "", "]"},
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
    {ItemKind::Command,   "mnuPrevious",    "Предыдущий ролик", "MediaPrevious", "PgUp"},
    {ItemKind::Command,   "mnuNext",        "Следующий ролик",  "MediaNext", "PgDown"},
    {ItemKind::Separator, "mnuSep11",       "-"},
    {ItemKind::Command,   "mnuVolumeUp",    "Громче",           "", "Up + ="},
    {ItemKind::Command,   "mnuVolumeDown",  "Тише",             "", "Down -"},
    {ItemKind::Check,     "mnuMute",        "Выключить звук",   "", "M", "sound.png"},
    {ItemKind::Separator, "mnuSep7",        "-"},
    {ItemKind::Check,     "mnuLoop",        "Повтор",           "", "L"},
    {ItemKind::Check,     "mnuRepeatAB",    "Повтор отрезка: начало здесь", "", "A"},
    {ItemKind::End,       "",               ""},

    {ItemKind::Menu,      "MenuTools",      "Сервис"},
    {ItemKind::Command,   "mnuBrowse",      "Обзор медиа",      "Ctrl+B", "", "search.png"},
    {ItemKind::Command,   "mnuClearCache",  "Удалить эскизы",   "", "", "cleanup.png"},
    {ItemKind::Command,   "mnuCompress",    "Снять сжатие"},
    {ItemKind::Check,     "mnuConsole",     "Консоль",          "F12", "", "console.png"},
    {ItemKind::Separator, "mnuSep6",        "-"},
    {ItemKind::Command,   "mnuOpt",         "Параметры...",     "Ctrl+P", "", "configure.png"},
    {ItemKind::End,       "",               ""},

    {ItemKind::Menu,      "MenuHelp",       "Справка"},
    {ItemKind::Command,   "mnuHelpMe",      "Вызов справки",    "F1", "", "help.png"},
    {ItemKind::Command,   "mnuKeys",        "Сочетания клавиш", "Ctrl+F1"},
    {ItemKind::Separator, "mnuSep5",        "-"},
    {ItemKind::Command,   "mnuUpd",         "Проверка обновлений"},
    {ItemKind::Command,   "mnuWeb",         "",                 "", "", "web.png"},
    {ItemKind::Command,   "mnuAbout",       "О программе",      "", "", "about.png"},
    {ItemKind::End,       "",               ""},

    {ItemKind::PopUp,     "PopUp",          "POPUP"},
    {ItemKind::Command,   "mnuPopPlay",     "Воспроизвести"},
    // Named without the "u" on purpose; scripts know it so.
    {ItemKind::Command,   "mnPopStop",      "Остановить"},
    {ItemKind::Check,     "mnuPopMute",     "Выключить звук"},
    {ItemKind::Separator, "mnuSep17",       "-"},
    {ItemKind::Check,     "mnuPopHQ",       "Высокое качество"},
    {ItemKind::Check,     "mnuPopLQ",       "Низкое качество"},
    // Kept out of sight; scripts know it.
    {ItemKind::Separator, "mnuSep12",       "-"},
    {ItemKind::Separator, "mnuSep16",       "-"},
    {ItemKind::Check,     "mnuPopFullScreen", "Во весь экран"},
    {ItemKind::Command,   "mnuPopBrowse",   "Обзор медиа"},
    {ItemKind::Command,   "mnuPopInfo",     "Свойства"},
    {ItemKind::Separator, "mnuSep13",       "-"},
    {ItemKind::Command,   "mnuPopOpen",     "Открыть..."},
    {ItemKind::Command,   "mnuPopSaveAs",   "Сохранить как..."},
    {ItemKind::Command,   "mnuPopClose",    "Закрыть"},
    {ItemKind::Separator, "mnuSep18",       "-"},
    {ItemKind::Command,   "mnuPopAbout",    "О программе"},
    {ItemKind::Separator, "mnuSep15",       "-"},
    {ItemKind::Command,   "mnuPopExit",     "Выход"},
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
