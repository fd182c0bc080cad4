// movie: version="5" rate="10"
// The same by the operators of texts.
trace("begin");
var s = "abcdefgh";
for (var i = 0; i < 60; i++) s = s add s;
trace(length(s));
