#pragma once

#include "base/ByteReader.h"
#include "flash/swf/Geometry.h"
#include "flash/swf/Shape.h"

#include <array>
#include <map>
#include <memory>
#include <string>
#include <unordered_map>
#include <variant>
#include <vector>

// What a movie file defines, as immutable data: parsed once, shared by every instance. Nothing here knows
// that anything plays. Texts are bytes as they stand in the file: UTF-8 from version 6 on, the system's ANSI
// code page before.
namespace flash::swf
{

struct Movie;

/// Compiled script. The bytes belong to the movie, which whoever keeps a block must keep alive.
struct ActionBlock {
    base::Bytes bytes;
    [[nodiscard]] bool isEmpty() const { return bytes.empty(); }
};

enum class BlendMode : std::uint8_t {
    Normal = 1,
    Layer,
    Multiply,
    Screen,
    Lighten,
    Darken,
    Difference,
    Add,
    Subtract,
    Invert,
    Alpha,
    Erase,
    Overlay,
    HardLight
};

struct BlurFilter {
    double blurX = 0, blurY = 0;
    int passes = 1;
};
struct DropShadowFilter {
    Rgba color;
    double blurX = 0, blurY = 0, angle = 0, distance = 0, strength = 0; // angle: radians; rest: pixels
    bool inner = false, knockout = false, compositeSource = true;
    int passes = 1;
};
struct GlowFilter {
    Rgba color;
    double blurX = 0, blurY = 0, strength = 0;
    bool inner = false, knockout = false, compositeSource = true;
    int passes = 1;
};
struct BevelFilter {
    Rgba highlight, shadow;
    double blurX = 0, blurY = 0, angle = 0, distance = 0, strength = 0;
    bool inner = false, knockout = false, compositeSource = true, onTop = false;
    int passes = 1;
};
/// Gradient glow (bevel == false) and gradient bevel.
struct GradientFilter {
    bool bevel = false;
    std::vector<Gradient::Stop> stops;
    double blurX = 0, blurY = 0, angle = 0, distance = 0, strength = 0;
    bool inner = false, knockout = false, compositeSource = true, onTop = false;
    int passes = 1;
};
struct ConvolutionFilter {
    int columns = 0, rows = 0;
    double divisor = 1, bias = 0;
    std::vector<double> matrix;
    Rgba defaultColor;
    bool clamp = true, preserveAlpha = true;
};
/// 4 rows of 5: red, green, blue, alpha, addend (0..255).
struct ColorMatrixFilter {
    std::array<double, 20> matrix{};
};
/// Moves pixels about as a picture tells. Only scripts make one: no file holds it.
struct DisplacementMapFilter {
    enum class Mode : std::uint8_t { Wrap, Clamp, Ignore, Color };
    std::shared_ptr<Bitmap> map;        ///< a script's, that may draw on it; null moves nothing
    int mapX = 0, mapY = 0;             ///< of the map's corner from that of what is filtered, pixels
    int componentX = 0, componentY = 0; ///< channels: 1 red, 2 green, 4 blue, 8 alpha; others move nothing
    double scaleX = 0, scaleY = 0;      ///< pixels that 256 levels of a channel stand for
    Mode mode = Mode::Wrap;             ///< what becomes of places outside of what is filtered
    Rgba color;                         ///< for Mode::Color
};
using Filter = std::variant<BlurFilter, DropShadowFilter, GlowFilter, BevelFilter, GradientFilter,
                            ConvolutionFilter, ColorMatrixFilter, DisplacementMapFilter>;

/// Bits of ClipAction::events, as in the file's 32-bit form.
enum ClipEvent : std::uint32_t {
    kClipLoad = 1U << 0,
    kClipEnterFrame = 1U << 1,
    kClipUnload = 1U << 2,
    kClipMouseMove = 1U << 3,
    kClipMouseDown = 1U << 4,
    kClipMouseUp = 1U << 5,
    kClipKeyDown = 1U << 6,
    kClipKeyUp = 1U << 7,
    kClipData = 1U << 8,
    kClipInitialize = 1U << 9,
    kClipPress = 1U << 10,
    kClipRelease = 1U << 11,
    kClipReleaseOutside = 1U << 12,
    kClipRollOver = 1U << 13,
    kClipRollOut = 1U << 14,
    kClipDragOver = 1U << 15,
    kClipDragOut = 1U << 16,
    kClipKeyPress = 1U << 17,
    kClipConstruct = 1U << 18,
};
struct ClipAction {
    std::uint32_t events = 0;
    std::uint8_t keyCode = 0;
    ActionBlock actions;
};

// ---- characters -------------------------------------------------------------------------------------------

struct ShapeCharacter {
    std::shared_ptr<const Shape> shape;
};
struct MorphCharacter {
    std::shared_ptr<const MorphShape> morph;
};
struct BitmapCharacter {
    std::shared_ptr<const Bitmap> bitmap;
};

struct Font {
    struct Glyph {
        std::shared_ptr<const Shape> outline;
        std::uint16_t code = 0;
        double advance = 0;
        Rect bounds;
    };
    struct Kerning {
        std::uint16_t left = 0, right = 0;
        std::int16_t adjustment = 0;
    };
    std::string name;
    bool bold = false, italic = false;
    bool wideCodes = true, ansi = false, shiftJis = false, smallText = false;
    bool hasLayout = false;
    /// Outline units to the em: 1024, or 20480 for DefineFont3. Glyph outlines, advances, ascent, descent,
    /// leading and kerning are in these units. Each outline has one layer whose single fill is number 1.
    int unitsPerEm = 1024;
    double ascent = 0, descent = 0, leading = 0;
    std::vector<Glyph> glyphs;
    std::unordered_map<std::uint16_t, std::uint16_t> glyphByCode;
    std::vector<Kerning> kerning; ///< sorted by (left, right)
};

struct StaticText {
    struct GlyphEntry {
        std::uint32_t index = 0;
        std::int32_t advance = 0;
    };
    struct Record {
        std::uint16_t fontId = 0;
        Rgba color;
        std::uint16_t height = 0;  // twips
        std::int32_t x = 0, y = 0; // of the first glyph's origin
        std::vector<GlyphEntry> glyphs;
    };
    Rect bounds;
    Matrix matrix;
    std::vector<Record> records;
};

struct EditText {
    enum class Align : std::uint8_t { Left, Right, Center, Justify };
    Rect bounds;
    bool wordWrap = false, multiline = false, password = false, readOnly = false, autoSize = false;
    bool selectable = true, border = false, wasStatic = false, html = false, useOutlines = false;
    std::uint16_t fontId = 0; ///< 0: none
    std::string fontClass;
    std::uint16_t fontHeight = 240;
    bool hasFont = false, hasColor = false, hasMaxLength = false, hasLayout = false, hasText = false;
    Rgba color;
    std::uint16_t maxLength = 0;
    Align align = Align::Left;
    std::uint16_t leftMargin = 0, rightMargin = 0, indent = 0;
    std::int16_t leading = 0;
    std::string variableName, initialText;
    struct Rendering {
        bool advanced = false;
        std::uint8_t gridFit = 1; ///< 0: none, 1: pixel, 2: subpixel
        double thickness = 0, sharpness = 0;
    };
    Rendering rendering;
};

struct SoundInfo {
    struct Envelope {
        std::uint32_t position44 = 0;
        std::uint16_t left = 32768, right = 32768;
    };
    bool stop = false, noMultiple = false;
    std::uint32_t inPoint = 0, outPoint = 0xFFFFFFFF; ///< samples at 44.1 kHz
    std::uint16_t loops = 1;
    std::vector<Envelope> envelope;
};

enum class SoundFormat : std::uint8_t {
    PcmNative = 0,
    Adpcm = 1,
    Mp3 = 2,
    PcmLittleEndian = 3,
    Nellymoser16k = 4,
    Nellymoser8k = 5,
    Nellymoser = 6,
    Speex = 11
};
struct Sound {
    SoundFormat format = SoundFormat::PcmNative;
    int rate = 5512; ///< Hz: 5512, 11025, 22050 or 44100
    bool sixteenBit = true, stereo = false;
    std::uint32_t sampleCount = 0;   ///< per channel
    std::int16_t latencySamples = 0; ///< MP3: to skip at the start
    base::Bytes data;                ///< belongs to the movie
};
struct SoundStreamHead {
    SoundFormat format = SoundFormat::PcmNative;
    int rate = 5512;
    bool sixteenBit = true, stereo = false;
    std::uint16_t samplesPerBlock = 0;
    std::int16_t latencySamples = 0;
};

struct ButtonRecord {
    enum State : std::uint8_t { Up = 1, Over = 2, Down = 4, Hit = 8 };
    std::uint8_t states = 0;
    std::uint16_t characterId = 0, depth = 0;
    Matrix matrix;
    ColorTransform color;
    std::vector<Filter> filters;
    BlendMode blend = BlendMode::Normal;
};
struct ButtonAction {
    enum Condition : std::uint16_t {
        IdleToOverUp = 1,
        OverUpToIdle = 2,
        OverUpToOverDown = 4,
        OverDownToOverUp = 8,
        OverDownToOutDown = 16,
        OutDownToOverDown = 32,
        OutDownToIdle = 64,
        IdleToOverDown = 128,
        OverDownToIdle = 256
    };
    std::uint16_t conditions = 0;
    std::uint8_t keyCode = 0; ///< 1..19 special keys, 32..126 ASCII, 0 none
    ActionBlock actions;
};
struct Button {
    bool trackAsMenu = false;
    std::vector<ButtonRecord> records; ///< in file order
    std::vector<ButtonAction> actions;
    /// Over-up to idle, idle to over-up, over-up to over-down, over-down to over-up; soundId 0 is none.
    struct Cue {
        std::uint16_t soundId = 0;
        SoundInfo info;
    };
    std::array<Cue, 4> sounds;
};

struct VideoStream {
    struct FrameData {
        std::uint16_t number = 0;
        base::Bytes data;
    };
    std::uint16_t frameCount = 0, width = 0, height = 0;
    std::uint8_t deblocking = 0,
                 codec = 0; ///< codec: 2 Sorenson H.263, 3 screen, 4 VP6, 5 VP6 with alpha, 6 screen 2
    bool smoothing = false;
    std::vector<FrameData> frames; ///< in file order
};

// ---- timelines --------------------------------------------------------------------------------------------

struct PlaceObject {
    std::uint16_t depth = 0;
    bool move = false;
    std::optional<std::uint16_t> characterId;
    std::optional<Matrix> matrix;
    std::optional<ColorTransform> color;
    std::optional<std::uint16_t> ratio;
    std::optional<std::string> name;
    std::optional<std::uint16_t> clipDepth;
    std::vector<ClipAction> clipActions;
    std::optional<std::vector<Filter>> filters;
    std::optional<BlendMode> blend;
    std::optional<bool> cacheAsBitmap, visible;
    std::optional<Rgba> opaqueBackground;
    std::optional<std::string> className;
    bool hasImage = false;
};
struct RemoveObject {
    std::uint16_t depth = 0;
    std::optional<std::uint16_t> characterId;
};
struct DoAction {
    ActionBlock actions;
};
struct DoInitAction {
    std::uint16_t spriteId = 0;
    ActionBlock actions;
};
struct StartSound {
    std::uint16_t soundId = 0;
    SoundInfo info;
};
struct SoundStreamBlock {
    base::Bytes data;
};
struct SetBackground {
    Rgba color;
};
struct ExportAssets {
    std::vector<std::pair<std::uint16_t, std::string>> names;
};
struct ImportAssets {
    std::string url;
    std::vector<std::pair<std::uint16_t, std::string>> names;
};
struct SetTabIndex {
    std::uint16_t depth = 0, tabIndex = 0;
};
using ControlTag = std::variant<PlaceObject, RemoveObject, DoAction, DoInitAction, StartSound,
                                SoundStreamBlock, SetBackground, ExportAssets, ImportAssets, SetTabIndex>;

struct Frame {
    std::vector<ControlTag> tags; ///< in file order
    std::string label;            ///< empty: none
    bool isAnchor = false;
    std::size_t endOffset =
        0; ///< bytes into the plain movie, or the sprite's tags, at the frame's end; for preloaders
};

/// The main timeline or a sprite's.
struct Timeline {
    std::vector<Frame> frames; ///< those present; may be fewer or more than `statedFrameCount`
    std::uint16_t statedFrameCount = 0;
    std::optional<SoundStreamHead> streamHead;
    /// @returns the index of the frame, or nothing. Labels are compared without regard to ASCII case.
    [[nodiscard]] std::optional<std::size_t> frameByLabel(std::string_view label) const;
};

struct Sprite {
    std::shared_ptr<const Timeline> timeline;
};

using CharacterData = std::variant<ShapeCharacter, MorphCharacter, BitmapCharacter, Font, StaticText,
                                   EditText, Sound, Button, VideoStream, Sprite>;
struct Character {
    std::uint16_t id = 0;
    std::optional<Rect> scalingGrid;
    CharacterData data;
};

struct Header {
    bool compressed = false;
    std::uint8_t version = 0;
    std::uint32_t statedLength = 0; ///< bytes of the plain movie, header included
    Rect frameSize;
    double frameRate = 0; ///< frames a second, 8.8 fixed point in the file
    std::uint16_t frameCount = 0;
};

/// How much of each kind of tag a movie holds, for `flashrun info`.
struct TagCount {
    std::uint16_t code = 0;
    std::uint32_t count = 0;
    std::uint64_t bytes = 0;
};

/// A parsed movie. Kept alive by everything made from it (action blocks and sounds point into its bytes).
struct Movie {
    Header header;
    std::vector<std::uint8_t> bytes; ///< the plain movie, header included (compressed ones inflated)
    std::size_t fileLength = 0;      ///< bytes on disk
    Rgba background{255, 255, 255, 255};
    bool hasBackground = false;
    Timeline timeline;
    std::map<std::uint16_t, std::shared_ptr<const Character>> characters;
    std::unordered_map<std::string, std::uint16_t> exports; ///< linkage name, as written, to character id
    bool isAs3 = false;       ///< FileAttributes asks for the other virtual machine
    bool usesNetwork = false; ///< FileAttributes
    std::string metadata;
    std::uint16_t scriptMaxRecursion = 256, scriptTimeoutSeconds = 15;
    std::vector<TagCount> tagCounts;                                              ///< by code
    bool startsWithAttributesAndBackground = false, startsWithBackground = false; ///< its very first tags
    std::vector<std::string> warnings; ///< damaged tags that were skipped, one line each

    /// Characters that live in other movies, by their ids here. Whoever opens the movie finds them, before
    /// anything of it plays; nothing else about a movie changes.
    struct Imported {
        std::shared_ptr<const Movie> movie;
        std::uint16_t id = 0;
    };
    mutable std::map<std::uint16_t, Imported> imports;
    mutable bool importsKnown = false;

    /// @returns whether it was probably made for players that show errors among the traces; a file does not
    /// say so itself, but the tools that wrote for them leave their marks in it
    [[nodiscard]] bool isOfLaterPlayers() const;
    /// @returns the character, an imported one too; null when there is none
    [[nodiscard]] const Character* character(std::uint16_t id) const
    {
        if (const auto found = characters.find(id); found != characters.end()) return found->second.get();
        const auto other = imports.find(id);
        return other == imports.end() ? nullptr : other->second.movie->character(other->second.id);
    }
};

/// What a parse may use up. A hostile movie ends at these, never at the machine's memory.
struct ParseLimits {
    std::uint64_t inflatedBytes = 512ULL << 20;
    std::uint64_t bitmapBytes = 1ULL << 30;
    std::uint64_t definitionBytes = 1ULL << 30; ///< what tags become: frames, edges, glyphs, records
    int spriteDepth = 8; ///< DefineSprite within DefineSprite is not allowed by the format; still counted
};

/// Parses a whole movie file: FWS, CWS and ZWS are told apart by their first bytes. A damaged tag is skipped
/// with a warning; a movie that ends early keeps the frames it has.
/// @errors Malformed for what is no movie; Truncated when not even the header is there; LimitReached.
base::Result<std::shared_ptr<const Movie>> parseMovie(std::span<const std::uint8_t> file,
                                                      const ParseLimits& limits = {});

/// Decodes a picture file that a movie loads: JPEG, PNG or GIF (first picture).
base::Result<std::shared_ptr<const Bitmap>> decodePicture(base::Bytes file, const ParseLimits& limits = {});

} // namespace flash::swf
