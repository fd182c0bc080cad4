// movie: version="7" rate="10"
// What is no number is neither less nor more than anything, and the answer is not even "no".
var nothing, list = [NaN, nothing, null, {}, "x", "", 1, "2", true];
for (var i = 0; i < list.length; i++) {
  var row = "";
  for (var j = 0; j < list.length; j++) row += " " + (list[i] < list[j]) + "/" + (list[i] > list[j]);
  trace(i + row);
}
trace((NaN < 1) + " " + (1 < NaN) + " " + (NaN >= 1) + " " + (nothing < 1) + " " + (1 > nothing) + " " + !(nothing < 1));
// Texts by their characters, the empty one behind all others.
trace(("" < "a") + " " + ("a" < "") + " " + ("" < "") + " " + ("B" < "a") + " " + ("10" < "9"));
