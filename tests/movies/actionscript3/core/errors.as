// movie: version="10" rate="20"
var e:Error = new Error("message", 77);
trace(e, e.name, e.message, e.errorID, e is Error);
trace(new TypeError("t"), new RangeError(), new ArgumentError("x").name);
class MyError extends Error { public function MyError(m:String) { super(m, 5); name = "MyError"; } }
try { throw new MyError("mine"); } catch (m:MyError) { trace(m, m.errorID, m is Error); }
function id(f:Function):int { try { f(); } catch (e:Error) { return e.errorID; } return 0; }
var nothing:* = null, none:* = undefined, number:* = 5;
trace(id(function():void { nothing.x; }), id(function():void { none.x; }), id(function():void { nothing(); }), id(function():void { number(); }));
trace(id(function():void { number.foo(); }), id(function():void { var a:Array = number; }));
trace(id(function():void { decodeURIComponent("%"); }), id(function():void { new RegExp("a", "g").exec(); }));
trace(Error.length, new Error().message == "", String(new Error()));
class Wrapped extends Error { public function Wrapped(m:String, n:int) { super("<" + m + ">", n); } }
trace(Error.getErrorMessage(1009), Error.getErrorMessage(7));
try { Error.throwError(RangeError, 1125, 5, 3); } catch (r:RangeError) { trace(r, r.errorID); }
try { Error.throwError(Wrapped, 2007, "child"); } catch (w:Wrapped) { trace(w.message, w.errorID); }
