package bricks
{
    public class Brick
    {
        public static const WIDTH:Number = 48, HEIGHT:Number = 18;
        private static const COLORS:Vector.<uint> =
            new <uint>[0xD9534F, 0xE8804A, 0xF2A93B, 0x9CC05A, 0x4FB29A, 0x4974BA, 0x7FA6E0, 0xA98BD6];

        public var x:Number, y:Number;
        public var strength:int;
        public var color:uint;

        public function Brick(x:Number, y:Number, row:int, strength:int)
        {
            this.x = x;
            this.y = y;
            this.strength = strength;
            color = COLORS[row % COLORS.length];
        }

        public function get centerX():Number { return x + WIDTH / 2; }
        public function get centerY():Number { return y + HEIGHT / 2; }

        public function touches(ballX:Number, ballY:Number, radius:Number):Boolean
        {
            var nearX:Number = Math.max(x, Math.min(x + WIDTH, ballX)) - ballX;
            var nearY:Number = Math.max(y, Math.min(y + HEIGHT, ballY)) - ballY;
            return nearX * nearX + nearY * nearY < radius * radius;
        }
    }
}
