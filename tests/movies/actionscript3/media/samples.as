// movie: version="10" rate="20" document="Main"
// Samples that a script gives as a whole, and asks back: half a second of 882 Hz at 22050 Hz on one channel.
package {
    import flash.display.Sprite;
    import flash.events.*;
    import flash.media.*;
    import flash.utils.*;
    public class Main extends Sprite
    {
        private var channel:SoundChannel;
        private var frames:int = 0;
        public function Main()
        {
            var bytes:ByteArray = new ByteArray();
            bytes.endian = Endian.LITTLE_ENDIAN;
            for (var i:int = 0; i < 11025; ++i) bytes.writeShort(Math.sin(i * 2 * Math.PI * 882 / 22050) * 16384);
            bytes.position = 0;
            var sound:Sound = new Sound(), bad:Sound = new Sound();
            try { bad.loadPCMFromByteArray(bytes, 10, "byte"); } catch (e:ArgumentError) { trace(e.errorID); }
            try { bad.loadPCMFromByteArray(bytes, 10, "short", true, 8000); } catch (e:ArgumentError) { trace(e.errorID); }
            try { bad.loadPCMFromByteArray(bytes, 99999, "short"); } catch (e:Error) { trace(e.errorID, bytes.position); }
            try { bad.loadPCMFromByteArray(null, 1); } catch (e:TypeError) { trace(e.errorID); }
            trace(bad.extract(new ByteArray(), 100));
            sound.loadPCMFromByteArray(bytes, 11025, "short", false, 22050);
            trace(bytes.position, sound.length, sound.bytesTotal);
            try { sound.loadPCMFromByteArray(bytes, 1); } catch (e:Error) { trace(e.errorID); }
            var taken:ByteArray = new ByteArray();
            trace(sound.extract(taken, 100), taken.length, taken.position, sound.extract(taken, 100), taken.length);
            trace(sound.extract(taken, 5000, 20000), sound.extract(taken, 5000), sound.extract(taken, 10, 999999));
            // Every other moment is as given; the first one from the thousandth on is the five hundredth.
            taken.clear(); sound.extract(taken, 2, 1025); taken.position = 8;
            trace(Math.abs(taken.readFloat() - Math.sin(513 * 2 * Math.PI * 882 / 22050) * 0.5) < 0.001,
                  taken.position = 8, taken.readFloat() == taken.readFloat());
            channel = sound.play(100, 1, new SoundTransform(0.5, 1));
            trace(channel.leftPeak, channel.rightPeak);
            channel.addEventListener(Event.SOUND_COMPLETE, function(e:Event):void {
                trace("complete", channel.leftPeak, Math.abs(channel.position - 500) < 1);
            });
            addEventListener(Event.ENTER_FRAME, onFrame);
        }
        private function onFrame(event:Event):void
        {
            if (++frames == 4) trace(channel.leftPeak < 0.01, Math.abs(channel.rightPeak - 0.35) < 0.02, channel.position > 100);
        }
    }
}
