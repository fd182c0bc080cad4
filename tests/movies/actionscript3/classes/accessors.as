// movie: version="10" rate="20"
class Base { 
    protected var v:int = 1;
    public function get value():int { trace("get"); return v; }
    public function set value(n:int):void { trace("set", n); v = n; }
    public function get only():String { return "read only"; }
    public function set write(n:int):void { v = n; }
}
class Derived extends Base {
    override public function set value(n:int):void { super.value = n * 2; }
}
var d:Derived = new Derived();
d.value = 5;
trace(d.value);
d.value += 1;
trace(d.value++);
try { d["only"] = "x"; } catch (e:ReferenceError) { trace(e.errorID); }
try { trace(d["write"]); } catch (e:ReferenceError) { trace(e.errorID); }
d.write = 3; trace(d.value);
