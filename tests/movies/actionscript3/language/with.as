// movie: version="10" rate="20"
var o:Object = {x: 1, y: 2};
var y:int = 50, z:int = 60;
with (o) { x = 10; trace(x, y, z); z = 61; }
trace(o.x, z, o.z);
function inFunction(p:Object):int {
    var x:int = 5, w:int = 7;
    with (p) { x += w; w = 8; }
    return x * 100 + w;
}
trace(inFunction({x: 1}));
trace(inFunction({}));
with (Math) trace(max(1, 2), PI > 3);
with ({a: 1}) { with ({b: 2}) { trace(a + b); } }
function leave():int { for (var i:int = 0; i < 3; i++) with ({v: i}) { if (v == 1) return v * 10; if (v == 0) continue; } return -1; }
trace(leave());
var made:Function;
with ({secret: "kept"}) { made = function():String { return secret; }; }
trace(made());
