package {
import flash.display.DisplayObject;
import flash.display.Sprite;
import flash.events.Event;
import flash.events.UncaughtErrorEvent;
import flash.geom.Point;
import flash.utils.describeType;
import flash.utils.setTimeout;

// What the player tells of its own classes, and what it says when they are called wrongly.
public class describing extends Sprite {
    public function describing() {
        var type:XML = describeType(Sprite);
        trace(type.factory.accessor.(@name == "x").toXMLString());
        trace(type.factory.accessor.(@name == "stage").toXMLString());
        trace(type.factory.method.(@name == "addChild").toXMLString());
        trace(type.factory.method.(@name == "startDrag").toXMLString());
        trace(describeType(Point).method.(@name == "polar").toXMLString());
        trace(describeType(Point).factory.constructor.toXMLString());
        trace(describeType(Event).constant.(@name == "ADDED").toXMLString());
        trace(describeType(new Vector.<int>).accessor.(@name == "length").@type);
        trace(describeType(flash.events.IEventDispatcher).factory.method.(@name == "willTrigger").toXMLString());

        var any:* = this;
        failing(function():void { any.addChild(); });
        failing(function():void { any.addChild(this, 1, 2); });
        failing(function():void { any.addChild(new Point); });
        failing(function():void { any.mask = new Point; });
        failing(function():void { any.addEventListener("a", "b"); });
        failing(function():void { new Point(1, 2, 3); });
        failing(function():void { Point.distance(new Point, "far"); });
        failing(function():void { any is any; });
        failing(function():void { any as (5 as Object); });
        failing(function():void { undefined instanceof Sprite; });

        loaderInfo.uncaughtErrorEvents.addEventListener(UncaughtErrorEvent.UNCAUGHT_ERROR, heard);
        setTimeout(function():void { throw new Error("nobody caught this"); }, 10);
        setTimeout(function():void { trace("what comes later runs"); }, 20);
    }

    private function failing(work:Function):void {
        try { work(); trace("passed"); } catch (e:Error) { trace(e.name, e.errorID); }
    }

    private function heard(event:UncaughtErrorEvent):void {
        trace(event.type, event.error.message, event.cancelable);
        event.preventDefault();
    }
}
}
