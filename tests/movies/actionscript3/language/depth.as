// movie: version="17" rate="20"
// Calls end somewhere, by whatever way they go deeper; that is an error like others, and calls go on after it.
import flash.events.*;
import flash.utils.*;
class Deep
{
    public function get more():Deep { return new Deep().more; }
    public function set less(value:Deep):void { new Deep().less = value; }
    public static function make(n:int):Deep { return make(n + 1); }
    public function toString():String { return "" + new Deep(); }
    public function valueOf():Object { return 1 + int(new Deep() as Object); }
}
class Chain
{
    public var next:Chain = new Chain();
}
class Sub extends Deep
{
    override public function get more():Deep { return super.more; }
}
class Echo extends Proxy
{
    override flash_proxy function getProperty(name:*):* { return new Echo()[name]; }
    override flash_proxy function callProperty(name:*, ...rest):* { return new Echo().anything(); }
}
function direct(n:int):int { return direct(n + 1) + 1; }
function mutualA(n:int):int { return mutualB(n + 1); }
function mutualB(n:int):int { return mutualA(n + 1); }
var ways:Array = [
    "a function", function():void { direct(0); },
    "two by turns", function():void { mutualA(0); },
    "a closure", function():void { arguments.callee(); },
    "apply", function():void { (arguments.callee as Function).apply(null, []); },
    "call", function():void { (arguments.callee as Function).call(null); },
    "a getter", function():void { new Deep().more; },
    "a getter above", function():void { new Sub().more; },
    "a setter", function():void { new Deep().less = null; },
    "a static", function():void { Deep.make(0); },
    "a constructor", function():void { new Chain(); },
    "toString", function():void { String(new Deep()); },
    "valueOf", function():void { int(new Deep() as Object); },
    "a list's function", function():void { var work:Function = function(...rest):void { [1].forEach(work); }; work(); },
    "a comparison", function():void { var work:Function = function(...rest):int { [1, 2].sort(work); return 0; }; work(); },
    "a replacement", function():void { var work:Function = function(...rest):String { return "a".replace(/a/, work); }; work(); },
    "an event", function():void {
        var source:EventDispatcher = new EventDispatcher(), depth:int = 0;
        source.addEventListener("e", function(e:Event):void { depth++; source.dispatchEvent(new Event("e")); });
        source.dispatchEvent(new Event("e"));
        if (depth > 20) throw new Error("listeners keep their errors to themselves", 1023);
    },
    "a proxy's member", function():void { new Echo().member; },
    "a proxy's function", function():void { new Echo().member(); },
    "a vector's function", function():void { var work:Function = function(...rest):Boolean { return new <int>[1].some(work); }; work(); },
    "JSON", function():void { var work:Function = function(...rest):* { return JSON.stringify({toJSON: work}); }; work(); },
    "an array in itself", function():void { var list:Array = []; list.push(list); String(list); },
    "finally", function():void { var work:Function = function():void { try { work(); } finally { direct(0); } }; work(); }
];
// One at a time: each has the time of a script.
var timer:uint = setInterval(function():void {
    if (ways.length == 0) {
        clearInterval(timer);
        return;
    }
    var name:String = ways.shift(), work:Function = ways.shift();
    try {
        work();
        trace(name, "came back");
    } catch (error:Error) {
        trace(name, error.errorID, [2, 1].sort(), direct.length);
    }
}, 10);
