// movie: version="10" rate="20"
// Nobody chooses files here: the list is empty from the moment on that it is asked for.
import flash.net.*;
var files:FileReferenceList = new FileReferenceList();
files.addEventListener("cancel", function(e:*):void { trace("cancel", files.fileList.length); });
trace(files.fileList, files.browse(), files.fileList.length);
