#include "flash/avm2/bindings/EventKinds.h"
#include "flash/avm2/bindings/Fields.h"
#include "flash/avm2/bindings/Library.h"
#include "flash/avm2/bindings/NetConnection.h"
#include "flash/avm2/bindings/Player.h"

// Films that a server has to permit: there is no server to ask, and whoever asks hears that it does not
// answer.
namespace flash::avm2
{

using Kind = NativeMember::Kind;
using C = NativeConstant;

namespace
{

constexpr int kServerConnectionFailed = 3305;

Value manager(Call& call)
{
    // One for the whole movie: what all of them inherit from holds it.
    ClassObject* cls = call.vm.nativeClass("flash.net.drm::DRMManager");
    const Name key = call.vm.name("@only");
    PropertyTable& kept = cls->prototype->table();
    if (const std::uint32_t at = kept.find(key); at != PropertyTable::kMissing) return kept.at(at).value;
    Object* made = call.vm.instantiate(cls);
    kept.set(key, Value(made));
    kept.setHidden(key, true);
    return Value(made);
}

Value authenticate(Call& call)
{
    runLater(call.vm, *call.self.object(), [](Vm& vm, Object& object) {
        fireWith(vm, static_cast<DispatcherObject&>(object), "flash.events::DRMAuthenticationErrorEvent",
                 "authenticationError", {Value(vm.common().empty.string()), Value(kServerConnectionFailed)});
    });
    return {};
}
Value loadVoucher(Call& call)
{
    if (objectArg(call, 0, "flash.net.drm::DRMContentData") == nullptr)
        throwNullParameter(call.vm, "contentData");
    runLater(call.vm, *call.self.object(), [](Vm& vm, Object& object) {
        fireWith(vm, static_cast<DispatcherObject&>(object), "flash.events::DRMErrorEvent", "drmError",
                 {Value(vm.common().empty.string()), Value(kServerConnectionFailed)});
    });
    return {};
}

constexpr NativeMember kManager[] = {
    {"getDRMManager", Kind::Static, &manager, 0, 0},
    {"isSupported", Kind::StaticGetter, &isAlwaysFalse, 0, 0, nullptr, "Boolean"},
    {"authenticate", Kind::Method, &authenticate, 4, 4},
    {"setAuthenticationToken", Kind::Method, &doNothing, 3, 3},
    {"loadVoucher", Kind::Method, &loadVoucher, 2, 2},
};

constexpr C kMethods[] = {{"ANONYMOUS", 0, "anonymous"}, {"USERNAME_AND_PASSWORD", 0, "usernameAndPassword"}};
constexpr C kVoucherSettings[] = {
    {"ALLOW_SERVER", 0, "allowServer"}, {"FORCE_REFRESH", 0, "forceRefresh"}, {"LOCAL_ONLY", 0, "localOnly"}};
constexpr C kErrorEvent[] = {{"DRM_ERROR", 0, "drmError"}};
constexpr C kStatusEvent[] = {{"DRM_STATUS", 0, "drmStatus"}};
constexpr C kCompleteEvent[] = {{"AUTHENTICATION_COMPLETE", 0, "authenticationComplete"}};
constexpr C kRefusedEvent[] = {{"AUTHENTICATION_ERROR", 0, "authenticationError"}};

/// Events of one type alone: they are of it without being told.
Value constructOnly(Call& call)
{
    if (call.has(0)) return constructEvent(call);
    const bool isStatus =
        call.vm.traitsOf(call.self)->isA(call.vm.nativeClass("flash.events::DRMStatusEvent")->instances);
    const Value type(call.vm.name(isStatus ? "drmStatus" : "drmError").string());
    Call named{call.vm, call.self, &type, 1};
    return constructEvent(named);
}

constexpr std::int8_t kSince = 10; // version of movies

/// The same, for movies from that version on.
constexpr NativeClass later(NativeClass made)
{
    made.since = kSince;
    return made;
}
constexpr NativeClass only(NativeClass made)
{
    made.constructor = &constructOnly;
    made.minArguments = 0;
    return later(made);
}
/// What only a server's answer makes.
constexpr NativeClass granted(std::string_view name, std::string_view slots)
{
    return later({.package = "flash.net.drm",
                  .name = name,
                  .base = {},
                  .flags = NativeClass::Sealed,
                  .constructor = &refuseConstruction,
                  .slots = slots});
}

constexpr NativeClass kClasses[] = {
    later({.package = "flash.net.drm",
           .name = "DRMManager",
           .base = "flash.events::EventDispatcher",
           .flags = NativeClass::Sealed,
           .constructor = &refuseConstruction,
           .members = kManager}),
    later({.package = "flash.net.drm",
           .name = "DRMContentData",
           .base = {},
           .flags = NativeClass::Sealed,
           .constructor = &doNothing,
           .minArguments = 0,
           .maxArguments = 1,
           .slots = "serverURL:String authenticationMethod:String licenseID:String domain:String"}),
    granted("DRMVoucher", "voucherStartDate:* voucherEndDate:* offlineLeaseStartDate:* "
                          "offlineLeaseEndDate:* policies:* playbackTimeWindow:*"),
    granted("DRMPlaybackTimeWindow", "period:uint startDate:* endDate:*"),
    later(constantsOf("flash.net.drm", "AuthenticationMethod", kMethods)),
    later(constantsOf("flash.net.drm", "LoadVoucherSetting", kVoucherSettings)),
    only(eventClass("DRMErrorEvent",
                    "subErrorID:int contentData:* systemUpdateNeeded:Boolean drmUpdateNeeded:Boolean",
                    kErrorEvent, {}, "flash.events::ErrorEvent")),
    only(eventClass("DRMStatusEvent", "contentData:* voucher:* isLocal:Boolean", kStatusEvent)),
    later(eventClass("DRMAuthenticationCompleteEvent", "serverURL:String domain:String token:*",
                     kCompleteEvent)),
    later(eventClass("DRMAuthenticationErrorEvent", "subErrorID:int serverURL:String domain:String",
                     kRefusedEvent, {}, "flash.events::ErrorEvent")),
};

constexpr std::string_view kText = R"(
flash.net.drm::DRMManager
  ^getDRMManager():DRMManager ^isSupported-:Boolean authenticate(String,String,String,String):void
  setAuthenticationToken(String,String,ByteArray):void loadVoucher(DRMContentData,String):void
flash.net.drm::DRMContentData
  (ByteArray=) serverURL-:String authenticationMethod-:String licenseID-:String domain-:String
flash.net.drm::DRMVoucher
  voucherStartDate-:Date voucherEndDate-:Date offlineLeaseStartDate-:Date offlineLeaseEndDate-:Date policies-:Object
  playbackTimeWindow-:DRMPlaybackTimeWindow
flash.net.drm::DRMPlaybackTimeWindow
  period-:uint startDate-:Date endDate-:Date
flash.events::DRMErrorEvent
  (String=,Boolean=,Boolean=,String=,int=,int=,DRMContentData=,Boolean=,Boolean=) subErrorID-:int contentData:DRMContentData
  systemUpdateNeeded-:Boolean drmUpdateNeeded-:Boolean
flash.events::DRMStatusEvent
  (String=,Boolean=,Boolean=,DRMContentData=,DRMVoucher=,Boolean=) contentData:DRMContentData voucher:DRMVoucher isLocal:Boolean
flash.events::DRMAuthenticationCompleteEvent
  (String,Boolean=,Boolean=,String=,String=,ByteArray=) serverURL:String domain:String token:ByteArray
flash.events::DRMAuthenticationErrorEvent
  (String,Boolean=,Boolean=,String=,int=,int=,String=,String=) subErrorID:int serverURL:String domain:String
)";

} // namespace

NativeLibrary rightsLibrary() { return {kClasses, {}, kText}; }

} // namespace flash::avm2
