#include "flash/avm2/bindings/Library.h"
#include "flash/avm2/bindings/Player.h"
#include "flash/avm2/classes/Library.h"

// Classes that are little more than their variables, and lists of constants.
namespace flash::avm2
{

using Kind = NativeMember::Kind;

namespace
{

Value assign(Call& call)
{
    Object* self = call.self.asObject();
    if (self == nullptr) return {};
    for (std::uint32_t i = 0; i < call.count && i < self->slotCount(); ++i)
        call.vm.setSlotTyped(*self, i, call.args[i]);
    return {};
}

Value cloned(Call& call)
{
    Object* self = call.self.asObject();
    ClassObject* cls = self->traits()->cls;
    while (cls->constructor != nullptr && cls->constructor->native == nullptr && cls->base != nullptr)
        cls = cls->base;
    Object* made = call.vm.instantiate(cls);
    for (std::uint32_t i = 0; i < made->slotCount() && i < self->slotCount(); ++i)
        made->setSlot(i, self->slot(i));
    return Value(made);
}

Value nothing(Call&) { return {}; }
Value memory(Call& call) { return static_cast<double>(call.vm.heap().bytesInUse()); }

Value fscommand(Call& call)
{
    stage::Stage& stage = Player::of(call.vm).stage();
    const std::string command = toUtf8(call.vm.text(call.arg(0)));
    const std::string argument = call.has(1) ? toUtf8(call.vm.text(call.arg(1))) : std::string();
    stage.queue().addRequest(
        [&stage, command, argument] { stage.services().host.fsCommand(command, argument); });
    return {};
}

Value version(Call& call) { return call.vm.string(std::string_view("WIN 11,2,202,0")); }
Value playerType(Call& call) { return call.vm.string(std::string_view("StandAlone")); }
Value isFalse(Call&) { return false; }
Value isTrue(Call&) { return true; }

constexpr NativeMember kClone[] = {{"clone", Kind::Method, &cloned, 0, 0}};
constexpr NativeMember kSystem[] = {
    {"gc", Kind::Static, &nothing, 0, 0},
    {"totalMemory", Kind::StaticGetter, &memory},
    {"totalMemoryNumber", Kind::StaticGetter, &memory},
    {"pause", Kind::Static, &nothing, 0, 0},
    {"resume", Kind::Static, &nothing, 0, 0},
    {"setClipboard", Kind::Static, &nothing, 1, 1},
    {"useCodePage", Kind::StaticGetter, &isFalse, 0, 0, &nothing},
};
constexpr NativeMember kSecurity[] = {{"allowDomain", Kind::Static, &nothing},
                                      {"allowInsecureDomain", Kind::Static, &nothing},
                                      {"loadPolicyFile", Kind::Static, &nothing}};
constexpr NativeMember kCapabilities[] = {
    {"version", Kind::StaticGetter, &version},
    {"playerType", Kind::StaticGetter, &playerType},
    {"isDebugger", Kind::StaticGetter, &isFalse},
    {"hasAudio", Kind::StaticGetter, &isTrue},
};
constexpr NativeMember kMouse[] = {{"hide", Kind::Static, &nothing, 0, 0},
                                   {"show", Kind::Static, &nothing, 0, 0}};

using C = NativeConstant;
constexpr C kBlend[] = {{"ADD", 0, "add"},          {"ALPHA", 0, "alpha"},
                        {"DARKEN", 0, "darken"},    {"DIFFERENCE", 0, "difference"},
                        {"ERASE", 0, "erase"},      {"HARDLIGHT", 0, "hardlight"},
                        {"INVERT", 0, "invert"},    {"LAYER", 0, "layer"},
                        {"LIGHTEN", 0, "lighten"},  {"MULTIPLY", 0, "multiply"},
                        {"NORMAL", 0, "normal"},    {"OVERLAY", 0, "overlay"},
                        {"SCREEN", 0, "screen"},    {"SHADER", 0, "shader"},
                        {"SUBTRACT", 0, "subtract"}};
constexpr C kScaleMode[] = {{"EXACT_FIT", 0, "exactFit"},
                            {"NO_BORDER", 0, "noBorder"},
                            {"NO_SCALE", 0, "noScale"},
                            {"SHOW_ALL", 0, "showAll"}};
constexpr C kAlign[] = {{"BOTTOM", 0, "B"},    {"BOTTOM_LEFT", 0, "BL"}, {"BOTTOM_RIGHT", 0, "BR"},
                        {"LEFT", 0, "L"},      {"RIGHT", 0, "R"},        {"TOP", 0, "T"},
                        {"TOP_LEFT", 0, "TL"}, {"TOP_RIGHT", 0, "TR"}};
constexpr C kQuality[] = {
    {"BEST", 0, "best"}, {"HIGH", 0, "high"}, {"LOW", 0, "low"}, {"MEDIUM", 0, "medium"}};
constexpr C kDisplayState[] = {{"FULL_SCREEN", 0, "fullScreen"},
                               {"FULL_SCREEN_INTERACTIVE", 0, "fullScreenInteractive"},
                               {"NORMAL", 0, "normal"}};
constexpr C kEndian[] = {{"BIG_ENDIAN", 0, "bigEndian"}, {"LITTLE_ENDIAN", 0, "littleEndian"}};
constexpr C kEncoding[] = {{"AMF0", 0}, {"AMF3", 3}, {"DEFAULT", 3}};
constexpr C kCompression[] = {{"DEFLATE", 0, "deflate"}, {"LZMA", 0, "lzma"}, {"ZLIB", 0, "zlib"}};
constexpr C kMethod[] = {{"GET", 0, "GET"},       {"POST", 0, "POST"}, {"PUT", 0, "PUT"},
                         {"DELETE", 0, "DELETE"}, {"HEAD", 0, "HEAD"}, {"OPTIONS", 0, "OPTIONS"}};
constexpr C kDataFormat[] = {{"BINARY", 0, "binary"}, {"TEXT", 0, "text"}, {"VARIABLES", 0, "variables"}};
constexpr C kTextAlign[] = {{"CENTER", 0, "center"}, {"END", 0, "end"},     {"JUSTIFY", 0, "justify"},
                            {"LEFT", 0, "left"},     {"RIGHT", 0, "right"}, {"START", 0, "start"}};
constexpr C kAutoSize[] = {
    {"CENTER", 0, "center"}, {"LEFT", 0, "left"}, {"NONE", 0, "none"}, {"RIGHT", 0, "right"}};
constexpr C kFieldType[] = {{"DYNAMIC", 0, "dynamic"}, {"INPUT", 0, "input"}};
constexpr C kSnapping[] = {{"ALWAYS", 0, "always"}, {"AUTO", 0, "auto"}, {"NEVER", 0, "never"}};
constexpr C kCaps[] = {{"NONE", 0, "none"}, {"ROUND", 0, "round"}, {"SQUARE", 0, "square"}};
constexpr C kJoints[] = {{"BEVEL", 0, "bevel"}, {"MITER", 0, "miter"}, {"ROUND", 0, "round"}};
constexpr C kLineScale[] = {{"HORIZONTAL", 0, "horizontal"},
                            {"NONE", 0, "none"},
                            {"NORMAL", 0, "normal"},
                            {"VERTICAL", 0, "vertical"}};
constexpr C kGradient[] = {{"LINEAR", 0, "linear"}, {"RADIAL", 0, "radial"}};
constexpr C kSpread[] = {{"PAD", 0, "pad"}, {"REFLECT", 0, "reflect"}, {"REPEAT", 0, "repeat"}};
constexpr C kInterpolation[] = {{"LINEAR_RGB", 0, "linearRGB"}, {"RGB", 0, "rgb"}};
constexpr C kFilterQuality[] = {{"HIGH", 3}, {"LOW", 1}, {"MEDIUM", 2}};
constexpr C kFilterType[] = {{"FULL", 0, "full"}, {"INNER", 0, "inner"}, {"OUTER", 0, "outer"}};
constexpr C kKeys[] = {{"BACKSPACE", 8},  {"TAB", 9},     {"ENTER", 13}, {"SHIFT", 16},   {"CONTROL", 17},
                       {"CAPS_LOCK", 20}, {"ESCAPE", 27}, {"SPACE", 32}, {"PAGE_UP", 33}, {"PAGE_DOWN", 34},
                       {"END", 35},       {"HOME", 36},   {"LEFT", 37},  {"UP", 38},      {"RIGHT", 39},
                       {"DOWN", 40},      {"INSERT", 45}, {"DELETE", 46}};

constexpr NativeClass record(std::string_view package, std::string_view name, std::string_view slots,
                             bool isSealed = true)
{
    return {.package = package,
            .name = name,
            .base = {},
            .flags = static_cast<std::uint8_t>(isSealed ? NativeClass::Sealed : 0),
            .constructor = &assign,
            .minArguments = 0,
            .maxArguments = -1,
            .members = kClone,
            .slots = slots};
}
constexpr NativeClass filter(std::string_view name, std::string_view slots)
{
    return {.package = "flash.filters",
            .name = name,
            .base = "flash.filters::BitmapFilter",
            .flags = NativeClass::Sealed,
            .constructor = &assign,
            .minArguments = 0,
            .maxArguments = -1,
            .members = kClone,
            .slots = slots};
}
constexpr NativeClass constants(std::string_view package, std::string_view name,
                                std::span<const NativeConstant> list)
{
    return {.package = package,
            .name = name,
            .base = {},
            .flags = NativeClass::Sealed | NativeClass::Final,
            .constants = list};
}
constexpr NativeClass statics(std::string_view package, std::string_view name,
                              std::span<const NativeMember> members)
{
    return {.package = package,
            .name = name,
            .base = {},
            .flags = NativeClass::Sealed | NativeClass::Final,
            .members = members};
}

constexpr NativeClass kClasses[] = {
    {.package = "flash.filters",
     .name = "BitmapFilter",
     .base = {},
     .flags = NativeClass::Sealed,
     .constructor = &assign,
     .members = kClone},
    filter("BlurFilter", "blurX:Number=4 blurY:Number=4 quality:int=1"),
    filter("GlowFilter", "color:uint=16711680 alpha:Number=1 blurX:Number=6 blurY:Number=6 strength:Number=2 "
                         "quality:int=1 inner:Boolean knockout:Boolean"),
    filter("DropShadowFilter",
           "distance:Number=4 angle:Number=45 color:uint alpha:Number=1 blurX:Number=4 blurY:Number=4 "
           "strength:Number=1 quality:int=1 inner:Boolean knockout:Boolean hideObject:Boolean"),
    filter("BevelFilter",
           "distance:Number=4 angle:Number=45 highlightColor:uint=16777215 highlightAlpha:Number=1 "
           "shadowColor:uint shadowAlpha:Number=1 blurX:Number=4 blurY:Number=4 strength:Number=1 "
           "quality:int=1 type:String=inner knockout:Boolean"),
    filter("ColorMatrixFilter", "matrix:*"),
    filter("GradientGlowFilter",
           "distance:Number=4 angle:Number=45 colors:* alphas:* ratios:* blurX:Number=4 blurY:Number=4 "
           "strength:Number=1 quality:int=1 type:String=inner knockout:Boolean"),
    filter("GradientBevelFilter",
           "distance:Number=4 angle:Number=45 colors:* alphas:* ratios:* blurX:Number=4 blurY:Number=4 "
           "strength:Number=1 quality:int=1 type:String=inner knockout:Boolean"),
    record("flash.media", "SoundTransform",
           "volume:Number=1 pan:Number leftToLeft:Number=1 leftToRight:Number rightToLeft:Number "
           "rightToRight:Number=1"),
    {.package = "flash.display",
     .name = "FrameLabel",
     .base = "flash.events::EventDispatcher",
     .flags = NativeClass::Sealed | NativeClass::Final,
     .constructor = &assign,
     .minArguments = 2,
     .maxArguments = 2,
     .slots = "name:String frame:int"},
    {.package = "flash.display",
     .name = "Scene",
     .base = {},
     .flags = NativeClass::Sealed | NativeClass::Final,
     .constructor = &assign,
     .minArguments = 3,
     .maxArguments = 3,
     .slots = "name:String labels:* numFrames:int"},
    record("flash.net", "URLRequest",
           "url:String method:String=GET data:* contentType:String=application/x-www-form-urlencoded "
           "requestHeaders:* digest:String"),
    record("flash.net", "URLRequestHeader", "name:String= value:String="),
    record("flash.net", "FileFilter", "description:String extension:String macType:String"),
    record("flash.system", "LoaderContext",
           "checkPolicyFile:Boolean applicationDomain:* securityDomain:* allowCodeImport:Boolean=true"),
    record("flash.text", "TextFormat",
           "font:* size:* color:* bold:* italic:* underline:* url:* target:* align:* leftMargin:* "
           "rightMargin:* indent:* leading:* blockIndent:* bullet:* kerning:* letterSpacing:* tabStops:*"),
    statics("flash.system", "System", kSystem),
    statics("flash.system", "Security", kSecurity),
    statics("flash.system", "Capabilities", kCapabilities),
    statics("flash.ui", "Mouse", kMouse),
    constants("flash.ui", "Keyboard", kKeys),
    constants("flash.display", "BlendMode", kBlend),
    constants("flash.display", "StageScaleMode", kScaleMode),
    constants("flash.display", "StageAlign", kAlign),
    constants("flash.display", "StageQuality", kQuality),
    constants("flash.display", "StageDisplayState", kDisplayState),
    constants("flash.display", "PixelSnapping", kSnapping),
    constants("flash.display", "CapsStyle", kCaps),
    constants("flash.display", "JointStyle", kJoints),
    constants("flash.display", "LineScaleMode", kLineScale),
    constants("flash.display", "GradientType", kGradient),
    constants("flash.display", "SpreadMethod", kSpread),
    constants("flash.display", "InterpolationMethod", kInterpolation),
    constants("flash.filters", "BitmapFilterQuality", kFilterQuality),
    constants("flash.filters", "BitmapFilterType", kFilterType),
    constants("flash.utils", "Endian", kEndian),
    constants("flash.utils", "CompressionAlgorithm", kCompression),
    constants("flash.net", "ObjectEncoding", kEncoding),
    constants("flash.net", "URLRequestMethod", kMethod),
    constants("flash.net", "URLLoaderDataFormat", kDataFormat),
    constants("flash.text", "TextFormatAlign", kTextAlign),
    constants("flash.text", "TextFieldAutoSize", kAutoSize),
    constants("flash.text", "TextFieldType", kFieldType),
    {.package = "flash.utils", .name = "IDataInput", .base = {}, .flags = NativeClass::Interface},
    {.package = "flash.utils", .name = "IDataOutput", .base = {}, .flags = NativeClass::Interface},
    {.package = "flash.utils", .name = "IExternalizable", .base = {}, .flags = NativeClass::Interface},
    {.package = "flash.display", .name = "IBitmapDrawable", .base = {}, .flags = NativeClass::Interface},
};
constexpr NativeFunctionInfo kFunctions[] = {
    {"flash.system", "fscommand", &fscommand, 1, 2},
    {"flash.net", "navigateToURL", &nothing, 1, 2},
    {"flash.net", "sendToURL", &nothing, 1, 1},
};

} // namespace

std::span<const NativeClass> recordClasses() { return kClasses; }
std::span<const NativeFunctionInfo> systemFunctions() { return kFunctions; }

} // namespace flash::avm2
