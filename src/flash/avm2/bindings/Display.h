#pragma once

#include "flash/avm2/bindings/Events.h"
#include "flash/stage/Clip.h"
#include "flash/swf/Movie.h"

#include <array>
#include <map>
#include <memory>

namespace flash::avm2
{

class Player;
class DisplayObject;
class LoadedMovie;

/// By this a node of the stage is known to scripts.
class NodePeer final : public stage::Peer
{
public:
    static constexpr char kTag = 0;
    explicit NodePeer(DisplayObject& object) : Peer(&kTag), object(object) {}
    DisplayObject& object;
};

/// What the timeline shows at a depth.
struct Placed {
    std::uint16_t characterId = 0;
    int frame = 0;    ///< 1-based, of the tag that placed it
    int revision = 0; ///< 1-based, of the last tag that said something of it
    std::optional<swf::Matrix> matrix;
    std::optional<std::string> name;
    std::optional<swf::ColorTransform> color;
    std::optional<bool> visible, cacheAsBitmap;
    std::optional<std::uint16_t> ratio, clipDepth;
    std::optional<std::vector<swf::Filter>> filters;
    std::optional<swf::BlendMode> blend;
    std::optional<swf::Rgba> opaqueBackground;
};

/// An instance on the display list, or taken off it. One class for all of them: what a script's class does
/// not show stays unused. What it shows, and where, is its node's; a node is there from the beginning, and
/// lies in its parent's node at the same place as the object does in its parent's children.
class DisplayObject final : public DispatcherObject
{
public:
    AVM2_NATIVE(DispatcherObject)
    DisplayObject(Traits* traits, Object* proto) : DispatcherObject(traits, proto), m_peer(*this) {}
    ~DisplayObject() override;
    void trace(Tracer& tracer) override;
    [[nodiscard]] DispatcherObject* eventParent() const override { return parent; }
    [[nodiscard]] DisplayObject* top()
    {
        DisplayObject* at = this;
        while (at->parent != nullptr) at = at->parent;
        return at;
    }
    [[nodiscard]] bool contains(const DisplayObject& other) const
    {
        for (const DisplayObject* at = &other; at != nullptr; at = at->parent) {
            if (at == this) return true;
        }
        return false;
    }
    [[nodiscard]] int totalFrames() const { return timeline != nullptr ? timeline->statedFrameCount : 1; }
    /// As far as a script can send it: a file may have more frames than it states.
    [[nodiscard]] int lastFrame() const
    {
        const int present = timeline != nullptr ? static_cast<int>(timeline->frames.size()) : 1;
        return std::max({1, totalFrames(), present});
    }
    [[nodiscard]] bool isInButton() const { return parent != nullptr && isButtonState; }
    [[nodiscard]] bool isClip() const { return timeline != nullptr; }

    // ---- the node ----
    [[nodiscard]] stage::Node& node() const { return *m_node; }
    [[nodiscard]] bool hasNode() const { return m_node != nullptr; }
    /// Takes another node in the place of the one it has, with that one's place and look.
    void setNode(stage::NodePtr node);
    [[nodiscard]] const stage::NodePtr& nodePtr() const { return m_node; }
    /// Null unless it can hold children or drawings.
    [[nodiscard]] stage::Clip* clip() const { return stage::asClip(m_node.get()); }
    /// @returns null for a node that no script knows
    static DisplayObject* of(const stage::Node* node)
    {
        NodePeer* peer = node != nullptr && node->peer != nullptr ? node->peer->as<NodePeer>() : nullptr;
        return peer != nullptr ? &peer->object : nullptr;
    }
    /// A script moved it: the timeline does so no longer.
    void noteTransformed() { isTransformed = true; }

    // ---- the list; without events ----
    void insertChild(DisplayObject& child, std::size_t index);
    void eraseChild(DisplayObject& child);
    void moveChild(DisplayObject& child, std::size_t index);

    DisplayObject* parent = nullptr;
    TracedList<DisplayObject*> children; ///< in the order they are drawn
    Value name = Value::null();
    bool isConstructed = false, isStage = false, isRoot = false, isTransformed = false;
    bool isConstructing = false; ///< its constructor runs
    bool isBuilding = false;     ///< the constructors of its children run
    bool isButtonState = false;  ///< its parent is a button, which is none of a container
    std::uint16_t characterId = 0;
    int depth = 0;       ///< of the timeline; 0: a script's
    int placedFrame = 0; ///< 1-based, of the tag that placed it
    int placedRevision = 0;
    stage::MoviePtr movie;
    std::shared_ptr<const swf::Timeline> timeline;
    std::map<int, Placed> placed; ///< what the timeline shows now, by depth
    int frame = 0;                ///< 1-based; 0: none shown yet
    bool isPlaying = true, hasPendingScript = false, isInScript = false;
    bool isListed = false;     ///< among those off the stage that play
    int generation = 0;        ///< counts the frames that were shown
    bool hasStepped = false;   ///< it has had its share of a frame
    bool skipsStep = false;    ///< its first frame came between two
    bool isToldToPlay = false; ///< by a script
    int queuedFrame = 0;       ///< where its script that runs now wants to go; 0: nowhere
    std::vector<std::pair<int, Value>, vm::TracedAllocator<std::pair<int, Value>>> frameScripts;
    TracedList<Value> filterValues; ///< as scripts have set them; empty: those of the node
    DisplayObject* mask = nullptr;
    DisplayObject* hitArea = nullptr;
    Value graphics;                      ///< once asked for
    Value loaderInfo;                    ///< of a root, of the stage and of what is loaded
    Value bitmapData, pixelSnapping;     ///< of a bitmap
    std::optional<swf::Rect> scrollRect; ///< as a script has set it; drawn from the next frame on
    // ---- a button's ----
    enum class State : std::uint8_t { Up, Over, Down, Hit };
    std::array<DisplayObject*, 4> states{};
    State state = State::Up;
    bool hasStates = false;  ///< those of the file are made
    Object* extra = nullptr; ///< what else the class keeps; traced

private:
    stage::NodePtr m_node;
    NodePeer m_peer;
};

std::span<const NativeClass> displayClasses();
std::span<const NativeClass> containerClasses();
std::span<const NativeClass> clipClasses();
DisplayObject& displaySelf(Call& call);
DisplayObject& displayArg(Call& call, std::uint32_t index, const char* what = "child");
/// Makes an instance of a class of the display list, with its node.
Object* allocateDisplay(Vm& vm, ClassObject& cls);
/// The constructor of what scripts may make, and of what they may not.
Value constructDisplay(Call& call);
Value refuseDisplayConstruction(Call& call);
/// A TextSnapshot of the static texts of a list.
Value newTextSnapshot(Vm& vm, DisplayObject& holder);

} // namespace flash::avm2
