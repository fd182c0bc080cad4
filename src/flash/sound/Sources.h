#pragma once

#include "flash/sound/Samples.h"
#include "flash/swf/Movie.h"

#include <memory>

namespace flash::sound
{

using MoviePtr = std::shared_ptr<const swf::Movie>;
using FileBytes = std::shared_ptr<const std::vector<std::uint8_t>>;

/// A sound of the dictionary, from its first sample to the stated last one. Decodes as it is read.
/// @returns null when the format is not known.
std::unique_ptr<SampleSource> openSound(MoviePtr movie, const swf::Sound& sound);

/// An MP3 file as it lies on the disk, tags of its own before and after the music included, or what is heard
/// of an FLV file.
std::unique_ptr<SampleSource> openSoundFile(FileBytes file);

/// The stream of a timeline from a frame (index) on. Where frames long enough to be heard hold no block, the
/// source is silent, so that the next block sounds with its frame.
/// @param frameRate of the movie; 0 when it is not known
/// @returns null when the timeline has no stream or its format is not known.
std::unique_ptr<SampleSource> openStream(MoviePtr movie, const swf::Timeline& timeline,
                                         std::size_t firstFrame, double frameRate);

/// How many frames at kMixRate one frame of the timeline lasts by its stream head.
double streamFramesPerTimelineFrame(const swf::SoundStreamHead& head, double frameRate);

/// Milliseconds of music in an MP3 file, by its frame headers.
double mp3DurationMs(base::Bytes file);

} // namespace flash::sound
