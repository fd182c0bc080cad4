// movie: version="15" rate="20" document="Main"
// Variables of the player's classes hold what their types say, choices one of their words, and what is told to be
// read only stays so, on numbers and texts, too.
package {
    import flash.display.*;
    import flash.events.*;
    import flash.filters.ShaderFilter;
    import flash.geom.*;
    import flash.net.*;
    import flash.system.LoaderContext;
    import flash.ui.ContextMenu;
    import flash.utils.*;
    public class Main extends Sprite
    {
        private var bitmap:GraphicsBitmapFill = new GraphicsBitmapFill();

        public function Main()
        {
            for (var round:int = 0; round < 2; ++round) {
                attempt("early", function():* { var any:* = new Date(0); bitmap.matrix = any; });
                attempt("late", function():* { var any:* = bitmap; any.matrix = "a"; });
                attempt("base", function():* { var any:* = new ContextMenu(); any.link = new Sprite(); });
            }
            var made:Matrix = new Matrix(2);
            bitmap.matrix = made;
            trace(bitmap.matrix == made);
            var loose:* = bitmap;
            loose.matrix = undefined;
            trace(bitmap.matrix);
            attempt("in a constructor", function():* { var any:* = {}; return new FocusEvent("a", true, false, any); });
            attempt("from a base", function():* { var any:* = new LoaderContext(); any.applicationDomain = []; });
            attempt("elements", function():* { var any:* = new GraphicsPath(); any.data = new <int>[1]; });
            attempt("a menu", function():* { var any:* = new ContextMenu(); any.customItems = {}; });
            attempt("Object", function():* {
                var event:NetStatusEvent = new NetStatusEvent("a");
                var any:* = event;
                any.info = undefined;
                return event.info;
            });

            var stroke:GraphicsStroke = new GraphicsStroke();
            trace(stroke.caps, stroke.joints, stroke.scaleMode);
            stroke.caps = CapsStyle.SQUARE;
            trace(stroke.caps);
            attempt("caps", function():* { stroke.caps = "flat"; });
            attempt("joints", function():* { stroke.joints = null; });
            attempt("constructor", function():* { return new GraphicsStroke(1, false, "all"); });
            attempt("type", function():* { return new GraphicsGradientFill("conical"); });
            attempt("spread", function():* { new GraphicsGradientFill().spreadMethod = ""; });
            attempt("winding", function():* { new GraphicsPath().winding = "odd"; });
            attempt("culling", function():* { new GraphicsTrianglePath().culling = "back"; });

            attempt("length", function():* { var text:* = "a"; text.length = 2; });
            attempt("method", function():* { var text:* = "a"; text.charAt = null; });
            attempt("new on a number", function():* { var number:* = 5; number.more = 2; });

            attempt("no type", function():* { addEventListener(null, trace); });
            attempt("no listener", function():* { removeEventListener("a", null); });
            attempt("closed", function():* { new URLLoader().close(); });
            attempt("endian", function():* { new ByteArray().endian = null; });
            attempt("list of names", function():* { return <><a/><b/></>.localName(); });
            attempt("XML name", function():* { var xml:XML = <a/>; xml.setLocalName("1a"); });
            trace(JSON.stringify([new ByteArray(), <a toJSON="no"><toJSON/></a>, <><a/><b/></>]));
            trace(parseFloat(" -Infinityly"), parseFloat("Inf"));
            trace(describeType(new ShaderFilter()).variable.length(), describeType(stroke).accessor.@name.contains("@caps"));
            trace(new ContextMenuEvent("a"));
        }

        private function attempt(what:String, work:Function):void
        {
            try {
                trace(what, work());
            } catch (error:Error) {
                trace(what, error.message);
            }
        }
    }
}
