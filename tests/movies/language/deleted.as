// movie: version="7" rate="10"
// Objects of many properties, most of which go again and others come: all that stays is found, nothing else.
var o = new Object(), i, found, wrong;
for (i = 0; i < 60; i++) o["k" + i] = i;
trace(o.k59);
for (i = 0; i < 60; i++) if (i % 4) delete o["k" + i];
function check(what) {
  found = 0; wrong = 0;
  for (i = 0; i < 60; i++) if (o["k" + i] !== undefined) { found++; if (o["k" + i] != i) wrong++; }
  trace(what + " " + found + " " + wrong);
}
check("after the deletes");
for (i = 1; i < 20; i++) if (i % 4) o["k" + i] = i;
check("some again");
for (i = 0; i < 30; i++) { o.one = i; delete o.one; o.two = -i; }
check("one slot again and again"); trace(o.one + " " + o.two);
var keys = ""; for (var k in o) keys += " " + k; trace(keys);
// What is protected stays.
ASSetPropFlags(o, "k3,k7", 2); trace(delete o.k3); trace(delete o.k2); trace(o.k3 + " " + o.k2 + " " + o.k7);
