// movie: version="10" width="50" height="40" rate="12" document="Guest"
package {
    import flash.display.Sprite;
    public class Guest extends Sprite
    {
        public var said:String = "hello";
        public function Guest()
        {
            graphics.drawRect(0, 0, 10, 10);
            trace("  guest", stage == null, parent == null);
        }
    }
}
