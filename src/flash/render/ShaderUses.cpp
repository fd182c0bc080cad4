#include "flash/render/Pixel.h"
#include "flash/render/ShaderRun.h"

#include <algorithm>
#include <cmath>
#include <variant>

// Kernels as a paint, as a filter and as a blend mode.
namespace flash::render
{

namespace
{

/// Goes along with the bitmap that stands for a kernel, and is how that one is known.
struct Carrier {
    std::shared_ptr<const ShaderBinding> binding;
    void operator()(swf::Bitmap* bitmap) const { delete bitmap; }
};

class ShaderPaint final : public Paint
{
public:
    ShaderPaint(const ShaderBinding& binding, const swf::Matrix& fromDevice, const swf::ColorTransform& color)
        : m_run(binding), m_fromDevice(fromDevice), m_color(color)
    {
    }
    void fetch(int x, int y, std::size_t count, std::uint32_t* to) const override
    {
        const swf::Point at = m_fromDevice.map({x + 0.5, y + 0.5});
        m_run.row(at, {m_fromDevice.a, m_fromDevice.b}, count, to);
        transformPixels(to, count, m_color);
    }

private:
    mutable ShaderRun m_run; // its registers only
    swf::Matrix m_fromDevice;
    swf::ColorTransform m_color;
};

} // namespace

std::shared_ptr<swf::Bitmap> shaderBitmap(std::shared_ptr<const ShaderBinding> binding)
{
    return {new swf::Bitmap{1, 1, false, {0}}, Carrier{std::move(binding)}};
}
const ShaderBinding* shaderOf(const std::shared_ptr<const swf::Bitmap>& bitmap)
{
    const auto* carrier = std::get_deleter<Carrier>(bitmap);
    return carrier != nullptr ? carrier->binding.get() : nullptr;
}

std::unique_ptr<Paint> makeShaderPaint(const ShaderBinding& binding, const swf::Matrix& toDevice,
                                       const swf::ColorTransform& color)
{
    if (!toDevice.isInvertible()) return nullptr;
    return std::make_unique<ShaderPaint>(binding, toDevice.inverted(), color);
}

Growth shaderGrowth(const ShaderBinding& binding, double scale)
{
    const auto reach = [scale](int margin) {
        return static_cast<int>(std::ceil(std::max(margin, 0) * scale));
    };
    const Growth& m = binding.margins;
    return {reach(m.left), reach(m.top), reach(m.right), reach(m.bottom)};
}

void applyShader(const ShaderBinding& given, SurfaceView surface, double scale)
{
    // Kernels count from the corner of what is filtered, without the margins.
    const Growth margins = shaderGrowth(given, scale);
    const int width = surface.width - margins.left - margins.right,
              height = surface.height - margins.top - margins.bottom;
    if (width <= 0 || height <= 0 || !(scale > 0)) return;
    std::vector<std::uint32_t> source(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
    for (int y = 0; y < height; ++y)
        std::copy_n(surface.row(y + margins.top) + margins.left, width,
                    source.begin() + std::ptrdiff_t{y} * width);
    ShaderBinding binding = given;
    if (binding.images.empty()) binding.images.emplace_back();
    binding.images.front() = {.width = width,
                              .height = height,
                              .channels = 4,
                              .bitmap = nullptr,
                              .numbers = {},
                              .surface = {source.data(), width, height, width},
                              .scale = static_cast<float>(scale)};
    ShaderRun run(binding);
    for (int y = 0; y < surface.height; ++y)
        run.row({(0.5 - margins.left) / scale, (y + 0.5 - margins.top) / scale}, {1 / scale, 0},
                static_cast<std::size_t>(surface.width), surface.row(y));
}

const ShaderBinding* blendShaderOf(std::span<const swf::Filter> filters)
{
    const auto* last = filters.empty() ? nullptr : std::get_if<swf::DisplacementMapFilter>(&filters.back());
    const ShaderBinding* binding = last != nullptr ? shaderOf(last->map) : nullptr;
    return binding != nullptr && binding->blends ? binding : nullptr;
}

void blendByShader(const ShaderBinding& given, SurfaceView layer, SurfaceView below, double scale)
{
    if (!(scale > 0)) return;
    ShaderBinding binding = given;
    binding.images.resize(std::max<std::size_t>(binding.images.size(), 2));
    Surface above(layer.width, layer.height);
    for (int y = 0; y < layer.height; ++y) std::copy_n(layer.row(y), layer.width, above.row(y));
    for (ShaderImage* image : {&binding.images[0], &binding.images[1]}) {
        *image = {};
        image->width = layer.width;
        image->height = layer.height;
        image->scale = static_cast<float>(scale);
    }
    binding.images[0].surface = below;
    binding.images[1].surface = above.view();
    ShaderRun run(binding);
    for (int y = 0; y < layer.height; ++y)
        run.row({0.5 / scale, (y + 0.5) / scale}, {1 / scale, 0}, static_cast<std::size_t>(layer.width),
                layer.row(y));
}

} // namespace flash::render
