// movie: version="10" rate="20"
import flash.display.*;
import flash.events.*;
var a:Sprite = new Sprite(), b:Sprite = new Sprite(), c:Sprite = new Sprite();
a.name = "a"; b.name = "b"; c.name = "c"; a.addChild(b); b.addChild(c);
var log:Array = [];
function note(e:Event):void { log.push(e.currentTarget.name + e.eventPhase + e.target.name); }
for each (var s:Sprite in [a, b, c]) { s.addEventListener("up", note); s.addEventListener("up", note, true); }
c.dispatchEvent(new Event("up", true)); trace(log);
log = []; c.dispatchEvent(new Event("up")); trace(log);
b.addEventListener("up", function(e:Event):void { e.stopPropagation(); }, true, 1);
log = []; c.dispatchEvent(new Event("up", true)); trace(log);
log = []; b.dispatchEvent(new Event("up", true)); trace(log);
