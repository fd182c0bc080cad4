#pragma once

#include "flash/avm1/interpreter/Vm.h"
#include "flash/stage/ScriptHost.h"
#include "flash/stage/Stage.h"

#include <functional>
#include <map>
#include <memory>

// Everything that joins the script engine to the stage: the one class that both know as their host, and the
// built-in classes whose objects act on the stage.
namespace flash::stage
{
class VideoNode;
}

namespace flash::avm1
{

/// What makes a run repeatable: the inputs that would otherwise come from the machine.
struct BindingInputs {
    std::function<double()> wallClockMs; ///< since 1970-01-01 UTC, when the movie is opened
    std::function<double()> realTimeMs;  ///< of any origin; for the script time-out
    std::uint32_t randomSeed = 1;
    std::string playerVersion = "WIN 8,0,24,0";
    // What System.capabilities tells of the machine.
    std::string language = "en"; ///< two letters
    int screenWidth = 1024, screenHeight = 768;
};

class NetStream;
class NodeObject;

/// The script engine of one stage. Made before the stage, attached to it right after.
class StageBinding final : public Host, public stage::ScriptHost
{
public:
    StageBinding(stage::Services services, BindingInputs inputs);
    ~StageBinding() override;

    /// @param stage made with this as its script host; must be attached before it opens a movie, and may be
    ///        destroyed before or after the binding
    void attach(stage::Stage& stage);
    /// Forgets everything that scripts made: a fresh machine for another movie. To be called before each
    /// Stage::open().
    void reset();

    [[nodiscard]] Vm& vm() { return *m_vm; }
    [[nodiscard]] stage::Stage& stage() { return *m_stage; }
    [[nodiscard]] stage::Services& services() { return m_services; }
    [[nodiscard]] const BindingInputs& inputs() const { return m_inputs; }

    /// The script object of an instance, made on first use; null for null and for what scripts cannot name.
    Object* objectOf(stage::Node* node);
    /// @returns what scripts get for a child that they name: the clip it lies in for what they cannot handle.
    ///          Version 5 knows no fields.
    Object* scriptedChild(stage::Clip& clip, stage::Node* child);
    /// @returns the instance behind an object: the one it was made for or, when that is gone, the one that
    ///          stands at the same path now. Null for other objects and for what is gone for good.
    stage::Node* nodeOf(Object* object);
    stage::Clip* clipOf(Object* object);
    /// @param path as Node::dotPath() has it @returns null when nothing stands there
    stage::Node* nodeAt(std::string_view path);
    [[nodiscard]] static StageBinding& of(Call& call);
    [[nodiscard]] static StageBinding& of(Vm& vm);

    /// What attachMovie and duplicateMovieClip do around a new instance's first frame: its class before, the
    /// constructor after; and the initial values, which up to version 6 do not see what that frame shows.
    void prepare(stage::Node& node, const std::function<void(stage::Node&)>& initialise);
    void construct(stage::Node& node, const std::function<void(stage::Node&)>& initialise);
    /// The picture of a BitmapData object, shared: later changes to it show. Null for other objects.
    std::shared_ptr<const swf::Bitmap> bitmapOf(Object* object);
    /// The movie's shared objects by the names that the store has for them.
    [[nodiscard]] std::map<std::string, Object*, std::less<>>& sharedObjects();
    /// Keeps what changed in them; to be called while the stage still is there, before the movie goes.
    void saveSharedObjects();
    /// Calls onSoundComplete of the object once the sound has played to its end.
    void watchSound(stage::SoundId sound, Object* object);
    /// Since a script of version 8 asked for bounds, those of nothing are one twip further out.
    bool emptyBoundsAreFurther = false;
    /// Keeps a stream alive and on the stage's clock until it is closed.
    void watchStream(std::shared_ptr<NetStream> stream);
    void unwatchStream(const NetStream& stream);
    /// No stream plays into it any more.
    void detachScreen(const stage::VideoNode& screen);
    void callHandler(Object* object, std::string_view handler, std::initializer_list<Value> args = {});
    Value utf8(std::string_view text);
    static std::string toUtf8(std::u16string_view text);

    // ---- Host ----
    [[nodiscard]] const base::TextCode& textCode() const override
    {
        return m_stage != nullptr ? m_stage->linkage().textCode() : Host::textCode();
    }
    void trace(std::u16string_view text) override;
    void log(std::string_view text) override;
    void reportError(std::u16string_view text) override;
    double timeMs() override;
    double wallClockMs() override;
    std::uint32_t random() override;
    double realTimeMs() override;
    bool isClip(Object* object) override;
    bool isStageObject(Object* object) override;
    Object* parent(Object* clip) override;
    Object* root(Object* clip) override;
    Object* level(int number) override;
    Object* child(Object* clip, std::u16string_view name, bool caseSensitive) override;
    std::u16string targetPath(Object* object) override;
    int movieVersion(Object* clip) override;
    Value property(Object* clip, int index) override;
    void setProperty(Object* clip, int index, Value value) override;
    void gotoFrame(Object* clip, int frame, bool play) override;
    bool gotoLabel(Object* clip, std::u16string_view label, bool play) override;
    void play(Object* clip) override;
    void stop(Object* clip) override;
    void nextFrame(Object* clip) override;
    void previousFrame(Object* clip) override;
    std::optional<int> frameByLabel(Object* clip, std::u16string_view label) override;
    bool isFrameLoaded(Object* clip, int frame) override;
    void callFrame(Object* clip, int frame) override;
    void stopAllSounds() override;
    void toggleQuality() override;
    void cloneClip(Object* clip, std::u16string_view name, int depth) override;
    void removeClip(Object* clip) override;
    void startDrag(const DragRequest& request) override;
    void endDrag() override;
    void requestUrl(const UrlRequest& request) override;
    void fsCommand(std::u16string_view command, std::u16string_view argument) override;
    void updateAfterEvent() override;
    bool askToStopScript(double seconds) override;
    bool endsScripts() override;
    void scriptsEnded(std::string_view why) override;
    void stopSlowScripts() override;

    // ---- stage::ScriptHost ----
    void runActions(stage::Clip& target, const stage::MoviePtr& movie,
                    const swf::ActionBlock& block) override;
    void dispatch(stage::Node& node, stage::Event event) override;
    bool hasHandler(stage::Node& node, stage::Event event) override;
    bool namesHandler(stage::Node& node, stage::Event event) override;
    bool isEnabled(stage::Node& node) override;
    void assignClass(stage::Clip& clip) override;
    void constructClip(stage::Clip& clip) override;
    bool hasRegisteredClass(stage::Clip& clip) override;
    void broadcastKey(stage::Event event) override;
    bool hasKeyListeners() override;
    void broadcastMouse(stage::Event event) override;
    void broadcastWheel(int lines, stage::Node* node) override;
    void broadcastResize() override;
    void broadcastFullScreen(bool on) override;
    void focusChanged(stage::Node* before, stage::Node* now) override;
    void textFieldPlaced(stage::TextField& field) override;
    void textChanged(stage::TextField& field) override;
    void textScrolled(stage::TextField& field) override;
    void followLink(stage::TextField& field, std::u16string_view url, std::u16string_view window) override;
    std::optional<std::string> variable(stage::Clip& scope, std::string_view path) override;
    bool isClipVariable(stage::Clip& scope, std::string_view path) override;
    bool setVariable(stage::Clip& scope, std::string_view path, std::string_view value) override;
    void nodeNamed(std::string_view name) override;
    void nodeRemoved(stage::Node& node) override;
    void clipReset(stage::Clip& clip) override;
    void movieReplaced() override { m_vm->removeTimers(); }
    double nextTimerMs() override;
    void runTimers(double nowMs) override;
    void frameEnded() override;
    std::optional<std::string> hostVariable(std::string_view path) override;
    void setHostVariable(std::string_view path, std::string_view value) override;

    /// Sets `name=value&...` on an object; for loadVariables and LoadVars.
    void decodeVariables(Object* object, std::string_view text);
    /// The own enumerable variables of an object as texts, for sending.
    std::vector<std::pair<std::string, std::string>> collectVariables(Object* object);
    /// Property by number; the names are `_x`, `_y`, ...
    [[nodiscard]] std::optional<int> propertyIndex(Name name);
    Value propertyOf(stage::Node& node, int index);
    void setPropertyOf(stage::Node& node, int index, Value value);

private:
    bool findHandler(stage::Node& node, stage::Event event, Value& handler);
    friend class NodeObject;
    struct State;
    void installClasses();
    void installFlashPackage();
    void broadcast(std::string_view object, std::string_view message, std::initializer_list<Value> args = {});
    void traceNodes(Tracer& tracer);
    void callLinked(Object* timeline, std::u16string_view call);
    Name handlerName(stage::Event event);
    Function* classOf(stage::Clip& clip);
    void defineVersion(Object* root);
    void nodeRenamed(stage::Node& node);

    stage::Services m_services;
    BindingInputs m_inputs;
    std::uint32_t m_random = 1;
    stage::Stage* m_stage = nullptr;
    std::unique_ptr<Vm> m_vm;
    std::unique_ptr<State> m_state;
};

} // namespace flash::avm1
