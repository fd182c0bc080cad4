// movie: version="10" rate="20"
class Counted {
    public static var order:Array = [];
    private var a:int = note("field a"), b:int = note("field b");
    public function Counted(n:int = 3, ...more) { note("body " + n + " " + more.length + " " + a + b); }
    private static function note(s:String):int { order.push(s); return order.length; }
}
new Counted();
new Counted(5, 6, 7);
trace(Counted.order.join(" | "));
class Returns { public function Returns() { if (true) return; trace("never"); } }
trace(new Returns() is Returns);
var cls:Class = Counted;
var made:Counted = new cls(1);
trace(made is cls, made["constructor"] === cls);
class Failing { public function Failing() { throw new Error("in constructor"); } }
try { new Failing(); } catch (e:Error) { trace(e.message); }
class Needs { public function Needs(a:int, b:int) {} }
try { var n:Class = Needs; new n(1); } catch (e:ArgumentError) { trace(e.errorID); }
try { var x:* = 5; new x(); } catch (e:TypeError) { trace(e.errorID); }
