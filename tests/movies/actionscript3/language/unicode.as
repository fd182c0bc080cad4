// movie: version="10" rate="20"
var привет:String = "Привет, мир";
trace(привет, привет.length, привет.charCodeAt(0), привет.toUpperCase());
trace("ß".toUpperCase().length >= 1, "\u00e9", String.fromCharCode(1046, 65));
trace("日本語".charAt(1), "日本語".indexOf("語"));
var объект:Object = {ключ: "значение"};
trace(объект.ключ, объект["ключ"]);
