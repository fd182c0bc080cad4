<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="en" sourcelanguage="ru">
<context>
    <name>zorvex</name>
    <message>
        <source>Готово</source>
        <translation>Ready</translation>
    </message>
    <message>
        <source>Поиск медиа файлов...</source>
        <translation>Looking for media files...</translation>
    </message>
    <message>
        <source>Найдено медиа файлов: </source>
        <translation>Media files found: </translation>
    </message>
    <message>
        <source>Обзор медиа</source>
        <translation>Browse Media</translation>
    </message>
    <message>
        <source>Создание эскизов</source>
        <translation>Making Thumbnails</translation>
    </message>
    <message>
        <source>Готово </source>
        <translation>Done </translation>
    </message>
    <message>
        <source> из </source>
        <translation> of </translation>
    </message>
    <message>
        <source>Отмена</source>
        <translation>Cancel</translation>
    </message>
    <message>
        <source>Если создание конкретного эскиза затянулось, двойным щелчком можно его пропустить</source>
        <translation>If a thumbnail takes too long, a double click skips it</translation>
    </message>
    <message>
        <source>Нет изображения</source>
        <translation>No picture</translation>
    </message>
    <message>
        <source>Свойства</source>
        <translation>Properties</translation>
    </message>
    <message>
        <source>Версия: </source>
        <translation>Version: </translation>
    </message>
    <message>
        <source>Длительность (кадров): </source>
        <translation>Length (frames): </translation>
    </message>
    <message>
        <source>Размер файла: </source>
        <translation>File size: </translation>
    </message>
    <message>
        <source>Кадр: </source>
        <translation>Frame: </translation>
    </message>
    <message>
        <source>Файл не сжат</source>
        <translation>The file is not compressed</translation>
    </message>
    <message>
        <source>Сжатие: </source>
        <translation>Compression: </translation>
    </message>
    <message>
        <source>% от оригинала</source>
        <translation>% of the original</translation>
    </message>
    <message>
        <source>Автономный проектор (EXE)</source>
        <translation>Stand-alone projector (EXE)</translation>
    </message>
    <message>
        <source>Лишь </source>
        <translation>Only </translation>
    </message>
    <message>
        <source>% файла загружено</source>
        <translation>% of the file is loaded</translation>
    </message>
    <message>
        <source>Файл не найден</source>
        <translation>File not found</translation>
    </message>
    <message>
        <source> байт</source>
        <translation> bytes</translation>
    </message>
    <message>
        <source> Кб</source>
        <translation> KB</translation>
    </message>
    <message>
        <source> Мб</source>
        <translation> MB</translation>
    </message>
    <message>
        <source>Двойным щелчком можно обновить эскиз</source>
        <translation>A double click makes the thumbnail anew</translation>
    </message>
    <message>
        <source>Закрыть</source>
        <translation>Close</translation>
    </message>
    <message>
        <source>Путь скопирован в буфер обмена</source>
        <translation>The path was copied to the clipboard</translation>
    </message>
    <message>
        <source>ru</source>
        <translation>en</translation>
    </message>
    <message>
        <source>Проигрыватель роликов и проекторов Macromedia Flash.

Использование: zorvex [ФАЙЛ]

  ФАЙЛ        ролик (.swf) или проектор (.exe), который нужно открыть
  -h, --help  показать эту справку
  --version   показать версию
</source>
        <translation>Player of Macromedia Flash movies and projectors.

Usage: zorvex [FILE]

  FILE        movie (.swf) or projector (.exe) to be opened
  -h, --help  show this help
  --version   show the version
</translation>
    </message>
    <message>
        <source>Папка не найдена</source>
        <translation>Folder not found</translation>
    </message>
    <message>
        <source>На диске недостаточно места</source>
        <translation>There is not enough room on the disk</translation>
    </message>
    <message>
        <source>Нет доступа к файлу</source>
        <translation>No access to the file</translation>
    </message>
    <message>
        <source>Диск доступен только для чтения</source>
        <translation>The disk is read-only</translation>
    </message>
    <message>
        <source>Это папка, а не файл</source>
        <translation>This is a folder, not a file</translation>
    </message>
    <message>
        <source>Ошибка чтения или записи файла</source>
        <translation>Error on reading or writing the file</translation>
    </message>
    <message>
        <source>Имя файла слишком длинное</source>
        <translation>The file name is too long</translation>
    </message>
    <message>
        <source>Файл слишком велик</source>
        <translation>The file is too large</translation>
    </message>
    <message>
        <source>Файл повреждён</source>
        <translation>The file is damaged</translation>
    </message>
    <message>
        <source>Формат файла не поддерживается</source>
        <translation>The file format is not supported</translation>
    </message>
    <message>
        <source>Ошибка</source>
        <translation>Error</translation>
    </message>
    <message>
        <source>В программе произошла ошибка</source>
        <translation>The program has met an error</translation>
    </message>
    <message>
        <source>Можно продолжить работу или завершить приложение; настройки при этом сохранятся.</source>
        <translation>You can go on working or end the program; the settings are kept either way.</translation>
    </message>
    <message>
        <source>Номер: </source>
        <translation>Number: </translation>
    </message>
    <message>
        <source>Место: </source>
        <translation>Place: </translation>
    </message>
    <message>
        <source>Источник: </source>
        <translation>Source: </translation>
    </message>
    <message>
        <source>Описание: </source>
        <translation>Description: </translation>
    </message>
    <message>
        <source>Дополнительная информация</source>
        <translation>More information</translation>
    </message>
    <message>
        <source>Продолжить</source>
        <translation>Continue</translation>
    </message>
    <message>
        <source>Завершить</source>
        <translation>End</translation>
    </message>
    <message>
        <source>Показать дополнительную информацию, связанную с ошибкой</source>
        <translation>Show more information about the error</translation>
    </message>
    <message>
        <source>Продолжить работу приложения</source>
        <translation>Go on working with the program</translation>
    </message>
    <message>
        <source>Прекратить работу приложения</source>
        <translation>End the program</translation>
    </message>
    <message>
        <source>© Авторы Zorvex</source>
        <translation>© The authors of Zorvex</translation>
    </message>
    <message>
        <source>Macromedia, Flash и Shockwave - товарные знаки их владельцев.</source>
        <translation>Macromedia, Flash and Shockwave are trademarks of their owners.</translation>
    </message>
    <message>
        <source>Сохранить как видео</source>
        <translation>Save as Video</translation>
    </message>
    <message>
        <source>Вид файла:</source>
        <translation>Kind of file:</translation>
    </message>
    <message>
        <source>Отрезок:</source>
        <translation>Part:</translation>
    </message>
    <message>
        <source>Вся лента ролика</source>
        <translation>The movie&apos;s whole timeline</translation>
    </message>
    <message>
        <source>Пока что-то движется или звучит</source>
        <translation>As long as something moves or sounds</translation>
    </message>
    <message>
        <source>Заданный</source>
        <translation>Given</translation>
    </message>
    <message>
        <source>с</source>
        <translation>from</translation>
    </message>
    <message>
        <source>по</source>
        <translation>to</translation>
    </message>
    <message>
        <source>Секунды (2.5), минуты и секунды (1:02.5) или кадр (48f)</source>
        <translation>Seconds (2.5), minutes and seconds (1:02.5) or a frame (48f)</translation>
    </message>
    <message>
        <source>Размер:</source>
        <translation>Size:</translation>
    </message>
    <message>
        <source>Как у ролика (%1 x %2)</source>
        <translation>As the movie (%1 x %2)</translation>
    </message>
    <message>
        <source>Вдвое больше (%1 x %2)</source>
        <translation>Twice as large (%1 x %2)</translation>
    </message>
    <message>
        <source>Другой</source>
        <translation>Other</translation>
    </message>
    <message>
        <source>Кадров в секунду:</source>
        <translation>Frames per second:</translation>
    </message>
    <message>
        <source>Как у ролика (%1)</source>
        <translation>As the movie (%1)</translation>
    </message>
    <message>
        <source>Качество:</source>
        <translation>Quality:</translation>
    </message>
    <message>
        <source>Малый файл</source>
        <translation>Small file</translation>
    </message>
    <message>
        <source>Хорошее</source>
        <translation>Good</translation>
    </message>
    <message>
        <source>Наилучшее</source>
        <translation>Best</translation>
    </message>
    <message>
        <source>Со звуком</source>
        <translation>With sound</translation>
    </message>
    <message>
        <source>Без фона ролика</source>
        <translation>Without the movie&apos;s background</translation>
    </message>
    <message>
        <source>Записать мои действия...</source>
        <translation>Record what I do...</translation>
    </message>
    <message>
        <source>Действия записаны: %1 с</source>
        <translation>Recorded: %1 s</translation>
    </message>
    <message>
        <source>Запись действий</source>
        <translation>Recording</translation>
    </message>
    <message>
        <source>Ролик загружается...</source>
        <translation>The movie is loading...</translation>
    </message>
    <message>
        <source>Записано %1 с. Щелчки и клавиши повторятся в фильме.</source>
        <translation>%1 s recorded. Clicks and keys will be repeated in the film.</translation>
    </message>
    <message>
        <source>Первый кадр</source>
        <translation>First frame</translation>
    </message>
    <message>
        <source>Последний кадр</source>
        <translation>Last frame</translation>
    </message>
    <message>
        <source>Станет известен
при записи</source>
        <translation>Will be known
when it is made</translation>
    </message>
    <message>
        <source>Сохранить...</source>
        <translation>Save...</translation>
    </message>
    <message>
        <source>%1 (нельзя: %2)</source>
        <translation>%1 (not possible: %2)</translation>
    </message>
    <message>
        <source>Время задано неверно.</source>
        <translation>The time is not valid.</translation>
    </message>
    <message>
        <source>Отрезок кончается раньше, чем начинается.</source>
        <translation>The part ends before it begins.</translation>
    </message>
    <message>
        <source>Запись фильма</source>
        <translation>Making the Film</translation>
    </message>
    <message>
        <source>Подготовка...</source>
        <translation>Preparing...</translation>
    </message>
    <message>
        <source>Кадр %1 из %2</source>
        <translation>Frame %1 of %2</translation>
    </message>
    <message>
        <source>Кадр %1</source>
        <translation>Frame %1</translation>
    </message>
    <message>
        <source>Осталось %1</source>
        <translation>%1 left</translation>
    </message>
    <message>
        <source>%1 с</source>
        <translation>%1 s</translation>
    </message>
    <message>
        <source>%1 мин %2 с</source>
        <translation>%1 min %2 s</translation>
    </message>
    <message>
        <source>Ролик не удалось проиграть.</source>
        <translation>The movie could not be played.</translation>
    </message>
    <message>
        <source>Файл не удалось записать.</source>
        <translation>The file could not be written.</translation>
    </message>
    <message>
        <source>На диске не хватает места.</source>
        <translation>There is not enough room on the disk.</translation>
    </message>
    <message>
        <source>В эту папку нельзя записывать.</source>
        <translation>This folder cannot be written to.</translation>
    </message>
    <message>
        <source>На этой машине нет нужного кодировщика.</source>
        <translation>The encoder that is needed is missing on this machine.</translation>
    </message>
    <message>
        <source>У ролика нет конца: записаны первые %1.</source>
        <translation>The movie has no end: the first %1 were made.</translation>
    </message>
    <message>
        <source>Не найдена программа zorvex-export, которая пишет видео.</source>
        <translation>The program zorvex-export, which makes videos, was not found.</translation>
    </message>
    <message>
        <source>Файл имеет незначительный размер</source>
        <translation>The file is too short</translation>
    </message>
    <message>
        <source>Файл не содержит медиа</source>
        <translation>The file holds no media</translation>
    </message>
    <message>
        <source>Ошибка при чтении сжатого фала</source>
        <translation>Error on reading the compressed file</translation>
    </message>
    <message>
        <source>Файл повреждён: заголовок обрывается</source>
        <translation>The file is damaged: its header is cut short</translation>
    </message>
    <message>
        <source>Открытие медиа...</source>
        <translation>Opening media...</translation>
    </message>
    <message>
        <source>Загрузка медиа...</source>
        <translation>Loading media...</translation>
    </message>
    <message>
        <source>Чтение файла</source>
        <translation>Reading the file</translation>
    </message>
    <message>
        <source>Декомпрессия файла</source>
        <translation>Decompressing the file</translation>
    </message>
    <message>
        <source>Сжатие файла</source>
        <translation>Compressing the file</translation>
    </message>
    <message>
        <source>Запись</source>
        <translation>Writing</translation>
    </message>
    <message>
        <source>Чтение исполняемого файла</source>
        <translation>Reading the executable file</translation>
    </message>
    <message>
        <source>Запись файла</source>
        <translation>Writing the file</translation>
    </message>
    <message>
        <source>Снять сжатие</source>
        <translation>Decompress</translation>
    </message>
    <message>
        <source>Сжать...</source>
        <translation>Compress...</translation>
    </message>
    <message>
        <source>Создание окна (проблема с Flash?)</source>
        <translation>Creating the window (a problem with Flash?)</translation>
    </message>
    <message>
        <source>Файл</source>
        <translation>File</translation>
    </message>
    <message>
        <source>Открыть...</source>
        <translation>Open...</translation>
    </message>
    <message>
        <source>Сохранить как...</source>
        <translation>Save As...</translation>
    </message>
    <message>
        <source>Сохранить как видео...</source>
        <translation>Save as Video...</translation>
    </message>
    <message>
        <source>Сохранить кадр...</source>
        <translation>Save Frame...</translation>
    </message>
    <message>
        <source>Копировать кадр</source>
        <translation>Copy Frame</translation>
    </message>
    <message>
        <source>Список последних файлов</source>
        <translation>List of recent files</translation>
    </message>
    <message>
        <source>Выход</source>
        <translation>Exit</translation>
    </message>
    <message>
        <source>Вид</source>
        <translation>View</translation>
    </message>
    <message>
        <source>Во весь экран</source>
        <translation>Full Screen</translation>
    </message>
    <message>
        <source>Строка меню</source>
        <translation>Menu Bar</translation>
    </message>
    <message>
        <source>Поверх всех окон</source>
        <translation>Always on Top</translation>
    </message>
    <message>
        <source>Качество</source>
        <translation>Quality</translation>
    </message>
    <message>
        <source>Высокое</source>
        <translation>High</translation>
    </message>
    <message>
        <source>Среднее</source>
        <translation>Medium</translation>
    </message>
    <message>
        <source>Низкое</source>
        <translation>Low</translation>
    </message>
    <message>
        <source>Авто высокое</source>
        <translation>Auto High</translation>
    </message>
    <message>
        <source>Авто низкое</source>
        <translation>Auto Low</translation>
    </message>
    <message>
        <source>Увеличение</source>
        <translation>Zoom</translation>
    </message>
    <message>
        <source>Масштабирование</source>
        <translation>Scaling</translation>
    </message>
    <message>
        <source>Показ всего</source>
        <translation>Show All</translation>
    </message>
    <message>
        <source>Без границ</source>
        <translation>No Border</translation>
    </message>
    <message>
        <source>Вписать в окно</source>
        <translation>Fit to Window</translation>
    </message>
    <message>
        <source>Видимость</source>
        <translation>Opacity</translation>
    </message>
    <message>
        <source>Полная</source>
        <translation>Full</translation>
    </message>
    <message>
        <source>Значительная</source>
        <translation>Considerable</translation>
    </message>
    <message>
        <source>Средняя</source>
        <translation>Medium</translation>
    </message>
    <message>
        <source>Небольшая</source>
        <translation>Slight</translation>
    </message>
    <message>
        <source>Шкурка</source>
        <translation>Skin</translation>
    </message>
    <message>
        <source>Обновить шкурку</source>
        <translation>Reload Skin</translation>
    </message>
    <message>
        <source>[ список шкурок ]</source>
        <translation>[ list of skins ]</translation>
    </message>
    <message>
        <source>Воспроизведение</source>
        <translation>Playback</translation>
    </message>
    <message>
        <source>Воспроизвести</source>
        <translation>Play</translation>
    </message>
    <message>
        <source>Остановить</source>
        <translation>Stop</translation>
    </message>
    <message>
        <source>Кадр вперед</source>
        <translation>Frame Forward</translation>
    </message>
    <message>
        <source>Кадр назад</source>
        <translation>Frame Back</translation>
    </message>
    <message>
        <source>Перейти</source>
        <translation>Go To</translation>
    </message>
    <message>
        <source>В начало</source>
        <translation>Beginning</translation>
    </message>
    <message>
        <source>Продолжить с места</source>
        <translation>Continue Where You Left</translation>
    </message>
    <message>
        <source>Скорость</source>
        <translation>Speed</translation>
    </message>
    <message>
        <source>Медленнее</source>
        <translation>Slower</translation>
    </message>
    <message>
        <source>Быстрее</source>
        <translation>Faster</translation>
    </message>
    <message>
        <source>Предыдущий ролик</source>
        <translation>Previous Movie</translation>
    </message>
    <message>
        <source>Следующий ролик</source>
        <translation>Next Movie</translation>
    </message>
    <message>
        <source>Громче</source>
        <translation>Louder</translation>
    </message>
    <message>
        <source>Тише</source>
        <translation>Quieter</translation>
    </message>
    <message>
        <source>Выключить звук</source>
        <translation>Mute</translation>
    </message>
    <message>
        <source>Повтор</source>
        <translation>Repeat</translation>
    </message>
    <message>
        <source>Повтор отрезка: начало здесь</source>
        <translation>Repeat Section: Start Here</translation>
    </message>
    <message>
        <source>Сервис</source>
        <translation>Tools</translation>
    </message>
    <message>
        <source>Удалить эскизы</source>
        <translation>Delete Thumbnails</translation>
    </message>
    <message>
        <source>Консоль</source>
        <translation>Console</translation>
    </message>
    <message>
        <source>Параметры...</source>
        <translation>Options...</translation>
    </message>
    <message>
        <source>Справка</source>
        <translation>Help</translation>
    </message>
    <message>
        <source>Вызов справки</source>
        <translation>Show Help</translation>
    </message>
    <message>
        <source>Сочетания клавиш</source>
        <translation>Keyboard Shortcuts</translation>
    </message>
    <message>
        <source>Проверка обновлений</source>
        <translation>Check for Updates</translation>
    </message>
    <message>
        <source>О программе</source>
        <translation>About</translation>
    </message>
    <message>
        <source>Высокое качество</source>
        <translation>High Quality</translation>
    </message>
    <message>
        <source>Низкое качество</source>
        <translation>Low Quality</translation>
    </message>
    <message>
        <source>Воспроизведение с ограничениями</source>
        <translation>Playing with limits</translation>
    </message>
    <message>
        <source>Остановлено</source>
        <translation>Stopped</translation>
    </message>
    <message>
        <source>Открытие файла...</source>
        <translation>Opening a file...</translation>
    </message>
    <message>
        <source>Сохранение файла...</source>
        <translation>Saving a file...</translation>
    </message>
    <message>
        <source>Приостановить</source>
        <translation>Pause</translation>
    </message>
    <message>
        <source>Прошло времени: </source>
        <translation>Time played: </translation>
    </message>
    <message>
        <source>Осталось времени: </source>
        <translation>Time left: </translation>
    </message>
    <message>
        <source>Всего времени: </source>
        <translation>Whole time: </translation>
    </message>
    <message>
        <source>Прошло кадров: </source>
        <translation>Frames played: </translation>
    </message>
    <message>
        <source>Осталось кадров: </source>
        <translation>Frames left: </translation>
    </message>
    <message>
        <source>Всего кадров: </source>
        <translation>All frames: </translation>
    </message>
    <message>
        <source>Открыть файл Macromedia Flash...</source>
        <translation>Open a Macromedia Flash File...</translation>
    </message>
    <message>
        <source>Все поддерживаемые файлы (*.swf *.exe)</source>
        <translation>All supported files (*.swf *.exe)</translation>
    </message>
    <message>
        <source>Macromedia Flash (*.swf)</source>
        <translation>Macromedia Flash (*.swf)</translation>
    </message>
    <message>
        <source>Flash Projector (*.exe)</source>
        <translation>Flash Projector (*.exe)</translation>
    </message>
    <message>
        <source>Сохранение медиа из проектора (*.swf)</source>
        <translation>Save the projector&apos;s movie (*.swf)</translation>
    </message>
    <message>
        <source>Сохранение со снятием сжатия (*.swf)</source>
        <translation>Save decompressed (*.swf)</translation>
    </message>
    <message>
        <source>Сохранение без изменений (*.swf)</source>
        <translation>Save unchanged (*.swf)</translation>
    </message>
    <message>
        <source>Сохранение с заданными условиями не поддерживается</source>
        <translation>Saving in this way is not supported</translation>
    </message>
    <message>
        <source>Сохранение медиа</source>
        <translation>Save Media</translation>
    </message>
    <message>
        <source>Фильтр: </source>
        <translation>Filter: </translation>
    </message>
    <message>
        <source>Файл: </source>
        <translation>File: </translation>
    </message>
    <message>
        <source>Проектор: </source>
        <translation>Projector: </translation>
    </message>
    <message>
        <source>Не удалось записать файл.</source>
        <translation>The file could not be written.</translation>
    </message>
    <message>
        <source>Сохранить кадр</source>
        <translation>Save Frame</translation>
    </message>
    <message>
        <source>Кадр сохранён: %1</source>
        <translation>Frame saved: %1</translation>
    </message>
    <message>
        <source>Кадр скопирован</source>
        <translation>Frame copied</translation>
    </message>
    <message>
        <source>Видео сохранено: %1</source>
        <translation>Video saved: %1</translation>
    </message>
    <message>
        <source>Открыть</source>
        <translation>Open</translation>
    </message>
    <message>
        <source>Сохранить</source>
        <translation>Save</translation>
    </message>
    <message>
        <source>Выбрать</source>
        <translation>Choose</translation>
    </message>
    <message>
        <source>Папка:</source>
        <translation>Folder:</translation>
    </message>
    <message>
        <source>Имя файла:</source>
        <translation>File name:</translation>
    </message>
    <message>
        <source>Тип файлов:</source>
        <translation>File type:</translation>
    </message>
    <message>
        <source>Ошибка при распаковке файла.</source>
        <translation>Error on decompressing the file.</translation>
    </message>
    <message>
        <source>Ошибка при сжатии файла.</source>
        <translation>Error on compressing the file.</translation>
    </message>
    <message>
        <source>Сжатие снято: было %1, стало %2 (%3 %)</source>
        <translation>Decompressed: it was %1 and is %2 (%3 %)</translation>
    </message>
    <message>
        <source>Файл сжат: было %1, стало %2 (%3 %)</source>
        <translation>Compressed: it was %1 and is %2 (%3 %)</translation>
    </message>
    <message>
        <source>Проверьте, не перенесён ли файл и подключён ли диск, на котором он лежал.</source>
        <translation>See whether the file was moved, and whether its disk is connected.</translation>
    </message>
    <message>
        <source>Проверьте права на файл и на папку, в которой он лежит.</source>
        <translation>See who may read the file and the folder that it lies in.</translation>
    </message>
    <message>
        <source>Выберите папку на другом диске.</source>
        <translation>Choose a folder on another disk.</translation>
    </message>
    <message>
        <source>Освободите место и попробуйте ещё раз.</source>
        <translation>Make some room and try again.</translation>
    </message>
    <message>
        <source>Сократите имя файла или перенесите его в папку с коротким именем.</source>
        <translation>Give the file a shorter name, or move it to a folder with a shorter one.</translation>
    </message>
    <message>
        <source>Проверьте диск, попробуйте ещё раз или скопируйте файл в другое место.</source>
        <translation>Check the disk, try again, or copy the file to another place.</translation>
    </message>
    <message>
        <source>Возьмите другую копию файла: в этой не хватает данных или они искажены.</source>
        <translation>Take another copy of the file: this one lacks data, or they are damaged.</translation>
    </message>
    <message>
        <source>Открываются ролики (.swf) и проекторы Flash: программы с роликом внутри.</source>
        <translation>Movies (.swf) and Flash projectors, programs with a movie inside, can be opened.</translation>
    </message>
    <message>
        <source>В этой программе нет ролика Flash.</source>
        <translation>There is no Flash movie in this program.</translation>
    </message>
    <message>
        <source>Закройте другие программы и откройте ролик ещё раз.</source>
        <translation>Close other programs and open the movie again.</translation>
    </message>
    <message>
        <source>Отменено, файл остался прежним</source>
        <translation>Cancelled; the file stays as it was</translation>
    </message>
    <message>
        <source>Сжатие и распаковка</source>
        <translation>Compression and Decompression</translation>
    </message>
    <message>
        <source>Удалено эскизов: %1</source>
        <translation>Thumbnails deleted: %1</translation>
    </message>
    <message>
        <source>Эскизов нет</source>
        <translation>There are no thumbnails</translation>
    </message>
    <message>
        <source>Это первый ролик</source>
        <translation>This is the first movie</translation>
    </message>
    <message>
        <source>Это последний ролик</source>
        <translation>This is the last movie</translation>
    </message>
    <message>
        <source>%1 из %2: %3</source>
        <translation>%1 of %2: %3</translation>
    </message>
    <message>
        <source>Не удалось записать файл настроек. Изменения действуют до выхода из программы.</source>
        <translation>The settings file could not be written. The changes hold until you leave the program.</translation>
    </message>
    <message>
        <source>На диске недостаточно места.</source>
        <translation>There is not enough room on the disk.</translation>
    </message>
    <message>
        <source>Сценарий ролика выполняется слишком долго. Прервать его?</source>
        <translation>A script of the movie takes too long. End it?</translation>
    </message>
    <message>
        <source>Прервать сценарий</source>
        <translation>End the Script</translation>
    </message>
    <message>
        <source>Ролику не хватило памяти или времени, и он закрыт</source>
        <translation>The movie ran out of memory or time and was closed</translation>
    </message>
    <message>
        <source>Ролик завершился с ошибкой и закрыт</source>
        <translation>The movie met an error and was closed</translation>
    </message>
    <message>
        <source>Ролик не отвечал и закрыт</source>
        <translation>The movie did not answer and was closed</translation>
    </message>
    <message>
        <source>Ролик не открыт: не удалось запустить для него отдельный процесс.
Перезапустите программу, а если это не поможет, установите её заново.</source>
        <translation>The movie was not opened: the process that it needs could not be started.
Start the program again; if that does not help, install it anew.</translation>
    </message>
    <message>
        <source>Ролик не отвечает</source>
        <translation>The movie does not answer</translation>
    </message>
    <message>
        <source>Подождать</source>
        <translation>Wait</translation>
    </message>
    <message>
        <source>Закрыть ролик</source>
        <translation>Close the Movie</translation>
    </message>
    <message>
        <source>Ролик «%1» только что дважды завершился с ошибкой. Открыть его ещё раз?</source>
        <translation>The movie “%1” has just ended with an error twice. Open it once more?</translation>
    </message>
    <message>
        <source>Чтобы выйти из полноэкранного режима, нажмите Esc</source>
        <translation>Press Esc to leave full screen</translation>
    </message>
    <message>
        <source>Ролик повреждён, показать его нельзя</source>
        <translation>The movie is damaged and cannot be shown</translation>
    </message>
    <message>
        <source>Экран приветствия</source>
        <translation>Welcome</translation>
    </message>
    <message>
        <source>Версия </source>
        <translation>Version </translation>
    </message>
    <message>
        <source>Проигрыватель роликов и проекторов Macromedia Flash</source>
        <translation>Player of Macromedia Flash movies and projectors</translation>
    </message>
    <message>
        <source>Открыть файл...</source>
        <translation>Open a File...</translation>
    </message>
    <message>
        <source>или перетащите сюда ролик (.swf) или проектор (.exe)</source>
        <translation>or drop a movie (.swf) or projector (.exe) here</translation>
    </message>
    <message>
        <source>Воспроизвести или приостановить</source>
        <translation>Play or pause</translation>
    </message>
    <message>
        <source>Открыть файл</source>
        <translation>Open a file</translation>
    </message>
    <message>
        <source>Выключить или включить звук</source>
        <translation>Switch the sound off or on</translation>
    </message>
    <message>
        <source>Щёлкните, чтобы сменить вид счётчика</source>
        <translation>Click to change what is counted</translation>
    </message>
    <message>
        <source>%1 из %2</source>
        <translation>%1 of %2</translation>
    </message>
    <message>
        <source>Продолжить с места: %1</source>
        <translation>Continue at %1</translation>
    </message>
    <message>
        <source>Скорость: %1 %</source>
        <translation>Speed: %1 %</translation>
    </message>
    <message>
        <source>Отрезок с %1. Нажмите A ещё раз там, где он кончается</source>
        <translation>Section from %1. Press A again where it ends</translation>
    </message>
    <message>
        <source>Повтор отрезка %1 - %2</source>
        <translation>Repeating the section %1 - %2</translation>
    </message>
    <message>
        <source>Повтор отрезка снят</source>
        <translation>The section is no longer repeated</translation>
    </message>
    <message>
        <source>Повтор отрезка: конец здесь</source>
        <translation>Repeat Section: End Here</translation>
    </message>
    <message>
        <source>Снять повтор отрезка</source>
        <translation>Stop Repeating the Section</translation>
    </message>
    <message>
        <source>Громкость: %1 %</source>
        <translation>Volume: %1 %</translation>
    </message>
    <message>
        <source>Звук выключен</source>
        <translation>Sound off</translation>
    </message>
    <message>
        <source>Ролик идёт во весь экран</source>
        <translation>A movie plays in full screen</translation>
    </message>
    <message>
        <source>Масштаб: %1 %</source>
        <translation>Scale: %1 %</translation>
    </message>
    <message>
        <source>Действие</source>
        <translation>Action</translation>
    </message>
    <message>
        <source>Клавиши</source>
        <translation>Keys</translation>
    </message>
    <message>
        <source> или </source>
        <translation> or </translation>
    </message>
    <message>
        <source>Окно</source>
        <translation>Window</translation>
    </message>
    <message>
        <source>Если ролик сам слушает клавиатуру, клавиши без Ctrl и Alt достаются ему; те же команды работают вместе с Ctrl. Раскладка клавиатуры может быть любой.</source>
        <translation>While a movie listens to the keyboard, keys without Ctrl and Alt are its own; the same commands work together with Ctrl. Any keyboard layout will do.</translation>
    </message>
    <message>
        <source>Меню окна, и когда строка меню скрыта</source>
        <translation>The window&apos;s menu, and with the menu bar hidden</translation>
    </message>
    <message>
        <source>F10</source>
        <translation>F10</translation>
    </message>
    <message>
        <source>Меню по букве</source>
        <translation>A menu by its letter</translation>
    </message>
    <message>
        <source>Alt+буква</source>
        <translation>Alt+letter</translation>
    </message>
    <message>
        <source>Контекстное меню</source>
        <translation>Context menu</translation>
    </message>
    <message>
        <source>Shift+F10, Menu</source>
        <translation>Shift+F10, Menu</translation>
    </message>
    <message>
        <source>Масштаб</source>
        <translation>Scale</translation>
    </message>
    <message>
        <source>Ctrl+колесо мыши</source>
        <translation>Ctrl+mouse wheel</translation>
    </message>
    <message>
        <source>Обычное окно из полного экрана</source>
        <translation>Normal window from full screen</translation>
    </message>
    <message>
        <source>Esc</source>
        <translation>Esc</translation>
    </message>
    <message>
        <source>Несоответствие типа</source>
        <translation>Type mismatch</translation>
    </message>
    <message>
        <source>Выберите папку для обзора медиа:</source>
        <translation>Choose a folder to browse for media:</translation>
    </message>
    <message>
        <source>Не нашлось программы, которая открывает:
%1</source>
        <translation>No program was found that opens:
%1</translation>
    </message>
    <message>
        <source>Запрос ролика</source>
        <translation>A Movie Asks</translation>
    </message>
    <message>
        <source>Ролик «%1» просит открыть:</source>
        <translation>The movie “%1” asks to open:</translation>
    </message>
    <message>
        <source>Открывайте только то, чему доверяете. Отказ действует, пока ролик не открыт заново.</source>
        <translation>Open only what you trust. A refusal holds until the movie is opened anew.</translation>
    </message>
    <message>
        <source>Ролик читал файлы из своей папки. Вместе с адресом он может передать их содержимое.</source>
        <translation>The movie has read files of its folder. With the address it can pass on what is in them.</translation>
    </message>
    <message>
        <source>Отказать</source>
        <translation>Refuse</translation>
    </message>
    <message>
        <source>Всегда так для этого ролика (до выхода из программы)</source>
        <translation>Always so for this movie (until you leave the program)</translation>
    </message>
    <message>
        <source>Ролик «%1» просил открыть адрес, который программа не открывает.</source>
        <translation>The movie “%1” asked to open an address that the program does not open.</translation>
    </message>
    <message>
        <source>Ролик «%1» просил открыть файл, которого нет.</source>
        <translation>The movie “%1” asked to open a file that does not exist.</translation>
    </message>
    <message>
        <source>Ролик «%1» просил запустить программу. По просьбе ролика программы, сценарии и ярлыки не запускаются.</source>
        <translation>The movie “%1” asked to start a program. Programs, scripts and shortcuts are not started for a movie.</translation>
    </message>
    <message>
        <source>Ролик «%1» просил открыть файл с другого компьютера. Такие файлы по просьбе ролика не открываются.</source>
        <translation>The movie “%1” asked to open a file of another computer. Such files are not opened for a movie.</translation>
    </message>
    <message>
        <source>Ролик «%1» просил открыть то, чьё имя вводит в заблуждение. Это не открыто.</source>
        <translation>The movie “%1” asked to open something with a misleading name. It was not opened.</translation>
    </message>
    <message>
        <source>Загрузка окна</source>
        <translation>Loading the window</translation>
    </message>
    <message>
        <source>Выполнение команды меню</source>
        <translation>Carrying out a menu command</translation>
    </message>
    <message>
        <source>Открытие медиа</source>
        <translation>Opening media</translation>
    </message>
    <message>
        <source>Закрытие медиа</source>
        <translation>Closing media</translation>
    </message>
    <message>
        <source>Сохранение видео</source>
        <translation>Saving a video</translation>
    </message>
    <message>
        <source>Обновление информации</source>
        <translation>Updating the information</translation>
    </message>
    <message>
        <source>Завершение работы</source>
        <translation>Ending</translation>
    </message>
    <message>
        <source>Команда страницы</source>
        <translation>A page&apos;s command</translation>
    </message>
    <message>
        <source>Запись журнала</source>
        <translation>Writing the journal</translation>
    </message>
    <message>
        <source>%1 (ошибка %2)</source>
        <translation>%1 (error %2)</translation>
    </message>
    <message>
        <source>Команда, например: Player.PlayMedia</source>
        <translation>A command, for example: Player.PlayMedia</translation>
    </message>
    <message>
        <source>Закрыть консоль</source>
        <translation>Close the console</translation>
    </message>
    <message>
        <source>Настройки</source>
        <translation>Settings</translation>
    </message>
    <message>
        <source>При запуске по умолчанию:</source>
        <translation>At start, by default:</translation>
    </message>
    <message>
        <source>Показать &quot;Экран приветствия&quot;</source>
        <translation>Show the welcome screen</translation>
    </message>
    <message>
        <source>Показать &quot;Обзор медиа&quot;</source>
        <translation>Show the media browser</translation>
    </message>
    <message>
        <source>Открыть последний файл!</source>
        <translation>Open the last file</translation>
    </message>
    <message>
        <source>При выходе очищать кэш:</source>
        <translation>On exit, clean the cache:</translation>
    </message>
    <message>
        <source>Не надо</source>
        <translation>Do not</translation>
    </message>
    <message>
        <source>Оставлять эскизы</source>
        <translation>Keep thumbnails</translation>
    </message>
    <message>
        <source>Полностью!</source>
        <translation>Completely</translation>
    </message>
    <message>
        <source>Кодировка старых роликов:</source>
        <translation>Code of old movies:</translation>
    </message>
    <message>
        <source>Язык меню, окон и служебных клипов</source>
        <translation>Language of menus, windows and the program&apos;s own pages</translation>
    </message>
    <message>
        <source>Быстродействие</source>
        <translation>Performance</translation>
    </message>
    <message>
        <source>Анимация в служебных клипах</source>
        <translation>Animation in the program&apos;s own pages</translation>
    </message>
    <message>
        <source>Специальные эффекты</source>
        <translation>Special effects</translation>
    </message>
    <message>
        <source>Высокое качество эскизов</source>
        <translation>Thumbnails of high quality</translation>
    </message>
    <message>
        <source>Два потока для сложных сцен</source>
        <translation>Two threads for heavy scenes</translation>
    </message>
    <message>
        <source>Использовать для открытия файлов SWF</source>
        <translation>Use for opening SWF files</translation>
    </message>
    <message>
        <source>Сделать проигрывателем по умолчанию</source>
        <translation>Make this the default player</translation>
    </message>
    <message>
        <source>Если не задан файл для открытия, будет выполнено это действие</source>
        <translation>What is done when no file is given to be opened</translation>
    </message>
    <message>
        <source>Анимация в экранах приветствия, обзора медиа и информации о программе</source>
        <translation>Animation in the welcome, browser and about pages</translation>
    </message>
    <message>
        <source>Например, эффект засвечивания окна при смене шкурки</source>
        <translation>For example, the window pales while the skin changes</translation>
    </message>
    <message>
        <source>Использовать сглаживание при создании эскизов</source>
        <translation>Make thumbnails with smooth edges</translation>
    </message>
    <message>
        <source>Удаление временных файлов, созданных для ускорения работы приложения</source>
        <translation>Deletes temporary files that were made to speed the program up</translation>
    </message>
    <message>
        <source>В роликах Flash 5 и старше текст записан в кодировке системы автора; действует со следующего ролика</source>
        <translation>Movies of Flash 5 and before hold text in the code of their author&apos;s system; takes effect with the next movie</translation>
    </message>
    <message>
        <source>Кадры, которые рисуются долго, делят между собой два ядра процессора</source>
        <translation>Frames that take long to draw are shared between two processor cores</translation>
    </message>
    <message>
        <source>Поставьте галочку, чтобы при двойном щелчке на файле SWF запускалось это приложение</source>
        <translation>Tick this, and a double click on an SWF file starts this program</translation>
    </message>
    <message>
        <source>Автоматически</source>
        <translation>Automatic</translation>
    </message>
    <message>
        <source>Кириллица (Windows-1251)</source>
        <translation>Cyrillic (Windows-1251)</translation>
    </message>
    <message>
        <source>Кириллица (KOI8-R)</source>
        <translation>Cyrillic (KOI8-R)</translation>
    </message>
    <message>
        <source>Западная (Latin-1)</source>
        <translation>Western (Latin-1)</translation>
    </message>
    <message>
        <source>Западная (Windows-1252)</source>
        <translation>Western (Windows-1252)</translation>
    </message>
    <message>
        <source>Центральноевропейская (Windows-1250)</source>
        <translation>Central European (Windows-1250)</translation>
    </message>
    <message>
        <source>Греческая (Windows-1253)</source>
        <translation>Greek (Windows-1253)</translation>
    </message>
    <message>
        <source>Турецкая (Windows-1254)</source>
        <translation>Turkish (Windows-1254)</translation>
    </message>
    <message>
        <source>Японская (Shift-JIS)</source>
        <translation>Japanese (Shift-JIS)</translation>
    </message>
    <message>
        <source>Китайская упрощённая (GBK)</source>
        <translation>Simplified Chinese (GBK)</translation>
    </message>
    <message>
        <source>Китайская традиционная (Big5)</source>
        <translation>Traditional Chinese (Big5)</translation>
    </message>
    <message>
        <source>Корейская (EUC-KR)</source>
        <translation>Korean (EUC-KR)</translation>
    </message>
    <message>
        <source>Файл описания шкурки содержит синтаксические ошибки. Попробуйте открыть файл </source>
        <translation>The skin&apos;s description has syntax errors. Try to open the file </translation>
    </message>
    <message>
        <source> в браузере, чтобы узнать причину.</source>
        <translation> in a browser to learn why.</translation>
    </message>
    <message>
        <source>Обработка ветки описания шкурки</source>
        <translation>Working on a branch of the skin&apos;s description</translation>
    </message>
    <message>
        <source>Исходный код текущей ветки:</source>
        <translation>Source of the branch:</translation>
    </message>
    <message>
        <source>Создание мета-объекта</source>
        <translation>Making a meta-object</translation>
    </message>
    <message>
        <source>Код объекта:</source>
        <translation>Source of the object:</translation>
    </message>
    <message>
        <source>В шкурке не найдено вида </source>
        <translation>The skin has no view </translation>
    </message>
    <message>
        <source>Установка вида шкурки </source>
        <translation>Setting the skin&apos;s view </translation>
    </message>
    <message>
        <source>Выполнение сценария &apos;</source>
        <translation>Running the script &apos;</translation>
    </message>
    <message>
        <source>&apos; (Строка: </source>
        <translation>&apos; (Line: </translation>
    </message>
    <message>
        <source>, библиотека сценариев</source>
        <translation>, script library</translation>
    </message>
    <message>
        <source>Несоответствие типа: </source>
        <translation>Type mismatch: </translation>
    </message>
    <message>
        <source>Недопустимое значение свойства: </source>
        <translation>Invalid property value: </translation>
    </message>
    <message>
        <source>В описании шкурки нет элемента THEME</source>
        <translation>The skin&apos;s description has no element THEME</translation>
    </message>
    <message>
        <source>Маска панели слишком велика</source>
        <translation>The mask of a panel is too large</translation>
    </message>
    <message>
        <source>В шкурке слишком много элементов</source>
        <translation>The skin has too many elements</translation>
    </message>
    <message>
        <source>Элементы шкурки вложены слишком глубоко</source>
        <translation>The skin&apos;s elements are nested too deep</translation>
    </message>
    <message>
        <source>Шкурка «%1» слишком долго занимает программу и отключена.</source>
        <translation>The skin “%1” keeps the program busy for too long and was switched off.</translation>
    </message>
    <message>
        <source>Файл сценария шкурки не прочитан: </source>
        <translation>The skin&apos;s script file was not read: </translation>
    </message>
    <message>
        <source>Zorvex показывает ролики и проекторы Macromedia Flash такими, какими они были задуманы: с музыкой, играми и сценариями.&lt;BR&gt;&lt;BR&gt;Привет всем, кто рисовал мультфильмы по кадру в секунду и не спал ночами ради ещё одного уровня!</source>
        <translation>Zorvex shows movies and projectors of Macromedia Flash as they were meant: with music, games and scripts.&lt;BR&gt;&lt;BR&gt;Greetings to all who drew cartoons a frame a second and stayed up all night for one more level!</translation>
    </message>
    <message>
        <source>Спасибо всем, кто испытывал программу, присылал ролики и терпеливо описывал ошибки.</source>
        <translation>Thanks to all who tried the program, sent movies and patiently described mistakes.</translation>
    </message>
    <message>
        <source>К началу</source>
        <translation>To the Beginning</translation>
    </message>
    <message>
        <source>Ошибки шкурки</source>
        <translation>Mistakes in the Skin</translation>
    </message>
    <message>
        <source>Шкурка загружена с ошибками: %1</source>
        <translation>The skin was loaded with mistakes: %1</translation>
    </message>
    <message>
        <source>Копировать</source>
        <translation>Copy</translation>
    </message>
    <message>
        <source>Вырезать</source>
        <translation>Cut</translation>
    </message>
    <message>
        <source>Вставить</source>
        <translation>Paste</translation>
    </message>
    <message>
        <source>Удалить</source>
        <translation>Delete</translation>
    </message>
    <message>
        <source>Выделить всё</source>
        <translation>Select All</translation>
    </message>
    <message>
        <source>Открыть ссылку</source>
        <translation>Open Link</translation>
    </message>
    <message>
        <source>Копировать ссылку</source>
        <translation>Copy Link</translation>
    </message>
</context>
</TS>
