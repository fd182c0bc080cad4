#pragma once

#include "core/Text.h"

// Every text of this folder that a user sees, but for the captions of the menus, which stand in their own
// table.

namespace player::texts
{

// clang-format off
inline constexpr core::Text kPlaying          = QT_TRANSLATE_NOOP("zorvex", "Воспроизведение");
inline constexpr core::Text kPlayingLimited  = QT_TRANSLATE_NOOP("zorvex", "Воспроизведение с ограничениями");
inline constexpr core::Text kStopped          = QT_TRANSLATE_NOOP("zorvex", "Остановлено");
inline constexpr core::Text kReady            = QT_TRANSLATE_NOOP("zorvex", "Готово");
inline constexpr core::Text kOpeningFile      = QT_TRANSLATE_NOOP("zorvex", "Открытие файла...");
inline constexpr core::Text kSavingFile       = QT_TRANSLATE_NOOP("zorvex", "Сохранение файла...");
inline constexpr core::Text kMenuPause        = QT_TRANSLATE_NOOP("zorvex", "Приостановить");
inline constexpr core::Text kMenuPlay         = QT_TRANSLATE_NOOP("zorvex", "Воспроизвести");
// For the text that the pointer is on.
inline constexpr core::Text kTextCut          = QT_TRANSLATE_NOOP("zorvex", "Вырезать");
inline constexpr core::Text kTextCopy         = QT_TRANSLATE_NOOP("zorvex", "Копировать");
inline constexpr core::Text kTextPaste        = QT_TRANSLATE_NOOP("zorvex", "Вставить");
inline constexpr core::Text kTextClear        = QT_TRANSLATE_NOOP("zorvex", "Удалить");
inline constexpr core::Text kTextSelectAll    = QT_TRANSLATE_NOOP("zorvex", "Выделить всё");
inline constexpr core::Text kLinkOpen         = QT_TRANSLATE_NOOP("zorvex", "Открыть ссылку");
inline constexpr core::Text kLinkCopy         = QT_TRANSLATE_NOOP("zorvex", "Копировать ссылку");

inline constexpr core::Text kTimeModes[]      = {QT_TRANSLATE_NOOP("zorvex", "Прошло времени: "), QT_TRANSLATE_NOOP("zorvex", "Осталось времени: "), QT_TRANSLATE_NOOP("zorvex", "Всего времени: "),
                                                  QT_TRANSLATE_NOOP("zorvex", "Прошло кадров: "),  QT_TRANSLATE_NOOP("zorvex", "Осталось кадров: "),  QT_TRANSLATE_NOOP("zorvex", "Всего кадров: ")};

inline constexpr core::Text kOpenTitle        = QT_TRANSLATE_NOOP("zorvex", "Открыть файл Macromedia Flash...");
inline constexpr core::Text kOpenFilters[]    = {QT_TRANSLATE_NOOP("zorvex", "Все поддерживаемые файлы (*.swf *.exe)"),
                                                  QT_TRANSLATE_NOOP("zorvex", "Macromedia Flash (*.swf)"),
                                                  QT_TRANSLATE_NOOP("zorvex", "Flash Projector (*.exe)")};
inline constexpr core::Text kSaveTitle        = QT_TRANSLATE_NOOP("zorvex", "Сохранить как...");
inline constexpr core::Text kSaveProjector    = QT_TRANSLATE_NOOP("zorvex", "Сохранение медиа из проектора (*.swf)");
inline constexpr core::Text kSaveCompressed   = QT_TRANSLATE_NOOP("zorvex", "Сохранение со снятием сжатия (*.swf)");
inline constexpr core::Text kSavePlain        = QT_TRANSLATE_NOOP("zorvex", "Сохранение без изменений (*.swf)");
inline constexpr core::Text kSaveUnsupported  = QT_TRANSLATE_NOOP("zorvex", "Сохранение с заданными условиями не поддерживается");
inline constexpr core::Text kSaveBoxTitle     = QT_TRANSLATE_NOOP("zorvex", "Сохранение медиа");
inline constexpr core::Text kSaveFilter       = QT_TRANSLATE_NOOP("zorvex", "Фильтр: ");
inline constexpr core::Text kSaveFile         = QT_TRANSLATE_NOOP("zorvex", "Файл: ");
inline constexpr core::Text kSaveCompression  = QT_TRANSLATE_NOOP("zorvex", "Сжатие: ");
inline constexpr core::Text kSaveIsProjector  = QT_TRANSLATE_NOOP("zorvex", "Проектор: ");
inline constexpr core::Text kSaveFailed       = QT_TRANSLATE_NOOP("zorvex", "Не удалось записать файл.");
inline constexpr core::Text kSaveFrameTitle   = QT_TRANSLATE_NOOP("zorvex", "Сохранить кадр");
inline constexpr core::Text kFrameSaved       = QT_TRANSLATE_NOOP("zorvex", "Кадр сохранён: %1");
inline constexpr core::Text kFrameCopied      = QT_TRANSLATE_NOOP("zorvex", "Кадр скопирован");
inline constexpr core::Text kFilmSaved        = QT_TRANSLATE_NOOP("zorvex", "Видео сохранено: %1");

inline constexpr core::Text kDialogOpen       = QT_TRANSLATE_NOOP("zorvex", "Открыть");
inline constexpr core::Text kDialogSave       = QT_TRANSLATE_NOOP("zorvex", "Сохранить");
inline constexpr core::Text kDialogChoose     = QT_TRANSLATE_NOOP("zorvex", "Выбрать");
inline constexpr core::Text kDialogCancel     = QT_TRANSLATE_NOOP("zorvex", "Отмена");
inline constexpr core::Text kDialogFolder     = QT_TRANSLATE_NOOP("zorvex", "Папка:");
inline constexpr core::Text kDialogName       = QT_TRANSLATE_NOOP("zorvex", "Имя файла:");
inline constexpr core::Text kDialogType       = QT_TRANSLATE_NOOP("zorvex", "Тип файлов:");

inline constexpr core::Text kDecompressFailed = QT_TRANSLATE_NOOP("zorvex", "Ошибка при распаковке файла.");
inline constexpr core::Text kCompressFailed   = QT_TRANSLATE_NOOP("zorvex", "Ошибка при сжатии файла.");
inline constexpr core::Text kDecompressed     = QT_TRANSLATE_NOOP("zorvex", "Сжатие снято: было %1, стало %2 (%3 %)");
inline constexpr core::Text kCompressed       = QT_TRANSLATE_NOOP("zorvex", "Файл сжат: было %1, стало %2 (%3 %)");
inline constexpr core::Text kAdviceLookFor    = QT_TRANSLATE_NOOP("zorvex", "Проверьте, не перенесён ли файл и подключён ли диск, на котором он лежал.");
inline constexpr core::Text kAdviceRights     = QT_TRANSLATE_NOOP("zorvex", "Проверьте права на файл и на папку, в которой он лежит.");
inline constexpr core::Text kAdviceReadOnly   = QT_TRANSLATE_NOOP("zorvex", "Выберите папку на другом диске.");
inline constexpr core::Text kAdviceRoom       = QT_TRANSLATE_NOOP("zorvex", "Освободите место и попробуйте ещё раз.");
inline constexpr core::Text kAdviceShorten    = QT_TRANSLATE_NOOP("zorvex", "Сократите имя файла или перенесите его в папку с коротким именем.");
inline constexpr core::Text kAdviceDevice     = QT_TRANSLATE_NOOP("zorvex", "Проверьте диск, попробуйте ещё раз или скопируйте файл в другое место.");
inline constexpr core::Text kAdviceOtherCopy  = QT_TRANSLATE_NOOP("zorvex", "Возьмите другую копию файла: в этой не хватает данных или они искажены.");
inline constexpr core::Text kAdviceFormats    = QT_TRANSLATE_NOOP("zorvex", "Открываются ролики (.swf) и проекторы Flash: программы с роликом внутри.");
inline constexpr core::Text kAdviceNoMedia    = QT_TRANSLATE_NOOP("zorvex", "В этой программе нет ролика Flash.");
inline constexpr core::Text kAdviceMemory     = QT_TRANSLATE_NOOP("zorvex", "Закройте другие программы и откройте ролик ещё раз.");

inline constexpr core::Text kConversionCancelled = QT_TRANSLATE_NOOP("zorvex", "Отменено, файл остался прежним");
inline constexpr core::Text kConverting       = QT_TRANSLATE_NOOP("zorvex", "Сжатие и распаковка");
inline constexpr core::Text kThumbnailsRemoved = QT_TRANSLATE_NOOP("zorvex", "Удалено эскизов: %1");
inline constexpr core::Text kNoThumbnails     = QT_TRANSLATE_NOOP("zorvex", "Эскизов нет");
inline constexpr core::Text kFirstMovie       = QT_TRANSLATE_NOOP("zorvex", "Это первый ролик");
inline constexpr core::Text kLastMovie        = QT_TRANSLATE_NOOP("zorvex", "Это последний ролик");
inline constexpr core::Text kMovieOf          = QT_TRANSLATE_NOOP("zorvex", "%1 из %2: %3");
inline constexpr core::Text kOptionsUnsaved   = QT_TRANSLATE_NOOP("zorvex", "Не удалось записать файл настроек. Изменения действуют до выхода "
                                                 "из программы.");
inline constexpr core::Text kDiskFull         = QT_TRANSLATE_NOOP("zorvex", "На диске недостаточно места.");
inline constexpr core::Text kScriptIsSlow     = QT_TRANSLATE_NOOP("zorvex", "Сценарий ролика выполняется слишком долго. Прервать его?");
inline constexpr core::Text kScriptEnd        = QT_TRANSLATE_NOOP("zorvex", "Прервать сценарий");
inline constexpr core::Text kScriptGoOn       = QT_TRANSLATE_NOOP("zorvex", "Продолжить");
inline constexpr core::Text kNoMemory         = QT_TRANSLATE_NOOP("zorvex", "Ролику не хватило памяти или времени, и он закрыт");
inline constexpr core::Text kMovieCrashed     = QT_TRANSLATE_NOOP("zorvex", "Ролик завершился с ошибкой и закрыт");
inline constexpr core::Text kMovieNotAnswering = QT_TRANSLATE_NOOP("zorvex", "Ролик не отвечал и закрыт");
inline constexpr core::Text kMovieWithoutProcess = QT_TRANSLATE_NOOP("zorvex", "Ролик не открыт: не удалось запустить для него отдельный процесс.\n"
                                                   "Перезапустите программу, а если это не поможет, установите её заново.");
inline constexpr core::Text kNotAnswering     = QT_TRANSLATE_NOOP("zorvex", "Ролик не отвечает");
inline constexpr core::Text kNotAnsweringWait = QT_TRANSLATE_NOOP("zorvex", "Подождать");
inline constexpr core::Text kNotAnsweringClose = QT_TRANSLATE_NOOP("zorvex", "Закрыть ролик");
inline constexpr core::Text kOpenAgain        = QT_TRANSLATE_NOOP("zorvex", "Ролик «%1» только что дважды завершился с ошибкой. Открыть его ещё "
                                                 "раз?");
inline constexpr core::Text kHowToLeave       = QT_TRANSLATE_NOOP("zorvex", "Чтобы выйти из полноэкранного режима, нажмите Esc");
inline constexpr const char* kFailedFile      = "«%1»: %2";
inline constexpr core::Text kMovieDamaged     = QT_TRANSLATE_NOOP("zorvex", "Ролик повреждён, показать его нельзя");

inline constexpr core::Text kWelcomeCaption   = QT_TRANSLATE_NOOP("zorvex", "Экран приветствия");
inline constexpr core::Text kWelcomeVersion   = QT_TRANSLATE_NOOP("zorvex", "Версия ");
inline constexpr core::Text kWelcomeSubject   = QT_TRANSLATE_NOOP("zorvex", "Проигрыватель роликов и проекторов Macromedia Flash");
inline constexpr core::Text kWelcomeOpen      = QT_TRANSLATE_NOOP("zorvex", "Открыть файл...");
inline constexpr core::Text kWelcomeHint      = QT_TRANSLATE_NOOP("zorvex", "или перетащите сюда ролик (.swf) или проектор (.exe)");

inline constexpr core::Text kTipPlay          = QT_TRANSLATE_NOOP("zorvex", "Воспроизвести или приостановить");
inline constexpr core::Text kTipStop          = QT_TRANSLATE_NOOP("zorvex", "Остановить");
inline constexpr core::Text kTipBack          = QT_TRANSLATE_NOOP("zorvex", "Кадр назад");
inline constexpr core::Text kTipForward       = QT_TRANSLATE_NOOP("zorvex", "Кадр вперед");
inline constexpr core::Text kTipOpen          = QT_TRANSLATE_NOOP("zorvex", "Открыть файл");
inline constexpr core::Text kTipMute          = QT_TRANSLATE_NOOP("zorvex", "Выключить или включить звук");
inline constexpr core::Text kTipFullScreen    = QT_TRANSLATE_NOOP("zorvex", "Во весь экран");
inline constexpr core::Text kTipTime          = QT_TRANSLATE_NOOP("zorvex", "Щёлкните, чтобы сменить вид счётчика");

inline constexpr core::Text kPlaceOf         = QT_TRANSLATE_NOOP("zorvex", "%1 из %2");
inline constexpr core::Text kResumeOffer     = QT_TRANSLATE_NOOP("zorvex", "Продолжить с места: %1");
inline constexpr core::Text kSpeedIs         = QT_TRANSLATE_NOOP("zorvex", "Скорость: %1 %");
inline constexpr core::Text kSectionFrom     = QT_TRANSLATE_NOOP("zorvex", "Отрезок с %1. Нажмите A ещё раз там, где он кончается");
inline constexpr core::Text kSectionIs       = QT_TRANSLATE_NOOP("zorvex", "Повтор отрезка %1 - %2");
inline constexpr core::Text kSectionOff      = QT_TRANSLATE_NOOP("zorvex", "Повтор отрезка снят");
inline constexpr core::Text kMenuSectionFrom = QT_TRANSLATE_NOOP("zorvex", "Повтор отрезка: начало здесь");
inline constexpr core::Text kMenuSectionTo   = QT_TRANSLATE_NOOP("zorvex", "Повтор отрезка: конец здесь");
inline constexpr core::Text kMenuSectionOff  = QT_TRANSLATE_NOOP("zorvex", "Снять повтор отрезка");
inline constexpr core::Text kVolumeIs        = QT_TRANSLATE_NOOP("zorvex", "Громкость: %1 %");
inline constexpr core::Text kSoundOff        = QT_TRANSLATE_NOOP("zorvex", "Звук выключен");
inline constexpr core::Text kAwakeReason     = QT_TRANSLATE_NOOP("zorvex", "Ролик идёт во весь экран");
inline constexpr core::Text kZoomIs          = QT_TRANSLATE_NOOP("zorvex", "Масштаб: %1 %");

inline constexpr core::Text kMistakesTitle   = QT_TRANSLATE_NOOP("zorvex", "Ошибки шкурки");
inline constexpr core::Text kMistakesIn      = QT_TRANSLATE_NOOP("zorvex", "Шкурка загружена с ошибками: %1");
inline constexpr core::Text kMistakesCopy    = QT_TRANSLATE_NOOP("zorvex", "Копировать");

inline constexpr core::Text kKeysTitle       = QT_TRANSLATE_NOOP("zorvex", "Сочетания клавиш");
inline constexpr core::Text kKeysWhat        = QT_TRANSLATE_NOOP("zorvex", "Действие");
inline constexpr core::Text kKeysWhich       = QT_TRANSLATE_NOOP("zorvex", "Клавиши");
inline constexpr core::Text kKeysOr          = QT_TRANSLATE_NOOP("zorvex", " или ");
inline constexpr core::Text kKeysWindow      = QT_TRANSLATE_NOOP("zorvex", "Окно");
inline constexpr core::Text kKeysClose       = QT_TRANSLATE_NOOP("zorvex", "Закрыть");
inline constexpr core::Text kKeysNote        = QT_TRANSLATE_NOOP("zorvex", "Если ролик сам слушает клавиатуру, клавиши без Ctrl и Alt достаются ему; "
                                                "те же команды работают вместе с Ctrl. Раскладка клавиатуры может быть "
                                                "любой.");
struct OtherKey {
    core::Text what;
    core::Text keys;
};
inline constexpr OtherKey kOtherKeys[] = {
    {QT_TRANSLATE_NOOP("zorvex", "Меню окна, и когда строка меню скрыта"), QT_TRANSLATE_NOOP("zorvex", "F10")},
    {QT_TRANSLATE_NOOP("zorvex", "Меню по букве"), QT_TRANSLATE_NOOP("zorvex", "Alt+буква")},
    {QT_TRANSLATE_NOOP("zorvex", "Контекстное меню"), QT_TRANSLATE_NOOP("zorvex", "Shift+F10, Menu")},
    {QT_TRANSLATE_NOOP("zorvex", "Масштаб"), QT_TRANSLATE_NOOP("zorvex", "Ctrl+колесо мыши")},
    {QT_TRANSLATE_NOOP("zorvex", "Обычное окно из полного экрана"), QT_TRANSLATE_NOOP("zorvex", "Esc")},
};

inline constexpr core::Text kTypeMismatch     = QT_TRANSLATE_NOOP("zorvex", "Несоответствие типа");
inline constexpr core::Text kBrowseFolder     = QT_TRANSLATE_NOOP("zorvex", "Выберите папку для обзора медиа:");

inline constexpr core::Text kNothingOpens     = QT_TRANSLATE_NOOP("zorvex", "Не нашлось программы, которая открывает:\n%1");
inline constexpr core::Text kOutsideTitle     = QT_TRANSLATE_NOOP("zorvex", "Запрос ролика");
inline constexpr core::Text kOutsideAsks      = QT_TRANSLATE_NOOP("zorvex", "Ролик «%1» просит открыть:");
inline constexpr core::Text kOutsideAdvice    = QT_TRANSLATE_NOOP("zorvex", "Открывайте только то, чему доверяете. Отказ действует, пока ролик "
                                                 "не открыт заново.");
inline constexpr core::Text kOutsideHasRead   = QT_TRANSLATE_NOOP("zorvex", "Ролик читал файлы из своей папки. Вместе с адресом он может передать "
                                                 "их содержимое.");
inline constexpr core::Text kOutsideOpen      = QT_TRANSLATE_NOOP("zorvex", "Открыть");
inline constexpr core::Text kOutsideRefuse    = QT_TRANSLATE_NOOP("zorvex", "Отказать");
inline constexpr core::Text kOutsideAlways    = QT_TRANSLATE_NOOP("zorvex", "Всегда так для этого ролика (до выхода из программы)");
inline constexpr core::Text kRefusedAddress   = QT_TRANSLATE_NOOP("zorvex", "Ролик «%1» просил открыть адрес, который программа не открывает.");
inline constexpr core::Text kRefusedMissing   = QT_TRANSLATE_NOOP("zorvex", "Ролик «%1» просил открыть файл, которого нет.");
inline constexpr core::Text kRefusedProgram   = QT_TRANSLATE_NOOP("zorvex", "Ролик «%1» просил запустить программу. По просьбе ролика программы, "
                                                 "сценарии и ярлыки не запускаются.");
inline constexpr core::Text kRefusedMachine   = QT_TRANSLATE_NOOP("zorvex", "Ролик «%1» просил открыть файл с другого компьютера. Такие файлы по "
                                                 "просьбе ролика не открываются.");
inline constexpr core::Text kRefusedMisleading = QT_TRANSLATE_NOOP("zorvex", "Ролик «%1» просил открыть то, чьё имя вводит в заблуждение. Это не "
                                                 "открыто.");

inline constexpr core::Text kPlaceFormLoad    = QT_TRANSLATE_NOOP("zorvex", "Загрузка окна");
inline constexpr core::Text kPlaceMenu        = QT_TRANSLATE_NOOP("zorvex", "Выполнение команды меню");
inline constexpr core::Text kPlaceOpen        = QT_TRANSLATE_NOOP("zorvex", "Открытие медиа");
inline constexpr core::Text kPlaceClose       = QT_TRANSLATE_NOOP("zorvex", "Закрытие медиа");
inline constexpr core::Text kPlaceSave        = QT_TRANSLATE_NOOP("zorvex", "Сохранение медиа");
inline constexpr core::Text kPlaceVideo       = QT_TRANSLATE_NOOP("zorvex", "Сохранение видео");
inline constexpr core::Text kPlaceTimer       = QT_TRANSLATE_NOOP("zorvex", "Обновление информации");
inline constexpr core::Text kPlaceQuit        = QT_TRANSLATE_NOOP("zorvex", "Завершение работы");
inline constexpr core::Text kPlacePage        = QT_TRANSLATE_NOOP("zorvex", "Команда страницы");
inline constexpr core::Text kPlaceJournal     = QT_TRANSLATE_NOOP("zorvex", "Запись журнала");
inline constexpr core::Text kPlaceConsole     = QT_TRANSLATE_NOOP("zorvex", "Консоль");

inline constexpr core::Text kConsole          = QT_TRANSLATE_NOOP("zorvex", "Консоль");
inline constexpr core::Text kConsoleError    = QT_TRANSLATE_NOOP("zorvex", "%1 (ошибка %2)");
inline constexpr core::Text kConsoleHint      = QT_TRANSLATE_NOOP("zorvex", "Команда, например: Player.PlayMedia");
inline constexpr core::Text kCloseConsoleTip  = QT_TRANSLATE_NOOP("zorvex", "Закрыть консоль");
// clang-format on

} // namespace player::texts
