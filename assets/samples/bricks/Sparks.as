package bricks
{
    import flash.display.Graphics;
    import flash.display.Shape;

    /** Fragments that fly apart and fade. */
    public class Sparks extends Shape
    {
        private static const MAX:int = 240;
        private static const LIFE:Number = 0.6; // seconds

        private var alive:Vector.<Spark> = new Vector.<Spark>();

        public function burst(x:Number, y:Number, color:uint, count:int):void
        {
            for (var i:int = 0; i < count && alive.length < MAX; i++)
            {
                var angle:Number = Math.random() * Math.PI * 2, speed:Number = 40 + Math.random() * 150;
                alive.push(new Spark(x, y, speed * Math.cos(angle), speed * Math.sin(angle), color));
            }
        }

        public function advance(seconds:Number):void
        {
            var g:Graphics = graphics;
            g.clear();
            for (var i:int = alive.length - 1; i >= 0; i--)
            {
                var spark:Spark = alive[i];
                spark.age += seconds;
                if (spark.age >= LIFE)
                {
                    alive.splice(i, 1);
                    continue;
                }
                spark.speedY += 320 * seconds;
                spark.x += spark.speedX * seconds;
                spark.y += spark.speedY * seconds;
                var left:Number = 1 - spark.age / LIFE;
                g.beginFill(spark.color, left);
                g.drawRect(spark.x - 2, spark.y - 2, 1 + 3 * left, 1 + 3 * left);
                g.endFill();
            }
        }
    }
}

class Spark
{
    public var x:Number, y:Number, speedX:Number, speedY:Number, age:Number = 0;
    public var color:uint;

    public function Spark(x:Number, y:Number, speedX:Number, speedY:Number, color:uint)
    {
        this.x = x;
        this.y = y;
        this.speedX = speedX;
        this.speedY = speedY;
        this.color = color;
    }
}
