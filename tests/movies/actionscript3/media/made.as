// movie: version="10" rate="20" document="Main"
// A sound that the script makes as it plays: 441 Hz, left twice as loud as right, for three quarters of a second.
package {
    import flash.display.Sprite;
    import flash.events.*;
    import flash.media.*;
    import flash.utils.ByteArray;
    public class Main extends Sprite
    {
        private const LENGTH:int = 33075;
        private var made:int = 0;
        private var frames:int = 0;
        private var firstPosition:Number = -1;
        public function Main()
        {
            var sound:Sound = new Sound();
            try { sound.play(); } catch (e:ArgumentError) { trace(e.errorID); }
            sound.addEventListener(SampleDataEvent.SAMPLE_DATA, onSamples);
            var channel:SoundChannel = sound.play();
            channel.addEventListener(Event.SOUND_COMPLETE, function(e:Event):void { trace("complete", made); });
            addEventListener(Event.ENTER_FRAME, onFrame);
        }
        private function onSamples(event:SampleDataEvent):void
        {
            if (firstPosition < 0) trace("asked at", firstPosition = event.position);
            else if (event.position != made) trace("asked at", event.position, "instead of", made);
            for (var i:int = 0; i < 8192 && made < LENGTH; ++i, ++made)
            {
                var value:Number = Math.sin(made * 2 * Math.PI * 441 / 44100);
                event.data.writeFloat(value * 0.5);
                event.data.writeFloat(value * 0.25);
            }
        }
        private function onFrame(event:Event):void
        {
            if (++frames != 10) return;
            var bytes:ByteArray = new ByteArray();
            SoundMixer.computeSpectrum(bytes, false);
            var least:Number = 1, most:Number = -1;
            while (bytes.position < 1024)
            {
                var sample:Number = bytes.readFloat();
                least = Math.min(least, sample);
                most = Math.max(most, sample);
            }
            trace("wave", bytes.length, least.toFixed(2), most.toFixed(2));
            // Bins are 86.1 Hz wide: the strongest is the fifth.
            SoundMixer.computeSpectrum(bytes, true);
            var strongest:int = 0, strength:Number = 0;
            for (var bin:int = 0; bin < 256; ++bin)
            {
                sample = bytes.readFloat();
                if (sample > strength) { strongest = bin; strength = sample; }
            }
            trace("strongest", strongest);
        }
    }
}
