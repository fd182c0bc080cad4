#include "flash/swf/Movie.h"

#include "base/Ascii.h"
#include "flash/guard/Holding.h"
#include "flash/swf/Container.h"
#include "flash/swf/Tags.h"

#include <algorithm>

namespace flash::swf
{
namespace
{

// Frame numbers are 16 bits wide in the header and in script.
constexpr std::size_t kMaxFrames = 65535;
constexpr unsigned kLengthBits = 6;
constexpr std::uint32_t kLongLengthMarker = 63;

enum : std::uint16_t { kTagEnd = 0, kTagShowFrame = 1 };

bool isWorthKeeping(const Frame& frame) { return !frame.tags.empty() || !frame.label.empty(); }

/// The fixed fields of the plain movie. @returns a reader behind them.
base::Result<BodyReader> readHeader(Header& header, base::Bytes plain)
{
    BodyReader body(plain, 0);
    body.skip(3);
    header.version = body.u8();
    header.statedLength = body.u32();
    header.frameSize = body.rect();
    header.frameRate = body.u16() / 256.0;
    header.frameCount = body.u16();
    if (body.overrun())
        return base::fail(base::ErrorCode::Truncated, "the movie ends within its header", plain.size());
    return body;
}

} // namespace

void TagContext::warn(std::string_view what) const { builder.warn(info.name, offset, what); }

void TagContext::add(ControlTag tag)
{
    if (builder.definitions().take(sizeof(ControlTag))) frame.tags.push_back(std::move(tag));
}

Timeline parseTimeline(MovieBuilder& builder, BodyReader body, int spriteDepth)
{
    Timeline timeline;
    Frame frame;
    const std::size_t start = body.offset() - body.position();
    const std::size_t origin = spriteDepth > 0 ? body.offset() : 0;
    const auto endFrame = [&] {
        frame.endOffset = body.offset() - origin;
        if (builder.definitions().take(sizeof(Frame))) timeline.frames.push_back(std::move(frame));
        frame = {};
    };
    bool ended = false;
    while (!ended && body.remaining() >= 2 && !builder.definitions().isExhausted()) {
        const std::size_t offset = body.offset();
        const std::uint16_t header = body.u16();
        const auto code = static_cast<std::uint16_t>(header >> kLengthBits);
        std::uint32_t length = header & kLongLengthMarker;
        if (length == kLongLengthMarker) length = body.u32();
        const TagInfo* info = findTag(code);
        const auto warn = [&](std::string_view what) {
            builder.warn(info ? std::string(info->name) : "tag " + std::to_string(code), offset, what);
        };
        if (body.overrun()) {
            warn("ends within its header");
            break;
        }
        if (length > body.remaining()) {
            warn("needs " + std::to_string(length) + " bytes, " + std::to_string(body.remaining()) + " left");
            length = static_cast<std::uint32_t>(body.remaining());
        }
        const std::size_t bodyOffset = body.offset();
        const BodyReader tagBody(body.bytes(length), bodyOffset);
        builder.count(code, body.offset() - offset);

        ended = code == kTagEnd;
        if (code == kTagShowFrame) {
            endFrame();
            if (timeline.frames.size() >= kMaxFrames) {
                warn("more frames than the format can number");
                return timeline;
            }
        }
        if (!info || !info->parse) continue;
        TagContext tag{builder, timeline, frame, *info, offset, spriteDepth, tagBody};
        if (const auto done = info->parse(tag); !done) tag.warn(done.error().what);
    }
    if (builder.definitions().isExhausted())
        builder.warn("movie", body.offset(), "is too complex; what follows is left out");
    else if (!ended)
        builder.warn(spriteDepth > 0 ? "DefineSprite" : "movie", start, "has no end tag");
    // Tags behind the last mark are a frame when the end tag says that they are all there. Of a movie that
    // was cut off they are half a frame, which is better than nothing only when there is no other.
    if (isWorthKeeping(frame) && (ended || timeline.frames.empty())) endFrame();
    // The end tag is a sprite's, too.
    if (origin > 0 && !timeline.frames.empty()) timeline.frames.back().endOffset = body.offset() - origin;
    return timeline;
}

bool Movie::isOfLaterPlayers() const
{
    constexpr int kLastEarlyVersion = 9;
    // The authoring tools write the background before all else, after the attributes once there are some, and
    // suggest at least this many frames a second. Compilers that were used with the early players write it
    // elsewhere or not at all, or ask for less.
    constexpr double kSlowestSuggestedRate = 12;
    return header.version > kLastEarlyVersion || !metadata.empty() || startsWithAttributesAndBackground ||
           (startsWithBackground && header.frameRate >= kSlowestSuggestedRate);
}

std::optional<std::size_t> Timeline::frameByLabel(std::string_view label) const
{
    if (label.empty()) return {};
    const auto found = std::find_if(frames.begin(), frames.end(), [&](const Frame& frame) {
        return base::equalIgnoringAsciiCase(frame.label, label);
    });
    if (found == frames.end()) return {};
    return static_cast<std::size_t>(found - frames.begin());
}

base::Result<std::shared_ptr<const Movie>> parseMovie(std::span<const std::uint8_t> file,
                                                      const ParseLimits& given)
{
    // What the movie may hold beside those that are loaded already bounds the parse, too.
    struct HeldMovie : Movie {
        guard::Holding bytesHolding, definitionsHolding;
    };
    const auto noRoom = [] {
        return base::fail(base::ErrorCode::LimitReached,
                          "the movies loaded together are more than may be held");
    };
    const auto movie = std::make_shared<HeldMovie>();
    // Where few bytes stand for very many, there is nothing in them.
    constexpr std::uint64_t kAlwaysAllowedBytes = 32U << 20U, kMaxRatio = 200;
    const std::uint64_t plausible = std::max(kAlwaysAllowedBytes, kMaxRatio * file.size());
    const std::uint64_t inflatedBytes = std::min(given.inflatedBytes, plausible);
    const std::uint64_t room = guard::roomToHold();
    auto plain = unpackMovie(file, std::min(inflatedBytes, room));
    if (!plain) {
        if (plain.error().code == base::ErrorCode::LimitReached && room < inflatedBytes)
            guard::refuseToHold();
        return tl::make_unexpected(std::move(plain).error());
    }
    auto bytesHolding = guard::Holding::take(plain->bytes.size());
    if (!bytesHolding) return noRoom();
    movie->bytesHolding = std::move(*bytesHolding);
    movie->fileLength = file.size();
    movie->bytes = std::move(plain->bytes);
    movie->header.compressed = plain->compressed;
    const BodyReader body = TRY_RESULT(readHeader(movie->header, movie->bytes));

    ParseLimits limits = given;
    const std::uint64_t roomLeft = guard::roomToHold();
    limits.bitmapBytes = std::min(limits.bitmapBytes, roomLeft);
    limits.definitionBytes = std::min(limits.definitionBytes, roomLeft);
    MovieBuilder builder(movie, limits);
    if (!plain->complete) builder.warn("movie", 0, "the compressed data is damaged or ends early");
    movie->timeline = parseTimeline(builder, body, 0);
    movie->timeline.statedFrameCount = movie->header.frameCount;
    builder.finish();
    // A movie that others leave too little room is refused whole: half of it would be a riddle.
    if ((builder.bitmaps().hasLacked() && limits.bitmapBytes < given.bitmapBytes) ||
        (builder.definitions().hasLacked() && limits.definitionBytes < given.definitionBytes)) {
        guard::refuseToHold();
        return noRoom();
    }
    auto definitionsHolding = guard::Holding::take(builder.bitmaps().taken() + builder.definitions().taken());
    if (!definitionsHolding) return noRoom();
    movie->definitionsHolding = std::move(*definitionsHolding);
    return std::shared_ptr<const Movie>(movie);
}

} // namespace flash::swf
