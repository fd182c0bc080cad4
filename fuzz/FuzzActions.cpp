#include "flash/avm1/classes/Classes.h"
#include "flash/avm1/interpreter/Vm.h"

#include <memory>
#include <vector>

namespace
{

/// Real time passes quickly here, so that endless loops end.
class HurryingHost : public flash::avm1::NullHost
{
public:
    double realTimeMs() override { return m_now += 4000; }

private:
    double m_now = 0;
};

} // namespace

/// The first byte picks the version of the movie and whether every safe point collects; the rest is a block.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size < 2) return 0;
    HurryingHost host;
    flash::avm1::Vm vm(host, &flash::avm1::classes::installAll);
    if ((data[0] & 0x80) != 0) vm.collectAlways();
    const int version = 4 + (data[0] & 7) % 5;
    const auto owner = std::make_shared<std::vector<std::uint8_t>>(data + 1, data + size);
    flash::avm1::Root<flash::avm1::Object> root(vm.heap(), vm.newObject());
    vm.run(owner, flash::swf::ActionBlock{*owner}, version, root.get());
    return 0;
}
