#pragma once

#include "flash/swf/BodyReader.h"
#include "flash/swf/MovieBuilder.h"

#include <string_view>

// How each kind of tag is read. A handler reads one body and adds what it finds to the movie or to the
// timeline; a failure leaves both as they were, and the caller skips the tag with a warning.
namespace flash::swf
{

struct TagInfo;

/// One tag in the hands of its handler.
struct TagContext {
    MovieBuilder& builder;
    Timeline& timeline;
    Frame& frame;           ///< the frame in progress
    const TagInfo& info;    ///< tells a handler for several codes which one it has
    std::size_t offset = 0; ///< of the tag's header, bytes from the start of the movie
    int spriteDepth = 0;    ///< 0 on the main timeline
    BodyReader body;

    void warn(std::string_view what) const;
    /// Appends to the frame in progress.
    void add(ControlTag tag);
};

struct TagInfo {
    std::uint16_t code;
    std::string_view name;
    std::uint8_t since; ///< the version of the format that brought the tag
    std::uint8_t form;  ///< 1, 2, ... in a family of tags such as DefineShape, DefineShape2
    base::Result<void> (*parse)(TagContext&); ///< null: known and of no meaning here
};

/// @returns null for a code that the format does not know.
const TagInfo* findTag(std::uint16_t code);

/// Reads tags up to the end tag or the end of the bytes.
Timeline parseTimeline(MovieBuilder& builder, BodyReader body, int spriteDepth);

namespace tags
{

base::Result<void> defineShape(TagContext& tag);
base::Result<void> defineMorphShape(TagContext& tag);

base::Result<void> defineBits(TagContext& tag);
base::Result<void> jpegTables(TagContext& tag);
base::Result<void> defineBitsJpeg(TagContext& tag);
base::Result<void> defineBitsLossless(TagContext& tag);

base::Result<void> defineFont(TagContext& tag);
base::Result<void> defineFont2(TagContext& tag);
base::Result<void> defineFontInfo(TagContext& tag);
base::Result<void> defineFontName(TagContext& tag);
base::Result<void> defineText(TagContext& tag);
base::Result<void> defineEditText(TagContext& tag);
base::Result<void> textSettings(TagContext& tag);

base::Result<void> defineSound(TagContext& tag);
base::Result<void> startSound(TagContext& tag);
base::Result<void> soundStreamHead(TagContext& tag);
base::Result<void> soundStreamBlock(TagContext& tag);
base::Result<void> defineVideoStream(TagContext& tag);
base::Result<void> videoFrame(TagContext& tag);

base::Result<void> defineButton(TagContext& tag);
base::Result<void> defineButton2(TagContext& tag);
base::Result<void> defineButtonCxform(TagContext& tag);
base::Result<void> defineButtonSound(TagContext& tag);

base::Result<void> placeObject(TagContext& tag);
base::Result<void> placeObject2(TagContext& tag);
base::Result<void> removeObject(TagContext& tag);

base::Result<void> defineSprite(TagContext& tag);
base::Result<void> defineScalingGrid(TagContext& tag);
base::Result<void> setBackgroundColor(TagContext& tag);
base::Result<void> doAction(TagContext& tag);
base::Result<void> doInitAction(TagContext& tag);
base::Result<void> frameLabel(TagContext& tag);
base::Result<void> exportAssets(TagContext& tag);
base::Result<void> importAssets(TagContext& tag);
base::Result<void> fileAttributes(TagContext& tag);
base::Result<void> metadata(TagContext& tag);
base::Result<void> scriptLimits(TagContext& tag);
base::Result<void> setTabIndex(TagContext& tag);
base::Result<void> otherMachine(TagContext& tag);

} // namespace tags
} // namespace flash::swf
