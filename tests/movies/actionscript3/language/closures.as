// movie: version="10" rate="20"
function counter():Object {
    var n:int = 0;
    return {up: function():int { return ++n; }, down: function():int { return --n; }};
}
var a:Object = counter(), b:Object = counter();
a.up(); a.up(); b.down();
trace(a.up(), b.up());
function fact(n:int):Number { return n < 2 ? 1 : n * fact(n - 1); }
trace(fact(10));
var fib:Function = function self(n:int):int { return n < 2 ? n : self(n - 1) + self(n - 2); };
trace(fib(10));
function outer(x:int):Function {
    function middle(y:int):Function { return function(z:int):int { return x * 100 + y * 10 + z; }; }
    return middle(x + 1);
}
trace(outer(1)(3));
trace(hoisted());
function hoisted():String { return "hoisted"; }
function shadow(x:int):int { var f:Function = function(x:int):int { return x + 1; }; return f(x * 2); }
trace(shadow(4));
var list:Array = [];
for (var i:int = 0; i < 3; i++) list.push(function():int { return i; });
trace(list[0](), list[2]());
(function():void { trace("at once"); })();
trace((function(p:int, q:int = 4):int { return p * q; })(3));
function swap(p:*, q:*):Array { var t:Function = function():void { var k:* = p; p = q; q = k; }; t(); return [p, q]; }
trace(swap(1, 2));
