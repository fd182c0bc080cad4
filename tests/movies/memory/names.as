// Names that exist only as long as somebody has them, and scripts that take them away from under a walk.

function churn() {
    var list = [];
    for (var i = 0; i < 200; i++) list["name " + i] = {number: i};
    return list.length;
}

var variables = new LoadVars();
for (var i = 0; i < 5; i++) variables["k" + (i * 7)] = "v" + i;
var plain = escape;
_global.escape = function(text) {
    for (var name in variables) if (name.charAt(0) == "k") delete variables[name];
    churn();
    return plain(text);
};
trace(variables.toString());
_global.escape = plain;

var node = new XML("<a/>").firstChild;
for (var j = 0; j < 5; j++) node.attributes["n" + (j * 3)] = "v" + j;
node.attributes.n6 = {toString: function() {
    for (var name in node.attributes) delete node.attributes[name];
    churn();
    return "gone";
}};
trace(node.toString().substr(0, 2));

var rows = [];
for (var r = 0; r < 6; r++) {
    var row = {};
    row["field" + 3] = {toString: function() { churn(); return String(10 - this.at); }, at: r};
    rows.push(row);
}
var fields = ["field" + 3];
rows.sortOn(fields);
trace(rows[0].field3.at);
