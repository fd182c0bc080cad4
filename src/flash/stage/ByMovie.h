#pragma once

#include "flash/stage/Services.h"

#include <map>
#include <memory>

namespace flash::stage
{

/// By movie. An entry keeps the address of a movie that is gone from being given to another.
template <class T>
using ByMovie = std::map<std::weak_ptr<const swf::Movie>, T, std::owner_less<>>;

} // namespace flash::stage
