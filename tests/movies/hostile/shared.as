// movie: version="7" rate="10"
// Shared objects: names that lead elsewhere, and more of them than a movie may have.
var names = ["../up", "/etc/passwd", "a:b", "a\\b", "%2e%2e", "c d", "", "~", "a&b", "plain"];
for (var i = 0; i < names.length; i++) {
  var so = SharedObject.getLocal(names[i]);
  if (so == null) { trace(names[i] + " refused"); continue; }
  so.data.x = 1;
  trace(names[i] + " " + so.flush());
}
var made = 0;
for (var i = 0; i < 20000; i++) {
  var one = SharedObject.getLocal("m" + i);
  if (one == null) continue;
  one.data.x = 1;
  made++;
}
trace(made < 300);
trace(SharedObject.getLocal("m0").flush());
var s = "x";
while (s.length < 200000) s += s;
var big = SharedObject.getLocal("m1");
big.data.s = s;
trace(big.flush());
