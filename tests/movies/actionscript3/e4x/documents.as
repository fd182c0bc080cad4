// movie: version="10" rate="20"
function attempt(text:String):void
{
    try {
        trace(new XML(text).toXMLString());
    } catch (error:Error) {
        trace(error.errorID);
    }
}

XML.prettyPrinting = false;
// One element counts, whatever stands beside it; without one there is to be one node.
attempt("text <a/> more");
attempt("<a/><b/>");
attempt("<![CDATA[x]]>text");
attempt("<![CDATA[ x ]]>");
// What follows the name in an end is passed over.
attempt("<a></a b='c'>");
attempt("<a></a />");
attempt("<a></b />");

// Sections stay sections, and their text counts.
var sections:XML = <a><![CDATA[<b>]]></a>;
trace(sections.toXMLString(), sections.toString(), sections.children()[0].nodeKind());

// Texts become one; blank ones go.
XML.ignoreWhitespace = false;
var texts:XML = new XML("<a>x<b/>  </a>");
texts.insertChildAfter(texts.children()[0], "y");
trace(texts.children().length(), texts.normalize().children().length(), texts.toXMLString());
XML.ignoreWhitespace = true;

// A name from an attribute stays one of an attribute.
var pair:XML = <a b="attribute"><b>element</b></a>;
trace(pair[pair.@b.name()], pair[pair.b.name()]);

// Names are given namespaces, and lose them again.
var named:XML = <a b="1"/>;
named.setName(new QName("urn:x", "c"));
trace(named.toXMLString());
named.@b.setName(new QName("urn:y", "d"));
trace(named.toXMLString());
named.setName("e");
trace(named.toXMLString());
named.addNamespace(new Namespace(undefined, "urn:z"));
trace(named.namespaceDeclarations().length);

// One XML contains what equals it, never its text.
var simple:XML = <a>text</a>;
trace(simple.contains("text"), simple.contains(<a>text</a>), simple == "text");
var list:XML = <a><b>1</b><b>2</b></a>;
var attributes:XML = <a b="1" c="2"/>;
trace(list.b == attributes.attributes());
