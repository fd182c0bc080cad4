package game
{
    // Found without an import: it is of the same package.
    public class Names
    {
        public static const ALL:Array = ["alpha", "beta"];
        public static function peek(main:Main):String { return main.hidden; }
    }
}
