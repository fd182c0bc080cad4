// movie: version="10" rate="20"
;;
if (false) trace("never"); else if (true) trace("else if"); else trace("never");
var a:int = 1, b:int = 2; { let(); }
function let():void { trace("a name like any other", a + b); }
if (a) { } else { trace("never"); }
var x:int = 3
var y:int = 4
trace(x
    + y)
a = b
++b
trace(a, b)
var get:String = "get", set:String = "set", each:int = 1, dynamic:int = 2, final:int = 3;
trace(get, set, each, dynamic, final);
var keyed:Object = {"if": 1, default: 2, class: 3};
trace(keyed["if"], keyed.default, keyed.class);
for (var i:int = 0, n:int = ("x" in {x: 1}) ? 2 : 0; i < n; i++) trace("in", i);
trace(((1)), (function():int { return 1; }()), !function():Boolean { return false; }());
var chain:* = {f: function():* { return {g: [function():String { return "deep"; }]}; }};
trace(chain.f().g[0]());
if (a) if (!b) trace("never"); else trace("inner else");
var t:Boolean = a < b && b > a || !a; trace(t ? t ? "both" : "one" : "none");
do trace("once"); while (false)
label: trace("labelled");
throwing: try { break throwing; } finally { trace("left"); }
