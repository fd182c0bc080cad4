// movie: version="5" rate="10"
// Version 5: bytes for characters, texts of nothing, and fields that are no objects.
trace("ab".charCodeAt(1) + " " + "ab".charCodeAt(2) + " " + "ab".charCodeAt(-1));
trace(unescape("") + " " + unescape("%41") + " " + unescape("%"));
trace(length(chr(256)) + " " + length(mbchr(256)) + " " + length(mbchr(0x141)) + " " + chr(0x141));
this.createTextField("field", 1, 0, 0, 100, 100);
trace(typeof(field) + " " + field);
field.note = "kept";
trace(note);
fscommand("quit");
