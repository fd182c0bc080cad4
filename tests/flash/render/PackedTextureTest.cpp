#include "flash/render/PackedTexture.h"

#include <gtest/gtest.h>

namespace flash::render
{
namespace
{

/// A file of one level of 4 by 4 pixels, for one maker's cards of four.
std::vector<std::uint8_t> file(std::uint8_t kind, const std::vector<std::uint8_t>& block)
{
    std::vector<std::uint8_t> bytes{'A', 'T', 'F', 0, 0, 0, 0xFF, 3, 0, 0, 0, 0, kind, 2, 2, 1, 0, 0, 0};
    bytes.push_back(static_cast<std::uint8_t>(block.size()));
    bytes.insert(bytes.end(), block.begin(), block.end());
    bytes.resize(bytes.size() + 12);
    return bytes;
}

// Red and blue, and what is mixed of them; each row has all four.
const std::vector<std::uint8_t> kColors{0x00, 0xF8, 0x1F, 0x00, 0xE4, 0xE4, 0xE4, 0xE4};

TEST(PackedTexture, ReadsBlocksOfColours)
{
    GpuTexture texture(4, 4, 1);
    ASSERT_EQ(unpackTexture(file(3, kColors), texture), Unpacking::Done);
    const std::vector<std::uint32_t> row{0xFFFF0000, 0xFF0000FF, 0xFFAA0055, 0xFF5500AA};
    const auto& pixels = texture.level(0, 0).pixels;
    EXPECT_EQ(std::vector<std::uint32_t>(pixels.begin() + 12, pixels.end()), row);
    // In the other order the third colour lies half-way and the fourth is nothing.
    std::vector<std::uint8_t> turned{0x1F, 0x00, 0x00, 0xF8, 0xE4, 0xE4, 0xE4, 0xE4};
    ASSERT_EQ(unpackTexture(file(3, turned), texture), Unpacking::Done);
    EXPECT_EQ(texture.level(0, 0).pixels[2], 0xFF7F007FU);
    EXPECT_EQ(texture.level(0, 0).pixels[3], 0U);
}

TEST(PackedTexture, ReadsBlocksWithAlpha)
{
    GpuTexture texture(4, 4, 1);
    // The first row's codes: 0, 1, 2 and 7.
    std::vector<std::uint8_t> block{210, 0, 0x88, 0x0E, 0, 0, 0, 0};
    block.insert(block.end(), kColors.begin(), kColors.end());
    ASSERT_EQ(unpackTexture(file(5, block), texture), Unpacking::Done);
    const auto& pixels = texture.level(0, 0).pixels;
    EXPECT_EQ(pixels[0] >> 24U, 210U);
    EXPECT_EQ(pixels[1] >> 24U, 0U);
    EXPECT_EQ(pixels[2] >> 24U, 180U);
    EXPECT_EQ(pixels[3] >> 24U, 30U);
    EXPECT_EQ(pixels[1] & 0xFFFFFFU, 0xFFU) << "colour stays where alpha is nothing";
}

TEST(PackedTexture, RefusesWhatItCannotRead)
{
    GpuTexture texture(4, 4, 1), larger(8, 4, 1);
    const auto good = file(3, kColors);
    EXPECT_EQ(unpackTexture(good, larger), Unpacking::Mismatch);
    EXPECT_EQ(unpackTexture(file(1, kColors), texture), Unpacking::Foreign);
    for (std::size_t size = 0; size < good.size(); ++size)
        EXPECT_EQ(unpackTexture(std::span(good).first(size), texture), Unpacking::Damaged) << size;
}

} // namespace
} // namespace flash::render
