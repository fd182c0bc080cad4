// movie: version="10" width="100" height="100" rate="20" document="Main"
// The sounds of a movie of ActionScript 2 end with it, and no others.
package {
    import flash.display.*;
    import flash.events.*;
    import flash.net.URLRequest;
    public class Main extends Sprite
    {
        private var first:Loader = new Loader(), second:Loader = new Loader();
        private var frames:int = 0;
        public function Main()
        {
            first.load(new URLRequest("loud-guest.swf"));
            second.load(new URLRequest("quiet-guest.swf"));
            addEventListener(Event.ENTER_FRAME, onFrame);
        }
        private function onFrame(event:Event):void
        {
            ++frames;
            if (frames == 12) first.unload();
            if (frames == 24) second.unload();
            if (frames % 12 == 0) trace(first.content, second.content);
        }
    }
}
