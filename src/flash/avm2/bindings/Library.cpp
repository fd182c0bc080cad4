#include "flash/avm2/bindings/Library.h"

#include "flash/avm2/bindings/Display.h"
#include "flash/avm2/bindings/Events.h"

#include <array>

namespace flash::avm2
{

std::span<const NativeLibrary> bindingsLibrary()
{
    static const std::array kLibraries = {
        NativeLibrary{recordClasses(), {}},
        NativeLibrary{eventClasses(), {}},
        NativeLibrary{geometryClasses(), {}},
        NativeLibrary{displayClasses(), {}},
        NativeLibrary{clipClasses(), {}},
        timerLibrary(),
        systemLibrary(),
        interfaceLibrary(),
        netLoadingLibrary(),
        netPeerLibrary(),
        fileLibrary(),
        socketLibrary(),
        sharedObjectLibrary(),
    };
    return kLibraries;
}

} // namespace flash::avm2
