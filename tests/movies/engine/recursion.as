// movie: version="7" rate="10"
// Deep calls within the limit work; endless ones end all scripts of the movie, not the player.
var depth = 0;
function probe(n) { return n < 200 ? 1 + probe(n + 1) : 1; }
trace(probe(0));
onEnterFrame = function() { trace("never: scripts are switched off"); };
function endless() { depth++; if (depth == 255) trace("deep"); endless(); trace("never"); }
endless();
trace("never");
