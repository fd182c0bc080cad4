// What all pages are made of: colours, motion, texts, plates and buttons.
#include "query.as"

var INK = 0x16202E, SLATE = 0x223349, STEEL = 0x34506F, BLUE = 0x4974BA, SKY = 0x7FA6E0, ICE = 0xEEEEFF;
var AMBER = 0xF2A93B, RED = 0xD9534F;
var SANS = "DejaVu Sans", BOLD = "DejaVu Sans Bold";
var QUICK = 150, CALM = 220; // milliseconds of a motion

var query = queryOf(_url);
var animated = given(query.noanim).toLowerCase() != "true";
_focusrect = false;

// --- Motion: a property goes to its new value, fast first, and nothing runs once it is there.

var glides = [];

function glide(clip, property, to, ms) {
  for (var i = glides.length - 1; i >= 0; i--)
    if (glides[i].clip == clip && glides[i].property == property) glides.splice(i, 1);
  if (!animated) { clip[property] = to; return; }
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

// --- Drawing

function tracePlate(clip, x, y, w, h, r) {
  var k = r * 0.4142, d = r * 0.7071; // an eighth of a circle is one curve
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

function plate(clip, x, y, w, h, r, color, alpha) {
  clip.lineStyle();
  clip.beginFill(color, alpha == undefined ? 100 : alpha);
  tracePlate(clip, x, y, w, h, r);
  clip.endFill();
}

function outline(clip, x, y, w, h, r, thickness, color, alpha) {
  clip.lineStyle(thickness, color, alpha);
  tracePlate(clip, x, y, w, h, r);
  clip.lineStyle();
}

function tint(clip, color) { (new Color(clip)).setRGB(color); }

// --- Texts: always as they stand; a name with "<" in it is a name.

function label(parent, x, y, w, h, size, color, font) {
  var depth = parent.getNextHighestDepth();
  var field = parent.createTextField("text" + depth, depth, x, y, w, h);
  var format = new TextFormat(font == undefined ? SANS : font, size, color);
  field.embedFonts = true;
  field.selectable = false;
  field.setNewTextFormat(format);
  return field;
}

// Cuts the end off, so that the text and an ellipsis have room in the width of the field.
function setFitted(field, text) {
  var room = field._width - 4;
  field.text = text;
  if (field.textWidth <= room) return;
  var fits = 0, tooLong = text.length;
  while (tooLong - fits > 1) {
    var middle = fits + tooLong >> 1;
    field.text = text.substr(0, middle) + "…";
    if (field.textWidth <= room) fits = middle; else tooLong = middle;
  }
  field.text = text.substr(0, fits) + "…";
}

// --- Buttons. `focusable` holds them in the order of the Tab key; the ring shows once a key was used.

var focusable = [], focused = null;

// A plate of the given size whose `run` is called when it is chosen. The page lays texts and icons on it.
function pushPlate(parent, x, y, w, h, color, run) {
  var depth = parent.getNextHighestDepth();
  var button = parent.createEmptyMovieClip("button" + depth, depth);
  button._x = x; button._y = y;
  button.run = run;
  button.plainWidth = w; button.plainHeight = h;
  plate(button, 0, 0, w, h, 6, color);
  outline(button, 0, 0, w, h, 6, 0, 0xFFFFFF, 12);
  var lit = button.createEmptyMovieClip("lit", 1);
  plate(lit, 0, 0, w, h, 6, color == BLUE ? 0xFFFFFF : SKY);
  lit._alpha = 0;
  var down = button.createEmptyMovieClip("down", 2);
  plate(down, 0, 0, w, h, 6, color == BLUE ? INK : BLUE);
  down._alpha = 0;
  var ring = button.createEmptyMovieClip("ring", 3);
  outline(ring, -2, -2, w + 4, h + 4, 8, 2, SKY, 100);
  ring._visible = false;
  button.tabEnabled = false;
  button.onRollOver = button.onDragOver = function() { glide(this.lit, "_alpha", 18, QUICK); };
  button.onRollOut = button.onDragOut = button.onReleaseOutside = function() {
    glide(this.lit, "_alpha", 0, QUICK);
    this.down._alpha = 0;
  };
  button.onPress = function() { showFocus(null); this.down._alpha = 60; };
  button.onRelease = function() { this.down._alpha = 0; this.run(); };
  focusable.push(button);
  return button;
}

function showFocus(button) {
  if (focused) focused.ring._visible = false;
  focused = button;
  if (focused) focused.ring._visible = true;
}

function send(command, argument) { fscommand(command, given(argument)); }
