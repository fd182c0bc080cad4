#pragma once

#include "flash/avm1/bindings/StageBinding.h"
#include "flash/avm2/bindings/OldMovies.h"

namespace flash
{

/// A movie of ActionScript 1 or 2 within one of ActionScript 3: stage and scripts of its own over the
/// services of the outer one.
/// @param textCode of movies before version 6, see Engine::Options
std::unique_ptr<avm2::OldMovie> openInnerMovie(stage::Stage& outer, const stage::MoviePtr& movie,
                                               const std::string& url, avm1::BindingInputs inputs,
                                               const std::string& textCode);

} // namespace flash
