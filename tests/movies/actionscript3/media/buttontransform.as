// movie: version="15" width="100" height="100" rate="10" document="Main"
// A button has no sounds below it: its transform is that of everything; a sprite's is its own.
package {
    import flash.display.*; import flash.media.*;
    public class Main extends Sprite
    {
        public function Main()
        {
            var button:SimpleButton = new SimpleButton(), sprite:Sprite = new Sprite();
            button.soundTransform = new SoundTransform(0.5, 0);
            trace(SoundMixer.soundTransform.volume, new SimpleButton().soundTransform.volume, sprite.soundTransform.volume);
            sprite.soundTransform = new SoundTransform(0.25, 0);
            trace(SoundMixer.soundTransform.volume, button.soundTransform.volume);
            try { button.soundTransform = null; } catch (e:TypeError) { trace(e.errorID); }
        }
    }
}
