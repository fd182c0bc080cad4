// movie: version="10" rate="20"
// What several instructions do at once stops between them where one of them throws: what came before stands,
// what comes behind was never done, and a handler goes on with the locals as they were.
class Cell
{
    public var n:int = 3;
    public var next:Cell;
    public var list:Vector.<int>;
    private var _reads:int = 0;
    public function get counted():int
    {
        if (++_reads == 3) throw new RangeError("third read");
        return n;
    }
    public function set counted(value:int):void
    {
        if (value > 5) throw new RangeError("no more than five");
        n = value;
    }
}
class Trap
{
    public var asked:int = 0;
    public function valueOf():Object
    {
        if (++asked == 2) throw "second question";
        return 10;
    }
}
function attempt(name:String, work:Function):void
{
    try {
        trace(name, work());
    } catch (error:Error) {
        trace(name, error.errorID == 0 ? error.message : error.errorID);
    } catch (thrown:*) {
        trace(name, "thrown", thrown);
    }
}
function steps():String
{
    var i:int, cell:Cell = new Cell(), log:Array = [];
    cell.next = new Cell();
    // The chain ends at its third link: the first two have counted.
    for (i = 0; i < 4; i++) {
        try {
            cell.n += i + 1;
            cell = cell.next;
            cell.n++;
        } catch (error:TypeError) {
            log.push(i + "=" + error.errorID);
        }
    }
    return log.join(" ") + " i=" + i;
}
attempt("steps", steps);
function sums():String
{
    var cells:Vector.<int> = new <int>[1, 2, 3], sum:int = 100, i:int, log:Array = [];
    for (i = -1; i < 5; i++) {
        try {
            sum += cells[i];
        } catch (error:RangeError) {
            log.push(i);
        } catch (error:ReferenceError) {
            log.push("r" + i);
        }
    }
    cells = null;
    try {
        for (i = 0; i < 5; i++) sum += cells[i];
    } catch (error:TypeError) {
        log.push(error.errorID, i);
    }
    return sum + " after " + log.join();
}
attempt("sums", sums);
function anySums():String
{
    var trap:Trap = new Trap(), list:Array = [1, trap, 2, trap, 4], sum:int = 0, i:int = 0, caught:int = 0;
    while (i < list.length) {
        try {
            for (; i < list.length; i++) sum += list[i];
        } catch (thrown:String) {
            caught++;
            i++;
        }
    }
    return sum + " caught " + caught + " asked " + trap.asked;
}
attempt("sums of anything", anySums);
function products():String
{
    var trap:Trap = new Trap(), x:Number = 2, log:Array = [], any:* = trap;
    for (var i:int = 0; i < 3; i++) {
        try {
            x = x * 3 + any;
        } catch (thrown:String) {
            log.push(i + ":" + x);
        }
    }
    return x + " " + log;
}
attempt("products", products);
function accessors():String
{
    var cell:Cell = new Cell(), log:Array = [], i:int;
    for (i = 0; i < 5; i++) {
        try {
            cell.counted++;
        } catch (error:RangeError) {
            log.push(i + " " + error.message);
        }
    }
    return cell.n + " " + log.join(", ");
}
attempt("accessors", accessors);
// An exception leaves loops within loops, and the outer ones go on where they were.
function nested():String
{
    var log:Array = [], cell:Cell;
    for (var i:int = 0; i < 3; i++) {
        for (var j:int = 5; j > 0; j -= 2) {
            try {
                if ((i + j) % 3 == 0) cell = null; else cell = new Cell();
                cell.n += j;
                log.push(cell.n);
            } catch (error:TypeError) {
                log.push("-");
                if (i == 1) break;
                continue;
            } finally {
                log.push("f");
            }
        }
        log.push("/");
    }
    return log.join("");
}
attempt("nested", nested);
// The value that a step has made is there when a closure sees its local.
function captured():String
{
    var n:int = 0, seen:Array = [];
    var look:Function = function():int { seen.push(n); return n; };
    for (n = 0; n < 3; n++) look();
    n += look();
    seen.push(n);
    var over:int = 2147483646;
    var peek:Function = function():int { return over; };
    over++;
    seen.push(peek());
    over++;
    seen.push(peek());
    return seen.join();
}
attempt("captured", captured);
// Jumps to the second of two instructions that usually are one.
function enteredBehind(start:int):String
{
    var log:Array = [], i:int = start;
    do {
        if (i == 2) continue;
        log.push(i);
        if (i > 6) break;
    } while ((i += 2) <= 8);
    return log.join() + " at " + i;
}
attempt("entered", function():String { return enteredBehind(0) + "; " + enteredBehind(1) + "; " + enteredBehind(8); });
function bounds():String
{
    var i:int, turns:int = 0, low:int = int.MIN_VALUE, high:int = int.MAX_VALUE;
    for (i = high - 2; i <= high && turns < 5; i++) turns++;
    var first:String = turns + " " + i;
    turns = 0;
    for (i = low + 1; i >= low && turns < 4; i--) turns++;
    return first + " " + turns + " " + i;
}
attempt("bounds", bounds);
// The loop's end may move while it runs, and may be a thing of another type altogether.
function moving():String
{
    var list:Array = [1, 2, 3], seen:int = 0, end:* = "3";
    for (var i:int = 0; i < list.length && seen < 10; i++) {
        seen++;
        if (i < 2) list.push(i);
    }
    var more:int = 0;
    for (i = 0; i < end; i++) more++;
    end = undefined;
    for (i = 0; i < end; i++) more += 100;
    return seen + " " + more + " " + list;
}
attempt("moving", moving);
