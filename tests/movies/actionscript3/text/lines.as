// movie: version="10" rate="20"
// A paragraph of several formats that is broken into lines.
import flash.text.engine.*;
import flash.display.*;
import flash.geom.*;
import flash.events.*;

function failing(what:Function):void { try { what(); trace("no error"); } catch (e:Error) { trace(e); } }

var plain:ElementFormat = new ElementFormat(new FontDescription("_sans"), 12);
var big:ElementFormat = new ElementFormat(new FontDescription("_sans", "bold"), 24, 0xFF0000);
var box:Shape = new Shape(); box.graphics.beginFill(0x00FF00); box.graphics.drawRect(0, 0, 20, 30);
var holder:Sprite = new Sprite();
var mirror:EventDispatcher = new EventDispatcher();
var first:TextElement = new TextElement("Hello brave ", plain, mirror);
var picture:GraphicElement = new GraphicElement(box, 20, 30, plain);
var second:TextElement = new TextElement("new world of lines", big);
var group:GroupElement = new GroupElement(new <ContentElement>[first, picture, second]);
var block:TextBlock = new TextBlock(group);

trace("-- elements");
trace(group.elementCount, group.rawText.length, group.text, picture.rawText.charCodeAt(0).toString(16));
trace(second.textBlockBeginIndex, second.groupElement == group, second.textBlock == block, new TextElement("x").textBlockBeginIndex);
trace(plain.locked, plain.fontDescription.locked, plain.clone().locked, group.getElementAtCharIndex(12) == picture);
failing(function():void { plain.color = 1; });
failing(function():void { plain.fontDescription.fontName = "x"; });
failing(function():void { new ElementFormat(null, -1); });
failing(function():void { new ContentElement(); });
failing(function():void { new TextLine(); });
failing(function():void { group.getElementAt(3); });
failing(function():void { group.setElements(new <ContentElement>[group]); });
failing(function():void { new TextBlock(first); });
failing(function():void { block.lineRotation = "auto"; });
failing(function():void { block.createTextLine(null, -1); });

trace("-- lines");
var line:TextLine = null, lines:Array = [], y:Number = 0;
while ((line = block.createTextLine(line, 150)) != null) {
    y += line.totalAscent; line.x = 10; line.y = y; y += line.totalDescent;
    lines.push(line); holder.addChild(line);
    trace(line.textBlockBeginIndex, line.rawTextLength, line.atomCount, line.hasGraphicElement, line.hasTabs, line.numChildren,
          line.textWidth <= 150, line.textHeight > 0, line.validity, block.textLineCreationResult);
}
trace(block.textLineCreationResult, block.firstLine == lines[0], block.lastLine == lines[lines.length - 1]);
trace(lines[0].nextLine == lines[1], lines[1].previousLine == lines[0], lines[0].previousLine, block.getTextLineAtCharIndex(20) == lines[1]);
trace("-- atoms");
var one:TextLine = lines[0];
trace(one.getAtomGraphic(12) == box, one.getAtomGraphic(0), one.getAtomTextBlockBeginIndex(3), one.getAtomTextBlockEndIndex(3));
trace(one.getAtomWordBoundaryOnLeft(6), one.getAtomWordBoundaryOnLeft(7), one.getAtomTextRotation(0), one.getAtomBidiLevel(0));
var bounds:Rectangle = one.getAtomBounds(12);
trace(bounds.width, bounds.height, bounds.bottom, box.parent == one, box.x == Math.round(bounds.x * 20) / 20);
var at:Point = one.localToGlobal(new Point(one.getAtomCenter(4), -3));
trace(one.getAtomIndexAtPoint(at.x, at.y), one.getAtomIndexAtPoint(-50, 0), one.getAtomIndexAtCharIndex(4), one.getAtomIndexAtCharIndex(400));
trace(one.totalAscent, one.ascent < 30, one.getBaselinePosition("roman"), one.getBaselinePosition("ascent") < 0);
failing(function():void { one.getAtomBounds(99); });
failing(function():void { one.tabIndex = 1; });
trace(one.hitTestPoint(at.x, at.y), Math.abs(one.height - one.totalHeight) < 0.1, one.tabIndex, one.mirrorRegions.length, one.getMirrorRegion(mirror).element == first);
trace(block.findNextAtomBoundary(3), block.findPreviousAtomBoundary(3), block.findNextWordBoundary(0), block.findPreviousWordBoundary(11));

trace("-- changes");
second.text = "end";
trace(lines[0].validity, lines[1].validity, block.firstInvalidLine == lines[0]);
block.releaseLines(block.firstLine, block.lastLine);
trace(block.firstLine, lines[0].textBlock, lines[0].validity, lines[1].previousLine);
line = block.recreateTextLine(lines[0], null, 400);
trace(line == lines[0], line.rawTextLength, line.validity, line.numChildren, block.createTextLine(line));

trace("-- breaking");
function broken(text:String, width:Number, justifier:TextJustifier = null, format:ElementFormat = null, stops:Vector.<TabStop> = null):Array {
    var block:TextBlock = new TextBlock(new TextElement(text, format || plain), stops, justifier);
    var parts:Array = [];
    for (var l:TextLine = block.createTextLine(null, width); l; l = block.createTextLine(l, width))
        parts.push(text.substr(l.textBlockBeginIndex, l.rawTextLength).replace(/[\n\u2028]/g, "|") + ":" + Math.round(l.textWidth) + "/" + (l.textWidth > l.unjustifiedTextWidth));
    parts.push(block.textLineCreationResult);
    return parts;
}
trace(broken("a\nb\u2028c", 100).length, broken("", 100), broken("abc", 0));
var all:Array = broken("one two three", 50, new SpaceJustifier("en", LineJustification.ALL_BUT_LAST));
trace(all[0], all[1].split("/")[1], all[2]);
trace(broken("one two", 200, new SpaceJustifier("en", "allIncludingLast", true))[0]);
var loose:ElementFormat = plain.clone(); loose.breakOpportunity = BreakOpportunity.ANY;
trace(broken("abcdefghijkl", 40, new EastAsianJustifier(), loose)[0].split(":")[1]);
var any:ElementFormat = plain.clone(); any.breakOpportunity = BreakOpportunity.NONE;
trace(broken("one two three", 60, null, any).length, broken("one two three", 1000, null, any)[0].split("/")[1]);
var stop:Vector.<TabStop> = new <TabStop>[new TabStop("start", 100), new TabStop("end", 200), new TabStop("decimal", 300, ".")];
trace(broken("a\tb\tc\t12.5", 500, null, plain, stop)[0].split(":")[1].split("/")[1]);
var tabbed:TextBlock = new TextBlock(new TextElement("a\tb\tc\t12.5", plain), stop), t:TextLine = tabbed.createTextLine();
trace(t.getAtomBounds(2).x, Math.round(t.getAtomBounds(4).right), Math.round(t.getAtomBounds(8).x), t.hasTabs);

trace("-- editing groups");
var parts:GroupElement = new GroupElement(new <ContentElement>[new TextElement("one"), new TextElement("two"), new TextElement("three")]);
var split:TextElement = parts.splitTextElement(2, 2);
trace(parts.elementCount, split.text, parts.getElementIndex(split), parts.getElementIndex(first));
trace(parts.mergeTextElements(1, 3).text, parts.elementCount);
var inner:GroupElement = parts.groupElements(0, 2);
trace(parts.elementCount, inner.text, inner.groupElement == parts, parts.text);
parts.ungroupElements(0); trace(parts.elementCount, inner.elementCount);
trace(parts.replaceElements(1, 3, null).length, parts.text);
TextElement(parts.getElementAt(0)).replaceText(1, 2, "NN"); trace(parts.text);
