// movie: version="10" width="40" height="40" rate="20" document="Leaf"
package {
    import flash.display.*;
    import flash.events.Event;
    public class Leaf extends MovieClip
    {
        private var weight:BitmapData = new BitmapData(64, 64, false, 0x00FF00);
        public function Leaf()
        {
            addChild(new Bitmap(weight));
            addEventListener(Event.ENTER_FRAME, function(e:Event):void { rotation += 3; });
        }
        public function greet():String { return "leaf"; }
    }
}
