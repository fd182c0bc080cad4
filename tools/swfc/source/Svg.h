#pragma once

#include "swfc/source/Xml.h"

#include <optional>

namespace swfc::source
{

/// What an SVG picture draws, as the children of a <shape>: path, rect, circle and ellipse, also in groups,
/// with fill, stroke, stroke-width, stroke-linecap and stroke-linejoin as attributes, inherited or not.
/// Anything else keeps its name, for the shape to refuse; the view box is taken to begin at 0, 0.
/// @param color stands in for all colours of the picture
std::vector<std::unique_ptr<Element>> shapeOfSvg(const Element& svg, const std::optional<std::string>& color);

} // namespace swfc::source
