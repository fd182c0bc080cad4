#pragma once

#include "flash/avm2/bindings/Player.h"

namespace flash
{

/// A sound that scripts take apart at their own pace: of a movie, or else of a file.
/// @returns nothing where the sound cannot be decoded
avm2::SoundReader soundReader(const stage::MoviePtr& movie, const swf::Sound* symbol,
                              const std::shared_ptr<const std::vector<std::uint8_t>>& file);

} // namespace flash
