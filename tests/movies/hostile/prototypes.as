// movie: version="7" rate="10"
// A chain of prototypes without end.
var o = {};
for (var i = 0; i < 100000; i++) { var n = {}; n.__proto__ = o; o = n; }
trace("made");
trace(o.missing);
trace("end");
