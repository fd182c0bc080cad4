package bricks
{
    public class GameEvent
    {
        public static const WALL:String = "wall", PADDLE:String = "paddle", CRACK:String = "crack";
        public static const BREAK:String = "break", LOST:String = "lost", OVER:String = "over", LEVEL:String = "level";

        public var kind:String;
        public var x:Number, y:Number;
        public var color:uint;

        public function GameEvent(kind:String, x:Number, y:Number, color:uint)
        {
            this.kind = kind;
            this.x = x;
            this.y = y;
            this.color = color;
        }
    }
}
