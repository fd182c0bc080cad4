// movie: version="7" rate="10"
// Taken apart, a long text makes a list with more elements than there is memory for.
trace("begin");
var s = "a,";
for (var i = 0; i < 22; i++) s += s;
trace(s.length);
var all = [];
for (var i = 0; i < 50; i++) all.push(s.split(","));
trace("end");
