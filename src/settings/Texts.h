#pragma once

// Every text of this folder that a user sees.

namespace settings::texts
{

// clang-format off
inline constexpr const char* kCaption        = "Настройки";
inline constexpr const char* kStartUp        = "При запуске по умолчанию:";
inline constexpr const char* kStartUpItems[] = {"Показать \"Экран приветствия\"",
                                                "Показать \"Обзор медиа\"",
                                                "Открыть последний файл!"};
inline constexpr const char* kQuit           = "При выходе очищать кэш:";
inline constexpr const char* kCacheItems[]   = {"Не надо", "Оставлять эскизы", "Полностью!"};
inline constexpr const char* kCodepage       = "Кодировка старых роликов:";
inline constexpr const char* kPerformance    = "Быстродействие";
inline constexpr const char* kAnimation      = "Анимация в служебных клипах";
inline constexpr const char* kSpecialEffects = "Специальные эффекты";
inline constexpr const char* kHqShots        = "Высокое качество эскизов";
inline constexpr const char* kAssociation    = "Использовать для открытия файлов SWF";
inline constexpr const char* kMakeDefault    = "Сделать проигрывателем по умолчанию";
inline constexpr const char* kSave           = "Сохранить";
inline constexpr const char* kCancel         = "Отмена";

inline constexpr const char* kStartUpTip =
    "Если не задан файл для открытия, будет выполнено это действие";
inline constexpr const char* kAnimationTip =
    "Анимация в экранах приветствия, обзора медиа и информации о программе";
inline constexpr const char* kSpecialEffectsTip =
    "Например, эффект засвечивания окна при смене шкурки";
inline constexpr const char* kHqShotsTip =
    "Использовать сглаживание при создании эскизов";
inline constexpr const char* kCacheTip =
    "Удаление временных файлов, созданных для ускорения работы приложения";
inline constexpr const char* kCodepageTip =
    "В роликах Flash 5 и старше текст записан в кодировке системы автора; действует со следующего ролика";
inline constexpr const char* kAssociationTip =
    "Поставьте галочку, чтобы при двойном щелчке на файле SWF запускалось это приложение";

/// An 8-bit code as settings.xml names it and as the user reads it.
struct Codepage {
    const char* name;
    const char* caption;
};
inline constexpr Codepage kCodepages[] = {
    {"automatic",    "Автоматически"},
    {"windows-1251", "Кириллица (Windows-1251)"},
    {"koi8-r",       "Кириллица (KOI8-R)"},
    {"iso-8859-1",   "Западная (Latin-1)"},
    {"windows-1252", "Западная (Windows-1252)"},
    {"windows-1250", "Центральноевропейская (Windows-1250)"},
    {"windows-1253", "Греческая (Windows-1253)"},
    {"windows-1254", "Турецкая (Windows-1254)"},
    {"shift-jis",    "Японская (Shift-JIS)"},
    {"gbk",          "Китайская упрощённая (GBK)"},
    {"big5",         "Китайская традиционная (Big5)"},
    {"euc-kr",       "Корейская (EUC-KR)"},
};
// clang-format on

} // namespace settings::texts
