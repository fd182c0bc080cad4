// movie: version="10" width="550" height="400" rate="30" background="#102030" document="Main"
package {
    import flash.display.*;
    import flash.events.Event;
    import flash.geom.*;
    public class Main extends Sprite
    {
        private var picture:BitmapData;
        private var field:BitmapData;
        private var source:Rectangle;
        private var movers:Vector.<Mover>;
        public function Main()
        {
            picture = new BitmapData(16, 16, true, 0xFFE0A030);
            picture.fillRect(new Rectangle(4, 4, 8, 8), 0x80FF0000);
            field = new BitmapData(550, 400, false, 0x102030);
            source = picture.rect;
            addChild(new Bitmap(field));
            movers = new Vector.<Mover>();
            for (var i:int = 0; i < int(loaderInfo.parameters.n); ++i) movers.push(new Mover(i));
            addEventListener(Event.ENTER_FRAME, onFrame);
        }
        private function onFrame(event:Event):void
        {
            field.lock();
            field.fillRect(field.rect, 0x102030);
            for each (var mover:Mover in movers)
            {
                mover.at.x += mover.dx; mover.at.y += mover.dy;
                if (mover.at.x < 0 || mover.at.x > 534) mover.dx = -mover.dx;
                if (mover.at.y < 0 || mover.at.y > 384) mover.dy = -mover.dy;
                field.copyPixels(picture, source, mover.at, null, null, true);
            }
            field.unlock();
        }
    }
}

import flash.display.*;
import flash.events.Event;
import flash.geom.*;
class Mover
{
    public var at:Point, dx:Number, dy:Number;
    public function Mover(i:int)
    {
        at = new Point((i * 97) % 534, (i * 61) % 384);
        dx = 1 + i % 7; dy = 1 + i % 5;
    }
}
