// movie: version="7" rate="10"
// A text that doubles is stopped, and the scripts with it.
trace("begin");
var s = "abcdefgh";
for (var i = 0; i < 40; i++) { s = s.concat(s); s.charAt(1); }
trace("end");
