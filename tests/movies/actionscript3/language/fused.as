// movie: version="10" rate="20"
// What stands in a row in most loops is done at once: at the edges of its types nothing may change.
class Counter { public var n:int; public var total:Number = 0; }
function run():void {
    var i:int, c:Counter = new Counter(), list:Array = [1, 2.5, "3", null, undefined, true], ints:Vector.<int> = new <int>[5, -7, 2147483647];
    for (i = 2147483640; i > 0; i += 5) c.n++;
    trace(i, c.n);
    c.n = 2147483647; c.n++; trace(c.n);
    c.n += 2147483647; trace(c.n);
    c.n = -2147483648; c.n -= 1; trace(c.n);
    var none:Counter = null;
    try { none.n++; } catch (e:TypeError) { trace(e.errorID); }
    var sum:int = 0;
    for (i = 0; i < 4; i++) sum = sum + list[i];
    trace(sum);
    sum = 0;
    for (i = 0; i < list.length; i++) sum += list[i];
    trace(sum);
    sum = 10;
    for (i = 0; i < ints.length; i++) sum += ints[i];
    trace(sum);
    try { for (i = 0; i < 9; i++) sum += ints[i]; } catch (e:RangeError) { trace(e.errorID, i); }
    var x:Number = 1.5, y:Number = 0;
    for (i = 0; i <= 3; i++) { y = y * 0.5 + i; x = x * y + y; }
    trace(y, x);
    y = NaN; y = y * 2 + i; trace(y);
    c.total = 2; c.total = c.total * c.total + c.total; trace(c.total);
    var any:* = "a"; trace(1 + any, any + 1, i + any, any + i);
    any = 1.5; trace(i + any, any + i, int(i + any));
    any = {valueOf: function():Number { return 4; }}; trace(i + any, int(any + i));
    var u:uint = 3; trace(u - 5 < 0, u * -1, (u - 5) >>> 0);
    for (i = 3; i >= 0; i--) if (i == 1) continue; else c.total += i;
    trace(i, c.total);
    var o:Object = {k: 1}; for (i = 0; i < 3; i++) { o.k = o.k + i; if (i == 1) { delete o.k; o.k = "t"; } }
    trace(o.k);
    var s:String = ""; for (i = 0; i < 3000; i++) s += i % 10;
    var t:String = s; for (i = 0; i < 100; i++) { t += "é"; s += "xy"; }
    trace(s.length, s.substr(2995, 8), t.length, t.substr(2998, 4), s.charAt(1234), t.charAt(3099));
}
run();
