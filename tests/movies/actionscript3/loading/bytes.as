// movie: version="12" rate="20"
// What is given as bytes comes after the script that gave them, so that it may listen then.
import flash.display.*;
import flash.net.*;
var source:URLLoader = new URLLoader();
source.dataFormat = URLLoaderDataFormat.BINARY;
source.addEventListener("complete", function(e:*):void {
	var loader:Loader = new Loader();
	loader.loadBytes(source.data);
	trace("given", loader.content);
	for each (var type:String in ["progress", "init", "complete", "ioError"])
		loader.contentLoaderInfo.addEventListener(type, function(e:*):void { trace(e.type, loader.content != null); });
});
source.addEventListener("ioError", function(e:*):void { trace(e); });
source.load(new URLRequest("guest.swf"));
// A digest that the file has not.
var checked:URLLoader = new URLLoader(), request:URLRequest = new URLRequest("guest.swf");
request.digest = "0000000000000000000000000000000000000000000000000000000000000000";
checked.addEventListener("complete", function(e:*):void { trace("taken"); });
checked.addEventListener("ioError", function(e:*):void { trace("refused"); });
checked.load(request);
