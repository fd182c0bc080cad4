#include "flash/swf/Tags.h"

#include <array>

namespace flash::swf
{
namespace
{

// End and ShowFrame shape the timeline itself, so the timeline's reader handles them.
// clang-format off
constexpr TagInfo kTags[] = {
    // code  name                   since form  function
    {0,  "End",                          1, 1, nullptr},
    {1,  "ShowFrame",                    1, 1, nullptr},
    {2,  "DefineShape",                  1, 1, &tags::defineShape},
    {3,  "FreeCharacter",                1, 1, nullptr},
    {4,  "PlaceObject",                  1, 1, &tags::placeObject},
    {5,  "RemoveObject",                 1, 1, &tags::removeObject},
    {6,  "DefineBits",                   1, 1, &tags::defineBits},
    {7,  "DefineButton",                 1, 1, &tags::defineButton},
    {8,  "JPEGTables",                   1, 1, &tags::jpegTables},
    {9,  "SetBackgroundColor",           1, 1, &tags::setBackgroundColor},
    {10, "DefineFont",                   1, 1, &tags::defineFont},
    {11, "DefineText",                   1, 1, &tags::defineText},
    {12, "DoAction",                     3, 1, &tags::doAction},
    {13, "DefineFontInfo",               1, 1, &tags::defineFontInfo},
    {14, "DefineSound",                  1, 1, &tags::defineSound},
    {15, "StartSound",                   1, 1, &tags::startSound},
    {17, "DefineButtonSound",            2, 1, &tags::defineButtonSound},
    {18, "SoundStreamHead",              1, 1, &tags::soundStreamHead},
    {19, "SoundStreamBlock",             1, 1, &tags::soundStreamBlock},
    {20, "DefineBitsLossless",           2, 1, &tags::defineBitsLossless},
    {21, "DefineBitsJPEG2",              2, 2, &tags::defineBitsJpeg},
    {22, "DefineShape2",                 2, 2, &tags::defineShape},
    {23, "DefineButtonCxform",           2, 1, &tags::defineButtonCxform},
    {24, "Protect",                      2, 1, nullptr},
    {26, "PlaceObject2",                 3, 2, &tags::placeObject2},
    {28, "RemoveObject2",                3, 2, &tags::removeObject},
    {32, "DefineShape3",                 3, 3, &tags::defineShape},
    {33, "DefineText2",                  3, 2, &tags::defineText},
    {34, "DefineButton2",                3, 2, &tags::defineButton2},
    {35, "DefineBitsJPEG3",              3, 3, &tags::defineBitsJpeg},
    {36, "DefineBitsLossless2",          3, 2, &tags::defineBitsLossless},
    {37, "DefineEditText",               4, 1, &tags::defineEditText},
    {39, "DefineSprite",                 3, 1, &tags::defineSprite},
    {40, "NameCharacter",                3, 1, nullptr},
    {41, "ProductInfo",                  3, 1, nullptr},
    {43, "FrameLabel",                   3, 1, &tags::frameLabel},
    {45, "SoundStreamHead2",             3, 2, &tags::soundStreamHead},
    {46, "DefineMorphShape",             3, 1, &tags::defineMorphShape},
    {48, "DefineFont2",                  3, 2, &tags::defineFont2},
    {56, "ExportAssets",                 5, 1, &tags::exportAssets},
    {57, "ImportAssets",                 5, 1, &tags::importAssets},
    {58, "EnableDebugger",               5, 1, nullptr},
    {59, "DoInitAction",                 6, 1, &tags::doInitAction},
    {60, "DefineVideoStream",            6, 1, &tags::defineVideoStream},
    {61, "VideoFrame",                   6, 1, &tags::videoFrame},
    {62, "DefineFontInfo2",              6, 2, &tags::defineFontInfo},
    {63, "DebugId",                      6, 1, nullptr},
    {64, "EnableDebugger2",              6, 2, nullptr},
    {65, "ScriptLimits",                 7, 1, &tags::scriptLimits},
    {66, "SetTabIndex",                  7, 1, &tags::setTabIndex},
    {69, "FileAttributes",               8, 1, &tags::fileAttributes},
    {70, "PlaceObject3",                 8, 3, &tags::placeObject2},
    {71, "ImportAssets2",                8, 2, &tags::importAssets},
    {73, "DefineFontAlignZones",         8, 1, nullptr},
    {74, "CSMTextSettings",              8, 1, &tags::textSettings},
    {75, "DefineFont3",                  8, 3, &tags::defineFont2},
    {76, "SymbolClass",                  9, 1, &tags::otherMachine},
    {77, "Metadata",                     8, 1, &tags::metadata},
    {78, "DefineScalingGrid",            8, 1, &tags::defineScalingGrid},
    {82, "DoABC",                        9, 1, &tags::otherMachine},
    {83, "DefineShape4",                 8, 4, &tags::defineShape},
    {84, "DefineMorphShape2",            8, 2, &tags::defineMorphShape},
    {86, "DefineSceneAndFrameLabelData", 9, 1, nullptr},
    {87, "DefineBinaryData",             9, 1, nullptr},
    {88, "DefineFontName",               9, 1, &tags::defineFontName},
    {89, "StartSound2",                  9, 2, nullptr},
    {90, "DefineBitsJPEG4",             10, 4, &tags::defineBitsJpeg},
    {91, "DefineFont4",                 10, 4, nullptr},
    {93, "EnableTelemetry",             19, 1, nullptr},
    {94, "PlaceObject4",                19, 4, nullptr},
};
// clang-format on

constexpr std::size_t kCodes = 128;

consteval std::array<const TagInfo*, kCodes> indexByCode()
{
    std::array<const TagInfo*, kCodes> index{};
    for (const TagInfo& tag : kTags) {
        if (index[tag.code] != nullptr) throw "two tags share a code";
        index[tag.code] = &tag;
    }
    return index;
}
constexpr auto kTagByCode = indexByCode();

} // namespace

const TagInfo* findTag(std::uint16_t code) { return code < kCodes ? kTagByCode[code] : nullptr; }

} // namespace flash::swf
