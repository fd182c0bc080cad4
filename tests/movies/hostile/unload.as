// movie: version="7" rate="10"
// What is unloaded makes two new ones.
var n = 0;
function make() {
  var c = _root.createEmptyMovieClip("c", 5);
  c.onUnload = function() { n++; if (n < 1000) { make(); make(); } };
}
make();
make();
_root.onEnterFrame = function() { trace(n > 0); };
