#pragma once

#include <QImage>
#include <QPainter>

#include <array>
#include <cstdint>
#include <vector>

namespace browser
{

/// The 40-byte header that describes the bits, as files and system calls lay it out.
struct BitmapInfoHeader {
    std::uint32_t biSize = 40;
    std::int32_t biWidth = 0, biHeight = 0;
    std::uint16_t biPlanes = 1, biBitCount = 24;
    std::uint32_t biCompression = 0, biSizeImage = 0;
    std::int32_t biXPelsPerMeter = 0, biYPelsPerMeter = 0;
    std::uint32_t biClrUsed = 0, biClrImportant = 0;
};
static_assert(sizeof(BitmapInfoHeader) == 40);

/// A bitmap in memory: three bytes a pixel (blue, green, red), rows padded to four bytes, the bottom row
/// first. Pictures are copied into it, files are written from it, and it scales another bitmap to its own
/// size. Where its kin on other systems hands out a device context, this one takes and gives a QImage.
class cDIBSection
{
public:
    cDIBSection() = default;

    /// Allocates bits for a bitmap without keeping them. Sizes below 1 or beyond kMaxPixels are refused.
    /// @param bits filled with black
    /// @returns whether there is a bitmap
    static bool CreateDIB(int width, int height, BitmapInfoHeader& header, std::vector<std::uint8_t>& bits);
    /// Drops what there was and makes a black bitmap of that size.
    bool Create(int width, int height);
    /// Makes a bitmap of the picture's size in its own pixels and copies the picture. What is see-through
    /// comes out on black.
    bool CreateFromPicture(const QImage& picture);
    void ClearUp();

    [[nodiscard]] int Width() const { return m_header.biWidth; }
    [[nodiscard]] int Height() const { return m_header.biHeight; }
    [[nodiscard]] int BytesPerScanLine() const { return (3 * Width() + 3) & ~3; }
    [[nodiscard]] const BitmapInfoHeader& header() const { return m_header; }
    /// The bits, bottom row first; null when there is no bitmap.
    [[nodiscard]] std::uint8_t* DIBSectionBitsPtr() { return m_bits.empty() ? nullptr : m_bits.data(); }
    [[nodiscard]] const std::uint8_t* DIBSectionBitsPtr() const
    {
        return m_bits.empty() ? nullptr : m_bits.data();
    }
    /// @param y counted from the top
    [[nodiscard]] const std::uint8_t* row(int y) const;

    /// Copies a part of a picture to the top left corner. A negative width or height is the bitmap's own.
    void LoadPictureBlt(const QImage& source, int x = 0, int y = 0, int width = -1, int height = -1,
                        QPainter::CompositionMode operation = QPainter::CompositionMode_Source);
    /// Copies a part of the bitmap out, with the same convention.
    void PaintPicture(QPainter& target, int x, int y, int width = -1, int height = -1, int sourceX = 0,
                      int sourceY = 0,
                      QPainter::CompositionMode operation = QPainter::CompositionMode_Source) const;
    /// @returns a copy of its own; null when there is no bitmap
    [[nodiscard]] QImage toImage() const;

    /// Fills the bits with noise, the same for the same seed: something to look at where a picture will be.
    void RandomiseBits(std::uint32_t seed = 1);

    /// Fills this bitmap with the source scaled to its size: bilinear, from the source's first pixel, steps
    /// of (source width - 1) / width; see Resample.h.
    /// @returns false when either has no bitmap
    bool Resample(const cDIBSection& source);

    static constexpr std::int64_t kMaxPixels = std::int64_t{1} << 28;

private:
    BitmapInfoHeader m_header;
    std::vector<std::uint8_t> m_bits;
};

} // namespace browser
