// movie: version="15" width="40" height="40" rate="10" document="Main"
// One object may be several states of a button: it is shown whichever of them is named last.
package {
    import flash.display.*;
    public class Main extends Sprite
    {
        private var button:SimpleButton = new SimpleButton();

        private function show(what:String):void
        {
            var picture:BitmapData = new BitmapData(40, 40, false, 0xFFFFFF);
            picture.draw(button);
            trace(what, picture.getPixel(5, 5).toString(16), picture.getPixel(25, 25).toString(16));
        }

        public function Main()
        {
            var shape:Shape = new Shape(), other:Shape = new Shape();
            shape.graphics.beginFill(0xFF00FF);
            shape.graphics.drawRect(0, 0, 10, 10);
            other.graphics.beginFill(0x00FF00);
            other.graphics.drawRect(20, 20, 10, 10);
            button.hitTestState = shape;
            button.upState = shape;
            button.downState = button.overState = shape;
            addChild(button);
            show("all one");
            button.downState = other;
            show("another pressed");
            button.upState = other;
            show("both another");
            button.upState = null;
            show("none");
            button.overState = button.upState = shape;
            show("again");
            addChild(shape);
            show("elsewhere");
            button.upState = shape;
            show("taken back");
            trace(numChildren);
        }
    }
}
