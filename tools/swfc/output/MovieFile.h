#pragma once

#include "swfc/output/BitWriter.h"

#include <cstdint>
#include <span>
#include <vector>

namespace swfc::output
{

// clang-format off
enum class Tag : std::uint16_t {
    End = 0, ShowFrame = 1, SetBackgroundColor = 9, DefineText = 11, DoAction = 12, DefineSound = 14,
    StartSound = 15, DefineButtonSound = 17, SoundStreamHead = 18, SoundStreamBlock = 19, DefineBitsLossless = 20,
    DefineBitsJpeg2 = 21, PlaceObject2 = 26, RemoveObject2 = 28, DefineText2 = 33, DefineButton2 = 34,
    DefineBitsJpeg3 = 35, DefineBitsLossless2 = 36, DefineEditText = 37, DefineSprite = 39, FrameLabel = 43,
    SoundStreamHead2 = 45, DefineFont2 = 48, ExportAssets = 56, ImportAssets = 57, DoInitAction = 59,
    DefineVideoStream = 60, VideoFrame = 61,
    ScriptLimits = 65, SetTabIndex = 66, FileAttributes = 69, PlaceObject3 = 70, ImportAssets2 = 71,
    DefineFont3 = 75, SymbolClass = 76, Metadata = 77, DefineScalingGrid = 78, DoAbc = 82,
};
// clang-format on

/// A row of tags: a movie's or a sprite's.
class TagList
{
public:
    void add(Tag code, std::span<const std::uint8_t> body) { add(static_cast<std::uint16_t>(code), body); }
    void add(Tag code, const BitWriter& body) { add(code, body.bytes()); }
    void add(Tag code) { add(code, std::span<const std::uint8_t>()); }
    void add(std::uint16_t code, std::span<const std::uint8_t> body);
    /// Puts other tags between those that are there, `at` a number of bytes from the start.
    void insert(std::size_t at, const TagList& tags);
    [[nodiscard]] const std::vector<std::uint8_t>& bytes() const { return m_out.bytes(); }

private:
    BitWriter m_out;
};

struct MovieHeader {
    int version = 6;
    double width = 550, height = 400; ///< pixels
    double frameRate = 12;
    std::uint32_t frameCount = 0;
    bool compressed = true; ///< from version 6 on
};

/// @returns the whole file. `tags` must not hold the end tag yet.
std::vector<std::uint8_t> assembleMovie(const MovieHeader& header, const TagList& tags);

/// @returns `bytes` as a zlib stream.
std::vector<std::uint8_t> deflated(std::span<const std::uint8_t> bytes);

} // namespace swfc::output
