#include "flash/swf/Filters.h"

namespace flash::swf
{
namespace
{

// Fields are read in the order of the file, so each is a statement of its own.

/// What follows the colours in every filter that casts something round a shape.
template <typename Cast>
Cast readCast(BodyReader& body, Cast filter)
{
    filter.blurX = body.fixed16();
    filter.blurY = body.fixed16();
    if constexpr (requires { filter.angle; }) {
        filter.angle = body.fixed16();
        filter.distance = body.fixed16();
    }
    filter.strength = body.fixed8();
    filter.inner = body.flag();
    filter.knockout = body.flag();
    filter.compositeSource = body.flag();
    if constexpr (requires { filter.onTop; }) {
        filter.onTop = body.flag();
        filter.passes = static_cast<int>(body.bits(4));
    } else {
        filter.passes = static_cast<int>(body.bits(5));
    }
    return filter;
}

template <typename Cast>
Cast readColoredCast(BodyReader& body)
{
    Cast filter;
    filter.color = body.rgba();
    return readCast(body, filter);
}

BlurFilter readBlur(BodyReader& body)
{
    BlurFilter filter;
    filter.blurX = body.fixed16();
    filter.blurY = body.fixed16();
    filter.passes = static_cast<int>(body.bits(5));
    body.bits(3);
    return filter;
}

BevelFilter readBevel(BodyReader& body)
{
    BevelFilter filter;
    filter.highlight = body.rgba(); // The file has it first, whatever descriptions of the format say.
    filter.shadow = body.rgba();
    return readCast(body, filter);
}

GradientFilter readGradientFilter(BodyReader& body, bool bevel)
{
    GradientFilter filter;
    filter.bevel = bevel;
    filter.stops.resize(body.u8());
    for (Gradient::Stop& stop : filter.stops) stop.color = body.rgba();
    for (Gradient::Stop& stop : filter.stops) stop.ratio = body.u8();
    return readCast(body, std::move(filter));
}

ConvolutionFilter readConvolution(BodyReader& body)
{
    ConvolutionFilter filter;
    filter.columns = body.u8();
    filter.rows = body.u8();
    filter.divisor = body.f32();
    filter.bias = body.f32();
    const auto cells = static_cast<std::size_t>(filter.columns) * static_cast<std::size_t>(filter.rows);
    if (cells * sizeof(float) > body.remaining()) {
        body.skip(cells * sizeof(float)); // an overrun
        return filter;
    }
    filter.matrix.resize(cells);
    for (double& cell : filter.matrix) cell = body.f32();
    filter.defaultColor = body.rgba();
    body.bits(6);
    filter.clamp = body.flag();
    filter.preserveAlpha = body.flag();
    return filter;
}

ColorMatrixFilter readColorMatrix(BodyReader& body)
{
    ColorMatrixFilter filter;
    for (double& cell : filter.matrix) cell = body.f32();
    return filter;
}

} // namespace

base::Result<std::vector<Filter>> readFilters(BodyReader& body)
{
    std::vector<Filter> filters;
    const unsigned count = body.u8();
    for (unsigned i = 0; i < count && !body.overrun(); ++i) {
        const std::uint8_t kind = body.u8();
        switch (kind) {
        case 0: filters.emplace_back(readColoredCast<DropShadowFilter>(body)); break;
        case 1: filters.emplace_back(readBlur(body)); break;
        case 2: filters.emplace_back(readColoredCast<GlowFilter>(body)); break;
        case 3: filters.emplace_back(readBevel(body)); break;
        case 4: filters.emplace_back(readGradientFilter(body, false)); break;
        case 5: filters.emplace_back(readConvolution(body)); break;
        case 6: filters.emplace_back(readColorMatrix(body)); break;
        case 7: filters.emplace_back(readGradientFilter(body, true)); break;
        default:
            return base::fail(base::ErrorCode::Malformed, "filter of unknown kind " + std::to_string(kind),
                              body.offset());
        }
    }
    CHECK_RESULT(body.check());
    return filters;
}

BlendMode readBlendMode(BodyReader& body)
{
    constexpr auto kLast = static_cast<std::uint8_t>(BlendMode::HardLight);
    const std::uint8_t mode = body.u8();
    return mode == 0 || mode > kLast ? BlendMode::Normal : static_cast<BlendMode>(mode);
}

} // namespace flash::swf
