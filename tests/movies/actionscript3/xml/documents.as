// movie: version="10" rate="20"
import flash.xml.*;
var d:XMLDocument = new XMLDocument("<?xml version='1.0'?><a id='q' xmlns='u' xmlns:n='v'>x &lt;<n:b y=\"1\"/><!-- gone --></a>");
trace(d);
var a:XMLNode = d.firstChild;
trace(a.nodeName, a.nodeType, a.namespaceURI, a.childNodes.length, a.lastChild.prefix, a.lastChild.localName, a.lastChild.namespaceURI);
trace(a.firstChild.nodeValue, a.firstChild.nodeName, a.getPrefixForNamespace("v"), d.idMap.q === a);
var copy:XMLNode = a.cloneNode(true);
a.lastChild.removeNode(); trace(a.childNodes.length, copy.childNodes.length, copy.parentNode);
a.insertBefore(d.createElement("first"), a.firstChild); trace(a.firstChild.nextSibling.nodeValue);
a.appendChild(a.firstChild); trace(a);
copy.appendChild(copy); trace(copy.childNodes.length);
try { new XMLDocument("<a><b></a>"); } catch (e:Error) { trace(e.errorID); }
try { new XMLDocument("<a b=>"); } catch (e:Error) { trace(e.errorID); }
