// movie: version="7" rate="10"
// An attribute that was deleted leaves a gap that whoever goes through them all must step over.
var x = new XML("<a xmlns:q='u' b='1' c='2'/>");
var n = x.firstChild;
delete n.attributes.b;
trace(n.namespaceURI);
trace(n.getNamespaceForPrefix("q"));
trace(n.getPrefixForNamespace("u"));
trace(n.toString());
delete n.attributes["xmlns:q"];
trace(n.getNamespaceForPrefix("q"));
trace(n.cloneNode(true).toString());
for (var i = 0; i < 20; i++) n.attributes["k" + i] = i;
for (var i = 0; i < 19; i++) delete n.attributes["k" + i];
trace(n.cloneNode(false).toString());
var left = "";
for (var k in n.attributes) left += k + " ";
trace(left);
