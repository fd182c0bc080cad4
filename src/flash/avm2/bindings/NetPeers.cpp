#include "base/Ascii.h"
#include "flash/avm2/bindings/Fields.h"
#include "flash/avm2/bindings/Library.h"
#include "flash/avm2/bindings/NetConnection.h"
#include "flash/avm2/bindings/Player.h"
#include "flash/avm2/classes/Amf.h"
#include "flash/avm2/classes/ObjectEncoding.h"

#include <algorithm>

// Connections. There is no network: what is asked of a server fails as if it did not answer.
namespace flash::avm2
{

using classes::allocateNative;
using classes::selfAs;
using Kind = NativeMember::Kind;

void fireNetStatus(Vm& vm, DispatcherObject& target, std::string_view code, std::string_view level)
{
    Root<Object> info(vm.heap(), vm.newObject());
    vm.setPublic(Value(info.get()), "code", Value(vm.name(code).string()));
    vm.setPublic(Value(info.get()), "level", Value(vm.name(level).string()));
    fireWith(vm, target, "flash.events::NetStatusEvent", "netStatus", {Value(info.get())});
}

void runLater(Vm& vm, Object& object, void (*work)(Vm&, Object&))
{
    stage::ActionQueue& queue = Player::of(vm).stage().queue();
    if (!queue.takesRequest(sizeof(Root<Object>))) return;
    auto target = std::make_shared<Root<Object>>(vm.heap(), &object);
    queue.addRequest([&vm, target, work] {
        if (!vm.isDisabled()) vm.guarded([&] { work(vm, *target->get()); });
    });
}

NetConnectionObject& connectionSelf(Call& call)
{
    return selfAs<NetConnectionObject>(call, "flash.net.NetConnection");
}

namespace
{

// ---- NetConnection ----

Value constructConnection(Call& call)
{
    auto& made = connectionSelf(call);
    made.client = Value(&made);
    made.encoding = classes::defaultEncodingOf(made).value;
    return {};
}

void closeConnection(Vm& vm, NetConnectionObject& self)
{
    if (self.state == NetConnectionObject::State::None) return;
    const bool wasRemote = self.state == NetConnectionObject::State::Remote;
    self.state = NetConnectionObject::State::None;
    fireNetStatus(vm, self, "NetConnection.Connect.Closed", "status");
    if (!wasRemote) return;
    Root<Object> info(vm.heap(), vm.newObject());
    const Value empty(vm.common().empty.string());
    vm.setPublic(Value(info.get()), "level", Value(vm.name("status").string()));
    for (const char* name : {"code", "description", "details"}) vm.setPublic(Value(info.get()), name, empty);
    fireWith(vm, self, "flash.events::NetStatusEvent", "netStatus", {Value(info.get())});
}

Value connect(Call& call)
{
    auto& self = connectionSelf(call);
    Vm& vm = call.vm;
    const Value address = vm.coerceString(call.arg(0));
    const std::string url = address.isNull() ? std::string() : toUtf8(vm.text(address));
    closeConnection(vm, self);
    self.uri = address.isNull() ? Value(vm.name("null").string()) : address;
    if (address.isNull()) {
        self.state = NetConnectionObject::State::Local;
        fireNetStatus(vm, self, "NetConnection.Connect.Success", "status");
    } else if (url.starts_with("http:") || url.starts_with("https:")) {
        // Nothing is sent before something is called.
        self.state = NetConnectionObject::State::Remote;
    } else if (url.starts_with("rtmp")) {
        Player::of(vm).log("NetConnection.connect: there is no network: " + url);
        runLater(vm, self, [](Vm& machine, Object& object) {
            fireNetStatus(machine, static_cast<NetConnectionObject&>(object), "NetConnection.Connect.Failed",
                          "error");
        });
    } else {
        vm.throwError(ErrorClass::Argument, 2004, "One of the parameters is invalid.");
    }
    return {};
}
Value close(Call& call)
{
    closeConnection(call.vm, connectionSelf(call));
    return {};
}
/// Nobody answers.
Value callRemote(Call& call)
{
    auto& self = connectionSelf(call);
    objectArg(call, 1, "flash.net::Responder");
    if (self.state != NetConnectionObject::State::Remote) return {};
    Player::of(call.vm).log("NetConnection.call: there is no network");
    runLater(call.vm, self, [](Vm& vm, Object& object) {
        fireNetStatus(vm, static_cast<NetConnectionObject&>(object), "NetConnection.Call.Failed", "error");
    });
    return {};
}
Value connected(Call& call) { return connectionSelf(call).state != NetConnectionObject::State::None; }
Value uri(Call& call) { return connectionSelf(call).uri; }
Value client(Call& call) { return connectionSelf(call).client; }
Value setClient(Call& call)
{
    if (!call.arg(0).isObject())
        call.vm.throwError(ErrorClass::Type, 2004, "One of the parameters is invalid.");
    connectionSelf(call).client = call.arg(0);
    return {};
}
Value encoding(Call& call) { return connectionSelf(call).encoding; }
Value setEncoding(Call& call)
{
    const int wanted = classes::encodingArg(call);
    connectionSelf(call).encoding = wanted;
    return {};
}
/// What exists of a connection to a server only. @throws 2126
template <bool isFlag>
Value ofServer(Call& call)
{
    if (connectionSelf(call).state == NetConnectionObject::State::None)
        call.vm.throwError(ErrorClass::Argument, 2126, "NetConnection object must be connected.");
    return isFlag ? Value(false) : Value(call.vm.name("none").string());
}
/// There are none.
Value noPeers(Call& call)
{
    connectionSelf(call);
    return Value(call.vm.newArray());
}
Value proxyType(Call& call) { return Value(call.vm.name("none").string()); }

// ---- Responder ----

Value constructResponder(Call& call)
{
    for (std::uint32_t i = 0; i < 2; ++i)
        call.self.object()->setSlot(i, call.vm.coerce(call.has(i) ? call.arg(i) : Value::null(),
                                                      call.vm.classes().function->instances));
    return {};
}

// ---- LocalConnection: within the movie ----

class LocalConnectionObject final : public DispatcherObject
{
public:
    AVM2_NATIVE(DispatcherObject)
    LocalConnectionObject(Traits* traits, Object* proto) : DispatcherObject(traits, proto) {}
    void trace(Tracer& tracer) override
    {
        DispatcherObject::trace(tracer);
        tracer(client);
    }
    Value client;
    std::u16string name; ///< empty: not connected
};
LocalConnectionObject& localSelf(Call& call)
{
    return selfAs<LocalConnectionObject>(call, "flash.net.LocalConnection");
}
Value constructLocal(Call& call)
{
    localSelf(call).client = Value(&localSelf(call));
    return {};
}
Value setLocalClient(Call& call)
{
    if (!call.arg(0).isObject())
        call.vm.throwError(ErrorClass::Type, 2004, "One of the parameters is invalid.");
    localSelf(call).client = call.arg(0);
    return {};
}
Value localClient(Call& call) { return localSelf(call).client; }

/// Names that begin so are everybody's; others are the domain's.
std::u16string connectionName(std::u16string_view name)
{
    const std::u16string full = base::asciiLowered(name);
    if (full.starts_with(u'_')) return full;
    return full.find(u':') == std::u16string::npos ? u"localhost:" + full : full;
}

Value connectLocal(Call& call)
{
    auto& self = localSelf(call);
    const std::u16string name = textArg(call, 0, "connectionName");
    if (name.empty())
        call.vm.throwError(ErrorClass::Argument, 2085, "Parameter connectionName must be non-empty string.");
    if (name.find(u':') != std::u16string::npos)
        call.vm.throwError(ErrorClass::Argument, 2004, "One of the parameters is invalid.");
    auto& known = Player::of(call.vm).localConnections();
    const std::u16string full = connectionName(name);
    constexpr std::size_t kMaxConnections = 256;
    if (!self.name.empty() || known.contains(full) || known.size() >= kMaxConnections)
        call.vm.throwError(ErrorClass::Argument, 2082,
                           "Connect failed because the object is already connected.");
    known.emplace(full, Root<Object>(call.vm.heap(), &self));
    self.name = full;
    return {};
}
Value closeLocal(Call& call)
{
    auto& self = localSelf(call);
    if (self.name.empty())
        call.vm.throwError(ErrorClass::Argument, 2083, "Close failed because the object is not connected.");
    Player::of(call.vm).localConnections().erase(self.name);
    self.name.clear();
    return {};
}

/// The arguments cross over as copies of what they say.
Value copied(Vm& vm, Value value)
{
    auto* bytes = as<classes::ByteArrayObject>(vm.construct(Value(vm.classes().byteArray), {}));
    classes::writeAmf(vm, *bytes, value, 3);
    bytes->position = 0;
    return classes::readAmf(vm, *bytes, 3);
}

Value sendLocal(Call& call)
{
    Vm& vm = call.vm;
    auto& self = localSelf(call);
    const std::u16string name = textArg(call, 0, "connectionName");
    const std::u16string method = textArg(call, 1, "methodName");
    if (name.empty())
        vm.throwError(ErrorClass::Argument, 2085, "Parameter connectionName must be non-empty string.");
    if (method.empty())
        vm.throwError(ErrorClass::Argument, 2085, "Parameter methodName must be non-empty string.");
    static constexpr std::u16string_view kReserved[] = {
        u"send", u"connect", u"close", u"allowDomain", u"allowInsecureDomain", u"client", u"domain"};
    if (std::ranges::find(kReserved, method) != std::end(kReserved))
        vm.throwError(ErrorClass::Argument, 2004, "One of the parameters is invalid.");
    constexpr std::size_t kMessageBytes = 256; // about
    if (!Player::of(vm).stage().queue().takesRequest(kMessageBytes)) return {};
    auto args = std::make_shared<RootedList<Value>>(vm.heap());
    for (const Value value : call.rest(2)) args->push_back(copied(vm, value));
    auto sender = std::make_shared<Root<LocalConnectionObject>>(vm.heap(), &self);
    Player& player = Player::of(vm);
    player.stage().queue().addRequest([&vm, &player, args, sender, full = connectionName(name), method] {
        if (vm.isDisabled()) return;
        const auto found = player.localConnections().find(full);
        const bool isHeard = found != player.localConnections().end();
        vm.guarded([&] {
            fireWith(vm, *sender->get(), "flash.events::StatusEvent", "status",
                     {Value::null(), Value(vm.name(isHeard ? "status" : "error").string())});
        });
        if (!isHeard) return;
        Root<LocalConnectionObject> receiver(vm.heap(),
                                             static_cast<LocalConnectionObject*>(found->second.get()));
        vm.guarded([&] {
            vm.callProperty(receiver->client, vm.publicName(vm.names().intern(method)),
                            std::span<const Value>(**args));
        });
    });
    return {};
}
Value localDomain(Call& call) { return Value(call.vm.name("localhost").string()); }

constexpr NativeMember kConnection[] = {
    {"connect", Kind::Method, &connect, 1, -1},
    {"close", Kind::Method, &close, 0, 0},
    {"call", Kind::Method, &callRemote, 2, -1},
    {"addHeader", Kind::Method, &doNothing, 1, 3},
    {"connected", Kind::Getter, &connected, 0, 0, nullptr, "Boolean"},
    {"uri", Kind::Getter, &uri, 0, 0, nullptr, "String"},
    {"client", Kind::Getter, &client, 0, 0, &setClient, "Object"},
    {"objectEncoding", Kind::Getter, &encoding, 0, 0, &setEncoding, "uint"},
    {"defaultObjectEncoding", Kind::StaticGetter, &classes::defaultObjectEncoding, 0, 0,
     &classes::setDefaultObjectEncoding, "uint"},
    {"proxyType", Kind::Getter, &proxyType, 0, 0, &doNothing, "String"},
    {"connectedProxyType", Kind::Getter, &ofServer<false>, 0, 0, nullptr, "String"},
    {"protocol", Kind::Getter, &ofServer<false>, 0, 0, nullptr, "String"},
    {"unconnectedPeerStreams", Kind::Getter, &noPeers, 0, 0, nullptr, "Array"},
    {"usingTLS", Kind::Getter, &ofServer<true>, 0, 0, nullptr, "Boolean"},
};
constexpr NativeMember kLocal[] = {
    {"connect", Kind::Method, &connectLocal, 1, 1},
    {"close", Kind::Method, &closeLocal, 0, 0},
    {"send", Kind::Method, &sendLocal, 2, -1},
    {"allowDomain", Kind::Method, &doNothing, 0, -1},
    {"allowInsecureDomain", Kind::Method, &doNothing, 0, -1},
    {"client", Kind::Getter, &localClient, 0, 0, &setLocalClient, "Object"},
    {"domain", Kind::Getter, &localDomain, 0, 0, nullptr, "String"},
    {"isPerUser", Kind::Getter, &isAlwaysTrue, 0, 0, &doNothing, "Boolean"},
    {"isSupported", Kind::StaticGetter, &isAlwaysTrue, 0, 0, nullptr, "Boolean"},
};

constexpr NativeClass kClasses[] = {
    {.package = "flash.net",
     .name = "NetConnection",
     .base = "flash.events::EventDispatcher",
     .flags = NativeClass::Sealed,
     .constructor = &constructConnection,
     .minArguments = 0,
     .maxArguments = 0,
     .allocate = &allocateNative<NetConnectionObject>,
     .members = kConnection,
     .slots = "maxPeerConnections:uint=8 nearID:String= farID:String= nearNonce:String= "
              "farNonce:String=",
     .setUp = [](Vm& vm, ClassObject& cls) { classes::addState<classes::DefaultEncoding>(vm, cls); }},
    {.package = "flash.net",
     .name = "Responder",
     .base = {},
     .flags = NativeClass::Sealed,
     .constructor = &constructResponder,
     .minArguments = 1,
     .maxArguments = 2,
     .slots = "result:* status:*"},
    {.package = "flash.net",
     .name = "LocalConnection",
     .base = "flash.events::EventDispatcher",
     .flags = NativeClass::Sealed,
     .constructor = &constructLocal,
     .minArguments = 0,
     .maxArguments = 0,
     .allocate = &allocateNative<LocalConnectionObject>,
     .members = kLocal},
};

} // namespace

NativeLibrary netPeerLibrary() { return {kClasses, {}}; }

} // namespace flash::avm2
