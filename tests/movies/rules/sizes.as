// movie: version="6" rate="10"
// A rotated clip takes its scales from the box it is to fill, and what is nothing sets no property.
createEmptyMovieClip("c", 1);
with (c) { beginFill(0x4974BA); moveTo(0, 0); lineTo(100, 0); lineTo(100, 40); lineTo(0, 40); endFill(); }
function sizes() { trace(Math.round(c._width * 10) / 10 + "x" + Math.round(c._height * 10) / 10 + " by " + Math.round(c._xscale) + ", " + Math.round(c._yscale)); }
c._rotation = 90; sizes();
c._width = 80; sizes();
c._width = 80; sizes();
c._rotation = 0; sizes();
c._xscale = c._yscale = 100; c._rotation = -90;
c._height = 50; sizes();
c._height = 50; sizes();
c._xscale = c._yscale = 100; c._rotation = 30; sizes();
c._width = 2 * c._width; sizes();
c._rotation = 0; c._xscale = c._yscale = 100; c._width = 50; sizes();
c._visible = undefined; c._visible = null; trace(c._visible);
c._visible = "no number"; trace(c._visible);
c._visible = 0; trace(c._visible);
c._visible = undefined; trace(c._visible);
trace(c.getBytesTotal());
