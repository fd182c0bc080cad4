package bricks
{
    /** The rules: where everything is and what happens next. Knows nothing of pictures. */
    public class Field
    {
        public static const WIDTH:Number = 550, HEIGHT:Number = 400;
        public static const TOP:Number = 44;
        public static const RADIUS:Number = 7;
        public static const PADDLE_Y:Number = 372;
        private static const COLUMNS:int = 10;
        private static const KEYS_SPEED:Number = 460; // pixels a second
        private static const LIVES:int = 3;

        public var bricks:Vector.<Brick> = new Vector.<Brick>();
        public var ballX:Number = 275, ballY:Number = PADDLE_Y - RADIUS - 1;
        public var paddleX:Number = 275, paddleWidth:Number = 92;
        public var score:int = 0, lives:int = LIVES, level:int = 1;
        private var speedX:Number = 0, speedY:Number = 0;
        private var isHeld:Boolean = true;
        private var streak:int = 0;
        private var events:Vector.<GameEvent> = new Vector.<GameEvent>();

        public function Field()
        {
            buildWall();
        }

        public function begin():void
        {
            score = 0;
            lives = LIVES;
            level = 1;
            paddleX = WIDTH / 2;
            buildWall();
            holdBall();
        }

        /** @return what happened since it was asked last */
        public function takeEvents():Vector.<GameEvent>
        {
            var taken:Vector.<GameEvent> = events;
            events = new Vector.<GameEvent>();
            return taken;
        }

        public function moveTo(x:Number):void
        {
            paddleX = Math.max(paddleWidth / 2 + 4, Math.min(WIDTH - paddleWidth / 2 - 4, x));
            if (isHeld) ballX = paddleX;
        }

        public function steer(direction:int, seconds:Number):void
        {
            if (direction != 0) moveTo(paddleX + direction * KEYS_SPEED * seconds);
        }

        public function launch():void
        {
            if (!isHeld) return;
            isHeld = false;
            var speed:Number = 250 + 25 * level;
            speedX = speed * 0.45;
            speedY = -speed * 0.89;
        }

        public function advance(seconds:Number):void
        {
            if (isHeld) return;
            ballX += speedX * seconds;
            bounceX();
            ballY += speedY * seconds;
            bounceY();
            if (ballY > HEIGHT + RADIUS) lose();
            if (bricks.length == 0) nextLevel();
        }

        private function buildWall():void
        {
            bricks = new Vector.<Brick>();
            var rows:int = Math.min(4 + level, 8);
            for (var row:int = 0; row < rows; row++)
            {
                for (var column:int = 0; column < COLUMNS; column++)
                {
                    // Every level leaves other gaps.
                    if (level > 1 && (row * 3 + column * level) % 7 == 0) continue;
                    var strength:int = row == 0 || (level > 2 && row == 2) ? 2 : 1;
                    bricks.push(new Brick(15 + column * 52, TOP + 24 + row * 22, row, strength));
                }
            }
        }

        private function holdBall():void
        {
            isHeld = true;
            streak = 0;
            ballX = paddleX;
            ballY = PADDLE_Y - RADIUS - 1;
        }

        private function lose():void
        {
            lives--;
            note(lives > 0 ? GameEvent.LOST : GameEvent.OVER, ballX, HEIGHT, 0xD9534F);
            holdBall();
        }

        private function nextLevel():void
        {
            level++;
            score += 100;
            note(GameEvent.LEVEL, WIDTH / 2, HEIGHT / 2, 0xF2A93B);
            buildWall();
            holdBall();
        }

        private function bounceX():void
        {
            if (ballX < RADIUS && speedX < 0 || ballX > WIDTH - RADIUS && speedX > 0)
            {
                speedX = -speedX;
                note(GameEvent.WALL, ballX, ballY, 0x7FA6E0);
            }
            var brick:Brick = brickAtBall();
            if (brick == null) return;
            speedX = ballX < brick.centerX ? -Math.abs(speedX) : Math.abs(speedX);
            strike(brick);
        }

        private function bounceY():void
        {
            if (ballY < TOP + RADIUS && speedY < 0)
            {
                speedY = -speedY;
                note(GameEvent.WALL, ballX, ballY, 0x7FA6E0);
            }
            var brick:Brick = brickAtBall();
            if (brick != null)
            {
                speedY = ballY < brick.centerY ? -Math.abs(speedY) : Math.abs(speedY);
                strike(brick);
            }
            var isAtPaddle:Boolean = speedY > 0 && ballY > PADDLE_Y - RADIUS && ballY < PADDLE_Y + 10;
            if (!isAtPaddle || Math.abs(ballX - paddleX) > paddleWidth / 2 + RADIUS) return;
            // The farther from the middle, the flatter it goes.
            var speed:Number = Math.sqrt(speedX * speedX + speedY * speedY) + 3;
            var angle:Number = (ballX - paddleX) / (paddleWidth / 2) * 1.05;
            speedX = speed * Math.sin(angle);
            speedY = -speed * Math.cos(angle);
            streak = 0;
            note(GameEvent.PADDLE, ballX, PADDLE_Y, 0xEEEEFF);
        }

        private function brickAtBall():Brick
        {
            for each (var brick:Brick in bricks)
            {
                if (brick.touches(ballX, ballY, RADIUS)) return brick;
            }
            return null;
        }

        private function strike(brick:Brick):void
        {
            if (--brick.strength > 0)
            {
                note(GameEvent.CRACK, brick.centerX, brick.centerY, brick.color);
                return;
            }
            bricks.splice(bricks.indexOf(brick), 1);
            score += 10 + 5 * Math.min(streak++, 9);
            note(GameEvent.BREAK, brick.centerX, brick.centerY, brick.color);
        }

        private function note(kind:String, x:Number, y:Number, color:uint):void
        {
            events.push(new GameEvent(kind, x, y, color));
        }
    }
}
