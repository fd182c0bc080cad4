// movie: version="7" rate="10"
// What calls itself through conversions ends the scripts, not the player.
trace("begin");
var a = [];
a[0] = a;
trace(a.toString());
trace("end");
