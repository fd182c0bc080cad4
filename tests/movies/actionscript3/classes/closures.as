// movie: version="10" rate="20"
class Button2 {
    private var clicks:int = 0;
    private var handlers:Array = [];
    public function listen(f:Function):void { handlers.push(f); }
    public function wire():void {
        listen(onClick);
        var bonus:int = 10;
        listen(function():void { clicks += bonus; bonus++; });
        for each (var step:int in [100, 200]) listen(add(step));
    }
    private function add(n:int):Function { return function():void { clicks += n; }; }
    private function onClick():void { clicks++; }
    public function fire():int { for each (var f:Function in handlers) f(); return clicks; }
    public static function helper(b:Button2):Function { return function():String { return "static " + b.clicks; }; }
}
var b:Button2 = new Button2();
b.wire();
trace(b.fire(), b.fire(), Button2.helper(b)());
