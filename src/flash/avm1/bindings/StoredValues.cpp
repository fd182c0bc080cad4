#include "flash/avm1/bindings/StoredValues.h"

#include "flash/avm1/bindings/AmfValues.h"

#include "base/TextCodes.h"
#include "flash/net/SharedObjectFile.h"

namespace flash::avm1
{

std::vector<std::uint8_t> encodeStored(Vm& vm, Object* data, std::string_view name)
{
    AmfValueWriter members(vm);
    members.properties(data, {&net::kMemberClosing, 1});
    return net::sharedObjectFile(name, net::AmfVersion::Amf0, members.take());
}

base::Result<void> decodeStored(Vm& vm, Object* data, base::Bytes bytes)
{
    net::AmfBytes source(bytes);
    const net::AmfVersion version = TRY_RESULT(net::readSharedObjectHead(source));
    net::AmfReader reader(source, version);
    AmfValueReader values(vm, reader);
    while (!source.atEnd()) {
        const std::string key = TRY_RESULT(reader.name());
        const Value held = TRY_RESULT(values.value());
        data->put(vm, vm.name(base::utf16FromUtf8(key)), held);
        TRY_RESULT(reader.number(1)); // what closes it
    }
    return {};
}

} // namespace flash::avm1
