// movie: version="10" rate="20" document="Main"
// Errors that nobody catches come to who wants to know of them.
package {
    import flash.display.*;
    import flash.events.*;
    import flash.utils.setTimeout;
    public class Main extends Sprite
    {
        private var frames:int = 0;
        public function Main()
        {
            loaderInfo.uncaughtErrorEvents.addEventListener(UncaughtErrorEvent.UNCAUGHT_ERROR, onError);
            addEventListener(Event.ENTER_FRAME, onFrame);
            setTimeout(function():void { throw new ArgumentError("late", 7); }, 120);
            trace(loaderInfo.uncaughtErrorEvents is UncaughtErrorEvents, new UncaughtErrorEvent());
        }
        private function onError(event:UncaughtErrorEvent):void
        {
            trace(event.type, event.bubbles, event.cancelable, event.error, event.target is UncaughtErrorEvents);
            event.preventDefault();
            if (event.error is int) throw new Error("of the listener, told to nobody");
        }
        private function onFrame(event:Event):void
        {
            if (++frames == 1) { var none:Object = null; none.call(); }
            if (frames == 2) throw 5;
            if (frames == 4) trace("still running");
        }
    }
}
