// movie: version="15" width="200" height="100" rate="20" document="Main"
// A font that one movie registers all others have, once, however often its movie comes; what it keeps to itself they
// have not.
package {
    import flash.display.*;
    import flash.events.Event;
    import flash.net.URLRequest;
    import flash.text.*;
    public class Main extends Sprite
    {
        private var left:int = 2;

        public function Main()
        {
            next();
        }
        private function next():void
        {
            look();
            if (left-- == 0) return;
            var loader:Loader = new Loader();
            loader.contentLoaderInfo.addEventListener(Event.COMPLETE, function(event:Event):void { next(); });
            loader.load(new URLRequest("lentfonts-guest.swf"));
        }
        private function look():void
        {
            var fonts:Array = Font.enumerateFonts(), field:TextField = new TextField();
            field.embedFonts = true;
            field.defaultTextFormat = new TextFormat("Lent", 20);
            field.text = "abc";
            trace(fonts.length, fonts.length > 0 ? fonts[0].fontName + " " + fonts[0].fontStyle : "none", field.textWidth > 20,
                  TextField.isFontCompatible("Lent", FontStyle.REGULAR), TextField.isFontCompatible("Lent", FontStyle.BOLD));
        }
    }
}
