#pragma once

#include "Arguments.h"

class QImage;

namespace flashrun
{

/// Writes one picture that shows what a movie is about, for a file manager: the first frame of the first
/// seconds that holds more than a preloader does, else the best one there was. The movie cannot hold up or
/// fill up the machine: it is given `arguments.seconds` and a gigabyte; when the time is up in the middle of
/// a frame, the process writes the best picture so far and ends.
/// @errors what keeps the movie from being played, or the picture from being written
base::Result<void> thumbnail(const Arguments& arguments);

/// How much there is to see in a picture: the share of its places where a colour meets another, soft changes
/// left out. 0 for a plain ground or a gradient, about 0.1 for a title, 1 at most.
double detail(const QImage& picture);

} // namespace flashrun
