// movie: version="10" rate="20"
class Limits { public static const MOST:int = 5, NAMED:String = "named"; public static const FAR:Number = 1e9; }
class Uses {
    private static const OWN:int = 7;
    public function f(a:int = OWN, b:int = Limits.MOST, c:String = Limits.NAMED, d:Number = Limits.FAR):String { return [a, b, c, d].join(" "); }
}
trace(new Uses().f(), new Uses().f(1, 2));
