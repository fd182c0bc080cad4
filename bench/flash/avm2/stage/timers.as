// movie: version="10" width="550" height="400" rate="30" background="#102030" document="Main"
package {
    import flash.events.TimerEvent;
    import flash.utils.Timer;
    import flash.display.Sprite;
    public class Main extends Sprite
    {
        private var ticks:int;
        private var timers:Array;
        public function Main()
        {
            ticks = 0;
            timers = [];
            for (var i:int = 0; i < int(loaderInfo.parameters.n); ++i)
            {
                var timer:Timer = new Timer(1000 / 30);
                timer.addEventListener(TimerEvent.TIMER, onTick);
                timer.start();
                timers.push(timer);
            }
        }
        private function onTick(event:TimerEvent):void { ++ticks; }
    }
}
