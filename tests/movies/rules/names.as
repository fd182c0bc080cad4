// movie: version="8" rate="10"
// What names lead to: hidden properties, variables of functions with registers, `var` in its places.
var o = {p: 1};
ASSetPropFlags(o, "p", 0x4000, 0);
trace(o.p + " " + (delete o.p) + " " + o.hasOwnProperty("p"));

// Old values come from prototypes, too.
function Watched() { this.watch("value", this.log); }
Watched.prototype.value = "class";
Watched.prototype.log = function (name, before, after) { trace(name + ": " + before + " -> " + after); return after; };
var w = new Watched();
w.value = 1;
w.value = 2;

// `var` within `with` goes to an object that has it for its own.
var m = {own: 1};
m.__proto__ = {above: 2};
with (m) {
    var own = 10;
    var above = 20;
}
trace(m.own + " " + m.above + " " + above);
MovieClip.prototype.given = "class";
var given;
trace(given);

// What is not the point's own does not count.
createEmptyMovieClip("clip", 1);
clip._x = 50;
var point = {x: 1, y: 2};
clip.localToGlobal(point);
trace(point.x + " " + point.y);
point = new Object();
point.__proto__ = {x: 1, y: 2};
clip.localToGlobal(point);
trace(point.x + " " + point.y);
point = {};
point.addProperty("x", function () { trace("asked"); return 1; }, null);
point.addProperty("y", function () { trace("asked"); return 1; }, null);
clip.localToGlobal(point);

// Arguments are read from left to right.
var target = {toString: function () { trace("name"); return "copy"; }};
var depth = {valueOf: function () { trace("depth"); return 5; }};
trace(clip.duplicateMovieClip(target, depth));

// A sound's clip is the one at its path.
var s = new Sound(clip);
s.setVolume(30);
trace(s.getVolume());
clip._name = "other";
trace(s.getVolume());
copy.blendMode = "layer";
copy.blendMode = null;
trace(copy.blendMode);
copy.blendMode = 259;
trace(copy.blendMode);
copy.blendMode = true;
trace(copy.blendMode);

// Only a loader tells of progress.
var copied = {};
copied.getProgress = MovieClipLoader.prototype.getProgress;
trace(copied.getProgress(_root));

// Each watch counts for itself how deeply it is nested.
var calls = 0;
var ring = {};
ring.watch("a", function (name, before, after) { calls++; this.b = 1; return after; });
ring.watch("b", function (name, before, after) { calls++; this.a = 1; return after; });
ring.a = 1;
trace(calls);
fscommand("quit");
