// movie: version="13" rate="20" document="Main"
// Loaded texts are in UTF-8, or in the system's code when a script says so; marks say it themselves. And what
// would be sent keeps its settings.
package {
    import flash.display.*; import flash.events.*; import flash.media.*; import flash.net.*; import flash.system.*;
    public class Main extends Sprite
    {
        private function load(address:String, next:Function):void
        {
            var loader:URLLoader = new URLLoader();
            loader.addEventListener("complete", function(e:Event):void { next(loader.data); });
            loader.load(new URLRequest(address));
        }
        public function Main()
        {
            load("codepage1251.txt", function(text:String):void {
                trace("plain", text == "Привет, мир");
                System.useCodePage = true;
                load("codepage1251.txt", function(again:String):void {
                    trace("coded", again == "Привет, мир", again);
                    System.useCodePage = false;
                    load("codepage1251.txt", function(last:String):void { trace("plain again", last == text); });
                });
            });
            var options:MicrophoneEnhancedOptions = new MicrophoneEnhancedOptions();
            trace(options.mode == MicrophoneEnhancedMode.FULL_DUPLEX, options.echoPath, options.nonLinearProcessing);
            var settings:H264VideoStreamSettings = new H264VideoStreamSettings();
            settings.setMode(320, 240, 30); settings.setQuality(1000, 80); settings.setKeyFrameInterval(4);
            settings.setProfileLevel(H264Profile.MAIN, H264Level.LEVEL_3_1);
            trace(settings.codec, settings.width, settings.height, settings.fps, settings.bandwidth, settings.quality, settings.keyFrameInterval);
            trace(settings.profile, settings.level, new VideoStreamSettings().codec);
            try { settings.setProfileLevel("high", "1"); } catch (e:Error) { trace(e.errorID); }
            try { settings["width"] = 5; } catch (e:Error) { trace(e.errorID); }
        }
    }
}
