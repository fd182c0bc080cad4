// movie: version="10" rate="20"
var Animal:Function = function(name:String):void { this.name = name; };
Animal.prototype.speak = function():String { return this.name + " speaks"; };
var Maker:Function = Animal;
var a:Object = new Maker("cat");
trace(a.name, a.speak(), a.constructor == Maker, a instanceof Maker);
var Old:Function = function():void { this.n = 1; };
Old.prototype = {inherited: "yes"};
var o:Object = new Old();
trace(o.n, o.inherited, Old.prototype.isPrototypeOf(o));
Object.prototype.everywhere = 42;
trace(o.everywhere, [].everywhere, "s"["everywhere"]);
delete Object.prototype.everywhere;
trace(o.everywhere);
Array.prototype.second = function():* { return this[1]; };
trace([4, 5].second());
trace(String.prototype.charAt.call("xyz", 1), Object.prototype.toString.call([]));
var f:Function = function(a:*, b:*):String { return this.t + a + b; };
trace(f.call({t: "T"}, 1, 2), f.apply({t: "U"}, [3, 4]));
