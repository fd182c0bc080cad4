// The page that shows while no movie is open: what this is, what went wrong before, what can be done now.
#include "parts/kit.as"

var MARGIN = 40, WIDE = 560, GAP = 16;
var CARD_WIDE = (WIDE - GAP) / 2, CARD_HIGH = 68;

// --- Name and version. The host's version text is the name, a blank and the numbers.

var heading = child(this, "heading");
var version = given(query.version), blank = version.lastIndexOf(" ");
if (blank < 0) blank = version.length;
picture(heading, "mark", MARGIN + 32, 80, 70);
setFitted(label(heading, 120, 44, 480, 34, 24, ICE, BOLD), blank > 0 ? version.substr(0, blank) : PRODUCT, 0);
setText(label(heading, 120, 74, 480, 22, 13, ICE), say("Проигрыватель роликов Flash"));
if (blank < version.length)
  setFitted(label(heading, 120, 94, 480, 20, 11, SKY), say("Версия ") + version.substr(blank + 1), 0);

// --- What went wrong

var body = child(this, "body");
var top = 160;
if (given(query.error) != "")
  top = showError((this.file != undefined ? "«" + this.file + "»: " : "") + query.error +
      (this.advice != undefined ? "\n" + this.advice : ""), 136) + 20;

function showError(message, y) {
  var MOST_LINES = 4, LEADING = 3;
  var panel = child(body, "panel");
  panel._x = MARGIN;
  panel._y = y;
  var words = label(panel, 52, 11, WIDE - 76, 20, 13, ICE);
  words.multiline = words.wordWrap = true;
  words.selectable = true; // to be copied into a question to somebody
  words.tabEnabled = false;
  var format = words.getNewTextFormat();
  format.leading = LEADING;
  words.setNewTextFormat(format);
  setText(words, "1");
  var line = words.textHeight + (words.textHeight < 18 ? LEADING : 0);
  setText(words, message);
  var lines = Math.round(words.textHeight / line), shown = Math.min(lines, MOST_LINES);
  words._height = shown * line + 4;
  var high = Math.ceil(Math.max(words._height, 24) + 20);
  if (words._height < 24) words._y = Math.round((high - words._height) / 2);
  fillRound(panel, 0, 0, WIDE, high, 6, SLATE);
  fillRound(panel, 0, 0, 4, high, 2, RED);
  // The sign for knowledge, upside down, is the one for trouble.
  picture(panel, "info", 40, 34, 24)._rotation = 180;
  if (shown < lines) {
    var thumb = child(panel, "thumb"), track = high - 20, thumbHigh = Math.max(16, track * shown / lines);
    fillRound(panel, WIDE - 14, 10, 4, track, 2, STEEL);
    fillRound(thumb, WIDE - 14, 10, 4, thumbHigh, 2, SKY);
    words.onScroller = function() {
      thumb._y = (track - thumbHigh) * (words.scroll - 1) / (words.maxscroll - 1);
    };
  }
  return y + high;
}

// --- What can be done

function card(column, row, color, icon, caption, hint, command, wide) {
  var button = plate(body, MARGIN + column * (CARD_WIDE + GAP), top + row * (CARD_HIGH + GAP),
      wide ? WIDE : CARD_WIDE, CARD_HIGH, color, 100, function() { send(command); });
  picture(button, icon, 20, (CARD_HIGH - 24) / 2, 24);
  var ink = color == BLUE ? WHITE : ICE;
  setText(label(button, 60, 14, CARD_WIDE - 72, 22, 13, ink, BOLD), caption);
  setText(label(button, 60, 34, CARD_WIDE - 72, 20, 11, ink), hint);
  return button;
}
primary = card(0, 0, BLUE, "open", say("Открыть файл"), say("Ролик .swf или проектор .exe"), "MEOWOPEN");
card(1, 0, SLATE, "browse", say("Обзор медиа"), say("Ролики папки с эскизами"), "MEOWSEARCH");
var hasUpdate = this.noupdate == undefined;
card(0, 1, SLATE, "help", say("Справка"), say("Как пользоваться"), "MEOWHELP", !hasUpdate);
if (hasUpdate) card(1, 1, SLATE, "update", say("Обновление"), say("Новая версия на сайте"), "MEOWUPDATE");
var bottom = top + 2 * CARD_HIGH + GAP;

// --- What was open before, or the samples

var TILES = 4, TILE_GAP = 12, TILE_WIDE = (WIDE - (TILES - 1) * TILE_GAP) / TILES, TILE_HIGH = 94;
var WELL_WIDE = 88, WELL_HIGH = 66;

var loader = new MovieClipLoader(), loaded = {};
loaded.onLoadInit = function(shot) {
  if (shot._width <= 0 || shot._height <= 0) return;
  var scale = Math.min(1, Math.min(WELL_WIDE / shot._width, WELL_HIGH / shot._height));
  shot._xscale = shot._yscale = 100 * scale;
  shot._x = Math.round((TILE_WIDE - shot._width) / 2);
  shot._y = 6 + Math.round((WELL_HIGH - shot._height) / 2);
  shot._parent.kindIcon._visible = false;
  shot._visible = true;
};
loader.addListener(loaded);

function tile(index, path, shotPath) {
  var button = plate(body, MARGIN + index * (TILE_WIDE + TILE_GAP), bottom + GAP, TILE_WIDE, TILE_HIGH, SLATE, 100,
      function() { send("MEOWSEL", path); });
  fillRound(button, (TILE_WIDE - WELL_WIDE) / 2, 6, WELL_WIDE, WELL_HIGH, 3, INK);
  button.kindIcon = picture(button, "movie", (TILE_WIDE - 32) / 2, 6 + (WELL_HIGH - 32) / 2, 32);
  tint(button.kindIcon, PALE_ON_INK);
  var name = path.substr(Math.max(path.lastIndexOf("/"), path.lastIndexOf("\\")) + 1);
  if (name.substr(-4).toLowerCase() == ".swf") name = name.substr(0, name.length - 4);
  button.told = name;
  var field = label(button, 6, TILE_HIGH - 21, TILE_WIDE - 12, 20, 11, ICE);
  setFitted(field, name.split("\n").join(" ").split("\r").join(" "), 4);
  field._x = Math.round((TILE_WIDE - field.textWidth - 4) / 2);
  if (shotPath == undefined) return;
  var shot = child(button, "shot");
  shot._visible = false;
  loader.loadClip(escapedFile(shotPath), shot);
}

function escapedFile(file) {
  var signs = ["%", "#", "?", "&", "+", " ", ";"], codes = ["%25", "%23", "%3F", "%26", "%2B", "%20", "%3B"];
  for (var i = 0; i < signs.length; i++) file = file.split(signs[i]).join(codes[i]);
  return file;
}

if (given(query.error) == "")
  for (var i = 0; i < TILES; i++)
    if (this["movie" + (i + 1)] != undefined) tile(i, this["movie" + (i + 1)], this["shot" + (i + 1)]);

if (bottom < 390 && this.movie1 == undefined)
  setText(label(body, MARGIN, Math.max(bottom + 20, 380), WIDE, 20, 11, SKY),
      say("Файл или папку можно просто перетащить в это окно."));

tellItems();
appear(body);
stop();
