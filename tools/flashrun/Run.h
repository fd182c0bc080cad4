#pragma once

#include "Arguments.h"

namespace flashrun
{

/// @errors what keeps the movie from being played, or a picture or sound from being written
base::Result<void> trace(const Arguments& arguments);
base::Result<void> render(const Arguments& arguments);
base::Result<void> record(const Arguments& arguments);
base::Result<void> info(const Arguments& arguments);
base::Result<void> actions(const Arguments& arguments);

} // namespace flashrun
