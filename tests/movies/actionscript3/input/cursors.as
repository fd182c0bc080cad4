// movie: version="11" document="Main"
// Pointers of the movie's own: what is taken, by which names, and for how long.
package {
    import flash.display.*;
    import flash.geom.*;
    import flash.ui.*;
    public class Main extends Sprite
    {
        private function refused(what:String, work:Function):void
        {
            try { work(); trace(what, "done"); } catch (e:Error) { trace(what, e.errorID); }
        }
        private function pointer(...pictures):MouseCursorData
        {
            var made:MouseCursorData = new MouseCursorData();
            made.data = Vector.<BitmapData>(pictures);
            return made;
        }
        public function Main()
        {
            var fresh:MouseCursorData = new MouseCursorData();
            trace(Mouse.supportsNativeCursor, Mouse.cursor, fresh.data, fresh.hotSpot, fresh.frameRate);
            var small:BitmapData = new BitmapData(8, 8), gone:BitmapData = new BitmapData(4, 4);
            gone.dispose();
            refused("unknown", function():void { Mouse.cursor = "own"; });
            refused("null name", function():void { Mouse.registerCursor(null, fresh); });
            refused("null data", function():void { Mouse.registerCursor("own", null); });
            refused("no pictures", function():void { Mouse.registerCursor("own", fresh); });
            refused("an empty list", function():void { Mouse.registerCursor("own", pointer()); });
            refused("too large", function():void { Mouse.registerCursor("own", pointer(new BitmapData(33, 8))); });
            refused("disposed", function():void { Mouse.registerCursor("own", pointer(gone)); });
            refused("a null picture", function():void { Mouse.registerCursor("own", pointer(small, null)); });
            refused("no list", function():void { fresh["data"] = [small]; });
            refused("still unknown", function():void { Mouse.cursor = "own"; });
            var many:MouseCursorData = pointer();
            for (var i:int = 0; i < 1024; ++i) many.data.push(small);
            refused("as many as there may be", function():void { Mouse.registerCursor("many", many); });
            refused("one more", function():void { Mouse.registerCursor("own", pointer(small)); });
            refused("in its place", function():void { Mouse.registerCursor("many", pointer(small)); });
            refused("now", function():void { Mouse.registerCursor("own", pointer(small)); });
            Mouse.cursor = "own";
            trace(Mouse.cursor);
            Mouse.unregisterCursor("nobody");
            Mouse.unregisterCursor("many");
            trace(Mouse.cursor);
            Mouse.unregisterCursor("own");
            trace(Mouse.cursor);
            refused("gone", function():void { Mouse.cursor = "own"; });
            Mouse.cursor = MouseCursor.IBEAM;
            trace(Mouse.cursor);
        }
    }
}
