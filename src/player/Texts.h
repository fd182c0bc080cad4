#pragma once

// Every text of this folder that a user sees, but for the captions of the menus, which stand in their own
// table.

namespace player::texts
{

// clang-format off
inline constexpr const char* kPlaying          = "Воспроизведение";
inline constexpr const char* kPlayingLimited  = "Воспроизведение с ограничениями";
inline constexpr const char* kStopped          = "Остановлено";
inline constexpr const char* kReady            = "Готово";
inline constexpr const char* kOpeningFile      = "Открытие файла...";
inline constexpr const char* kSavingFile       = "Сохранение файла...";
inline constexpr const char* kMenuPause        = "Приостановить";
inline constexpr const char* kMenuPlay         = "Воспроизвести";

inline constexpr const char* kTimeModes[]      = {"Прошло времени: ", "Осталось времени: ", "Всего времени: ",
                                                  "Прошло кадров: ",  "Осталось кадров: ",  "Всего кадров: "};

inline constexpr const char* kOpenTitle        = "Открыть файл Macromedia Flash...";
inline constexpr const char* kOpenFilters[]    = {"Все поддерживаемые файлы (*.swf *.exe)",
                                                  "Macromedia Flash (*.swf)",
                                                  "Flash Projector (*.exe)"};
inline constexpr const char* kSaveTitle        = "Сохранить как...";
inline constexpr const char* kSaveProjector    = "Сохранение медиа из проектора (*.swf)";
inline constexpr const char* kSaveCompressed   = "Сохранение со снятием сжатия (*.swf)";
inline constexpr const char* kSavePlain        = "Сохранение без изменений (*.swf)";
inline constexpr const char* kSaveUnsupported  = "Сохранение с заданными условиями не поддерживается";
inline constexpr const char* kSaveBoxTitle     = "Сохранение медиа";
inline constexpr const char* kSaveFilter       = "Фильтр: ";
inline constexpr const char* kSaveFile         = "Файл: ";
inline constexpr const char* kSaveCompression  = "Сжатие: ";
inline constexpr const char* kSaveIsProjector  = "Проектор: ";
inline constexpr const char* kSaveFailed       = "Не удалось записать файл.";
inline constexpr const char* kSaveFrameTitle   = "Сохранить кадр";
inline constexpr const char* kFrameSaved       = "Кадр сохранён: %1";
inline constexpr const char* kFrameCopied      = "Кадр скопирован";
inline constexpr const char* kFilmSaved        = "Видео сохранено: %1";

inline constexpr const char* kDialogOpen       = "Открыть";
inline constexpr const char* kDialogSave       = "Сохранить";
inline constexpr const char* kDialogChoose     = "Выбрать";
inline constexpr const char* kDialogCancel     = "Отмена";
inline constexpr const char* kDialogFolder     = "Папка:";
inline constexpr const char* kDialogName       = "Имя файла:";
inline constexpr const char* kDialogType       = "Тип файлов:";

inline constexpr const char* kDecompressFailed = "Ошибка при распаковке файла.";
inline constexpr const char* kCompressFailed   = "Ошибка при сжатии файла.";
inline constexpr const char* kDecompressed     = "Сжатие снято: было %1, стало %2 (%3 %)";
inline constexpr const char* kCompressed       = "Файл сжат: было %1, стало %2 (%3 %)";
inline constexpr const char* kAdviceLookFor    = "Проверьте, не перенесён ли файл и подключён ли диск, на котором он лежал.";
inline constexpr const char* kAdviceRights     = "Проверьте права на файл и на папку, в которой он лежит.";
inline constexpr const char* kAdviceReadOnly   = "Выберите папку на другом диске.";
inline constexpr const char* kAdviceRoom       = "Освободите место и попробуйте ещё раз.";
inline constexpr const char* kAdviceShorten    = "Сократите имя файла или перенесите его в папку с коротким именем.";
inline constexpr const char* kAdviceDevice     = "Проверьте диск, попробуйте ещё раз или скопируйте файл в другое место.";
inline constexpr const char* kAdviceOtherCopy  = "Возьмите другую копию файла: в этой не хватает данных или они искажены.";
inline constexpr const char* kAdviceFormats    = "Открываются ролики (.swf) и проекторы Flash: программы с роликом внутри.";
inline constexpr const char* kAdviceNoMedia    = "В этой программе нет ролика Flash.";
inline constexpr const char* kAdviceMemory     = "Закройте другие программы и откройте ролик ещё раз.";

inline constexpr const char* kConversionCancelled = "Отменено, файл остался прежним";
inline constexpr const char* kConverting       = "Сжатие и распаковка";
inline constexpr const char* kThumbnailsRemoved = "Удалено эскизов: %1";
inline constexpr const char* kNoThumbnails     = "Эскизов нет";
inline constexpr const char* kFirstMovie       = "Это первый ролик";
inline constexpr const char* kLastMovie        = "Это последний ролик";
inline constexpr const char* kMovieOf          = "%1 из %2: %3";
inline constexpr const char* kOptionsUnsaved   = "Не удалось записать файл настроек. Изменения действуют до выхода "
                                                 "из программы.";
inline constexpr const char* kDiskFull         = "На диске недостаточно места.";
inline constexpr const char* kScriptIsSlow     = "Сценарий ролика выполняется слишком долго. Прервать его?";
inline constexpr const char* kScriptEnd        = "Прервать сценарий";
inline constexpr const char* kScriptGoOn       = "Продолжить";
inline constexpr const char* kNoMemory         = "Ролику не хватило памяти или времени, и он закрыт";
inline constexpr const char* kMovieCrashed     = "Ролик завершился с ошибкой и закрыт";
inline constexpr const char* kMovieNotAnswering = "Ролик не отвечал и закрыт";
inline constexpr const char* kMovieWithoutProcess = "Ролик не открыт: не удалось запустить для него отдельный процесс.\n"
                                                   "Перезапустите программу, а если это не поможет, установите её заново.";
inline constexpr const char* kNotAnswering     = "Ролик не отвечает";
inline constexpr const char* kNotAnsweringWait = "Подождать";
inline constexpr const char* kNotAnsweringClose = "Закрыть ролик";
inline constexpr const char* kOpenAgain        = "Ролик «%1» только что дважды завершился с ошибкой. Открыть его ещё "
                                                 "раз?";
inline constexpr const char* kHowToLeave       = "Чтобы выйти из полноэкранного режима, нажмите Esc";
inline constexpr const char* kFailedFile      = "«%1»: %2";
inline constexpr const char* kMovieDamaged     = "Ролик повреждён, показать его нельзя";

inline constexpr const char* kWelcomeCaption   = "Экран приветствия";
inline constexpr const char* kWelcomeVersion   = "Версия ";
inline constexpr const char* kWelcomeSubject   = "Проигрыватель роликов и проекторов Macromedia Flash";
inline constexpr const char* kWelcomeOpen      = "Открыть файл...";
inline constexpr const char* kWelcomeHint      = "или перетащите сюда ролик (.swf) или проектор (.exe)";

inline constexpr const char* kTipPlay          = "Воспроизвести или приостановить";
inline constexpr const char* kTipStop          = "Остановить";
inline constexpr const char* kTipBack          = "Кадр назад";
inline constexpr const char* kTipForward       = "Кадр вперед";
inline constexpr const char* kTipOpen          = "Открыть файл";
inline constexpr const char* kTipMute          = "Выключить или включить звук";
inline constexpr const char* kTipFullScreen    = "Во весь экран";
inline constexpr const char* kTipTime          = "Щёлкните, чтобы сменить вид счётчика";

inline constexpr const char* kPlaceOf         = "%1 из %2";
inline constexpr const char* kResumeOffer     = "Продолжить с места: %1";
inline constexpr const char* kSpeedIs         = "Скорость: %1 %";
inline constexpr const char* kSectionFrom     = "Отрезок с %1. Нажмите A ещё раз там, где он кончается";
inline constexpr const char* kSectionIs       = "Повтор отрезка %1 - %2";
inline constexpr const char* kSectionOff      = "Повтор отрезка снят";
inline constexpr const char* kMenuSectionFrom = "Повтор отрезка: начало здесь";
inline constexpr const char* kMenuSectionTo   = "Повтор отрезка: конец здесь";
inline constexpr const char* kMenuSectionOff  = "Снять повтор отрезка";
inline constexpr const char* kVolumeIs        = "Громкость: %1 %";
inline constexpr const char* kSoundOff        = "Звук выключен";
inline constexpr const char* kAwakeReason     = "Ролик идёт во весь экран";
inline constexpr const char* kZoomIs          = "Масштаб: %1 %";

inline constexpr const char* kKeysTitle       = "Сочетания клавиш";
inline constexpr const char* kKeysWhat        = "Действие";
inline constexpr const char* kKeysWhich       = "Клавиши";
inline constexpr const char* kKeysOr          = " или ";
inline constexpr const char* kKeysWindow      = "Окно";
inline constexpr const char* kKeysClose       = "Закрыть";
inline constexpr const char* kKeysNote        = "Если ролик сам слушает клавиатуру, клавиши без Ctrl и Alt достаются ему; "
                                                "те же команды работают вместе с Ctrl. Раскладка клавиатуры может быть "
                                                "любой.";
struct OtherKey {
    const char* what;
    const char* keys;
};
inline constexpr OtherKey kOtherKeys[] = {
    {"Меню окна, и когда строка меню скрыта", "F10"},
    {"Меню по букве", "Alt+буква"},
    {"Контекстное меню", "Shift+F10, Menu"},
    {"Масштаб", "Ctrl+колесо мыши"},
    {"Обычное окно из полного экрана", "Esc"},
};

inline constexpr const char* kTypeMismatch     = "Несоответствие типа";
inline constexpr const char* kBrowseFolder     = "Выберите папку для обзора медиа:";

inline constexpr const char* kNothingOpens     = "Не нашлось программы, которая открывает:\n%1";
inline constexpr const char* kOutsideTitle     = "Запрос ролика";
inline constexpr const char* kOutsideAsks      = "Ролик «%1» просит открыть:";
inline constexpr const char* kOutsideAdvice    = "Открывайте только то, чему доверяете. Отказ действует, пока ролик "
                                                 "не открыт заново.";
inline constexpr const char* kOutsideHasRead   = "Ролик читал файлы из своей папки. Вместе с адресом он может передать "
                                                 "их содержимое.";
inline constexpr const char* kOutsideOpen      = "Открыть";
inline constexpr const char* kOutsideRefuse    = "Отказать";
inline constexpr const char* kOutsideAlways    = "Всегда так для этого ролика (до выхода из программы)";
inline constexpr const char* kRefusedAddress   = "Ролик «%1» просил открыть адрес, который программа не открывает.";
inline constexpr const char* kRefusedMissing   = "Ролик «%1» просил открыть файл, которого нет.";
inline constexpr const char* kRefusedProgram   = "Ролик «%1» просил запустить программу. По просьбе ролика программы, "
                                                 "сценарии и ярлыки не запускаются.";
inline constexpr const char* kRefusedMachine   = "Ролик «%1» просил открыть файл с другого компьютера. Такие файлы по "
                                                 "просьбе ролика не открываются.";
inline constexpr const char* kRefusedMisleading = "Ролик «%1» просил открыть то, чьё имя вводит в заблуждение. Это не "
                                                 "открыто.";

inline constexpr const char* kPlaceFormLoad    = "Загрузка окна";
inline constexpr const char* kPlaceMenu        = "Выполнение команды меню";
inline constexpr const char* kPlaceOpen        = "Открытие медиа";
inline constexpr const char* kPlaceClose       = "Закрытие медиа";
inline constexpr const char* kPlaceSave        = "Сохранение медиа";
inline constexpr const char* kPlaceVideo       = "Сохранение видео";
inline constexpr const char* kPlaceTimer       = "Обновление информации";
inline constexpr const char* kPlaceQuit        = "Завершение работы";
inline constexpr const char* kPlacePage        = "Команда страницы";
inline constexpr const char* kPlaceJournal     = "Запись журнала";
inline constexpr const char* kPlaceConsole     = "Консоль";

inline constexpr const char* kConsole          = "Консоль";
inline constexpr const char* kConsoleError    = "%1 (ошибка %2)";
inline constexpr const char* kConsoleHint      = "Команда, например: Player.PlayMedia";
inline constexpr const char* kCloseConsoleTip  = "Закрыть консоль";
// clang-format on

} // namespace player::texts
