// movie: version="10" width="550" height="400" rate="30" background="#102030" document="Main"
package {
    import flash.display.*;
    import flash.events.Event;
    public class Main extends Sprite
    {
        private var count:int;
        public function Main()
        {
            count = int(loaderInfo.parameters.n);
            for (var i:int = 0; i < count; ++i) addChild(new Hearer());
            addEventListener(Event.ENTER_FRAME, onFrame);
        }
        private function onFrame(event:Event):void
        {
            for (var i:int = 0; i < count / 100; ++i)
            {
                Hearer(removeChildAt(0)).rest();
                addChild(new Hearer());
            }
        }
    }
}

import flash.display.*;
import flash.events.Event;
class Hearer extends Sprite
{
    public var heard:int = 0;
    public function Hearer() { addEventListener(Event.ENTER_FRAME, onFrame); }
    public function rest():void { removeEventListener(Event.ENTER_FRAME, onFrame); }
    private function onFrame(event:Event):void { ++heard; }
}
