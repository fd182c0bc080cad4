#pragma once

#include "core/Text.h"

// Every text of this folder that a user sees.

namespace media::texts
{

// clang-format off
inline constexpr core::Text kFileNotFound      = QT_TRANSLATE_NOOP("zorvex", "Файл не найден");
inline constexpr core::Text kFileTooShort      = QT_TRANSLATE_NOOP("zorvex", "Файл имеет незначительный размер");
inline constexpr core::Text kUnknownFormat     = QT_TRANSLATE_NOOP("zorvex", "Формат файла не поддерживается");
inline constexpr core::Text kNoMedia           = QT_TRANSLATE_NOOP("zorvex", "Файл не содержит медиа");
// Spelled "фала" on purpose; the wording is fixed.
inline constexpr core::Text kDecompressFailed  = QT_TRANSLATE_NOOP("zorvex", "Ошибка при чтении сжатого фала");
inline constexpr core::Text kHeaderDamaged     = QT_TRANSLATE_NOOP("zorvex", "Файл повреждён: заголовок обрывается");

inline constexpr core::Text kOpening           = QT_TRANSLATE_NOOP("zorvex", "Открытие медиа...");
inline constexpr core::Text kLoading           = QT_TRANSLATE_NOOP("zorvex", "Загрузка медиа...");
inline constexpr core::Text kReady             = QT_TRANSLATE_NOOP("zorvex", "Готово");
inline constexpr core::Text kReadingFile       = QT_TRANSLATE_NOOP("zorvex", "Чтение файла");
inline constexpr core::Text kDecompressing     = QT_TRANSLATE_NOOP("zorvex", "Декомпрессия файла");
inline constexpr core::Text kCompressing       = QT_TRANSLATE_NOOP("zorvex", "Сжатие файла");
inline constexpr core::Text kWriting           = QT_TRANSLATE_NOOP("zorvex", "Запись");
inline constexpr core::Text kReadingExecutable = QT_TRANSLATE_NOOP("zorvex", "Чтение исполняемого файла");
inline constexpr core::Text kWritingFile       = QT_TRANSLATE_NOOP("zorvex", "Запись файла");

inline constexpr core::Text kMenuDecompress    = QT_TRANSLATE_NOOP("zorvex", "Снять сжатие");
inline constexpr core::Text kMenuCompress      = QT_TRANSLATE_NOOP("zorvex", "Сжать...");

inline constexpr core::Text kPlaceCreateFlash  = QT_TRANSLATE_NOOP("zorvex", "Создание окна (проблема с Flash?)");
// clang-format on

} // namespace media::texts
