#pragma once

#include "core/Text.h"

// Every text of this folder that a user sees.

namespace core::texts
{

// Not shown: the catalogue of a language has its code here.
inline constexpr core::Text kLanguageCode = QT_TRANSLATE_NOOP("zorvex", "ru");

inline constexpr core::Text kHelp =
    QT_TRANSLATE_NOOP("zorvex", "Проигрыватель роликов и проекторов Macromedia Flash.\n"
                                "\n"
                                "Использование: zorvex [ФАЙЛ]\n"
                                "\n"
                                "  ФАЙЛ        ролик (.swf) или проектор (.exe), который нужно открыть\n"
                                "  -h, --help  показать эту справку\n"
                                "  --version   показать версию\n");

// clang-format off
inline constexpr core::Text kFileNotFound     = QT_TRANSLATE_NOOP("zorvex", "Файл не найден");
inline constexpr core::Text kPathNotFound     = QT_TRANSLATE_NOOP("zorvex", "Папка не найдена");
inline constexpr core::Text kDiskFull         = QT_TRANSLATE_NOOP("zorvex", "На диске недостаточно места");
inline constexpr core::Text kPermissionDenied = QT_TRANSLATE_NOOP("zorvex", "Нет доступа к файлу");
inline constexpr core::Text kReadOnly         = QT_TRANSLATE_NOOP("zorvex", "Диск доступен только для чтения");
inline constexpr core::Text kIsFolder         = QT_TRANSLATE_NOOP("zorvex", "Это папка, а не файл");
inline constexpr core::Text kDeviceError      = QT_TRANSLATE_NOOP("zorvex", "Ошибка чтения или записи файла");
inline constexpr core::Text kNameTooLong      = QT_TRANSLATE_NOOP("zorvex", "Имя файла слишком длинное");
inline constexpr core::Text kTooLarge         = QT_TRANSLATE_NOOP("zorvex", "Файл слишком велик");
inline constexpr core::Text kDamaged          = QT_TRANSLATE_NOOP("zorvex", "Файл повреждён");
inline constexpr core::Text kUnsupported      = QT_TRANSLATE_NOOP("zorvex", "Формат файла не поддерживается");

inline constexpr core::Text kErrorWindow      = QT_TRANSLATE_NOOP("zorvex", "Ошибка");
inline constexpr core::Text kErrorTitle       = QT_TRANSLATE_NOOP("zorvex", "В программе произошла ошибка");
inline constexpr core::Text kErrorAdvice      = QT_TRANSLATE_NOOP("zorvex", "Можно продолжить работу или завершить приложение; "
                                                 "настройки при этом сохранятся.");
inline constexpr core::Text kErrorNumber      = QT_TRANSLATE_NOOP("zorvex", "Номер: ");
inline constexpr core::Text kErrorPlace       = QT_TRANSLATE_NOOP("zorvex", "Место: ");
inline constexpr core::Text kErrorSource      = QT_TRANSLATE_NOOP("zorvex", "Источник: ");
inline constexpr core::Text kErrorDescription = QT_TRANSLATE_NOOP("zorvex", "Описание: ");
inline constexpr core::Text kErrorDetail      = QT_TRANSLATE_NOOP("zorvex", "Дополнительная информация");
inline constexpr core::Text kRevive           = QT_TRANSLATE_NOOP("zorvex", "Продолжить");
inline constexpr core::Text kExit             = QT_TRANSLATE_NOOP("zorvex", "Завершить");
inline constexpr core::Text kExtraTip  = QT_TRANSLATE_NOOP("zorvex", "Показать дополнительную информацию, связанную с ошибкой");
inline constexpr core::Text kReviveTip = QT_TRANSLATE_NOOP("zorvex", "Продолжить работу приложения");
inline constexpr core::Text kExitTip   = QT_TRANSLATE_NOOP("zorvex", "Прекратить работу приложения");
// clang-format on

} // namespace core::texts
