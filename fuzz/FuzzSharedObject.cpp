#include "flash/avm1/bindings/StoredValues.h"
#include "flash/avm1/classes/Classes.h"
#include "flash/avm1/interpreter/Vm.h"
#include "flash/net/FileSharedObjects.h"

#include <QTemporaryDir>

#include <cstdlib>
#include <string>

// A shared object's file, read and written again; and a text as the name of one, which must stay in its
// folder. The first byte is the name's length.

namespace
{

std::size_t entriesOf(const std::filesystem::path& folder)
{
    return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator(folder), {}));
}

void tryName(std::string_view name)
{
    static const QTemporaryDir folder("/dev/shm/fuzz-XXXXXX");
    const std::filesystem::path outer = folder.path().toStdString(), inner = outer / "movie";
    flash::net::FileSharedObjects store(inner);
    const bool written = store.write(name, {1, 2, 3});
    if (written && store.read(name).size() != 3) std::abort();
    store.remove(name);
    std::error_code ignored;
    std::filesystem::remove_all(inner, ignored);
    if (entriesOf(outer) != 0) std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace flash::avm1;
    if (size == 0) return 0;
    const std::size_t nameBytes = std::min<std::size_t>(data[0], size - 1);
    const base::Bytes rest = base::Bytes(data, size).subspan(1);
    tryName({reinterpret_cast<const char*>(rest.data()), nameBytes});

    NullHost host;
    Vm vm(host, &classes::installAll);
    const Root<Object> stored(vm.heap(), vm.newLiteral());
    if (!decodeStored(vm, stored.get(), rest.subspan(nameBytes))) return 0;
    // What was read can be written and read.
    const std::vector<std::uint8_t> file = encodeStored(vm, stored.get(), "name");
    const Root<Object> again(vm.heap(), vm.newLiteral());
    if (!decodeStored(vm, again.get(), file)) std::abort();
    return 0;
}
