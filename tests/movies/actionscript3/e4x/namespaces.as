// movie: version="10" rate="20"
var x:XML = <r xmlns:p="urn:p" xmlns="urn:d"><p:a p:k="v" plain="w">1</p:a><a>2</a></r>;
var p:Namespace = new Namespace("urn:p");
var d:Namespace = new Namespace("urn:d");
trace(x.p::a, x.d::a, x.*::a.length(), x.p::a.@p::k, x.p::a.@plain);
trace(x.a.length(), x.name(), x.localName(), x.namespace(), x.p::a.name().uri);
default xml namespace = "urn:d";
trace(<made/>.namespace().uri, new QName("plain").uri);
default xml namespace = new Namespace("");
trace(<made/>.namespace().uri.length);
trace(x.namespaceDeclarations().length, x.p::a.namespace().prefix);
var q:QName = new QName(p, "a");
trace(q, q.localName, x[q], x.descendants(q).length());
trace(x.elements(new QName("urn:d", "a")));
function spaced(fails:Boolean):String {
    default xml namespace = "urn:f";
    if (fails) throw new Error((<a/>).name().uri);
    return inner() + (<a/>).name().uri;
}
function inner():String { default xml namespace = "urn:i"; return (<a/>).name().uri + " "; }
trace(spaced(false), "[" + (<a/>).name().uri + "]");
try { spaced(true); } catch (e:Error) { trace(e.message, "[" + (<a/>).name().uri + "]"); }

// A prefix stands for one namespace, and what names something stays.
var bound:XML = <a xmlns:p="urn:1"><b xmlns:p="urn:1"/><p:c/><d xmlns:p="urn:1" p:k="v"/></a>;
bound.removeNamespace(new Namespace("p", "urn:1"));
trace(bound.toXMLString());
bound.setNamespace(new Namespace("q", "urn:1"));
bound.setNamespace(new Namespace("q", "urn:2"));
bound.setNamespace(new Namespace("q", "urn:2"));
bound.removeNamespace("urn:2");
trace(bound.toXMLString().split("\n")[0]);
// A name keeps the prefix of the namespace that it was made of.
var prefixed:XML = <a><b at="1"/></a>;
prefixed.b.setName(new QName(new Namespace("p", "urn:p"), "c"));
prefixed.children()[0].@at.setName(new QName(new Namespace("q", "urn:q"), "d"));
trace(prefixed.toXMLString());
var named:XML = <z/>;
named.setName(prefixed.children()[0].name());
trace(named.toXMLString());
