// movie: version="10" rate="20"
function depth(n:int):int { return n == 0 ? 0 : 1 + depth(n - 1); }
trace(depth(200));
function forever(n:int):int { return forever(n + 1) + 1; }
try { forever(0); trace("never"); } catch (e:Error) { trace(e.errorID); }
var nested:Array = [[[[[[[[[[1]]]]]]]]]];
trace(nested[0][0][0][0][0][0][0][0][0][0]);
var s:String = "";
s += "a" + "b" + "c" + "d" + "e" + "f" + "g" + "h" + "i" + "j" + "k" + "l" + "m";
trace(s);
