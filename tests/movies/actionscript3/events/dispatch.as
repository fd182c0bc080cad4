// movie: version="10" rate="20"
import flash.events.*;
var d:EventDispatcher = new EventDispatcher();
var log:Array = [];
function first(e:Event):void { log.push("first " + e.type + " " + e.eventPhase); }
function second(e:Event):void { log.push("second"); }
d.addEventListener("go", second);
d.addEventListener("go", first, false, 5);
d.addEventListener("go", first, false, 5);
trace(d.hasEventListener("go"), d.willTrigger("stop"), d.dispatchEvent(new Event("go")), log);
log = []; d.removeEventListener("go", first); d.dispatchEvent(new Event("go")); trace(log);
d.addEventListener("veto", function(e:Event):void { e.preventDefault(); });
trace(d.dispatchEvent(new Event("veto", false, true)), d.dispatchEvent(new Event("veto")));
d.addEventListener("halt", function(e:Event):void { log.push("h1"); e.stopImmediatePropagation(); });
d.addEventListener("halt", function(e:Event):void { log.push("h2"); });
log = []; d.dispatchEvent(new Event("halt")); trace(log);
class Scored extends Event { public var score:int; public function Scored(n:int) { super("scored"); score = n; } override public function clone():Event { return new Scored(score); } }
d.addEventListener("scored", function(e:Scored):void { trace("score", e.score, e.target == d, e.currentTarget == d); });
d.dispatchEvent(new Scored(7));
trace(new Event("t", true, false), new Event("t").clone().type, Event.ENTER_FRAME, MouseEvent.CLICK, KeyboardEvent.KEY_DOWN);
