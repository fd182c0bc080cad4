// movie: version="10" rate="20"
function kind(value:*):String {
    switch (value) {
        case 1: return "one";
        case "1": return "text one";
        case null: return "null";
        case undefined: return "undefined";
        case true:
        case false: return "boolean";
        default: return "other";
    }
}
trace(kind(1), kind("1"), kind(null), kind(undefined), kind(true), kind(2));
var log:String = "";
for (var i:int = 0; i < 6; i++) {
    switch (i) {
        default: log += "d";
        case 1: log += "1"; break;
        case 2: log += "2"; continue;
        case 3: log += "3";
        case 4: log += "4"; break;
    }
    log += ".";
}
trace(log);
switch (3) { }
switch (2) { case 1: trace("never"); }
switch ("b" + "c") { case "bc": trace("computed"); }
function expensive():int { trace("asked"); return 1; }
switch (1) { case expensive(): trace("got it"); break; case expensive(): trace("not again"); }
