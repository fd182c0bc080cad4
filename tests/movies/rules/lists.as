// movie: version="8" rate="10"
// Lists: names in the order in which they came, indices of 32 bits, and what is asked of objects that are none.
function names(o) {
    var all = [];
    for (var name in o) all.push(name);
    return all.join(" ");
}
var a = new Array(16);
a[1] = "b";
a[0] = "a";
a.foo = "c";
a[5] = "d";
trace(names(a));
delete a[0];
a[0] = "e";
trace(names(a));
a = ["x", "y", "z"];
trace(names(a));
a.note = 1;
a.push("w");
trace(names(a));
a.reverse();
trace(names(a) + ": " + a);

// The length follows indices as numbers with a sign.
a = [0, 1];
a["-5"] = 1;
trace(a.length);
a["2147483647"] = 1;
trace(a.length + ": " + names(a));
a["2147483648"] = 1;
trace(a.length);
a = [];
a.length = -3;
trace(a.push("p") + " " + a[-3] + " " + a.length);
trace(a.push("q", "r", "s") + " " + a[0] + " " + a.length);

// An element with a getter: what the list held is what pop gives.
a = [1, 2, 3];
trace(a.addProperty("2", function () { return 10; }, null));
trace(a[2] + " " + a.pop() + " " + a.length);

// What is no array keeps its length when elements move.
var fake = {length: 3, 0: "a", 1: "b", 2: "c", join: Array.prototype.join};
trace(Array.prototype.pop.call(fake) + " " + fake.length + ": " + fake.join(":"));
trace(Array.prototype.unshift.call(fake, "z") + ": " + fake.join(":"));
trace(Array.prototype.shift.call(fake) + ": " + fake.join(":"));
trace(Array.prototype.splice.call(fake, 0, 1) + ": " + fake.length);

// Fields count where they are the object's own data.
function Item(label) { this.label = label; }
Item.prototype.rank = 0;
var first = new Item("first"), second = new Item("second"), third = new Item("third");
first.rank = 3;
second.rank = 2;
third.rank = 1;
var list = [first, second, third];
list.sortOn("rank", Array.NUMERIC);
trace(list[0].label + list[1].label + list[2].label);
first.addProperty("order", function () { trace("asked"); return 2; }, null);
second.addProperty("order", function () { trace("asked"); return 1; }, null);
list = [first, second];
list.sortOn("order");
trace(list[0].label);
trace(["ccc", "a", "bb"].sortOn("length", Array.NUMERIC));

// Elements carry flags as other properties do; those that come later have none.
function shownNames(of) { var text = ""; for (var name in of) text += name + " "; return text; }
a = [10, 20, 30];
ASSetPropFlags(a, null, 1);
a.push(40);
trace(shownNames(a) + "of " + a);
ASSetPropFlags(a, null, 0, 1);
ASSetPropFlags(a, "1", 4);
ASSetPropFlags(a, ["0"], 2);
a[1] = "kept out";
a[2] = "new";
trace(delete a[0]);
trace(delete a[2]);
trace(a);
ASSetPropFlags(a, null, 4);
a[0] = 1;
a[2] = "back";
a[4] = 5;
trace(a + " " + a.length);
a.length = 1;
a[1] = 2;
trace(a);
// To rearrange is to make anew.
b = [3, 1, 2];
ASSetPropFlags(b, null, 7);
b.reverse();
b[0] = 4;
trace(b + " " + b.pop() + " " + shownNames([1]).length);
fscommand("quit");
