#pragma once

#include "flash/stage/ActionQueue.h"
#include "flash/stage/Clip.h"
#include "flash/stage/DisplayList.h"
#include "flash/stage/Focus.h"
#include "flash/stage/Keyboard.h"
#include "flash/stage/Linkage.h"
#include "flash/stage/Loads.h"
#include "flash/stage/Node.h"
#include "flash/stage/Pointer.h"
#include "flash/stage/ScriptHost.h"
#include "flash/stage/Services.h"
#include "flash/stage/View.h"

#include <memory>
#include <string>

namespace flash::stage
{

class TextFonts;

/// A running movie: its frame loop and simulated clock, and the parts that do the rest. One thread;
/// everything happens inside advance(), the calls of pointer and keyboard, and the host's commands.
class Stage
{
public:
    /// @param script may be null: a stage without scripts. Borrowed, like the services.
    Stage(Services services, ScriptHost* script);
    ~Stage();
    Stage(const Stage&) = delete;
    Stage& operator=(const Stage&) = delete;

    [[nodiscard]] Services& services() { return m_services; }
    [[nodiscard]] ScriptHost& script() { return *m_script; }

    // ---- the parts ----
    [[nodiscard]] DisplayList& displayList() { return m_displayList; }
    [[nodiscard]] ActionQueue& queue() { return m_queue; }
    [[nodiscard]] Loads& loads() { return m_loads; }
    [[nodiscard]] View& view() { return m_view; }
    [[nodiscard]] const View& view() const { return m_view; }
    [[nodiscard]] Pointer& pointer() { return m_pointer; }
    [[nodiscard]] Keyboard& keyboard() { return m_keyboard; }
    [[nodiscard]] Focus& focus() { return m_focus; }
    [[nodiscard]] Linkage& linkage() { return m_linkage; }
    [[nodiscard]] TextFonts& textFonts() { return *m_textFonts; }

    // ---- the movie ----
    /// Makes `movie` the root of level 0; everything that ran is taken down. Frame 1 is shown at once and its
    /// scripts run, at clock time 0 for the first movie.
    /// @param url the movie's address; its query gives variables of the root
    void open(MoviePtr movie, std::string url);
    /// Another movie takes the place of the one that is open, with all levels and timers. @returns its root
    std::shared_ptr<Clip> replaceMovie(MoviePtr movie, std::string url);
    void close();
    [[nodiscard]] const MoviePtr& movie() const { return m_movie; } ///< null before open()
    [[nodiscard]] const std::string& url() const { return m_url; }
    [[nodiscard]] Clip* root() const { return m_displayList.level(0); }

    // ---- time ----
    /// Moves timeline, timers and loads on by `ms` of simulated time. Frames that fall into it run, at most
    /// `kMaxCatchUpFrames` of them: after a long pause the movie goes on where it was.
    void advance(double ms);
    /// Runs one frame now and leaves the clock alone.
    void advanceFrame();
    [[nodiscard]] double nowMs() const { return m_nowMs; }
    /// Until something is due (next frame or timer).
    [[nodiscard]] double msToNextEvent();
    [[nodiscard]] double frameRate() const { return m_frameRate; }
    [[nodiscard]] double frameMs() const;
    /// @param rate frames a second, above 0; from the next frame on
    void setFrameRate(double rate) { m_frameRate = rate; }
    /// Frames run since open().
    [[nodiscard]] long long frameCounter() const { return m_frameCounter; }

    // ---- the host's transport. Frames are 0-based here. ----
    [[nodiscard]] bool isPlaying() const;
    void play();
    void stop();
    void gotoFrame(int frame);
    [[nodiscard]] int currentFrame() const;
    [[nodiscard]] int totalFrames() const;
    /// Off: the root stops at its last frame.
    void setLoop(bool loop) { m_loop = loop; }
    [[nodiscard]] bool loop() const { return m_loop; }

    /// Lives while a key or a button of the mouse is answered.
    class InputScope
    {
    public:
        explicit InputScope(Stage& stage) : m_depth(stage.m_inputDepth) { ++m_depth; }
        ~InputScope() { --m_depth; }
        InputScope(const InputScope&) = delete;
        InputScope& operator=(const InputScope&) = delete;

    private:
        int& m_depth;
    };
    [[nodiscard]] bool isHandlingInput() const { return m_inputDepth > 0; }

private:
    static constexpr int kMaxCatchUpFrames = 8;

    void adoptHeader();
    void runTimersAndQueue();

    Services m_services;
    ScriptHost m_noScript;
    ScriptHost* m_script;
    MoviePtr m_movie;
    std::string m_url;
    long long m_frameCounter = 0;
    double m_nowMs = 0, m_nextFrameMs = 0, m_frameRate = 12;
    bool m_loop = true;
    int m_inputDepth = 0;

    DisplayList m_displayList{*this};
    ActionQueue m_queue{*this};
    Loads m_loads{*this};
    View m_view{*this};
    Pointer m_pointer{*this};
    Keyboard m_keyboard{*this};
    Focus m_focus{*this};
    Linkage m_linkage{*this};
    std::unique_ptr<TextFonts> m_textFonts;
};

} // namespace flash::stage
