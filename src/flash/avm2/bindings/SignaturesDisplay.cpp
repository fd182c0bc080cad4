#include "flash/avm2/bindings/Library.h"

namespace flash::avm2
{

namespace
{

// flash.accessibility, flash.display, flash.filters and flash.geom.
constexpr std::string_view kText = R"(
flash.accessibility::AccessibilityImplementation
  () .stub:Boolean .errno:uint get_accRole(uint):uint get_accName(uint):String get_accValue(uint):String get_accState(uint):uint
  get_accDefaultAction(uint):String accDoDefaultAction(uint):void isLabeledBy(InteractiveObject):Boolean getChildIDArray():Array
  accLocation(uint):* get_accSelection():Array get_accFocus():uint accSelect(uint,uint):void get_selectionAnchorIndex():*
  get_selectionActiveIndex():*
flash.accessibility::AccessibilityProperties
  () .name:String .description:String .shortcut:String .silent:Boolean .forceSimple:Boolean .noAutoLabeling:Boolean
flash.accessibility::Accessibility
  ^active-:Boolean ^sendEvent(DisplayObject,uint,uint,Boolean=):void ^updateProperties():void
flash.display::AVM1Movie
  () call(String,...):* addCallback(String,Function):void
flash.display::Bitmap
  (BitmapData=,String=,Boolean=) bitmapData:BitmapData smoothing:Boolean pixelSnapping:String
flash.display::BitmapData
  (int,int,Boolean=,uint=) width-:int height-:int transparent-:Boolean rect-:Rectangle getPixel(int,int):uint getPixel32(int,int):uint
  setPixel(int,int,uint):void setPixel32(int,int,uint):void fillRect(Rectangle,uint):void floodFill(int,int,uint):void
  colorTransform(Rectangle,ColorTransform):void scroll(int,int):void getColorBoundsRect(uint,uint,Boolean=):Rectangle
  clone():BitmapData dispose():void lock():void unlock(Rectangle=):void getPixels(Rectangle):ByteArray
  copyPixelsToByteArray(Rectangle,ByteArray):void setPixels(Rectangle,ByteArray):void getVector(Rectangle):Vector<uint>
  setVector(Rectangle,Vector<uint>):void draw(IBitmapDrawable,Matrix=,ColorTransform=,String=,Rectangle=,Boolean=):void
  drawWithQuality(IBitmapDrawable,Matrix=,ColorTransform=,String=,Rectangle=,Boolean=,String=):void
  applyFilter(BitmapData,Rectangle,Point,BitmapFilter):void generateFilterRect(Rectangle,BitmapFilter):Rectangle
  noise(int,uint=,uint=,uint=,Boolean=):void perlinNoise(Number,Number,uint,int,Boolean,Boolean,uint=,Boolean=,Array=):void
  copyPixels(BitmapData,Rectangle,Point,BitmapData=,Point=,Boolean=):void copyChannel(BitmapData,Rectangle,Point,uint,uint):void
  merge(BitmapData,Rectangle,Point,uint,uint,uint,uint):void
  threshold(BitmapData,Rectangle,Point,String,uint,uint=,uint=,Boolean=):uint
  paletteMap(BitmapData,Rectangle,Point,Array=,Array=,Array=,Array=):void
  pixelDissolve(BitmapData,Rectangle,Point,int=,int=,uint=):int hitTest(Point,uint,Object,Point=,uint=):Boolean
  compare(BitmapData):Object histogram(Rectangle=):Vector<Vector<Number>> encode(Rectangle,Object,ByteArray=):ByteArray
flash.display::DisplayObject
  () addEventListener(String,Function,Boolean=,int=,Boolean=):void root-:DisplayObject stage-:Stage name:String parent-:DisplayObjectContainer mask:DisplayObject visible:Boolean x:Number
  y:Number z:Number scaleX:Number scaleY:Number scaleZ:Number mouseX-:Number mouseY-:Number rotation:Number rotationX:Number
  rotationY:Number rotationZ:Number alpha:Number width:Number height:Number cacheAsBitmap:Boolean opaqueBackground:Object
  scrollRect:Rectangle filters:Array blendMode:String transform:Transform scale9Grid:Rectangle globalToLocal(Point):Point
  localToGlobal(Point):Point getBounds(DisplayObject):Rectangle getRect(DisplayObject):Rectangle loaderInfo-:LoaderInfo
  hitTestObject(DisplayObject):Boolean hitTestPoint(Number,Number,Boolean=):Boolean accessibilityProperties:AccessibilityProperties
  globalToLocal3D(Point):Vector3D local3DToGlobal(Vector3D):Point blendShader+:Shader metaData:Object
flash.display::DisplayObjectContainer
  () addChild(DisplayObject):DisplayObject addChildAt(DisplayObject,int):DisplayObject removeChild(DisplayObject):DisplayObject
  removeChildAt(int):DisplayObject getChildIndex(DisplayObject):int setChildIndex(DisplayObject,int):void getChildAt(int):DisplayObject
  getChildByName(String):DisplayObject numChildren-:int textSnapshot-:TextSnapshot getObjectsUnderPoint(Point):Array
  areInaccessibleObjectsUnderPoint(Point):Boolean tabChildren:Boolean mouseChildren:Boolean contains(DisplayObject):Boolean
  swapChildrenAt(int,int):void swapChildren(DisplayObject,DisplayObject):void removeChildren(int=,int=):void stopAllMovieClips():void
flash.display::FrameLabel
  (String,int) frame-:int name-:String
flash.display::Graphics
  clear():void beginFill(uint,Number=):void beginGradientFill(String,Array,Array,Array,Matrix=,String=,String=,Number=):void
  beginBitmapFill(BitmapData,Matrix=,Boolean=,Boolean=):void beginShaderFill(Shader,Matrix=):void
  lineGradientStyle(String,Array,Array,Array,Matrix=,String=,String=,Number=):void
  lineStyle(Number=,uint=,Number=,Boolean=,String=,String=,String=,Number=):void drawRect(Number,Number,Number,Number):void
  drawRoundRect(Number,Number,Number,Number,Number,Number=):void
  drawRoundRectComplex(Number,Number,Number,Number,Number,Number,Number,Number):void drawCircle(Number,Number,Number):void
  drawEllipse(Number,Number,Number,Number):void moveTo(Number,Number):void lineTo(Number,Number):void
  curveTo(Number,Number,Number,Number):void cubicCurveTo(Number,Number,Number,Number,Number,Number):void endFill():void
  copyFrom(Graphics):void lineBitmapStyle(BitmapData,Matrix=,Boolean=,Boolean=):void lineShaderStyle(Shader,Matrix=):void
  drawPath(Vector<int>,Vector<Number>,String=):void drawTriangles(Vector<Number>,Vector<int>=,Vector<Number>=,String=):void
  drawGraphicsData(Vector<IGraphicsData>):void readGraphicsData(Boolean=):Vector<IGraphicsData>
flash.display::InteractiveObject
  () tabEnabled:Boolean tabIndex:int focusRect:Object mouseEnabled:Boolean doubleClickEnabled:Boolean
  accessibilityImplementation:AccessibilityImplementation softKeyboardInputAreaOfInterest:Rectangle needsSoftKeyboard:Boolean
  contextMenu:ContextMenu requestSoftKeyboard():Boolean
flash.display::Loader
  () addChild(DisplayObject):DisplayObject addChildAt(DisplayObject,int):DisplayObject removeChild(DisplayObject):DisplayObject
  removeChildAt(int):DisplayObject setChildIndex(DisplayObject,int):void load(URLRequest,LoaderContext=):void loadBytes(ByteArray,LoaderContext=):void close():void unload():void
  unloadAndStop(Boolean=):void content-:DisplayObject contentLoaderInfo-:LoaderInfo uncaughtErrorEvents-:UncaughtErrorEvents
flash.display::LoaderInfo
  ^getLoaderInfoByDefinition(Object):LoaderInfo loaderURL-:String url-:String isURLInaccessible-:Boolean bytesLoaded-:uint
  bytesTotal-:uint applicationDomain-:ApplicationDomain swfVersion-:uint actionScriptVersion-:uint frameRate-:Number
  parameters-:Object width-:int height-:int contentType-:String sharedEvents-:EventDispatcher parentSandboxBridge:Object
  childSandboxBridge:Object sameDomain-:Boolean childAllowsParent-:Boolean parentAllowsChild-:Boolean loader-:Loader
  content-:DisplayObject bytes-:ByteArray uncaughtErrorEvents-:UncaughtErrorEvents
flash.display::MovieClip
  () currentFrame-:int framesLoaded-:int totalFrames-:int trackAsMenu:Boolean play():void stop():void nextFrame():void
  prevFrame():void gotoAndPlay(Object,String=):void gotoAndStop(Object,String=):void addFrameScript(...):void scenes-:Array
  currentScene-:Scene currentLabel-:String currentFrameLabel-:String currentLabels-:Array prevScene():void nextScene():void
  enabled:Boolean isPlaying-:Boolean
flash.display::Scene
  (String,Array,int) name-:String labels-:Array numFrames-:int
flash.display::Shape
  () graphics-:Graphics
flash.display::SimpleButton
  (DisplayObject=,DisplayObject=,DisplayObject=,DisplayObject=) useHandCursor:Boolean enabled:Boolean trackAsMenu:Boolean
  upState:DisplayObject overState:DisplayObject downState:DisplayObject hitTestState:DisplayObject soundTransform:SoundTransform
flash.display::Sprite
  () graphics-:Graphics buttonMode:Boolean dropTarget-:DisplayObject startDrag(Boolean=,Rectangle=):void stopDrag():void
  startTouchDrag(int,Boolean=,Rectangle=):void stopTouchDrag(int):void hitArea:Sprite useHandCursor:Boolean
  soundTransform:SoundTransform
flash.display::Stage
  name:String mask:DisplayObject visible:Boolean x:Number y:Number z:Number scaleX:Number scaleY:Number scaleZ:Number
  rotation:Number rotationX:Number rotationY:Number rotationZ:Number alpha:Number width:Number height:Number
  cacheAsBitmap:Boolean opaqueBackground:Object scrollRect:Rectangle filters:Array blendMode:String transform:Transform
  scale9Grid:Rectangle focusRect:Object mouseEnabled:Boolean accessibilityProperties:AccessibilityProperties
  accessibilityImplementation:AccessibilityImplementation contextMenu:ContextMenu
  tabChildren:Boolean frameRate:Number invalidate():void scaleMode:String align:String stageWidth:int stageHeight:int showDefaultContextMenu:Boolean
  focus:InteractiveObject colorCorrection:String colorCorrectionSupport-:String isFocusInaccessible():Boolean
  stageFocusRect:Boolean quality:String displayState:String fullScreenSourceRect:Rectangle mouseLock:Boolean
  stageVideos-:Vector<StageVideo> stage3Ds-:Vector<Stage3D> color:uint fullScreenWidth-:uint fullScreenHeight-:uint wmodeGPU-:Boolean
  softKeyboardRect-:Rectangle allowsFullScreen-:Boolean allowsFullScreenInteractive-:Boolean contentsScaleFactor-:Number
  displayContextInfo-:String browserZoomFactor-:Number
flash.display::GraphicsPath
  (Vector<int>=,Vector<Number>=,String=) .commands:Vector<int> .data:Vector<Number> winding:String moveTo(Number,Number):void
  lineTo(Number,Number):void curveTo(Number,Number,Number,Number):void
  cubicCurveTo(Number,Number,Number,Number,Number,Number):void wideLineTo(Number,Number):void wideMoveTo(Number,Number):void
flash.display::GraphicsSolidFill
  (uint=,Number=) .color:uint .alpha:Number
flash.display::GraphicsEndFill
  ()
flash.display::GraphicsBitmapFill
  (BitmapData=,Matrix=,Boolean=,Boolean=) .bitmapData:BitmapData .matrix:Matrix .repeat:Boolean .smooth:Boolean
flash.display::GraphicsShaderFill
  (Shader=,Matrix=) .shader:Shader .matrix:Matrix
flash.display::GraphicsGradientFill
  (String=,Array=,Array=,Array=,*=,*=,String=,Number=) .colors:Array .alphas:Array .ratios:Array .matrix:Matrix
  .focalPointRatio:Number type:String spreadMethod:String interpolationMethod:String
flash.display::GraphicsStroke
  (Number=,Boolean=,String=,String=,String=,Number=,IGraphicsFill=) .thickness:Number .pixelHinting:Boolean .miterLimit:Number
  .fill:IGraphicsFill scaleMode:String caps:String joints:String
flash.display::GraphicsTrianglePath
  (Vector<Number>=,Vector<int>=,Vector<Number>=,String=) .indices:Vector<int> .vertices:Vector<Number> .uvtData:Vector<Number>
  culling:String
flash.display::Shader
  (ByteArray=) byteCode+:ByteArray data:ShaderData precisionHint:String
flash.display::ShaderData
  (ByteArray)
flash.display::ShaderInput
  () channels-:int index-:int input:Object width:int height:int
flash.display::ShaderParameter
  () type-:String index-:int value:Array
flash.display::ShaderJob
  (Shader=,Object=,int=,int=) start(Boolean=):void cancel():void width:int height:int progress-:Number shader:Shader target:Object
flash.display::JPEGEncoderOptions
  (uint=) .quality:uint
flash.display::PNGEncoderOptions
  (Boolean=) .fastCompression:Boolean
flash.display::JPEGXREncoderOptions
  (uint=,String=,uint=) .quantization:uint .colorSpace:String .trimFlexBits:uint
flash.geom::ColorTransform
  (Number=,Number=,Number=,Number=,Number=,Number=,Number=,Number=) .redMultiplier:Number .greenMultiplier:Number
  .blueMultiplier:Number .alphaMultiplier:Number .redOffset:Number .greenOffset:Number .blueOffset:Number .alphaOffset:Number
  color:uint concat(ColorTransform):void toString():String
flash.geom::Matrix
  (Number=,Number=,Number=,Number=,Number=,Number=) .a:Number .b:Number .c:Number .d:Number .tx:Number .ty:Number clone():Matrix
  concat(Matrix):void invert():void identity():void createBox(Number,Number,Number=,Number=,Number=):void
  createGradientBox(Number,Number,Number=,Number=,Number=):void rotate(Number):void translate(Number,Number):void
  scale(Number,Number):void deltaTransformPoint(Point):Point transformPoint(Point):Point copyFrom(Matrix):void
  setTo(Number,Number,Number,Number,Number,Number):void copyRowTo(uint,Vector3D):void copyColumnTo(uint,Vector3D):void
  copyRowFrom(uint,Vector3D):void copyColumnFrom(uint,Vector3D):void toString():String
flash.geom::Matrix3D
  (Vector<Number>=) clone():Matrix3D copyToMatrix3D(Matrix3D):void rawData:Vector<Number> append(Matrix3D):void
  prepend(Matrix3D):void invert():Boolean identity():void decompose(String=):Vector<Vector3D>
  recompose(Vector<Vector3D>,String=):Boolean position:Vector3D appendTranslation(Number,Number,Number):void
  appendRotation(Number,Vector3D,Vector3D=):void appendScale(Number,Number,Number):void prependTranslation(Number,Number,Number):void
  prependRotation(Number,Vector3D,Vector3D=):void prependScale(Number,Number,Number):void transformVector(Vector3D):Vector3D
  deltaTransformVector(Vector3D):Vector3D transformVectors(Vector<Number>,Vector<Number>):void determinant-:Number transpose():void
  pointAt(Vector3D,Vector3D=,Vector3D=):void interpolateTo(Matrix3D,Number):void copyFrom(Matrix3D):void
  copyRawDataTo(Vector<Number>,uint=,Boolean=):void copyRawDataFrom(Vector<Number>,uint=,Boolean=):void copyRowTo(uint,Vector3D):void
  copyColumnTo(uint,Vector3D):void copyRowFrom(uint,Vector3D):void copyColumnFrom(uint,Vector3D):void
  ^interpolate(Matrix3D,Matrix3D,Number):Matrix3D
flash.geom::PerspectiveProjection
  () fieldOfView:Number projectionCenter:Point focalLength:Number toMatrix3D():Matrix3D
flash.geom::Point
  (Number=,Number=) .x:Number .y:Number length-:Number clone():Point offset(Number,Number):void equals(Point):Boolean
  subtract(Point):Point add(Point):Point normalize(Number):void copyFrom(Point):void setTo(Number,Number):void toString():String
  ^interpolate(Point,Point,Number):Point ^distance(Point,Point):Number ^polar(Number,Number):Point
flash.geom::Rectangle
  (Number=,Number=,Number=,Number=) .x:Number .y:Number .width:Number .height:Number left:Number right:Number top:Number
  bottom:Number topLeft:Point bottomRight:Point size:Point clone():Rectangle isEmpty():Boolean setEmpty():void
  inflate(Number,Number):void inflatePoint(Point):void offset(Number,Number):void offsetPoint(Point):void
  contains(Number,Number):Boolean containsPoint(Point):Boolean containsRect(Rectangle):Boolean intersection(Rectangle):Rectangle
  intersects(Rectangle):Boolean union(Rectangle):Rectangle equals(Rectangle):Boolean copyFrom(Rectangle):void
  setTo(Number,Number,Number,Number):void toString():String
flash.geom::Transform
  (DisplayObject) matrix:Matrix colorTransform:ColorTransform concatenatedMatrix-:Matrix
  concatenatedColorTransform-:ColorTransform pixelBounds-:Rectangle matrix3D:Matrix3D getRelativeMatrix3D(DisplayObject):Matrix3D
  perspectiveProjection:PerspectiveProjection
flash.geom::Utils3D
  ^projectVector(Matrix3D,Vector3D):Vector3D ^projectVectors(Matrix3D,Vector<Number>,Vector<Number>,Vector<Number>):void
  ^pointTowards(Number,Matrix3D,Vector3D,Vector3D=,Vector3D=):Matrix3D
flash.geom::Vector3D
  (Number=,Number=,Number=,Number=) .x:Number .y:Number .z:Number .w:Number length-:Number lengthSquared-:Number clone():Vector3D
  dotProduct(Vector3D):Number crossProduct(Vector3D):Vector3D normalize():Number scaleBy(Number):void incrementBy(Vector3D):void
  decrementBy(Vector3D):void add(Vector3D):Vector3D subtract(Vector3D):Vector3D negate():void equals(Vector3D,Boolean=):Boolean
  nearEquals(Vector3D,Number,Boolean=):Boolean project():void copyFrom(Vector3D):void setTo(Number,Number,Number):void
  toString():String ^angleBetween(Vector3D,Vector3D):Number ^distance(Vector3D,Vector3D):Number
flash.filters::BitmapFilter
  () clone():BitmapFilter
flash.filters::BevelFilter
  (Number=,Number=,uint=,Number=,uint=,Number=,Number=,Number=,Number=,int=,String=,Boolean=) distance:Number angle:Number
  highlightColor:uint highlightAlpha:Number shadowColor:uint shadowAlpha:Number blurX:Number blurY:Number knockout:Boolean
  quality:int strength:Number type:String clone():BitmapFilter
flash.filters::BlurFilter
  (Number=,Number=,int=) blurX:Number blurY:Number quality:int clone():BitmapFilter
flash.filters::ColorMatrixFilter
  (Array=) matrix:Array clone():BitmapFilter
flash.filters::ConvolutionFilter
  (Number=,Number=,Array=,Number=,Number=,Boolean=,Boolean=,uint=,Number=) matrix:Array matrixX:Number matrixY:Number
  divisor:Number bias:Number preserveAlpha:Boolean clamp:Boolean color:uint alpha:Number clone():BitmapFilter
flash.filters::DisplacementMapFilter
  (BitmapData=,Point=,uint=,uint=,Number=,Number=,String=,uint=,Number=) mapBitmap:BitmapData mapPoint:Point componentX:uint
  componentY:uint scaleX:Number scaleY:Number mode:String color:uint alpha:Number clone():BitmapFilter
flash.filters::DropShadowFilter
  (Number=,Number=,uint=,Number=,Number=,Number=,Number=,int=,Boolean=,Boolean=,Boolean=) distance:Number angle:Number color:uint
  alpha:Number blurX:Number blurY:Number hideObject:Boolean inner:Boolean knockout:Boolean quality:int strength:Number
  clone():BitmapFilter
flash.filters::GlowFilter
  (uint=,Number=,Number=,Number=,Number=,int=,Boolean=,Boolean=) color:uint alpha:Number blurX:Number blurY:Number inner:Boolean
  knockout:Boolean quality:int strength:Number clone():BitmapFilter
flash.filters::GradientBevelFilter
  (Number=,Number=,Array=,Array=,Array=,Number=,Number=,Number=,int=,String=,Boolean=) distance:Number angle:Number colors:Array
  alphas:Array ratios:Array blurX:Number blurY:Number knockout:Boolean quality:int strength:Number type:String clone():BitmapFilter
flash.filters::GradientGlowFilter
  (Number=,Number=,Array=,Array=,Array=,Number=,Number=,Number=,int=,String=,Boolean=) distance:Number angle:Number colors:Array
  alphas:Array ratios:Array blurX:Number blurY:Number knockout:Boolean quality:int strength:Number type:String clone():BitmapFilter
flash.filters::ShaderFilter
  (Shader=) shader:Shader leftExtension:int topExtension:int rightExtension:int bottomExtension:int
)";

} // namespace

std::string_view displaySignatures() { return kText; }

} // namespace flash::avm2
