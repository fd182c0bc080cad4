#pragma once

#include "flash/swf/Movie.h"

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace flash::swf
{

/// What a movie holds for the second script machine. The bytes belong to the movie.
struct ScriptTags {
    struct Block {
        std::size_t frame = 0; ///< 0-based, of the main timeline
        std::string name;      ///< empty in the raw form
        bool lazy = false;     ///< its scripts run when something of theirs is first asked for
        base::Bytes bytes;
    };
    struct Symbol {
        std::size_t frame = 0;
        std::uint16_t characterId = 0; ///< 0 is the main timeline
        std::string className;         ///< dotted, UTF-8
    };
    struct Label {
        std::uint32_t frame = 0; ///< 0-based
        std::string name;
    };
    std::vector<Block> blocks;   ///< in file order
    std::vector<Symbol> symbols; ///< in file order
    std::vector<Label> scenes, labels;
    std::map<std::uint16_t, base::Bytes> binaries; ///< DefineBinaryData by character id
};

/// Walks the movie's tags once more. Damaged ones are left out.
ScriptTags readScriptTags(const Movie& movie);

} // namespace flash::swf
