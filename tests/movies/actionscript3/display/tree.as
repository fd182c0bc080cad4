// movie: version="10" rate="20"
import flash.display.*;
var holder:Sprite = new Sprite(), a:Shape = new Shape(), b:Sprite = new Sprite();
holder.name = "holder"; a.name = "a"; b.name = "b";
trace(holder.numChildren, holder.addChild(a) == a, holder.addChild(b).name, holder.numChildren);
trace(holder.getChildAt(0).name, holder.getChildByName("b") == b, holder.getChildIndex(b), a.parent == holder);
holder.setChildIndex(b, 0); trace(holder.getChildAt(0).name);
holder.swapChildren(a, b); trace(holder.getChildAt(0).name);
holder.addChildAt(new Sprite(), 1).name = "middle"; trace(holder.getChildIndex(b));
trace(holder.contains(b), holder.contains(new Sprite()), holder.removeChildAt(1).name, holder.numChildren);
var inner:Sprite = new Sprite(); b.addChild(inner); trace(holder.contains(inner), inner.root, inner.stage);
var other:Sprite = new Sprite(); other.addChild(a); trace(holder.numChildren, a.parent == other);
try { holder.removeChild(a); } catch (e:ArgumentError) { trace(e.errorID); }
try { holder.getChildAt(9); } catch (e:RangeError) { trace(e.errorID); }
try { inner.addChild(holder); } catch (e:ArgumentError) { trace(e.errorID); }
try { inner.addChild(inner); } catch (e:ArgumentError) { trace(e.errorID); }
