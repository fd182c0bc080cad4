#pragma once

#include "base/TextCode.h"
#include "base/TextCodes.h"
#include "flash/avm1/interpreter/Value.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace flash::avm1
{

class Vm;
class StageBinding;

/// What startDrag was asked for. Coordinates in pixels of the clip's parent.
struct DragRequest {
    Object* clip = nullptr;
    bool lockCenter = false;
    bool constrained = false;
    double left = 0, top = 0, right = 0, bottom = 0;
};

/// A request of getURL, loadMovie or loadVariables.
struct UrlRequest {
    enum class Method : std::uint8_t { None, Get, Post };
    enum class Kind : std::uint8_t {
        Page,           ///< getURL: `window` names a browser window; "FSCommand:" addresses are commands
        MovieIntoClip,  ///< `target` is the clip to replace
        MovieIntoLevel, ///< `window` is "_levelN" (getURL's way to load a level)
        Variables,      ///< into `target`
    };
    Kind kind = Kind::Page;
    Method method = Method::None;
    std::u16string url, window;
    Object* target = nullptr; ///< null for pages, and where the target was not found
    Object* sender = nullptr; ///< the clip whose variables are sent
};

/// What the machine needs of the stage. Clips are script objects here; a null clip never comes in.
/// The machine resolves paths itself, by walking members (`_parent`, `_root`, `_levelN`, child names) that
/// the clips' own property hooks answer.
class Host
{
public:
    virtual ~Host() = default;

    /// What joins the machine to a stage, for the built-in classes that act on one; null where there is none.
    [[nodiscard]] virtual StageBinding* binding() { return nullptr; }

    /// The 8-bit code that scripts before version 6 and texts without a mark are read and written in.
    [[nodiscard]] virtual const base::TextCode& textCode() const { return base::TextCode::ansi(); }
    /// @returns whether the movie was made for players later than version 9, which show errors among the
    /// traces and differ in a few more ways
    [[nodiscard]] virtual bool isOfLaterPlayers() const { return false; }

    // ---- outputs and inputs ------------------------------------------------------------------------------
    virtual void trace(std::u16string_view text) = 0;
    /// Messages about scripts that go wrong; English.
    virtual void log(std::string_view text) = 0;
    /// What went wrong in a script, in the player's words: for the log, and for whoever reads the traces of a
    /// movie that was made to be told of it.
    virtual void reportError(std::u16string_view text) { log(base::utf8FromUtf16(text)); }
    /// @returns milliseconds since the movie started (getTimer); simulated time.
    virtual double timeMs() = 0;
    /// @returns milliseconds since 1970-01-01 UTC.
    virtual double wallClockMs() = 0;
    /// @returns a number from 0 to 2^32 - 1; the host owns the seed.
    virtual std::uint32_t random() = 0;
    /// @returns real milliseconds, of any origin, for the script time-out.
    virtual double realTimeMs() = 0;

    // ---- clips -------------------------------------------------------------------------------------------
    /// @returns whether the object stands for a clip that is (still) on the stage: something scripts can
    /// target.
    virtual bool isClip(Object* object) = 0;
    /// @returns whether the object is any thing of the stage (clip, button, text field), for typeof and
    /// targetPath.
    virtual bool isStageObject(Object* object) = 0;
    /// @returns the parent clip, or null for a level or a removed clip.
    virtual Object* parent(Object* clip) = 0;
    /// @returns the main timeline that the clip sees as _root (_lockroot respected).
    virtual Object* root(Object* clip) = 0;
    virtual Object* level(int number) = 0;
    /// @returns the child of that name, compared as `caseSensitive` says, or null.
    virtual Object* child(Object* clip, std::u16string_view name, bool caseSensitive) = 0;
    /// @returns "_level0.a.b".
    virtual std::u16string targetPath(Object* object) = 0;
    /// @returns version of the movie that the clip came from.
    virtual int movieVersion(Object* clip) = 0;

    /// Properties by number, as actions GetProperty and SetProperty name them: 0 _x ... 21 _ymouse.
    virtual Value property(Object* clip, int index) = 0;
    virtual void setProperty(Object* clip, int index, Value value) = 0;

    // ---- timeline. Frames count from 0. ------------------------------------------------------------------
    virtual void gotoFrame(Object* clip, int frame, bool play) = 0;
    /// @returns whether there is such a label.
    virtual bool gotoLabel(Object* clip, std::u16string_view label, bool play) = 0;
    virtual void play(Object* clip) = 0;
    virtual void stop(Object* clip) = 0;
    virtual void nextFrame(Object* clip) = 0;
    virtual void previousFrame(Object* clip) = 0;
    /// @returns the frame of that label, or nothing.
    virtual std::optional<int> frameByLabel(Object* clip, std::u16string_view label) = 0;
    virtual bool isFrameLoaded(Object* clip, int frame) = 0;
    /// Runs the actions of a frame at once (the `call` action).
    virtual void callFrame(Object* clip, int frame) = 0;

    // ---- things ------------------------------------------------------------------------------------------
    virtual void stopAllSounds() = 0;
    virtual void toggleQuality() = 0;
    virtual void cloneClip(Object* clip, std::u16string_view name, int depth) = 0;
    virtual void removeClip(Object* clip) = 0;
    virtual void startDrag(const DragRequest& request) = 0;
    virtual void endDrag() = 0;
    virtual void requestUrl(const UrlRequest& request) = 0;
    /// @returns whether the command was taken. @param command as the script wrote it.
    virtual void fsCommand(std::u16string_view command, std::u16string_view argument) = 0;
    virtual void updateAfterEvent() = 0;
    /// A script ran for `seconds`. @returns whether it shall be stopped.
    virtual bool askToStopScript(double seconds) = 0;
    /// The scripts went beyond what they may use; none of the movie runs any more.
    virtual void scriptsEnded(std::string_view /*why*/) {}
    /// Asked again and again while scripts run. @returns whether they shall all be stopped now.
    virtual bool endsScripts() { return false; }
};

/// A host without a stage: every path leads nowhere, time stands still, output is dropped.
class NullHost : public Host
{
public:
    void trace(std::u16string_view) override {}
    void log(std::string_view) override {}
    double timeMs() override { return 0; }
    double wallClockMs() override { return 0; }
    std::uint32_t random() override { return m_seed = m_seed * 1664525U + 1013904223U; }
    double realTimeMs() override { return 0; }
    bool isClip(Object*) override { return false; }
    bool isStageObject(Object*) override { return false; }
    Object* parent(Object*) override { return nullptr; }
    Object* root(Object*) override { return nullptr; }
    Object* level(int) override { return nullptr; }
    Object* child(Object*, std::u16string_view, bool) override { return nullptr; }
    std::u16string targetPath(Object*) override { return {}; }
    int movieVersion(Object*) override { return 8; }
    Value property(Object*, int) override { return {}; }
    void setProperty(Object*, int, Value) override {}
    void gotoFrame(Object*, int, bool) override {}
    bool gotoLabel(Object*, std::u16string_view, bool) override { return false; }
    void play(Object*) override {}
    void stop(Object*) override {}
    void nextFrame(Object*) override {}
    void previousFrame(Object*) override {}
    std::optional<int> frameByLabel(Object*, std::u16string_view) override { return {}; }
    bool isFrameLoaded(Object*, int) override { return false; }
    void callFrame(Object*, int) override {}
    void stopAllSounds() override {}
    void toggleQuality() override {}
    void cloneClip(Object*, std::u16string_view, int) override {}
    void removeClip(Object*) override {}
    void startDrag(const DragRequest&) override {}
    void endDrag() override {}
    void requestUrl(const UrlRequest&) override {}
    void fsCommand(std::u16string_view, std::u16string_view) override {}
    void updateAfterEvent() override {}
    bool askToStopScript(double) override { return true; }

private:
    std::uint32_t m_seed = 1;
};

} // namespace flash::avm1
