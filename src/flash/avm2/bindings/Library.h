#pragma once

#include "flash/avm2/interpreter/Native.h"

#include <span>

namespace flash::avm2
{

/// The classes that act on the stage, and those that go with them.
std::span<const NativeLibrary> bindingsLibrary();

std::span<const NativeClass> geometryClasses();
std::span<const NativeClass> matrixClasses();
std::span<const NativeClass> vector3DClasses();
std::span<const NativeClass> perspectiveClasses();
std::span<const NativeClass> matrix3DClasses();
std::span<const NativeClass> spriteClasses();
std::span<const NativeClass> stageClasses();
std::span<const NativeClass> loaderInfoClasses();
std::span<const NativeClass> buttonClasses();
std::span<const NativeClass> recordClasses();

std::string_view displaySignatures();
std::string_view eventsSignatures();
std::string_view textEngineSignatures();
std::string_view mediaSignatures(); ///< and all that is neither of these nor the language's own

NativeLibrary filterLibrary();
NativeLibrary timerLibrary();
NativeLibrary systemLibrary();    ///< flash.system and what reports on the machine
NativeLibrary cursorLibrary();    ///< flash.ui.Mouse
NativeLibrary interfaceLibrary(); ///< flash.ui, flash.accessibility, flash.external, flash.printing
NativeLibrary urlStreamLibrary();
NativeLibrary netLoadingLibrary(); ///< what fetches addresses
NativeLibrary netStreamLibrary();  ///< and Video
NativeLibrary netPeerLibrary();    ///< connections
NativeLibrary socketLibrary();
NativeLibrary sharedObjectLibrary();
NativeLibrary accessibilityLibrary();
NativeLibrary textSnapshotLibrary();
NativeLibrary videoLibrary();
NativeLibrary netStreamInfoLibrary(); ///< and the devices that would feed streams
NativeLibrary textFormatLibrary();
NativeLibrary styleSheetLibrary();
NativeLibrary textFieldLibrary();
NativeLibrary textEngineLibrary(); ///< flash.text.engine
NativeLibrary xmlNodeLibrary();    ///< flash.xml
NativeLibrary soundLibrary();
NativeLibrary soundMixerLibrary();
NativeLibrary fontLibrary(); ///< and the lists of constants around texts
NativeLibrary shaderLibrary();
NativeLibrary shaderJobLibrary();
NativeLibrary stage3DLibrary(); ///< the space behind the stage
NativeLibrary context3DLibrary();
NativeLibrary resource3DLibrary();
NativeLibrary clipboardLibrary(); ///< flash.desktop, and what else belongs to the desktop
NativeLibrary pictureEncoderLibrary();
NativeLibrary groupLibrary();  ///< flash.net: groups of peers, and who watches streams
NativeLibrary rightsLibrary(); ///< flash.net.drm
NativeLibrary absentLibrary(); ///< classes of services that are not there
NativeLibrary workerLibrary(); ///< scripts that run beside each other, of which there is one
NativeLibrary fileLibrary();   ///< files that a user would choose

} // namespace flash::avm2
