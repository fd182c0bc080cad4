#pragma once

#include "flash/sound/Sources.h"

namespace flash::sound
{

/// Whether a file begins like an FLV file.
bool isFlv(base::Bytes file);

/// What is heard of an FLV file, from its time 0 on: silent before the first packet and where packets are
/// missing.
/// @returns null when it has no sound that can be decoded
std::unique_ptr<SampleSource> openFlvSound(FileBytes file);

} // namespace flash::sound
