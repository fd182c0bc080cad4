// movie: version="7" rate="10"
// Objects without end.
trace("begin");
var a = [];
while (true) a.push({x: [1, 2, 3], y: "some text " + a.length});
