// movie: version="10" rate="20"
dynamic class Bag { public var fixed:int = 1; public function method():String { return "method"; } }
var b:Bag = new Bag();
b.extra = 5; b["two words"] = 6; b[3] = "three";
trace(b.extra, b["two words"], b[3], b.missing, b.fixed);
var names:Array = [];
for (var n:String in b) names.push(n);
names.sort();
trace(names);
trace(delete b.extra, b.extra, delete b.fixed, b.fixed);
Bag.prototype.shared = "from prototype";
Bag.prototype.greet = function():String { return "hi " + this.fixed; };
trace(b.shared, b.greet(), b.hasOwnProperty("shared"), "shared" in b);
b.shared = "own"; trace(b.shared, delete b.shared, b.shared);
try { b.method = null; } catch (e:ReferenceError) { trace(e.errorID); }
b.call = function():* { return this; };
trace(b.call() === b);
b.setPropertyIsEnumerable("two words", false);
names = []; for (n in b) names.push(n); trace(names.sort());
