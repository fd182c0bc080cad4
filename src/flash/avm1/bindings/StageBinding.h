#pragma once

#include "flash/avm1/bindings/ClipHost.h"
#include "flash/avm1/bindings/StageEvents.h"
#include "flash/avm1/interpreter/Vm.h"
#include "flash/stage/Stage.h"

#include <functional>
#include <map>
#include <memory>

// Everything that joins the script engine to the stage, and the built-in classes whose objects act on it.
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

/// The script engine of one stage: the machine with all its classes, and its two ends, what the machine asks
/// of the stage and what the stage tells the machine. Made before the stage, attached to it right after.
class StageBinding
{
public:
    StageBinding(stage::Services services, BindingInputs inputs);
    ~StageBinding();
    StageBinding(const StageBinding&) = delete;
    StageBinding& operator=(const StageBinding&) = delete;

    /// @param stage made with events() as its script host; must be attached before it opens a movie, and may
    /// be
    ///        destroyed before or after the binding
    void attach(stage::Stage& stage);
    /// Forgets everything that scripts made: a fresh machine for another movie. To be called before each
    /// Stage::open().
    void reset();

    [[nodiscard]] Vm& vm() { return *m_vm; }
    [[nodiscard]] ClipHost& host() { return m_host; }
    [[nodiscard]] StageEvents& events() { return m_events; }
    [[nodiscard]] stage::Stage& stage() { return *m_stage; }
    [[nodiscard]] bool hasStage() const { return m_stage != nullptr; }
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
    /// The LocalConnection objects that have taken a name, by it.
    [[nodiscard]] std::map<std::u16string, Object*>& localConnections();
    /// Keeps what changed in the shared objects; to be called while the stage still is there, before the
    /// movie goes.
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
    /// Goes through all instances for their names. Not while one is being placed.
    void renewNodeNames();
    void callHandler(Object* object, std::string_view handler, std::initializer_list<Value> args = {});
    Value utf8(std::string_view text);
    static std::string toUtf8(std::u16string_view text);

    /// @returns the number of a property as actions have it; nothing for other names
    [[nodiscard]] static std::optional<int> propertyIndex(Name name);
    /// Roots of levels tell the player's version.
    void defineVersion(Object* root);
    struct Prototypes {
        Object* movieClip = nullptr;
        Object* button = nullptr;
        Object* textField = nullptr;
        Object* video = nullptr;
    };
    [[nodiscard]] const Prototypes& prototypes() const;

    // ---- what goes on beside the timeline ----
    [[nodiscard]] std::optional<double> msToNextOfStreams() const;
    void followStreams();
    /// Calls the handlers of sounds that have played to their end.
    void reportSounds();

private:
    struct State;
    void installClasses();
    void installFlashPackage();
    void traceNodes(Tracer& tracer);
    /// All that stand on the stage or are about to leave it.
    template <class Visitor>
    void forEachNode(Visitor&& visitor);

    stage::Services m_services;
    BindingInputs m_inputs;
    stage::Stage* m_stage = nullptr;
    ClipHost m_host{*this};
    StageEvents m_events{*this};
    std::unique_ptr<Vm> m_vm;
    std::unique_ptr<State> m_state;
};

} // namespace flash::avm1
