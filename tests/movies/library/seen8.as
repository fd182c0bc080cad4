// movie: version="8" rate="10"
// Which functions of the library movies of this version see: dumps of the player tell.
function seen(name, o, list) {
  var text = name + ":", names = list.split(" "), i = 0;
  while (i < names.length) { text += " " + (typeof o[names[i]] == "undefined" ? "-" : names[i]); i++; }
  trace(text);
}
seen("TextField", TextField, "prototype getFontList StyleSheet");
ASSetPropFlags(TextField, null, 0, 16256);
seen("TextField.prototype", TextField.prototype, "replaceSel getTextFormat removeTextField getDepth replaceText addListener _listeners");
seen("StyleSheet.prototype", TextField.StyleSheet.prototype, "load parse getStyle setStyle transform update _copy");
seen("NetStream.prototype", NetStream.prototype, "play pause seek publish receiveAudio receiveVideo close send attachAudio setBufferTime");
seen("LoadVars.prototype", LoadVars.prototype, "load toString decode onLoad");
seen("security", System.security, "allowDomain allowInsecureDomain loadPolicyFile escapeDomain chooseLocalSwfPath");
seen("XML.prototype", XML.prototype, "load parseXML onData");
bitmap = System.none;
if (typeof _global != "undefined") { ASSetPropFlags(_global, "flash", 0, 16256); ASSetPropFlags(_global.flash, null, 0, 16256); ASSetPropFlags(_global.flash.display, null, 0, 16256); bitmap = _global.flash.display.BitmapData; }
seen("BitmapData", bitmap, "prototype loadBitmap");
seen("BitmapData.prototype", bitmap.prototype, "draw copyPixels compare dispose");
trace(Date.prototype.valueOf == Date.prototype.getTime);
