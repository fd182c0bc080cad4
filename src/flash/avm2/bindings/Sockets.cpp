#include "flash/avm2/bindings/Fields.h"
#include "flash/avm2/bindings/Library.h"
#include "flash/avm2/bindings/NetConnection.h"
#include "flash/avm2/bindings/Player.h"

// Sockets: they are there, and refused.
namespace flash::avm2
{

using classes::allocateNative;
using classes::selfAs;
using Kind = NativeMember::Kind;

namespace
{

struct SocketTag {
    static constexpr const char* kClass = "flash.net.Socket";
};
enum SocketField : std::uint8_t { Timeout, Endian, Encoding, kSocketFields };
using SocketObject = FieldsOf<DispatcherObject, kSocketFields, SocketTag>;

constexpr double kTimeoutMs = 20'000, kMinTimeoutMs = 250;

void refuse(Vm& vm, Object& object)
{
    auto& socket = static_cast<DispatcherObject&>(object);
    fireWith(vm, socket, "flash.events::SecurityErrorEvent", "securityError",
             {Value(vm.string(std::u16string_view(u"Error #2048: Security sandbox violation: there is no "
                                                  u"network."))),
              Value(2048)});
}

Value connect(Call& call)
{
    auto& self = selfAs<SocketObject>(call, SocketTag::kClass);
    const double port = call.vm.toInt(call.arg(1));
    if (port < 0 || port > 65535)
        call.vm.throwError(ErrorClass::Security, 2003, "Invalid socket port number specified.");
    Player::of(call.vm).log("Socket.connect: there is no network");
    runLater(call.vm, self, &refuse);
    return {};
}
Value construct(Call& call)
{
    auto& made = selfAs<SocketObject>(call, SocketTag::kClass);
    made.fields[Timeout] = kTimeoutMs;
    made.fields[Endian] = Value(call.vm.name("bigEndian").string());
    made.fields[Encoding] = 3;
    return call.has(0) && !call.arg(0).isNullish() ? connect(call) : Value();
}
Value invalid(Call& call)
{
    call.vm.throwError(ErrorClass::Io, 2002, "Operation attempted on invalid socket.");
}
Value zero(Call&) { return 0; }
Value setTimeout(Call& call)
{
    selfAs<SocketObject>(call, SocketTag::kClass).fields[Timeout] =
        std::max(kMinTimeoutMs, static_cast<double>(call.vm.toUint(call.arg(0))));
    return {};
}
Value setEndian(Call& call)
{
    const std::u16string order = textArg(call, 0, "type");
    if (order != u"bigEndian" && order != u"littleEndian") throwNotAccepted(call.vm, "type");
    selfAs<SocketObject>(call, SocketTag::kClass).fields[Endian] = Value(call.vm.string(order));
    return {};
}

constexpr NativeMember kSocket[] = {
    {"connect", Kind::Method, &connect, 2, 2},
    {"close", Kind::Method, &invalid, 0, 0},
    {"flush", Kind::Method, &invalid, 0, 0},
    {"connected", Kind::Getter, &isAlwaysFalse, 0, 0, nullptr, "Boolean"},
    {"bytesAvailable", Kind::Getter, &zero, 0, 0, nullptr, "uint"},
    {"bytesPending", Kind::Getter, &zero, 0, 0, nullptr, "uint"},
    {"timeout", Kind::Getter, &getField<SocketObject, Timeout>, 0, 0, &setTimeout, "uint"},
    {"endian", Kind::Getter, &getField<SocketObject, Endian>, 0, 0, &setEndian, "String"},
    {"objectEncoding", Kind::Getter, &getField<SocketObject, Encoding>, 0, 0,
     &setField<SocketObject, Encoding, FieldType::Uint>, "uint"},
    {"readBoolean", Kind::Method, &invalid, 0, 0},
    {"readByte", Kind::Method, &invalid, 0, 0},
    {"readBytes", Kind::Method, &invalid, 1, 3},
    {"readDouble", Kind::Method, &invalid, 0, 0},
    {"readFloat", Kind::Method, &invalid, 0, 0},
    {"readInt", Kind::Method, &invalid, 0, 0},
    {"readMultiByte", Kind::Method, &invalid, 2, 2},
    {"readObject", Kind::Method, &invalid, 0, 0},
    {"readShort", Kind::Method, &invalid, 0, 0},
    {"readUnsignedByte", Kind::Method, &invalid, 0, 0},
    {"readUnsignedInt", Kind::Method, &invalid, 0, 0},
    {"readUnsignedShort", Kind::Method, &invalid, 0, 0},
    {"readUTF", Kind::Method, &invalid, 0, 0},
    {"readUTFBytes", Kind::Method, &invalid, 1, 1},
    {"writeBoolean", Kind::Method, &invalid, 1, 1},
    {"writeByte", Kind::Method, &invalid, 1, 1},
    {"writeBytes", Kind::Method, &invalid, 1, 3},
    {"writeDouble", Kind::Method, &invalid, 1, 1},
    {"writeFloat", Kind::Method, &invalid, 1, 1},
    {"writeInt", Kind::Method, &invalid, 1, 1},
    {"writeMultiByte", Kind::Method, &invalid, 2, 2},
    {"writeObject", Kind::Method, &invalid, 1, 1},
    {"writeShort", Kind::Method, &invalid, 1, 1},
    {"writeUnsignedInt", Kind::Method, &invalid, 1, 1},
    {"writeUTF", Kind::Method, &invalid, 1, 1},
    {"writeUTFBytes", Kind::Method, &invalid, 1, 1},
};
constexpr NativeMember kXmlSocket[] = {
    {"connect", Kind::Method, &connect, 2, 2},
    {"close", Kind::Method, &invalid, 0, 0},
    {"send", Kind::Method, &invalid, 1, 1},
    {"connected", Kind::Getter, &isAlwaysFalse, 0, 0, nullptr, "Boolean"},
    {"timeout", Kind::Getter, &getField<SocketObject, Timeout>, 0, 0, &setTimeout, "int"},
};

constexpr NativeClass kClasses[] = {
    {.package = "flash.net",
     .name = "Socket",
     .base = "flash.events::EventDispatcher",
     .flags = NativeClass::Sealed,
     .constructor = &construct,
     .minArguments = 0,
     .maxArguments = 2,
     .allocate = &allocateNative<SocketObject>,
     .members = kSocket,
     .interfaces = "flash.utils::IDataInput flash.utils::IDataOutput"},
    {.package = "flash.net",
     .name = "XMLSocket",
     .base = "flash.events::EventDispatcher",
     .flags = NativeClass::Sealed,
     .constructor = &construct,
     .minArguments = 0,
     .maxArguments = 2,
     .allocate = &allocateNative<SocketObject>,
     .members = kXmlSocket},
};

} // namespace

NativeLibrary socketLibrary() { return {kClasses, {}}; }

} // namespace flash::avm2
