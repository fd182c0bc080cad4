// movie: version="10" rate="20"
var s:String = "";
for (var i:int = 0, j:int = 10; i < j; i += 3, j--) s += i + ":" + j + " ";
trace(s);
var n:int = 0;
while (true) { if (++n > 3) break; if (n == 2) continue; trace("while", n); }
do { trace("do", n--); } while (n > 2);
outer:
for (var a:int = 0; a < 3; a++) {
    for (var b:int = 0; b < 3; b++) {
        if (b == 1) continue outer;
        if (a == 2) break outer;
        trace(a, b);
    }
}
block: { trace("in"); if (n) break block; trace("never"); }
for (;;) { break; }
for each (var e:String in ["x", "y"]) trace(e);
for (var k:String in ["p", "q"]) trace(k, typeof k);
var o:Object = {only: 5};
for (var name:String in o) trace(name, o[name]);
for each (var none:* in null) trace("never");
for (var none2:* in undefined) trace("never");
var target:Object = {};
for (target.key in {z: 1}) trace(target.key);
var v:Vector.<int> = new <int>[4, 5];
var sum:int = 0;
for each (var item:int in v) sum += item;
trace(sum);
