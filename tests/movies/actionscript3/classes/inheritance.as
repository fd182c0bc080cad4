// movie: version="10" rate="20"
class A {
    protected var tag:String = "a";
    public function A(t:String = "default") { tag = t; start(); }
    protected function start():void { trace("A.start", tag); }
    public function who():String { return "A:" + tag; }
    public function get size():int { return 1; }
    public static var shared:String = "A's";
    public static function make():String { return "made by A"; }
}
class B extends A {
    private var own:int = 5;
    public function B() { super("from B"); trace("B", own); }
    override protected function start():void { super.start(); trace("B.start", own, tag); }
    override public function who():String { return "B<" + super.who() + ">"; }
    override public function get size():int { return super.size + 10; }
    public function both():String { return shared + " " + make(); }
}
class C extends B { }
class D extends C { public function D() { trace("D before"); super(); trace("D after"); } override public function who():String { return "D" + super.who(); } }
var d:A = new D();
trace(d.who(), d.size, d is B, d is C);
trace(B(d).both());
var bound:Function = d.who;
trace(bound(), bound.call(null), bound == d.who);
trace(C.prototype.constructor == C, d["constructor"] == D);
trace(new A().who());
