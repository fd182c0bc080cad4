// movie: version="7"
// Up to version 7 HTML begins with the field's own format, whatever scripts set for new text, and condenses each
// stretch between two tags for itself.
var big = new TextFormat();
big.size = 40;
_root.createTextField("field", 1, 0, 0, 200, 100);
var t = field;
t.html = true;
t.setNewTextFormat(big);
t.text = "a";
trace(t.getTextFormat(0).size);
t.htmlText = "a<font size='9'>b";
trace(t.getTextFormat(0).size + " " + t.getTextFormat(1).size + " " + t.getNewTextFormat().size);
t.text = "a";
trace(t.getTextFormat(0).size);
t.condenseWhite = true;
t.htmlText = "  a  <b>  b  </b>  <i>  c  </i>";
trace("[" + t.text + "]");
