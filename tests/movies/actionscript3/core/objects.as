// movie: version="10" rate="20"
var o:Object = {a: 1};
trace(o.hasOwnProperty("a"), o.hasOwnProperty("toString"), o.propertyIsEnumerable("a"), o.isPrototypeOf({}));
trace(o, o.toString(), o.valueOf() === o, Object(5) + 1, Object("s").length, Object(null) != null);
trace(new Object().constructor == Object, Object.prototype.constructor == Object, o.toLocaleString());
o.toString = function():String { return "custom"; }; trace(o, "" + o, o + 1);
var keys:Array = []; for (var k:String in {z: 1, y: 2}) keys.push(k); trace(keys.sort());
trace((5).constructor == int, (5.5).constructor == Number, "".constructor == String, true.constructor == Boolean, [].constructor == Array);
var f:Function = function(a:int):int { return a; };
f.note = "functions hold values"; trace(f.note, f.length, f is Function);
trace(true.toString(), Boolean("false"), new Boolean(false) ? "truthy" : "falsy");
var u:*; trace(u, u === undefined, typeof u, String(u));
