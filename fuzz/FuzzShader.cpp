#include "flash/render/ShaderRun.h"

#include <array>

// Pixel kernels of scripts: parsed, and run on a row of pixels.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace flash::render;
    auto parsed = parseShader({data, size});
    if (!parsed || parsed->output() == nullptr) return 0;
    ShaderBinding binding;
    for (std::size_t i = 0; i < parsed->textures.size(); ++i) {
        const ShaderTexture& texture = parsed->textures[i];
        if (binding.images.size() <= texture.index) binding.images.resize(texture.index + std::size_t{1});
        ShaderImage& image = binding.images[texture.index];
        image.width = 3;
        image.height = 2;
        image.channels = texture.channels;
        // Fewer than there are to be, now and then.
        image.numbers.assign(i % 4 == 3 ? 5 : std::size_t{6} * texture.channels, 0.5F);
    }
    binding.arguments.assign(parsed->parameters.size(), {0.25, -1, 1e30});
    binding.program = std::make_shared<const ShaderProgram>(std::move(*parsed));
    constexpr std::size_t kPixels = 70; // more than are computed at once
    ShaderRun run(binding);
    std::array<float, 4 * kPixels> numbers{};
    run.row({-1.5, 0.5}, {1, 0.25}, kPixels, numbers.data());
    std::array<std::uint32_t, kPixels> colors{};
    run.row({0.5, 0.5}, {0.1, 0}, kPixels, colors.data());
    return 0;
}
