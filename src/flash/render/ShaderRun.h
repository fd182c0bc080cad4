#pragma once

#include "flash/render/Filters.h"
#include "flash/render/Paint.h"
#include "flash/render/Shader.h"

#include <memory>
#include <span>

// Kernels at work: on rows of pixels, as a paint, as a filter.
namespace flash::render
{

/// What a kernel samples: a picture, or numbers. Those of scripts go on for ever with what is at their edges;
/// outside of a surface, which is what is filtered or blended, is nothing.
struct ShaderImage {
    int width = 0, height = 0;
    int channels = 4;                          ///< of the numbers
    std::shared_ptr<const swf::Bitmap> bitmap; ///< a script's, that may draw on it
    std::vector<float> numbers;                ///< row by row; where there is no bitmap
    SurfaceView surface;                       ///< where there is neither; borrowed
    float scale = 1;                           ///< its pixels to a pixel of the kernel
};

/// A kernel with all it takes.
struct ShaderBinding {
    std::shared_ptr<const ShaderProgram> program;
    std::vector<ShaderImage> images;            ///< by the index of their texture
    std::vector<std::vector<double>> arguments; ///< of each parameter; numbers that are missing are 0
    Growth margins;                             ///< of a filter, pixels of the stage
    bool blends = false; ///< at the end of a chain of filters: how the result is laid over what is below
};

/// Computes pixels of one kernel. Keeps its registers from row to row.
class ShaderRun
{
public:
    explicit ShaderRun(const ShaderBinding& binding);
    ~ShaderRun();
    ShaderRun(const ShaderRun&) = delete;
    ShaderRun& operator=(const ShaderRun&) = delete;
    /// Channels of the output, 0 to 4.
    [[nodiscard]] int channels() const;
    /// @param place the middle of the first pixel; the others are each `step` further
    /// @param to channels() numbers for each pixel
    void row(swf::Point place, swf::Point step, std::size_t count, float* to);
    /// The same, as premultiplied pixels.
    void row(swf::Point place, swf::Point step, std::size_t count, std::uint32_t* to);

private:
    class Impl;
    std::unique_ptr<Impl> m_impl;
};

/// A bitmap that stands for what a kernel would paint, one transparent pixel for those who do not ask.
std::shared_ptr<swf::Bitmap> shaderBitmap(std::shared_ptr<const ShaderBinding> binding);
/// @returns null for an ordinary bitmap
const ShaderBinding* shaderOf(const std::shared_ptr<const swf::Bitmap>& bitmap);

/// Paints as far as there are pixels. @returns null when the matrix cannot be inverted
std::unique_ptr<Paint> makeShaderPaint(const ShaderBinding& binding, const swf::Matrix& toDevice,
                                       const swf::ColorTransform& color);

Growth shaderGrowth(const ShaderBinding& binding, double scale);
/// Filters in place: the surface is the kernel's first image.
void applyShader(const ShaderBinding& binding, SurfaceView surface, double scale);

/// @returns null for a chain that does not end in a kernel that blends
const ShaderBinding* blendShaderOf(std::span<const swf::Filter> filters);
/// Replaces a layer by what the kernel makes of its two images: what is below, and the layer.
/// @param below as large as the layer
void blendByShader(const ShaderBinding& binding, SurfaceView layer, SurfaceView below, double scale);

} // namespace flash::render
