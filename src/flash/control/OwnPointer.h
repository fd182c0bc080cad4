#pragma once

#include "flash/control/Messages.h"
#include "flash/stage/CursorPicture.h"

namespace flash::control
{

/// Says which pointer the movie has made.
inline void showPointer(const stage::CursorPicture& picture, State& state)
{
    state.pointerWidth = static_cast<std::uint8_t>(picture.width);
    state.pointerHeight = static_cast<std::uint8_t>(picture.height);
    state.pointerX = static_cast<std::uint8_t>(picture.hotX);
    state.pointerY = static_cast<std::uint8_t>(picture.hotY);
    state.pointerPixels.assign(reinterpret_cast<const char*>(picture.pixels.data()),
                               picture.pixels.size() * sizeof(std::uint32_t));
}

} // namespace flash::control
