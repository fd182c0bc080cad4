// movie: version="8" width="60" height="40" rate="5"
var frames = 0;
var id;
trace("old: " + this + ", level " + (_level0 == _root) + ", stage " + Stage.width + "x" + Stage.height);
this.createEmptyMovieClip("box", 1);
box.beginFill(0xFF0000, 100);
box.moveTo(0, 0); box.lineTo(40, 0); box.lineTo(40, 30); box.lineTo(0, 30);
box.endFill();
box.onPress = function() { trace("old: pressed at " + _root._xmouse + ", " + _root._ymouse); };
this.onEnterFrame = function() { if (++frames % 4 == 0) trace("old: frame " + frames); };
id = setInterval(function() { trace("old: tick"); clearInterval(id); }, 120);
