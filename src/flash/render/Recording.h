#pragma once

#include "flash/render/Canvas.h"

#include <functional>
#include <vector>

namespace flash::render
{

/// Calls of a canvas that are kept, to be made on others later.
class Recording
{
public:
    using Call = std::function<void(Canvas&)>;

    explicit Recording(const IntRect& target) : m_target(target), m_clip(target) {}
    /// @param bytes that are kept for it
    void add(Call call, std::size_t bytes = 0)
    {
        m_calls.push_back(std::move(call));
        constexpr std::size_t kOfCall = 256;
        m_keptBytes += bytes + kOfCall;
    }
    /// Whether it has become so long that it is better replayed than gone on with.
    [[nodiscard]] bool isFull() const { return m_keptBytes > (std::size_t{32} << 20); }
    void replay(Canvas& canvas) const;

    // What can be told of the canvas meanwhile. Masks are not drawn yet: they narrow nothing.
    [[nodiscard]] const IntRect& clip() const { return m_clip; }
    [[nodiscard]] bool buildsMask() const;
    /// All rows that any clip let through.
    [[nodiscard]] const IntRect& touched() const { return m_touched; }

    void setClip(const IntRect& clip);
    void setPixelScale(double scale) { m_pixelScale = scale; }
    void beginMask(MaskKind kind);
    void beginLayer(const IntRect& deviceBounds, std::span<const swf::Filter> filters);
    /// Of a mask or layer.
    void end();

private:
    enum class Kind : std::uint8_t { Layer, Mask, AlphaMask, Ignored };
    struct Open {
        Kind kind = Kind::Layer;
        IntRect clipBefore;
    };
    std::vector<Call> m_calls;
    std::vector<Open> m_open;
    IntRect m_target, m_clip, m_touched;
    double m_pixelScale = 1;
    std::size_t m_keptBytes = 0;
};

/// What a layer takes up: what its content covers, as far as the clip and the reach of filters leave it.
/// @param deviceBounds of the content
IntRect layerBounds(const IntRect& deviceBounds, const IntRect& clip, std::span<const swf::Filter> filters,
                    double pixelScale);

} // namespace flash::render
