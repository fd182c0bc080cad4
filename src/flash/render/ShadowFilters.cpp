#include "flash/render/ShadowFilters.h"

#include "flash/render/Blur.h"
#include "flash/render/Paint.h"
#include "flash/render/Pixel.h"

#include <algorithm>
#include <cmath>

namespace flash::render
{
namespace
{

// What a filter blurs, how far, and how far the result is moved, in device pixels.
struct BlurredMove {
    double blurX, blurY;
    int passes;
    ShadowOffset offset;
};

template <class Filter>
BlurredMove moveOf(const Filter& f, double scale)
{
    return {scaledBlur(f.blurX, scale), scaledBlur(f.blurY, scale), f.passes,
            shadowOffset(f.distance, f.angle, scale)};
}

// How far outside its surface an effect looks that shows within only: as far as it is moved and as later
// passes look for what earlier ones left there, and no further than anything is left.
int outlook(double extent, int passes, int offset)
{
    const int reach = blurReach(extent);
    passes = blurPasses(passes);
    return std::min(std::abs(offset) + reach * std::max(passes - 1, 0), reach * passes);
}

// The blurred alpha of a surface, and of what the blur leaves around it where that is seen.
class BlurredAlpha
{
public:
    BlurredAlpha(SurfaceView surface, const BlurredMove& move, bool growsWithEffect)
    {
        if (!growsWithEffect) {
            m_marginX = outlook(move.blurX, move.passes, move.offset.x);
            m_marginY = outlook(move.blurY, move.passes, move.offset.y);
            // Beyond that it would cost far more than the object itself, and little of it is seen.
            constexpr std::int64_t kCheapPixels = 1 << 20;
            const auto size = [&](int marginX, int marginY) {
                return (surface.width + std::int64_t{2} * marginX) *
                       (surface.height + std::int64_t{2} * marginY);
            };
            if (size(m_marginX, m_marginY) > std::max(kCheapPixels, 2 * size(0, 0)))
                m_marginX = m_marginY = 0;
        }
        m_plane = {surface.width + 2 * m_marginX, surface.height + 2 * m_marginY, 1, {}};
        m_plane.bytes.resize(m_plane.rowBytes() * static_cast<std::size_t>(m_plane.height));
        for (int y = 0; y < surface.height; ++y) {
            const std::uint32_t* from = surface.row(y);
            std::transform(from, from + surface.width, m_plane.row(y + m_marginY) + m_marginX,
                           [](std::uint32_t pixel) { return static_cast<std::uint8_t>(alphaOf(pixel)); });
        }
        boxBlur(m_plane, move.blurX, move.blurY, move.passes);
    }

    /// 0..255, by coordinates of the surface
    [[nodiscard]] int at(int x, int y) const
    {
        x += m_marginX;
        y += m_marginY;
        if (x < 0 || y < 0 || x >= m_plane.width || y >= m_plane.height) return 0;
        return m_plane.row(y)[x];
    }

private:
    Plane m_plane;
    int m_marginX = 0, m_marginY = 0;
};

class MovedAlpha
{
public:
    MovedAlpha(const BlurredAlpha& alpha, ShadowOffset offset) : m_alpha(alpha), m_offset(offset) {}
    [[nodiscard]] int at(int x, int y) const { return m_alpha.at(x - m_offset.x, y - m_offset.y); }

private:
    const BlurredAlpha& m_alpha;
    ShadowOffset m_offset;
};

int strengthened(int value, double strength)
{
    // Strength is 8.8 fixed point in the file and may be anything in a script.
    const double result = value * strength;
    if (!(result > 0)) return 0;
    return static_cast<int>(std::lround(std::min(result, 255.0)));
}

enum class Where { Inside, Outside, Everywhere };
enum class Object { Shown, Hidden };

// Puts an effect and the object it was made of together.
std::uint32_t combine(std::uint32_t effect, std::uint32_t object, Where where, bool knockout, Object shown)
{
    const std::uint32_t alpha = alphaOf(object);
    switch (where) {
    case Where::Inside: {
        const std::uint32_t inside = scale255(effect, alpha);
        if (knockout || shown == Object::Hidden) return inside;
        return inside + scale255(object, 255 - alphaOf(effect));
    }
    case Where::Outside:
        if (knockout) return scale255(effect, 255 - alpha);
        return shown == Object::Hidden ? effect : over(object, effect);
    case Where::Everywhere: return knockout || shown == Object::Hidden ? effect : over(effect, object);
    }
    return object;
}

Where whereOf(bool inner, bool onTop)
{
    if (onTop) return Where::Everywhere;
    return inner ? Where::Inside : Where::Outside;
}

// Calls effectAt(x, y) for each pixel and combines.
template <class Effect>
void combineAll(SurfaceView surface, Where where, bool knockout, bool compositeSource, const Effect& effectAt)
{
    const Object shown = compositeSource ? Object::Shown : Object::Hidden;
    for (int y = 0; y < surface.height; ++y) {
        std::uint32_t* row = surface.row(y);
        for (int x = 0; x < surface.width; ++x)
            row[x] = combine(effectAt(x, y), row[x], where, knockout, shown);
    }
}

} // namespace

ShadowOffset shadowOffset(double distance, double angle, double scale)
{
    const double x = distance * scale * std::cos(angle), y = distance * scale * std::sin(angle);
    if (!std::isfinite(x) || !std::isfinite(y)) return {};
    constexpr double kFar = 1e5;
    const auto whole = [=](double v) { return static_cast<int>(std::lround(std::clamp(v, -kFar, kFar))); };
    return {whole(x), whole(y)};
}

void applyShadow(const swf::DropShadowFilter& f, SurfaceView surface, double scale)
{
    const BlurredMove move = moveOf(f, scale);
    const BlurredAlpha alpha(surface, move, !f.inner);
    const MovedAlpha shadow(alpha, move.offset);
    const std::uint32_t color = premultiply(f.color);
    combineAll(surface, whereOf(f.inner, false), f.knockout, f.compositeSource, [&](int x, int y) {
        const int value = shadow.at(x, y);
        const int density = strengthened(f.inner ? 255 - value : value, f.strength);
        return scale255(color, static_cast<std::uint32_t>(density));
    });
}

// The difference of the alpha on either side tells which way the border faces.
void applyBevel(const swf::BevelFilter& f, SurfaceView surface, double scale)
{
    const BlurredMove move = moveOf(f, scale);
    const BlurredAlpha alpha(surface, move, whereOf(f.inner, f.onTop) != Where::Inside);
    const MovedAlpha away(alpha, move.offset), towards(alpha, {-move.offset.x, -move.offset.y});
    const std::uint32_t highlight = premultiply(f.highlight), shadow = premultiply(f.shadow);
    combineAll(surface, whereOf(f.inner, f.onTop), f.knockout, f.compositeSource, [&](int x, int y) {
        const int slope = towards.at(x, y) - away.at(x, y);
        const auto density = static_cast<std::uint32_t>(strengthened(std::abs(slope), f.strength));
        return scale255(slope > 0 ? highlight : shadow, density);
    });
}

void applyGradient(const swf::GradientFilter& f, SurfaceView surface, double scale)
{
    const BlurredMove move = moveOf(f, scale);
    const BlurredAlpha alpha(surface, move, whereOf(f.inner, f.onTop) != Where::Inside);
    const MovedAlpha away(alpha, move.offset), towards(alpha, {-move.offset.x, -move.offset.y});
    swf::Gradient gradient;
    gradient.stops = f.stops;
    const auto ramp = makeRamp(gradient, {}).colors;
    combineAll(surface, whereOf(f.inner, f.onTop), f.knockout, f.compositeSource, [&](int x, int y) {
        if (!f.bevel) {
            const int value = away.at(x, y);
            const int density = strengthened(f.inner ? 255 - value : value, f.strength);
            return ramp[static_cast<std::size_t>(density)];
        }
        // The ramp runs from the highlight over the middle, where nothing slopes, to the shadow.
        const int slope = towards.at(x, y) - away.at(x, y);
        const int density = strengthened(std::abs(slope), f.strength);
        const int position = slope > 0 ? 128 - density / 2 - density % 2 : 128 + density / 2;
        return ramp[static_cast<std::size_t>(std::clamp(position, 0, 255))];
    });
}

} // namespace flash::render
