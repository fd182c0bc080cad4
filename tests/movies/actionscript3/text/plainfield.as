// movie: version="10" width="200" height="100"
// What was set as plain text is read as HTML, too; a line break has its place, but no width.
import flash.text.TextField;
import flash.text.TextFormat;
var field:TextField = new TextField();
field.multiline = true;
trace("[" + field.htmlText + "]");
field.text = "a<b\nc";
trace(field.htmlText);
field.setTextFormat(new TextFormat(null, null, 0xFF0000, true), 4, 5);
trace(field.htmlText);
trace(field.text.split("\r").join("|"));
var after = field.getCharBoundaries(2), end = field.getCharBoundaries(3), below = field.getCharBoundaries(4);
trace(end.x == after.right, end.y == after.y, end.width, end.height == after.height, below.x < end.x, below.y > end.y);
trace(field.getCharBoundaries(5), field.getCharBoundaries(-1));
