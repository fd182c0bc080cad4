#include "flash/avm2/bindings/Fields.h"
#include "flash/avm2/bindings/Library.h"
#include "flash/avm2/bindings/Player.h"
#include "flash/avm2/classes/Amf.h"
#include "flash/avm2/classes/ObjectEncoding.h"
#include "flash/guard/Guard.h"
#include "flash/net/SharedObjectFile.h"

// What a movie keeps on the machine.
namespace flash::avm2
{

using classes::allocateNative;
using classes::selfAs;
using Kind = NativeMember::Kind;

namespace
{

class SharedObjectObject final : public DispatcherObject
{
public:
    AVM2_NATIVE(DispatcherObject)
    SharedObjectObject(Traits* traits, Object* proto) : DispatcherObject(traits, proto) {}
    void trace(Tracer& tracer) override
    {
        DispatcherObject::trace(tracer);
        tracer(data);
        tracer(client);
    }
    std::string key; ///< what the store knows it by
    Value data, client;
    int encoding = 3;
};

SharedObjectObject& self(Call& call) { return selfAs<SharedObjectObject>(call, "flash.net.SharedObject"); }

std::vector<std::uint8_t> encode(Vm& vm, SharedObjectObject& object)
{
    Object* data = object.data.asObject();
    if (data == nullptr) data = vm.newObject();
    return classes::writeSharedObject(vm, net::sharedObjectName(object.key), *data, object.encoding);
}

bool isEmpty(Vm& vm, SharedObjectObject& object)
{
    Object* data = object.data.asObject();
    return data == nullptr || data->nextIndex(vm, 0) == 0;
}

Value getLocal(Call& call)
{
    Vm& vm = call.vm;
    Player& player = Player::of(vm);
    if (call.arg(0).isNullish()) throwNullParameter(vm, "name");
    const std::string name = toUtf8(vm.text(call.arg(0)));
    std::optional<std::string> folder;
    if (!call.arg(1).isNullish()) folder = toUtf8(vm.text(call.arg(1)));
    const auto asked = net::sharedObjectKey(name, folder, player.stage().url());
    if (!asked) vm.throwError(ErrorClass::Error, 2134, "Cannot create SharedObject.");
    const std::string& key = *asked;
    auto& known = player.sharedObjects();
    if (const auto found = known.find(key); found != known.end()) return Value(found->second.get());
    if (known.size() >= guard::kMaxSharedObjects) {
        guard::refuse(guard::Bound::SharedObjects, "The movie asks for too many shared objects");
        vm.throwError(ErrorClass::Error, 2134, "Cannot create SharedObject.");
    }
    auto* shared = as<SharedObjectObject>(Value(vm.instantiate(vm.nativeClass("flash.net::SharedObject"))));
    shared->key = key;
    shared->data = Value(vm.newObject());
    shared->client = Value(shared);
    shared->encoding = classes::defaultEncodingOf(*shared).value;
    known.emplace(key, Root<Object>(vm.heap(), shared));
    const auto bytes = player.stage().services().sharedObjects.read(key);
    if (!bytes.empty() &&
        !vm.guarded([&] { shared->encoding = classes::readSharedObject(vm, shared->data, bytes); }))
        player.log("SharedObject " + key + ": damaged");
    return Value(shared);
}
Value getRemote(Call& call)
{
    Player::of(call.vm).log("SharedObject.getRemote is not supported");
    return Value::null();
}
Value flush(Call& call)
{
    auto& object = self(call);
    const auto content = encode(call.vm, object);
    if (!Player::of(call.vm).stage().services().sharedObjects.write(object.key, content))
        call.vm.throwError(ErrorClass::Error, 2130, "Unable to flush SharedObject.");
    return Value(call.vm.name("flushed").string());
}
Value clear(Call& call)
{
    auto& object = self(call);
    object.data = Value(call.vm.newObject());
    Player::of(call.vm).stage().services().sharedObjects.remove(object.key);
    return {};
}
Value size(Call& call)
{
    return isEmpty(call.vm, self(call)) ? Value(0)
                                        : Value(static_cast<double>(encode(call.vm, self(call)).size()));
}
Value data(Call& call) { return self(call).data; }
Value client(Call& call) { return self(call).client; }
Value setClient(Call& call)
{
    if (!call.arg(0).isObject())
        call.vm.throwError(ErrorClass::Type, 2004, "One of the parameters is invalid.");
    self(call).client = call.arg(0);
    return {};
}
Value encoding(Call& call) { return self(call).encoding; }
Value setEncoding(Call& call)
{
    const int wanted = classes::encodingArg(call);
    self(call).encoding = wanted;
    return {};
}
Value setProperty(Call& call)
{
    call.vm.set(self(call).data, call.vm.publicName(call.vm.names().intern(call.vm.toString(call.arg(0)))),
                call.has(1) ? call.arg(1) : Value::null());
    return {};
}
Value refuseConstruction(Call& call)
{
    call.vm.throwError(ErrorClass::Argument, 2012, "SharedObject$ class cannot be instantiated.");
}

constexpr NativeMember kMembers[] = {
    {"getLocal", Kind::Static, &getLocal, 1, 3},
    {"getRemote", Kind::Static, &getRemote, 1, 4},
    {"deleteAll", Kind::Static, &doNothing, 1, 1},
    {"getDiskUsage", Kind::Static, &doNothing, 1, 1},
    {"defaultObjectEncoding", Kind::StaticGetter, &classes::defaultObjectEncoding, 0, 0,
     &classes::setDefaultObjectEncoding, "uint"},
    {"preventBackup", Kind::StaticGetter, &isAlwaysFalse, 0, 0, &doNothing, "Boolean"},
    {"data", Kind::Getter, &data, 0, 0, nullptr, "Object"},
    {"size", Kind::Getter, &size, 0, 0, nullptr, "uint"},
    {"client", Kind::Getter, &client, 0, 0, &setClient, "Object"},
    {"objectEncoding", Kind::Getter, &encoding, 0, 0, &setEncoding, "uint"},
    {"fps", Kind::Getter, nullptr, 0, 0, &doNothing, "Number"},
    {"flush", Kind::Method, &flush, 0, 1},
    {"clear", Kind::Method, &clear, 0, 0},
    {"close", Kind::Method, &doNothing, 0, 0},
    {"connect", Kind::Method, &doNothing, 1, 2},
    {"send", Kind::Method, &doNothing, 0, -1},
    {"setDirty", Kind::Method, &doNothing, 1, 1},
    {"setProperty", Kind::Method, &setProperty, 1, 2},
};
constexpr NativeConstant kFlushStatus[] = {{"FLUSHED", 0, "flushed"}, {"PENDING", 0, "pending"}};

constexpr NativeClass kClasses[] = {
    {.package = "flash.net",
     .name = "SharedObject",
     .base = "flash.events::EventDispatcher",
     .flags = NativeClass::Sealed,
     .constructor = &refuseConstruction,
     .allocate = &allocateNative<SharedObjectObject>,
     .members = kMembers,
     .setUp = [](Vm& vm, ClassObject& cls) { classes::addState<classes::DefaultEncoding>(vm, cls); }},
    constantsOf("flash.net", "SharedObjectFlushStatus", kFlushStatus),
};

} // namespace

void Player::saveSharedObjects()
{
    bool told = false;
    for (const auto& [key, root] : m_sharedObjects) {
        auto& shared = static_cast<SharedObjectObject&>(*root.get());
        if (isEmpty(*m_vm, shared)) continue;
        std::vector<std::uint8_t> content;
        if (!m_vm->guarded([&] { content = encode(*m_vm, shared); })) continue;
        if (content == m_services.sharedObjects.read(key)) continue;
        if (m_services.sharedObjects.write(key, content)) continue;
        if (!told) log("SharedObject " + key + ": cannot be kept");
        told = true; // the others for the same reason, most likely
    }
}

NativeLibrary sharedObjectLibrary() { return {kClasses, {}}; }

} // namespace flash::avm2
