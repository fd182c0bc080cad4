// What all pages are made of: colours, motion, plates, texts, buttons and keys.
#include "query.as"
#include "english.as"

var INK = 0x16202E, SLATE = 0x223349, STEEL = 0x34506F, BLUE = 0x4974BA, SKY = 0x7FA6E0, ICE = 0xEEEEFF;
var RED = 0xD9534F, WHITE = 0xFFFFFF;
// Glyphs of little weight, on ink and on slate: a glyph drawn transparently shows where its strokes cross.
var PALE_ON_INK = 0x626877, PALE_ON_SLATE = 0x697489;
var PRODUCT = "Zorvex"; // where the host does not say it
var SANS = "DejaVu Sans", BOLD = "DejaVu Sans Bold";
var QUICK = 150, CALM = 220; // milliseconds of a motion

var query = queryOf(_url);
var animated = given(query.noanim).toLowerCase() != "true";
_focusrect = false;
_quality = "BEST"; // thumbnails are drawn smoothly at every scale

function send(command, argument) { fscommand(command, given(argument)); }

// --- Motion. A property goes to its new value, fast first; nothing runs once all are there.

var glides = [];

function glide(clip, property, to, ms) {
  for (var i = glides.length - 1; i >= 0; i--)
    if (glides[i].clip == clip && glides[i].property == property) glides.splice(i, 1);
  if (!animated) clip[property] = to;
  if (clip[property] == to) return;
  glides.push({clip: clip, property: property, from: clip[property], to: to, start: getTimer(), ms: ms});
  onEnterFrame = stepGlides;
}

function stepGlides() {
  var now = getTimer();
  for (var i = glides.length - 1; i >= 0; i--) {
    var it = glides[i], left = 1 - Math.min(1, (now - it.start) / it.ms);
    it.clip[it.property] = it.to - (it.to - it.from) * left * left * left;
    if (left == 0) glides.splice(i, 1);
  }
  if (glides.length == 0) delete onEnterFrame;
}

// Lets a part of the page come up from below.
function appear(clip) {
  if (!animated) return;
  var y = clip._y;
  clip._alpha = 0;
  clip._y = y + 8;
  glide(clip, "_alpha", 100, CALM);
  glide(clip, "_y", y, CALM);
}

// --- Drawing

function child(parent, name) {
  return parent.createEmptyMovieClip(name, parent.getNextHighestDepth());
}

function picture(parent, linkage, x, y, size) {
  var clip = parent.attachMovie(linkage, linkage, parent.getNextHighestDepth());
  clip._x = x;
  clip._y = y;
  clip._xscale = clip._yscale = size / 24 * 100;
  return clip;
}

function tint(clip, color) { (new Color(clip)).setRGB(color); }

function traceRound(clip, x, y, w, h, r) {
  var k = r * 0.4142, d = r * 0.7071; // a curve is an eighth of a circle
  clip.moveTo(x + r, y);
  clip.lineTo(x + w - r, y);
  clip.curveTo(x + w - r + k, y, x + w - r + d, y + r - d);
  clip.curveTo(x + w, y + r - k, x + w, y + r);
  clip.lineTo(x + w, y + h - r);
  clip.curveTo(x + w, y + h - r + k, x + w - r + d, y + h - r + d);
  clip.curveTo(x + w - r + k, y + h, x + w - r, y + h);
  clip.lineTo(x + r, y + h);
  clip.curveTo(x + r - k, y + h, x + r - d, y + h - r + d);
  clip.curveTo(x, y + h - r + k, x, y + h - r);
  clip.lineTo(x, y + r);
  clip.curveTo(x, y + r - k, x + r - d, y + r - d);
  clip.curveTo(x + r - k, y, x + r, y);
}

function fillRound(clip, x, y, w, h, r, color, alpha) {
  clip.lineStyle();
  clip.beginFill(color, alpha == undefined ? 100 : alpha);
  traceRound(clip, x, y, w, h, r);
  clip.endFill();
}

// Half a pixel inwards, where a line one pixel wide fills whole pixels.
function hairline(clip, x, y, w, h, r) {
  clip.lineStyle(0, WHITE, 12);
  traceRound(clip, x + 0.5, y + 0.5, w - 1, h - 1, r);
  clip.lineStyle();
}

// --- Texts. They are shown as they stand: a name with "<" in it is a name.

var labels = [];

function label(parent, x, y, w, h, size, color, font) {
  var depth = parent.getNextHighestDepth(), name = "text" + depth;
  parent.createTextField(name, depth, x, y, w, h);
  var field = parent[name];
  field.embedFonts = true;
  field.selectable = false;
  field.setNewTextFormat(new TextFormat(font == undefined ? SANS : font, size, color));
  labels.push(field);
  return field;
}

// Letters that the page does not bring come from the machine.
function setText(field, text) {
  field.embedFonts = isCovered(text);
  field.text = field.whole = text;
}

// Shortens what has no room: the last `tail` characters stay, an ellipsis stands for what is left out. With no tail
// given, it is the beginning that goes.
function setFitted(field, text, tail) {
  var room = field._width - 5;
  setText(field, text);
  if (field.textWidth <= room) return;
  var end = tail == undefined ? "" : text.substr(text.length - tail, tail);
  var most = text.length - end.length, fits = 0;
  while (most - fits > 1) {
    var middle = Math.floor((fits + most) / 2);
    field.text = tail == undefined ? "…" + text.substr(text.length - middle) : text.substr(0, middle) + "…" + end;
    if (field.textWidth <= room) fits = middle; else most = middle;
  }
  field.text = tail == undefined ? "…" + text.substr(text.length - fits) : text.substr(0, fits) + "…" + end;
}

// --- Buttons. `buttons` holds them in the order of the Tab key; the ring shows where the keyboard is.

var buttons = [], focused = null;
var primary = null; // what Enter does while no button has the ring

// A plate that calls `run` when it is chosen. The page lays texts and icons on it.
function plate(parent, x, y, w, h, color, alpha, run) {
  var button = child(parent, "plate" + buttons.length);
  button._x = x;
  button._y = y;
  button.w = w;
  button.h = h;
  button.run = run;
  fillRound(button, 0, 0, w, h, 6, color, alpha);
  if (alpha > 0) hairline(button, 0, 0, w, h, 6);
  button.lit = child(button, "lit");
  fillRound(button.lit, 0, 0, w, h, 6, SKY);
  button.lit._alpha = 0;
  button.down = child(button, "down");
  fillRound(button.down, 0, 0, w, h, 6, color == BLUE ? INK : BLUE);
  button.down._alpha = 0;
  button.ring = child(button, "ring");
  button.ring.lineStyle(2, SKY, 100);
  traceRound(button.ring, 1, 1, w - 2, h - 2, 5);
  button.ring._visible = false;
  button.tabEnabled = false;
  button.onRollOver = button.onDragOver = function() {
    glide(this.lit, "_alpha", color == BLUE ? 30 : 18, QUICK);
    this.onPointed(true);
  };
  button.onRollOut = button.onDragOut = button.onReleaseOutside = function() {
    this.down._alpha = 0;
    glide(this.lit, "_alpha", 0, QUICK);
    this.onPointed(false);
  };
  button.onPress = function() {
    focusOn(null);
    this.down._alpha = 60;
  };
  button.onRelease = function() {
    this.down._alpha = 0;
    this.run();
  };
  buttons.push(button);
  return button;
}

function disable(button, glyph) {
  button.enabled = false;
  button.useHandCursor = false;
  tint(glyph, PALE_ON_SLATE);
}

function focusOn(button) {
  if (focused != null) {
    focused.ring._visible = false;
    focused.onPointed(false);
  }
  focused = button;
  send("MEOWFOCUS", String(focused == null ? -1 : focused.item));
  if (focused == null) return;
  focused.ring._visible = true;
  focused.onPointed(true);
}

// --- Keys

function focusNext(step) {
  var at = -1;
  for (var i = 0; i < buttons.length; i++) if (buttons[i] == focused) at = i;
  if (at < 0 && step < 0) at = 0;
  for (var tries = 0; tries < buttons.length; tries++) {
    at = (at + step + buttons.length) % buttons.length;
    if (buttons[at].enabled) return focusOn(buttons[at]);
  }
}

// To the nearest button on that side; what lies across the way counts double.
function focusTowards(dx, dy) {
  if (focused == null) return focusNext(1);
  var best = null, least = Infinity, from = middleOf(focused);
  for (var i = 0; i < buttons.length; i++) {
    if (!buttons[i].enabled || buttons[i] == focused) continue;
    var to = middleOf(buttons[i]);
    var along = (to.x - from.x) * dx + (to.y - from.y) * dy;
    var across = Math.abs((to.x - from.x) * dy) + Math.abs((to.y - from.y) * dx);
    if (along <= 4 || along + 2 * across >= least) continue;
    least = along + 2 * across;
    best = buttons[i];
  }
  if (best != null) focusOn(best);
}

function middleOf(button) {
  var point = {x: button.w / 2, y: button.h / 2};
  button.localToGlobal(point);
  return point;
}

var REPEAT_MS = 250; // a key that is held comes again sooner than this
var lastKey = 0, lastTime = 0;

function chosenAnew(key) {
  var now = getTimer(), anew = key != lastKey || now - lastTime >= REPEAT_MS;
  lastKey = key;
  lastTime = now;
  return anew;
}

// A page adds its own keys in `onPageKey`, which answers whether the key was one of them.
var keyboard = {};
keyboard.onKeyDown = function() {
  var code = Key.getCode();
  if (Key.isDown(Key.CONTROL) || onPageKey(code)) return;
  switch (code) {
  case Key.TAB: focusNext(Key.isDown(Key.SHIFT) ? -1 : 1); break;
  case Key.LEFT: focusTowards(-1, 0); break;
  case Key.RIGHT: focusTowards(1, 0); break;
  case Key.UP: focusTowards(0, -1); break;
  case Key.DOWN: focusTowards(0, 1); break;
  case Key.ENTER:
  case Key.SPACE:
    if (!chosenAnew(code)) break;
    if (focused != null) focused.run();
    else if (code == Key.ENTER && primary != null) primary.run();
  }
};
Key.addListener(keyboard);

// --- For those who do not see the page: the host is told what there is, a line for each button and each text that is
// no part of a button. A button's `told` is what it says of itself, else what is written on it.

function tellItems() {
  var lines = [];
  for (var i = 0; i < buttons.length; i++) {
    var button = buttons[i], told = button.told;
    if (told == undefined) told = writtenOn(button);
    button.item = lines.length;
    lines.push(itemLine(button.enabled ? "button" : "disabled", button, button.w, button.h, told));
  }
  for (var i = 0; i < labels.length; i++) {
    var field = labels[i];
    if (field._visible && given(field.whole) != "" && plateOf(field) == null)
      lines.push(itemLine("text", field, field._width, field._height, field.whole));
  }
  send("MEOWITEMS", lines.join("\n"));
}

function plateOf(field) {
  for (var clip = field._parent; clip != undefined; clip = clip._parent) if (clip.run != undefined) return clip;
  return null;
}

function writtenOn(button) {
  var told = [];
  for (var i = 0; i < labels.length; i++)
    if (plateOf(labels[i]) == button && labels[i]._visible && given(labels[i].whole) != "") told.push(labels[i].whole);
  return told.join(", ");
}

function itemLine(kind, clip, w, h, told) {
  var point = {x: clip._x, y: clip._y};
  clip._parent.localToGlobal(point);
  var words = told.split("\t").join(" ").split("\r").join(" ").split("\n").join(" ");
  return [kind, point.x, point.y, w, h, words].join("\t");
}
