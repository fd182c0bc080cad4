// movie: version="10" rate="20"
import no.such.Thing;
import flash.display.Sprit;
var a:Missing;
const LIMIT:int = 5;
class A { public function f():void {} private var twice:int; private var twice:String; }
class B extends A { public function f():void {} override public function g():void {} }
interface I { function must():int; }
class C implements I { }
function late(a:int = 1 + x):void { const c:int = 1; c = 2; break; }
trace(new I());
