// movie: version="10" rate="20"
// Each method of XML and XMLList once, with what the standard says of it.
XML.prettyPrinting = false;
function id(what:Function):String {
    try { return String(what()); } catch (e:Error) { return "#" + e.errorID; }
    return "";
}
function book():XML { return <book lang="ru"><title>One</title><!--note--><author first="A"/><title>Two</title></book>; }

// ---- what is asked ----
var b:XML = book();
trace(b.attribute("lang"), b.attribute("*").length(), b.attributes().length(), b.attribute("none").length());
trace(b.child("title").length(), b.child(1).toXMLString(), b.child("*").length(), b.child(9).length());
trace(b.elements().length(), b.elements("title")[1], b.descendants().length(), b.descendants("title").length());
trace(b.childIndex(), b.author.childIndex(), b.title[1].childIndex(), b.@lang.childIndex());
trace(b.nodeKind(), b.@lang.nodeKind(), b.title[0].children()[0].nodeKind());
trace(b.length(), b.title.length(), b.parent() === undefined, b.title.parent().name(), b.title[0].text().parent().name());
trace(b.hasOwnProperty("title"), b.hasOwnProperty("@lang"), b.hasOwnProperty("none"), b.title.hasOwnProperty("0"));
trace(b.propertyIsEnumerable("0"), b.propertyIsEnumerable("1"), b.title.propertyIsEnumerable("1"), b.title.propertyIsEnumerable("2"));
trace(b.hasComplexContent(), b.hasSimpleContent(), b.author.hasSimpleContent(), b.none.hasSimpleContent());
trace(b.text().length(), b.title.text(), b.comments().length(), b.processingInstructions().length());
trace(b.localName(), b.title[0].text()[0].name(), b.@lang.localName(), b.toString() == b.toXMLString());
trace(b.contains(b), b.contains(book()), b.title.contains(<title>Two</title>), b.title.contains(<title/>));
var twin:XML = b.copy();
twin.title[0] = "Three";
trace(b.title[0], twin.title[0], twin.parent() === undefined, b.title.copy().length(), b === b.valueOf());

// ---- what is changed ----
b.appendChild(<tail/>);
b.prependChild(<head/>);
trace(b.*.length(), b.children()[0].name(), b.children()[b.*.length() - 1].name());
trace(b.insertChildAfter(null, <first/>) === b, b.insertChildBefore(null, <last/>) === b, b.children()[0].name());
trace(b.insertChildAfter(b.head[0], "x") === b, b.insertChildBefore(<stranger/>, "y"), b.child(2));
b.replace("title", <name>T</name>);
trace(b.title.length(), b.name.length(), b.name);
b.replace(0, "zero").replace("@lang", "ignored");
trace(b.child(0), b.@lang);
b.setChildren(<a/> + <c/>);
trace(b.toXMLString());
b.setChildren("text");
trace(b.toXMLString(), b.hasSimpleContent());
b.setLocalName("tome");
b.@lang = null;
trace(b.toXMLString());
b.@["a-b"] = 1;
delete b.@lang;
trace(b.toXMLString(), b.@*.toXMLString());
b.setName("volume");
b.normalize();
trace(b.name(), b.localName());

// ---- lists ----
var shelf:XML = <shelf><book n="1"/><book n="2"/><disc/><book n="3"/></shelf>;
shelf.book[1].@n = "two";
shelf.book[3] = <book n="4"/>;
trace(shelf.book.@n.toXMLString().split("\n").join(), shelf.book.length(), shelf.children()[4].@n);
shelf.book = <book n="only"/>;
trace(shelf.toXMLString());
shelf.book += <book n="more"/>;
shelf.@owner = "me";
trace(shelf.book.length(), shelf.toXMLString());
delete shelf.book[0];
delete shelf.*[9];
trace(shelf.toXMLString());
shelf.pen.@colour = "red";
shelf.box.lid.hinge = "brass";
trace(shelf.toXMLString());
trace(id(function():* { shelf.none.@x = 1; return shelf.none.@x; }), shelf.none.length());
var joined:XMLList = shelf.pen + shelf.box + <loose/>;
joined[0].@colour = "blue";
trace(joined.length(), shelf.pen.@colour, joined.name == undefined, id(function():* { return joined.name(); }));
trace(id(function():* { return joined.appendChild(<a/>); }), id(function():* { return new XMLList().name(); }), new XMLList().toString() == "");
var empty:XMLList = new XMLList();
empty += <one/>;
empty[1] = <two/>;
trace(empty.toXMLString().split("\n").join(), id(function():* { return empty[5] = <far/>; }), empty.length());

// ---- as values ----
trace(<n>5</n> + 1, <n>5</n> * 2, Number(<n>5</n>), int(<n a="7"/>.@a), Boolean(<n/>), Boolean(new XMLList()));
trace(<n>5</n> < 6, <n>a</n> == "a", <n>a</n> === "a", <n/> == undefined, new XMLList() == undefined, <n/>.x == null);
trace(<a><b/></a> == <a><b/></a>, <a x="1" y="2"/> == <a y="2" x="1"/>, <a x="1"/> == <a x="2"/>, <a>1</a> == <b>1</b>);
trace(typeof <a/>, typeof <a/>.@x, <a/> is XML, <a/>.b is XMLList, <a/> instanceof XML, (<a/> as XMLList) == null);
trace(XML("<a/>").toXMLString(), XML("plain").nodeKind(), XML("").nodeKind(), XML(null).length(), new XML().toXMLString() == "");
trace(id(function():* { return XML("<a><b></a>"); }), id(function():* { return XML("<a"); }), id(function():* { return XML("<a x=1/>"); }),
    id(function():* { return XML("<a x='1' x='2'/>"); }), id(function():* { return XML("<p:a/>"); }), id(function():* { return new XML([1, 2]); }));

// ---- settings ----
var noisy:String = "<a> <!--c--><?p i?> <b>t</b></a>";
trace(new XML(noisy).toXMLString());
XML.ignoreComments = XML.ignoreProcessingInstructions = XML.ignoreWhitespace = false;
trace(new XML(noisy).toXMLString(), new XML(noisy).*.length());
var kept:Object = XML.settings();
XML.setSettings();
trace(XML.ignoreComments, XML.prettyPrinting, XML.prettyIndent, kept.ignoreComments, kept.prettyIndent);
XML.prettyIndent = 4;
trace(<a><b><c>1</c></b><d/>text</a>.toXMLString());
XML.setSettings(kept);
trace(XML.ignoreWhitespace, XML.prettyPrinting, XML.prettyIndent, XML.defaultSettings().prettyIndent);
XML.setSettings(XML.defaultSettings());
trace(<a>{"<&>\"'"}</a>.toXMLString(), <a b={"<&>\"'\n\t"}/>.toXMLString());

// ---- walking while it changes ----
var walked:XML = <w><i/><i/><i/></w>, count:int = 0;
for each (var i:XML in walked.i) {
    walked.appendChild(<i/>);
    if (++count > 10) break;
}
trace(count, walked.i.length());
for (var key:String in walked.i) delete walked.i[0];
trace(walked.i.length() < 6);

// ---- what is put in the place of something is a copy; what is inserted is the thing itself ----
var part:XML = <n/>;
var whole:XML = <a id="1"><b/><b/><c/></a>;
whole.replace("b", part);
whole.insertChildBefore(whole.c[0], part);
part.@late = "yes";
trace(whole.toXMLString(), part.parent() === whole);
whole.replace("1", "text").replace("none", <lost/>).replace(9, <end/>).replace("end", whole.@id);
trace(whole.toXMLString());
whole.setChildren(part);
part.@late = "no";
whole.appendChild(whole.@id);
trace(whole.toXMLString(), whole.@id.length());
trace(id(function():* { return whole.none.name(); }), id(function():* { return whole.n.(@absent == 1); }));
try { whole.n.(@absent == 1); } catch (e:Error) { trace(e.message); }
var watched:XML = <a><b at="1">old</b><c/></a>;
var told:Function = function(current:Object, change:String, target:Object, value:Object, detail:Object):void {
	trace(change, current.name(), target.name(), value is XML ? value.toXMLString() : value, detail is XML ? detail.toXMLString() : detail);
};
watched.setNotification(told);
trace(watched.notification() === told, watched.b[0].notification());
watched.b.@at = 2;
watched.b.@more = "m";
delete watched.b.@more;
watched.b = "new";
watched.d = "made";
watched.appendChild(<e/>);
watched.c[0] = <c2/>;
delete watched.e;
delete watched.d[0];
watched.b[0].setName("bb");
watched.bb[0].setLocalName("b");
watched.b[0].setNamespace(new Namespace("p", "urn:p"));
watched.addNamespace(new Namespace("q", "urn:q"));
watched.replace("c2", <c3/>);
watched.setChildren(<only/>);
watched.setNotification(null);
watched.x = 1;
trace(watched.notification());
try { watched.setNotification(5); } catch (e:Error) { trace(e.errorID); }
// What hears may change the document again.
watched.setNotification(function(current:XML, change:String, target:XML, value:Object, detail:Object):void {
	if (current.children().length() < 5) current.appendChild(<again/>);
});
watched.y = 1;
trace(watched.children().length());
