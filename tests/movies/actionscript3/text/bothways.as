// movie: version="10" rate="20"
// Lines that run both ways, columns, letters that join, narrow spaces, and what a font says of itself.
import flash.text.engine.*;
import flash.geom.*;

var format:ElementFormat = new ElementFormat(new FontDescription("_sans"), 20);
function lineOf(text:String, level:int = 0, look:ElementFormat = null, rotation:String = "rotate0"):TextLine
{
    var block:TextBlock = new TextBlock(new TextElement(text, look || format));
    block.bidiLevel = level;
    block.lineRotation = rotation;
    return block.createTextLine(null, 1000);
}
/// Which atoms are seen from left to right.
function seen(line:TextLine):String
{
    var order:Array = [];
    for (var i:int = 0; i < line.atomCount; ++i) order.push({at: i, x: line.getAtomBounds(i).x});
    order.sortOn("x", Array.NUMERIC);
    return order.map(function(one:Object, ...rest):int { return one.at; }).join(" ");
}
function levels(line:TextLine):String
{
    var all:Array = [];
    for (var i:int = 0; i < line.atomCount; ++i) all.push(line.getAtomBidiLevel(i));
    return all.join(" ");
}

trace("-- order");
var hebrew:String = "a \u05D0\u05D1 12 b";
trace(seen(lineOf(hebrew)), "|", levels(lineOf(hebrew)));
trace(seen(lineOf(hebrew, 1)), "|", levels(lineOf(hebrew, 1)));
trace(seen(lineOf("\u05D0\u05D1 ", 1)), lineOf("\u05D0\u05D1 ", 1).getAtomBounds(1).x);
var word:TextLine = lineOf("\u05D0\u05D1 \u05D2");
trace(word.getAtomWordBoundaryOnLeft(0), word.getAtomWordBoundaryOnLeft(1));
trace(Math.abs(word.textWidth - (word.getAtomBounds(0).right - word.getAtomBounds(3).left)) < 0.1);

trace("-- letters");
trace("lam with alef", lineOf("\u0628\u0644\u0627").atomCount, "mark", lineOf("\u0628\u064E").atomCount);
var apart:ElementFormat = format.clone();
apart.ligatureLevel = LigatureLevel.NONE;
trace(lineOf("office", 0, apart).atomCount, lineOf("office").getAtomIndexAtCharIndex(5) == lineOf("office").atomCount - 1);

trace("-- turned");
for each (var name:String in [TextRotation.ROTATE_0, TextRotation.ROTATE_90, TextRotation.ROTATE_180, TextRotation.AUTO]) {
    var turned:ElementFormat = format.clone();
    turned.textRotation = name;
    var one:TextLine = lineOf("i\u6F22", 0, turned), column:TextLine = lineOf("i\u6F22", 0, turned, "rotate90");
    trace(name, one.getAtomTextRotation(0), one.getAtomTextRotation(1), column.getAtomTextRotation(0), column.getAtomTextRotation(1),
          name == "rotate90" && one.getAtomBounds(0).width == 20, name != "rotate0" && name != "rotate180" && column.getAtomBounds(1).height == 20);
}

trace("-- spaces");
var text:String = "aa bb cc dd ee";
function filled(minimum:Number):TextLine
{
    var block:TextBlock = new TextBlock(new TextElement(text, format));
    var justifier:SpaceJustifier = new SpaceJustifier("en", LineJustification.ALL_INCLUDING_LAST);
    justifier.minimumSpacing = minimum;
    block.textJustifier = justifier;
    return block.createTextLine(null, lineOf(text).textWidth - 3);
}
trace(filled(1).rawTextLength, filled(0.5).rawTextLength, filled(0.99).rawTextLength);
trace(Math.abs(filled(0.5).textWidth - filled(0.5).specifiedWidth) < 0.1, filled(0.5).unjustifiedTextWidth > filled(0.5).textWidth);

trace("-- a font");
var metrics:FontMetrics = format.getFontMetrics();
format = new ElementFormat(format.fontDescription, 40);
var twice:FontMetrics = format.getFontMetrics();
trace(metrics.underlineOffset > 0, metrics.strikethroughOffset < 0, metrics.subscriptOffset > 0, metrics.superscriptOffset < 0,
      metrics.subscriptScale < 1, Math.abs(twice.underlineOffset - 2 * metrics.underlineOffset) < 0.001,
      twice.superscriptScale == metrics.superscriptScale, twice.emBox.height);
