// movie: version="6" rate="10"
import shapes.Square;
interface Named { function name():String; }
class Base implements Named {
  private var n:Number = 5;
  public static var made:Number = 0;
  static var list:Array = ["x", "y"];
  var late;
  function Base(start:Number) { made++; if (start != undefined) n = start; late = n * 2; }
  function name():String { return "base" + n; }
  public function get doubled():Number { return n * 2; }
  public function set doubled(v:Number):Void { n = v / 2; }
  function set writeOnly(v) { late = "written " + v; }
  static function create(k:Number):Base { return new Base(k); }
  static function get count() { return made; }
  function bump() { n++; return this; }
  function closure() { var me = this; return function() { return me.name(); }; }
  private function hidden() { return n; }
  function callsHidden() { return hidden() + this.hidden(); }
  function shadows(n) { return n; }
  function removes() { delete late; return late; }
}
class Derived extends Base {
  var extra:String = "extra";
  function Derived(start) { super(start); extra += "!"; }
  function name():String { return "derived of " + super.name(); }
  function inherited() { return name() + " " + n + " " + made; }
}
class Plain extends Base { function Plain() {} }
var b = new Base();
trace(b.name() + " " + b.doubled + " " + b.late);
b.doubled = 40; trace(b.name());
b.writeOnly = 1; trace(b.late + " " + b.writeOnly);
trace(b.bump().bump().name() + " " + b.closure()());
trace(b.callsHidden() + " " + b.shadows("param") + " " + b.removes());
var d = new Derived(7);
trace(d.name() + "; " + d.extra + "; " + d.inherited());
trace(Base.create(3).name() + " " + Base.made + " " + Base.list + " " + Base.count);
// A constructor that does not call super itself does so first.
trace(new Plain().doubled + " " + Base.made);
// Members of classes stay out of for..in; what the constructor set does not.
var seen = "";
for (var k in new Base(1)) seen += k + " ";
trace(seen);
var s = new Square(4);
trace(s.area() + " " + s + " " + shapes.Square.unit);
