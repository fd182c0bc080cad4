// Parsing, the tree, namespaces and writing back.
var doc = new XML("<?xml version=\"1.0\"?><!DOCTYPE list [<!ELEMENT a ANY>]><list kind='x &amp; y'><a/>text &lt;b&gt;<!-- gone --><![CDATA[<raw>]]></list>");
trace(doc.status + " " + doc.xmlDecl + " " + doc.docTypeDecl);
var list = doc.firstChild;
trace(list.nodeName + " " + list.nodeType + " " + list.attributes.kind + " " + list.childNodes.length);
trace(list.childNodes[1].nodeValue + "|" + list.lastChild.nodeValue + "|" + list.lastChild.nodeType);
trace(doc);
trace(list.firstChild.nextSibling.previousSibling.nodeName + " " + list.firstChild.previousSibling + " " + list.parentNode.nodeName);

// Moving nodes keeps one parent each, and never makes a circle. Appending what is there already is refused.
var other = doc.createElement("b");
other.attributes.n = 1;
list.insertBefore(other, list.firstChild);
list.appendChild(list.childNodes[1]);
list.firstChild.appendChild(list);
trace(list);
other.removeNode();
trace(list.hasChildNodes() + " " + other.parentNode + " " + list.childNodes.length);
var copy = list.cloneNode(true);
copy.childNodes[1].nodeValue = "changed";
trace(copy + " " + list.childNodes[1].nodeValue + " " + list.cloneNode(false));

var spaces = new XML();
spaces.parseXML("<r xmlns='urn:r' xmlns:p='urn:p'><p:c/><d xmlns='urn:d'/></r>");
var c = spaces.firstChild.firstChild;
trace(c.prefix + " " + c.localName + " " + c.namespaceURI + " " + c.nextSibling.namespaceURI);
trace(c.getNamespaceForPrefix("p") + " " + c.getPrefixForNamespace("urn:p") + " " + c.getNamespaceForPrefix("q"));

// White space between elements goes only when asked, and errors are numbered.
var white = new XML();
white.ignoreWhite = true;
white.parseXML("<a> <b> x </b>\n</a>");
trace(white.firstChild.childNodes.length + "[" + white.firstChild.firstChild.firstChild.nodeValue + "]");
var broken = ["<a>", "</a>", "<a b=\"1>", "<a b=1/>", "<!-- x", "<![CDATA[ x", "<?xml", "<!DOCTYPE", "<a><b></a>", "fine"];
var codes = [];
for (var i = 0; i < broken.length; i++) codes.push(new XML(broken[i]).status);
trace(codes.join(" "));
// What stands before an error is kept.
trace(new XML("<a><b>1</b><c").firstChild.firstChild.firstChild.nodeValue);
