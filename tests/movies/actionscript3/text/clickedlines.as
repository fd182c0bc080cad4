// movie: version="10" width="300" height="130" rate="10" document="Main"
// Lines are hit over all they cover, and tell who listens for a part of them.
package {
    import flash.display.*; import flash.events.*; import flash.text.engine.*;
    public class Main extends Sprite
    {
        private function format(size:Number, color:uint, bold:Boolean = false):ElementFormat
        {
            return new ElementFormat(new FontDescription("_sans", bold ? "bold" : "normal"), size, color);
        }
        public function Main()
        {
            var heard:EventDispatcher = new EventDispatcher(), raised:ElementFormat = format(10, 0x0000FF);
            raised = raised.clone(); raised.baselineShift = -8;
            var box:Sprite = new Sprite(); box.graphics.beginFill(0x00AA00); box.graphics.drawRect(0, 0, 24, 24);
            box.name = "box";
            var content:GroupElement = new GroupElement(new <ContentElement>[
                new TextElement("Съешь ещё этих ", format(16, 0)),
                new TextElement("мягких", format(24, 0xCC0000, true), heard),
                new TextElement("2 ", raised), new GraphicElement(box, 24, 24, format(16, 0)),
                new TextElement(" французских булок, да выпей же чаю", format(16, 0x444444))]);
            var block:TextBlock = new TextBlock(content, null, new SpaceJustifier("ru", LineJustification.ALL_BUT_LAST));
            var y:Number = 5;
            for (var line:TextLine = block.createTextLine(null, 280); line; line = block.createTextLine(line, 280)) {
                line.name = "line" + line.textBlockBeginIndex;
                line.x = 10; line.y = y + line.totalAscent; y += line.totalHeight + 2;
                addChild(line);
                line.addEventListener("click", function(e:MouseEvent):void {
                    trace(e.currentTarget.name, e.target.name, e.currentTarget.getAtomIndexAtPoint(e.stageX, e.stageY) >= 0);
                });
            }
            heard.addEventListener("click", function(e:MouseEvent):void { trace("heard", e.type); });
            var upright:TextBlock = new TextBlock(new TextElement("вниз", format(14, 0x880088)));
            upright.lineRotation = TextRotation.ROTATE_90;
            var down:TextLine = upright.createTextLine();
            down.x = 200; down.y = 75; addChild(down);
            trace(down.width < down.height, Math.abs(down.height - down.textWidth) < 0.1);
            stage.addEventListener("click", function(e:MouseEvent):void { if (e.target == stage) trace("nothing"); });
        }
    }
}
