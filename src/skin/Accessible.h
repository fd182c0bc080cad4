#pragma once

namespace skin
{

/// Shows the elements of skins to screen readers: buttons by their tool tips, which can be pressed, texts by
/// what they say, sliders by their names. To be called once, with the application there; more calls do
/// nothing.
void installAccessibility();

} // namespace skin
