#include "flash/avm1/classes/GeomValues.h"

#include "flash/avm1/interpreter/Code.h"

namespace flash::avm1
{
namespace
{

constexpr std::uint8_t kPrelude[] = {
#include "geom.inc"
};

// Its functions run by the rules of whoever calls them.
constexpr int kPreludeVersion = Code::kCallersVersion;

} // namespace

void installGeomPrelude(Vm& vm)
{
    // Our own compiler made the movie in this very build; it cannot fail to parse but by a bug here.
    const auto movie = swf::parseMovie(kPrelude);
    if (!movie) return;
    for (const swf::Frame& frame : (*movie)->timeline.frames)
        for (const swf::ControlTag& tag : frame.tags)
            if (const auto* script = std::get_if<swf::DoAction>(&tag))
                vm.run(*movie, script->actions, kPreludeVersion, vm.global());
}

} // namespace flash::avm1
