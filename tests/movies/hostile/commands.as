// movie: version="7" rate="10"
// More commands than anybody could take, with texts that fill the memory; the movie goes on.
var s = "x";
while (s.length < 1000000) s += s;
for (var i = 0; i < 500; i++) fscommand("a", s);
for (var i = 0; i < 100000; i++) fscommand("b", "");
trace("said");
_root.onEnterFrame = function() { trace("frame"); };
