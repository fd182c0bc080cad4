#pragma once

// Every text of this folder that a user sees, and the journal's.

namespace browser::texts
{

// clang-format off
inline constexpr const char* kReady           = "Готово";
inline constexpr const char* kSearching       = "Поиск медиа файлов...";
inline constexpr const char* kFound           = "Найдено медиа файлов: ";
inline constexpr const char* kBrowserTitle    = "Обзор медиа";

inline constexpr const char* kShotsTitle      = "Создание эскизов";
inline constexpr const char* kShotsDone       = "Готово ";
inline constexpr const char* kShotsOf         = " из ";
inline constexpr const char* kCancel          = "Отмена";
inline constexpr const char* kShotsTip        =
    "Если создание конкретного эскиза затянулось, двойным щелчком можно его пропустить";
inline constexpr const char* kNoPicture       = "Нет изображения";

inline constexpr const char* kInfoTitle       = "Свойства";
inline constexpr const char* kVersion         = "Версия: ";
inline constexpr const char* kTime            = "Длительность (кадров): ";
inline constexpr const char* kSize            = "Размер файла: ";
inline constexpr const char* kMetrix          = "Кадр: ";
inline constexpr const char* kNotCompressed   = "Файл не сжат";
inline constexpr const char* kCompression     = "Сжатие: ";
inline constexpr const char* kOfOriginal      = "% от оригинала";
inline constexpr const char* kProjector       = "Автономный проектор (EXE)";
inline constexpr const char* kOnly            = "Лишь ";
inline constexpr const char* kLoaded          = "% файла загружено";
inline constexpr const char* kGone            = "Файл не найден";
inline constexpr const char* kFps             = " fps";
inline constexpr const char* kBytes           = " байт";
inline constexpr const char* kKilobytes       = " Кб";
inline constexpr const char* kMegabytes       = " Мб";
inline constexpr const char* kRefreshTip      = "Двойным щелчком можно обновить эскиз";
inline constexpr const char* kClose           = "Закрыть";
inline constexpr const char* kPathCopied      = "Путь скопирован в буфер обмена";

inline constexpr const char* kLogBrowse       = " :: Media Browse";
inline constexpr const char* kLogNewBrowse    = " :: New Media Browse (";
// Worded so on purpose, whatever the library is called.
inline constexpr const char* kLogInitialiseJpeg = "Failed to initialise the IJL library: ";
inline constexpr const char* kLogSaveJpeg     = "Failed to save to JPG ";
inline constexpr const char* kLogNoJpeg       = "Failed to save JPEG";
inline constexpr const char* kLogDropped      = "Thumbnail dropped: ";
// clang-format on

} // namespace browser::texts
