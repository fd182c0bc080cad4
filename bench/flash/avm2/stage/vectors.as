// movie: version="10" width="550" height="400" rate="30" background="#102030" document="Main"
package {
    import flash.display.*;
    import flash.events.Event;
    public class Main extends Sprite
    {
        private var movers:Vector.<Mover>;
        public function Main()
        {
            movers = new Vector.<Mover>();
            for (var i:int = 0; i < int(loaderInfo.parameters.n); ++i)
            {
                movers.push(new Mover(i));
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
    public function Mover(i:int)
    {
        x = (i * 97) % 534; y = (i * 61) % 384;
        dx = 1 + i % 7; dy = 1 + i % 5;
        graphics.beginFill(0x3080C0 + i % 64);
        graphics.drawCircle(0, 0, 10);
        graphics.endFill();
        graphics.beginFill(0xF0D040, 0.8);
        graphics.moveTo(-8, 0);
        graphics.curveTo(0, -12, 8, 0);
        graphics.curveTo(0, 12, -8, 0);
        graphics.endFill();
    }
    public function step():void
    {
        x += dx; y += dy; rotation += 3;
        if (x < 0 || x > 534) dx = -dx;
        if (y < 0 || y > 384) dy = -dy;
    }
}
