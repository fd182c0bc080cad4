#pragma once

// What the windows of films say.
namespace exporter::texts
{

// clang-format off
inline constexpr const char* kVideoTitle      = "Сохранить как видео";
inline constexpr const char* kFormat          = "Вид файла:";
inline constexpr const char* kRange           = "Отрезок:";
inline constexpr const char* kRangeTimeline   = "Вся лента ролика";
inline constexpr const char* kRangeStill      = "Пока что-то движется или звучит";
inline constexpr const char* kRangeGiven      = "Заданный";
inline constexpr const char* kFrom            = "с";
inline constexpr const char* kTo              = "по";
inline constexpr const char* kMomentTip       = "Секунды (2.5), минуты и секунды (1:02.5) или кадр (48f)";
inline constexpr const char* kSize            = "Размер:";
inline constexpr const char* kSizeOwn         = "Как у ролика (%1 x %2)";
inline constexpr const char* kSizeDouble      = "Вдвое больше (%1 x %2)";
inline constexpr const char* kSizeGiven       = "Другой";
inline constexpr const char* kRate            = "Кадров в секунду:";
inline constexpr const char* kRateOwn         = "Как у ролика (%1)";
inline constexpr const char* kQuality         = "Качество:";
inline constexpr const char* kQualities[]     = {"Малый файл", "Хорошее", "Наилучшее"};
inline constexpr const char* kSound           = "Со звуком";
inline constexpr const char* kTransparent     = "Без фона ролика";
inline constexpr const char* kRecord          = "Записать мои действия...";
inline constexpr const char* kRecorded        = "Действия записаны: %1 с";
inline constexpr const char* kRecordTitle     = "Запись действий";
inline constexpr const char* kRecordHint      = "Ролик загружается...";
inline constexpr const char* kRecordClock     = "Записано %1 с. Щелчки и клавиши повторятся в фильме.";
inline constexpr const char* kRecordDone      = "Готово";
inline constexpr const char* kFirstPicture    = "Первый кадр";
inline constexpr const char* kLastPicture     = "Последний кадр";
inline constexpr const char* kUnknownPicture  = "Станет известен\nпри записи";
inline constexpr const char* kSave            = "Сохранить...";
inline constexpr const char* kCancel          = "Отмена";
inline constexpr const char* kLacks           = "%1 (нельзя: %2)";
inline constexpr const char* kBadMoment       = "Время задано неверно.";
inline constexpr const char* kBadOrder        = "Отрезок кончается раньше, чем начинается.";

inline constexpr const char* kProgressTitle   = "Запись фильма";
inline constexpr const char* kProgressStart   = "Подготовка...";
inline constexpr const char* kProgressCount   = "Кадр %1 из %2";
inline constexpr const char* kProgressSoFar   = "Кадр %1";
inline constexpr const char* kProgressLeft    = "Осталось %1";
inline constexpr const char* kSeconds         = "%1 с";
inline constexpr const char* kMinutes         = "%1 мин %2 с";
inline constexpr const char* kCannotPlay      = "Ролик не удалось проиграть.";
inline constexpr const char* kCannotWrite     = "Файл не удалось записать.";
inline constexpr const char* kDiskFull        = "На диске не хватает места.";
inline constexpr const char* kDenied          = "В эту папку нельзя записывать.";
inline constexpr const char* kNoEncoder       = "На этой машине нет нужного кодировщика.";
inline constexpr const char* kCutShort        = "У ролика нет конца: записаны первые %1.";
inline constexpr const char* kNoProgram       = "Не найдена программа zorvex-export, которая пишет видео.";
// clang-format on

} // namespace exporter::texts
