// movie: version="15" width="60" height="40" rate="10" document="Main"
// What has the focus is marked around what takes its pointer, whether that is larger or smaller than what it shows.
package {
    import flash.display.*;
    public class Main extends Sprite
    {
        public function Main()
        {
            var up:Shape = new Shape(), area:Shape = new Shape();
            up.graphics.beginFill(0x336699);
            up.graphics.drawRect(0, 0, 12, 20);
            area.graphics.beginFill(0xFF0000);
            area.graphics.drawRect(0, 0, 15, 7);
            area.x = 4;
            area.y = 3;
            area.scaleX = 2;
            var button:SimpleButton = new SimpleButton(up, up, up, area);
            button.x = 10;
            button.y = 8;
            addChild(button);
        }
    }
}
