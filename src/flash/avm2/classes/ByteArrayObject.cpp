#include "flash/avm2/classes/ByteArray.h"

#include <algorithm>
#include <cstring>

// The object behind a byte array: its bytes, and its bytes as properties.
namespace flash::avm2::classes
{

namespace
{

constexpr std::size_t kMaxBytes = std::size_t{1} << 28;

std::uint32_t indexOf(const Multiname& name)
{
    if (name.attribute) return Atom::kNotIndex;
    if (name.index != Atom::kNotIndex) return name.index;
    return name.name.isNull() || !name.hasPublic() ? Atom::kNotIndex : name.name.arrayIndex();
}

} // namespace

void ByteArrayObject::resize(Vm& vm, std::size_t length)
{
    if (length > kMaxBytes) vm.throwError(ErrorClass::Error, 1000, "The system is out of memory.");
    if (length > content.capacity()) vm.heap().noteExternalBytes(length);
    content.resize(length);
}

std::span<const std::uint8_t> ByteArrayObject::read(Vm& vm, std::size_t count)
{
    if (position > content.size() || count > content.size() - position)
        vm.throwError(ErrorClass::Eof, 2030, "End of file was encountered.");
    position += count;
    return std::span<const std::uint8_t>(content).subspan(position - count, count);
}

void ByteArrayObject::write(Vm& vm, std::span<const std::uint8_t> bytes)
{
    if (bytes.empty()) return;
    if (position > kMaxBytes || bytes.size() > kMaxBytes - position)
        vm.throwError(ErrorClass::Error, 1000, "The system is out of memory.");
    if (position + bytes.size() > content.size()) {
        const std::size_t before = content.capacity();
        content.resize(position + bytes.size());
        if (content.capacity() > before) vm.heap().noteExternalBytes(content.capacity() - before);
    }
    std::memmove(content.data() + position, bytes.data(), bytes.size());
    position += bytes.size();
}

bool ByteArrayObject::getExotic(Vm&, const Multiname& name, Value& result)
{
    const std::uint32_t index = indexOf(name);
    if (index == Atom::kNotIndex) return false;
    result = index < content.size() ? Value(static_cast<int>(content[index])) : Value();
    return true;
}

bool ByteArrayObject::setExotic(Vm& vm, const Multiname& name, Value value)
{
    const std::uint32_t index = indexOf(name);
    if (index == Atom::kNotIndex) return false;
    const auto byte = static_cast<std::uint8_t>(vm.toInt(value));
    if (index >= content.size()) resize(vm, std::size_t{index} + 1);
    content[index] = byte;
    return true;
}

bool ByteArrayObject::hasExotic(Vm&, const Multiname& name)
{
    const std::uint32_t index = indexOf(name);
    return index != Atom::kNotIndex && index < content.size();
}

Value isShareable(Call& call) { return selfAs<ByteArrayObject>(call, "flash.utils.ByteArray").isShareable; }
Value setShareable(Call& call)
{
    selfAs<ByteArrayObject>(call, "flash.utils.ByteArray").isShareable = call.vm.toBoolean(call.arg(0));
    return {};
}

Value compareAndSwapInt(Call& call)
{
    auto& array = selfAs<ByteArrayObject>(call, "flash.utils.ByteArray");
    const std::int32_t at = call.vm.toInt(call.arg(0)), expected = call.vm.toInt(call.arg(1)),
                       wanted = call.vm.toInt(call.arg(2));
    if (at < 0 || at % 4 != 0)
        call.vm.throwError(ErrorClass::Argument, 2004, "One of the parameters is invalid.");
    std::int32_t found = 0;
    if (array.content.size() < sizeof found ||
        static_cast<std::size_t>(at) > array.content.size() - sizeof found)
        call.vm.throwError(ErrorClass::Range, 1506, "The specified range is invalid.");
    // In the order of the instructions for fast memory, whatever `endian` says.
    std::uint8_t* const place = array.content.data() + at;
    std::memcpy(&found, place, sizeof found);
    if (found == expected) std::memcpy(place, &wanted, sizeof wanted);
    return found;
}

Value compareAndSwapLength(Call& call)
{
    auto& array = selfAs<ByteArrayObject>(call, "flash.utils.ByteArray");
    const auto before = static_cast<std::int32_t>(array.content.size());
    const std::int32_t expected = call.vm.toInt(call.arg(0)), wanted = call.vm.toInt(call.arg(1));
    if (wanted < 0) call.vm.throwError(ErrorClass::Range, 1506, "The specified range is invalid.");
    if (before == expected) {
        array.resize(call.vm, static_cast<std::size_t>(wanted));
        array.position = std::min(array.position, array.content.size());
    }
    return before;
}

} // namespace flash::avm2::classes
