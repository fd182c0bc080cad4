// movie: version="17" rate="20"
import flash.geom.Point;
import flash.utils.ByteArray;
import flash.utils.escapeMultiByte;
import flash.utils.unescapeMultiByte;
function attempt(work:Function):void
{
    try {
        trace(work());
    } catch (error:Error) {
        trace(error.errorID);
    }
}

// Behind holes it is the last element that goes.
var list:Array = [1, 2];
list.length = 4;
trace(list.pop(), list.length, list.pop(), list.length, list[0]);

// What matches nothing parts nothing, and groups come whole.
trace("abc".split(/x*/).length, "a1b2c".split(/(\d)/, 1).join());
var pattern:RegExp = /a/g;
pattern.lastIndex = 1;
trace("aaa".replace(pattern, "b"), pattern.lastIndex);
attempt(function():* { return RegExp.prototype.toString.call({}); });

trace("\u0130".toLowerCase(), String.fromCharCode(0xD800) == "\uD800");
trace(escapeMultiByte("a-\u0436"), unescapeMultiByte("%D0%B6%GAb"));

var bytes:ByteArray = new ByteArray();
bytes.writeMultiByte("\u0436\u0449", "windows-1251");
trace(bytes.length, bytes[0]);
bytes.position = 0;
trace(bytes.readMultiByte(2, "windows-1251") == "\u0436\u0449");
bytes.clear();
bytes.writeByte(0xFF);
bytes.writeByte(0xFE);
bytes.writeByte(0x36);
bytes.writeByte(0x04);
trace(bytes.toString() == "\u0436");

// A prototype that was taken away is made anew.
var made:Function = function():* {};
made.prototype = null;
trace(made.prototype);
new made();
trace(made.prototype);

trace(new Date({valueOf: function():* { return "Tue Feb 1 05:12:30 2005"; }}).time);
attempt(function():* { return new Namespace(null, "").uri; });

// Most classes take no properties beyond their own.
attempt(function():* { return new Point()["other"]; });
var point:Object = new Point();
attempt(function():* { return delete point.other; });

var fixed:Vector.<int> = new <int>[1, 2, 3];
fixed.fixed = true;
fixed.splice(0, 2);
trace(fixed.length);

// Beside a text an object is a text, whatever its value would be; dates are texts always.
var valued:Object = {valueOf: function():* { return 1; }};
trace("" + valued, 1 + valued, typeof (new Date(0) + 1));

// Months have names between slashes, too; what is said twice or cannot be is no date.
trace(new Date("Apr/03/1988 15:30:17").fullYear, new Date("Sat Apr 30 77").fullYear);
trace(new Date("Sat Jan 70 77").time, new Date("Sat Jan 30 77 Apr/03/1988").time);

ByteArray.defaultObjectEncoding = 0;
trace(new ByteArray().objectEncoding, bytes.objectEncoding);
ByteArray.defaultObjectEncoding = 3;

// What moves in an array takes what the prototype has in its place along.
Array.prototype[3] = "inherited";
var gaps:Array = new Array(5);
gaps.splice(0, 1);
trace(gaps.join(), gaps.hasOwnProperty(2));
delete Array.prototype[3];
// What a vector of anything takes from a list is an object or null.
trace(Vector.<*>([undefined, null, 1]).join());
