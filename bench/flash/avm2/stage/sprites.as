// movie: version="10" width="550" height="400" rate="30" background="#102030" document="Main"
package {
    import flash.display.*;
    import flash.events.Event;
    public class Main extends Sprite
    {
        private var picture:BitmapData;
        private var movers:Vector.<Mover>;
        public function Main()
        {
            picture = new BitmapData(16, 16, true, 0xFFE0A030);
            picture.fillRect(new flash.geom.Rectangle(4, 4, 8, 8), 0x80FF0000);
            movers = new Vector.<Mover>();
            for (var i:int = 0; i < int(loaderInfo.parameters.n); ++i)
            {
                movers.push(new Mover(picture, i));
                addChild(movers[i]);
            }
            addEventListener(Event.ENTER_FRAME, onFrame);
        }
        private function onFrame(event:Event):void
        {
            for each (var mover:Mover in movers) mover.step();
        }
    }
}

import flash.display.*;
import flash.events.Event;
class Mover extends Sprite
{
    public var dx:Number, dy:Number;
    public function Mover(picture:BitmapData, i:int)
    {
        addChild(new Bitmap(picture));
        x = (i * 97) % 534; y = (i * 61) % 384;
        dx = 1 + i % 7; dy = 1 + i % 5;
    }
    public function step():void
    {
        x += dx; y += dy;
        if (x < 0 || x > 534) dx = -dx;
        if (y < 0 || y > 384) dy = -dy;
    }
}
