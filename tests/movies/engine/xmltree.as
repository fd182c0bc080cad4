// movie: version="8" rate="10"
// Trees are changed in place, and what is written parses to the same tree.
var x = new XML("<a one='1' two=\"&lt;2&gt;\"><b/>text &amp; more<c><d/></c></a>");
var a = x.firstChild;
trace(x.status + " " + a.nodeName + " " + a.childNodes.length + " " + a.attributes.one + a.attributes.two);
trace(a.childNodes[1].nodeValue + " " + a.childNodes[1].nodeType + " " + a.nodeType);
trace(a.lastChild.firstChild.nodeName + " " + a.lastChild.previousSibling.nodeType + " " + a.firstChild.nextSibling.nodeValue.length);
trace(a.firstChild.parentNode === a);
var e = x.createElement("new"); e.attributes.k = "\"v\""; e.appendChild(x.createTextNode("<raw>"));
a.insertBefore(e, a.lastChild); a.firstChild.removeNode();
trace(a);
var again = new XML(x.toString()); trace(again.toString() == x.toString());
var copy = a.cloneNode(true), flat = a.cloneNode(false); copy.attributes.one = "9"; trace(a.attributes.one + " " + copy.childNodes.length + " " + flat.childNodes.length + " " + copy.parentNode);
a.lastChild.appendChild(a.firstChild); trace(a.lastChild.lastChild.nodeValue + " " + a.childNodes.length);
var white = new XML(); white.ignoreWhite = true; white.parseXML("<r>\n  <s/>\n  <t> x </t>\n</r>"); trace(white);
trace(new XML("<a><b></a>").status + " " + new XML("<a").status + " " + new XML("</a>").status);
trace(new XML("").firstChild + " " + new XML("<!-- only --><a/>").firstChild.nodeName + " " + new XML("<![CDATA[<raw>]]>").firstChild.nodeValue);
