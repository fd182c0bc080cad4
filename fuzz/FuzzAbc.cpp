#include "flash/avm2/abc/Abc.h"
#include "flash/avm2/abc/Disassembly.h"
#include "flash/avm2/classes/Library.h"

// Blocks of ActionScript 3: parser, listing, verifier, and whatever of it can be run.
namespace
{

using namespace flash::avm2;

/// Time that goes on with each look, so that an endless loop ends the same way each time.
class QuietHost final : public Host
{
public:
    double realTimeMs() override { return m_ms += 1; }

private:
    double m_ms = 0;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const auto abc = abc::parseAbc({data, size});
    if (!abc) return 0;
    abc::disassemble(**abc);
    QuietHost host;
    Vm vm(host, classes::library());
    vm.setLimits(20);
    auto* domain = vm.heap().make<Domain>(vm.systemDomain());
    vm.movieDomain = domain;
    Unit* unit = nullptr;
    vm.guarded([&] { unit = domain->load(vm, *abc); });
    if (unit == nullptr) return 0;
    for (std::uint32_t i = 0; i < unit->abc().scripts.size(); ++i) {
        vm.guarded([&] { unit->script(vm, i); });
    }
    return 0;
}
