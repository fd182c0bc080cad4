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
    {"flash.display", " AVM1Movie ActionScriptVersion Bitmap BitmapData BitmapDataChannel BlendMode CapsStyle "
         "ColorCorrection ColorCorrectionSupport DisplayObject DisplayObjectContainer FrameLabel GradientType Graphics "
         "GraphicsBitmapFill GraphicsEndFill GraphicsGradientFill GraphicsPath GraphicsPathCommand "
         "GraphicsPathWinding GraphicsShaderFill GraphicsSolidFill GraphicsStroke GraphicsTrianglePath IBitmapDrawable "
         "IDrawCommand IGraphicsData IGraphicsFill IGraphicsPath IGraphicsStroke InteractiveObject InterpolationMethod "
         "JointStyle LineScaleMode Loader LoaderInfo MorphShape MovieClip PixelSnapping SWFVersion Scene Shader "
         "ShaderData ShaderInput ShaderJob ShaderParameter ShaderParameterType ShaderPrecision Shape SimpleButton "
         "SpreadMethod Sprite Stage StageAlign StageDisplayState StageQuality StageScaleMode TriangleCulling "
         "NativeWindow JPEGEncoderOptions PNGEncoderOptions BitmapEncodingColorSpace Stage3D "},
    {"flash.display3D", " Context3D Context3DBlendFactor Context3DBufferUsage Context3DClearMask Context3DCompareMode "
         "Context3DFillMode Context3DMipFilter Context3DProfile Context3DProgramType Context3DRenderMode "
         "Context3DStencilAction Context3DTextureFilter Context3DTextureFormat Context3DTriangleFace "
         "Context3DVertexBufferFormat Context3DWrapMode IndexBuffer3D Program3D VertexBuffer3D "},
    {"flash.display3D.textures", " CubeTexture RectangleTexture Texture TextureBase "},
    {"flash.errors", " EOFError IOError IllegalOperationError InvalidSWFError MemoryError ScriptTimeoutError "
         "StackOverflowError "},
    {"flash.events", " ActivityEvent AsyncErrorEvent ContextMenuEvent DataEvent ErrorEvent Event EventDispatcher "
         "EventPhase FocusEvent FullScreenEvent HTTPStatusEvent IEventDispatcher IMEEvent IOErrorEvent KeyboardEvent "
         "MouseEvent NetFilterEvent NetMonitorEvent NetStatusEvent OutputProgressEvent ProgressEvent SampleDataEvent "
         "SecurityErrorEvent ShaderEvent StatusEvent SyncEvent TextEvent ThrottleEvent TimerEvent TouchEvent "
         "TransformGestureEvent GestureEvent PressAndTapGestureEvent GesturePhase UncaughtErrorEvent UncaughtErrorEvents VideoEvent WeakFunctionClosure "},
    {"flash.external", " ExternalInterface "},
    {"flash.filters", " BevelFilter BitmapFilter BitmapFilterQuality BitmapFilterType BlurFilter ColorMatrixFilter "
         "ConvolutionFilter DisplacementMapFilter DisplacementMapFilterMode DropShadowFilter GlowFilter "
         "GradientBevelFilter GradientGlowFilter ShaderFilter "},
    {"flash.geom", " ColorTransform Matrix Matrix3D Orientation3D PerspectiveProjection Point Rectangle Transform "
         "Utils3D Vector3D "},
    {"flash.globalization", " Collator CollatorMode CurrencyFormatter CurrencyParseResult DateTimeFormatter DateTimeNameContext "
                            "DateTimeNameStyle DateTimeStyle LastOperationStatus LocaleID NationalDigitsType NumberFormatter "
                            "NumberParseResult StringTools "},
    {"flash.media", " Camera ID3Info Microphone Sound SoundChannel SoundCodec SoundLoaderContext SoundMixer "
         "SoundTransform Video "},
    {"flash.net", " DynamicPropertyOutput FileFilter FileReference FileReferenceList GroupSpecifier "
         "IDynamicPropertyOutput IDynamicPropertyWriter LocalConnection NetConnection NetStream NetStreamInfo "
         "ObjectEncoding Responder SecureSocket SharedObject SharedObjectFlushStatus Socket URLLoader "
         "URLLoaderDataFormat URLRequest URLRequestHeader URLRequestMethod URLStream URLVariables XMLSocket "
         "getClassByAlias navigateToURL registerClassAlias sendToURL "},
    {"flash.printing", " PrintJob PrintJobOptions PrintJobOrientation "},
    {"flash.profiler", " profile showRedrawRegions "},
    {"flash.sampler", " Sample StackFrame NewObjectSample DeleteObjectSample getSize getMemberNames "},
    {"flash.system", " ApplicationDomain Capabilities FSCommand IME IMEConversionMode ImageDecodingPolicy "
         "JPEGLoaderContext LoaderContext Security SecurityDomain SecurityPanel System SystemUpdater "
         "TouchscreenType Worker fscommand exit "},
    {"flash.text", " AntiAliasType CSMSettings Font FontStyle FontType GridFitType StaticText StyleSheet TextColorType "
         "TextDisplayMode TextExtent TextField TextFieldAutoSize TextFieldType TextFormat TextFormatAlign "
         "TextFormatDisplay TextInteractionMode TextLineMetrics TextRenderer TextRun TextSnapshot "},
    {"flash.text.engine", " BreakOpportunity CFFHinting ContentElement DigitCase DigitWidth EastAsianJustifier "
         "ElementFormat FontDescription FontLookup FontMetrics FontPosture FontWeight GraphicElement GroupElement "
         "JustificationStyle Kerning LigatureLevel LineJustification RenderingMode SpaceJustifier TabAlignment TabStop "
         "TextBaseline TextBlock TextElement TextJustifier TextLine TextLineCreationResult TextLineMirrorRegion "
         "TextLineValidity TextRotation TypographicCase "},
    {"flash.ui", " ContextMenu ContextMenuBuiltInItems ContextMenuClipboardItems ContextMenuItem KeyLocation Keyboard "
         "KeyboardType Mouse MouseCursor MouseCursorData Multitouch MultitouchInputMode GameInput "},
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
