// movie: version="10" rate="20"
try { throw "text"; } catch (e:*) { trace("caught", e); }
try { throw new RangeError("far", 7); } catch (e:TypeError) { trace("wrong"); } catch (e:RangeError) { trace(e.name, e.message, e.errorID); }
try { try { throw 1; } finally { trace("inner finally"); } } catch (n:int) { trace("outer", n); }
function order():String {
    var log:String = "";
    try { log += "a"; throw new Error("b"); }
    catch (e:Error) { log += e.message; }
    finally { log += "c"; }
    return log;
}
trace(order());
function early():int { try { return 1; } finally { trace("before return"); } return 2; }
trace(early());
function replaced():int { try { return 1; } finally { return 2; } }
trace(replaced());
function nested():String {
    try { try { return "value"; } finally { trace("first"); } } finally { trace("second"); }
    return "never";
}
trace(nested());
function looped():String {
    var log:String = "";
    for (var i:int = 0; i < 4; i++) {
        try { if (i == 1) continue; if (i == 3) break; log += i; } finally { log += "f"; }
    }
    return log;
}
trace(looped());
function rethrow():void { try { throw new Error("again"); } catch (e:Error) { throw e; } finally { trace("passing"); } }
try { rethrow(); } catch (e:Error) { trace(e.message); }
var e:String = "outside";
try { throw 5; } catch (e:*) { e = 6; trace(e); }
trace(e);
var fs:Array = [];
for (var k:int = 0; k < 2; k++) { try { throw k; } catch (x:*) { fs.push(function():* { return x; }); } }
trace(fs[0](), fs[1]());
