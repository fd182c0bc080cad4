#include "flash/stage/Node.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>

// Where a node stands, and the numbers under which scripts know its matrix.
namespace flash::stage
{

namespace
{

constexpr double kDegreesPerRadian = 180 / std::numbers::pi;

/// Positions are whole twips; what does not fit 32 bits wraps to the lowest value, as a conversion by the
/// processor would have it.
double twipsFromPixels(double pixels)
{
    const double twips = std::trunc(pixels * swf::kTwipsPerPixel);
    constexpr double kLowest = std::numeric_limits<std::int32_t>::min();
    return std::abs(twips) < -kLowest ? twips : kLowest;
}

double normalizedDegrees(double degrees)
{
    double result = std::fmod(degrees, 360.0);
    if (result > 180) result -= 360;
    if (result < -180) result += 360;
    return result;
}

} // namespace

void Node::setMatrix(const swf::Matrix& matrix)
{
    m_scaleCached = false;
    if (matrix == m_matrix) return;
    if (!m_changed) {
        invalidate();
        m_onlyMoved = m_changed;
        m_matrixBefore = m_matrix;
    }
    m_matrix = matrix;
    if (m_parent) m_parent->forgetBounds();
}

void Node::setMatrixOnly(const swf::Matrix& matrix)
{
    cacheScale();
    setMatrix(matrix);
    m_scaleCached = true;
}

void Node::setX(double pixels)
{
    if (!std::isfinite(pixels)) return;
    const bool cached = m_scaleCached;
    swf::Matrix matrix = m_matrix;
    matrix.tx = twipsFromPixels(pixels);
    setMatrix(matrix);
    m_scaleCached = cached;
}

void Node::setY(double pixels)
{
    if (!std::isfinite(pixels)) return;
    const bool cached = m_scaleCached;
    swf::Matrix matrix = m_matrix;
    matrix.ty = twipsFromPixels(pixels);
    setMatrix(matrix);
    m_scaleCached = cached;
}

// The vertical axis keeps its own angle: `m_skew` is how far it is ahead of the horizontal one.
void Node::cacheScale()
{
    if (m_scaleCached) return;
    m_scaleCached = true;
    m_scaleX = std::hypot(m_matrix.a, m_matrix.b) * 100;
    m_scaleY = std::hypot(m_matrix.c, m_matrix.d) * 100;
    m_rotation = std::atan2(m_matrix.b, m_matrix.a) * kDegreesPerRadian;
    m_skew = std::atan2(-m_matrix.c, m_matrix.d) * kDegreesPerRadian - m_rotation;
}

double Node::scaleX()
{
    cacheScale();
    return m_scaleX;
}
double Node::scaleY()
{
    cacheScale();
    return m_scaleY;
}
double Node::rotation()
{
    cacheScale();
    return normalizedDegrees(m_rotation);
}

void Node::setScaleX(double percent)
{
    if (std::isnan(percent)) return;
    cacheScale();
    m_scaleX = percent;
    swf::Matrix matrix = m_matrix;
    const double angle = std::isnan(m_rotation) ? 0 : m_rotation / kDegreesPerRadian;
    matrix.a = std::cos(angle) * percent / 100;
    matrix.b = std::sin(angle) * percent / 100;
    setMatrix(matrix);
    m_scaleCached = true;
}

void Node::setScaleY(double percent)
{
    if (std::isnan(percent)) return;
    cacheScale();
    m_scaleY = percent;
    swf::Matrix matrix = m_matrix;
    const double angle = std::isnan(m_rotation) ? 0 : (m_rotation + m_skew) / kDegreesPerRadian;
    matrix.c = -std::sin(angle) * percent / 100;
    matrix.d = std::cos(angle) * percent / 100;
    setMatrix(matrix);
    m_scaleCached = true;
}

void Node::setRotation(double degrees)
{
    if (std::isnan(degrees)) return;
    cacheScale();
    if (std::isinf(degrees)) {
        // Shown to scripts as it is; the picture stays.
        m_rotation = std::nan("");
        return;
    }
    if (std::isnan(m_rotation)) m_rotation = m_skew = 0;
    m_rotation = normalizedDegrees(degrees);
    swf::Matrix matrix = m_matrix;
    const double horizontal = m_rotation / kDegreesPerRadian;
    const double vertical = (m_rotation + m_skew) / kDegreesPerRadian;
    matrix.a = std::cos(horizontal) * m_scaleX / 100;
    matrix.b = std::sin(horizontal) * m_scaleX / 100;
    matrix.c = -std::sin(vertical) * m_scaleY / 100;
    matrix.d = std::cos(vertical) * m_scaleY / 100;
    setMatrix(matrix);
    m_scaleCached = true;
}

swf::Rect Node::boundsThrough(const swf::Matrix& matrix, Extent extent)
{
    const swf::Rect own = bounds(extent);
    if (own.isEmpty()) return own;
    const swf::Point corners[] = {matrix.map(own.xMin, own.yMin), matrix.map(own.xMax, own.yMin),
                                  matrix.map(own.xMin, own.yMax), matrix.map(own.xMax, own.yMax)};
    swf::Rect mapped;
    for (const swf::Point corner : corners) {
        constexpr double kMax = 0x7FFF'FFFF;
        const auto x = static_cast<std::int32_t>(std::round(std::clamp(corner.x, -kMax, kMax)));
        const auto y = static_cast<std::int32_t>(std::round(std::clamp(corner.y, -kMax, kMax)));
        mapped = swf::unite(mapped, {x, x, y, y});
    }
    return mapped;
}

// What is flat in one direction has no extent in the other either.
double Node::width()
{
    const swf::Rect rect = boundsThrough(m_matrix);
    return rect.height() == 0 ? 0 : static_cast<double>(rect.width()) / swf::kTwipsPerPixel;
}
double Node::height()
{
    const swf::Rect rect = boundsThrough(m_matrix);
    return rect.width() == 0 ? 0 : static_cast<double>(rect.height()) / swf::kTwipsPerPixel;
}

// The box a rotated thing takes has its sides along the axes of what holds it. One side is set, the other
// kept; by how much they differ from the sides it would have unscaled are the new scales, whichever way they
// turn it.
void Node::fit(Sides wanted)
{
    const swf::Rect own = bounds();
    const double across = own.width() / static_cast<double>(swf::kTwipsPerPixel);
    const double down = own.height() / static_cast<double>(swf::kTwipsPerPixel);
    cacheScale();
    const double angle = std::isnan(m_rotation) ? 0 : m_rotation / kDegreesPerRadian;
    const double cos = std::abs(std::cos(angle)), sin = std::abs(std::sin(angle));
    const Sides unscaled{cos * across + sin * down, sin * across + cos * down};
    setScaleX(wanted.width / unscaled.width * 100);
    setScaleY(wanted.height / unscaled.height * 100);
}

bool Node::isUpright() const { return m_matrix.b == 0 && m_matrix.c == 0; }

void Node::setWidth(double pixels)
{
    if (!std::isfinite(pixels)) return;
    const double own = bounds().width() / static_cast<double>(swf::kTwipsPerPixel);
    if (own <= 0) return collapse();
    if (!isUpright() && width() > 0) return fit({pixels, height()});
    setScaleX(pixels / own * 100);
}

void Node::setHeight(double pixels)
{
    if (!std::isfinite(pixels)) return;
    const double own = bounds().height() / static_cast<double>(swf::kTwipsPerPixel);
    if (own <= 0) return collapse();
    if (!isUpright() && height() > 0) return fit({width(), pixels});
    setScaleY(pixels / own * 100);
}

// What has no extent has none in either way once it is sized.
void Node::collapse()
{
    setScaleX(0);
    setScaleY(0);
}

} // namespace flash::stage
