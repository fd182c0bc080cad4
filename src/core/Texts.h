#pragma once

// Every text of this folder that a user sees.

namespace core::texts
{

inline constexpr const char* kPlaceStartUp = "Запуск";

inline constexpr const char* kHelp = "Проигрыватель роликов и проекторов Macromedia Flash.\n"
                                     "\n"
                                     "Использование: zorvex [ФАЙЛ]\n"
                                     "\n"
                                     "  ФАЙЛ        ролик (.swf) или проектор (.exe), который нужно открыть\n"
                                     "  -h, --help  показать эту справку\n"
                                     "  --version   показать версию\n";

// clang-format off
inline constexpr const char* kFileNotFound     = "Файл не найден";
inline constexpr const char* kPathNotFound     = "Папка не найдена";
inline constexpr const char* kDiskFull         = "На диске недостаточно места";
inline constexpr const char* kPermissionDenied = "Нет доступа к файлу";
inline constexpr const char* kReadOnly         = "Диск доступен только для чтения";
inline constexpr const char* kIsFolder         = "Это папка, а не файл";
inline constexpr const char* kDeviceError      = "Ошибка чтения или записи файла";
inline constexpr const char* kNameTooLong      = "Имя файла слишком длинное";
inline constexpr const char* kTooLarge         = "Файл слишком велик";
inline constexpr const char* kDamaged          = "Файл повреждён";
inline constexpr const char* kUnsupported      = "Формат файла не поддерживается";

inline constexpr const char* kErrorWindow      = "Ошибка";
inline constexpr const char* kErrorTitle       = "В программе произошла ошибка";
inline constexpr const char* kErrorAdvice      = "Можно продолжить работу или завершить приложение; "
                                                 "настройки при этом сохранятся.";
inline constexpr const char* kErrorNumber      = "Номер: ";
inline constexpr const char* kErrorPlace       = "Место: ";
inline constexpr const char* kErrorSource      = "Источник: ";
inline constexpr const char* kErrorDescription = "Описание: ";
inline constexpr const char* kErrorDetail      = "Дополнительная информация";
inline constexpr const char* kRevive           = "Продолжить";
inline constexpr const char* kExit             = "Завершить";
inline constexpr const char* kExtraTip  = "Показать дополнительную информацию, связанную с ошибкой";
inline constexpr const char* kReviveTip = "Продолжить работу приложения";
inline constexpr const char* kExitTip   = "Прекратить работу приложения";
// clang-format on

} // namespace core::texts
