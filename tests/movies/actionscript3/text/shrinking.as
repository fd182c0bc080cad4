// movie: version="10" rate="20" document="shrinking"
// Indexes that take away what they point into while they are asked for.
package {
    import flash.display.Sprite;
    import flash.text.engine.*;

    public class shrinking extends Sprite
    {
        private static function group():GroupElement
        {
            var elements:Vector.<ContentElement> = new Vector.<ContentElement>();
            for each (var text:String in ["one ", "two ", "three ", "four"])
                elements.push(new TextElement(text, new ElementFormat()));
            return new GroupElement(elements);
        }
        // The index, when all elements but the first are gone.
        private static function robbing(holder:GroupElement, index:int):Object
        {
            return {valueOf: function():Number { holder.replaceElements(1, holder.elementCount, null); return index; }};
        }
        private static function tried(name:String, what:Function):void
        {
            var holder:GroupElement = group();
            try { trace(name, what(holder), holder.elementCount); }
            catch (e:Error) { trace(name, e.errorID, holder.elementCount); }
        }
        public function shrinking()
        {
            tried("at", function(g:Object):* { return g.getElementAt(robbing(g as GroupElement, 3)); });
            tried("first", function(g:Object):* { return g.getElementAt(robbing(g as GroupElement, 0)).text; });
            tried("character", function(g:Object):* { return g.getElementAtCharIndex(robbing(g as GroupElement, 9)); });
            tried("replace", function(g:Object):* { return g.replaceElements(1, robbing(g as GroupElement, 4), null); });
            tried("group", function(g:Object):* { return g.groupElements(0, robbing(g as GroupElement, 4)); });
            tried("ungroup", function(g:Object):* { return g.ungroupElements(robbing(g as GroupElement, 3)); });
            tried("split", function(g:Object):* { return g.splitTextElement(2, robbing(g as GroupElement, 2)); });
            tried("split behind", function(g:Object):* { return g.splitTextElement(robbing(g as GroupElement, 0), 2).text; });
            tried("merge", function(g:Object):* { return g.mergeTextElements(0, robbing(g as GroupElement, 4)); });

            var block:TextBlock = new TextBlock(new TextElement("some words to lay out", new ElementFormat()));
            var line:Object = block.createTextLine(null, 400);
            trace(line.getAtomBidiLevel({valueOf: function():Number {
                (block.content as TextElement).text = "a";
                block.recreateTextLine(line as TextLine, null, 400);
                return 0;
            }}));
            try {
                trace(line.getAtomGraphic({valueOf: function():Number { return 5; }}));
            } catch (e:Error) { trace(e.errorID, line.atomCount); }

            // A picture of the text that has all lines let go of when it is added to one.
            var picture:Sprite = new Sprite();
            block.content = new GraphicElement(picture, 10, 10, new ElementFormat());
            picture.addEventListener("added", function(e:Object):void {
                if (block.firstLine) block.releaseLines(block.firstLine, block.lastLine);
                for (var i:int = 0; i < 1000; i++) new Sprite();
            });
            var kept:TextLine = block.createTextLine(null, 400);
            trace(kept.numChildren, kept.validity, block.firstLine, kept.contains(picture));
        }
    }
}
