// What the program is and whom it thanks: a text that rolls by until the pointer holds it.
#include "parts/kit.as"

var WIDE = 400, HIGH = 320, MARGIN = 24;
var TOP = 112, VIEW = HIGH - TOP - 12; // of the rolling text
var SPEED = 22;                        // pixels a second
var LINE = 18;                         // what a key or a line of the wheel moves

// --- The text. "<BR>" ends a line; what comes before the first one is name and version.

var lines = joined(given(query.about), ["<BR>", "<br>", "<Br>", "<bR>"]).split("\n");

function joined(text, ends) {
  for (var i = 0; i < ends.length; i++) text = text.split(ends[i]).join("\n");
  return text.split("\r").join("");
}

var version = lines[0], blank = version.lastIndexOf(" ");
if (blank < 0) blank = version.length;
lines.shift();
while (lines.length > 0 && trimmed(lines[0]) == "") lines.shift();

function trimmed(text) {
  var from = 0, to = text.length;
  while (from < to && text.charAt(from) == " ") from++;
  while (to > from && text.charAt(to - 1) == " ") to--;
  return text.substring(from, to);
}

for (var i = 0; i < lines.length; i++) lines[i] = trimmed(lines[i]);

picture(this, "mark", MARGIN + 28, 56, 62);
setFitted(label(this, 100, 28, 280, 34, 24, ICE, BOLD), blank > 0 ? version.substr(0, blank) : PRODUCT, 0);
if (blank < version.length)
  setFitted(label(this, 100, 60, 280, 20, 11, SKY), say("Версия ") + version.substr(blank + 1), 0);

var window = child(this, "window"), mask = child(this, "mask");
window._y = mask._y = TOP;
fillRound(mask, 0, 0, WIDE, VIEW, 0, INK);
window.setMask(mask);
var ground = child(window, "ground"); // so that the pointer meets something between the lines
fillRound(ground, 0, 0, WIDE, VIEW, 0, INK);
var roll = child(window, "roll");
var words = label(roll, MARGIN, 0, WIDE - 2 * MARGIN, 20, 12, ICE);
words.multiline = words.wordWrap = true;
words.autoSize = "left";
words.mouseWheelEnabled = false;
var format = words.getNewTextFormat();
format.leading = 4;
words.setNewTextFormat(format);
setText(words, lines.join("\n"));
picture(this, "upperVeil", 0, TOP, 24);
picture(this, "lowerVeil", 0, TOP + VIEW - 28, 24);

// Where the roll stands with its first and its last line clear of the veils.
var most = 20, least = Math.min(most, VIEW - 28 - words._height);
var thumb = child(this, "thumb"), thumbHigh = Math.max(20, VIEW * VIEW / (VIEW + most - least));
fillRound(thumb, WIDE - 12, TOP, 4, thumbHigh, 2, SKY);
thumb._alpha = 0;

function put(y) {
  roll._y = y;
  var part = least < most ? (most - y) / (most - least) : 0;
  thumb._y = (VIEW - thumbHigh) * Math.max(0, Math.min(1, part));
}

function moveBy(pixels) {
  if (least >= most) return;
  put(Math.max(least, Math.min(most, roll._y + pixels)));
  glide(thumb, "_alpha", 60, QUICK);
}

// --- Rolling. Under the pointer it stands still, and so it does after it was moved by hand, as long as the pointer
// is there.

var held = false, dragged = false, paused = false, last = getTimer(), from = 0;
var roller = child(this, "roller");

put(animated ? VIEW / 3 : most);
if (animated) {
  roller.onEnterFrame = function() {
    var now = getTimer(), seconds = Math.min(0.1, (now - last) / 1000);
    last = now;
    if (held || paused) return;
    var y = roll._y - SPEED * seconds;
    put(y < -words._height ? VIEW : y);
  };
} else if (least < most) thumb._alpha = 60;

ground.useHandCursor = false;
ground.tabEnabled = false;
ground.onRollOver = ground.onDragOver = function() { held = true; };
ground.onRollOut = ground.onDragOut = ground.onReleaseOutside = function() {
  held = dragged;
  if (!dragged && animated) glide(thumb, "_alpha", 0, QUICK);
};
ground.onPress = function() {
  dragged = true;
  from = _ymouse;
};

var mouse = {};
mouse.onMouseMove = function() {
  if (!dragged) return;
  moveBy(_ymouse - from);
  from = _ymouse;
};
mouse.onMouseUp = function() {
  if (!dragged) return;
  dragged = false;
  held = ground.hitTest(_xmouse, _ymouse, false);
  if (!held && animated) glide(thumb, "_alpha", 0, QUICK);
};
mouse.onMouseWheel = function(turned) { moveBy(turned * LINE); };
Mouse.addListener(mouse);

function onPageKey(code) {
  switch (code) {
  case Key.UP: moveBy(LINE); break;
  case Key.DOWN: moveBy(-LINE); break;
  case Key.PGUP: moveBy(VIEW - LINE); break;
  case Key.PGDN: moveBy(LINE - VIEW); break;
  case Key.HOME: moveBy(Infinity); break;
  case Key.END: moveBy(-Infinity); break;
  case Key.SPACE: paused = !paused; break;
  default: return false;
  }
  if (code != Key.SPACE) paused = true;
  return true;
}
stop();
