#pragma once

#include "core/Text.h"

// Every text of this folder that a user sees.

namespace settings::texts
{

// clang-format off
inline constexpr core::Text kCaption        = QT_TRANSLATE_NOOP("zorvex", "Настройки");
inline constexpr core::Text kStartUp        = QT_TRANSLATE_NOOP("zorvex", "При запуске по умолчанию:");
inline constexpr core::Text kStartUpItems[] = {QT_TRANSLATE_NOOP("zorvex", "Показать \"Экран приветствия\""),
                                                QT_TRANSLATE_NOOP("zorvex", "Показать \"Обзор медиа\""),
                                                QT_TRANSLATE_NOOP("zorvex", "Открыть последний файл!")};
inline constexpr core::Text kQuit           = QT_TRANSLATE_NOOP("zorvex", "При выходе очищать кэш:");
inline constexpr core::Text kCacheItems[]   = {QT_TRANSLATE_NOOP("zorvex", "Не надо"), QT_TRANSLATE_NOOP("zorvex", "Оставлять эскизы"), QT_TRANSLATE_NOOP("zorvex", "Полностью!")};
inline constexpr core::Text kCodepage       = QT_TRANSLATE_NOOP("zorvex", "Кодировка старых роликов:");
// In every language the same, so that whoever sees the wrong one finds it.
inline constexpr core::Text kLanguage       = "Язык (Language):";
inline constexpr core::Text kLanguageTip    = QT_TRANSLATE_NOOP("zorvex", "Язык меню, окон и служебных клипов");
struct InterfaceLanguage {
    const char* code;
    const char* name;
};
inline constexpr InterfaceLanguage kLanguages[] = {{"ru", "Русский"}, {"en", "English"}};
inline constexpr core::Text kPerformance    = QT_TRANSLATE_NOOP("zorvex", "Быстродействие");
inline constexpr core::Text kAnimation      = QT_TRANSLATE_NOOP("zorvex", "Анимация в служебных клипах");
inline constexpr core::Text kSpecialEffects = QT_TRANSLATE_NOOP("zorvex", "Специальные эффекты");
inline constexpr core::Text kHqShots        = QT_TRANSLATE_NOOP("zorvex", "Высокое качество эскизов");
inline constexpr core::Text kSecondThread   = QT_TRANSLATE_NOOP("zorvex", "Два потока для сложных сцен");
inline constexpr core::Text kAssociation    = QT_TRANSLATE_NOOP("zorvex", "Использовать для открытия файлов SWF");
inline constexpr core::Text kMakeDefault    = QT_TRANSLATE_NOOP("zorvex", "Сделать проигрывателем по умолчанию");
inline constexpr core::Text kSave           = QT_TRANSLATE_NOOP("zorvex", "Сохранить");
inline constexpr core::Text kCancel         = QT_TRANSLATE_NOOP("zorvex", "Отмена");

inline constexpr core::Text kStartUpTip = QT_TRANSLATE_NOOP("zorvex", "Если не задан файл для открытия, будет выполнено это действие");
inline constexpr core::Text kAnimationTip = QT_TRANSLATE_NOOP("zorvex", "Анимация в экранах приветствия, обзора медиа и информации о программе");
inline constexpr core::Text kSpecialEffectsTip = QT_TRANSLATE_NOOP("zorvex", "Например, эффект засвечивания окна при смене шкурки");
inline constexpr core::Text kHqShotsTip = QT_TRANSLATE_NOOP("zorvex", "Использовать сглаживание при создании эскизов");
inline constexpr core::Text kSecondThreadTip = QT_TRANSLATE_NOOP("zorvex", "Кадры, которые рисуются долго, делят между собой два ядра процессора");
inline constexpr core::Text kCacheTip = QT_TRANSLATE_NOOP("zorvex", "Удаление временных файлов, созданных для ускорения работы приложения");
inline constexpr core::Text kCodepageTip = QT_TRANSLATE_NOOP("zorvex", "В роликах Flash 5 и старше текст записан в кодировке системы автора; действует со следующего ролика");
inline constexpr core::Text kAssociationTip = QT_TRANSLATE_NOOP("zorvex", "Поставьте галочку, чтобы при двойном щелчке на файле SWF запускалось это приложение");

/// An 8-bit code as settings.xml names it and as the user reads it.
struct Codepage {
    const char* name;
    core::Text caption;
};
inline constexpr Codepage kCodepages[] = {
    {"automatic",    QT_TRANSLATE_NOOP("zorvex", "Автоматически")},
    {"windows-1251", QT_TRANSLATE_NOOP("zorvex", "Кириллица (Windows-1251)")},
    {"koi8-r",       QT_TRANSLATE_NOOP("zorvex", "Кириллица (KOI8-R)")},
    {"iso-8859-1",   QT_TRANSLATE_NOOP("zorvex", "Западная (Latin-1)")},
    {"windows-1252", QT_TRANSLATE_NOOP("zorvex", "Западная (Windows-1252)")},
    {"windows-1250", QT_TRANSLATE_NOOP("zorvex", "Центральноевропейская (Windows-1250)")},
    {"windows-1253", QT_TRANSLATE_NOOP("zorvex", "Греческая (Windows-1253)")},
    {"windows-1254", QT_TRANSLATE_NOOP("zorvex", "Турецкая (Windows-1254)")},
    {"shift-jis",    QT_TRANSLATE_NOOP("zorvex", "Японская (Shift-JIS)")},
    {"gbk",          QT_TRANSLATE_NOOP("zorvex", "Китайская упрощённая (GBK)")},
    {"big5",         QT_TRANSLATE_NOOP("zorvex", "Китайская традиционная (Big5)")},
    {"euc-kr",       QT_TRANSLATE_NOOP("zorvex", "Корейская (EUC-KR)")},
};
// clang-format on

} // namespace settings::texts
