// movie: version="10" rate="20"
function all():String { return arguments.length + ":" + [].concat(arguments).join("|"); }
trace(all.call(null, 1, 2));
function rest(a:int, ...others):String { return a + "/" + others.length + "/" + others; }
trace(rest(1), rest(1, 2, "three"));
function defaults(a:int, b:String = "b", c:Number = NaN, d:Object = null, e:Boolean = true, f:int = -3, g:uint = uint.MAX_VALUE, h:* = undefined):String {
    return [a, b, c, d, e, f, g, h].join(" ");
}
trace(defaults(1));
trace(defaults(1, "x", 2, "o", false, 4, 5, 6));
function typed(i:int, u:uint, s:String, b:Boolean, n:Number):String { return i + " " + u + " " + s + " " + b + " " + n; }
trace(typed(1.9, 2.9, "s", true, 1.5));
var loose:Function = typed;
trace(loose("7", "8", 9, 0, "1.5"));
try { loose(1); } catch (e:ArgumentError) { trace(e.errorID); }
try { loose(1, 2, 3, 4, 5, 6); } catch (e:ArgumentError) { trace(e.errorID); }
var free:Function = function(a:*, b:*):* { return b; };
trace(free.length, rest.length, defaults.length);
function viaCallee(n:int):int { return n == 0 ? 0 : n + arguments.callee(n - 1); }
trace(viaCallee(4));
