#pragma once

#include "flash/swf/BodyReader.h"
#include "flash/swf/Movie.h"

namespace flash::swf
{

/// How a sound is to be started, as StartSound and button sounds carry it.
SoundInfo readSoundInfo(BodyReader& body);

} // namespace flash::swf
