#include "flash/avm2/bindings/Fields.h"
#include "flash/avm2/bindings/Library.h"
#include "flash/avm2/bindings/Player.h"
#include "flash/avm2/classes/ByteArray.h"
#include "flash/guard/Guard.h"

#include <algorithm>

// What a movie keeps on the machine.
namespace flash::avm2
{

using classes::allocateNative;
using classes::ByteArrayObject;
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

constexpr std::uint8_t kHead[] = {0x00, 0xBF};
constexpr std::uint8_t kMagic[] = {'T', 'C', 'S', 'O', 0, 4, 0, 0, 0, 0};
constexpr std::uint8_t kAmf3 = 3;

void putNumber(std::vector<std::uint8_t>& out, std::size_t value, int bytes)
{
    for (int i = bytes - 1; i >= 0; --i) out.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
}

/// A name as AMF 3 has it: the length in sevens of bits, the lowest bit saying that it stands here.
void putName(std::vector<std::uint8_t>& out, std::string_view name)
{
    const std::size_t head = (name.size() << 1U | 1U) & 0x1FFF'FFFFU;
    if (head >= 0x4000) out.push_back(static_cast<std::uint8_t>(head >> 14U | 0x80U));
    if (head >= 0x80) out.push_back(static_cast<std::uint8_t>((head >> 7U & 0x7FU) | 0x80U));
    out.push_back(static_cast<std::uint8_t>(head & 0x7FU));
    out.insert(out.end(), name.begin(), name.end());
}

ByteArrayObject* newBytes(Vm& vm)
{
    return as<ByteArrayObject>(Value(vm.instantiate(vm.classes().byteArray)));
}

std::vector<std::uint8_t> encode(Vm& vm, SharedObjectObject& object)
{
    const std::string_view name = std::string_view(object.key).substr(object.key.rfind('/') + 1);
    std::vector<std::uint8_t> body(std::begin(kMagic), std::end(kMagic));
    putNumber(body, name.size(), 2);
    body.insert(body.end(), name.begin(), name.end());
    putNumber(body, kAmf3, 4);
    constexpr std::size_t kMaxName = 0x1F'FFFF >> 1U;
    if (Object* data = object.data.asObject()) {
        for (std::uint32_t at = data->nextIndex(vm, 0); at != 0; at = data->nextIndex(vm, at)) {
            const std::string key = toUtf8(vm.text(data->nextName(vm, at)));
            if (key.size() > kMaxName) continue;
            ByteArrayObject* value = newBytes(vm);
            classes::writeAmf(vm, *value, data->nextValue(vm, at), kAmf3);
            putName(body, key);
            body.insert(body.end(), value->content.begin(), value->content.end());
            body.push_back(0);
        }
    }
    std::vector<std::uint8_t> file(std::begin(kHead), std::end(kHead));
    putNumber(file, body.size(), 4);
    file.insert(file.end(), body.begin(), body.end());
    return file;
}

/// Reads what either machine has written. @returns false when it is none, or damaged: what came before stays
bool decode(Vm& vm, SharedObjectObject& object, const std::vector<std::uint8_t>& file)
{
    std::size_t at = sizeof kHead + 4;
    const auto has = [&](std::size_t bytes) { return file.size() - at >= bytes; };
    if (file.size() < at || !std::equal(std::begin(kHead), std::end(kHead), file.begin())) return false;
    if (!has(sizeof kMagic + 2) ||
        !std::equal(std::begin(kMagic), std::end(kMagic), file.begin() + static_cast<std::ptrdiff_t>(at)))
        return false;
    at += sizeof kMagic;
    const std::size_t nameLength = static_cast<std::size_t>(file[at]) << 8U | file[at + 1];
    at += 2;
    if (!has(nameLength + 4)) return false;
    at += nameLength;
    const int version = file[at + 3];
    at += 4;
    ByteArrayObject* bytes = newBytes(vm);
    bytes->content = file;
    while (at < file.size()) {
        std::size_t length = 0;
        if (version == kAmf3) {
            std::size_t head = 0;
            for (int i = 0; i < 4; ++i) {
                if (!has(1)) return false;
                const std::uint8_t byte = file[at++];
                head = head << 7U | (byte & 0x7FU);
                if ((byte & 0x80U) == 0) break;
            }
            if ((head & 1U) == 0) return false;
            length = head >> 1U;
        } else {
            if (!has(2)) return false;
            length = static_cast<std::size_t>(file[at]) << 8U | file[at + 1];
            at += 2;
        }
        if (!has(length)) return false;
        const std::string key(file.begin() + static_cast<std::ptrdiff_t>(at),
                              file.begin() + static_cast<std::ptrdiff_t>(at + length));
        bytes->position = at + length;
        const Value value = classes::readAmf(vm, *bytes, version == kAmf3 ? 3 : 0);
        at = bytes->position + 1;
        vm.set(object.data, vm.publicName(vm.names().intern(fromUtf8(key))), value);
    }
    return true;
}

bool isValidName(std::string_view name)
{
    return !name.empty() && name.find_first_of("~%&\\;:\"',<>?# ") == std::string_view::npos;
}

bool isEmpty(Vm& vm, SharedObjectObject& object)
{
    Object* data = object.data.asObject();
    return data == nullptr || data->nextIndex(vm, 0) == 0;
}

/// The path of a movie's address, without scheme, host and query.
std::string pathOf(std::string_view url)
{
    url = url.substr(0, url.find('?'));
    if (const auto scheme = url.find("://"); scheme != std::string_view::npos) {
        url.remove_prefix(scheme + 3);
        url.remove_prefix(std::min(url.find('/'), url.size()));
    }
    return std::string(url);
}

Value getLocal(Call& call)
{
    Vm& vm = call.vm;
    Player& player = Player::of(vm);
    if (call.arg(0).isNullish()) throwNullParameter(vm, "name");
    const std::string name = toUtf8(vm.text(call.arg(0)));
    if (!isValidName(name)) vm.throwError(ErrorClass::Error, 2134, "Cannot create SharedObject.");
    std::string key = name;
    if (!call.arg(1).isNullish()) {
        // A folder of the movie's own path, so that movies there can share.
        const std::string folder = toUtf8(vm.text(call.arg(1)));
        if (!pathOf(player.stage().url()).starts_with(folder))
            vm.throwError(ErrorClass::Error, 2134, "Cannot create SharedObject.");
        key = folder + (folder.ends_with('/') ? "" : "/") + name;
    }
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
    known.emplace(key, Root<Object>(vm.heap(), shared));
    const auto bytes = player.stage().services().sharedObjects.read(key);
    bool isGood = true;
    if (!bytes.empty()) vm.guarded([&] { isGood = decode(vm, *shared, bytes); });
    if (!isGood) player.log("SharedObject " + key + ": damaged");
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
    const std::uint32_t wanted = call.vm.toUint(call.arg(0));
    if (wanted != 0 && wanted != 3) throwNotAccepted(call.vm, "objectEncoding");
    self(call).encoding = static_cast<int>(wanted);
    return {};
}
Value setProperty(Call& call)
{
    call.vm.set(self(call).data, call.vm.publicName(call.vm.names().intern(call.vm.toString(call.arg(0)))),
                call.has(1) ? call.arg(1) : Value::null());
    return {};
}
Value three(Call&) { return 3; }
Value refuseConstruction(Call& call)
{
    call.vm.throwError(ErrorClass::Argument, 2012, "SharedObject$ class cannot be instantiated.");
}

constexpr NativeMember kMembers[] = {
    {"getLocal", Kind::Static, &getLocal, 1, 3},
    {"getRemote", Kind::Static, &getRemote, 1, 4},
    {"deleteAll", Kind::Static, &doNothing, 1, 1},
    {"getDiskUsage", Kind::Static, &doNothing, 1, 1},
    {"defaultObjectEncoding", Kind::StaticGetter, &three, 0, 0, &doNothing, "uint"},
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
     .members = kMembers},
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
