// movie: version="10" rate="20"
import flash.utils.*;
import flash.events.TimerEvent;
var t:Timer = new Timer(20, 3);
t.addEventListener(TimerEvent.TIMER, function(e:TimerEvent):void { trace("tick", t.currentCount, t.running); });
t.addEventListener(TimerEvent.TIMER_COMPLETE, function(e:TimerEvent):void { trace("done", t.running); });
t.start();
trace(t.delay, t.repeatCount, t.currentCount, t.running);
var id:uint = setInterval(function(word:String):void { trace(word); clearInterval(id); }, 30, "interval");
setTimeout(function():void { trace("timeout"); }, 200);
var never:uint = setTimeout(function():void { trace("never"); }, 100);
clearTimeout(never);
