package bricks
{
    import flash.display.GradientType;
    import flash.display.Graphics;
    import flash.display.Shape;
    import flash.display.Sprite;
    import flash.geom.Matrix;
    import flash.media.Sound;

    /** Shows the field. */
    public class Scene extends Sprite
    {
        private var field:Field;
        private var wall:Shape = new Shape(), paddle:Shape = new Shape(), ball:Shape = new Shape(), trail:Shape = new Shape();
        private var sparks:Sparks = new Sparks();
        private var scoreLabel:Label = new Label(16, 0xEEEEFF, true), bestLabel:Label = new Label(13, 0x7FA6E0, false);
        private var levelLabel:Label = new Label(13, 0xA9C3EC, false);
        private var hearts:Shape = new Shape();
        private var shownLives:int = -1;
        private var path:Vector.<Number> = new Vector.<Number>();
        private var restingFor:int = 0; // frames
        private var sounds:Object = {};

        public function Scene(field:Field)
        {
            this.field = field;
            drawBackground();
            drawPaddle();
            drawBall();
            for each (var part:Shape in [wall, trail, paddle, ball, hearts]) addChild(part);
            addChild(sparks);
            scoreLabel.x = 14;
            scoreLabel.y = 9;
            bestLabel.y = 12;
            levelLabel.y = 12;
            addChild(scoreLabel);
            addChild(bestLabel);
            addChild(levelLabel);
            sounds[GameEvent.BREAK] = new BreakSound();
            sounds[GameEvent.LOST] = new LostSound();
            sounds[GameEvent.OVER] = new OverSound();
            sounds[GameEvent.PADDLE] = sounds[GameEvent.CRACK] = new HitSound();
            rebuild();
        }

        public function rebuild():void
        {
            drawWall();
            path.length = 0;
        }

        /** What happened, seen and heard. */
        public function show(events:Vector.<GameEvent>):void
        {
            for each (var event:GameEvent in events)
            {
                var sound:Sound = sounds[event.kind];
                if (sound != null) sound.play();
                if (event.kind == GameEvent.WALL) continue;
                sparks.burst(event.x, event.y, event.color, event.kind == GameEvent.LEVEL ? 60 : event.kind == GameEvent.BREAK ? 16 : 6);
                if (event.kind != GameEvent.PADDLE) drawWall();
                if (event.kind == GameEvent.LOST || event.kind == GameEvent.LEVEL) path.length = 0;
            }
        }

        public function animate(seconds:Number):void
        {
            paddle.x = field.paddleX;
            ball.x = field.ballX;
            ball.y = field.ballY;
            const last:int = path.length - 2;
            restingFor = last >= 0 && path[last] == field.ballX && path[last + 1] == field.ballY ? restingFor + 1 : 0;
            if (restingFor <= 12) drawTrail();
            sparks.advance(seconds);
        }

        // Twelve places; a ball that has rested for so long leaves the same over and over.
        private function drawTrail():void
        {
            path.push(field.ballX, field.ballY);
            if (path.length > 24) path.splice(0, path.length - 24);
            var g:Graphics = trail.graphics;
            g.clear();
            for (var i:int = 0; i < path.length; i += 2)
            {
                var share:Number = i / path.length;
                g.beginFill(0xF2A93B, share * 0.25);
                g.drawCircle(path[i], path[i + 1], Field.RADIUS * share);
                g.endFill();
            }
        }

        public function showNumbers(score:int, best:int, lives:int, level:int):void
        {
            scoreLabel.show("Счёт: " + score);
            levelLabel.show("Уровень " + level);
            levelLabel.x = (Field.WIDTH - levelLabel.width) / 2;
            bestLabel.show(best > 0 ? "Лучший: " + best : "");
            bestLabel.x = Field.WIDTH - 90 - bestLabel.width;
            if (lives == shownLives) return;
            shownLives = lives;
            var g:Graphics = hearts.graphics;
            g.clear();
            for (var i:int = 0; i < 3; i++)
            {
                var x:Number = Field.WIDTH - 72 + i * 22;
                g.beginFill(i < lives ? 0xD9534F : 0x34506F);
                g.moveTo(x, 18);
                g.curveTo(x - 1, 12, x + 4, 12);
                g.curveTo(x + 8, 12, x + 8, 16);
                g.curveTo(x + 8, 12, x + 12, 12);
                g.curveTo(x + 17, 12, x + 16, 18);
                g.curveTo(x + 15, 23, x + 8, 29);
                g.curveTo(x + 1, 23, x, 18);
                g.endFill();
            }
        }

        private function drawBackground():void
        {
            var box:Matrix = new Matrix();
            box.createGradientBox(Field.WIDTH, Field.HEIGHT, Math.PI / 2);
            graphics.beginGradientFill(GradientType.LINEAR, [0x16202E, 0x223349, 0x34506F], [1, 1, 1], [0, 170, 255], box);
            graphics.drawRect(0, 0, Field.WIDTH, Field.HEIGHT);
            graphics.endFill();
            graphics.beginFill(0x101824);
            graphics.drawRect(0, 0, Field.WIDTH, Field.TOP - 2);
            graphics.endFill();
            graphics.beginFill(0x4974BA);
            graphics.drawRect(0, Field.TOP - 2, Field.WIDTH, 2);
            graphics.endFill();
        }

        private function drawWall():void
        {
            var g:Graphics = wall.graphics;
            g.clear();
            for each (var brick:Brick in field.bricks)
            {
                g.beginFill(0x000000, 0.25);
                g.drawRoundRect(brick.x + 1, brick.y + 3, Brick.WIDTH, Brick.HEIGHT, 8, 8);
                g.endFill();
                g.beginFill(brick.color);
                g.drawRoundRect(brick.x, brick.y, Brick.WIDTH, Brick.HEIGHT, 8, 8);
                g.endFill();
                g.beginFill(0xFFFFFF, 0.28);
                g.drawRoundRect(brick.x + 3, brick.y + 2, Brick.WIDTH - 6, 5, 5, 5);
                g.endFill();
                if (brick.strength < 2) continue;
                g.lineStyle(2, 0xEEEEFF, 0.85);
                g.drawRoundRect(brick.x + 1, brick.y + 1, Brick.WIDTH - 2, Brick.HEIGHT - 2, 8, 8);
                g.lineStyle();
            }
        }

        private function drawPaddle():void
        {
            var g:Graphics = paddle.graphics, half:Number = field.paddleWidth / 2;
            var box:Matrix = new Matrix();
            box.createGradientBox(half * 2, 14, 0, -half, 0);
            g.beginGradientFill(GradientType.LINEAR, [0x4974BA, 0x9CBDEE, 0x4974BA], [1, 1, 1], [0, 128, 255], box);
            g.drawRoundRect(-half, 0, half * 2, 13, 13, 13);
            g.endFill();
            g.beginFill(0xFFFFFF, 0.35);
            g.drawRoundRect(-half + 6, 2, half * 2 - 12, 4, 4, 4);
            g.endFill();
            paddle.y = Field.PADDLE_Y;
        }

        private function drawBall():void
        {
            var box:Matrix = new Matrix();
            box.createGradientBox(18, 18, 0, -11, -12);
            ball.graphics.beginGradientFill(GradientType.RADIAL, [0xFFFFFF, 0xFFE2A8, 0xF2A93B], [1, 1, 1], [0, 90, 255], box);
            ball.graphics.drawCircle(0, 0, Field.RADIUS);
            ball.graphics.endFill();
        }
    }
}
