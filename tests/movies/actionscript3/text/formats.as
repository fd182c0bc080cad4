// movie: version="10" rate="20"
// What formats make of what they are given, and what fields make of formats.
import flash.text.*;
var f:TextFormat = new TextFormat("Arial", 2.5, -1, 1, 0, "", null, null, "center", 3.5);
trace(f.font, f.size, f.color, f.bold, f.italic, f.underline, f.url, f.align, f.leftMargin, f.leading, f.display);
f.size = NaN; f.tabStops = [1.5, 2.5, "9"]; trace(f.size, f.tabStops);
try { f.align = "middle"; } catch (e:ArgumentError) { trace(e.errorID, f.align); }
var t:TextField = new TextField();
trace(t.defaultTextFormat.font, t.defaultTextFormat.size, t.type, t.autoSize, t.length, t.numLines);
t.text = "one\ntwo";
var big:TextFormat = new TextFormat(); big.size = 30;
t.setTextFormat(big, 4, 7);
trace(t.getTextFormat().size, t.getTextFormat(0).size, t.getTextFormat(5).size, t.text.length);
try { t.setTextFormat(big, 3, 99); } catch (e:RangeError) { trace(e.errorID); }
t.replaceText(0, 3, "1"); trace(t.text.split("\r"));
t.setSelection(2, 4); trace(t.selectedText, t.selectionBeginIndex, t.selectionEndIndex);
t.appendText("!"); trace(t.text.substr(-2), t.getParagraphLength(0), t.getFirstCharInParagraph(3));
try { t.text = null; } catch (e:TypeError) { trace(e.errorID); }
try { t.autoSize = "up"; } catch (e:ArgumentError) { trace(e.errorID); }
try { t.getLineText(9); } catch (e:RangeError) { trace(e.errorID); }
t.maxChars = -4; t.restrict = ""; trace(t.maxChars, t.restrict === "");
