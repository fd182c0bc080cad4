// movie: version="10" rate="20"
import flash.text.*;
var s:StyleSheet = new StyleSheet();
s.parseCSS("P.big, em { font-size: 30px; font-family: sans-serif, Arial } a:link { color: #12; text-decoration: underline }");
trace(s.styleNames.sort());
trace(s.getStyle("p.BIG").fontSize, s.getStyle("em").fontFamily, s.getStyle("none").color);
var f:TextFormat = s.transform(s.getStyle("a:link"));
trace(f.color, f.underline, f.bold, f.kerning);
f = s.transform({fontSize: "12.7pt", leading: "x", textAlign: "right", display: "odd"});
trace(f.size, f.leading, f.align, f.display);
trace(s.transform(null));
var mine:Object = {color: "#FF0000"};
s.setStyle("mine", mine); mine.color = "blue"; trace(s.getStyle("MINE").color);
var t:TextField = new TextField();
t.styleSheet = s; t.htmlText = "<em>x</em>";
trace(t.getTextFormat().size, t.getTextFormat().font);
try { t.setTextFormat(f); } catch (e:Error) { trace(e.errorID); }
s.clear(); trace(s.styleNames.length);
