#pragma once

#include "base/ByteReader.h"

#include <cstdint>
#include <string>
#include <tuple>
#include <variant>
#include <vector>

// Everything that a window and the movie it shows say to each other. The window's end (near) and the movie's
// end (far) speak the same messages whether they share a process or not; between processes they are bytes.
namespace flash::control
{

/// Raised with every change below: both ends come from one build, and an end that finds another number stops.
inline constexpr std::uint32_t kProtocolVersion = 9;

/// Texts that a movie sends are cut at this length, in bytes: no command, address or trace needs more.
inline constexpr std::size_t kMaxTextBytes = 1U << 20U;
/// The longest body of a message. A body that announces more ends the connection.
inline constexpr std::size_t kMaxBodyBytes = kMaxTextBytes * 6;

/// A list in a message is no longer than this; one that announces more is none.
inline constexpr std::size_t kMaxListed = 32;

struct Rectangle {
    std::int32_t left = 0, top = 0, width = 0, height = 0;
    auto fields() { return std::tie(left, top, width, height); }
    friend bool operator==(const Rectangle&, const Rectangle&) = default;
};

/// The part of a rectangle that lies within a picture, whatever its numbers are.
Rectangle cutTo(const Rectangle& rectangle, std::int32_t width, std::int32_t height);

// Each message lists its fields once, in `fields`; encoding, decoding and comparison follow from it.

// ---- from the window to the movie -------------------------------------------------------------------------

/// Loads a movie. Answered by Loaded with the same id.
struct Load {
    std::uint32_t id = 0;
    std::int32_t layer = 0;
    std::string address;
    std::string language; ///< two letters
    double startDateMs = 0;
    std::int32_t screenWidth = 0, screenHeight = 0;
    std::uint32_t randomSeed = 0;
    std::string storageFolder, trustedFolder, sharedFolder;
    std::string textCode; ///< of old movies, as the engine's option
    auto fields()
    {
        return std::tie(id, layer, address, language, startDateMs, screenWidth, screenHeight, randomSeed,
                        storageFolder, trustedFolder, sharedFolder, textCode);
    }
};
struct Unload {
    std::int32_t layer = 0;
    auto fields() { return std::tie(layer); }
};
struct Play {
    auto fields() { return std::tie(); }
};
struct Stop {
    auto fields() { return std::tie(); }
};
/// To a frame, counted from 0, and halts there.
struct Halt {
    std::int32_t frame = 0;
    auto fields() { return std::tie(frame); }
};
struct SetVariable {
    std::string name, value;
    auto fields() { return std::tie(name, value); }
};
/// Answered by Value.
struct GetVariable {
    std::uint32_t id = 0;
    std::string name;
    auto fields() { return std::tie(id, name); }
};
/// Numbers as FlashControl's properties; loop and muted are 0 or 1.
struct Settings {
    std::uint8_t loop = 1, muted = 0, suspended = 0;
    std::uint8_t unseen = 0; ///< nobody looks: no picture is needed, everything else goes on
    std::int32_t scaleMode = 0, quality = 1;
    double volume = 1, balance = 0; ///< 0 to 1; -1 (left) to 1 (right)
    double speed = 1;               ///< of the movie's time
    std::uint8_t secondThread = 0;  ///< may help with frames that take long
    auto fields()
    {
        return std::tie(loop, muted, suspended, unseen, scaleMode, quality, volume, balance, speed,
                        secondThread);
    }
    friend bool operator==(const Settings&, const Settings&) = default;
};
struct Background {
    std::uint32_t rgb = 0;
    std::uint8_t isSet = 1; ///< 0: the movie's own holds again
    auto fields() { return std::tie(rgb, isSet); }
};
/// The area that the movie is shown in, device pixels. Between processes its pictures come along as memory.
struct View {
    std::int32_t width = 0, height = 0;
    double deviceScale = 1;
    auto fields() { return std::tie(width, height, deviceScale); }
};
/// Comes with a socket, before the first View: Picture goes there and Release comes from there.
struct PictureSocket {
    auto fields() { return std::tie(); }
};
struct Mouse {
    enum class Kind : std::uint8_t { Move, Down, Up, Leave, Wheel };
    std::uint8_t kind = 0;
    double x = 0, y = 0;     ///< device pixels of the view
    std::uint8_t button = 0; ///< as stage::MouseButton
    std::int32_t count = 0;  ///< clicks, or lines of the wheel
    auto fields() { return std::tie(kind, x, y, button, count); }
};
/// What a key means to the timeline and, with a text field in focus, to its text.
struct Key {
    std::uint8_t down = 0;
    std::int32_t code = 0;
    std::uint32_t character = 0;
    std::int32_t command = -1; ///< as stage::TextCommand; -1 is none
    std::u32string typed;
    auto fields() { return std::tie(down, code, character, command, typed); }
};
struct TypedText {
    std::u32string text;
    auto fields() { return std::tie(text); }
};
/// What an input method is about to type; empty: it has come to an end.
struct Composition {
    std::string text;
    std::int32_t caret = 0; ///< in it, UTF-16 units
    auto fields() { return std::tie(text, caret); }
};
struct FocusChange {
    enum class Kind : std::uint8_t {
        Lost,
        Gained,
        Paused, ///< a menu of the window has the keys
    };
    std::uint8_t gained = 0; ///< Kind
    auto fields() { return std::tie(gained); }
};
/// The user opens the menu of the right button. Answered by Menu with the same id.
struct OpenMenu {
    std::uint32_t id = 0;
    std::uint8_t byPointer = 1; ///< 0: at what has the focus
    double x = 0, y = 0;        ///< device pixels of the view
    auto fields() { return std::tie(id, byPointer, x, y); }
};
/// Of the menu `id`, unless another was opened since or the movie is another one.
struct ChooseMenuItem {
    std::uint32_t id = 0;
    std::uint32_t item = 0; ///< its place in the list
    auto fields() { return std::tie(id, item); }
};
/// Moves on by simulated time, unheard.
struct Advance {
    double ms = 0;
    auto fields() { return std::tie(ms); }
};
/// Answered by Done with the same id, when everything before it is done.
struct Sync {
    std::uint32_t id = 0;
    auto fields() { return std::tie(id); }
};
/// One of the pictures is free again, and the movie's end waits for that.
struct Release {
    auto fields() { return std::tie(); }
};
/// Answers Ask.
struct Answer {
    std::uint32_t id = 0;
    std::uint8_t yes = 0;
    std::string text;
    auto fields() { return std::tie(id, yes, text); }
};
/// Whether a device takes the sounds; otherwise they move on unheard.
struct SoundDevice {
    std::uint8_t open = 0;
    auto fields() { return std::tie(open); }
};

using ToMovie = std::variant<Load, Unload, Play, Stop, Halt, SetVariable, GetVariable, Settings, Background,
                             View, Mouse, Key, TypedText, FocusChange, Advance, Sync, Release, Answer,
                             SoundDevice, OpenMenu, ChooseMenuItem, Composition, PictureSocket>;

// ---- from the movie to the window -------------------------------------------------------------------------

/// The first thing said, by whichever end starts.
struct Hello {
    std::uint32_t version = kProtocolVersion;
    auto fields() { return std::tie(version); }
};
/// What follows comes from the movie that Load `id` brought; 0 when none is loaded.
struct Speaking {
    std::uint32_t id = 0;
    auto fields() { return std::tie(id); }
};
/// The process has got as far as Load `id`, and looks at the movie from now on: what becomes of it next, the
/// movie may have done.
struct Begins {
    std::uint32_t id = 0;
    auto fields() { return std::tie(id); }
};
struct Loaded {
    std::uint32_t id = 0;
    std::uint8_t done = 0;
    std::string error; ///< English, for the log
    auto fields() { return std::tie(id, done, error); }
};
/// What the text that has the keyboard is to the user; bits.
enum class TextFocus : std::uint8_t {
    Held = 1,   ///< it can be marked and copied
    Typed = 2,  ///< one types into it
    Secret = 4, ///< and nobody is to see what
};
/// What the window shows or is asked for at any time; sent when it has changed.
struct State {
    std::uint8_t open = 0, playing = 0, listensToKeys = 0;
    std::uint8_t text = 0;   ///< bits of TextFocus; 0: no text has the focus
    std::uint8_t cursor = 0; ///< as stage::Cursor
    std::int32_t frame = -1, totalFrames = 0;
    std::int32_t width = 0, height = 0; ///< of the movie, pixels
    double frameRate = 0;
    std::uint32_t background = 0xFFFFFF;
    std::uint8_t silent = 1;
    /// While a text has the focus: the caret, device pixels of the view.
    std::int32_t caretLeft = 0, caretTop = 0, caretHeight = 0;
    /// Instead of `cursor`, unless empty: a pointer that the movie has made, as ownPointer() reads it.
    std::uint8_t pointerWidth = 0, pointerHeight = 0, pointerX = 0, pointerY = 0;
    std::string pointerPixels; ///< four bytes each: blue first, times opacity; rows from the top
    auto fields()
    {
        return std::tie(open, playing, listensToKeys, text, cursor, frame, totalFrames, width, height,
                        frameRate, background, silent, caretLeft, caretTop, caretHeight, pointerWidth,
                        pointerHeight, pointerX, pointerY, pointerPixels);
    }
    [[nodiscard]] bool is(TextFocus what) const { return (text & static_cast<std::uint8_t>(what)) != 0; }
    friend bool operator==(const State&, const State&) = default;
};
struct Value {
    std::uint32_t id = 0;
    std::string text;
    auto fields() { return std::tie(id, text); }
};
struct MenuEntry {
    std::uint8_t kind = 0; ///< as stage::MenuItem::Kind
    std::string caption;
    std::uint8_t separatorBefore = 0, enabled = 1;
    auto fields() { return std::tie(kind, caption, separatorBefore, enabled); }
};
/// What a movie adds to the window's menu.
struct Menu {
    std::uint32_t id = 0;
    std::vector<MenuEntry> items;
    auto fields() { return std::tie(id, items); }
};
struct Done {
    std::uint32_t id = 0;
    auto fields() { return std::tie(id); }
};
/// A picture is ready. What differs from the picture before lies in `changed`.
struct Picture {
    std::uint8_t picture = 0;
    std::uint32_t view = 0; ///< which View it was drawn for, counted from 1
    std::vector<Rectangle> changed;
    auto fields() { return std::tie(picture, view, changed); }
};
/// How a movie stands as it says something: see Engine::holdsOnlyTrusted() and hasReadFiles().
struct Standing {
    std::uint8_t onlyTrusted = 0, hasRead = 0;
};
struct Command {
    std::string command, arguments;
    Standing standing;
    auto fields() { return std::tie(command, arguments, standing.onlyTrusted, standing.hasRead); }
};
struct OpenAddress {
    std::string address, window;
    Standing standing;
    auto fields() { return std::tie(address, window, standing.onlyTrusted, standing.hasRead); }
};
struct TraceLine {
    std::string text;
    auto fields() { return std::tie(text); }
};
struct LogLine {
    std::string text;
    auto fields() { return std::tie(text); }
};
struct ReadyState {
    std::int32_t state = 0;
    auto fields() { return std::tie(state); }
};
struct Progress {
    std::int32_t percent = 0;
    auto fields() { return std::tie(percent); }
};
struct CopyText {
    std::string text;
    auto fields() { return std::tie(text); }
};
/// The movie waits for an Answer with the same id.
struct Ask {
    enum class What : std::uint8_t { ClipboardText, AbortSlowScript };
    std::uint32_t id = 0;
    std::uint8_t what = 0;
    auto fields() { return std::tie(id, what); }
};

/// The memory came to an end, or the time for one frame; the movie is closed and nothing is left of it.
struct RanOutOfMemory {
    auto fields() { return std::tie(); }
};
/// The movie went beyond what it may use, and something was not done. Once for each kind of thing.
struct LimitReached {
    std::string what; ///< English
    auto fields() { return std::tie(what); }
};

using FromMovie =
    std::variant<Hello, Speaking, Loaded, State, Value, Done, Picture, Command, OpenAddress, TraceLine,
                 LogLine, ReadyState, Progress, CopyText, Ask, RanOutOfMemory, LimitReached, Begins, Menu>;

// ---- bytes ------------------------------------------------------------------------------------------------
// A message is its index in the variant in 16 bits, the body's length in bytes in 32 bits, and the body: the
// fields in order, numbers little-endian, texts as a 32-bit count of units and the units, lists as a 32-bit
// count and the fields of each entry.

inline constexpr std::size_t kHeaderBytes = 6;

/// Appends a message to `bytes`. Texts longer than kMaxTextBytes are cut.
void encode(const ToMovie& message, std::vector<std::uint8_t>& bytes);
void encode(const FromMovie& message, std::vector<std::uint8_t>& bytes);

/// What stands before a body.
struct Header {
    std::uint16_t kind = 0;
    std::uint32_t bodyBytes = 0;
};
/// @param bytes at least kHeaderBytes
/// @errors LimitReached when the body would be longer than kMaxBodyBytes.
base::Result<Header> decodeHeader(base::Bytes bytes);

/// @param body the whole body and nothing behind it
/// @errors Malformed for a kind that does not exist or a body of another length than its fields; Truncated
///         when a field runs past the end.
base::Result<ToMovie> decodeToMovie(std::uint16_t kind, base::Bytes body);
base::Result<FromMovie> decodeFromMovie(std::uint16_t kind, base::Bytes body);

} // namespace flash::control
