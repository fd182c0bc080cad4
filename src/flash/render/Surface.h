#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace flash::render
{

/// Whole device pixels; right and bottom are outside. Empty when right <= left or bottom <= top.
struct IntRect {
    int left = 0, top = 0, right = 0, bottom = 0;
    [[nodiscard]] bool isEmpty() const { return right <= left || bottom <= top; }
    [[nodiscard]] int width() const { return isEmpty() ? 0 : right - left; }
    [[nodiscard]] int height() const { return isEmpty() ? 0 : bottom - top; }
    [[nodiscard]] bool contains(const IntRect& o) const
    {
        return o.isEmpty() || (left <= o.left && top <= o.top && right >= o.right && bottom >= o.bottom);
    }
    [[nodiscard]] bool intersects(const IntRect& o) const
    {
        return std::max(left, o.left) < std::min(right, o.right) &&
               std::max(top, o.top) < std::min(bottom, o.bottom);
    }
    friend bool operator==(const IntRect&, const IntRect&) = default;
};

inline IntRect intersect(const IntRect& a, const IntRect& b)
{
    const IntRect r{std::max(a.left, b.left), std::max(a.top, b.top), std::min(a.right, b.right),
                    std::min(a.bottom, b.bottom)};
    return r.isEmpty() ? IntRect{} : r;
}

/// The smallest rectangle around both; an empty one adds nothing.
inline IntRect unite(const IntRect& a, const IntRect& b)
{
    if (a.isEmpty()) return b;
    if (b.isEmpty()) return a;
    return {std::min(a.left, b.left), std::min(a.top, b.top), std::max(a.right, b.right),
            std::max(a.bottom, b.bottom)};
}

/// Pixels that belong to someone else: a Surface, or a QImage's bits (Format_ARGB32_Premultiplied, or
/// Format_RGB32 when nothing transparent is ever drawn). 0xAARRGGBB in native byte order, premultiplied, rows
/// from the top.
struct SurfaceView {
    std::uint32_t* pixels = nullptr;
    int width = 0, height = 0;
    std::ptrdiff_t stride = 0; ///< pixels from one row to the next
    [[nodiscard]] std::uint32_t* row(int y) const { return pixels + y * stride; }
    [[nodiscard]] IntRect bounds() const { return {0, 0, width, height}; }
};

/// Pixels of its own, transparent at first.
class Surface
{
public:
    Surface() = default;
    Surface(int width, int height)
        : m_width(std::max(width, 0)), m_height(std::max(height, 0)),
          m_pixels(static_cast<std::size_t>(m_width) * static_cast<std::size_t>(m_height))
    {
    }
    [[nodiscard]] int width() const { return m_width; }
    [[nodiscard]] int height() const { return m_height; }
    [[nodiscard]] IntRect bounds() const { return {0, 0, m_width, m_height}; }
    [[nodiscard]] bool isEmpty() const { return m_pixels.empty(); }
    [[nodiscard]] SurfaceView view() { return {m_pixels.data(), m_width, m_height, m_width}; }
    [[nodiscard]] std::uint32_t* row(int y)
    {
        return m_pixels.data() + static_cast<std::ptrdiff_t>(y) * m_width;
    }
    [[nodiscard]] const std::uint32_t* row(int y) const
    {
        return m_pixels.data() + static_cast<std::ptrdiff_t>(y) * m_width;
    }
    [[nodiscard]] std::uint32_t pixel(int x, int y) const { return row(y)[x]; }

private:
    int m_width = 0, m_height = 0;
    std::vector<std::uint32_t> m_pixels;
};

} // namespace flash::render
