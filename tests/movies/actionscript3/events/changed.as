// movie: version="10" rate="20"
// Listeners that come and go while an event is on its way: who was there when it reached an object is called,
// who came later waits for the next one.
import flash.display.*;
import flash.events.*;
var log:Array = [];
function shown(name:String):void
{
    trace(name, log.join(" "));
    log = [];
}
var source:EventDispatcher = new EventDispatcher();
function late(e:Event):void { log.push("late"); }
function second(e:Event):void { log.push("second"); }
function remover(e:Event):void
{
    log.push("remover");
    source.removeEventListener("a", second);
}
source.addEventListener("a", remover);
source.addEventListener("a", second);
source.dispatchEvent(new Event("a"));
shown("removed by the one before:");
source.dispatchEvent(new Event("a"));
shown("and then:");
source.removeEventListener("a", remover);

function adder(e:Event):void
{
    log.push("adder");
    source.addEventListener("a", late, false, 10);
}
source.addEventListener("a", adder);
source.dispatchEvent(new Event("a"));
shown("added meanwhile:");
source.dispatchEvent(new Event("a"));
shown("and then, by its priority:");
source.removeEventListener("a", adder);
source.removeEventListener("a", late);
trace("none left", source.hasEventListener("a"));

// One that goes at its first call goes for good.
function once(e:Event):void
{
    log.push("once");
    source.removeEventListener("a", once);
    source.dispatchEvent(new Event("a"));
}
source.addEventListener("a", once);
source.dispatchEvent(new Event("a"));
shown("itself:");

// An event sent on is a copy: the first keeps its target.
var onward:EventDispatcher = new EventDispatcher();
function relay(e:Event):void
{
    log.push("relayed", e.target == source);
    onward.dispatchEvent(e);
    log.push("still", e.target == source, e.currentTarget == source);
}
source.addEventListener("a", relay);
onward.addEventListener("a", function(e:Event):void { log.push("onward", e.target == onward); });
source.dispatchEvent(new Event("a"));
shown("sent on:");
source.removeEventListener("a", relay);

// An event may be sent from within itself.
var depth:int = 0;
function deeper(e:Event):void
{
    if (++depth < 20) source.dispatchEvent(new Event("deep"));
    log.push(depth--);
}
source.addEventListener("deep", deeper);
source.dispatchEvent(new Event("deep"));
trace("within itself:", log.length, log[0], log[19]);
log = [];

// The way through the display list is settled before the first listener is called.
var top:Sprite = new Sprite(), middle:Sprite = new Sprite(), leaf:Sprite = new Sprite();
top.addChild(middle);
middle.addChild(leaf);
function note(e:Event):void { log.push(e.eventPhase + (e.currentTarget == top ? "t" : e.currentTarget == middle ? "m" : "l")); }
for each (var each:Sprite in [top, middle, leaf]) {
    each.addEventListener("b", note, true);
    each.addEventListener("b", note);
}
leaf.addEventListener("b", function(e:Event):void { middle.removeChild(leaf); }, false, 1);
leaf.dispatchEvent(new Event("b", true));
shown("taken off on the way:");
leaf.dispatchEvent(new Event("b", true));
shown("off:");
middle.addChild(leaf);
middle.addEventListener("b", function(e:Event):void { if (e.eventPhase == EventPhase.CAPTURING_PHASE) e.stopPropagation(); }, true, -1);
leaf.dispatchEvent(new Event("b", true));
shown("stopped while it was going down:");
leaf.dispatchEvent(new Event("b", false));
shown("what does not bubble:");

// Order is by priority, then by age; one again at another priority stays where it was.
var ordered:EventDispatcher = new EventDispatcher();
function named(name:String):Function { return function(e:Event):void { log.push(name); }; }
var again:Function = named("again");
ordered.addEventListener("c", again, false, -1);
ordered.addEventListener("c", named("x"), false, 0);
ordered.addEventListener("c", named("y"), false, 5);
ordered.addEventListener("c", named("z"), false, 0);
ordered.addEventListener("c", again, false, 9);
ordered.dispatchEvent(new Event("c"));
shown("order:");
ordered.removeEventListener("c", again, true);
trace("another phase, another listener:", ordered.hasEventListener("c"));
ordered.addEventListener("c", again, true);
ordered.removeEventListener("c", again);
ordered.dispatchEvent(new Event("c"));
shown("without it:");

function attempt(name:String, work:Function):void
{
    try {
        trace(name, work());
    } catch (error:Error) {
        trace(name, error.name, error.errorID);
    }
}
attempt("no listener", function():void { source.addEventListener("d", null); });
attempt("no event", function():void { source.dispatchEvent(null); });
attempt("removing what is not there", function():String { source.removeEventListener("never", late); return "is nothing"; });
attempt("a target of another", function():String {
    var front:EventDispatcher = new EventDispatcher(top);
    var seen:Object = null;
    front.addEventListener("e", function(e:Event):void { seen = e.target; });
    front.dispatchEvent(new Event("e"));
    return String(seen == top);
});
class Prevented extends Event
{
    public var copies:int;
    public function Prevented(copies:int) { super("f", true, true); this.copies = copies; }
    override public function clone():Event { return new Prevented(copies + 1); }
    override public function toString():String { return formatToString("Prevented", "type", "copies"); }
}
attempt("a clone that is none", function():String {
    var kept:Event = new Prevented(0);
    var seen:String = null;
    source.addEventListener("f", function(e:Prevented):void {
        seen = String(e);
        if (e.copies > 0) e.preventDefault();
    });
    source.dispatchEvent(kept);
    var went:Boolean = source.dispatchEvent(kept);
    return seen + " " + went + " " + kept.isDefaultPrevented();
});
