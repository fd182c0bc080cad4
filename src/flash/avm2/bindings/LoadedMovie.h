#pragma once

#include "flash/avm2/bindings/Display.h"
#include "flash/avm2/interpreter/Unit.h"
#include "flash/swf/ScriptTags.h"

#include <map>

namespace flash::avm2
{

/// A movie that this machine plays: its code and the classes of its characters. It keeps nothing of them
/// alive: Player keeps what the main movie has, and forgets of others what is gone.
class LoadedMovie
{
public:
    LoadedMovie(stage::MoviePtr file, std::string address, Domain* ownDomain)
        : movie(std::move(file)), url(std::move(address)), tags(swf::readScriptTags(*movie)),
          domain(ownDomain)
    {
    }
    [[nodiscard]] ClassObject* classOf(std::uint16_t characterId) const
    {
        const auto found = symbols.find(characterId);
        return found != symbols.end() ? found->second : nullptr;
    }

    const stage::MoviePtr movie;
    const std::string url;
    const swf::ScriptTags tags;
    std::size_t loadedFrames = 0; ///< whose code has been read
    Domain* domain;               ///< null once it is gone
    DisplayObject* root = nullptr;
    DispatcherObject* loaderInfo = nullptr;
    std::map<std::uint16_t, ClassObject*> symbols; ///< 0: the main timeline
};

} // namespace flash::avm2
