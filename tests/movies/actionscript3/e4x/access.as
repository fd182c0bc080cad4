// movie: version="10" rate="20"
var x:XML = <shop><item id="1" price="5">pen</item><item id="2" price="20">book</item><box><item id="3" price="7">cup</item></box></shop>;
trace(x.item.length(), x..item.length(), x.item[1], x.item[0].@id, x.item.@id.toXMLString().split("\n"));
trace(x.item.(@price > 10), x..item.(@price < 10).length(), x.item.(text() == "pen").@id);
trace(x.*.length(), x.box.item.@*.length(), x.@missing.length(), x.nothing.length(), x.item[0].@*[1]);
trace(x.item[0].name(), x.item[0].parent().name(), x.item[1].childIndex(), x.box.item.@["id"]);
x.item[0] = "pencil"; x.item[1].@price = 25; x.item[0].@color = "red";
trace(x.item[0].toXMLString(), x.item[1].@price);
x.added = "new"; x.box.item += <item id="4">lid</item>;
trace(x.added, x..item.length(), x.box.item[1]);
delete x.item[0]; delete x.item.@price;
trace(x.item.length(), x.item.@price.length());
x.appendChild(<tail/>); x.prependChild(<head/>);
trace(x.children()[0].name(), x.children()[x.children().length() - 1].localName());
for each (var i:XML in x..item) trace(i.@id);
for (var k:String in x.box.item) trace(k);
trace(x.hasSimpleContent(), x.added.hasSimpleContent(), x.hasComplexContent(), typeof x, typeof x.item);
trace(x.item == "book", <a>1</a> == 1, <a/> == <a/>);
