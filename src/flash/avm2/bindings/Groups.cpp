#include "flash/avm2/bindings/Fields.h"
#include "flash/avm2/bindings/Library.h"
#include "flash/avm2/bindings/Player.h"
#include "flash/avm2/interpreter/Collections.h"

#include <iterator>

// Groups of peers. A movie may describe one; there is no network that it could meet in. And who watches the
// streams of a movie, which there are.
namespace flash::avm2
{

using Kind = NativeMember::Kind;

namespace
{

// ---- GroupSpecifier ----

struct SpecifierTag {
    static constexpr const char* kClass = "flash.net.GroupSpecifier";
};
/// What it says beside what it allows: the group's name, and what was added to it.
enum SpecifierField : std::uint8_t { GroupName, Options, Authorizations, kSpecifierFields };
using SpecifierObject = FieldsOf<Object, kSpecifierFields, SpecifierTag>;

SpecifierObject& specifierSelf(Call& call)
{
    return classes::selfAs<SpecifierObject>(call, SpecifierTag::kClass);
}

/// Names nothing but the text itself: hexadecimal digits, which go into an address.
std::u16string coded(std::u16string_view text)
{
    constexpr std::u16string_view kDigits = u"0123456789abcdef";
    std::u16string made;
    for (const char byte : toUtf8(text)) {
        const auto value = static_cast<unsigned char>(byte);
        made += kDigits[value >> 4U];
        made += kDigits[value & 15U];
    }
    return made;
}
std::u16string fieldText(Call& call, SpecifierField field)
{
    const Value value = specifierSelf(call).fields[field];
    return value.isString() ? std::u16string(call.vm.text(value)) : std::u16string();
}
void append(Call& call, SpecifierField field, std::u16string_view kind, std::u16string_view text)
{
    constexpr std::size_t kLongest = 1U << 16U;
    const std::u16string before = fieldText(call, field);
    if (before.size() + text.size() > kLongest)
        call.vm.throwError(ErrorClass::Argument, 2004, "One of the parameters is invalid.");
    specifierSelf(call).fields[field] =
        Value(call.vm.string(before + u"!" + std::u16string(kind) + coded(text)));
}

Value constructSpecifier(Call& call)
{
    const std::u16string name = textArg(call, 0, "name");
    if (name.empty()) call.vm.throwError(ErrorClass::Argument, 2004, "One of the parameters is invalid.");
    specifierSelf(call).fields[GroupName] = Value(call.vm.string(name));
    return {};
}
constexpr const char* kAllowed[] = {"multicastEnabled",
                                    "objectReplicationEnabled",
                                    "peerToPeerDisabled",
                                    "postingEnabled",
                                    "routingEnabled",
                                    "serverChannelEnabled",
                                    "ipMulticastMemberUpdatesEnabled"};
std::u16string specifier(Call& call)
{
    std::u16string text = u"G:" + coded(fieldText(call, GroupName)) + u"!";
    for (const char* name : kAllowed)
        text += call.vm.toBoolean(call.vm.getPublic(call.self, name)) ? u'1' : u'0';
    return text + fieldText(call, Options);
}
Value withoutAuthorizations(Call& call) { return Value(call.vm.string(specifier(call))); }
Value withAuthorizations(Call& call)
{
    return Value(call.vm.string(specifier(call) + fieldText(call, Authorizations)));
}
Value authorizations(Call& call) { return Value(call.vm.string(fieldText(call, Authorizations))); }
template <char16_t kind>
Value setPassword(Call& call)
{
    const std::u16string text(call.arg(0).isNullish() ? u"" : call.vm.text(call.arg(0)));
    const std::u16string letter(1, kind);
    append(call, Options, letter, u"");
    if (!text.empty()) append(call, Authorizations, letter, text);
    return {};
}
template <char16_t kind>
Value addPlace(Call& call)
{
    const std::u16string place = textArg(call, 0, kind == u'b' ? "peerID" : "address");
    append(call, Options, std::u16string(1, kind), place);
    return {};
}
Value makeUnique(Call& call)
{
    const auto number = static_cast<double>(Player::of(call.vm).random());
    append(call, Options, u"u", numberText(number));
    return {};
}
template <char16_t kind>
Value encoded(Call& call)
{
    const std::u16string text = textArg(call, 0, "password");
    return Value(call.vm.string(u"!" + std::u16string(1, kind) + coded(text)));
}
Value newestVersion(Call&) { return 2; }

constexpr NativeMember kSpecifier[] = {
    {"setPostingPassword", Kind::Method, &setPassword<u'p'>, 0, 2},
    {"setPublishPassword", Kind::Method, &setPassword<u'w'>, 0, 2},
    {"addBootstrapPeer", Kind::Method, &addPlace<u'b'>, 1, 1},
    {"addIPMulticastAddress", Kind::Method, &addPlace<u'm'>, 1, 3},
    {"makeUnique", Kind::Method, &makeUnique, 0, 0},
    {"groupspecWithAuthorizations", Kind::Method, &withAuthorizations, 0, 0},
    {"groupspecWithoutAuthorizations", Kind::Method, &withoutAuthorizations, 0, 0},
    {"authorizations", Kind::Method, &authorizations, 0, 0},
    {"toString", Kind::Method, &withoutAuthorizations, 0, 0},
    {"encodePostingAuthorization", Kind::Static, &encoded<u'p'>, 1, 1},
    {"encodePublishAuthorization", Kind::Static, &encoded<u'w'>, 1, 1},
    {"encodeBootstrapPeerIDSpec", Kind::Static, &encoded<u'b'>, 1, 1},
    {"encodeIPMulticastAddressSpec", Kind::Static, &encoded<u'm'>, 1, 3},
    {"maxSupportedGroupspecVersion", Kind::StaticGetter, &newestVersion, 0, 0, nullptr, "int"},
};

// ---- NetGroup ----

/// A group needs a connection to others, and none of them is connected.
Value refuseGroup(Call& call)
{
    call.vm.throwError(ErrorClass::Argument, 2126, "NetConnection object must be connected.");
}

// ---- figures ----

/// All figures by name, as an object that is printed for its author shows them.
Value figuresToText(Call& call)
{
    std::u16string text;
    for (const Traits::Entry& entry : call.self.object()->traits()->entries()) {
        if (entry.binding.kind != Binding::Kind::Const) continue;
        if (!text.empty()) text += u' ';
        text += std::u16string(entry.name.view()) + u"=";
        text += call.vm.text(call.self.object()->slot(static_cast<std::uint32_t>(entry.binding.id)));
    }
    return Value(call.vm.string(text));
}
constexpr NativeMember kFigures[] = {{"toString", Kind::Method, &figuresToText, 0, 0}};

// ---- NetMonitor ----

Value constructMonitor(Call& call)
{
    if (auto* made = as<DispatcherObject>(call.self)) Player::of(call.vm).noteMonitor(*made);
    return {};
}
Value listStreams(Call& call)
{
    Vm& vm = call.vm;
    ClassObject* cls = vm.vectorOf(vm.nativeClass("flash.net::NetStream")->instances);
    Root<Object> list(vm.heap(), vm.construct(Value(cls), {}).asObject());
    RootedList<Value> streams(vm.heap());
    for (DispatcherObject* stream : Player::of(vm).streams()) streams.push_back(Value(stream));
    auto* vector = as<VectorObject>(Value(list.get()));
    for (std::size_t i = 0; i < streams.size(); ++i) vector->push(vm, streams[i]);
    return Value(vector);
}
constexpr NativeMember kMonitor[] = {{"listStreams", Kind::Method, &listStreams, 0, 0}};

constexpr std::string_view kDispatcher = "flash.events::EventDispatcher";
constexpr std::int8_t kGroupsSince = 10, kMonitorSince = 12; // versions of movies

constexpr NativeClass kClasses[] = {
    {.package = "flash.net",
     .name = "GroupSpecifier",
     .base = {},
     .flags = NativeClass::Sealed,
     .constructor = &constructSpecifier,
     .minArguments = 1,
     .maxArguments = 1,
     .allocate = &classes::allocateNative<SpecifierObject>,
     .members = kSpecifier,
     .slots = "multicastEnabled:Boolean "
              "objectReplicationEnabled:Boolean peerToPeerDisabled:Boolean postingEnabled:Boolean "
              "routingEnabled:Boolean serverChannelEnabled:Boolean "
              "ipMulticastMemberUpdatesEnabled:Boolean minGroupspecVersion:int=1",
     .since = kGroupsSince},
    {.package = "flash.net",
     .name = "NetGroup",
     .base = kDispatcher,
     .flags = NativeClass::Sealed,
     .constructor = &refuseGroup,
     .minArguments = 2,
     .maxArguments = 2,
     .since = kGroupsSince},
    {.package = "flash.net",
     .name = "NetGroupInfo",
     .base = {},
     .flags = NativeClass::Sealed | NativeClass::Final,
     .constructor = &assignSlots,
     .members = kFigures,
     .slots = "postingSendDataBytesPerSecond:Number postingSendControlBytesPerSecond:Number "
              "postingReceiveDataBytesPerSecond:Number postingReceiveControlBytesPerSecond:Number "
              "routingSendBytesPerSecond:Number routingReceiveBytesPerSecond:Number "
              "objectReplicationSendBytesPerSecond:Number objectReplicationReceiveBytesPerSecond:Number",
     .since = kGroupsSince},
    {.package = "flash.net",
     .name = "NetStreamMulticastInfo",
     .base = {},
     .flags = NativeClass::Sealed | NativeClass::Final,
     .constructor = &assignSlots,
     .members = kFigures,
     .slots =
         "sendDataBytesPerSecond:Number sendControlBytesPerSecond:Number receiveDataBytesPerSecond:Number "
         "receiveControlBytesPerSecond:Number bytesPushedToPeers:Number fragmentsPushedToPeers:Number "
         "bytesRequestedByPeers:Number fragmentsRequestedByPeers:Number bytesPushedFromPeers:Number "
         "fragmentsPushedFromPeers:Number bytesRequestedFromPeers:Number fragmentsRequestedFromPeers:Number "
         "sendControlBytesPerSecondToServer:Number receiveDataBytesPerSecondFromServer:Number "
         "bytesReceivedFromServer:Number fragmentsReceivedFromServer:Number "
         "receiveDataBytesPerSecondFromIPMulticast:Number bytesReceivedFromIPMulticast:Number "
         "fragmentsReceivedFromIPMulticast:Number",
     .since = kGroupsSince},
    {.package = "flash.net",
     .name = "NetMonitor",
     .base = kDispatcher,
     .flags = NativeClass::Sealed,
     .constructor = &constructMonitor,
     .minArguments = 0,
     .maxArguments = 0,
     .members = kMonitor,
     .since = kMonitorSince},
    {.package = "flash.net", .name = "IDynamicPropertyOutput", .base = {}, .flags = NativeClass::Interface},
    {.package = "flash.net", .name = "IDynamicPropertyWriter", .base = {}, .flags = NativeClass::Interface},
};

constexpr std::string_view kText = R"(
flash.net::GroupSpecifier
  (String) ^maxSupportedGroupspecVersion-:int ^encodePostingAuthorization(String):String
  ^encodePublishAuthorization(String):String ^encodeBootstrapPeerIDSpec(String):String
  ^encodeIPMulticastAddressSpec(String,*=,String=):String multicastEnabled:Boolean objectReplicationEnabled:Boolean
  peerToPeerDisabled:Boolean postingEnabled:Boolean routingEnabled:Boolean serverChannelEnabled:Boolean
  ipMulticastMemberUpdatesEnabled:Boolean minGroupspecVersion:int setPostingPassword(String=,String=):void
  setPublishPassword(String=,String=):void addBootstrapPeer(String):void addIPMulticastAddress(String,*=,String=):void
  makeUnique():void groupspecWithAuthorizations():String groupspecWithoutAuthorizations():String authorizations():String
  toString():String
flash.net::NetGroup
  (NetConnection,String)
flash.net::NetMonitor
  () listStreams():Vector<NetStream>
flash.net::NetGroupInfo
  (Number,Number,Number,Number,Number,Number,Number,Number) postingSendDataBytesPerSecond-:Number
  postingSendControlBytesPerSecond-:Number postingReceiveDataBytesPerSecond-:Number postingReceiveControlBytesPerSecond-:Number
  routingSendBytesPerSecond-:Number routingReceiveBytesPerSecond-:Number objectReplicationSendBytesPerSecond-:Number
  objectReplicationReceiveBytesPerSecond-:Number toString():String
flash.net::NetStreamMulticastInfo
  (Number,Number,Number,Number,Number,Number,Number,Number,Number,Number,Number,Number,Number,Number,Number,Number,Number,Number,Number)
  sendDataBytesPerSecond-:Number sendControlBytesPerSecond-:Number receiveDataBytesPerSecond-:Number
  receiveControlBytesPerSecond-:Number bytesPushedToPeers-:Number fragmentsPushedToPeers-:Number bytesRequestedByPeers-:Number
  fragmentsRequestedByPeers-:Number bytesPushedFromPeers-:Number fragmentsPushedFromPeers-:Number bytesRequestedFromPeers-:Number
  fragmentsRequestedFromPeers-:Number sendControlBytesPerSecondToServer-:Number receiveDataBytesPerSecondFromServer-:Number
  bytesReceivedFromServer-:Number fragmentsReceivedFromServer-:Number receiveDataBytesPerSecondFromIPMulticast-:Number
  bytesReceivedFromIPMulticast-:Number fragmentsReceivedFromIPMulticast-:Number toString():String
flash.net::IDynamicPropertyOutput
  writeDynamicProperty(String,*):void
flash.net::IDynamicPropertyWriter
  writeDynamicProperties(Object,IDynamicPropertyOutput):void
)";

} // namespace

NativeLibrary groupLibrary() { return {kClasses, {}, kText}; }

} // namespace flash::avm2
