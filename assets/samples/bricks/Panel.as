package bricks
{
    import flash.display.Sprite;

    /** What is said between games. */
    public class Panel extends Sprite
    {
        private static const WIDTH:Number = 400, HEIGHT:Number = 166;

        private var title:Label = new Label(34, 0xEEEEFF, true);
        private var lines:Vector.<Label> = new Vector.<Label>();

        public function Panel()
        {
            graphics.beginFill(0x101824, 0.9);
            graphics.drawRoundRect(0, 0, WIDTH, HEIGHT, 20, 20);
            graphics.endFill();
            graphics.lineStyle(1.5, 0x4974BA);
            graphics.drawRoundRect(0, 0, WIDTH, HEIGHT, 20, 20);
            x = (Field.WIDTH - WIDTH) / 2;
            y = 182;
            addChild(title);
            for (var i:int = 0; i < 3; i++)
            {
                lines.push(new Label(14, i == 2 ? 0xF2A93B : 0xA9C3EC, i == 2));
                addChild(lines[i]);
            }
            mouseEnabled = mouseChildren = false;
        }

        public function showTitle():void
        {
            show("Кирпичи", "Разбейте все кирпичи и не уроните шарик.", "Мышь или стрелки двигают площадку, P — пауза.",
                 "Щелчок или Enter — начать");
        }

        public function showPause():void
        {
            show("Пауза", "Игра подождёт.", "", "P или Enter — продолжить");
        }

        public function showResult(score:int, isBest:Boolean):void
        {
            show("Игра окончена", "Ваш счёт: " + score, isBest ? "Это новый рекорд!" : "", "Щелчок или Enter — ещё раз");
        }

        public function hide():void
        {
            visible = false;
        }

        private function show(heading:String, ...texts):void
        {
            visible = true;
            title.show(heading);
            place(title, 12);
            for (var i:int = 0; i < lines.length; i++)
            {
                lines[i].show(texts[i]);
                place(lines[i], 70 + i * 29);
            }
        }

        private function place(label:Label, y:Number):void
        {
            label.x = (WIDTH - label.width) / 2;
            label.y = y;
        }
    }
}
