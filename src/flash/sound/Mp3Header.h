#pragma once

#include "base/ByteReader.h"

#include <optional>

namespace flash::sound
{

/// One frame of MPEG audio, by its four header bytes.
struct Mp3Header {
    int rate = 0;          ///< Hz
    int samples = 0;       ///< of each channel
    std::size_t bytes = 0; ///< header included
};

/// @returns nothing when `bytes` does not begin with the header of a layer III frame of a stated bit rate.
std::optional<Mp3Header> readMp3Header(base::Bytes bytes);

/// @returns the part of an MP3 file that is music: without the tags around it and without a leading frame
/// that holds an index in place of sound.
base::Bytes mp3Music(base::Bytes file);

} // namespace flash::sound
