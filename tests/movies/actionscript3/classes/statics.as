// movie: version="10" rate="20"
class Registry {
    private static var entries:Object = {};
    public static const LIMIT:int = 3;
    public static var last:String;
    trace("class is made", LIMIT);
    for (var i:int = 0; i < LIMIT; i++) entries["e" + i] = i * i;
    public static function find(name:String):int { last = name; return entries[name]; }
    public function find(name:String):String { return "instance " + Registry.find(name); }
}
trace(Registry.find("e2"), Registry.last, Registry.LIMIT);
trace(new Registry().find("e1"), Registry["last"]);
Registry.last += "!"; trace(Registry.last);
try { Registry["LIMIT"] = 1; } catch (e:ReferenceError) { trace(e.errorID); }
