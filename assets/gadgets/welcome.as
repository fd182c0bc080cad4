// The page that is shown while no movie is open.
#include "parts/kit.as"

var MARGIN = 40, WIDE = 560, GAP = 16;
var CARD_WIDE = (WIDE - GAP) / 2, CARD_HIGH = 64;

var page = createEmptyMovieClip("page", 1);

// --- Name and version. The host's version text is the name, a blank and the numbers.

var versionText = given(query.version), blank = versionText.lastIndexOf(" ");
var mark = page.attachMovie("mark", "mark", page.getNextHighestDepth());
mark._x = MARGIN + 32; mark._y = 80;
mark._xscale = mark._yscale = 6400 / 22;
setFitted(label(page, 120, 44, 480, 34, 24, ICE, BOLD), blank > 0 ? versionText.substr(0, blank) : "Zorvex");
label(page, 120, 74, 480, 22, 13, ICE).text = "Проигрыватель фильмов Flash";
setFitted(label(page, 120, 94, 480, 20, 11, SKY), versionText == "" ? "" : "Версия " + versionText.substr(blank + 1));

// --- What went wrong with the last movie

var top = 168;
var message = given(query.error);
if (message != "") {
  var MOST_HIGH = 96;
  var panel = page.createEmptyMovieClip("panel", page.getNextHighestDepth());
  panel._x = MARGIN; panel._y = 136;
  var words = label(panel, 20, 10, WIDE - 36, 20, 13, ICE);
  words.multiline = words.wordWrap = true;
  words.text = message;
  words._height = Math.min(words.textHeight + 6, MOST_HIGH - 20);
  var high = words._height + 20;
  plate(panel, 0, 0, WIDE, high, 6, SLATE);
  plate(panel, 0, 0, 4, high, 2, RED);
  top = panel._y + high + 20;
}

// --- What can be done

function card(column, row, color, caption, hint, command) {
  var it = pushPlate(page, MARGIN + column * (CARD_WIDE + GAP), top + row * (CARD_HIGH + GAP), CARD_WIDE, CARD_HIGH, color,
      function() { send(command); });
  label(it, 20, 12, CARD_WIDE - 32, 22, 13, ICE, BOLD).text = caption;
  label(it, 20, 33, CARD_WIDE - 32, 20, 11, ICE).text = hint;
}
card(0, 0, BLUE, "Открыть файл", "Фильм .swf или проектор .exe", "MEOWOPEN");
card(1, 0, SLATE, "Обзор медиа", "Фильмы папки с эскизами", "MEOWSEARCH");
card(0, 1, SLATE, "Справка", "Как пользоваться проигрывателем", "MEOWHELP");
card(1, 1, SLATE, "Обновление", "Последняя версия на сайте", "MEOWUPDATE");

if (animated) {
  page._alpha = 0;
  glide(page, "_alpha", 100, CALM);
}
