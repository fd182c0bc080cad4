#include "base/TextCode.h"
#include "flash/avm1/classes/Classes.h"
#include "flash/avm1/interpreter/Vm.h"

#include <iterator>
#include <memory>
#include <vector>

namespace
{

/// Real time passes quickly here, so that endless loops end.
class HurryingHost : public flash::avm1::NullHost
{
public:
    explicit HurryingHost(unsigned code)
    {
        constexpr const char* kCodes[] = {"", "Shift-JIS", "GBK", "Big5", "EUC-KR", "KOI8-R", "Latin-1"};
        const char* const name = kCodes[code % std::size(kCodes)];
        if (*name != '\0') m_code = base::TextCode::named(name);
    }
    double realTimeMs() override { return m_now += 4000; }
    [[nodiscard]] const base::TextCode& textCode() const override
    {
        return m_code ? *m_code : base::TextCode::ansi();
    }

private:
    std::shared_ptr<const base::TextCode> m_code;
    double m_now = 0;
};

} // namespace

/// The first byte picks the version of the movie, the code of its texts and whether every safe point
/// collects; the rest is a block.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size < 2) return 0;
    HurryingHost host(data[0] >> 3U & 15U);
    flash::avm1::Vm vm(host, &flash::avm1::classes::installAll);
    if ((data[0] & 0x80) != 0) vm.collectAlways();
    const int version = 4 + (data[0] & 7) % 5;
    const auto owner = std::make_shared<std::vector<std::uint8_t>>(data + 1, data + size);
    flash::avm1::Root<flash::avm1::Object> root(vm.heap(), vm.newObject());
    vm.run(owner, flash::swf::ActionBlock{*owner}, version, root.get());
    return 0;
}
