// movie: version="8" rate="10"
var log = "";
// break and continue leave through finally.
log = "";
for (var i = 0; i < 4; i++) { try { if (i == 1) continue; if (i == 3) break; log += i; } finally { log += "f"; } }
trace(log + i);
function left() { for (var i = 0; i < 3; i++) { try { if (i == 1) return "returned"; } finally { log += "F"; } } }
log = ""; trace(left() + log);
