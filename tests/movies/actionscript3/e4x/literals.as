// movie: version="10" rate="20"
var name:String = "Ann", tag:String = "note";
var x:XML = <person name={name} age="3"><{tag}>{"<" + name + ">"}</{tag}><empty/>text &amp; more</person>;
trace(x.@name, x.@age + 1, x.note, x.empty.length(), x.children().length());
trace(x.toXMLString());
var list:XMLList = <><a/><b>2</b></>;
trace(list.length(), list[1], list.toXMLString());
trace(<a>text</a>, <a><b/></a>.toXMLString(), <a/>.toXMLString());
XML.prettyPrinting = false;
trace(x.toXMLString());
trace(<!-- c -->.nodeKind(), <?pi x?>.nodeKind(), <![CDATA[a<b]]>);
trace(<a b='1' c="2"/>.attributes().length(), 5 < 6, 7 > 3);
trace((<r>{1 + 2}{[4, 5]}</r>).toString());
