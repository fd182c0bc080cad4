// movie: version="8" rate="10"
// Whichever way a try is left, its finally runs first, once.
function a() { try { return "from try"; } finally { trace("a finally"); } }
trace(a());
function b() { try { throw 1; } catch (e) { return "from catch"; } finally { trace("b finally"); } }
trace(b());
function order() { var n = 1; try { return n; } finally { n = 2; trace("order finally " + n); } }
trace(order());
function wins() { try { return "try"; } finally { return "finally"; } }
trace(wins());
function swallows() { try { throw "lost"; } finally { return "kept"; } }
trace(swallows());
function nested() { try { try { return "deep"; } finally { trace("inner"); } } finally { trace("outer"); } }
trace(nested());
function throws() { try { return "never"; } finally { throw "thrown"; } }
try { trace(throws()); } catch (e) { trace("caught " + e); }
function loops() {
  for (var i = 0; i < 4; i++) {
    try {
      if (i == 1) continue;
      if (i == 3) break;
      trace("body " + i);
    } finally { trace("finally " + i); }
  }
  return "left at " + i;
}
trace(loops());
// Out of a loop that holds names on the stack, a labelled loop, a switch, and a loop that tests at its end.
for (var k in {x: 1, y: 2}) { try { break; } finally { trace("for in finally"); } }
for (var k in {x: 1}) { for (var l in {z: 1}) { try { trace(k + l); break; } finally { trace("both"); } } }
function inForIn(o) { for (var k in o) { try { return "key " + k; } finally { trace("key finally"); } } }
trace(inForIn({only: 1}));
outer: for (var i = 0; i < 2; i++) { for (;;) { try { continue outer; } finally { trace("labelled " + i); } } }
switch (1) { case 1: try { break; } finally { trace("switch finally"); } case 2: trace("never"); }
do { try { break; } finally { trace("do finally"); } } while (true);
function catchBreak() { for (;;) { try { throw 1; } catch (e) { break; } finally { trace("catch break"); } } return "done"; }
trace(catchBreak());
for (;;) { try { try { break; } finally { trace("inner break"); } } finally { trace("outer break"); } }
// A jump within the try stays within it; one in the finally takes over from the exception.
for (;;) { try { for (;;) { break; } trace("within"); } finally { trace("once"); } break; }
for (;;) { try { throw 1; } finally { break; } }
// An exception of the finally that a jump runs is not for the clause beside it.
try { for (;;) { try { break; } catch (e) { trace("wrong clause"); } finally { throw "late"; } } } catch (e) { trace("outer clause " + e); }
trace("end");
