// movie: version="10" rate="20"
interface Shape2 { function area():Number; function get name():String; }
interface Scalable extends Shape2 { function scale(by:Number):void; }
class Square implements Scalable {
    private var side:Number;
    public function Square(side:Number) { this.side = side; }
    public function area():Number { return side * side; }
    public function get name():String { return "square"; }
    public function scale(by:Number):void { side *= by; }
}
class Circle2 implements Shape2 {
    public function area():Number { return 3; }
    public function get name():String { return "circle"; }
}
var shapes:Vector.<Shape2> = new <Shape2>[new Square(2), new Circle2()];
for each (var s:Shape2 in shapes) {
    var grows:Scalable = s as Scalable;
    if (grows) grows.scale(2);
    trace(s.name, s.area(), s is Scalable, s is Shape2);
}
function total(list:Vector.<Shape2>):Number { var sum:Number = 0; for (var i:int = 0; i < list.length; i++) sum += list[i].area(); return sum; }
trace(total(shapes));
try { var bad:Shape2 = Shape2(new Object()); trace("never", bad); } catch (e:TypeError) { trace(e.errorID); }
trace(Square(shapes[0]).name);
