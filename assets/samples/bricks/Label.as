package bricks
{
    import flash.text.TextField;
    import flash.text.TextFieldAutoSize;
    import flash.text.TextFormat;

    /** A line of text as wide as it needs. */
    public class Label extends TextField
    {
        public function Label(size:int, color:uint, isBold:Boolean)
        {
            defaultTextFormat = new TextFormat("_sans", size, color, isBold);
            autoSize = TextFieldAutoSize.LEFT;
            selectable = false;
            mouseEnabled = false;
        }

        public function show(value:String):void
        {
            if (text != value) text = value;
        }
    }
}
