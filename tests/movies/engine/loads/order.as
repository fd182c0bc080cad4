// movie: version="8" rate="10"
// Loads report in the order in which they were asked for; first frames run the newest first, and each is
// ready after all of them.
var l = new MovieClipLoader();
l.onLoadStart = function(m) { trace("start " + m); };
l.onLoadComplete = function(m) { trace("complete " + m); };
l.onLoadError = function(m, why) { trace(why + " " + m); };
l.onLoadInit = function(m) { trace("ready " + m); };
createEmptyMovieClip("one", 1); createEmptyMovieClip("two", 2); createEmptyMovieClip("three", 3);
createEmptyMovieClip("four", 4);
trace(one._framesloaded + " " + one._totalframes + " " + one._currentframe + " " + one.getBytesTotal());
l.loadClip("tiny.swf", "one"); l.loadClip("tiny.swf", "two"); l.loadClip("missing.swf", "three");
l.loadClip("http://example.com/refused.swf", "four");
two.mark = "set before"; two.onUnload = function() { trace("unload " + this.mark); };
two._x = 30;
var count = 0;
onEnterFrame = function() {
  trace("frame " + ++count);
  if (count == 3) {
    trace(three._framesloaded + " " + three._totalframes + " " + three.getBytesTotal() + " " + three.getSWFVersion());
    trace(two.mark + " " + two._x + " " + two.getSWFVersion() + " " + two._framesloaded);
    one.loadMovie("");
    two.unloadMovie();
    trace(two._totalframes + " " + two.getSWFVersion() + " " + one._totalframes);
  }
  if (count > 3) trace(one._totalframes + " " + one._framesloaded);
};
