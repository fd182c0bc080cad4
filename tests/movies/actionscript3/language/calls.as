// movie: version="10" rate="20"
// Calls of verified code run in one loop, some levels deep: errors, returns and constructors find their level.
class Point {
    public var x:int; private var _name:String; private var _self:Point;
    public function Point(x:int = 7, name:String = null) { this.x = x; _name = name; _self = this; }
    public function get name():String { return _name; }
    public function get self():Point { return _self; }
    public function getX():int { return x; }
    public function grow(by:int):Point { x += by; return this; }
    public function fail(depth:int):int {
        if (depth == 0) throw new RangeError("at the bottom");
        return fail(depth - 1) + 1;
    }
    public function caughtAt(depth:int, level:int):String {
        if (depth == level) {
            try { return caughtAt(depth - 1, level); } catch (e:RangeError) { return "caught " + e.message + " at " + depth; }
        }
        if (depth == 0) throw new RangeError("low");
        return caughtAt(depth - 1, level) + "!";
    }
}
class Named extends Point {
    public function Named() { super(3, "named"); try { fail(2); } catch (e:Error) { x = 4; } }
    override public function getX():int { return -x; }
    override public function get name():String { return "<" + super.name + ">"; }
}
var p:Point = new Point();
trace(p.x, p.getX(), p.name, p.self == p, p.grow(2).grow(3).x);
var n:Point = new Named();
trace(n.x, n.getX(), n.name, n.self == n);
for each (var level:int in [3, 20, 40]) trace(p.caughtAt(50, level).substr(0, 24));
try { p.fail(30); } catch (e:RangeError) { trace(e.message); }
function sum(n:int):int { return n == 0 ? 0 : n + sum(n - 1); }
trace(sum(10), sum(100), sum(500));
function endless(n:int):int { return endless(n + 1) + 1; }
try { endless(0); } catch (e:Error) { trace(e.errorID); }
trace(sum(20));
var order:Array = [];
function last(text:String):String { order.push(text); return text; }
function through():String { try { return last("body"); } finally { last("finally"); } return ""; }
trace(through(), order);
function few(a:int, b:int):int { return a + b; }
try { (few as Function)(1); } catch (e:ArgumentError) { trace(e.errorID); }
try { (few as Function).apply(null, [1, 2, 3]); } catch (e:ArgumentError) { trace(e.errorID); }
var converting:Object = {valueOf: function():Object { return sum(30); }};
trace(few(converting as int, int(converting)), few(converting, 1));
var closures:Array = [];
for (var i:int = 0; i < 3; i++) closures.push((function(k:int):Function { return function():int { return sum(k) + k; }; })(i));
trace(closures[0](), closures[1](), closures[2]());
var text:String = "naïve", total:int = 0;
for (var at:int = 0; at < text.length; at++) total += text.charCodeAt(at);
trace(total, text.length);
try { (null as Point).getX(); } catch (e:TypeError) { trace(e.errorID); }
trace([3, 1, 2].sort(function(a:int, b:int):int { return few(a, -b); }));
try { [1, 2].forEach(function(v:int, ...rest):void { p.fail(v); }); } catch (e:RangeError) { trace("through a native:", e.message); }
var other:Object = {x: 5, getX: p.getX};
trace(other.getX());
