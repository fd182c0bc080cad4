// movie: version="10" rate="20"
class Item { public var n:int; public function Item(n:int) { this.n = n; } public function toString():String { return "i" + n; } }
class Special extends Item { public function Special(n:int) { super(n * 100); } }
var list:Vector.<Item> = new Vector.<Item>();
for (var i:int = 3; i > 0; i--) list.push(i == 2 ? new Special(i) : new Item(i));
trace(list, list.length, list[1] is Special);
list.sort(function(a:Item, b:Item):int { return a.n - b.n; }); trace(list);
var sum:int = 0; for each (var item:Item in list) sum += item.n; trace(sum);
try { list.push("not an item"); } catch (e:TypeError) { trace(e.errorID); }
list[0].n++; list[0].n += 5; trace(list[0].n);
function make(t:Class, n:int):* { return new t(n); }
trace(make(Special, 4), make(Item, 4) as Special);
var table:Vector.<Vector.<Item>> = new <Vector.<Item>>[list, new <Item>[]];
trace(table[0][1].n, table[1].length);
trace(Vector.<Item>([new Item(8)])[0].n, list.indexOf(list[2]), list.filter(function(x:Item, k:int, l:Vector.<Item>):Boolean { return x.n > 5; }));
