// movie: version="8" rate="10"
// What a sound is for is looked up from the timeline of the script that asks.
this.createEmptyMovieClip("a", 0).createEmptyMovieClip("a", 0);
new Sound(a).setVolume(10);
new Sound(a.a).setVolume(20);
var s = new Sound("a");
trace(s.getVolume());
function inClip() { return s.getVolume(); }
tellTarget ("a") { trace(_root.s.getVolume()); }
a.s = s;
a.inClip = inClip;
trace(a.inClip());
a.a.removeMovieClip();
tellTarget ("a") { trace(_root.s.getVolume()); }
// What timers ask for waits for the next frame.
this.onEnterFrame = function () { trace("frame"); };
setTimeout(function () { fscommand("quit"); trace("asked"); }, 150);
