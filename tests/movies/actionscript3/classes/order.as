// movie: version="10" rate="20"
// What is set up when: static members at the class, values of members before the constructor's first word, the
// base's between; and what is asked of whom when both sides have it.
var log:Array = [];
function said(text:String):String
{
    if (log == null) trace("early", text); // classes come before the first statement
    else log.push(text);
    return text;
}
function shown(name:String):void
{
    trace(name, log.join(" "));
    log = [];
}
class Base
{
    public static var first:String = said("Base.first");
    protected var one:String = said("one");
    public var two:String = said("two:" + one);
    public function Base()
    {
        said("Base()");
        hook();
    }
    protected function hook():void { said("Base.hook"); }
    public function get label():String { return "base"; }
    public function describe():String { return label + "/" + one; }
    private function hidden():String { return "Base.hidden"; }
    public function callHidden():String { return hidden(); }
}
class Derived extends Base
{
    public static const second:String = said("Derived.second");
    private var three:String = said("three");
    public var four:int = 4;
    public function Derived()
    {
        said("before");
        super();
        said("after:" + three + four);
    }
    override protected function hook():void
    {
        said("Derived.hook:" + three + ":" + four);
        super.hook();
    }
    override public function get label():String { return "derived of " + super.label; }
    private function hidden():String { return "Derived.hidden"; }
    public function callBoth():String { return hidden() + "+" + callHidden(); }
}
log = [];
var made:Derived = new Derived();
shown("made:");
trace(made.describe(), made.callBoth());
trace((made as Base).label, Base(made).callHidden());
new Base();
shown("base:");

// Accessors of which the derived class has only one half.
class Half
{
    protected var kept:int = 1;
    public function get value():int { return kept; }
    public function set value(v:int):void { kept = v; }
}
class Other extends Half
{
    override public function set value(v:int):void { super.value = v * 2; }
}
var half:Half = new Other();
half.value = 5;
half.value += 1;
half.value++;
trace("accessors", half.value);

// Statics belong to their class alone, and are found unqualified in the classes below.
class Counter
{
    public static var count:int = 0;
    protected static function next():int { return ++count; }
    public static function reset():void { count = 0; }
}
class Sub extends Counter
{
    public var id:int = next();
    public static function total():String { return count + "/" + Counter.count; }
}
new Sub();
new Sub();
trace("statics", Sub.total(), (Sub as Object).hasOwnProperty("count"));
Counter.reset();
trace(new Sub().id);

// Functions of a class keep their object wherever they go, those made on the way do not.
class Owner
{
    public var name:String;
    public function Owner(name:String) { this.name = name; }
    public function method():String { return this.name; }
    public function closure():Function
    {
        var self:Owner = this;
        return function():String { return self.name + "," + (this == self); };
    }
    public var field:Function = function():String { return this is Owner ? this.name : "nobody"; };
}
var a:Owner = new Owner("a"), b:Owner = new Owner("b");
var taken:Function = a.method;
trace("methods", taken(), taken.call(b), taken.apply(b, []), a.closure()(), a.field.call(b), a.method === a.method);
b.field = a.method;
trace(b.field(), a.field(), a.field.call(null));

// Interfaces: several, and one through another.
interface Named { function get name():String; }
interface Numbered extends Named { function number(of:int = 3):int; }
interface Both extends Numbered { }
class Thing implements Both
{
    public function get name():String { return "thing"; }
    public function number(of:int = 3):int { return of * 2; }
}
var both:Both = new Thing();
trace("interfaces", both.name, both.number(), Numbered(both).number(5), both is Named, both is Numbered, {} is Named);
try {
    Named({});
} catch (error:TypeError) {
    trace(error.errorID);
}
trace(({} as Named) == null, (both as Named).name);

// Constants and final things keep to themselves.
class Fixed
{
    public const list:Array = [1];
    public const number:int;
    public const other:String;
    public function Fixed()
    {
        number = 7;
        this.other = "eight";
    }
}
var fixed:Fixed = new Fixed();
fixed.list.push(2);
trace("constants", fixed.list, fixed.number, fixed.other);
for each (var name:String in ["list", "number"]) {
    try {
        fixed[name] = null;
    } catch (error:ReferenceError) {
        trace(name, error.errorID);
    }
}
try {
    made["nowhere"] = 1;
} catch (error:ReferenceError) {
    trace("sealed", error.errorID);
}
try {
    trace(made["one"]);
} catch (error:ReferenceError) {
    trace("protected", error.errorID);
}
try {
    made["describe"] = null;
} catch (error:ReferenceError) {
    trace("method", error.errorID);
}
try {
    made["label"] = "x";
} catch (error:ReferenceError) {
    trace("read only", error.errorID);
}
try {
    delete made["four"];
    trace("deleted", made.four);
} catch (error:ReferenceError) {
    trace("delete", error.errorID);
}
try {
    new (Object(both))();
} catch (error:TypeError) {
    trace("no class", error.errorID);
}
try {
    (made as Object).describe(1);
} catch (error:ArgumentError) {
    trace("arguments", error.errorID);
}
