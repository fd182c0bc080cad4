// movie: version="5" rate="10"
// Version 5: separators are single characters, objects are asked for their values even when they are one.
trace("a--b".split("--") + " " + "a-b".split("-") + " " + "ab".split("").length + " " + "a,b".split(undefined, 5).length);
var asked = 0;
var probe = new Object();
probe.valueOf = function () { asked++; return this; };
trace((probe == probe) + " " + asked);
trace(Object.prototype.hasOwnProperty);
Object.prototype.hasOwnProperty = "shown";
trace(Object.prototype.hasOwnProperty);
trace(ord(chr(200)) + " " + String.fromCharCode(200).charCodeAt(0));
