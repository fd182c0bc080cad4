#pragma once

#include "base/Result.h"
#include "flash/sound/Samples.h"

#include <filesystem>
#include <span>

namespace flashrun
{

/// The most that a sound file can hold, some seven hours.
constexpr std::size_t kMaxSoundFrames = 0xFFFFFF00 / sizeof(flash::sound::StereoFrame);

/// WAV, 16 bits, two channels.
/// @param frames at most kMaxSoundFrames
base::Result<void> writeSound(std::span<const flash::sound::StereoFrame> frames,
                              const std::filesystem::path& file);

} // namespace flashrun
