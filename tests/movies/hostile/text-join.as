// movie: version="7" rate="10"
// Joined, a list of long texts is longer than any text may be.
trace("begin");
var s = "abcdefgh";
for (var i = 0; i < 18; i++) s += s;
var a = [];
for (var i = 0; i < 100; i++) a.push(s);
trace(a.length);
trace(a.join(s).length);
