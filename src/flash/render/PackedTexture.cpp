#include "flash/render/PackedTexture.h"

#include <algorithm>
#include <array>

namespace flash::render
{

namespace
{

using Bytes = std::span<const std::uint8_t>;

constexpr int kBlockSide = 4;

/// What is read from the front; too little left makes it empty and says so.
class Reader
{
public:
    explicit Reader(Bytes bytes) : m_left(bytes) {}
    Bytes take(std::size_t count)
    {
        if (count > m_left.size()) {
            m_isShort = true;
            m_left = {};
            return {};
        }
        const Bytes taken = m_left.first(count);
        m_left = m_left.subspan(count);
        return taken;
    }
    std::uint32_t number(std::size_t bytes)
    {
        std::uint32_t value = 0;
        for (const std::uint8_t byte : take(bytes)) value = value << 8U | byte;
        return value;
    }
    [[nodiscard]] bool isShort() const { return m_isShort; }

private:
    Bytes m_left;
    bool m_isShort = false;
};

struct Rgb {
    std::uint32_t r, g, b;
};

Rgb expanded565(std::uint32_t word)
{
    const std::uint32_t r = word >> 11U & 31U, g = word >> 5U & 63U, b = word & 31U;
    return {r << 3U | r >> 2U, g << 2U | g >> 4U, b << 3U | b >> 2U};
}

std::uint32_t little16(Bytes at) { return at[0] | static_cast<std::uint32_t>(at[1]) << 8U; }

/// Colours of a block, without alpha but for the one that means nothing at all.
/// @param keepsFour four colours in any order of the two given, as blocks with an alpha of their own have
std::array<std::uint32_t, 4> colorsOf(Bytes block, bool keepsFour)
{
    const std::uint32_t first = little16(block), second = little16(block.subspan(2));
    const Rgb a = expanded565(first), b = expanded565(second);
    const auto mixed = [&](std::uint32_t ofA, std::uint32_t ofB) {
        const std::uint32_t all = ofA + ofB;
        return 0xFF000000U | (a.r * ofA + b.r * ofB) / all << 16U | (a.g * ofA + b.g * ofB) / all << 8U |
               (a.b * ofA + b.b * ofB) / all;
    };
    if (keepsFour || first > second) return {mixed(1, 0), mixed(0, 1), mixed(2, 1), mixed(1, 2)};
    return {mixed(1, 0), mixed(0, 1), mixed(1, 1), 0};
}

std::array<std::uint32_t, 8> alphasOf(Bytes block)
{
    const std::uint32_t a = block[0], b = block[1];
    std::array<std::uint32_t, 8> alphas{a, b};
    const std::uint32_t steps = a > b ? 7 : 5;
    for (std::uint32_t i = 1; i < steps; ++i) alphas[i + 1] = (a * (steps - i) + b * i) / steps;
    if (a <= b) alphas[7] = 255;
    return alphas;
}

void unpackBlock(Bytes block, bool hasAlpha, GpuTexture::Level& level, int left, int top)
{
    const Bytes colorPart = block.subspan(hasAlpha ? 8 : 0);
    const auto colors = colorsOf(colorPart, hasAlpha);
    std::array<std::uint32_t, 8> alphas{};
    std::uint64_t alphaCodes = 0;
    if (hasAlpha) {
        alphas = alphasOf(block);
        for (std::size_t i = 0; i < 6; ++i) alphaCodes |= std::uint64_t{block[2 + i]} << 8 * i;
    }
    const int right = std::min(left + kBlockSide, level.width),
              bottom = std::min(top + kBlockSide, level.height);
    for (int y = top; y < bottom; ++y) {
        for (int x = left; x < right; ++x) {
            const int n = (y - top) * kBlockSide + x - left;
            std::uint32_t pixel =
                colors[colorPart[static_cast<std::size_t>(4 + y - top)] >> 2 * (x - left) & 3U];
            if (hasAlpha) pixel = (pixel & 0xFFFFFFU) | alphas[alphaCodes >> 3 * n & 7U] << 24U;
            level.pixels[static_cast<std::size_t>(y) * static_cast<std::size_t>(level.width) +
                         static_cast<std::size_t>(x)] = pixel;
        }
    }
}

bool unpackLevel(Bytes blocks, bool hasAlpha, GpuTexture::Level& level)
{
    const std::size_t blockBytes = hasAlpha ? 16 : 8;
    const int columns = (level.width + kBlockSide - 1) / kBlockSide,
              rows = (level.height + kBlockSide - 1) / kBlockSide;
    if (blocks.size() < static_cast<std::size_t>(columns) * static_cast<std::size_t>(rows) * blockBytes)
        return false;
    for (int row = 0; row < rows; ++row) {
        for (int column = 0; column < columns; ++column) {
            unpackBlock(blocks.first(blockBytes), hasAlpha, level, column * kBlockSide, row * kBlockSide);
            blocks = blocks.subspan(blockBytes);
        }
    }
    return true;
}

} // namespace

Unpacking unpackTexture(std::span<const std::uint8_t> bytes, GpuTexture& texture)
{
    Reader reader(bytes);
    const Bytes name = reader.take(3);
    if (reader.isShort() || name[0] != 'A' || name[1] != 'T' || name[2] != 'F') return Unpacking::Damaged;
    // The first files have a length of three bytes here; later ones mark that by what no length begins with.
    constexpr std::size_t kMark = 3;
    const bool isMarked = bytes.size() > 6 && bytes[3 + kMark] == 0xFF;
    std::uint32_t version = 0;
    if (isMarked) {
        reader.take(4);
        version = reader.number(1);
        reader.number(4);
    } else {
        reader.number(3);
    }
    const std::size_t lengthBytes = isMarked ? 4 : 3;
    const std::uint32_t kind = reader.number(1), width = reader.number(1), height = reader.number(1),
                        levels = reader.number(1);
    if (reader.isShort()) return Unpacking::Damaged;
    const bool isCube = (kind & 0x80U) != 0;
    constexpr std::uint32_t kBlocks = 3, kBlocksWithAlpha = 5;
    const bool hasAlpha = (kind & 0x7FU) == kBlocksWithAlpha;
    if (!hasAlpha && (kind & 0x7FU) != kBlocks) return Unpacking::Foreign;
    constexpr std::uint32_t kMostBits = 12;
    if (width > kMostBits || height > kMostBits || texture.width() != 1 << width ||
        texture.height() != 1 << height || texture.isCube() != isCube)
        return Unpacking::Mismatch;
    // Each level comes once for each maker of graphics cards, or not at all.
    const int makers = version >= 3 ? 4 : 3;
    for (int face = 0; face < (isCube ? 6 : 1); ++face) {
        for (std::uint32_t number = 0; number < levels; ++number) {
            const Bytes blocks = reader.take(reader.number(lengthBytes));
            for (int other = 1; other < makers; ++other) reader.take(reader.number(lengthBytes));
            if (reader.isShort()) return Unpacking::Damaged;
            if (number >= static_cast<std::uint32_t>(texture.levels()) || blocks.empty()) continue;
            if (!unpackLevel(blocks, hasAlpha, texture.level(face, static_cast<int>(number))))
                return Unpacking::Damaged;
        }
    }
    return Unpacking::Done;
}

} // namespace flash::render
