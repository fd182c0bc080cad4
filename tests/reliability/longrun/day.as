// movie: version="10" width="320" height="240" rate="20" background="#203040" document="Main"
// A movie that lives on what comes and goes: children that hear of the stage, timers, movies that are loaded and let
// go, pictures, sounds, texts. Nothing of it may stay.
package {
    import flash.display.*;
    import flash.events.*;
    import flash.media.*;
    import flash.net.URLRequest;
    import flash.text.TextField;
    import flash.utils.*;
    public class Main extends Sprite
    {
        private var frames:int = 0;
        private var leaves:int = 0;
        private var loader:Loader = new Loader();
        private var guests:Array = [];
        public function Main()
        {
            addChild(loader);
            loader.contentLoaderInfo.addEventListener(Event.COMPLETE, onLeaf);
            addEventListener(Event.ENTER_FRAME, onFrame);
        }
        private function onFrame(event:Event):void
        {
            ++frames;
            guests.push(addChild(new Guest(frames)));
            if (guests.length > 20) removeChild(guests.shift());
            if (frames % 20 == 0) loader.load(new URLRequest("leaf.swf"));
            if (frames % 20 == 10) loader.unload();
            // One that nobody holds goes with what it has loaded.
            if (frames % 30 == 0) new Loader().load(new URLRequest("leaf.swf"));
            var timer:Timer = new Timer(100, 3);
            timer.addEventListener(TimerEvent.TIMER, onTick);
            timer.start();
            setTimeout(onTick, 50, null);
        }
        private function onTick(event:TimerEvent):void {}
        private function onLeaf(event:Event):void
        {
            if (loader.content["greet"]() != "leaf") throw new Error("This is no leaf");
            ++leaves;
        }
    }
}
import flash.display.*;
import flash.events.*;
import flash.text.TextField;
class Guest extends Sprite
{
    public function Guest(number:int)
    {
        x = number * 37 % 300; y = number * 53 % 220;
        graphics.beginFill(number * 4099 & 0xFFFFFF);
        graphics.drawCircle(0, 0, 5 + number % 10);
        addChild(new Bitmap(new BitmapData(16, 16, true, 0x8000FF00)));
        var label:TextField = new TextField();
        label.text = "Guest " + number;
        addChild(label);
        addEventListener(Event.ADDED_TO_STAGE, onStage);
    }
    private function onStage(event:Event):void
    {
        stage.addEventListener(MouseEvent.MOUSE_DOWN, onPress, false, 0, true);
        addEventListener(Event.ENTER_FRAME, onFrame);
    }
    private function onPress(event:MouseEvent):void { alpha = 0.5; }
    private function onFrame(event:Event):void { rotation += 5; }
}
