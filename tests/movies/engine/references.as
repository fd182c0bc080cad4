// movie: version="8" rate="10"
// A reference to a clip is one to its path: what comes to stand there answers in its place.
var r = createEmptyMovieClip("a", 1); r.mark = 1; r.removeMovieClip();
trace(r.mark + " " + typeof r);
r.mark = "lost";
createEmptyMovieClip("a", 2); trace(r.mark);
a.mark = 2; trace(r.mark); r.mark = 3; trace(a.mark + " " + r.getDepth());
// The first name counts, whatever name came later.
var q = createEmptyMovieClip("q", 5); q._name = "z"; q.mark = "old"; trace(z.mark);
q.removeMovieClip();
createEmptyMovieClip("z", 5).mark = "new z"; trace(q.mark);
createEmptyMovieClip("q", 6).mark = "new q"; trace(q.mark);
// Other things of the stage are the same in this.
createTextField("t", 7, 0, 0, 10, 10); var f = t; trace(typeof f); f.removeTextField(); trace(typeof f);
createEmptyMovieClip("t", 7).mark = "a clip now"; trace(f.mark);
// A sound speaks for a path, too: its target may come after it.
var s = new Sound("later"); trace(s.getVolume()); createEmptyMovieClip("later", 8); trace(s.getVolume());
later._name = "gone"; trace(s.getVolume());
// A function ends with its clip after the next call, wherever it goes on.
createEmptyMovieClip("c", 9);
c.stop1 = function() { trace("before"); this.removeMovieClip(); trace("of another clip"); };
c.stop1();
// Names that are none, and depths beyond 32 bits.
var o = {}; o[""] = 1; trace(o[""] + " " + o.hasOwnProperty(""));
trace(createEmptyMovieClip("low", 4294967306).getDepth());
trace("<" + a.duplicateMovieClip("", 20)._name + ">");
