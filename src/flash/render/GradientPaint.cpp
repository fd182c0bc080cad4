#include "flash/render/GradientRows.h"
#include "flash/render/LinearLight.h"
#include "flash/render/Paint.h"
#include "flash/render/Pixel.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace flash::render
{
namespace
{

constexpr double kSquareRadius = 16384;

// Channel `part` of `whole` on the way.
std::uint8_t mixPlain(std::uint8_t from, std::uint8_t to, int part, int whole)
{
    return static_cast<std::uint8_t>((from * (whole - part) + to * part + whole / 2) / whole);
}

std::uint8_t mixLinear(std::uint8_t from, std::uint8_t to, int part, int whole)
{
    const double t = static_cast<double>(part) / whole;
    return static_cast<std::uint8_t>(std::lround(
        255 * fromLinearLight(toLinearLight(from / 255.0) * (1 - t) + toLinearLight(to / 255.0) * t)));
}

// Fills the entries after `from` up to `to`.
template <std::uint8_t (*Mix)(std::uint8_t, std::uint8_t, int, int)>
void fillBetween(std::array<swf::Rgba, kRampSize>& colors, const swf::Gradient::Stop& from,
                 const swf::Gradient::Stop& to)
{
    const int whole = to.ratio - from.ratio;
    const swf::Rgba a = from.color, b = to.color;
    for (int part = 1; part <= whole; ++part)
        colors[static_cast<std::size_t>(from.ratio + part)] = {
            Mix(a.r, b.r, part, whole), Mix(a.g, b.g, part, whole), Mix(a.b, b.b, part, whole),
            mixPlain(a.a, b.a, part, whole)};
}

// Where in a pixel a gradient is looked at, from its upper left corner.
constexpr double kCentre = 0.5, kCorner = 0;
// The genuine player's radial ones lie off by a hair; found from its pictures, see kRadialSize.
constexpr double kRadialShift = 0.0012;

class GradientPaint final : public Paint
{
public:
    GradientPaint(GradientForm form, const swf::Gradient& gradient, std::shared_ptr<const GradientRamp> ramp,
                  const swf::Matrix& fromDevice, GradientSample sample)
        : GradientPaint(form, gradient, std::move(ramp), fromDevice, sample,
                        gradientLoops(form, gradient.spread))
    {
    }

    void fetch(int x, int y, std::size_t count, std::uint32_t* to) const override
    {
        forBlocks(x, y, count,
                  [&](const GradientRow& row, std::size_t first, std::size_t done, std::size_t n) {
                      if (m_isBetween)
                          fillBetweenEntries(m_form, m_spread, *m_ramp, row, first, n, to + done);
                      else
                          m_loops.fill(m_ramp->colors.data(), row, first, n, to + done);
                  });
    }

    void lay(int x, int y, const std::uint8_t* coverage, std::size_t count, std::uint32_t* to) const override
    {
        const std::uint32_t* ramp = m_ramp->colors.data();
        forBlocks(x, y, count,
                  [&](const GradientRow& row, std::size_t first, std::size_t done, std::size_t n) {
                      m_loops.lay(ramp, row, first, coverage + done, n, to + done);
                  });
    }

    [[nodiscard]] std::uint32_t rowColor(int y) const override
    {
        std::uint32_t color = 0;
        fetch(0, y, 1, &color);
        return color;
    }

private:
    GradientPaint(GradientForm form, const swf::Gradient& gradient, std::shared_ptr<const GradientRamp> ramp,
                  const swf::Matrix& fromDevice, GradientSample sample, GradientLoops loops)
        : Paint({.isOpaque = ramp->isOpaque,
                 // Skies and buttons: what runs straight down has one colour a row.
                 .hasRowColors =
                     form == GradientForm::Linear && static_cast<float>(fromDevice.a) * (kRampSize / 2) == 0,
                 .canLay = sample == GradientSample::Corner && loops.lay != nullptr}),
          m_ramp(std::move(ramp)), m_form(form), m_spread(gradient.spread), m_fromDevice(fromDevice),
          m_loops(loops),
          // On the circle itself every point would be infinitely far along its way.
          m_focal(static_cast<float>(std::clamp(gradient.focalPoint, -0.98, 0.98))),
          m_isBetween(sample == GradientSample::Centre)
    {
        if (m_isBetween)
            m_within = kCentre;
        else
            m_within = form == GradientForm::Radial ? kCorner + kRadialShift : kCorner;
    }

    // Pixels are looked at from the borders of blocks: what they look like does not depend on where a row is
    // begun, on the clip that is.
    template <class Each>
    void forBlocks(int x, int y, std::size_t count, const Each& each) const
    {
        GradientRow row;
        row.focal = m_focal;
        row.stepX = static_cast<float>(m_fromDevice.a);
        row.stepY = static_cast<float>(m_fromDevice.b);
        if (m_form == GradientForm::Linear) row.stepX *= kRampSize / 2;
        for (std::size_t done = 0; done < count;) {
            const int at = x + static_cast<int>(done);
            const auto first = static_cast<std::size_t>(at & (kGradientBlock - 1));
            const swf::Point start = m_fromDevice.map(at - static_cast<int>(first) + m_within, y + m_within);
            row.startY = static_cast<float>(start.y);
            row.startX = static_cast<float>(m_form == GradientForm::Linear ? (start.x + 1) * (kRampSize / 2)
                                                                           : start.x);
            const std::size_t block = std::min(count - done, kGradientBlock - first);
            each(row, first, done, block);
            done += block;
        }
    }

    std::shared_ptr<const GradientRamp> m_ramp;
    GradientForm m_form;
    swf::Gradient::Spread m_spread;
    swf::Matrix m_fromDevice; ///< device pixels to the unit circle
    GradientLoops m_loops;
    float m_focal;
    bool m_isBetween;    ///< colours go over into each other between entries
    double m_within = 0; ///< where in a pixel it is looked at, from its corner
};

// The genuine player's, where edges are not smoothed: each entry is cut to whole levels, those of a gradient
// that is mixed in linear light to levels of the light. From the entry after one stop on the way leads to the
// next.
void setPlain(GradientRamp& ramp, const swf::Gradient& gradient)
{
    ramp.isLinear = gradient.interpolation == swf::Gradient::Interpolation::Linear;
    const std::vector<swf::Gradient::Stop>& stops = gradient.stops;
    if (stops.empty()) {
        ramp.plain.fill(0xFF000000);
        return;
    }
    const auto level = [&](std::uint8_t channel) {
        return ramp.isLinear ? 255 * toLinearLight(channel / 255.0) : channel;
    };
    std::size_t last = 0;
    for (int i = 0; i < kRampSize; ++i) {
        while (last + 1 < stops.size() && stops[last + 1].ratio < i) ++last;
        const swf::Gradient::Stop &from = stops[last], &to = stops[std::min(last + 1, stops.size() - 1)];
        const int whole = to.ratio - from.ratio;
        const double part =
            whole <= 0 ? 0 : std::clamp((i - from.ratio) / static_cast<double>(whole), 0.0, 1.0);
        const auto mixed = [&](double a, double b) {
            // A hair is added for products that miss the whole level they stand for.
            return static_cast<std::uint32_t>(a + (b - a) * part + 1e-6);
        };
        ramp.plain[static_cast<std::size_t>(i)] = packPixel(
            mixed(from.color.a, to.color.a), mixed(level(from.color.r), level(to.color.r)),
            mixed(level(from.color.g), level(to.color.g)), mixed(level(from.color.b), level(to.color.b)));
    }
}

} // namespace

GradientRamp makeRamp(const swf::Gradient& gradient, const swf::ColorTransform& color)
{
    GradientRamp ramp;
    std::array<swf::Rgba, kRampSize> colors;
    // The genuine player fills with black where no colours are given. A stop that does not lie beyond its
    // predecessor comes one entry later, which still has the predecessor's colour. Before the first and after
    // the last one the colour stays.
    swf::Gradient::Stop previous;
    if (!gradient.stops.empty()) previous = gradient.stops.front();
    std::fill_n(colors.begin(), previous.ratio + 1, previous.color);
    for (std::size_t i = 1; i < gradient.stops.size() && previous.ratio < kRampSize - 1; ++i) {
        swf::Gradient::Stop stop = gradient.stops[i];
        if (stop.ratio <= previous.ratio) {
            colors[previous.ratio + 1U] = previous.color;
            previous = {static_cast<std::uint8_t>(previous.ratio + 1), stop.color};
            continue;
        }
        if (gradient.interpolation == swf::Gradient::Interpolation::Linear)
            fillBetween<mixLinear>(colors, previous, stop);
        else
            fillBetween<mixPlain>(colors, previous, stop);
        previous = stop;
    }
    std::fill(colors.begin() + std::min(previous.ratio + 1, kRampSize), colors.end(), previous.color);
    const bool plain = color.isIdentity();
    std::ranges::transform(colors, ramp.colors.begin(),
                           [&](swf::Rgba c) { return premultiply(plain ? c : apply(color, c)); });
    ramp.isOpaque =
        std::ranges::all_of(ramp.colors, [](std::uint32_t pixel) { return alphaOf(pixel) == 255; });
    setPlain(ramp, gradient);
    ramp.transform = color;
    return ramp;
}

std::unique_ptr<Paint> makeGradientPaint(swf::FillStyle::Kind kind, const swf::Gradient& gradient,
                                         std::shared_ptr<const GradientRamp> ramp,
                                         const swf::Matrix& toDevice, GradientSample sample)
{
    if (!toDevice.isInvertible()) return nullptr;
    swf::Matrix fromDevice = toDevice.inverted();
    constexpr double f = 1 / kSquareRadius;
    fromDevice = {fromDevice.a * f, fromDevice.b * f,  fromDevice.c * f,
                  fromDevice.d * f, fromDevice.tx * f, fromDevice.ty * f};
    GradientForm form = GradientForm::Radial;
    if (kind == swf::FillStyle::Kind::LinearGradient)
        form = GradientForm::Linear;
    else if (kind == swf::FillStyle::Kind::FocalGradient && gradient.focalPoint != 0)
        form = GradientForm::Focal;
    return std::make_unique<GradientPaint>(form, gradient, std::move(ramp), fromDevice, sample);
}

} // namespace flash::render
