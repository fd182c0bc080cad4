#include "flash/avm2/classes/Library.h"

namespace flash::avm2::classes
{

namespace
{

// The language's own classes, flash.errors, flash.utils and flash.xml.
constexpr std::string_view kSignatures = R"(
::Object
  hasOwnProperty(*=):Boolean isPrototypeOf(*=):Boolean propertyIsEnumerable(*=):Boolean
::Array
  (...) length:uint join(*=):String pop():* push(...):uint reverse():Array concat(...):Array shift():* slice(*=,*=):Array
  unshift(...):uint splice(...):* sort(...):* sortOn(*,*=,...):* indexOf(*,*=):int lastIndexOf(*,*=):int every(Function,*=):Boolean
  filter(Function,*=):Array forEach(Function,*=):void map(Function,*=):Array some(Function,*=):Boolean insertAt(int,*):void
  removeAt(int):*
::Boolean
  (*=) toString():String valueOf():Boolean
::Number
  (*=) toString(*=):String valueOf():Number toExponential(*=):String toPrecision(*=):String toFixed(*=):String
::int
  (*=) toString(*=):String valueOf():int toExponential(*=):String toPrecision(*=):String toFixed(*=):String
::uint
  (*=) toString(*=):String valueOf():uint toExponential(*=):String toPrecision(*=):String toFixed(*=):String
::String
  (*=) length-:int indexOf(String=,Number=):int lastIndexOf(String=,Number=):int charAt(Number=):String charCodeAt(Number=):Number
  concat(...):String localeCompare(String=):int match(*=):Array replace(*=,*=):String search(*=):int slice(Number=,Number=):String
  split(*=,Number=):Array substring(Number=,Number=):String substr(Number=,Number=):String toLowerCase():String
  toLocaleLowerCase():String toUpperCase():String toLocaleUpperCase():String toString():String valueOf():String ^fromCharCode(...):String
::Function
  prototype:* length-:int call(*=,...):* apply(*=,*=):*
::Class
  prototype-:*
::Namespace
  (*=,*=) prefix-:* uri-:String toString():String valueOf():*
::QName
  (*=,*=) localName-:String uri-:* toString():String valueOf():QName
::Math
  ^abs(Number):Number ^acos(Number):Number ^asin(Number):Number ^atan(Number):Number ^ceil(Number):Number ^cos(Number):Number
  ^exp(Number):Number ^floor(Number):Number ^log(Number):Number ^round(Number):Number ^sin(Number):Number ^sqrt(Number):Number
  ^tan(Number):Number ^atan2(Number,Number):Number ^pow(Number,Number):Number ^max(Number=,Number=,...):Number
  ^min(Number=,Number=,...):Number ^random():Number
::JSON
  ^parse(String,Function=):Object ^stringify(Object,*=,*=):String
::RegExp
  (*=,*=) source-:String global-:Boolean ignoreCase-:Boolean multiline-:Boolean dotall-:Boolean extended-:Boolean lastIndex:int
  exec(String=):* test(String=):Boolean
::Date
  (*=,*=,*=,*=,*=,*=,*=) fullYear:Number fullYearUTC:Number month:Number monthUTC:Number date:Number dateUTC:Number hours:Number
  hoursUTC:Number minutes:Number minutesUTC:Number seconds:Number secondsUTC:Number milliseconds:Number millisecondsUTC:Number
  day-:Number dayUTC-:Number time:Number timezoneOffset-:Number ^parse(*):Number ^UTC(*,*,*=,*=,*=,*=,*=,...):Number
  valueOf():Number toString():String toDateString():String toTimeString():String toLocaleString():String toLocaleDateString():String
  toLocaleTimeString():String toUTCString():String toJSON(String):* getTime():Number getFullYear():Number getMonth():Number
  getDate():Number getDay():Number getHours():Number getMinutes():Number getSeconds():Number getMilliseconds():Number
  getUTCFullYear():Number getUTCMonth():Number getUTCDate():Number getUTCDay():Number getUTCHours():Number getUTCMinutes():Number
  getUTCSeconds():Number getUTCMilliseconds():Number getTimezoneOffset():Number setTime(*=):Number setFullYear(*=,*=,*=):Number
  setMonth(*=,*=):Number setDate(*=):Number setHours(*=,*=,*=,*=):Number setMinutes(*=,*=,*=):Number setSeconds(*=,*=):Number
  setMilliseconds(*=):Number setUTCFullYear(*=,*=,*=):Number setUTCMonth(*=,*=):Number setUTCDate(*=):Number
  setUTCHours(*=,*=,*=,*=):Number setUTCMinutes(*=,*=,*=):Number setUTCSeconds(*=,*=):Number setUTCMilliseconds(*=):Number
::Error
  (*=,*=) .message:* .name:* errorID-:int getStackTrace():String ^getErrorMessage(int):String ^throwError(Class,uint,...):*
::XML
  (*=) ^ignoreComments:Boolean ^ignoreProcessingInstructions:Boolean ^ignoreWhitespace:Boolean ^prettyPrinting:Boolean
  ^prettyIndent:int ^settings():Object ^setSettings(Object=):void ^defaultSettings():Object toString():String hasOwnProperty(*=):Boolean
  propertyIsEnumerable(*=):Boolean addNamespace(*):XML appendChild(*):XML attribute(*):XMLList attributes():XMLList child(*):XMLList
  childIndex():int children():XMLList comments():XMLList contains(*):Boolean copy():XML descendants(*=):XMLList elements(*=):XMLList
  hasComplexContent():Boolean hasSimpleContent():Boolean inScopeNamespaces():Array insertChildAfter(*,*):* insertChildBefore(*,*):*
  length():int localName():Object name():Object namespace(*=):* namespaceDeclarations():Array nodeKind():String normalize():XML
  parent():* processingInstructions(*=):XMLList prependChild(*):XML removeNamespace(*):XML replace(*,*):XML setChildren(*):XML
  setLocalName(*):void setName(*):void setNamespace(*):void text():XMLList toXMLString():String valueOf():XML
::XMLList
  (*=) toString():String valueOf():XMLList hasOwnProperty(*=):Boolean propertyIsEnumerable(*=):Boolean attribute(*):XMLList
  attributes():XMLList child(*):XMLList children():XMLList comments():XMLList contains(*):Boolean copy():XMLList
  descendants(*=):XMLList elements(*=):XMLList hasComplexContent():Boolean hasSimpleContent():Boolean length():int name():Object
  normalize():XMLList parent():* processingInstructions(*=):XMLList text():XMLList toXMLString():String addNamespace(*):XML
  appendChild(*):XML childIndex():int inScopeNamespaces():Array insertChildAfter(*,*):* insertChildBefore(*,*):* nodeKind():String
  namespace(*=):* localName():Object namespaceDeclarations():Array prependChild(*):XML removeNamespace(*):XML replace(*,*):XML
  setChildren(*):XML setLocalName(*):void setName(*):void setNamespace(*):void
flash.errors::IOError
  (String=,int=)
flash.errors::EOFError
  (String=,int=)
flash.errors::MemoryError
  (String=,int=)
flash.errors::IllegalOperationError
  (String=,int=)
flash.errors::ScriptTimeoutError
  (String=,int=)
flash.errors::StackOverflowError
  (String=,int=)
flash.errors::InvalidSWFError
  (String=,int=)
flash.utils::ByteArray
  () ^defaultObjectEncoding:uint length:uint position:uint bytesAvailable-:uint endian:String objectEncoding:uint shareable:Boolean
  readBoolean():Boolean readByte():int readUnsignedByte():uint readShort():int readUnsignedShort():uint readInt():int
  readUnsignedInt():uint readFloat():Number readDouble():Number readUTF():String readUTFBytes(uint):String
  readMultiByte(uint,String):String readBytes(ByteArray,uint=,uint=):void readObject():* writeBoolean(Boolean):void
  writeByte(int):void writeShort(int):void writeInt(int):void writeUnsignedInt(uint):void writeFloat(Number):void
  writeDouble(Number):void writeUTF(String):void writeUTFBytes(String):void writeMultiByte(String,String):void
  writeBytes(ByteArray,uint=,uint=):void writeObject(*):void clear():void compress(String=):void uncompress(String=):void
  deflate():void inflate():void toString():String toJSON(String):* atomicCompareAndSwapIntAt(int,int,int):int
  atomicCompareAndSwapLength(int,int):int
flash.utils::Dictionary
  (Boolean=) toJSON(String):*
flash.utils::Proxy
  () getProperty(*):* setProperty(*,*):void callProperty(*,...):* hasProperty(*):Boolean deleteProperty(*):Boolean
  getDescendants(*):* nextNameIndex(int):int nextName(int):String nextValue(int):* isAttribute(*):Boolean
flash.utils::Timer
  (Number,int=) delay:Number repeatCount:int currentCount-:int running-:Boolean start():void stop():void reset():void
flash.utils::IDataInput
  bytesAvailable-:uint endian:String objectEncoding:uint readBoolean():Boolean readByte():int readUnsignedByte():uint
  readShort():int readUnsignedShort():uint readInt():int readUnsignedInt():uint readFloat():Number readDouble():Number
  readUTF():String readUTFBytes(uint):String readMultiByte(uint,String):String readBytes(ByteArray,uint=,uint=):void readObject():*
flash.utils::IDataOutput
  endian:String objectEncoding:uint writeBoolean(Boolean):void writeByte(int):void writeShort(int):void writeInt(int):void
  writeUnsignedInt(uint):void writeFloat(Number):void writeDouble(Number):void writeUTF(String):void writeUTFBytes(String):void
  writeMultiByte(String,String):void writeBytes(ByteArray,uint=,uint=):void writeObject(*):void
flash.utils::IExternalizable
  writeExternal(IDataOutput):void readExternal(IDataInput):void
__AS3__.vec::Vector
  (uint=,Boolean=) length:uint fixed:Boolean
flash.xml::XMLNode
  (uint,String) nodeType:uint nodeName:String nodeValue:String attributes:Object childNodes-:Array firstChild:XMLNode lastChild:XMLNode
  nextSibling:XMLNode previousSibling:XMLNode parentNode:XMLNode prefix-:String localName-:String namespaceURI-:String
  hasChildNodes():Boolean appendChild(XMLNode):void insertBefore(XMLNode,XMLNode):void removeNode():void cloneNode(Boolean):XMLNode
  toString():String getNamespaceForPrefix(String):String getPrefixForNamespace(String):String
flash.xml::XMLDocument
  (String=) .xmlDecl:Object .docTypeDecl:Object .idMap:Object .ignoreWhite:Boolean createElement(String):XMLNode
  createTextNode(String):XMLNode toString():String parseXML(String):void
)";

} // namespace

std::string_view signatures() { return kSignatures; }

} // namespace flash::avm2::classes
