#pragma once

#include "flash/avm2/bindings/ContextMenus.h"
#include "flash/avm2/bindings/Cursors.h"
#include "flash/avm2/bindings/Display.h"
#include "flash/avm2/bindings/Input.h"
#include "flash/avm2/bindings/LoadedMovie.h"
#include "flash/avm2/bindings/OldMovies.h"
#include "flash/stage/SampleQueue.h"
#include "flash/stage/ScriptHost.h"
#include "flash/stage/Stage.h"

#include <array>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <unordered_map>
#include <unordered_set>

namespace flash::stage
{
struct TextPicture;
} // namespace flash::stage

namespace flash::avm2
{

/// Gives the next frames of a sound's samples, at 44100 Hz. @param from where to go before, if anywhere
/// @returns how many there were
using SoundReader =
    std::function<std::size_t(std::optional<std::uint64_t> from, std::span<std::array<std::int16_t, 2>>)>;

struct PlayerInputs {
    std::function<double()> wallClockMs; ///< since 1970-01-01 UTC, when the movie is opened
    std::function<double()> realTimeMs;  ///< of any origin
    std::uint32_t randomSeed = 1;
    std::string language = "en"; ///< two letters
    int screenWidth = 1024, screenHeight = 768;
    OpenOldMovie openOldMovie; ///< may be none: those are not played then
    // What the stage's services do not know of sound; may be none.
    std::function<void(std::span<float> left, std::span<float> right)> recentSound; ///< heard last, -1 to 1
    std::function<stage::SoundId(std::shared_ptr<stage::SampleQueue>)> playSamples;
    std::function<std::pair<float, float>(stage::SoundId)> soundPeaks; ///< left and right, 0 to 1
    /// Of a sound of the library or, where that is null, of a file. @returns none for what cannot be read
    std::function<SoundReader(const stage::MoviePtr&, const swf::Sound*,
                              const std::shared_ptr<const std::vector<std::uint8_t>>&)>
        readSound;
};

/// What scripts set of the player as a whole.
struct PlayerSettings {
    // Static texts.
    std::u16string_view touchMode = u"gesture", colorCorrection = u"default";
    std::optional<std::array<double, 4>> fullScreenPart; ///< x, y, width and height, pixels
    bool mapsTouch = true, exactSettings = true, refusesOldMovies = false;
    bool usesCodePage = false; ///< what is loaded as text is in the system's code, not in UTF-8
};

/// Joins the machine to a stage: the frames of the display list as scripts see it, timers, events.
class Player final : public Host, public stage::ScriptHost
{
public:
    Player(stage::Services services, PlayerInputs inputs);
    ~Player() override;
    void attach(stage::Stage& stage) { m_stage = &stage; }
    Vm& vm() { return *m_vm; }
    static Player& of(Vm& vm) { return *static_cast<Player*>(vm.binding); }
    [[nodiscard]] stage::Stage& stage() { return *m_stage; }
    [[nodiscard]] stage::Services& services() { return m_services; }
    [[nodiscard]] const PlayerInputs& inputs() const { return m_inputs; }
    [[nodiscard]] Input& input() { return *m_input; }

    // ---- Host ----
    void trace(std::u16string_view text) override;
    void log(std::string_view text) override;
    void uncaught(std::u16string_view text) override;
    double timeMs() override { return m_stage != nullptr ? m_stage->nowMs() : 0; }
    double wallClockMs() override { return m_inputs.wallClockMs ? m_inputs.wallClockMs() : 0; }
    double realTimeMs() override { return m_inputs.realTimeMs ? m_inputs.realTimeMs() : 0; }
    std::uint32_t random() override;
    bool askToStopScript(double seconds) override;

    // ---- stage::ScriptHost ----
    bool keepsClips() override { return true; }
    std::optional<swf::Rect> pointerBounds(stage::Node& node) override;
    void showRootFrame(int frame) override;
    void frameEnded() override;
    void broadcastResize() override;
    void broadcastFullScreen(bool on) override;
    void pointerMoved() override;
    void pointerPressed(stage::MouseButton button, int clicks) override;
    void pointerReleased(stage::MouseButton button) override;
    void wheelTurned(int lines) override;
    void pointerLeft() override;
    std::vector<stage::MenuItem> openMenu(stage::MenuAt at) override;
    void chooseMenuItem(std::size_t item) override;
    void closeMenu() override;
    void keyPressed(int keyCode, char32_t charCode) override;
    void keyReleased(int keyCode, char32_t charCode) override;
    void focusChanged(stage::Node* before, stage::Node* now) override;
    void textChanged(stage::TextField& field) override;
    void textScrolled(stage::TextField& field) override;
    bool takesText(stage::TextField& field, std::u16string_view text) override;
    void renewPictures(stage::TextField& field) override;
    double nextTimerMs() override;
    void runTimers(double nowMs) override;
    void movieReplaced() override;
    /// There are none that a host could name.
    void setHostVariable(std::string_view path, std::string_view value) override;

    // ---- movies ----
    DisplayObject* stageObject() { return m_stageObject.get(); }
    DisplayObject* root() { return m_movies.empty() ? nullptr : m_movies.front()->root; }
    /// The one that a file of the dictionary belongs to; null for none of this machine.
    LoadedMovie* loaded(const stage::MoviePtr& movie);
    LoadedMovie* mainMovie() { return m_movies.empty() ? nullptr : m_movies.front().get(); }
    /// Reads a movie's first code. Its root is yet to be made.
    LoadedMovie& addMovie(stage::MoviePtr movie, std::string url, Domain* domain);
    /// Makes the root and runs its constructor. @returns null when its class is none of a display object
    DisplayObject* makeRoot(LoadedMovie& movie, DisplayObject* parent);
    /// Class of a character; that of the player for those that no class is linked to.
    ClassObject* classOf(const stage::MoviePtr& movie, std::uint16_t characterId);
    /// The character that a class, or one it derives from, is linked to; 0: none
    std::uint16_t characterOf(const ClassObject* cls, stage::MoviePtr& movie);

    /// Has an object show and play a movie of the first machine. @returns false when there is none
    bool showOldMovie(DisplayObject& object, const stage::MoviePtr& movie, const std::string& url);
    void endOldMovie(DisplayObject& object);

    // ---- the display list ----
    void showCharacter(DisplayObject& object, const stage::MoviePtr& movie, std::uint16_t characterId);
    /// An instance of a character as a timeline or a button shows it; not constructed.
    DisplayObject* makeCharacter(const stage::MoviePtr& movie, std::uint16_t characterId);
    /// As a script asks for: with the events of a frame, unless the clip's own script runs.
    void goTo(DisplayObject& clip, int frame);
    /// The phases of a frame from the construction on, within another.
    void runNestedFrame(DisplayObject* clip);
    /// Calls the constructors of what the timeline has placed.
    void constructChildren(DisplayObject& parent);
    void constructAll(DisplayObject& object);
    /// @param index among the children as they are without the child
    void insert(DisplayObject& parent, DisplayObject& child, std::size_t index);
    std::u16string_view chosenQuality; ///< its name, as a script gave it; static text
    enum class By : std::uint8_t { Script, Timeline };
    void removeChild(DisplayObject& parent, DisplayObject& child, By by = By::Script);
    [[nodiscard]] bool isOnStage(DisplayObject& object)
    {
        return m_stageObject && object.top() == m_stageObject.get();
    }
    void showButtonState(DisplayObject& button, DisplayObject::State state);
    /// Makes what the states of a button of the file show, which have a frame of their own.
    void makeButtonStates(DisplayObject& button);
    /// The scripts of what has just come.
    void runFirstFrame(DisplayObject& object) { runAllScripts(object); }
    /// Clips off the stage play as well.
    void noteOffStage(DisplayObject& object);
    /// It hears of an event of every frame, whether it is on the stage or not.
    void noteListening(DispatcherObject& object, std::u16string_view type);
    /// Of it, what is heard weakly goes with who hears it.
    void noteWeakListener(DispatcherObject& object) { m_weaklyHeard.insert(&object); }
    /// The next drawing is told of by an event.
    void requestRender() { m_wantsRender = true; }
    std::u16string nextInstanceName();
    /// To be done when the frame has ended: what loaders report.
    void later(std::function<void()> work) { m_later.push_back(std::move(work)); }

    struct Timer {
        Root<Object> function;
        RootedList<Value> args;
        double dueMs = 0, everyMs = 0;
        std::uint32_t id = 0;
        bool repeats = false;
    };
    /// @returns what names it
    std::uint32_t addTimer(Value function, std::span<const Value> args, double everyMs, bool repeats);
    void removeTimer(std::uint32_t id);
    /// Those that listen, by the name that others call.
    std::map<std::u16string, Root<Object>>& localConnections() { return m_localConnections; }
    /// Those that are open, by the name that the store knows.
    std::map<std::string, Root<Object>>& sharedObjects() { return m_sharedObjects; }
    /// Embedded ones that code of a domain finds: those of its movies that have classes, and all that were
    /// registered.
    [[nodiscard]] std::vector<std::pair<stage::MoviePtr, std::uint16_t>>
    fontsSeenFrom(const Domain* domain) const;
    void registerFont(const stage::MoviePtr& movie, std::uint16_t id);
    /// The channel hears when the sound has ended.
    void watchSound(std::uint64_t id, Object& channel);
    void unwatchSound(std::uint64_t id);
    /// Begins to ask a sound for samples. @returns what names it to the sound system; 0: it is not played
    stage::SoundId playSamplesOf(DispatcherObject& sound);
    /// Streams play on from frame to frame.
    void watchStream(Object& stream);
    void unwatchStream(Object& stream);
    /// Those that live, and those that hear of new ones: neither is kept alive by it.
    void noteStream(DispatcherObject& stream);
    void noteMonitor(DispatcherObject& monitor) { m_monitors.push_back(&monitor); }
    [[nodiscard]] const std::vector<DispatcherObject*>& streams() const { return m_allStreams; }
    PlayerSettings kept;
    Cursors& cursors() { return m_cursors; }
    /// The movie's own pointer at this moment; null while the system's is seen, or none.
    [[nodiscard]] stage::CursorPicturePtr cursorPicture() const;
    int soundBufferTime = 5; ///< seconds; what scripts set, no more
    /// Writes those that have changed.
    void saveSharedObjects();

private:
    static Object* allocateBinary(Vm& vm, ClassObject& cls);
    void begin();
    void forgetGone();
    void collectIfDue();
    [[nodiscard]] bool isForgotten(const LoadedMovie& movie) const;
    void loadScripts(LoadedMovie& movie, std::size_t frame);
    void readFrameScripts(LoadedMovie& movie, std::size_t frame);
    void advance(DisplayObject& clip);
    void showFrame(DisplayObject& clip, int frame);
    void jump(DisplayObject& clip, int frame);

    void removeGone(DisplayObject& clip, bool isBack);
    void placeNew(DisplayObject& clip, int after);
    void apply(DisplayObject& child, const Placed& entry);
    void replaceCharacter(DisplayObject& child, std::uint16_t characterId);
    void finishFrame();
    void runFrameScripts(DisplayObject& clip);
    void runAllScripts(DisplayObject& object);
    void broadcast(std::string_view type);
    /// Tells of a child that came or goes.
    enum class Within : std::uint8_t { Told, Untold };
    void announce(DisplayObject& child, std::string_view type, Within within = Within::Told);
    void construct(DisplayObject& child);
    [[nodiscard]] static bool wouldContainItself(const DisplayObject& child, const DisplayObject& parent);
    void nameInParent(DisplayObject& parent, DisplayObject& child);
    void addPicture(DisplayObject& field, const stage::TextPicture& wanted);
    template <class Work>
    void forOrphans(Work&& work);
    void syncHost();
    void tellFinishedSounds();
    void askForSamples();
    template <class Work>
    void forOldMovies(Work&& work);
    void advanceOldMovies();
    void tellOldMovies(stage::SoundId ended);
    void followStreams();

    stage::Services m_services;
    PlayerInputs m_inputs;
    stage::Stage* m_stage = nullptr;
    std::unique_ptr<Vm> m_vm;
    std::unique_ptr<Input> m_input;
    std::unique_ptr<ContextMenus> m_menus;
    Cursors m_cursors;
    std::vector<std::unique_ptr<LoadedMovie>> m_movies; ///< the main one first
    std::unordered_map<const ClassObject*, std::pair<LoadedMovie*, std::uint16_t>> m_linked;
    Root<DisplayObject> m_stageObject;
    /// Those that hear of every frame, in the order in which they began to.
    struct Hearers {
        std::vector<DispatcherObject*> list;
        std::unordered_set<DispatcherObject*> known;
        template <class IsGone>
        void forget(IsGone&& isGone)
        {
            std::erase_if(list, [&](DispatcherObject* object) {
                if (!isGone(object)) return false;
                known.erase(object);
                return true;
            });
        }
    };
    std::map<std::u16string, Hearers, std::less<>> m_listening; ///< weak, as are
    std::unordered_set<DispatcherObject*> m_weaklyHeard;
    std::vector<std::weak_ptr<OldMovieNode>> m_oldMovies;
    std::vector<DisplayObject*> m_orphans;
    std::vector<DispatcherObject*> m_allStreams, m_monitors; ///< weak, as are the orphans
    std::size_t m_keptOrphans = 0, m_seenCollections = 0;    ///< after the last collection at a frame's end
    std::vector<std::function<void()>> m_later;
    std::map<std::uint32_t, std::unique_ptr<Timer>> m_timers;
    std::set<std::pair<double, std::uint32_t>> m_dueTimers; ///< the same by when they are due
    std::map<std::u16string, Root<Object>> m_localConnections;
    std::map<std::string, Root<Object>> m_sharedObjects;
    std::map<Object*, Root<Object>> m_streams;
    std::map<std::uint64_t, Root<Object>> m_sounds; ///< channels, by what plays
    /// A sound that scripts make as it plays.
    struct MadeSound {
        Root<DispatcherObject> sound;
        std::shared_ptr<stage::SampleQueue> queue;
        double asked = 0; ///< frames by now
    };
    std::map<std::uint64_t, MadeSound> m_madeSounds;
    std::vector<std::pair<stage::MoviePtr, std::uint16_t>> m_registeredFonts;
    std::uint32_t m_nextTimer = 1, m_nextInstance = 1, m_random;
    int m_nesting = 0; ///< of frames that scripts' jumps run
    bool m_hasBegun = false, m_isAnnounced = false, m_wantsRender = false, m_hostPlays = true;
};

} // namespace flash::avm2
