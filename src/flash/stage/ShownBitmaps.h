#pragma once

#include <span>

namespace flash::swf
{
struct Bitmap;
}

// Which instances show a picture that a script draws on.
namespace flash::stage
{

class Stage;

/// What shows one of the pictures, as a bitmap, in a fill or line, or through a filter or kernel that looks
/// at it, is to be drawn again.
void invalidateShowing(Stage& stage, std::span<const swf::Bitmap* const> pictures);

} // namespace flash::stage
