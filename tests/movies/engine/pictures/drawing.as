// movie: version="8" width="120" height="80" rate="10" background="#FFFFFF"
function box(clip, x, y, w, h, color, alpha) {
  clip.beginFill(color, alpha);
  clip.moveTo(x, y); clip.lineTo(x + w, y); clip.lineTo(x + w, y + h); clip.lineTo(x, y + h);
  clip.endFill();
}
var c = createEmptyMovieClip("c", 1);
box(c, 0, 0, 20, 20, 0xFF0000, 100);
box(c, 10, 10, 20, 20, 0x00FF00, 100);
// A hole by a second outline in the same fill.
c.beginFill(0x0000FF);
c.moveTo(40, 0); c.lineTo(80, 0); c.lineTo(80, 40); c.lineTo(40, 40); c.lineTo(40, 0);
c.moveTo(50, 10); c.lineTo(70, 10); c.lineTo(70, 30); c.lineTo(50, 30); c.lineTo(50, 10);
c.endFill();
// What was drawn before clear() is gone, and a clip of its own has its own place.
var d = createEmptyMovieClip("d", 2); box(d, 0, 0, 100, 100, 0x000000, 100); d.clear(); box(d, 0, 0, 10, 10, 0x336699, 100);
d._x = 90; d._y = 10; d._xscale = 200;
// Lines of two pixels on whole pixels; a copy takes the drawing along.
var e = createEmptyMovieClip("e", 3); e.lineStyle(2, 0x000000, 100, true, "normal", "none", "miter"); e.moveTo(0, 50); e.lineTo(60, 50);
var f = createEmptyMovieClip("f", 4); f._y = 10; box(f, 70, 40, 10, 10, 0xFF00FF, 100);
f.duplicateMovieClip("f2", 5); f2._x = 20;
// Half of red over white.
box(d.createEmptyMovieClip("g", 1), -40, 50, 5, 20, 0xFF0000, 50);
stop();
