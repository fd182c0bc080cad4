// movie: version="8" rate="10"
var log = "";
function thrower(v) { log += "t"; throw v; log += "!"; }
// finally runs before a return leaves, and its own return wins.
function returns() { try { return "try"; } finally { log += "f"; } }
function overrides() { try { return "try"; } finally { return "finally"; } }
trace(returns() + log + " " + overrides());
// Through several calls, loops and with.
log = "";
function deep(n) { if (n == 0) thrower("deep"); with ({a: 1}) { for (var k in {x: 1}) deep(n - 1); } }
try { deep(5); } catch (e) { log += e; } trace(log);
// The stack of operands is left as it was.
function half() { try { return 1 + thrower(1) + 2; } catch (e) { return 10 + e; } }
trace(5 + half() + 5);
// The name of catch is its own in a function, and outer variables are reached.
var e = "outer";
function scoped() { try { throw "in"; } catch (e) { log = e; } return log; }
trace(scoped() + " " + e);
// A handler can throw again, and finally runs for both.
log = "";
try { try { thrower(1); } catch (x) { log += "c" + x; thrower(2); } finally { log += "f"; } } catch (y) { log += "c" + y; }
trace(log);
// Error objects: message, name, text, and own classes.
var err = new Error("m"); trace(err.message + " " + err.name + " " + err + " " + new Error().message);
function Fault(m) { this.message = m; } Fault.prototype = new Error(); Fault.prototype.name = "Fault";
try { throw new Fault("own"); } catch (f) { trace((f instanceof Fault) + " " + (f instanceof Error) + " " + f + " " + f.name); }
// What a getter, a conversion and a comparison throw can be caught as well.
var o = {}; o.addProperty("g", function() { throw "getter"; }, null);
try { trace("never " + o.g); } catch (x) { trace("from " + x); }
try { trace("never" + {toString: function() { throw "conversion"; }, valueOf: function() { throw "conversion"; }}); } catch (x) { trace("from " + x); }
try { [2, 1].sort(function() { throw "sort"; }); trace("sorted"); } catch (x) { trace("from " + x); }
// One that nobody catches ends its script and no other.
onEnterFrame = function() {
  trace("frame");
  onEnterFrame = function() { trace("goes on"); onEnterFrame = null; };
  throw "lost";
  trace("never");
};
