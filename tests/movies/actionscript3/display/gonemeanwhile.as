// movie: version="10" rate="20"
// A place among the children is asked for as a number, and the answer may change the children.
import flash.display.*;
import flash.events.*;
function names(parent:DisplayObjectContainer):String
{
    var all:Array = [];
    for (var i:int = 0; i < parent.numChildren; i++) all.push(parent.getChildAt(i).name);
    return "[" + all.join(" ") + "]";
}
function filled(count:int):Sprite
{
    var parent:Sprite = new Sprite();
    for (var i:int = 0; i < count; i++) {
        var child:Sprite = new Sprite();
        child.name = String.fromCharCode(97 + i);
        parent.addChild(child);
    }
    return parent;
}
/// A number that empties a container when it is asked for.
function emptying(parent:Sprite, number:int, left:int = 0):Object
{
    return {valueOf: function():Object {
        while (parent.numChildren > left) parent.removeChildAt(parent.numChildren - 1);
        return number;
    }};
}
function attempt(name:String, work:Function):void
{
    var parent:Sprite = filled(4);
    try {
        work(parent, parent);
        trace(name, names(parent));
    } catch (error:Error) {
        trace(name, error.name, error.errorID, names(parent));
    }
}
attempt("getChildAt", function(parent:Sprite, any:Object):void { any.getChildAt(emptying(parent, 3)); });
attempt("removeChildAt", function(parent:Sprite, any:Object):void { any.removeChildAt(emptying(parent, 2, 1)); });
attempt("removeChildren", function(parent:Sprite, any:Object):void { any.removeChildren(0, emptying(parent, 3)); });
attempt("removeChildren from", function(parent:Sprite, any:Object):void { any.removeChildren(emptying(parent, 1, 2), 1); });
attempt("swapChildrenAt", function(parent:Sprite, any:Object):void { any.swapChildrenAt(3, emptying(parent, 0, 1)); });
attempt("addChildAt", function(parent:Sprite, any:Object):void { any.addChildAt(new Sprite(), emptying(parent, 4)); });
attempt("setChildIndex of one that has left", function(parent:Sprite, any:Object):void {
    any.setChildIndex(parent.getChildAt(0), emptying(parent, 0));
});
attempt("setChildIndex of one that has moved on", function(parent:Sprite, any:Object):void {
    var other:Sprite = new Sprite(), child:DisplayObject = parent.getChildAt(1);
    try {
        any.setChildIndex(child, {valueOf: function():Object { other.addChild(child); return 0; }});
    } finally {
        trace("  its parent is the other", child.parent == other, other.numChildren);
    }
});

// The same in listeners that are told of a change while it is being made.
attempt("removed by the one before", function(parent:Sprite, any:Object):void {
    var last:DisplayObject = parent.getChildAt(3);
    parent.getChildAt(0).addEventListener(Event.REMOVED, function(e:Event):void { parent.removeChild(last); });
    parent.removeChildren(0, 3);
});
attempt("put elsewhere while it leaves", function(parent:Sprite, any:Object):void {
    var other:Sprite = new Sprite(), third:Sprite = new Sprite(), child:DisplayObject = parent.getChildAt(1);
    var told:int = 0;
    child.addEventListener(Event.REMOVED, function(e:Event):void {
        if (++told == 1) other.addChild(child);
    });
    third.addChild(child);
    trace("  told", told, "in one place only", other.numChildren + third.numChildren == 1, names(child.parent) == "[b]");
});
attempt("added back while it leaves", function(parent:Sprite, any:Object):void {
    var child:DisplayObject = parent.getChildAt(0);
    child.addEventListener(Event.ADDED, function(e:Event):void {
        child.removeEventListener(Event.ADDED, arguments.callee);
        parent.removeChild(child);
    });
    parent.removeChild(child);
    parent.addChild(child);
    trace("  it has no parent", child.parent == null);
});
// What holds another cannot go into it, even when that came about on the way.
attempt("a circle", function(parent:Sprite, any:Object):void {
    var inner:Sprite = Sprite(parent.getChildAt(0));
    try {
        inner.addChild(parent);
    } catch (error:ArgumentError) {
        trace("  refused", error.errorID);
    }
    try {
        inner.addChild(inner);
    } catch (error:ArgumentError) {
        trace("  refused", error.errorID);
    }
});
