// movie: version="10" rate="20"
class Point3 {
    public var x:Number, y:Number = 2;
    protected var z:Number = x + 5;
    private var log:Array = ["made"];
    internal const kind:String = "point";
    public static const ORIGIN:Point3 = new Point3(0);
    private static var made:int = 0;
    public function Point3(x:Number) { this.x = x; made++; log.push(x); }
    public function toString():String { return "(" + x + "," + y + "," + z + ")" + log; }
    public static function count():int { return made; }
    public function get sum():Number { return x + y; }
    public function set sum(value:Number):void { x = value - y; }
}
var p:Point3 = new Point3(7);
trace(p, Point3.count(), Point3.ORIGIN.x, p.kind);
p.sum = 10; p.sum += 5; p.sum++;
trace(p.x, p.sum, p["x"], p["sum"]);
try { p["fresh"] = 1; } catch (e:ReferenceError) { trace(e.errorID); }
try { trace(p["fresh"]); } catch (e:ReferenceError) { trace(e.errorID); }
try { p["kind"] = "x"; } catch (e:ReferenceError) { trace(e.errorID); }
try { p["toString"] = null; } catch (e:ReferenceError) { trace(e.errorID); }
trace("x" in p, "fresh" in p, p.hasOwnProperty("sum"), p is Point3, Point3);
trace(new Point3(1) == new Point3(1));
