#include "swfc/actionscript/ClassTable.h"

#include <algorithm>
#include <array>

namespace swfc::actionscript
{
namespace
{

constexpr std::string_view kMovieClipMembers[] = {
    "_alpha",
    "_currentframe",
    "_droptarget",
    "_focusrect",
    "_framesloaded",
    "_height",
    "_lockroot",
    "_name",
    "_parent",
    "_quality",
    "_rotation",
    "_soundbuftime",
    "_target",
    "_totalframes",
    "_url",
    "_visible",
    "_width",
    "_x",
    "_xmouse",
    "_xscale",
    "_y",
    "_ymouse",
    "_yscale",
    "attachAudio",
    "attachBitmap",
    "attachMovie",
    "beginBitmapFill",
    "beginFill",
    "beginGradientFill",
    "blendMode",
    "cacheAsBitmap",
    "clear",
    "createEmptyMovieClip",
    "createTextField",
    "curveTo",
    "duplicateMovieClip",
    "enabled",
    "endFill",
    "filters",
    "focusEnabled",
    "getBounds",
    "getBytesLoaded",
    "getBytesTotal",
    "getDepth",
    "getInstanceAtDepth",
    "getNextHighestDepth",
    "getRect",
    "getSWFVersion",
    "getURL",
    "globalToLocal",
    "gotoAndPlay",
    "gotoAndStop",
    "hitArea",
    "hitTest",
    "lineGradientStyle",
    "lineStyle",
    "lineTo",
    "loadMovie",
    "loadVariables",
    "localToGlobal",
    "menu",
    "moveTo",
    "nextFrame",
    "opaqueBackground",
    "play",
    "prevFrame",
    "removeMovieClip",
    "scale9Grid",
    "scrollRect",
    "setMask",
    "startDrag",
    "stop",
    "stopDrag",
    "swapDepths",
    "tabChildren",
    "tabEnabled",
    "tabIndex",
    "trackAsMenu",
    "transform",
    "unloadMovie",
    "useHandCursor",
};
static_assert(std::is_sorted(std::begin(kMovieClipMembers), std::end(kMovieClipMembers)));

constexpr int kLongestInheritance = 64;

} // namespace

void ClassTable::add(const ClassDeclaration& declaration)
{
    Entry& entry = m_classes[declaration.name];
    entry.base = declaration.base;
    for (const ClassMember& member : declaration.members) entry.members[member.name] = member.isStatic;
}

std::optional<ClassTable::FoundMember> ClassTable::find(const std::string& className,
                                                        const std::string& member) const
{
    std::string name = className;
    for (int i = 0; i < kLongestInheritance; ++i) {
        const auto entry = m_classes.find(name);
        if (entry == m_classes.end()) {
            const bool clip = name == "MovieClip" &&
                              std::binary_search(std::begin(kMovieClipMembers), std::end(kMovieClipMembers),
                                                 std::string_view(member));
            return clip ? std::optional(FoundMember{false, name}) : std::nullopt;
        }
        const auto found = entry->second.members.find(member);
        if (found != entry->second.members.end()) return FoundMember{found->second, name};
        name = entry->second.base;
    }
    return {};
}

} // namespace swfc::actionscript
