#include "flash/avm2/classes/ByteArray.h"

#include "base/TextCode.h"
#include "flash/avm2/classes/Amf.h"
#include "flash/avm2/classes/ByteArrayPacking.h"
#include "flash/avm2/classes/ObjectEncoding.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <map>

namespace flash::avm2::classes
{

namespace
{

constexpr std::size_t kMaxBytes = std::size_t{1} << 28;

ByteArrayObject& self(Call& call)
{
    // Mostly it is just that class.
    if (Object* const object = call.self.asObject();
        object != nullptr && object->traits() == call.vm.classes().byteArray->instances) [[likely]]
        return static_cast<ByteArrayObject&>(*object);
    return selfAs<ByteArrayObject>(call, "flash.utils.ByteArray");
}

/// The number of bytes of T as a number, in the other order.
template <class T>
auto swapped(T bits)
{
    if constexpr (sizeof(T) == 8) return __builtin_bswap64(bits);
    if constexpr (sizeof(T) == 4) return __builtin_bswap32(bits);
    if constexpr (sizeof(T) == 2) return __builtin_bswap16(bits);
    if constexpr (sizeof(T) == 1) return bits;
}
template <class T>
using BitsOf =
    std::conditional_t<sizeof(T) == 8, std::uint64_t,
                       std::conditional_t<sizeof(T) == 4, std::uint32_t,
                                          std::conditional_t<sizeof(T) == 2, std::uint16_t, std::uint8_t>>>;

/// A number in the order of an array, or the other way round.
template <class Bits>
Bits ordered(const ByteArrayObject& array, Bits bits)
{
    return array.isLittle == (std::endian::native == std::endian::little) ? bits : swapped(bits);
}

template <class T>
T numberAt(const ByteArrayObject& array, const std::uint8_t* bytes)
{
    BitsOf<T> bits{};
    std::memcpy(&bits, bytes, sizeof(T));
    return std::bit_cast<T>(ordered(array, bits));
}

template <class T>
T fetch(Call& call)
{
    auto& array = self(call);
    return numberAt<T>(array, array.read(call.vm, sizeof(T)).data());
}

/// The receiver, if it is of this class itself and has at least so many bytes at its position.
ByteArrayObject* within(Vm& vm, Value receiver, std::size_t count)
{
    if (!receiver.isObject() || receiver.object()->traits() != vm.classes().byteArray->instances)
        return nullptr;
    auto* const array = static_cast<ByteArrayObject*>(receiver.object());
    const std::size_t length = array->content.size();
    return length >= count && array->position <= length - count ? array : nullptr;
}
template <class T>
Value quickRead(Vm& vm, Value receiver, const Value*)
{
    ByteArrayObject* const array = within(vm, receiver, sizeof(T));
    if (array == nullptr) return Value::hole();
    const T number = numberAt<T>(*array, array->content.data() + array->position);
    array->position += sizeof(T);
    return static_cast<double>(number);
}
/// Over bytes that are there already.
template <class T>
Value quickWrite(Vm& vm, Value receiver, const Value* args)
{
    ByteArrayObject* const array = within(vm, receiver, sizeof(T));
    if (array == nullptr || !args[0].isNumber()) return Value::hole();
    T value{};
    if constexpr (std::is_integral_v<T>)
        value = static_cast<T>(vm.toInt(args[0]));
    else
        value = static_cast<T>(args[0].number());
    const auto bits = ordered(*array, std::bit_cast<BitsOf<T>>(value));
    std::memcpy(array->content.data() + array->position, &bits, sizeof(T));
    array->position += sizeof(T);
    return {};
}
enum class Measure : std::uint8_t { Length, Position, Available };
template <Measure measure>
Value quickMeasure(Vm& vm, Value receiver, const Value*)
{
    const ByteArrayObject* const array = within(vm, receiver, 0);
    if (array == nullptr) return Value::hole();
    const std::size_t length = array->content.size(), position = array->position;
    return static_cast<double>(measure == Measure::Length     ? length
                               : measure == Measure::Position ? position
                                                              : length - position);
}

template <class T>
void store(Call& call, T value)
{
    auto& array = self(call);
    const auto bits = ordered(array, std::bit_cast<BitsOf<T>>(value));
    std::array<std::uint8_t, sizeof(T)> bytes{};
    std::memcpy(bytes.data(), &bits, sizeof(T));
    array.write(call.vm, bytes);
}

Value length(Call& call) { return static_cast<double>(self(call).content.size()); }
Value setLength(Call& call)
{
    auto& array = self(call);
    array.resize(call.vm, call.vm.toUint(call.arg(0)));
    array.position = std::min(array.position, array.content.size());
    return {};
}
Value position(Call& call) { return static_cast<double>(self(call).position); }
Value setPosition(Call& call)
{
    const std::uint32_t wanted = call.vm.toUint(call.arg(0));
    self(call).position = wanted;
    return {};
}
Value bytesAvailable(Call& call)
{
    auto& array = self(call);
    return array.position < array.content.size() ? static_cast<double>(array.content.size() - array.position)
                                                 : 0.0;
}
Value endian(Call& call) { return call.vm.name(self(call).isLittle ? "littleEndian" : "bigEndian").string(); }
Value setEndian(Call& call)
{
    if (call.arg(0).isNullish())
        call.vm.throwError(ErrorClass::Type, 2007, "Parameter type must be non-null.");
    const auto text = call.vm.text(call.arg(0));
    if (text != u"littleEndian" && text != u"bigEndian")
        call.vm.throwError(ErrorClass::Argument, 2008, "Parameter type must be one of the accepted values.");
    self(call).isLittle = text == u"littleEndian";
    return {};
}
Value objectEncoding(Call& call) { return self(call).encoding; }
Value setObjectEncoding(Call& call)
{
    const int wanted = encodingArg(call);
    self(call).encoding = wanted;
    return {};
}

Value readBoolean(Call& call) { return fetch<std::uint8_t>(call) != 0; }
template <class T>
Value readNumber(Call& call)
{
    return static_cast<double>(fetch<T>(call));
}
template <class T>
Value writeInteger(Call& call)
{
    store(call, static_cast<T>(call.vm.toInt(call.arg(0))));
    return {};
}
Value writeBoolean(Call& call)
{
    store<std::uint8_t>(call, call.vm.toBoolean(call.arg(0)) ? 1 : 0);
    return {};
}
Value writeFloat(Call& call)
{
    store(call, static_cast<float>(call.vm.toNumber(call.arg(0))));
    return {};
}
Value writeDouble(Call& call)
{
    store(call, call.vm.toNumber(call.arg(0)));
    return {};
}

Value textOf(Call& call, std::size_t count)
{
    const auto bytes = self(call).read(call.vm, count);
    std::string text(bytes.begin(), bytes.end());
    if (text.starts_with("\xEF\xBB\xBF")) text.erase(0, 3);
    if (const auto end = text.find('\0'); end != std::string::npos) text.resize(end);
    return call.vm.string(std::string_view(text));
}
Value readUtf(Call& call) { return textOf(call, fetch<std::uint16_t>(call)); }
Value readUtfBytes(Call& call) { return textOf(call, call.vm.toUint(call.arg(0))); }
/// @throws 2007
std::u16string_view writtenText(Call& call, std::uint32_t i = 0, const char* name = "value")
{
    if (call.arg(i).isNullish())
        call.vm.throwError(ErrorClass::Type, 2007, "Parameter " + std::string(name) + " must be non-null.");
    return call.vm.text(call.arg(i));
}
Value writeUtf(Call& call)
{
    const std::string text = toUtf8(writtenText(call));
    if (text.size() > 65535)
        call.vm.throwError(ErrorClass::Range, 2006, "The supplied index is out of bounds.");
    store(call, static_cast<std::uint16_t>(text.size()));
    self(call).write(call.vm, {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()});
    return {};
}
Value writeUtfBytes(Call& call)
{
    const std::string text = toUtf8(writtenText(call));
    self(call).write(call.vm, {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()});
    return {};
}
struct ByteArrayState {
    int defaultEncoding = 3;
    std::map<std::string, std::shared_ptr<const base::TextCode>> codes; ///< by the names scripts have used
};
ByteArrayState& state(Vm& vm)
{
    // Made with the class.
    return *stateOf<ByteArrayState>(*vm.classes().byteArray);
}
/// The code of a name in an argument; null when it is none of 8 bits, or not known.
const base::TextCode* codeArg(Call& call, std::uint32_t i)
{
    // Making one takes thousands of questions to the system.
    auto [found, isNew] = state(call.vm).codes.try_emplace(toUtf8(writtenText(call, i, "charSet")));
    if (isNew) found->second = base::TextCode::named(found->first);
    return found->second.get();
}
/// Names that are not known mean UTF-8.
Value readMultiByte(Call& call)
{
    const std::size_t count = call.vm.toUint(call.arg(0));
    const base::TextCode* code = codeArg(call, 1);
    if (code == nullptr) return textOf(call, count);
    const auto bytes = self(call).read(call.vm, count);
    const std::string text(bytes.begin(), bytes.end());
    return call.vm.string(code->decode(std::string_view(text).substr(0, text.find('\0'))));
}
Value writeMultiByte(Call& call)
{
    const std::u16string text(writtenText(call));
    const base::TextCode* code = codeArg(call, 1);
    const std::string bytes = code != nullptr ? code->encode(text) : toUtf8(text);
    self(call).write(call.vm, {reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()});
    return {};
}

Value readBytes(Call& call)
{
    auto& array = self(call);
    auto* target = as<ByteArrayObject>(call.arg(0));
    if (target == nullptr) call.vm.throwError(ErrorClass::Type, 2007, "Parameter bytes must be non-null.");
    const std::size_t offset = call.has(1) ? call.vm.toUint(call.arg(1)) : 0;
    std::size_t count = call.has(2) ? call.vm.toUint(call.arg(2)) : 0;
    if (count == 0) count = array.position < array.content.size() ? array.content.size() - array.position : 0;
    const auto read = array.read(call.vm, count);
    const std::vector<std::uint8_t> bytes(read.begin(), read.end());
    if (offset > kMaxBytes) call.vm.throwError(ErrorClass::Error, 1000, "The system is out of memory.");
    if (offset + count > target->content.size()) target->resize(call.vm, offset + count);
    std::ranges::copy(bytes, target->content.begin() + static_cast<std::ptrdiff_t>(offset));
    return {};
}

Value writeBytes(Call& call)
{
    auto* source = as<ByteArrayObject>(call.arg(0));
    if (source == nullptr) call.vm.throwError(ErrorClass::Type, 2007, "Parameter bytes must be non-null.");
    const std::size_t from = call.has(1) ? call.vm.toUint(call.arg(1)) : 0;
    std::size_t count = call.has(2) ? call.vm.toUint(call.arg(2)) : 0;
    const std::size_t offset = std::min(from, source->content.size());
    if (count == 0) count = source->content.size() - offset;
    if (count > source->content.size() - offset)
        call.vm.throwError(ErrorClass::Range, 2006, "The supplied index is out of bounds.");
    const std::vector<std::uint8_t> bytes(source->content.begin() + static_cast<std::ptrdiff_t>(offset),
                                          source->content.begin() +
                                              static_cast<std::ptrdiff_t>(offset + count));
    self(call).write(call.vm, bytes);
    return {};
}

Value clear(Call& call)
{
    self(call).content.clear();
    self(call).position = 0;
    return {};
}

Value toString(Call& call)
{
    auto* array = as<ByteArrayObject>(call.self);
    if (array == nullptr) return call.vm.common().empty.string();
    std::string text(array->content.begin(), array->content.end());
    if (text.starts_with("\xEF\xBB\xBF")) text.erase(0, 3);
    const bool isLittle = text.starts_with("\xFF\xFE");
    if (!isLittle && !text.starts_with("\xFE\xFF")) return call.vm.string(std::string_view(text));
    // By its mark the text has two bytes to a character.
    std::u16string wide;
    for (std::size_t i = 2; i + 1 < text.size(); i += 2) {
        const auto first = static_cast<unsigned char>(text[i]),
                   second = static_cast<unsigned char>(text[i + 1]);
        wide += static_cast<char16_t>(isLittle ? first | second << 8U : first << 8U | second);
    }
    return call.vm.string(std::move(wide));
}

Packing methodOf(Call& call)
{
    const auto text = call.has(0) ? call.vm.text(call.arg(0)) : std::u16string_view(u"zlib");
    if (text == u"zlib") return Packing::Zlib;
    if (text == u"deflate") return Packing::Deflate;
    if (text == u"lzma") return Packing::Lzma;
    call.vm.throwError(ErrorClass::Io, 2058, "There was an error decompressing the data.");
}
Value compress(Call& call)
{
    packBytes(call.vm, self(call), methodOf(call));
    return {};
}
Value uncompress(Call& call)
{
    unpackBytes(call.vm, self(call), methodOf(call));
    return {};
}
Value deflateRaw(Call& call)
{
    packBytes(call.vm, self(call), Packing::Deflate);
    return {};
}
Value inflateRaw(Call& call)
{
    unpackBytes(call.vm, self(call), Packing::Deflate);
    return {};
}

Value writeObject(Call& call)
{
    auto& array = self(call);
    writeAmf(call.vm, array, call.arg(0), array.encoding);
    return {};
}
Value readObject(Call& call)
{
    auto& array = self(call);
    return readAmf(call.vm, array, array.encoding);
}

Value construct(Call& call)
{
    self(call).encoding = state(call.vm).defaultEncoding;
    return {};
}
Value defaultEncoding(Call& call) { return state(call.vm).defaultEncoding; }
Value setDefaultEncoding(Call& call)
{
    state(call.vm).defaultEncoding = encodingArg(call);
    return {};
}
void setUp(Vm& vm, ClassObject& cls) { addState<ByteArrayState>(vm, cls); }

/// What the bytes mean nobody here knows.
Value toJson(Call& call) { return call.vm.string(std::string_view("ByteArray")); }

template <class T>
constexpr NativeMember writer(std::string_view name)
{
    return {name, Kind::Method, &writeInteger<T>, 1, 1, nullptr, {}, &quickWrite<T>, 1};
}

constexpr NativeMember kMembers[] = {
    {"toJSON", Kind::Prototype, &toJson, 0, 1},
    {"length", Kind::Getter, &length, 0, 0, &setLength, "uint", &quickMeasure<Measure::Length>},
    {"position", Kind::Getter, &position, 0, 0, &setPosition, "uint", &quickMeasure<Measure::Position>},
    {"bytesAvailable", Kind::Getter, &bytesAvailable, 0, 0, nullptr, "uint",
     &quickMeasure<Measure::Available>},
    {"endian", Kind::Getter, &endian, 0, 0, &setEndian, "String"},
    {"objectEncoding", Kind::Getter, &objectEncoding, 0, 0, &setObjectEncoding, "uint"},
    {"defaultObjectEncoding", Kind::StaticGetter, &defaultEncoding, 0, 0, &setDefaultEncoding, "uint"},
    {"readBoolean", Kind::Method, &readBoolean, 0, 0, nullptr, "Boolean"},
    {"readByte", Kind::Method, &readNumber<std::int8_t>, 0, 0, nullptr, "int", &quickRead<std::int8_t>},
    {"readUnsignedByte", Kind::Method, &readNumber<std::uint8_t>, 0, 0, nullptr, "uint",
     &quickRead<std::uint8_t>},
    {"readShort", Kind::Method, &readNumber<std::int16_t>, 0, 0, nullptr, "int", &quickRead<std::int16_t>},
    {"readUnsignedShort", Kind::Method, &readNumber<std::uint16_t>, 0, 0, nullptr, "uint",
     &quickRead<std::uint16_t>},
    {"readInt", Kind::Method, &readNumber<std::int32_t>, 0, 0, nullptr, "int", &quickRead<std::int32_t>},
    {"readUnsignedInt", Kind::Method, &readNumber<std::uint32_t>, 0, 0, nullptr, "uint",
     &quickRead<std::uint32_t>},
    {"readFloat", Kind::Method, &readNumber<float>, 0, 0, nullptr, "Number", &quickRead<float>},
    {"readDouble", Kind::Method, &readNumber<double>, 0, 0, nullptr, "Number", &quickRead<double>},
    {"readUTF", Kind::Method, &readUtf, 0, 0, nullptr, "String"},
    {"readUTFBytes", Kind::Method, &readUtfBytes, 1, 1, nullptr, "String"},
    {"readMultiByte", Kind::Method, &readMultiByte, 2, 2, nullptr, "String"},
    {"readBytes", Kind::Method, &readBytes, 1, 3},
    {"readObject", Kind::Method, &readObject, 0, 0},
    {"writeBoolean", Kind::Method, &writeBoolean, 1, 1},
    writer<std::uint8_t>("writeByte"),
    writer<std::uint16_t>("writeShort"),
    writer<std::int32_t>("writeInt"),
    writer<std::uint32_t>("writeUnsignedInt"),
    {"writeFloat", Kind::Method, &writeFloat, 1, 1, nullptr, {}, &quickWrite<float>, 1},
    {"writeDouble", Kind::Method, &writeDouble, 1, 1, nullptr, {}, &quickWrite<double>, 1},
    {"writeUTF", Kind::Method, &writeUtf, 1, 1},
    {"writeUTFBytes", Kind::Method, &writeUtfBytes, 1, 1},
    {"writeMultiByte", Kind::Method, &writeMultiByte, 2, 2},
    {"writeBytes", Kind::Method, &writeBytes, 1, 3},
    {"writeObject", Kind::Method, &writeObject, 1, 1},
    {"clear", Kind::Method, &clear, 0, 0},
    {"compress", Kind::Method, &compress, 0, 1},
    {"uncompress", Kind::Method, &uncompress, 0, 1},
    {"deflate", Kind::Method, &deflateRaw, 0, 0},
    {"inflate", Kind::Method, &inflateRaw, 0, 0},
    {"shareable", Kind::Getter, &isShareable, 0, 0, &setShareable, "Boolean"},
    {"atomicCompareAndSwapIntAt", Kind::Method, &compareAndSwapInt, 3, 3},
    {"atomicCompareAndSwapLength", Kind::Method, &compareAndSwapLength, 2, 2},
    {"toString", Kind::Method, &toString, 0, 0},
    {"toString", Kind::Prototype, &toString, 0, -1},
};

} // namespace

constinit const NativeClass kByteArray{.package = "flash.utils",
                                       .name = "ByteArray",
                                       .base = {},
                                       .constructor = &construct,
                                       .minArguments = 0,
                                       .maxArguments = 0,
                                       .allocate = &allocateNative<ByteArrayObject>,
                                       .members = kMembers,
                                       .interfaces = "flash.utils::IDataInput flash.utils::IDataOutput",
                                       .setUp = &setUp};

} // namespace flash::avm2::classes
