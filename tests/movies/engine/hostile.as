// movie: version="7" rate="10"
// Large and odd wishes are refused or harmless.
var list = []; list[1000000] = 1; trace(list.length);
var o = {}; o.self = o; trace(typeof o.self.self.self);
var loop = []; loop[0] = loop; trace(loop.length);
var s = "x"; for (var i = 0; i < 16; i++) s += s; trace(s.length);
trace(typeof "abc".substr(NaN, Infinity) + typeof "abc".charAt(-1e300) + typeof [1, 2].slice(-1e300, 1e300));
createEmptyMovieClip("clip", 1); clip._xscale = 1e300; clip._x = -1e300; clip._rotation = Infinity; trace(typeof clip._x);
clip.lineStyle(1e9); clip.beginFill(-1, 1e9); clip.lineTo(NaN, 1e300); clip.curveTo(); clip.endFill(); trace("drawn");
gotoAndStop(-5); gotoAndStop(NaN); trace(_currentframe);
removeMovieClip(_root); _root.removeMovieClip(); trace(_root._name + "" + typeof _root);
delete _root; delete this; trace(typeof _root);
var parent = createEmptyMovieClip("a", 5); parent.onUnload = function() { createEmptyMovieClip("again", 6); };
parent.removeMovieClip(); trace("end");
