#pragma once

#include <cstdint>
#include <memory>
#include <vector>

namespace flash::stage
{

/// What a movie shows in place of the system's arrow: at most kMostSide pixels wide and high.
struct CursorPicture {
    static constexpr int kMostSide = 32;
    int width = 0, height = 0;
    int hotX = 0, hotY = 0;            ///< the pixel that points
    std::vector<std::uint32_t> pixels; ///< 0xAARRGGBB times opacity, rows from the top
};

using CursorPicturePtr = std::shared_ptr<const CursorPicture>;

} // namespace flash::stage
