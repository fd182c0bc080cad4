// movie: version="8" rate="10"
// What the player says of itself is what a player with a window on this system would.
trace(System.capabilities.playerType + " " + typeof System.capabilities.version + " " + typeof $version + " " + (System.capabilities.screenResolutionX > 0));
trace(typeof System.security + " " + typeof System.setClipboard + " " + typeof System.showSettings);
trace((System.capabilities.language.length == 2) + " " + System.capabilities.hasAudio + " " + System.capabilities.isDebugger);
trace($version.split(",").length + " " + (getVersion() == $version) + " " + (parseInt($version.split(" ")[1]) >= 8));
