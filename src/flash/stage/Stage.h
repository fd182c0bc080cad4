#pragma once

#include "base/TextCode.h"
#include "flash/render/Surface.h"
#include "flash/stage/Clip.h"
#include "flash/stage/Node.h"
#include "flash/stage/ScriptHost.h"
#include "flash/stage/Services.h"
#include "flash/stage/TextFormat.h"

#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <unordered_map>
#include <vector>

namespace flash::render
{
class Canvas;
class RenderCache;
} // namespace flash::render

namespace flash::stage
{

class TextFonts;

enum class ScaleMode : std::uint8_t { ShowAll, NoBorder, ExactFit, NoScale };
enum class Quality : std::uint8_t { Low, Medium, High, Best };
enum class MouseButton : std::uint8_t { Left, Middle, Right };
/// Bits: where the movie stands in a view of another shape; none is centred.
enum Align : std::uint8_t { kAlignLeft = 1, kAlignTop = 2, kAlignRight = 4, kAlignBottom = 8 };

/// What the keyboard can say to a text field besides letters.
enum class TextCommand : std::uint8_t {
    MoveLeft,
    MoveRight,
    MoveUp,
    MoveDown,
    MoveLeftWord,
    MoveRightWord,
    MoveLineStart,
    MoveLineEnd,
    MoveDocumentStart,
    MoveDocumentEnd,
    SelectLeft,
    SelectRight,
    SelectUp,
    SelectDown,
    SelectLeftWord,
    SelectRightWord,
    SelectLineStart,
    SelectLineEnd,
    SelectDocumentStart,
    SelectDocumentEnd,
    SelectAll,
    Copy,
    Cut,
    Paste,
    Backspace,
    BackspaceWord,
    Delete,
    DeleteWord,
    Enter,
};

enum class Cursor : std::uint8_t { Arrow, Hand, Text, Hidden };

/// A running movie: levels, frame loop, simulated clock, input and drawing. One thread; everything happens
/// inside advance(), the input calls and the host's commands.
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
    void setScript(ScriptHost* script);

    // ---- the movie ----
    /// Makes `movie` the root of level 0; everything that ran is taken down. Frame 1 is shown at once and its
    /// scripts run, at clock time 0 for the first movie.
    /// @param url the movie's address; its query gives variables of the root
    void open(MoviePtr movie, std::string url);
    void close();
    [[nodiscard]] const MoviePtr& movie() const { return m_movie; } ///< null before open()
    [[nodiscard]] const std::string& url() const { return m_url; }
    [[nodiscard]] Clip* root() { return level(0); }
    [[nodiscard]] Clip* level(int number);
    [[nodiscard]] const std::map<int, std::shared_ptr<Clip>>& levels() const { return m_levels; }

    // ---- loading by script or host ----
    // Loads have their answers at the end of the frame in which they were asked for. They report in that
    // order; the movies that came run their first frames in the next frame, as the other clips do: the newest
    // first, and are reported as ready in that order when all scripts of the frame are done. What is refused,
    // and a load of nothing (an empty address), have theirs at the start of the frame after the next one.
    /// What a load reports to whoever asked (MovieClipLoader); all optional.
    struct LoadListener {
        virtual ~LoadListener() = default;
        virtual void started(Clip&) {}
        virtual void progressed(Clip&, double /*loaded*/, double /*total*/) {}
        virtual void completed(Clip&) {}
        /// The first frame's scripts have run.
        virtual void initialized(Clip&) {}
        /// @param clip null when it is gone
        virtual void failed(Clip* /*clip*/, std::string_view /*error*/) {}
    };
    void loadIntoClip(Clip& target, LoadRequest request, std::shared_ptr<LoadListener> listener = nullptr);
    void loadIntoLevel(int level, LoadRequest request, std::shared_ptr<LoadListener> listener = nullptr);
    /// At once.
    void unloadLevel(int level);
    void unloadClip(Clip& target);
    /// As a load of nothing.
    void requestUnload(Clip& target);
    void requestUnload(int level);
    /// Fetches bytes; `done` runs with this frame's other answers.
    using LoadDone = std::function<void(const base::Result<LoadAnswer>&)>;
    void fetch(LoadRequest request, LoadDone done);

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

    // ---- the host's transport. Frames are 0-based here. ----
    [[nodiscard]] bool isPlaying() const;
    void play();
    void stop();
    void gotoFrame(int frame);
    [[nodiscard]] int currentFrame();
    [[nodiscard]] int totalFrames();
    /// Off: the root stops at its last frame.
    void setLoop(bool loop) { m_loop = loop; }
    [[nodiscard]] bool loop() const { return m_loop; }

    // ---- the view ----
    /// Size of the area that the movie is shown in, device pixels.
    void setViewSize(int width, int height);
    [[nodiscard]] int viewWidth() const { return m_viewWidth; }
    [[nodiscard]] int viewHeight() const { return m_viewHeight; }
    /// Device pixels to one pixel of the host's measure; only NoScale looks at it.
    void setDeviceScale(double scale);
    void setScaleMode(ScaleMode mode);
    [[nodiscard]] ScaleMode scaleMode() const { return m_scaleMode; }
    void setAlign(unsigned align);
    [[nodiscard]] unsigned align() const { return m_align; }
    void setQuality(Quality quality);
    [[nodiscard]] Quality quality() const { return m_quality; }
    [[nodiscard]] swf::Rgba background() const { return m_background; }
    void setBackground(swf::Rgba color); ///< by a movie's tag; ignored once the host has set one
    void setHostBackground(swf::Rgba color);
    /// Stage twips to device pixels.
    [[nodiscard]] swf::Matrix viewMatrix() const;
    /// The stage as scripts see it (Stage.width and height), pixels.
    [[nodiscard]] double stageWidth() const;
    [[nodiscard]] double stageHeight() const;
    [[nodiscard]] bool isFullScreen() const { return m_fullScreen; }
    void setFullScreen(bool on);

    // ---- drawing ----
    /// The union of what changed since the last call of render(), device pixels; empty when nothing did.
    [[nodiscard]] render::IntRect dirtyRect();
    /// Draws what lies in `clip` (device pixels), background included, and forgets what was dirty.
    void render(render::Canvas& canvas, const render::IntRect& clip);
    void invalidateAll();
    /// For canvases that draw this stage.
    [[nodiscard]] render::RenderCache& renderCache() { return *m_renderCache; }
    /// For text fields.
    [[nodiscard]] TextFonts& textFonts() { return *m_textFonts; }

    // ---- input. Positions are device pixels of the view. ----
    void mouseMove(double x, double y);
    void mouseDown(double x, double y, MouseButton button = MouseButton::Left, int clicks = 1);
    void mouseUp(double x, double y, MouseButton button = MouseButton::Left);
    void mouseWheel(int lines);
    void mouseLeave();
    /// @param keyCode the player's key codes (Key.getCode) @param charCode the character, or 0
    void keyDown(int keyCode, char32_t charCode = 0);
    void keyUp(int keyCode, char32_t charCode = 0);
    void textInput(char32_t character);
    void textCommand(TextCommand command);
    void focusGained();
    void focusLost();
    [[nodiscard]] Cursor cursor() const { return m_cursor; }
    /// Whether what runs now is the answer to a key or a mouse button.
    [[nodiscard]] bool isHandlingInput() const { return m_inputDepth > 0; }

    // ---- for scripts ----
    [[nodiscard]] swf::Point mousePosition() const { return m_mouse; } ///< stage twips
    [[nodiscard]] bool isKeyDown(int keyCode) const;
    [[nodiscard]] bool isKeyToggled(int keyCode) const;
    /// A script looks at the keys by itself, without being called.
    void noteKeysAsked() { m_keysAsked = true; }
    /// Whether a key that goes down would make a difference to the movie, as far as can be told.
    [[nodiscard]] bool listensToKeys();
    [[nodiscard]] int lastKeyCode() const { return m_lastKeyCode; }
    [[nodiscard]] int lastCharCode() const { return m_lastCharCode; }
    [[nodiscard]] Node* focus() const { return m_focus.get(); }
    enum class By : std::uint8_t { User, Script };
    void setFocus(Node* node, By by = By::User);
    /// The field shows a variable from now on, which may change at any time.
    void noteBound(TextField& field);
    /// Nothing hidden keeps the focus.
    void dropFocusWithin(const Node& node);
    struct DragLimits {
        double left = 0, top = 0, right = 0, bottom = 0; ///< pixels in the parent's space
    };
    void startDrag(Clip& clip, bool lockCenter, std::optional<DragLimits> limits);
    void stopDrag();
    [[nodiscard]] Clip* dragged() const;
    [[nodiscard]] Clip* dropTarget() const { return m_dropTarget; }
    /// The topmost node that is drawn at a point of the stage, for _droptarget and hit testing.
    [[nodiscard]] Node* topNodeAt(swf::Point stagePoint, const Node* except = nullptr);
    void setMouseVisible(bool visible);
    [[nodiscard]] bool isMouseVisible() const { return m_mouseVisible; }
    /// Whether a script may give it the focus.
    [[nodiscard]] bool canTakeFocus(Node& node);
    /// The character of a linkage name. Nothing when the movie exports no such name.
    [[nodiscard]] std::optional<std::uint16_t> exportedCharacter(const MoviePtr& movie,
                                                                 std::string_view name);
    void setShowsMenu(bool full);
    [[nodiscard]] bool showsMenu() const { return m_showsMenu; }

    /// Runs whatever scripts are queued, and those they queue. For callers that ran scripts themselves.
    void runQueue();
    /// Commands to the host wait until the scripts at hand are done.
    /// Whether another request may be queued; reported when not. Asked before its texts are made.
    /// @param bytes that the request will hold on to, about
    [[nodiscard]] bool takesRequest(std::size_t bytes) const;
    void queueRequest(std::function<void()> request, std::size_t bytes = 0);
    /// Instances listed as changed since the stage was drawn last, those that are gone by now included.
    [[nodiscard]] std::size_t notedChanges() const { return m_changedNodes.size(); }
    /// Instances on the stage.
    [[nodiscard]] std::size_t instances() const { return *m_instances; }
    /// Queues a block for `target`; skipped when it has left the stage by then.
    void queueBlock(Clip& target, MoviePtr movie, swf::ActionBlock actions);
    void queueEvent(Node& node, Event event, int keyCode = 0);
    /// Runs the blocks a clip has for an event at once, then the script's handler.
    void runEvent(Node& node, Event event, int keyCode = 0);
    /// All clips that live, oldest first; for scripts' collectors. Entries may be removed ones.
    [[nodiscard]] const std::vector<std::shared_ptr<Clip>>& clips() const { return m_clips; }
    /// The name a character was exported under.
    [[nodiscard]] std::string linkageName(const MoviePtr& movie, std::uint16_t characterId);
    /// A text of a file as UTF-8: before version 6 files hold the 8-bit code of their maker's system.
    [[nodiscard]] std::string textOf(const MoviePtr& movie, std::string_view bytes) const;
    /// What such files are read in; the system's own unless set.
    [[nodiscard]] const base::TextCode& textCode() const
    {
        return m_textCode != nullptr ? *m_textCode : base::TextCode::ansi();
    }
    /// To be called before open(). @param code null: the system's own
    void setTextCode(std::shared_ptr<const base::TextCode> code) { m_textCode = std::move(code); }
    /// Frames run since open().
    [[nodiscard]] long long frameCounter() const { return m_frameCounter; }

private:
    friend class Node;
    friend class Clip;
    friend class Button;
    friend class Renderer;

    static constexpr int kMaxCatchUpFrames = 8;

    struct Queued {
        enum class Kind : std::uint8_t { Block, Init, Event };
        Kind kind = Kind::Block;
        Event event = Event::Load;
        int keyCode = 0;
        NodePtr node;
        MoviePtr movie;
        swf::ActionBlock block;
    };
    // What is queued runs in this order, whatever it is queued by.
    enum Priority : std::uint8_t { kInitialize, kInitActions, kConstruct, kOrdinary, kPriorities };
    struct Pending {
        std::weak_ptr<Clip> clip;
        int level = -1; ///< when there is no clip
        bool intoClip = false, intoLevel = false, unload = false;
        std::string url; ///< as asked for, for what cannot be had
        base::Result<LoadAnswer> answer = LoadAnswer{};
        std::shared_ptr<LoadListener> listener;
        LoadDone done;
        long long frame = 0; ///< not before this one
    };

    // ---- instances ----
    /// Whether another instance may be put into `parent`; reported when not.
    [[nodiscard]] bool hasRoomIn(const Node& parent) const;
    /// Whether `node`, which a timeline or a button is about to show in `parent`, would contain itself
    /// without end.
    [[nodiscard]] static bool wouldContainItself(const Node& node, const Node& parent);
    NodePtr makeNode(const MoviePtr& movie, std::uint16_t characterId);
    void begin(Node& node);
    void enlist(std::shared_ptr<Clip> clip) { m_clips.push_back(std::move(clip)); }
    void retire(Node& node);
    /// @returns whether any script of the subtree is to run on its removal; those are queued.
    bool queueUnload(Node& node);
    void finishUnloading();
    void queueInit(Clip& target, const MoviePtr& movie, const swf::DoInitAction& init);
    [[nodiscard]] std::shared_ptr<const swf::Timeline> emptyTimeline();
    void noteChanged(Node& node) { m_changedNodes.push_back(node.weak_from_this()); }
    void noteRemoved(Node& node);
    /// Those that are gone hold on to their memory as long as they are listed.
    void forgetGoneNodes();
    void collectDirty();
    void syncTextFields();
    void addDirty(const render::IntRect& rect) { m_dirty = render::unite(m_dirty, rect); }
    void runTimersAndQueue();
    /// Between two scripts, when all those of a frame take too long together.
    void askWhenOverdue();
    void stepClips();
    void deliverLoads();
    void wait(Pending load);
    base::Result<LoadAnswer> answerTo(const LoadRequest& request);
    [[nodiscard]] long long dueFrame(const Pending& load) const;
    void deliver(std::vector<Pending> due);
    void finishLoad(Pending& load);
    void reportInitialized();
    void fill(Clip& clip, MoviePtr movie, std::string url);
    void fillFrom(Clip& clip, const LoadAnswer& answer);
    /// Finds the characters that a movie imports from others, beside itself; those that cannot be had stay
    /// missing. Done once for a movie.
    /// @param librariesLeft how many may still be read, those that libraries import from included
    void linkImports(const swf::Movie& movie, const std::string& url, int& librariesLeft);
    static constexpr int kMostLibraries = 32;
    std::shared_ptr<Clip> makeLevel(int number, MoviePtr movie, std::string url);
    void setQueryVariables(Clip& clip, const std::string& url);
    void adoptHeader();

    // ---- input ----
    /// What the pointer works on: a button, a clip that acts as one, or a text field.
    NodePtr pointerTarget(swf::Point stagePoint);
    NodePtr pointerTargetIn(Node& node, swf::Point stagePoint);
    void updatePointer();
    void moveFocus(Node* node, By by);
    void rollOutOfFocus();
    /// Every press of a key turns its toggle.
    void noteKeyDown(int keyCode);
    /// A button went from under the pointer; its like may follow before the pointer looks again.
    void noteLost(const Node& node);
    void adoptLike(const NodePtr& target);
    /// Whether a frame is drawn around the focus, and with it the keyboard's click is possible.
    [[nodiscard]] bool isFocusFramed() const { return m_focusShown && m_focusFramed; }
    void pointerEvent(Node& node, Event event);
    void followPressedLink(TextField& field);
    void runButtonActions(Button& button, unsigned condition);
    void clipEventEverywhere(Event event);
    void keyEvent(Event event);
    bool keyPressEverywhere(int keyPressCode);
    void moveDragged();
    /// A key or a script that moves the focus shows the frame around it, the mouse hides it.
    void showFocus(bool on);
    [[nodiscard]] bool focusHidesAtEveryMove() const;
    void drawFocus(render::Canvas& canvas, const swf::Matrix& view);
    void focusNext(bool backwards);
    void updateCursor();

    Services m_services;
    std::shared_ptr<const base::TextCode> m_textCode; // null: the system's own
    ScriptHost m_noScript;
    ScriptHost* m_script;
    MoviePtr m_movie;
    std::string m_url;
    std::map<int, std::shared_ptr<Clip>> m_levels;
    std::vector<std::shared_ptr<Clip>> m_clips; ///< in order of creation
    std::vector<Queued> m_queue[kPriorities];
    std::size_t m_queueHead[kPriorities] = {};
    bool m_runningQueue = false;
    struct Request {
        std::function<void()> run;
        std::size_t bytes;
    };
    std::deque<Request> m_requests;
    std::size_t m_requestBytes = 0;
    std::shared_ptr<std::size_t> m_instances = std::make_shared<std::size_t>(0); ///< the nodes share it
    std::vector<NodePtr> m_unloading;
    std::vector<Pending> m_loads;
    std::size_t m_loadedBytes = 0; ///< that wait in m_loads
    // By movie. An entry keeps the address of a movie that is gone from being given to another.
    template <class T>
    using ByMovie = std::map<std::weak_ptr<const swf::Movie>, T, std::owner_less<>>;
    ByMovie<std::set<std::uint16_t>> m_initialized;
    ByMovie<std::unordered_map<std::uint16_t, std::string>> m_linkageNames;
    /// Loads whose movies have come but not run yet.
    std::vector<std::pair<std::weak_ptr<Clip>, std::shared_ptr<LoadListener>>> m_initializing;
    bool m_holdRequests = false; ///< commands wait for more than the queue
    std::shared_ptr<const swf::Timeline> m_emptyTimeline;
    long long m_frameCounter = 0;
    int m_instanceCounter = 0;

    double m_nowMs = 0, m_nextFrameMs = 0, m_frameRate = 12;
    bool m_loop = true, m_fullScreen = false;
    int m_viewWidth = 0, m_viewHeight = 0;
    double m_deviceScale = 1;
    ScaleMode m_scaleMode = ScaleMode::ShowAll;
    unsigned m_align = 0;
    Quality m_quality = Quality::High;
    swf::Rgba m_background{255, 255, 255, 255};
    bool m_hostBackground = false, m_movieBackground = false;
    std::unique_ptr<render::RenderCache> m_renderCache;
    std::unique_ptr<TextFonts> m_textFonts;
    std::vector<std::weak_ptr<TextField>> m_boundFields; ///< those that show a variable
    render::IntRect m_dirty;
    std::vector<std::weak_ptr<Node>> m_changedNodes;
    std::size_t m_changedKept = 0; ///< of those, still there when last looked at

    Cursor m_cursor = Cursor::Arrow;
    bool m_showsMenu = true;
    bool m_mouseVisible = true, m_mouseInside = false, m_mouseIsDown = false;
    swf::Point m_mouse;
    NodePtr m_over, m_pressed;
    bool m_overByFocus = false; ///< m_over has the focus; the pointer has not moved since
    struct Lost {
        const swf::Button* definition = nullptr;
        int depth = 0;
        bool over = false, pressed = false;
    };
    std::optional<Lost> m_lost;
    std::optional<TextFormat> m_pressedLink; ///< of the field m_pressed
    bool m_pressedOutside = false;           ///< the pointer left m_pressed with the button held
    std::set<int> m_keysDown;
    std::set<int> m_keysToggled;
    int m_lastKeyCode = 0, m_lastCharCode = 0;
    bool m_keyTaken = false;  ///< the last key that went down was a handler's alone
    bool m_keysAsked = false; ///< by a script of this movie, once at least
    int m_inputDepth = 0;
    NodePtr m_focus;
    bool m_focusShown = false;  ///< the frame around the focus, see showFocus()
    bool m_focusFramed = false; ///< _focusrect allowed it when the focus moved
    std::shared_ptr<Clip> m_dragged;
    std::optional<DragLimits> m_dragLimits;
    swf::Point m_dragOffset; ///< twips, parent space
    Clip* m_dropTarget = nullptr;
};

} // namespace flash::stage
