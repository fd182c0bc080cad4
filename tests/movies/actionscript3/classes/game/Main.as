package game
{
    import flash.display.Sprite;
    import flash.utils.getQualifiedClassName;
    import game.tools.Answer;

    public class Main extends Sprite
    {
        internal var hidden:String = "internal ok";
        public function Main()
        {
            trace("core of game");
            trace(new Helper().text(2));
            trace(Names.peek(this));
            trace(Names.ALL.join("|"));
            trace("loaded by import: " + new Answer().value);
            trace(stage != null, getQualifiedClassName(this));
        }
    }
}

class Helper
{
    public function text(n:int):String { return "outside helper " + n; }
}
