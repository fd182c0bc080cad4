// movie: version="8" rate="10"
function risky(n) {
  if (n == 1) throw new Error("one");
  if (n == 2) throw "text";
  return "fine";
}
function attempt(n) {
  var log = "";
  try {
    log += "try ";
    log += risky(n);
  } catch (e) {
    log += "caught " + (e instanceof Error ? e.message : e);
  } finally {
    log += " finally";
  }
  return log;
}
trace(attempt(0)); trace(attempt(1)); trace(attempt(2));
try { try { throw 5; } finally { trace("inner finally"); } } catch (e) { trace("outer " + e); }
try { try { throw 1; } catch (e) { throw e + 1; } } catch (e) { trace("rethrown " + e); }
try { trace("no throw"); } finally { trace("still"); }
// Clauses with types; the first that fits is taken, others go on.
function RangeFault(m) { this.message = m; }
function typed(what) {
  try { throw what; }
  catch (r:RangeFault) { return "range " + r.message; }
  catch (x:Error) { return "error " + x.message; }
  catch (any) { return "any " + any; }
}
trace(typed(new RangeFault("r"))); trace(typed(new Error("e"))); trace(typed(3));
function passes() { try { throw 8; } catch (r:RangeFault) { trace("never"); } return "never"; }
try { passes(); } catch (n) { trace("passed on " + n); }
for (var i = 0; i < 3; i++) { try { if (i == 1) throw i; trace("i" + i); } catch (e) { trace("c" + e); } }
