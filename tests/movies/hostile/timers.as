// movie: version="7" rate="10"
// Timers that start timers.
var n = 0;
function more() { n++; for (var i = 0; i < 3; i++) setTimeout(more, 1); }
for (var i = 0; i < 20000; i++) setInterval(function() { n++; }, 1000);
more();
trace("set");
var frames = 0;
_root.onEnterFrame = function() { if (++frames == 3) trace("still playing"); };
