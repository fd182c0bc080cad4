#pragma once

#include "core/Text.h"

// What the windows of films say.
namespace exporter::texts
{

// clang-format off
inline constexpr core::Text kVideoTitle      = QT_TRANSLATE_NOOP("zorvex", "Сохранить как видео");
inline constexpr core::Text kFormat          = QT_TRANSLATE_NOOP("zorvex", "Вид файла:");
inline constexpr core::Text kRange           = QT_TRANSLATE_NOOP("zorvex", "Отрезок:");
inline constexpr core::Text kRangeTimeline   = QT_TRANSLATE_NOOP("zorvex", "Вся лента ролика");
inline constexpr core::Text kRangeStill      = QT_TRANSLATE_NOOP("zorvex", "Пока что-то движется или звучит");
inline constexpr core::Text kRangeGiven      = QT_TRANSLATE_NOOP("zorvex", "Заданный");
inline constexpr core::Text kFrom            = QT_TRANSLATE_NOOP("zorvex", "с");
inline constexpr core::Text kTo              = QT_TRANSLATE_NOOP("zorvex", "по");
inline constexpr core::Text kMomentTip       = QT_TRANSLATE_NOOP("zorvex", "Секунды (2.5), минуты и секунды (1:02.5) или кадр (48f)");
inline constexpr core::Text kSize            = QT_TRANSLATE_NOOP("zorvex", "Размер:");
inline constexpr core::Text kSizeOwn         = QT_TRANSLATE_NOOP("zorvex", "Как у ролика (%1 x %2)");
inline constexpr core::Text kSizeDouble      = QT_TRANSLATE_NOOP("zorvex", "Вдвое больше (%1 x %2)");
inline constexpr core::Text kSizeGiven       = QT_TRANSLATE_NOOP("zorvex", "Другой");
inline constexpr core::Text kRate            = QT_TRANSLATE_NOOP("zorvex", "Кадров в секунду:");
inline constexpr core::Text kRateOwn         = QT_TRANSLATE_NOOP("zorvex", "Как у ролика (%1)");
inline constexpr core::Text kQuality         = QT_TRANSLATE_NOOP("zorvex", "Качество:");
inline constexpr core::Text kQualities[]     = {QT_TRANSLATE_NOOP("zorvex", "Малый файл"), QT_TRANSLATE_NOOP("zorvex", "Хорошее"), QT_TRANSLATE_NOOP("zorvex", "Наилучшее")};
inline constexpr core::Text kSound           = QT_TRANSLATE_NOOP("zorvex", "Со звуком");
inline constexpr core::Text kTransparent     = QT_TRANSLATE_NOOP("zorvex", "Без фона ролика");
inline constexpr core::Text kRecord          = QT_TRANSLATE_NOOP("zorvex", "Записать мои действия...");
inline constexpr core::Text kRecorded        = QT_TRANSLATE_NOOP("zorvex", "Действия записаны: %1 с");
inline constexpr core::Text kRecordTitle     = QT_TRANSLATE_NOOP("zorvex", "Запись действий");
inline constexpr core::Text kRecordHint      = QT_TRANSLATE_NOOP("zorvex", "Ролик загружается...");
inline constexpr core::Text kRecordClock     = QT_TRANSLATE_NOOP("zorvex", "Записано %1 с. Щелчки и клавиши повторятся в фильме.");
inline constexpr core::Text kRecordDone      = QT_TRANSLATE_NOOP("zorvex", "Готово");
inline constexpr core::Text kFirstPicture    = QT_TRANSLATE_NOOP("zorvex", "Первый кадр");
inline constexpr core::Text kLastPicture     = QT_TRANSLATE_NOOP("zorvex", "Последний кадр");
inline constexpr core::Text kUnknownPicture  = QT_TRANSLATE_NOOP("zorvex", "Станет известен\nпри записи");
inline constexpr core::Text kSave            = QT_TRANSLATE_NOOP("zorvex", "Сохранить...");
inline constexpr core::Text kCancel          = QT_TRANSLATE_NOOP("zorvex", "Отмена");
inline constexpr core::Text kLacks           = QT_TRANSLATE_NOOP("zorvex", "%1 (нельзя: %2)");
inline constexpr core::Text kBadMoment       = QT_TRANSLATE_NOOP("zorvex", "Время задано неверно.");
inline constexpr core::Text kBadOrder        = QT_TRANSLATE_NOOP("zorvex", "Отрезок кончается раньше, чем начинается.");

inline constexpr core::Text kProgressTitle   = QT_TRANSLATE_NOOP("zorvex", "Запись фильма");
inline constexpr core::Text kProgressStart   = QT_TRANSLATE_NOOP("zorvex", "Подготовка...");
inline constexpr core::Text kProgressCount   = QT_TRANSLATE_NOOP("zorvex", "Кадр %1 из %2");
inline constexpr core::Text kProgressSoFar   = QT_TRANSLATE_NOOP("zorvex", "Кадр %1");
inline constexpr core::Text kProgressLeft    = QT_TRANSLATE_NOOP("zorvex", "Осталось %1");
inline constexpr core::Text kSeconds         = QT_TRANSLATE_NOOP("zorvex", "%1 с");
inline constexpr core::Text kMinutes         = QT_TRANSLATE_NOOP("zorvex", "%1 мин %2 с");
inline constexpr core::Text kCannotPlay      = QT_TRANSLATE_NOOP("zorvex", "Ролик не удалось проиграть.");
inline constexpr core::Text kCannotWrite     = QT_TRANSLATE_NOOP("zorvex", "Файл не удалось записать.");
inline constexpr core::Text kDiskFull        = QT_TRANSLATE_NOOP("zorvex", "На диске не хватает места.");
inline constexpr core::Text kDenied          = QT_TRANSLATE_NOOP("zorvex", "В эту папку нельзя записывать.");
inline constexpr core::Text kNoEncoder       = QT_TRANSLATE_NOOP("zorvex", "На этой машине нет нужного кодировщика.");
inline constexpr core::Text kCutShort        = QT_TRANSLATE_NOOP("zorvex", "У ролика нет конца: записаны первые %1.");
inline constexpr core::Text kNoProgram       = QT_TRANSLATE_NOOP("zorvex", "Не найдена программа zorvex-export, которая пишет видео.");
// clang-format on

} // namespace exporter::texts
