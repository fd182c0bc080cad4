package bricks
{
    import flash.display.Sprite;
    import flash.events.Event;
    import flash.events.KeyboardEvent;
    import flash.events.MouseEvent;
    import flash.ui.Keyboard;
    import flash.utils.getTimer;

    /** Screens and input; the game itself is in Field. */
    public class Main extends Sprite
    {
        private static const STEP:Number = 1 / 120; // seconds; the ball never passes through a brick

        private var field:Field = new Field();
        private var scene:Scene;
        private var panel:Panel = new Panel();
        private var isPlaying:Boolean = false;
        private var isPaused:Boolean = false;
        private var best:int = 0;
        private var leftDown:Boolean = false, rightDown:Boolean = false;
        private var last:int = 0;
        private var rest:Number = 0;

        public function Main()
        {
            scene = new Scene(field);
            addChild(scene);
            addChild(panel);
            panel.showTitle();
            stage.addEventListener(KeyboardEvent.KEY_DOWN, onKeyDown);
            stage.addEventListener(KeyboardEvent.KEY_UP, onKeyUp);
            stage.addEventListener(MouseEvent.MOUSE_MOVE, onMouseMove);
            stage.addEventListener(MouseEvent.MOUSE_DOWN, onPress);
            addEventListener(Event.ENTER_FRAME, onFrame);
            last = getTimer();
            show(0); // the first picture comes before the first ENTER_FRAME
        }

        private function start():void
        {
            field.begin();
            scene.rebuild();
            panel.hide();
            isPlaying = true;
            isPaused = false;
        }

        private function act():void
        {
            if (!isPlaying)
                start();
            else if (isPaused)
                pause();
            else
                field.launch();
        }

        private function pause():void
        {
            if (!isPlaying) return;
            isPaused = !isPaused;
            if (isPaused)
                panel.showPause();
            else
                panel.hide();
        }

        private function onFrame(event:Event):void
        {
            var now:int = getTimer();
            var passed:Number = Math.min((now - last) / 1000, 0.1);
            last = now;
            if (isPlaying && !isPaused) play(passed);
            show(passed);
        }

        private function show(passed:Number):void
        {
            scene.animate(passed);
            scene.showNumbers(field.score, best, field.lives, field.level);
        }

        private function play(passed:Number):void
        {
            rest += passed;
            for (; rest >= STEP && field.lives > 0; rest -= STEP)
            {
                field.steer((rightDown ? 1 : 0) - (leftDown ? 1 : 0), STEP);
                field.advance(STEP);
            }
            scene.show(field.takeEvents());
            if (field.lives > 0) return;
            isPlaying = false;
            var isBest:Boolean = field.score > best;
            best = Math.max(best, field.score);
            panel.showResult(field.score, isBest);
        }

        private function onKeyDown(event:KeyboardEvent):void
        {
            switch (event.keyCode)
            {
                case Keyboard.LEFT: leftDown = true; break;
                case Keyboard.RIGHT: rightDown = true; break;
                case Keyboard.SPACE:
                case Keyboard.ENTER: act(); break;
                case 80: pause(); break; // P
            }
        }

        private function onKeyUp(event:KeyboardEvent):void
        {
            if (event.keyCode == Keyboard.LEFT) leftDown = false;
            if (event.keyCode == Keyboard.RIGHT) rightDown = false;
        }

        private function onMouseMove(event:MouseEvent):void
        {
            if (isPlaying && !isPaused) field.moveTo(event.stageX);
        }

        private function onPress(event:MouseEvent):void
        {
            act();
        }
    }
}
