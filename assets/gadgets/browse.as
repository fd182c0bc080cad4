// A page of a folder: up to eight movies, projectors and folders. Choosing one, turning the page and choosing another
// folder are the host's work; it answers by loading this page anew.
#include "parts/kit.as"

var WIDE = 640, HIGH = 440, BAR = 44;
var SLOTS = 8, COLUMNS = 4, EDGE = 12, GAP = 8;
var SLOT_WIDE = (WIDE - 2 * EDGE - (COLUMNS - 1) * GAP) / COLUMNS;
var SLOT_HIGH = (HIGH - 2 * BAR - 2 * EDGE - GAP) / 2;
var PAD = 8, SHOT_WIDE = SLOT_WIDE - 2 * PAD, SHOT_HIGH = SLOT_HIGH - 2 * PAD - 24;
// Pictures are 4:3, and so is what they lie in.
var WELL_WIDE = Math.min(SHOT_WIDE, Math.floor(SHOT_HIGH * 4 / 3)), WELL_HIGH = Math.floor(WELL_WIDE * 3 / 4);
var WELL_X = PAD + (SHOT_WIDE - WELL_WIDE) / 2, WELL_Y = PAD + Math.floor((SHOT_HIGH - WELL_HIGH) / 2);
var MOVIE = 1, PROJECTOR = 2, FOLDER = 3;

// What the host's encoding cannot say stands in a second parameter, as UTF-8.
function exact(parameter, second) {
  return this[second] != undefined ? this[second] : given(query[parameter]);
}

var folder = exact("Folder", "FolderText"), cache = exact("Cache", "CacheText");
var pages = Math.max(1, number(query.TotalPages)), page = Math.max(1, Math.min(pages, number(query.curPage)));

function number(text) {
  var value = parseInt(text, 10);
  return isNaN(value) ? 0 : value;
}

// Beyond the stage's edges too: a window may be wider or higher than the page.
function bar(y) {
  var isTop = y == 0, line = isTop ? BAR - 0.5 : y + 0.5;
  fillRound(this, -WIDE, isTop ? -HIGH : y, 3 * WIDE, HIGH + (isTop ? BAR : 0), 0, SLATE);
  lineStyle(0, WHITE, 12);
  moveTo(-WIDE, line);
  lineTo(2 * WIDE, line);
  lineStyle();
}
bar(0);
bar(HIGH - BAR);

// --- The folder line

function glyphPlate(x, y, icon, told, run) {
  var button = plate(this, x, y, 28, 28, SLATE, 0, run);
  button.told = told;
  button.glyph = picture(button, icon, 4, 4, 20);
  return button;
}

var hasParent = false;
for (var i = 1; i <= SLOTS; i++) if (nameOf(i) == "..") hasParent = true;

// The slot of the parent folder is on the first page only; the way up is needed on all.
var isRoot = page == 1 && !hasParent;
function goUp() { if (!isRoot) send("MEOWSEARCH", folder + ".."); }
function chooseFolder() { send("MEOWBROWSE"); }

var up = glyphPlate(EDGE, 8, "parent", say("На уровень выше"), goUp);
if (isRoot) disable(up, up.glyph);
setFitted(label(this, 48, 12, WIDE - 48 - 184 - 112, 22, 13, ICE), folder);

// What the items are ordered by; a click takes the next.
var ORDERS = ["name", "date", "size"], ORDER_TEXTS = [say("По имени"), say("По дате"), say("По размеру")];
var orderAt = 0;
for (var i = 0; i < ORDERS.length; i++) if (this.order == ORDERS[i]) orderAt = i;
var sorting = plate(this, WIDE - EDGE - 156 - 8 - 100, 8, 100, 28, STEEL, 100, function() {
  send("MEOWORDER", ORDERS[(orderAt + 1) % ORDERS.length]);
});
var sortingText = label(sorting, 4, 5, 92, 20, 12, ICE);
setText(sortingText, ORDER_TEXTS[orderAt]);
sortingText._x = Math.round((100 - sortingText.textWidth - 4) / 2);
var choose = plate(this, WIDE - EDGE - 156, 8, 156, 28, BLUE, 100, chooseFolder);
picture(choose, "open", 8, 4, 20);
setText(label(choose, 36, 5, 116, 20, 12, WHITE), say("Выбрать папку…"));

// --- The status line

var status = label(this, EDGE, HIGH - BAR + 13, 340, 20, 11, SKY);
var statusText = given(query.Status);
setFitted(status, statusText, 0);

function turnTo(command) {
  return function() { send(command); };
}
var turnFirst = glyphPlate(WIDE - EDGE - 260, HIGH - BAR + 8, "first", say("Первая страница"), turnTo("MEOWFIRSTPAGE"));
var turnBack = glyphPlate(WIDE - EDGE - 228, HIGH - BAR + 8, "back", say("Предыдущая страница"), turnTo("MEOWBACKPAGE"));
var turnNext = glyphPlate(WIDE - EDGE - 60, HIGH - BAR + 8, "next", say("Следующая страница"), turnTo("MEOWNEXTPAGE"));
var turnLast = glyphPlate(WIDE - EDGE - 28, HIGH - BAR + 8, "last", say("Последняя страница"), turnTo("MEOWLASTPAGE"));
if (page == 1) { disable(turnFirst, turnFirst.glyph); disable(turnBack, turnBack.glyph); }
if (page == pages) { disable(turnNext, turnNext.glyph); disable(turnLast, turnLast.glyph); }
var count = label(this, WIDE - EDGE - 198, HIGH - BAR + 13, 136, 20, 11, ICE);
setText(count, pages < 1000 ? say("Страница ") + page + say(" из ") + pages : page + " / " + pages);
count._x += Math.round((136 - count.textWidth - 4) / 2);

// --- The slots

function nameOf(slot) { return exact("shot" + slot + "_ItemName", "shot" + slot + "_ItemText"); }

// A thumbnail lies in the cache under the path of its movie, flattened; the host names those that do not.
function shotOf(slot, name) {
  var file = this["shot" + slot + "_ItemShot"];
  return addressOf(file == undefined ? cache + flattened(name) + ".jpg" : file);
}

function addressOf(file) {
  // Signs that mean something in an address, and in an escape.
  var signs = ["%", "#", "?", "&", "+", " ", ";"], codes = ["%25", "%23", "%3F", "%26", "%2B", "%20", "%3B"];
  for (var i = 0; i < signs.length; i++) file = file.split(signs[i]).join(codes[i]);
  return file;
}

function flattened(name) {
  var signs = [":\\", "\\\\", "//", "\\", "/"];
  for (var i = 0; i < signs.length; i++) name = name.split(signs[i]).join(i == 0 ? "@" : "#");
  return name;
}

var grid = child(this, "grid");
var loader = new MovieClipLoader(), loaded = {};
loaded.onLoadInit = function(shot) {
  if (shot._width <= 0 || shot._height <= 0) return;
  var box = shot._parent.boxes[shot._name]; // what a clip itself knows goes when it is loaded
  var scale = Math.min(1, Math.min(box.w / shot._width, box.h / shot._height));
  shot._xscale = shot._yscale = 100 * scale;
  shot._x = box.x + Math.round((box.w - shot._width) / 2);
  shot._y = box.y + Math.round((box.h - shot._height) / 2);
  shot._parent.kindIcon._visible = false;
  shot._visible = true;
  shot._alpha = 0;
  glide(shot, "_alpha", 100, CALM);
};
loader.addListener(loaded);

function showShot(button, name, file, x, y, w, h) {
  var shot = child(button, name);
  shot._visible = false;
  if (button.boxes == undefined) button.boxes = {};
  button.boxes[name] = {x: x, y: y, w: w, h: h};
  loader.loadClip(file, shot);
}

// What a folder holds: pictures of some movies where there are any, and their number.
function showContent(button, slot) {
  var shots = this["shot" + slot + "_ItemShots"], inside = this["shot" + slot + "_ItemCount"];
  if (inside == undefined) return;
  var number = label(button, PAD, SLOT_HIGH - PAD - 41, SHOT_WIDE, 20, 11, SKY);
  setText(number, say("Роликов: ") + inside);
  number._x = Math.round((SLOT_WIDE - number.textWidth - 4) / 2);
  button.kindIcon._y -= 10;
  if (shots == undefined) return;
  number._visible = false;
  fillRound(button, WELL_X, WELL_Y, WELL_WIDE, WELL_HIGH, 3, INK);
  var files = shots.split("\n"), w = Math.floor((WELL_WIDE - 2) / 2), h = Math.floor((WELL_HIGH - 2) / 2);
  for (var i = 0; i < files.length; i++)
    showShot(button, "shot" + i, addressOf(files[i]), WELL_X + i % 2 * (w + 2),
        WELL_Y + Math.floor(i / 2) * (h + 2), w, h);
  // Still a folder, over whatever its movies show.
  var sign = child(button, "folderSign");
  fillRound(sign, WELL_X, WELL_Y, 26, 26, 3, SLATE);
  tint(picture(sign, "folder", WELL_X + 3, WELL_Y + 3, 20), SKY);
}

// A movie that gave no picture: the glyph with a sign on its corner.
function showFailed(button) {
  var sign = child(button, "failed"), x = PAD + SHOT_WIDE / 2 + 22, y = PAD + SHOT_HIGH / 2 + 18;
  fillRound(sign, x - 10, y - 10, 20, 20, 10, RED);
  sign.lineStyle(2, WHITE, 100);
  sign.moveTo(x - 4, y - 4);
  sign.lineTo(x + 4, y + 4);
  sign.moveTo(x + 4, y - 4);
  sign.lineTo(x - 4, y + 4);
}

function showSlot(slot, name, kind) {
  var index = slot - 1;
  var isParent = kind == FOLDER && name == "..", isFolder = kind == FOLDER;
  var button = plate(grid, EDGE + index % COLUMNS * (SLOT_WIDE + GAP),
      BAR + EDGE + Math.floor(index / COLUMNS) * (SLOT_HIGH + GAP), SLOT_WIDE, SLOT_HIGH, SLATE, 100, function() {
        send(isFolder ? "MEOWSEARCH" : "MEOWSEL", folder + name);
      });
  var icon = isParent ? "parent" : isFolder ? "folder" : kind == PROJECTOR ? "projector" : "movie";
  if (!isFolder) fillRound(button, WELL_X, WELL_Y, WELL_WIDE, WELL_HIGH, 3, INK);
  var kindIcon = picture(button, icon, PAD + (SHOT_WIDE - 48) / 2, PAD + (SHOT_HIGH - 48) / 2, 48);
  tint(kindIcon, isFolder ? SKY : PALE_ON_INK);
  button.kindIcon = kindIcon;
  var caption = isParent ? say("На уровень выше") : oneLine(name);
  if (!isFolder) {
    picture(button, icon, PAD, SLOT_HIGH - PAD - 19, 16);
    if (this["shot" + slot + "_ItemFailed"] != undefined) showFailed(button);
    else showShot(button, "shot", shotOf(slot, name), WELL_X, WELL_Y, WELL_WIDE, WELL_HIGH);
  } else if (!isParent) showContent(button, slot);
  var left = isFolder ? PAD : PAD + 20;
  var field = label(button, left - 2, SLOT_HIGH - PAD - 21, SLOT_WIDE - PAD - left + 2, 20, 12, ICE);
  setFitted(field, caption, isFolder ? 0 : tailOf(caption));
  if (isFolder) field._x = Math.round((SLOT_WIDE - field.textWidth - 4) / 2);
  // The whole name, for it may not have had room.
  var inside = this["shot" + slot + "_ItemCount"];
  var told = inside == undefined ? caption : caption + ": " + say("Роликов: ").toLowerCase() + inside;
  button.told = told;
  button.onPointed = function(on) { setFitted(status, on && !isParent ? told : statusText, tailOf(told)); };
}

function oneLine(name) { return name.split("\r").join(" ").split("\n").join(" ").split("\t").join(" "); }

// What of a name should not be left out: the part that tells it from its neighbours is often at its end.
function tailOf(name) { return Math.min(7, Math.floor(name.length / 3)); }

var shown = 0, media = 0;
for (var i = 1; i <= SLOTS; i++) {
  var kind = number(query["shot" + i + "_ItemType"]);
  if (kind < MOVIE || kind > FOLDER || nameOf(i) == "") continue;
  showSlot(i, nameOf(i), kind);
  shown = i;
  if (kind != FOLDER) media++;
}
if (pages == 1 && media == 0 && shown <= COLUMNS) {
  var emptyTop = shown > 0 ? BAR + EDGE + SLOT_HIGH + GAP + SLOT_HIGH / 2 - 28 : HIGH / 2 - 28;
  centred(say("В этой папке нет роликов Flash"), emptyTop, 13, ICE);
  centred(say("Показываются файлы .swf и проекторы .exe."), emptyTop + 24, 11, SKY);
}

function centred(text, y, size, color) {
  var field = label(grid, EDGE, y, WIDE - 2 * EDGE, 22, size, color);
  setText(field, text);
  field._x = Math.round((WIDE - field.textWidth - 4) / 2);
}

// The first slot comes first to the keyboard, the bars after the slots.
buttons = buttons.slice(7).concat(buttons.slice(0, 7));

// --- Turning pages by key and wheel

var SETTLE_MS = 200; // the rest of a turn of the wheel belongs to the page before
var opened = getTimer(), turned = -SETTLE_MS;

function turn(pagesOn) {
  var button = pagesOn > 0 ? turnNext : turnBack, now = getTimer();
  if (!button.enabled || now - opened < SETTLE_MS || now - turned < SETTLE_MS) return;
  turned = now;
  button.run();
}

var mouse = {};
mouse.onMouseWheel = function(lines) { turn(lines < 0 ? 1 : -1); };
Mouse.addListener(mouse);

function onPageKey(code) {
  switch (code) {
  case Key.PGDN: turn(1); return true;
  case Key.PGUP: turn(-1); return true;
  case Key.HOME: if (turnFirst.enabled) turnFirst.run(); return true;
  case Key.END: if (turnLast.enabled) turnLast.run(); return true;
  case Key.BACKSPACE: if (chosenAnew(code)) goUp(); return true;
  }
  return false;
}

tellItems();
appear(grid);
stop();
