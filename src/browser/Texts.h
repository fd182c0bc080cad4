#pragma once

#include "core/Text.h"

// Every text of this folder that a user sees, and the journal's.

namespace browser::texts
{

// clang-format off
inline constexpr core::Text kReady           = QT_TRANSLATE_NOOP("zorvex", "Готово");
inline constexpr core::Text kSearching       = QT_TRANSLATE_NOOP("zorvex", "Поиск медиа файлов...");
inline constexpr core::Text kFound           = QT_TRANSLATE_NOOP("zorvex", "Найдено медиа файлов: ");
inline constexpr core::Text kBrowserTitle    = QT_TRANSLATE_NOOP("zorvex", "Обзор медиа");

inline constexpr core::Text kShotsTitle      = QT_TRANSLATE_NOOP("zorvex", "Создание эскизов");
inline constexpr core::Text kShotsDone       = QT_TRANSLATE_NOOP("zorvex", "Готово ");
inline constexpr core::Text kShotsOf         = QT_TRANSLATE_NOOP("zorvex", " из ");
inline constexpr core::Text kCancel          = QT_TRANSLATE_NOOP("zorvex", "Отмена");
inline constexpr core::Text kShotsTip        = QT_TRANSLATE_NOOP("zorvex", "Если создание конкретного эскиза затянулось, двойным щелчком можно его пропустить");
inline constexpr core::Text kNoPicture       = QT_TRANSLATE_NOOP("zorvex", "Нет изображения");

inline constexpr core::Text kInfoTitle       = QT_TRANSLATE_NOOP("zorvex", "Свойства");
inline constexpr core::Text kVersion         = QT_TRANSLATE_NOOP("zorvex", "Версия: ");
inline constexpr core::Text kTime            = QT_TRANSLATE_NOOP("zorvex", "Длительность (кадров): ");
inline constexpr core::Text kSize            = QT_TRANSLATE_NOOP("zorvex", "Размер файла: ");
inline constexpr core::Text kMetrix          = QT_TRANSLATE_NOOP("zorvex", "Кадр: ");
inline constexpr core::Text kNotCompressed   = QT_TRANSLATE_NOOP("zorvex", "Файл не сжат");
inline constexpr core::Text kCompression     = QT_TRANSLATE_NOOP("zorvex", "Сжатие: ");
inline constexpr core::Text kOfOriginal      = QT_TRANSLATE_NOOP("zorvex", "% от оригинала");
inline constexpr core::Text kProjector       = QT_TRANSLATE_NOOP("zorvex", "Автономный проектор (EXE)");
inline constexpr core::Text kOnly            = QT_TRANSLATE_NOOP("zorvex", "Лишь ");
inline constexpr core::Text kLoaded          = QT_TRANSLATE_NOOP("zorvex", "% файла загружено");
inline constexpr core::Text kGone            = QT_TRANSLATE_NOOP("zorvex", "Файл не найден");
inline constexpr const char* kFps             = " fps";
inline constexpr core::Text kBytes           = QT_TRANSLATE_NOOP("zorvex", " байт");
inline constexpr core::Text kKilobytes       = QT_TRANSLATE_NOOP("zorvex", " Кб");
inline constexpr core::Text kMegabytes       = QT_TRANSLATE_NOOP("zorvex", " Мб");
inline constexpr core::Text kRefreshTip      = QT_TRANSLATE_NOOP("zorvex", "Двойным щелчком можно обновить эскиз");
inline constexpr core::Text kClose           = QT_TRANSLATE_NOOP("zorvex", "Закрыть");
inline constexpr core::Text kPathCopied      = QT_TRANSLATE_NOOP("zorvex", "Путь скопирован в буфер обмена");

inline constexpr const char* kLogBrowse       = " :: Media Browse";
inline constexpr const char* kLogNewBrowse    = " :: New Media Browse (";
// Worded so on purpose, whatever the library is called.
inline constexpr const char* kLogInitialiseJpeg = "Failed to initialise the IJL library: ";
inline constexpr const char* kLogSaveJpeg     = "Failed to save to JPG ";
inline constexpr const char* kLogNoJpeg       = "Failed to save JPEG";
inline constexpr const char* kLogDropped      = "Thumbnail dropped: ";
// clang-format on

} // namespace browser::texts
