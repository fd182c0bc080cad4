// movie: version="7" rate="10"
// What pop and push leave behind where an array is more than a list of values.
function show(name, a) { var s = name + ": " + a + " of " + a.length; for (var k in a) s += " " + k; trace(s); }
var a = [1, 2, 3]; trace(a.pop() + a.push(7, 8)); show("plain", a);
a = [1, , 3]; a[5] = 6; trace(a.pop() + " " + a.pop()); show("holes", a);
a = [1, 2]; a.length = 3; trace(a.pop()); show("longer", a);
a = [1, 2, 3]; ASSetPropFlags(a, "2", 6, 0); trace(a.pop()); show("protected", a);
a = [1, 2, 3]; ASSetPropFlags(a, null, 7, 0); trace(a.pop()); show("all protected", a);
a = [1, 2, 3]; a.watch("length", function(name, from, to) { trace("watched " + name + " " + from + " " + to); return to; });
trace(a.pop() + " " + a.push(4)); show("watched", a);
a = [1, 2, 3]; a.addProperty("2", function() { trace("asked"); return "made"; }, null); trace(a.pop()); show("accessor", a);
a = [1, 2, 3]; a.length = -2; trace(a.pop() + " " + a.push(5)); show("below zero", a);
a = [1, 2]; a.length = "4"; trace(typeof a.length + " " + a.pop()); show("text", a);
a = [1, 2, 3]; delete a[2]; trace(a.pop()); show("deleted", a); a.push("new"); show("again", a);
a = []; a[1000000000] = 1; trace(a.pop() + " " + a.length);
var o = {0: "x", 1: "y", length: 2, pop: Array.prototype.pop, push: Array.prototype.push}; trace(o.pop() + " " + o.length + " " + o.push("z") + " " + o[2]);
