// The texts of the pages in the language that the host asks for by the parameter "lang". Russian is what they are
// written in; a text that is missing here stays so.
var english = {};
english["По имени"] = "By name";
english["По дате"] = "By date";
english["По размеру"] = "By size";
english["Выбрать папку…"] = "Choose folder…";
english["Страница "] = "Page ";
english[" из "] = " of ";
english["Роликов: "] = "Movies: ";
english["На уровень выше"] = "Up one level";
english["Первая страница"] = "First page";
english["Предыдущая страница"] = "Previous page";
english["Следующая страница"] = "Next page";
english["Последняя страница"] = "Last page";
english["В этой папке нет роликов Flash"] = "There are no Flash movies in this folder";
english["Показываются файлы .swf и проекторы .exe."] = "Files .swf and projectors .exe are shown.";
english["Проигрыватель роликов Flash"] = "Player of Flash movies";
english["Версия "] = "Version ";
english["Открыть файл"] = "Open a file";
english["Ролик .swf или проектор .exe"] = "A movie (.swf) or projector (.exe)";
english["Обзор медиа"] = "Browse media";
english["Ролики папки с эскизами"] = "A folder's movies as thumbnails";
english["Справка"] = "Help";
english["Как пользоваться"] = "How to use the player";
english["Обновление"] = "Update";
english["Новая версия на сайте"] = "The new version on the site";
english["Файл или папку можно просто перетащить в это окно."] = "You can simply drop a file or a folder on this window.";

function say(text) { return lang == "en" && english[text] != undefined ? english[text] : text; }
