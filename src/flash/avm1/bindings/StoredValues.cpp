#include "flash/avm1/bindings/StoredValues.h"

#include "flash/avm1/bindings/Amf0.h"

#include <algorithm>

namespace flash::avm1
{

namespace
{

constexpr std::uint8_t kHead[] = {0x00, 0xBF};
constexpr std::uint8_t kMagic[] = {'T', 'C', 'S', 'O', 0, 4, 0, 0, 0, 0};

} // namespace

std::vector<std::uint8_t> encodeStored(Vm& vm, Object* data, std::string_view name)
{
    Amf0Writer body(vm);
    body.append(base::Bytes(kMagic));
    body.name(std::string(name));
    body.number(0, 4);
    constexpr std::uint8_t kClosing[] = {0};
    body.properties(data, kClosing);
    const std::vector<std::uint8_t> bytes = body.take();
    Amf0Writer file(vm);
    file.append(base::Bytes(kHead));
    file.number(bytes.size(), 4);
    file.append(base::Bytes(bytes));
    return file.take();
}

base::Result<void> decodeStored(Vm& vm, Object* data, base::Bytes bytes)
{
    Amf0Reader reader(vm, bytes);
    const base::Bytes head = TRY_RESULT(reader.bytes(sizeof kHead));
    TRY_RESULT(reader.number(4)); // the length, which the file itself tells
    const base::Bytes magic = TRY_RESULT(reader.bytes(sizeof kMagic));
    if (!std::equal(head.begin(), head.end(), kHead) || !std::equal(magic.begin(), magic.end(), kMagic))
        return base::fail(base::ErrorCode::Malformed, "a shared object that does not begin as one");
    TRY_RESULT(reader.text(2));
    TRY_RESULT(reader.number(4)); // the version of the encoding
    while (!reader.atEnd()) {
        const std::u16string key = TRY_RESULT(reader.text(2));
        const Value held = TRY_RESULT(reader.value());
        data->put(vm, vm.name(key), held);
        TRY_RESULT(reader.number(1));
    }
    return {};
}

} // namespace flash::avm1
