// movie: version="10" rate="20"
import flash.display.*;
import flash.media.*;
var t:SoundTransform = new SoundTransform(0.5, -0.5);
trace(t.volume, t.pan.toFixed(3), t.leftToLeft.toFixed(3), t.rightToRight.toFixed(3));
t.leftToRight = 1; trace(t.pan);
var s:Sprite = new Sprite();
trace(s.soundTransform.volume);
s.soundTransform = new SoundTransform(0.333); trace(s.soundTransform.volume, s.soundTransform === s.soundTransform);
SoundMixer.soundTransform = new SoundTransform(2); trace(SoundMixer.soundTransform.volume);
try { new Sound().play(); } catch (e:ArgumentError) { trace(e.errorID); }
try { s.soundTransform = null; } catch (e:TypeError) { trace(e.errorID); }
trace(Microphone.getMicrophone(), Camera.getCamera(), SoundMixer.bufferTime);
