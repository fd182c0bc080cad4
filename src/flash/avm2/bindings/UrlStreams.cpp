#include "flash/avm2/bindings/Fields.h"
#include "flash/avm2/bindings/Library.h"
#include "flash/avm2/bindings/NetLoading.h"
#include "flash/avm2/classes/ByteArray.h"

// Addresses that are read as they come.
namespace flash::avm2
{

using classes::allocateNative;
using classes::selfAs;
using Kind = NativeMember::Kind;

namespace
{

void fireFailure(Vm& vm, DispatcherObject& target, const std::string& url)
{
    fireWith(vm, target, "flash.events::IOErrorEvent", "ioError",
             {Value(vm.string(u"Error #2032: Stream Error. URL: " + fromUtf8(url))), Value(2032)});
}

/// Reads as a byte array does, and stays one underneath.
class UrlStreamObject final : public DispatcherObject
{
public:
    AVM2_NATIVE(DispatcherObject)
    UrlStreamObject(Traits* traits, Object* proto) : DispatcherObject(traits, proto) {}
    void trace(Tracer& tracer) override
    {
        DispatcherObject::trace(tracer);
        tracer(bytes);
    }
    Value bytes = Value::null(); ///< null while nothing has been asked for
    std::uint32_t turn = 0;
    bool isConnected = false;
};

UrlStreamObject& streamSelf(Call& call) { return selfAs<UrlStreamObject>(call, "flash.net.URLStream"); }

void streamAnswered(Vm& vm, DispatcherObject& object, const base::Result<stage::LoadAnswer>& answer)
{
    auto& stream = static_cast<UrlStreamObject&>(object);
    const std::uint32_t turn = stream.turn;
    const auto step = [&](auto&& work) {
        if (turn == stream.turn) vm.guarded(work);
    };
    if (!answer) {
        stream.isConnected = false;
        step([&] { fireHttpStatus(vm, stream); });
        step([&] { fireFailure(vm, stream, {}); });
        return;
    }
    const auto size = static_cast<double>(answer->bytes.size());
    step([&] { fire(vm, stream, "open"); });
    if (auto* array = as<classes::ByteArrayObject>(stream.bytes))
        array->content.assign(answer->bytes.begin(), answer->bytes.end());
    step([&] { fireProgress(vm, stream, size, size); });
    step([&] { fireHttpStatus(vm, stream); });
    step([&] { fire(vm, stream, "complete"); });
    if (turn == stream.turn) stream.isConnected = false;
}

Value loadStream(Call& call)
{
    auto& stream = streamSelf(call);
    auto request = requestArg(call, 0);
    if (!request) throwNullParameter(call.vm, "request");
    ++stream.turn;
    stream.bytes = bytesValue(call.vm, {});
    stream.isConnected = true;
    fetchFor(call, stream, stream.turn, std::move(*request), &streamAnswered);
    return {};
}
Value closeStream(Call& call)
{
    auto& stream = streamSelf(call);
    if (!stream.isConnected)
        call.vm.throwError(ErrorClass::Io, 2029, "This URLStream object does not have a stream opened.");
    ++stream.turn;
    stream.isConnected = false;
    return {};
}
Value streamConnected(Call& call) { return streamSelf(call).isConnected; }

/// What the byte array underneath does, by the same name. @throws 2029 when nothing was loaded
Value readStream(Call& call, const char* name)
{
    auto& stream = streamSelf(call);
    if (stream.bytes.isNull())
        call.vm.throwError(ErrorClass::Io, 2029, "This URLStream object does not have a stream opened.");
    return call.vm.callProperty(stream.bytes, call.vm.publicName(name), call.rest(0));
}
Value streamAvailable(Call& call)
{
    auto& stream = streamSelf(call);
    return stream.bytes.isNull() ? Value(0) : call.vm.getPublic(stream.bytes, "bytesAvailable");
}
Value streamEndian(Call& call)
{
    auto& stream = streamSelf(call);
    return stream.bytes.isNull() ? Value(call.vm.name("bigEndian").string())
                                 : call.vm.getPublic(stream.bytes, "endian");
}
Value setStreamEndian(Call& call)
{
    auto& stream = streamSelf(call);
    if (stream.bytes.isNull()) stream.bytes = bytesValue(call.vm, {});
    call.vm.setPublic(stream.bytes, "endian", call.arg(0));
    return {};
}
Value streamEncoding(Call& call)
{
    auto& stream = streamSelf(call);
    return stream.bytes.isNull() ? Value(3) : call.vm.getPublic(stream.bytes, "objectEncoding");
}
Value setStreamEncoding(Call& call)
{
    auto& stream = streamSelf(call);
    if (stream.bytes.isNull()) stream.bytes = bytesValue(call.vm, {});
    call.vm.setPublic(stream.bytes, "objectEncoding", call.arg(0));
    return {};
}

classes::ByteArrayObject* bytesOf(Call& call) { return as<classes::ByteArrayObject>(streamSelf(call).bytes); }
Value streamLength(Call& call)
{
    const auto* bytes = bytesOf(call);
    return bytes != nullptr ? static_cast<double>(bytes->content.size()) : 0.0;
}
Value streamPosition(Call& call)
{
    const auto* bytes = bytesOf(call);
    return bytes != nullptr ? static_cast<double>(bytes->position) : 0.0;
}
Value setStreamPosition(Call& call)
{
    const double place = call.vm.toNumber(call.arg(0));
    auto* bytes = bytesOf(call);
    if (bytes != nullptr && place >= 0)
        bytes->position =
            static_cast<std::size_t>(std::min(place, static_cast<double>(bytes->content.size())));
    return {};
}
/// As closing it, and nothing to complain of when it is.
Value stopStream(Call& call) { return streamSelf(call).isConnected ? closeStream(call) : Value(); }

#define READ_AS(name)                                                                                        \
    NativeMember                                                                                             \
    {                                                                                                        \
#name, Kind::Method, [](Call & call) { return readStream(call, #name); }, 0, -1                      \
    }

constexpr NativeMember kStream[] = {
    {"load", Kind::Method, &loadStream, 1, 1},
    {"close", Kind::Method, &closeStream, 0, 0},
    {"stop", Kind::Method, &stopStream, 0, 0, nullptr, "void"},
    {"length", Kind::Getter, &streamLength, 0, 0, nullptr, "Number"},
    {"position", Kind::Getter, &streamPosition, 0, 0, &setStreamPosition, "Number"},
    {"diskCacheEnabled", Kind::Getter, &isAlwaysFalse, 0, 0, nullptr, "Boolean"},
    {"connected", Kind::Getter, &streamConnected, 0, 0, nullptr, "Boolean"},
    {"bytesAvailable", Kind::Getter, &streamAvailable, 0, 0, nullptr, "uint"},
    {"endian", Kind::Getter, &streamEndian, 0, 0, &setStreamEndian, "String"},
    {"objectEncoding", Kind::Getter, &streamEncoding, 0, 0, &setStreamEncoding, "uint"},
    READ_AS(readBytes),
    READ_AS(readBoolean),
    READ_AS(readByte),
    READ_AS(readUnsignedByte),
    READ_AS(readShort),
    READ_AS(readUnsignedShort),
    READ_AS(readInt),
    READ_AS(readUnsignedInt),
    READ_AS(readFloat),
    READ_AS(readDouble),
    READ_AS(readMultiByte),
    READ_AS(readUTF),
    READ_AS(readUTFBytes),
    READ_AS(readObject),
};
#undef READ_AS

constexpr NativeClass kClasses[] = {
    {.package = "flash.net",
     .name = "URLStream",
     .base = "flash.events::EventDispatcher",
     .flags = NativeClass::Sealed,
     .allocate = &allocateNative<UrlStreamObject>,
     .members = kStream,
     .interfaces = "flash.utils::IDataInput"},
};

} // namespace

NativeLibrary urlStreamLibrary() { return {kClasses, {}}; }

} // namespace flash::avm2
