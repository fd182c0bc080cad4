// movie: version="10" width="550" height="400" rate="30" background="#102030" document="Main"
package {
    import flash.display.*;
    import flash.events.Event;
    public class Main extends Sprite
    {
        private var count:int;
        private var heard:int;
        private var inner:Sprite;
        public function Main()
        {
            count = int(loaderInfo.parameters.n);
            heard = 0;
            inner = new Sprite();
            addChild(inner);
            inner.addEventListener("ping", hear);
            for (var level:int = 1; level < 10; ++level)
            {
                var next:Sprite = new Sprite();
                inner.addChild(next);
                next.addEventListener("ping", hear);
                inner = next;
            }
            addEventListener(Event.ENTER_FRAME, onFrame);
        }
        private function hear(event:Event):void { ++heard; }
        private function onFrame(event:Event):void
        {
            heard = 0;
            for (var i:int = 0; i < count; ++i) inner.dispatchEvent(new Event("ping", true));
            if (heard != count * 10) throw new Error("Heard " + heard);
        }
    }
}
