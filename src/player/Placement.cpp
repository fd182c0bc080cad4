#include "player/Placement.h"

#include <algorithm>
#include <cmath>

namespace player
{
namespace
{

constexpr int kTwips = 15;
/// No window system takes more; a damaged header may ask for it.
constexpr double kLargestPixels = 16384;

int zoomed(int percent, int moviePixels, int borderPixels, int minimumPixels)
{
    const double movieTwips = static_cast<double>(percent) * moviePixels * kTwips / 100.0;
    const double twips = std::nearbyint(movieTwips + borderPixels * kTwips);
    const double pixels = std::max(twips, static_cast<double>(minimumPixels) * kTwips) / kTwips;
    return static_cast<int>(std::min(pixels, kLargestPixels));
}

} // namespace

QSize zoomedSize(int percent, QSize movie, QMargins borders, QSize minimum)
{
    return {zoomed(percent, movie.width(), borders.left() + borders.right(), minimum.width()),
            zoomed(percent, movie.height(), borders.top() + borders.bottom(), minimum.height())};
}

} // namespace player
