#include "swfc/actionscript3/Library.h"

#include <algorithm>

namespace swfc::actionscript3
{
namespace
{

struct LibraryPackage {
    std::string_view name;
    std::string_view members; ///< with blanks around each
};

// What a whole imported package brings: the names alone, as types and values of members are found out when
// the movie runs.
// clang-format off
constexpr LibraryPackage kPackages[] = {
    {"", " Object Class Function Array String Number int uint Boolean Math Date RegExp Error EvalError RangeError "
         "ReferenceError SyntaxError TypeError URIError VerifyError DefinitionError UninitializedError "
         "SecurityError ArgumentError XML XMLList QName Namespace JSON NaN Infinity undefined trace isNaN isFinite "
         "parseInt parseFloat escape unescape encodeURI encodeURIComponent decodeURI decodeURIComponent isXMLName "
         "AS3 void "},
    {"__AS3__.vec", " Vector "},
    {"flash.accessibility", " Accessibility AccessibilityImplementation AccessibilityProperties ISearchableText "
         "ISimpleTextSelection "},
    {"flash.desktop", " Clipboard ClipboardFormats ClipboardTransferMode "},
    {"flash.display", " AVM1Movie ActionScriptVersion Bitmap BitmapData BitmapDataChannel BitmapEncodingColorSpace BlendMode "
         "CapsStyle ColorCorrection ColorCorrectionSupport DisplayObject DisplayObjectContainer FocusDirection "
         "FrameLabel GradientType Graphics GraphicsBitmapFill GraphicsEndFill GraphicsGradientFill "
         "GraphicsPath GraphicsPathCommand GraphicsPathWinding GraphicsShaderFill GraphicsSolidFill "
         "GraphicsStroke GraphicsTrianglePath IBitmapDrawable IDrawCommand IGraphicsData IGraphicsFill "
         "IGraphicsPath IGraphicsStroke InteractiveObject InterpolationMethod JPEGEncoderOptions "
         "JPEGXREncoderOptions JointStyle LineScaleMode Loader LoaderInfo MorphShape MovieClip NativeMenu "
         "NativeMenuItem NativeWindow PNGEncoderOptions PixelSnapping SWFVersion Scene Shader ShaderData "
         "ShaderInput ShaderJob ShaderParameter ShaderParameterType ShaderPrecision Shape SimpleButton "
         "SpreadMethod Sprite Stage Stage3D StageAlign StageDisplayState StageQuality StageScaleMode "
         "TriangleCulling "},
    {"flash.display3D", " Context3D Context3DBlendFactor Context3DBufferUsage Context3DClearMask Context3DCompareMode "
         "Context3DFillMode Context3DMipFilter Context3DProfile Context3DProgramType Context3DRenderMode "
         "Context3DStencilAction Context3DTextureFilter Context3DTextureFormat Context3DTriangleFace "
         "Context3DVertexBufferFormat Context3DWrapMode IndexBuffer3D Program3D VertexBuffer3D "},
    {"flash.display3D.textures", " CubeTexture RectangleTexture Texture TextureBase "},
    {"flash.errors", " EOFError IOError IllegalOperationError InvalidSWFError MemoryError ScriptTimeoutError "
         "StackOverflowError "},
    {"flash.events", " AccelerometerEvent ActivityEvent AsyncErrorEvent ContextMenuEvent DRMAuthenticationCompleteEvent "
         "DRMAuthenticationErrorEvent DRMErrorEvent DRMStatusEvent DataEvent ErrorEvent Event EventDispatcher "
         "EventPhase FocusEvent FullScreenEvent GameInputEvent GeolocationEvent GestureEvent GesturePhase "
         "HTTPStatusEvent IEventDispatcher IMEEvent IOErrorEvent KeyboardEvent MouseEvent NetDataEvent "
         "NetFilterEvent NetMonitorEvent NetStatusEvent OutputProgressEvent PressAndTapGestureEvent "
         "ProgressEvent SampleDataEvent SecurityErrorEvent ShaderEvent SoftKeyboardEvent SoftKeyboardTrigger "
         "StageVideoAvailabilityEvent StageVideoEvent StatusEvent SyncEvent TextEvent ThrottleEvent "
         "ThrottleType TimerEvent TouchEvent TransformGestureEvent UncaughtErrorEvent UncaughtErrorEvents "
         "VideoEvent VideoTextureEvent WeakFunctionClosure "},
    {"flash.external", " ExternalInterface "},
    {"flash.filters", " BevelFilter BitmapFilter BitmapFilterQuality BitmapFilterType BlurFilter ColorMatrixFilter "
         "ConvolutionFilter DisplacementMapFilter DisplacementMapFilterMode DropShadowFilter GlowFilter "
         "GradientBevelFilter GradientGlowFilter ShaderFilter "},
    {"flash.geom", " ColorTransform Matrix Matrix3D Orientation3D PerspectiveProjection Point Rectangle Transform "
         "Utils3D Vector3D "},
    {"flash.globalization", " Collator CollatorMode CurrencyFormatter CurrencyParseResult DateTimeFormatter DateTimeNameContext "
                            "DateTimeNameStyle DateTimeStyle LastOperationStatus LocaleID NationalDigitsType NumberFormatter "
                            "NumberParseResult StringTools "},
    {"flash.media", " AVTagData Camera H264Level H264Profile ID3Info Microphone MicrophoneEnhancedMode MicrophoneEnhancedOptions VideoStreamSettings H264VideoStreamSettings Sound SoundChannel "
         "SoundCodec SoundLoaderContext SoundMixer SoundTransform StageVideo StageVideoAvailability "
         "StageVideoAvailabilityReason Video VideoCodec VideoStatus "},
    {"flash.net", " DynamicPropertyOutput FileFilter FileReference FileReferenceList GroupSpecifier "
         "IDynamicPropertyOutput IDynamicPropertyWriter LocalConnection NetConnection NetGroup NetGroupInfo "
         "NetGroupReceiveMode NetGroupReplicationStrategy NetGroupSendMode NetGroupSendResult NetMonitor "
         "NetStream NetStreamAppendBytesAction NetStreamInfo NetStreamMulticastInfo NetStreamPlayOptions "
         "NetStreamPlayTransitions ObjectEncoding Responder SecureSocket SharedObject SharedObjectFlushStatus "
         "Socket URLLoader URLLoaderDataFormat URLRequest URLRequestHeader URLRequestMethod URLStream "
         "URLVariables XMLSocket getClassByAlias navigateToURL registerClassAlias sendToURL "},
    {"flash.net.drm", " AuthenticationMethod DRMContentData DRMManager DRMPlaybackTimeWindow DRMVoucher LoadVoucherSetting "},
    {"flash.sensors", " Accelerometer Geolocation "},
    {"flash.text.ime", " CompositionAttributeRange IIMEClient "},
    {"flash.trace", " Trace "},
    {"flash.crypto", " generateRandomBytes "},
    {"flash.printing", " PrintJob PrintJobOptions PrintJobOrientation "},
    {"flash.profiler", " profile showRedrawRegions "},
    {"flash.sampler", " Sample StackFrame NewObjectSample DeleteObjectSample getSize getMemberNames "},
    {"flash.system", " ApplicationDomain Capabilities FSCommand IME IMEConversionMode ImageDecodingPolicy JPEGLoaderContext "
         "LoaderContext Security SecurityDomain SecurityPanel System SystemUpdater SystemUpdaterType "
         "TouchscreenType Worker exit fscommand "},
    {"flash.text", " AntiAliasType CSMSettings Font FontStyle FontType GridFitType StaticText StyleSheet TextColorType "
         "TextDisplayMode TextExtent TextField TextFieldAutoSize TextFieldType TextFormat TextFormatAlign "
         "TextFormatDisplay TextInteractionMode TextLineMetrics TextRenderer TextRun TextSnapshot "},
    {"flash.text.engine", " BreakOpportunity CFFHinting ContentElement DigitCase DigitWidth EastAsianJustifier "
         "ElementFormat FontDescription FontLookup FontMetrics FontPosture FontWeight GraphicElement GroupElement "
         "JustificationStyle Kerning LigatureLevel LineJustification RenderingMode SpaceJustifier TabAlignment TabStop "
         "TextBaseline TextBlock TextElement TextJustifier TextLine TextLineCreationResult TextLineMirrorRegion "
         "TextLineValidity TextRotation TypographicCase "},
    {"flash.ui", " ContextMenu ContextMenuBuiltInItems ContextMenuClipboardItems ContextMenuItem GameInput "
         "GameInputControl GameInputDevice KeyLocation Keyboard KeyboardType Mouse MouseCursor MouseCursorData "
         "Multitouch MultitouchInputMode "},
    {"flash.utils", " ByteArray CompressionAlgorithm Dictionary Endian IDataInput IDataInput2 IDataOutput IDataOutput2 "
         "IExternalizable ObjectInput ObjectOutput Proxy SetIntervalTimer Timer clearInterval clearTimeout "
         "describeType escapeMultiByte flash_proxy getAliasName getDefinitionByName getQualifiedClassName "
         "getQualifiedSuperclassName getTimer setInterval setTimeout unescapeMultiByte "},
    {"flash.xml", " XMLDocument XMLNode XMLNodeType XMLParser XMLTag "},
};
// clang-format on

} // namespace

bool isInLibrary(std::string_view package, std::string_view name)
{
    const std::string blanks = " " + std::string(name) + " ";
    for (const LibraryPackage& entry : kPackages) {
        if (entry.name == package) return entry.members.find(blanks) != std::string_view::npos;
    }
    return false;
}

bool isLibraryPackage(std::string_view package)
{
    return !package.empty() && std::ranges::any_of(kPackages, [&](const LibraryPackage& entry) {
        return entry.name == package ||
               (entry.name.starts_with(package) && entry.name[package.size()] == '.');
    });
}

std::string_view libraryNamespace(std::string_view package, std::string_view name)
{
    if (package.empty() && name == "AS3") return "http://adobe.com/AS3/2006/builtin";
    if (package == "flash.utils" && name == "flash_proxy")
        return "http://www.adobe.com/2006/actionscript/flash/proxy";
    return {};
}

} // namespace swfc::actionscript3
