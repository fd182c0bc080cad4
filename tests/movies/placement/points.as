// movie: version="8" rate="12"
// Points through turned clips: each step ends on whole twips.
var clip = _root.createEmptyMovieClip("clip", 1);
clip._x = clip._y = 200;
clip._rotation = 25;
clip._xscale = clip._yscale = 25;
var inner = clip.createEmptyMovieClip("inner", 1);
inner._x = inner._y = 200;
function show(point) { trace(point.x + " " + point.y); }
var point = {x: 10, y: 10};
inner.localToGlobal(point);
show(point);
clip.globalToLocal(point);
show(point);
_root._x = -10;
_root._rotation = 5;
point = {x: -10, y: -10};
inner.localToGlobal(point);
show(point);
clip.globalToLocal(point);
show(point);
