// movie: version="10" rate="20"
import flash.utils.*;
class Described { public var v:int; public const C:String = "c"; public function m(a:int, b:String = null):void {} public function get g():Number { return 0; } }
trace(getQualifiedClassName("s"), getQualifiedClassName(1), getQualifiedClassName(1.5), getQualifiedClassName([]), getQualifiedClassName(new <int>[]));
trace(getDefinitionByName("flash.utils.ByteArray"), getDefinitionByName("Array") == Array);
try { getDefinitionByName("no.such.Thing"); } catch (e:ReferenceError) { trace(e.errorID); }
var x:XML = describeType(new Described());
trace(x.variable.@name, x.variable.@type, x.constant.@name, x.accessor.@access, x.method.(@name == "m").@returnType, x.method.parameter.length(), x.method.parameter[1].@optional);
trace(getQualifiedSuperclassName(new ByteArray()), getQualifiedClassName(null), getQualifiedClassName(undefined));

// A method taken from its object is of a class of its own, is no constructor, and no name is no definition.
function reason(what:Function):String { try { what(); } catch (e:Error) { return e.message; } return ""; }
var taken:Function = new ByteArray().clear;
trace(getQualifiedClassName(taken), getQualifiedClassName(function():void {}), describeType(taken).@name);
trace(reason(function():void { new taken(); }));
trace(reason(function():void { var bytes:ByteArray = ByteArray(Object(taken)); }));
trace(reason(function():void { getDefinitionByName(null); }));
