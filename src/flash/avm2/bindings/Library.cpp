#include "flash/avm2/bindings/Library.h"

#include "flash/avm2/bindings/BitmapData.h"
#include "flash/avm2/bindings/Display.h"
#include "flash/avm2/bindings/EventKinds.h"
#include "flash/avm2/bindings/Events.h"
#include "flash/avm2/bindings/Globalization.h"
#include "flash/avm2/bindings/Graphics.h"
#include "flash/avm2/bindings/Loader.h"
#include "flash/avm2/bindings/Transform.h"

#include <array>

namespace flash::avm2
{

std::span<const NativeLibrary> bindingsLibrary()
{
    static const std::array kLibraries = {
        NativeLibrary{recordClasses(), {}, mediaSignatures()},
        NativeLibrary{eventClasses(), {}, eventsSignatures()},
        NativeLibrary{eventKindClasses(), {}},
        NativeLibrary{geometryClasses(), {}},
        NativeLibrary{matrixClasses(), {}},
        NativeLibrary{vector3DClasses(), {}},
        NativeLibrary{matrix3DClasses(), {}},
        NativeLibrary{perspectiveClasses(), {}},
        NativeLibrary{transformClasses(), {}},
        NativeLibrary{displayClasses(), {}, displaySignatures()},
        NativeLibrary{spriteClasses(), {}},
        NativeLibrary{containerClasses(), {}},
        NativeLibrary{clipClasses(), {}},
        NativeLibrary{buttonClasses(), {}},
        NativeLibrary{stageClasses(), {}},
        NativeLibrary{graphicsClasses(), {}},
        NativeLibrary{graphicsDataClasses(), {}},
        NativeLibrary{bitmapDataClasses(), {}},
        NativeLibrary{loaderClasses(), {}},
        NativeLibrary{loaderInfoClasses(), {}},
        filterLibrary(),
        timerLibrary(),
        systemLibrary(),
        cursorLibrary(),
        interfaceLibrary(),
        netLoadingLibrary(),
        urlStreamLibrary(),
        netPeerLibrary(),
        netStreamLibrary(),
        fileLibrary(),
        clipboardLibrary(),
        socketLibrary(),
        sharedObjectLibrary(),
        textFormatLibrary(),
        styleSheetLibrary(),
        fontLibrary(),
        soundLibrary(),
        textFieldLibrary(),
        textEngineLibrary(),
        textSnapshotLibrary(),
        accessibilityLibrary(),
        netStreamInfoLibrary(),
        videoLibrary(),
        xmlNodeLibrary(),
        soundMixerLibrary(),
        shaderLibrary(),
        shaderJobLibrary(),
        pictureEncoderLibrary(),
        groupLibrary(),
        rightsLibrary(),
        absentLibrary(),
        workerLibrary(),
        globalization::textLibrary(),
        globalization::numberLibrary(),
        globalization::dateLibrary(),
        stage3DLibrary(),
        context3DLibrary(),
        resource3DLibrary(),
    };
    return kLibraries;
}

} // namespace flash::avm2
