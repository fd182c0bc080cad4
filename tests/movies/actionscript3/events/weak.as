// movie: version="10" rate="20" document="Main"
// A weak listener goes with the function it is, or with the object whose method it is.
package {
    import flash.display.*; import flash.events.*; import flash.utils.*;
    public class Main extends Sprite
    {
        private var source:EventDispatcher = new EventDispatcher();
        private var frames:int = 0;
        private var kept:Hearer = new Hearer("kept");
        private var gone:Dictionary = new Dictionary(true);
        private var heard:Function;
        public function Main()
        {
            heard = function(e:Event):void { trace("function kept"); };
            listen();
            addEventListener(Event.ENTER_FRAME, onFrame);
        }
        private function listen():void
        {
            source.addEventListener("ping", kept.hear, false, 0, true);
            source.addEventListener("ping", heard, false, 0, true);
            for (var i:int = 0; i < 50; ++i)
            {
                source.addEventListener("ping", new Hearer("gone").hear, false, 0, true);
                source.addEventListener("ping", function(e:Event):void { trace("function gone"); }, false, 0, true);
                addEventListener(Event.EXIT_FRAME, new Hearer("frame").hearFrame, false, 0, true);
            }
        }
        private function onFrame(e:Event):void
        {
            if (frames == 2) Hearer.inFrame = 0;
            // Enough garbage for a collection.
            for (var i:int = 0; i < 20; ++i) new ByteArray().length = 1000000;
            if (++frames < 4) return;
            trace("heard of frames in the end:", Hearer.inFrame);
            trace("ping");
            source.dispatchEvent(new Event("ping"));
            removeEventListener(Event.ENTER_FRAME, onFrame);
            source.removeEventListener("ping", kept.hear);
            source.removeEventListener("ping", heard);
            trace("ping", source.hasEventListener("ping"));
        }
    }
}
import flash.events.Event;
class Hearer
{
    private var name:String;
    public function Hearer(name:String) { this.name = name; }
    public static var inFrame:int = 0;
    public function hear(e:Event):void { trace(name); }
    public function hearFrame(e:Event):void { ++inFrame; }
}
