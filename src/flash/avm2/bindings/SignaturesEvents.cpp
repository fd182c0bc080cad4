#include "flash/avm2/bindings/Library.h"

namespace flash::avm2
{

namespace
{

// flash.events.
constexpr std::string_view kText = R"(
flash.events::IEventDispatcher
  addEventListener(String,Function,Boolean=,int=,Boolean=):void removeEventListener(String,Function,Boolean=):void
  dispatchEvent(Event):Boolean hasEventListener(String):Boolean willTrigger(String):Boolean
flash.events::EventDispatcher
  (IEventDispatcher=) addEventListener(String,Function,Boolean=,int=,Boolean=):void
  removeEventListener(String,Function,Boolean=):void dispatchEvent(Event):Boolean hasEventListener(String):Boolean
  willTrigger(String):Boolean toString():String
flash.events::Event
  (String,Boolean=,Boolean=) type-:String bubbles-:Boolean cancelable-:Boolean target-:Object currentTarget-:Object
  eventPhase-:uint formatToString(String,...):String clone():Event toString():String stopPropagation():void
  stopImmediatePropagation():void preventDefault():void isDefaultPrevented():Boolean
flash.events::AccelerometerEvent
  (String,Boolean=,Boolean=,Number=,Number=,Number=,Number=) timestamp:Number accelerationX:Number accelerationY:Number
  accelerationZ:Number
flash.events::ActivityEvent
  (String,Boolean=,Boolean=,Boolean=) activating:Boolean
flash.events::AsyncErrorEvent
  (String,Boolean=,Boolean=,String=,Error=) .error:Error
flash.events::ContextMenuEvent
  (String,Boolean=,Boolean=,InteractiveObject=,InteractiveObject=) mouseTarget:InteractiveObject
  contextMenuOwner:InteractiveObject isMouseTargetInaccessible:Boolean
flash.events::DataEvent
  (String,Boolean=,Boolean=,String=) data:String
flash.events::ErrorEvent
  (String,Boolean=,Boolean=,String=,int=) errorID-:int
flash.events::FocusEvent
  (String,Boolean=,Boolean=,InteractiveObject=,Boolean=,uint=,String=) relatedObject:InteractiveObject shiftKey:Boolean keyCode:uint
  direction:String isRelatedObjectInaccessible:Boolean
flash.events::FullScreenEvent
  (String,Boolean=,Boolean=,Boolean=,Boolean=) fullScreen-:Boolean interactive-:Boolean
flash.events::GameInputEvent
  (String,Boolean=,Boolean=,GameInputDevice=) device-:GameInputDevice
flash.events::GeolocationEvent
  (String,Boolean=,Boolean=,Number=,Number=,Number=,Number=,Number=,Number=,Number=,Number=) latitude:Number longitude:Number
  altitude:Number horizontalAccuracy:Number verticalAccuracy:Number speed:Number heading:Number timestamp:Number
flash.events::GestureEvent
  (String,Boolean=,Boolean=,String=,Number=,Number=,Boolean=,Boolean=,Boolean=) localX:Number localY:Number stageX-:Number
  stageY-:Number phase:String ctrlKey:Boolean altKey:Boolean shiftKey:Boolean updateAfterEvent():void
flash.events::PressAndTapGestureEvent
  (String,Boolean=,Boolean=,String=,Number=,Number=,Number=,Number=,Boolean=,Boolean=,Boolean=) tapLocalX:Number tapLocalY:Number
  tapStageX-:Number tapStageY-:Number
flash.events::TransformGestureEvent
  (String,Boolean=,Boolean=,String=,Number=,Number=,Number=,Number=,Number=,Number=,Number=,Boolean=,Boolean=,Boolean=) scaleX:Number
  scaleY:Number rotation:Number offsetX:Number offsetY:Number
flash.events::HTTPStatusEvent
  (String,Boolean=,Boolean=,int=,Boolean=) status-:int responseURL:String responseHeaders:Array redirected:Boolean
flash.events::IMEEvent
  (String,Boolean=,Boolean=,String=,*=) imeClient:*
flash.events::IOErrorEvent
  (String,Boolean=,Boolean=,String=,int=)
flash.events::KeyboardEvent
  (String,Boolean=,Boolean=,uint=,uint=,uint=,Boolean=,Boolean=,Boolean=) charCode:uint keyCode:uint keyLocation:uint
  ctrlKey:Boolean altKey:Boolean shiftKey:Boolean updateAfterEvent():void
flash.events::MouseEvent
  (String,Boolean=,Boolean=,Number=,Number=,InteractiveObject=,Boolean=,Boolean=,Boolean=,Boolean=,int=) localX:Number localY:Number
  relatedObject:InteractiveObject ctrlKey:Boolean altKey:Boolean shiftKey:Boolean buttonDown:Boolean delta:int stageX-:Number
  stageY-:Number isRelatedObjectInaccessible:Boolean movementX:Number movementY:Number updateAfterEvent():void
flash.events::NetDataEvent
  (String,Boolean=,Boolean=,Number=,Object=) timestamp-:Number info-:Object
flash.events::NetMonitorEvent
  (String,Boolean=,Boolean=,NetStream=) netStream:NetStream
flash.events::NetStatusEvent
  (String,Boolean=,Boolean=,Object=) info:Object
flash.events::OutputProgressEvent
  (String,Boolean=,Boolean=,Number=,Number=) bytesPending:Number bytesTotal:Number
flash.events::ProgressEvent
  (String,Boolean=,Boolean=,Number=,Number=) bytesLoaded:Number bytesTotal:Number
flash.events::SampleDataEvent
  (String,Boolean=,Boolean=,Number=,ByteArray=) position:Number data:ByteArray
flash.events::SecurityErrorEvent
  (String,Boolean=,Boolean=,String=,int=)
flash.events::ShaderEvent
  (String,Boolean=,Boolean=,BitmapData=,ByteArray=,Vector<Number>=) bitmapData:BitmapData byteArray:ByteArray vector:Vector<Number>
flash.events::SoftKeyboardEvent
  (String,Boolean,Boolean,InteractiveObject,String) relatedObject:InteractiveObject triggerType-:String
flash.events::StageVideoAvailabilityEvent
  (String,Boolean=,Boolean=,String=) availability-:String
flash.events::StageVideoEvent
  (String,Boolean=,Boolean=,String=,String=) .codecInfo:String status-:String colorSpace-:String
flash.events::StatusEvent
  (String,Boolean=,Boolean=,String=,String=) code:String level:String
flash.events::SyncEvent
  (String,Boolean=,Boolean=,Array=) changeList:Array
flash.events::TextEvent
  (String,Boolean=,Boolean=,String=) text:String
flash.events::ThrottleEvent
  (String,Boolean=,Boolean=,String=,Number=) state-:String targetFrameRate-:Number
flash.events::TimerEvent
  (String,Boolean=,Boolean=) updateAfterEvent():void
flash.events::TouchEvent
  (String,Boolean=,Boolean=,int=,Boolean=,Number=,Number=,Number=,Number=,Number=,InteractiveObject=,Boolean=,Boolean=,Boolean=)
  localX:Number localY:Number stageX-:Number stageY-:Number touchPointID:int isPrimaryTouchPoint:Boolean sizeX:Number sizeY:Number
  pressure:Number relatedObject:InteractiveObject ctrlKey:Boolean altKey:Boolean shiftKey:Boolean
  isRelatedObjectInaccessible:Boolean updateAfterEvent():void
flash.events::UncaughtErrorEvent
  (String=,Boolean=,Boolean=,*=) error-:*
flash.events::UncaughtErrorEvents
  ()
flash.events::VideoEvent
  (String,Boolean=,Boolean=,String=) .codecInfo:String status-:String
flash.events::VideoTextureEvent
  (String,Boolean=,Boolean=,String=,String=) .codecInfo:String status-:String colorSpace-:String
)";

} // namespace

std::string_view eventsSignatures() { return kText; }

} // namespace flash::avm2
