// movie: version="7" rate="10"
// A dynamic class takes members that it does not declare; the last property by number is whether a clip shows its focus.
dynamic class Bag { var known = 1; function sum() { return this.known + this.added; } }
var bag = new Bag(); bag.added = 2; trace(bag.sum() + " " + (bag instanceof Bag));
createEmptyMovieClip("c", 1); trace(c._focusrect); c._focusrect = true; trace(getProperty("c", _focusrect));
