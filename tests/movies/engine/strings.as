// movie: version="8" rate="10"
var s = "Hello, Мир";
trace(s.length + " " + s.charAt(0) + s.charAt(7) + "<" + s.charAt(99) + "><" + s.charAt(-1) + ">");
trace(s.charCodeAt(7) + " " + s.charCodeAt(99) + " " + s.charCodeAt(-1));
trace(s.indexOf("l") + " " + s.indexOf("l", 3) + " " + s.indexOf("l", 4) + " " + s.indexOf("l", -5) + " " + s.indexOf(""));
trace(s.lastIndexOf("l") + " " + s.lastIndexOf("l", 2) + " " + s.lastIndexOf("q") + " " + s.lastIndexOf("l", 1));
trace("<" + s.slice(1, 3) + "><" + s.slice(-3) + "><" + s.slice(-3, -1) + "><" + s.slice(5, 2) + "><" + s.slice(20) + ">");
trace("<" + s.substring(1, 3) + "><" + s.substring(3, 1) + "><" + s.substring(-3, 2) + "><" + s.substring(8) + ">");
trace("<" + s.substr(1, 3) + "><" + s.substr(-3, 2) + "><" + s.substr(7) + "><" + s.substr(2, -4) + "><" + s.substr(2, 0) + ">");
trace(s.toUpperCase() + " " + s.toLowerCase());
trace("a,b,,c".split(",").length + " " + "a,b,,c".split(",").join("|") + " " + "abc".split("") + " " + "abc".split().length + " " + "".split(",").length);
trace("a,b,c".split(",", 2) + " " + "a--b--c".split("--"));
trace("a".concat("b", 1, null, true) + " " + String.fromCharCode(72, 105, 1071) + " <" + String.fromCharCode() + ">");
trace(("b" > "a") + " " + ("abc" < "abcd") + " " + ("Z" < "a") + " " + ("я" > "z"));
trace("tab\tquote\"back\\ \x41\u0416");
trace(escape("a b&c=д?/.-_~") + " " + unescape("%41%20b+c") + " " + escape("@*"));
var obj = new String("xyz"); trace(typeof obj + " " + obj.length + " " + obj.charAt(1) + " " + (obj == "xyz") + " " + (obj + "!"));
trace("abc".length + " " + "abc"["length"] + " " + "abc".nothing);
trace(substring("abcdef", 2, 3) + length("four") + chr(66) + ord("A"));
// Numbers in text: 15 digits, no zeros at the end.
trace(0.1 + 0.2); trace(1 / 3); trace(100 / 3); trace(1e21); trace(123456789012); trace(-0.5); trace(1e100); trace(5e-324 > 0);
trace((255).toString(16) + " " + (255).toString(2) + " " + (-255).toString(16) + " " + (35).toString(36) + " " + (3.7).toString());
