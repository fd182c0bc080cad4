// movie: version="7" rate="10"
// Clips within clips within clips, and everything that walks through them.
var at = _root;
var deepest;
for (var i = 0; i < 100000; i++) {
  at = at.createEmptyMovieClip("c", 1);
  if (at != undefined) deepest = at;
}
trace(at);
deepest.beginFill(0xff);
deepest.lineTo(100, 0);
deepest.lineTo(100, 100);
deepest.endFill();
trace(_root._width);
trace(_root.hitTest(90, 50, true));
trace(deepest.hitTest(90, 50, true));
trace(String(deepest).length > 1000);
deepest.onUnload = function() { trace("unloaded"); };
var gone = deepest;
_root.c.removeMovieClip();
_root.onEnterFrame = function() {
  trace(_root.c + " " + _root._width + " " + gone._x);
  delete _root.onEnterFrame;
};
