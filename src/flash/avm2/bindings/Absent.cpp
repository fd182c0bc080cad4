#include "flash/avm2/bindings/Fields.h"
#include "flash/avm2/bindings/Library.h"
#include "flash/avm2/bindings/Player.h"

// Classes of services that are not there, for movies that name them: profiling, groups of peers, updates,
// input methods. They take what they are given, and nothing comes of it.
namespace flash::avm2
{

using Kind = NativeMember::Kind;
using C = NativeConstant;

namespace
{

Value minusOne(Call&) { return -1; }

// ---- flash.sampler: no samples are taken ----

// ---- flash.text.TextRenderer ----

Value rendererLevel(Call&) { return 4; }
Value rendererMode(Call& call) { return Value(call.vm.name("default").string()); }
constexpr NativeMember kRenderer[] = {
    {"maxLevel", Kind::StaticGetter, &rendererLevel, 0, 0, &doNothing, "int"},
    {"displayMode", Kind::StaticGetter, &rendererMode, 0, 0, &doNothing, "String"},
    {"antiAliasType", Kind::StaticGetter, &rendererMode, 0, 0, &doNothing, "String"},
    {"setAdvancedAntiAliasingTable", Kind::Static, &doNothing, 4, 4},
};

// ---- flash.trace ----

constexpr NativeMember kTrace[] = {
    {"setLevel", Kind::Static, &doNothing, 1, 2},
    {"getLevel", Kind::Static, &isAlwaysZero, 0, 1},
    {"setListener", Kind::Static, &doNothing, 1, 1},
    {"getListener", Kind::Static, &isAlwaysNull, 0, 0},
};
constexpr C kTraceLevels[] = {{"OFF", 0},
                              {"METHODS", 1},
                              {"METHODS_WITH_ARGS", 2},
                              {"METHODS_AND_LINES", 3},
                              {"METHODS_AND_LINES_WITH_ARGS", 4},
                              {"FILE", 1},
                              {"LISTENER", 2}};

// ---- flash.system.SystemUpdater ----

Value update(Call& call)
{
    Player::of(call.vm).log("SystemUpdater.update: movies update nothing");
    return {};
}
constexpr NativeMember kUpdater[] = {
    {"update", Kind::Method, &update, 1, 1},
    {"cancel", Kind::Method, &doNothing, 0, 0},
};

// ---- flash.net: groups of peers need a server between them ----

constexpr C kReceiveModes[] = {{"EXACT", 0, "exact"}, {"NEAREST", 0, "nearest"}};
constexpr C kSendModes[] = {{"NEXT_DECREASING", 0, "nextDecreasing"},
                            {"NEXT_INCREASING", 0, "nextIncreasing"}};
constexpr C kSendResults[] = {{"ERROR", 0, "error"}, {"NO_ROUTE", 0, "no route"}, {"SENT", 0, "sent"}};
constexpr C kStrategies[] = {{"LOWEST_FIRST", 0, "lowestFirst"}, {"RAREST_FIRST", 0, "rarestFirst"}};
constexpr C kAvailabilityReasons[] = {{"DRIVER_TOO_OLD", 0, "driverTooOld"},
                                      {"NO_ERROR", 0, "noError"},
                                      {"UNAVAILABLE", 0, "unavailable"},
                                      {"USER_DISABLED", 0, "userDisabled"},
                                      {"WMODE_INCOMPATIBLE", 0, "wModeIncompatible"}};
constexpr C kFocusDirections[] = {{"BOTTOM", 0, "bottom"}, {"NONE", 0, "none"}, {"TOP", 0, "top"}};

constexpr NativeClass plain(std::string_view package, std::string_view name, std::string_view slots,
                            std::string_view base = {})
{
    return {.package = package,
            .name = name,
            .base = base,
            .flags = NativeClass::Sealed,
            .constructor = &assignSlots,
            .minArguments = 0,
            .maxArguments = -1,
            .slots = slots};
}
constexpr NativeClass refused(std::string_view package, std::string_view name)
{
    return {.package = package,
            .name = name,
            .base = "flash.events::EventDispatcher",
            .flags = NativeClass::Sealed,
            .constructor = &refuseConstruction};
}

constexpr NativeClass kClasses[] = {
    plain("flash.sampler", "StackFrame", "name:String file:String line:uint scriptID:Number"),
    plain("flash.sampler", "Sample", "time:Number stack:*"),
    plain("flash.sampler", "NewObjectSample", "id:Number type:*", "flash.sampler::Sample"),
    plain("flash.sampler", "DeleteObjectSample", "id:Number size:Number", "flash.sampler::Sample"),
    staticsOf("flash.text", "TextRenderer", kRenderer),
    {.package = "flash.trace", .name = "Trace", .base = {}, .members = kTrace, .constants = kTraceLevels},
    {.package = "flash.system",
     .name = "SystemUpdater",
     .base = "flash.events::EventDispatcher",
     .flags = NativeClass::Sealed,
     .minArguments = 0,
     .maxArguments = 0,
     .members = kUpdater},
    plain("flash.text.ime", "CompositionAttributeRange",
          "relativeStart:int relativeEnd:int selected:Boolean converted:Boolean"),
    {.package = "flash.text.ime", .name = "IIMEClient", .base = {}, .flags = NativeClass::Interface},
    refused("flash.media", "StageVideo"),
    constantsOf("flash.net", "NetGroupReceiveMode", kReceiveModes),
    constantsOf("flash.net", "NetGroupSendMode", kSendModes),
    constantsOf("flash.net", "NetGroupSendResult", kSendResults),
    constantsOf("flash.net", "NetGroupReplicationStrategy", kStrategies),
    constantsOf("flash.media", "StageVideoAvailabilityReason", kAvailabilityReasons),
    constantsOf("flash.display", "FocusDirection", kFocusDirections),
};
constexpr NativeFunctionInfo kFunctions[] = {
    {"flash.sampler", "startSampling", &doNothing, 0, 0},
    {"flash.sampler", "stopSampling", &doNothing, 0, 0},
    {"flash.sampler", "pauseSampling", &doNothing, 0, 0},
    {"flash.sampler", "clearSamples", &doNothing, 0, 0},
    {"flash.sampler", "sampleInternalAllocs", &doNothing, 1, 1},
    {"flash.sampler", "setSamplerCallback", &doNothing, 1, 1},
    {"flash.sampler", "getSamples", &isAlwaysNull, 0, 0},
    {"flash.sampler", "getSampleCount", &isAlwaysZero, 0, 0},
    {"flash.sampler", "getSize", &isAlwaysZero, 1, 1},
    {"flash.sampler", "getMemberNames", &isAlwaysEmpty, 1, 2},
    {"flash.sampler", "getInvocationCount", &minusOne, 2, 2},
    {"flash.sampler", "getSetterInvocationCount", &minusOne, 2, 2},
    {"flash.sampler", "getGetterInvocationCount", &minusOne, 2, 2},
    {"flash.sampler", "isGetterSetter", &isAlwaysFalse, 2, 2},
    {"flash.sampler", "getLexicalScopes", &isAlwaysEmpty, 1, 1},
    {"flash.sampler", "getSavedThis", &isAlwaysNull, 1, 1},
};

} // namespace

NativeLibrary absentLibrary() { return {kClasses, kFunctions}; }

} // namespace flash::avm2
