#pragma once

#include "flash/swf/BodyReader.h"
#include "flash/swf/Movie.h"

namespace flash::swf
{

/// Filters and blend modes, as placements and the records of buttons carry them.
/// @errors Malformed for a kind of filter that the format does not know, since its length is unknown too;
///         Truncated.
base::Result<std::vector<Filter>> readFilters(BodyReader& body);
BlendMode readBlendMode(BodyReader& body);

} // namespace flash::swf
