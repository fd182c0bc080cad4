#include "flash/avm1/bindings/Classes.h"
#include "flash/avm1/classes/ClassTable.h"

#include "base/TextCodes.h"

#include <algorithm>

// What the library has besides its classes of things on the stage: connections, dialogs for files, cameras,
// the text of a page. Movies find every function; behind some there is nothing here, and they say so.
namespace flash::avm1
{

namespace
{

Value nothing(Call&) { return {}; }
Value refuse(Call&) { return Value(false); }
Value none(Call&) { return Value::null(); }
Value noNames(Call& call) { return call.vm.newArray(); }

// ---- XMLSocket ---------------------------------------------------------------------------------------

/// There is no network: the attempt is made, and the answer comes later, as with a server that is down.
Value connectSocket(Call& call)
{
    Object* self = call.self.asObject();
    if (self == nullptr) return {};
    constexpr double kAnswerMs = 10;
    const Value answer[] = {Value(false)};
    call.vm.addTimer(Value(), self, Value(call.vm.string(std::string_view("onConnect"))), answer, kAnswerMs,
                     false);
    return Value(true);
}

/// What arrives is taken for a document.
Value socketData(Call& call)
{
    Object* self = call.self.asObject();
    if (self == nullptr) return {};
    Vm& vm = call.vm;
    const Value document =
        vm.construct(vm.global()->get(vm, vm.name(std::string_view("XML"))),
                     std::span<const Value>(call.args).first(std::min<std::size_t>(call.count(), 1)));
    vm.callMethod(self, "onXML", {document});
    return {};
}

// clang-format off
constexpr LibraryFunction kSocketMembers[] = {
    {"connect", Written::Native, kHidden, &connectSocket, 0, 0},
    {"send",    Written::Native, kHidden, &nothing,       0, 1},
    {"close",   Written::Native, kHidden, &nothing,       0, 2},
    {"onData",  Written::Script, kHidden, &socketData},
};

// ---- Camera, RemoteLSOUsage, TextRenderer ------------------------------------------------------------------

constexpr LibraryFunction kCameraMembers[] = {
    {"setMode",             Written::Native, kHidden6, &nothing, 0, 0},
    {"setQuality",          Written::Native, kHidden6, &nothing, 0, 1},
    {"setKeyFrameInterval", Written::Native, kHidden6, &nothing, 0, 2},
    {"setMotionLevel",      Written::Native, kHidden6, &nothing, 0, 3},
    {"setLoopback",         Written::Native, kHidden6, &nothing, 0, 4},
    {"setCursor",           Written::Native, kHidden6, &nothing, 0, 5},
};
constexpr LibraryFunction kRemoteUsageStatics[] = {
    {"getURLPageSupport", Written::Script, 0, &nothing},
};
constexpr LibraryFunction kTextRendererStatics[] = {
    {"setAdvancedAntialiasingTable", Written::Native, kFrom8, &nothing, 0, 10},
};
// clang-format on

// clang-format off
constexpr LibraryFunction kSnapshotMembers[] = {
    {"getCount",            Written::Native, kHidden6, &nothing, 0, 1},
    {"setSelected",         Written::Native, kHidden6, &nothing, 0, 2},
    {"getSelected",         Written::Native, kHidden6, &nothing, 0, 3},
    {"getText",             Written::Native, kHidden6, &nothing, 0, 4},
    {"getSelectedText",     Written::Native, kHidden6, &nothing, 0, 5},
    {"hitTestTextNearPos",  Written::Native, kHidden6, &nothing, 0, 6},
    {"findText",            Written::Native, kHidden6, &nothing, 0, 7},
    {"setSelectColor",      Written::Native, kHidden6, &nothing, 0, 8},
    {"getTextRunInfo",      Written::Native, kHidden6, &nothing, 0, 9},
};
// clang-format on

/// How variables go with a request: by its name, as clips' functions take it.
Value methodNumber(Call& call)
{
    const std::u16string name = AtomTable::fold(textArg(call, 0));
    return Value(name == u"get" ? 1 : name == u"post" ? 2 : 0);
}
constexpr LibraryFunction kClipMembers[] = {{"meth", Written::Script, kHidden, &methodNumber}};

// ---- flash.net ---------------------------------------------------------------------------------------

// Nothing is known of a file before the user has chosen one.
constexpr AccessorInfo kFileFacts[] = {
    {"creationDate", 0, &nothing, nullptr},
    {"creator", 0, &nothing, nullptr},
    {"modificationDate", 0, &nothing, nullptr},
    {"name", 0, &nothing, nullptr},
    {"size", 0, &nothing, nullptr},
    {"type", 0, &nothing, nullptr},
};

/// Makes a file reference of the object given or, without one, of `this`: the script constructor of the class
/// calls it with the object it constructs.
Value makeFileReference(Call& call)
{
    Object* object = call.arg(0).asObject();
    if (object == nullptr) object = call.self.asObject();
    if (object == nullptr) return {};
    call.vm.addAccessors(object, kFileFacts, 0);
    object->define(call.vm, "postData", Value(call.vm.string(std::string_view("undefined"))), 0);
    return {};
}

Value constructFileReference(Call& call)
{
    Object* self = call.self.asObject();
    if (self == nullptr) return {};
    call.vm.addAccessors(self, kFileFacts, 0);
    self->define(call.vm, "postData", Value(call.vm.string(std::string_view("undefined"))), 0);
    self->define(call.vm, "_listeners", Value(call.vm.newArray()), 0);
    return {};
}

Value constructFileReferenceList(Call& call)
{
    Object* self = call.self.asObject();
    if (self == nullptr) return {};
    Vm& vm = call.vm;
    self->define(vm, "fileList", vm.construct(vm.builtIns().arrayConstructor, {}), 0);
    self->define(vm, "_listeners", Value(vm.newArray()), 0);
    return {};
}

/// A movie that is not played by a browser has nowhere to send a file, and its user asked for no dialog.
Value refuseDialog(Call& call)
{
    StageBinding::of(call).host().log("FileReference: there is nowhere to load files to or from");
    return Value(false);
}

// clang-format off
constexpr LibraryFunction kFileMembers[] = {
    {"browse",   Written::Native, kHidden8, &refuseDialog, 0, 0},
    {"upload",   Written::Native, kHidden8, &refuseDialog, 0, 1},
    {"download", Written::Native, kHidden8, &refuseDialog, 0, 2},
    {"cancel",   Written::Native, kHidden8, &nothing,      0, 3},
};
constexpr LibraryFunction kFileListMembers[] = {
    {"browse",   Written::Native, kHidden8, &refuseDialog, 0, 0},
};
// clang-format on

// ---- flash.external.ExternalInterface ----------------------------------------------------------------

struct Entity {
    char16_t unit;
    std::u16string_view text;
};
constexpr Entity kEntities[] = {
    {u'&', u"&amp;"}, {u'<', u"&lt;"}, {u'>', u"&gt;"}, {u'"', u"&quot;"}, {u'\'', u"&apos;"},
};

/// Null stands for what is missing or no text; the rest is converted.
std::optional<std::u16string> textOrNull(Call& call)
{
    if (call.count() == 0) return {};
    std::u16string text = toText(call.vm, call.arg(0));
    if (text.empty()) return {};
    return text;
}

Value escapeXml(Call& call)
{
    const auto text = textOrNull(call);
    if (!text) return Value::null();
    std::u16string escaped;
    for (const char16_t unit : *text) {
        const auto* entity = std::ranges::find(kEntities, unit, &Entity::unit);
        if (entity != std::end(kEntities))
            escaped += entity->text;
        else
            escaped += unit;
    }
    return call.vm.string(std::move(escaped));
}

Value unescapeXml(Call& call)
{
    const auto text = textOrNull(call);
    if (!text) return Value::null();
    std::u16string plain;
    std::u16string_view rest = *text;
    while (!rest.empty()) {
        const auto* entity = std::ranges::find_if(
            kEntities, [&](const Entity& candidate) { return rest.starts_with(candidate.text); });
        if (entity != std::end(kEntities)) {
            plain += entity->unit;
            rest.remove_prefix(entity->text.size());
        } else {
            plain += rest.front();
            rest.remove_prefix(1);
        }
    }
    return call.vm.string(std::move(plain));
}

/// Line ends and double quotes get a backslash before them; a backslash does not.
Value quoteString(Call& call)
{
    const auto text = textOrNull(call);
    if (!text) return Value::null();
    std::u16string quoted;
    for (const char16_t unit : *text) {
        switch (unit) {
        case u'\n': quoted += u"\\n"; break;
        case u'\r': quoted += u"\\r"; break;
        case u'"': quoted += u"\\\""; break;
        default: quoted += unit; break;
        }
    }
    return call.vm.string(std::move(quoted));
}

/// Values are written as the pages of browsers exchange them.
Value toXml(Call& call)
{
    Vm& vm = call.vm;
    Object* self = call.self.asObject();
    if (self == nullptr) return {};
    const Value value = call.arg(0);
    const auto tagged = [&](std::u16string_view tag, Value content) {
        std::u16string text(1, u'<');
        text.append(tag)
            .append(1, u'>')
            .append(toText(vm, content))
            .append(u"</")
            .append(tag)
            .append(1, u'>');
        return Value(vm.string(std::move(text)));
    };
    switch (value.type()) {
    case Value::Type::String: return tagged(u"string", vm.callMethod(self, "_escapeXML", {value}));
    case Value::Type::Number: return tagged(u"number", value);
    case Value::Type::Boolean: return vm.string(std::string_view(value.boolean() ? "<true/>" : "<false/>"));
    case Value::Type::Null: return vm.string(std::string_view("<null/>"));
    case Value::Type::Undefined: return vm.string(std::string_view("<undefined/>"));
    case Value::Type::Object: break;
    }
    Object* object = value.object();
    const bool isArray = object->isInstance(vm, vm.builtIns().array);
    std::u16string text = isArray ? u"<array>" : u"<object>";
    for (const Name name : object->enumerate(vm)) {
        if (vm.isUnwinding()) return {};
        text.append(u"<property id=\"").append(name.view()).append(u"\">");
        text.append(toText(vm, vm.callMethod(self, "_toXML", {object->get(vm, name)})));
        text.append(u"</property>");
    }
    text.append(isArray ? u"</array>" : u"</object>");
    return vm.string(std::move(text));
}

// clang-format off
constexpr LibraryFunction kExternalMembers[] = {
    {"_initJS",          Written::Native, kConstant | kFrom8, &nothing,     0, 0},
    {"_objectID",        Written::Native, kConstant | kFrom8, &none,        0, 1},
    {"_addCallback",     Written::Native, kConstant | kFrom8, &refuse,      0, 2},
    {"_evalJS",          Written::Native, kConstant | kFrom8, &none,        0, 3},
    {"_callOut",         Written::Native, kConstant | kFrom8, &none,        0, 4},
    {"_escapeXML",       Written::Native, kConstant | kFrom8, &escapeXml,   0, 5},
    {"_unescapeXML",     Written::Native, kConstant | kFrom8, &unescapeXml, 0, 6},
    {"_jsQuoteString",   Written::Native, kConstant | kFrom8, &quoteString, 0, 7},
    {"addCallback",      Written::Script, kConstant | kFrom8, &refuse},
    {"call",             Written::Script, kConstant | kFrom8, &none},
    {"_callIn",          Written::Script, kConstant | kFrom8, &none},
    {"_arrayToXML",      Written::Script, kConstant | kFrom8, &toXml},
    {"_argumentsToXML",  Written::Script, kConstant | kFrom8, &toXml},
    {"_objectToXML",     Written::Script, kConstant | kFrom8, &toXml},
    {"_toXML",           Written::Script, kConstant | kFrom8, &toXml},
    {"_objectToAS",      Written::Script, kConstant | kFrom8, &none},
    {"_arrayToAS",       Written::Script, kConstant | kFrom8, &none},
    {"_toAS",            Written::Script, kConstant | kFrom8, &none},
    {"_argumentsToAS",   Written::Script, kConstant | kFrom8, &none},
    {"_arrayToJS",       Written::Script, kConstant | kFrom8, &none},
    {"_objectToJS",      Written::Script, kConstant | kFrom8, &none},
    {"_toJS",            Written::Script, kConstant | kFrom8, &none},
};
/// No page is around the movie.
constexpr AccessorInfo kAvailable[] = {{"available", kReadOnly | kFrom8, &refuse, nullptr}};

// ---- System ------------------------------------------------------------------------------------------------

constexpr LibraryFunction kImeMembers[] = {
    {"getEnabled",           Written::Native, kHidden8, &refuse,  0, 0},
    {"setEnabled",           Written::Native, kHidden8, &refuse,  0, 1},
    {"getConversionMode",    Written::Native, kHidden8, &nothing, 0, 2},
    {"setConversionMode",    Written::Native, kHidden8, &refuse,  0, 3},
    {"setCompositionString", Written::Native, kHidden8, &refuse,  0, 4},
    {"doConversion",         Written::Native, kHidden8, &refuse,  0, 5},
};
constexpr const char* kConversionModes[] = {
    "ALPHANUMERIC_FULL", "ALPHANUMERIC_HALF", "CHINESE", "JAPANESE_HIRAGANA", "JAPANESE_KATAKANA_FULL",
    "JAPANESE_KATAKANA_HALF", "KOREAN", "UNKNOWN",
};
constexpr LibraryFunction kProductMembers[] = {
    {"isRunning",        Written::Script, kHidden, &refuse},
    {"isInstalled",      Written::Script, kHidden, &refuse},
    {"launch",           Written::Script, kHidden, &refuse},
    {"download",         Written::Script, kHidden, &refuse},
    {"installedVersion", Written::Script, kHidden, &nothing},
};
constexpr LibraryFunction kPolicyMembers[] = {
    {"resolve", Written::Native, kHidden, &nothing, 0, 15},
};
constexpr LibraryFunction kSecurityMembers[] = {
    {"chooseLocalSwfPath", Written::Native, kHidden, &nothing, 0, 3},
    {"escapeDomain",       Written::Native, kHidden, &nothing, 0, 4},
};
constexpr LibraryFunction kGlobals[] = {
    {"enableDebugConsole", Written::Native, kHidden, &nothing},
    {"showRedrawRegions",  Written::Native, kHidden, &nothing},
};
// clang-format on

Object* packageOf(Vm& vm, Object* flash, const char* name)
{
    Object* package = vm.newObject();
    flash->define(vm, name, package, 0);
    return package;
}

/// What the library has in script though it is native here: such functions have a prototype.
void passForScript(Vm& vm, const char* className, std::initializer_list<const char*> names)
{
    Object* constructor = vm.global()->get(vm, vm.name(std::string_view(className))).asObject();
    Object* prototype = constructor == nullptr ? nullptr : vm.prototypeOf(constructor);
    for (const char* name : names) {
        Value function;
        if (prototype == nullptr ||
            !prototype->find(vm, vm.name(std::string_view(name)), function, prototype) ||
            !function.isObject())
            continue;
        Object* own = vm.newObject();
        own->define(vm, vm.common().constructor, function, kBuiltIn);
        function.object()->define(vm, vm.common().prototype, own, kBuiltIn);
    }
}

/// The numbers by which scripts know a clip's functions, in order.
void numberClipFunctions(Vm& vm)
{
    constexpr int kClipTable = 900;
    constexpr const char* kNames[] = {"attachMovie", "swapDepths",  "localToGlobal",      "globalToLocal",
                                      "hitTest",     "getBounds",   "getBytesTotal",      "getBytesLoaded",
                                      "attachAudio", "attachVideo", "getDepth",           "setMask",
                                      "play",        "stop",        "nextFrame",          "prevFrame",
                                      "gotoAndPlay", "gotoAndStop", "duplicateMovieClip", "removeMovieClip",
                                      "startDrag",   "stopDrag"};
    Object* constructor = vm.global()->get(vm, vm.name(std::string_view("MovieClip"))).asObject();
    Object* prototype = constructor == nullptr ? nullptr : vm.prototypeOf(constructor);
    for (int i = 0; prototype != nullptr && i < static_cast<int>(std::size(kNames)); ++i) {
        Value function;
        prototype->find(vm, vm.name(std::string_view(kNames[i])), function, prototype);
        if (function.isObject() && function.object()->isFunction())
            vm.registerNative(kClipTable, i, function.object()->asFunction()->nativeFunction(),
                              function.object()->asFunction()->minArguments());
    }
}

/// A class outside of the global object.
Function* defineIn(Vm& vm, Object* package, const char* name, NativeFunction constructor,
                   std::span<const LibraryFunction> members, int table = -1, std::uint16_t flags = 0)
{
    Function* function = vm.newScriptLike(constructor);
    defineFunctions(vm, vm.prototypeOf(function), members, table);
    package->define(vm, name, function, flags);
    return function;
}

void completeSystem(Vm& vm)
{
    Object* system = vm.global()->get(vm, vm.name(std::string_view("System"))).asObject();
    if (system == nullptr) return;
    Object* ime = vm.newObject();
    defineFunctions(vm, ime, kImeMembers, 2201);
    for (const char* mode : kConversionModes)
        ime->define(vm, mode, Value(vm.string(std::string_view(mode))), kHidden8);
    makeBroadcaster(vm, ime);
    system->define(vm, "IME", ime, kDontEnum);
    defineIn(vm, system, "Product", &nothing, kProductMembers, -1, kDontEnum);
    Object* security = system->get(vm, vm.name(std::string_view("security"))).asObject();
    if (security == nullptr) return;
    defineFunctions(vm, security, kSecurityMembers, 12);
    Function* resolver = defineIn(vm, security, "PolicyFileResolver", &nothing, kPolicyMembers, 12, kHidden);
    makeBroadcaster(vm, vm.prototypeOf(resolver));
}

} // namespace

void installLibrary(StageBinding& binding, Object* flash)
{
    Vm& vm = binding.vm();
    defineFunctions(vm, vm.global(), kGlobals);
    defineFunctions(vm, vm.prototypeOf(vm.defineClass("XMLSocket", &nothing)), kSocketMembers, 400);
    Function* camera = vm.defineClass("Camera", &nothing);
    defineFunctions(vm, vm.prototypeOf(camera), kCameraMembers, 2102);
    camera->define(vm, "get", vm.newScriptLike(&none), 0);
    camera->defineAccessor(vm, vm.name(std::string_view("names")), vm.newFunction(&noNames), nullptr, 0);
    defineFunctions(vm, vm.prototypeOf(vm.defineClass("TextSnapshot", &nothing)), kSnapshotMembers, 1067);
    if (Object* clip = vm.global()->get(vm, vm.name(std::string_view("MovieClip"))).asObject())
        defineFunctions(vm, vm.prototypeOf(clip), kClipMembers);
    passForScript(vm, "MovieClip",
                  {"getTextSnapshot", "getURL", "loadMovie", "loadVariables", "unloadMovie"});
    passForScript(vm, "NetStream", {"pause", "play", "publish", "receiveAudio", "receiveVideo", "seek"});
    numberClipFunctions(vm);
    Function* usage = vm.defineClass("RemoteLSOUsage", &nothing);
    defineFunctions(vm, usage, kRemoteUsageStatics);
    completeSystem(vm);

    Object* net = packageOf(vm, flash, "net");
    for (const bool list : {false, true}) {
        Function* made =
            list ? defineIn(vm, net, "FileReferenceList", &constructFileReferenceList, kFileListMembers, 2205)
                 : defineIn(vm, net, "FileReference", &constructFileReference, kFileMembers, 2204);
        makeBroadcaster(vm, vm.prototypeOf(made));
    }
    vm.registerNative(2204, 200, &makeFileReference);

    Object* external = packageOf(vm, flash, "external");
    Function* interface = defineIn(vm, external, "ExternalInterface", &nothing, {});
    defineFunctions(vm, interface, kExternalMembers, 14);
    vm.addAccessors(interface, kAvailable);
    interface->changeFlags(vm, Name(), kConstant, 0);
    interface->changeFlags(vm, vm.common().prototype, kFrom8, 0);

    Function* renderer = defineIn(vm, packageOf(vm, flash, "text"), "TextRenderer", &nothing, {});
    defineFunctions(vm, renderer, kTextRendererStatics, 2150);
}

} // namespace flash::avm1
