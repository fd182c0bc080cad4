// movie: version="6" rate="10"
// A value that tellTarget returns is computed in the target; afterwards the target is the movie again.
createEmptyMovieClip("c", 1);
_x = 7; c._x = 30;
function place() { tellTarget (c) { return getProperty("", _x); } }
trace(place() + " " + getProperty("", _x));
function inLoop(o) { for (var k in o) { tellTarget (c) { return k + " " + getProperty("", _x); } } }
trace(inLoop({key: 1}) + " " + getProperty("", _x));
function twice() { tellTarget (c) { tellTarget (_root) { return getProperty("", _x); } } }
trace(twice() + " " + getProperty("", _x));
function nothing() { tellTarget (c) { return; } }
trace(nothing() + " " + getProperty("", _x));
for (i = 0; i < 2; i++) { tellTarget (c) { break; } }
trace(i + " " + getProperty("", _x));
for (i = 0; i < 2; i++) { tellTarget ("c") { continue; } }
trace(i + " " + getProperty("", _x));
// The names of a loop that a return leaves must not be taken for arguments of the caller.
function first(o) { for (var k in o) return k; }
trace(["before", first({a: 1, b: 2, c: 3}).length, "behind"]);
