#pragma once

// Every text of this folder that a user sees.

namespace media::texts
{

// clang-format off
inline constexpr const char* kFileNotFound      = "Файл не найден";
inline constexpr const char* kFileTooShort      = "Файл имеет незначительный размер";
inline constexpr const char* kUnknownFormat     = "Формат файла не поддерживается";
inline constexpr const char* kNoMedia           = "Файл не содержит медиа";
// Spelled "фала" on purpose; the wording is fixed.
inline constexpr const char* kDecompressFailed  = "Ошибка при чтении сжатого фала";
inline constexpr const char* kHeaderDamaged     = "Файл повреждён: заголовок обрывается";

inline constexpr const char* kOpening           = "Открытие медиа...";
inline constexpr const char* kLoading           = "Загрузка медиа...";
inline constexpr const char* kReady             = "Готово";
inline constexpr const char* kReadingFile       = "Чтение файла";
inline constexpr const char* kDecompressing     = "Декомпрессия файла";
inline constexpr const char* kCompressing       = "Сжатие файла";
inline constexpr const char* kWriting           = "Запись";
inline constexpr const char* kReadingExecutable = "Чтение исполняемого файла";
inline constexpr const char* kWritingFile       = "Запись файла";

inline constexpr const char* kMenuDecompress    = "Снять сжатие";
inline constexpr const char* kMenuCompress      = "Сжать...";

inline constexpr const char* kPlaceCreateFlash  = "Создание окна (проблема с Flash?)";
// clang-format on

} // namespace media::texts
