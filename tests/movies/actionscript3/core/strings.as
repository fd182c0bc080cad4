// movie: version="10" rate="20"
var s:String = "Hello, World";
trace(s.length, s.charAt(4), s.charCodeAt(0), s.indexOf("o"), s.indexOf("o", 5), s.lastIndexOf("o"), s.indexOf("z"));
trace(s.substr(7, 3), s.substr(-5), s.substring(5, 2), s.slice(-5, -2), s.slice(7));
trace(s.toUpperCase(), s.toLowerCase(), s.concat("!", 1), s.split(", ")[1], s.split("").length, s.split("l", 2));
trace(s.replace("o", "0"), s.replace(/o/g, "[$&]"), s.search("World"), s.match(/o/g).length);
trace("a" < "b", "B" < "a", "10" < "9", "abc" == "abc", "a".localeCompare("b") < 0);
trace(String.fromCharCode(72, 105), "x"["length"], "  trim ".length);
trace("a\u0000b".length, "\t|".charCodeAt(0));
trace(s.charAt(99) == "", isNaN(s.charCodeAt(99)), "".split(",").length, "a,b,".split(","));
