#pragma once

#include "flash/stage/Node.h"
#include "flash/stage/ScriptHost.h"

#include <functional>
#include <span>

namespace flash::stage
{

class Drawing;

/// A movie clip: a sprite, the root of a level, a loaded movie or an empty clip made by script.
class Clip : public Node
{
public:
    Clip(Stage& stage, MoviePtr movie, std::shared_ptr<const swf::Timeline> timeline);
    ~Clip() override;

    // ---- timeline. Frames are 0-based indices; scripts count from 1. ----
    [[nodiscard]] const swf::Timeline& timeline() const { return *m_timeline; }
    [[nodiscard]] int currentFrame() const { return m_frame; } ///< -1 before the first was shown
    /// False for clips that scripts made empty.
    [[nodiscard]] bool hasFrames() const { return m_timeline->statedFrameCount > 0; }
    /// Where what a clip shows comes from; scripts see it in its numbers of frames and bytes.
    enum class Content : std::uint8_t {
        Timeline, ///< of a movie
        Made,     ///< empty, by a script
        Picture,  ///< a loaded picture
        Missing,  ///< nothing: the load failed
        Unloaded, ///< nothing any more
    };
    [[nodiscard]] Content content() const { return m_content; }
    [[nodiscard]] int totalFrames() const;
    [[nodiscard]] int loadedFrames() const;
    /// Of loadedFrames(), those that an action may count on: during its first frame a movie has only come as
    /// far as the first piece of its file.
    [[nodiscard]] int framesAtHand() const;
    [[nodiscard]] bool isPlaying() const { return m_playing; }
    void play();
    void stop();
    /// Shows a frame: backwards by rebuilding the list (what the same placement made is kept), forwards by
    /// running the list tags between. Scripts of the frame are queued. Clamped to the frames there are.
    void gotoFrame(int frame);
    [[nodiscard]] std::optional<int> frameByLabel(std::string_view label) const;
    /// Queues the scripts of a frame without going there (the old `call`): returns them in order.
    [[nodiscard]] std::vector<swf::ActionBlock> frameActions(int frame) const;

    // ---- children, in depth order ----
    [[nodiscard]] std::span<const NodePtr> children() const override { return m_children; }
    [[nodiscard]] Node* childAt(int depth) const;
    /// The child with the lowest depth of that name, which may be one that is unloading.
    enum class Case : std::uint8_t { Sensitive, Insensitive };
    [[nodiscard]] Node* childByName(std::string_view name, Case sensitivity) const;
    [[nodiscard]] int nextHighestDepth() const;
    /// Puts a new instance of a character on the list; what was at the depth goes. For scripts.
    /// @param before runs after the node is in place and before any of its scripts (initialising objects)
    /// @returns null when the dictionary has no such character that can be shown. As with all that makes
    ///          instances, also when the movie has as many as it may.
    NodePtr attach(const MoviePtr& movie, std::uint16_t characterId, int depth, std::string name,
                   const std::function<void(Node&)>& before = {});
    std::shared_ptr<Clip> attachEmpty(int depth, std::string name);
    NodePtr attachTextField(int depth, std::string name, const swf::Rect& boundsTwips);
    /// Puts a picture at a depth; what was there goes. @param smooth interpolate when scaled
    NodePtr attachBitmap(std::shared_ptr<const swf::Bitmap> bitmap, int depth, bool smooth);
    /// A copy of `source` (a child of this clip) with its look and drawings.
    NodePtr duplicate(Node& source, int depth, std::string name,
                      const std::function<void(Node&)>& before = {});
    void removeChild(Node& child);
    void swapDepths(Node& child, int depth);

    // ---- for scripts that keep the list themselves (ScriptHost::keepsClips) ----
    /// Puts a node that is on no list at a place of the order in which children are drawn.
    void insertAt(NodePtr node, std::size_t index, int depth);
    /// Takes a child off, which may be put elsewhere later.
    void detach(Node& child);
    /// The frame that is shown from now on. Its sounds and its background count, its list does not.
    void noteFrame(int frame);
    /// The same, and nothing of it counts.
    void noteShown(int frame) { m_frame = frame; }
    void setTimeline(MoviePtr movie, std::shared_ptr<const swf::Timeline> timeline);

    // ---- script-side drawing ----
    [[nodiscard]] Drawing& drawing(); ///< made on first use
    /// Whether a point of the stage (twips) lies on it, whatever lies above.
    [[nodiscard]] bool drawingHits(swf::Point stagePoint);

    // ---- what came with the placement or was set by script ----
    [[nodiscard]] const std::vector<swf::ClipAction>& clipActions() const { return m_clipActions; }
    /// Whose bytes they are.
    [[nodiscard]] const MoviePtr& clipActionsMovie() const
    {
        return m_clipActionsMovie ? m_clipActionsMovie : m_movie;
    }
    [[nodiscard]] bool hasClipEvent(Event event) const;
    bool constructed = false; ///< its class's constructor ran, or will not run again
    bool lockRoot = false;
    bool useHandCursor = true, trackAsMenu = false;
    std::optional<bool> focusEnabled;
    std::optional<bool> tabChildren;
    [[nodiscard]] Node* hitArea() const;
    void setHitArea(Node* node);
    /// A drawing of a script or a loaded movie makes it react to the mouse: whether it acts as a button now.
    [[nodiscard]] bool isButtonLike();
    [[nodiscard]] const std::string& url() const { return m_url; } ///< of the movie it comes from
    /// What a root answers for its depth; its level stays where it is in the order of levels.
    void setRootDepth(int depth) { m_depth = depth; }
    [[nodiscard]] int levelNumber() const { return m_level; } ///< of a level's root, else -1
    /// It becomes the root of a level, which is yet to be listed.
    void becomeLevel(int number);
    /// @param url of what is loaded here
    void becomeMovieRoot(std::string url);
    /// Puts a movie in the place of all it shows. @param movie null: nothing
    void load(MoviePtr movie, std::string url);
    /// What it shows is not of a movie. @param fileBytes size of its file
    void showContent(Content content, std::size_t fileBytes = 0);
    void unload();
    [[nodiscard]] double bytesLoaded() const;
    [[nodiscard]] double bytesTotal() const; ///< -1 when its load failed
    /// The linkage name its character was exported under; empty when none.
    [[nodiscard]] std::string linkageName() const;

    [[nodiscard]] swf::Rect bounds(Extent extent = Extent::WithStrokes) override;
    [[nodiscard]] bool hitsShape(swf::Point stagePoint) override;

    void draw(render::Canvas& canvas, const swf::Matrix& toDevice, const swf::ColorTransform& color) override;

    [[nodiscard]] bool isScriptable() const override { return true; }
    [[nodiscard]] bool isExchangeable() const override { return false; }
    /// Queues what a new instance runs and shows its first frame.
    void begin() override;
    /// It runs nothing: it is only a button's hit area.
    [[nodiscard]] bool isInert() const { return m_inert; }
    void setInert() { m_inert = true; }

    [[nodiscard]] Node* topNodeAt(swf::Point stagePoint, const Node* except) override;
    [[nodiscard]] bool tracksAsMenu() const override { return trackAsMenu; }
    [[nodiscard]] Cursor cursorAt(swf::Point stagePoint) override;
    bool takeKeyPress(int keyPressCode) override;
    [[nodiscard]] bool listensToKeys() const override;
    [[nodiscard]] bool canTakeFocus() override;
    [[nodiscard]] bool isTabStop() override;
    [[nodiscard]] bool usesKeys() const override { return true; }
    [[nodiscard]] bool isClickedByKeys() const override { return true; }

protected:
    void leave() override;
    NodePtr ownPointerTarget(swf::Point stagePoint) override;
    void forgetBounds() override;
    std::shared_ptr<const swf::Shape> outline() override;

private:
    // It steps clips and takes off what goes.
    friend class DisplayList;

    enum class Run : std::uint8_t { Whole, ListOnly };
    void step(); ///< its share of a frame: events, then the next frame when it plays
    void runFrame(int frame, Run run);
    void rewindTo(int frame);
    void skipTo(int frame);
    void streamSound();
    void startSound(const swf::StartSound& start);
    void stopStream();
    void place(const swf::PlaceObject& tag, int frame);
    void applyPlacement(Node& node, const swf::PlaceObject& tag);
    void replace(Node& old, const swf::PlaceObject& tag);
    NodePtr takeBack(const swf::PlaceObject& tag, int frame);
    /// @param isPlacement by the timeline, not by a script
    NodePtr instantiate(const MoviePtr& movie, std::uint16_t characterId, int depth,
                        bool isPlacement = false);
    void list(NodePtr node, int depth); ///< drawn as it was, as far as the list goes
    void insert(NodePtr node, int depth);
    /// No layers, and nothing that depends on the order things came in.
    [[nodiscard]] bool isPlainlyListed() const;
    void take(Node& node); ///< off the list, without any consequence
    void removeAllChildren();

    std::shared_ptr<const swf::Timeline> m_timeline;
    std::vector<NodePtr> m_children;
    std::vector<NodePtr> m_aside; ///< of the list before a rewind, while it is rebuilt
    std::vector<swf::ClipAction> m_clipActions;
    MoviePtr m_clipActionsMovie; ///< whose bytes they are, once another movie was loaded here
    std::unique_ptr<Drawing> m_drawing;
    std::string m_url;
    std::size_t m_fileBytes = 0; ///< of a loaded picture
    Content m_content = Content::Timeline;
    std::weak_ptr<Node> m_hitArea;
    int m_frame = -1, m_level = -1;
    bool m_playing = true, m_movieRoot = false;
    bool m_isBroken = false; ///< its timeline ends in the middle of a frame
    bool m_begun = false;    ///< its load event has been queued
    bool m_inert = false;    ///< only a button's hit area: runs nothing
    bool m_streaming = false;
    bool m_asideIsSeen = false; ///< what is taken back from m_aside looks as before
    swf::Rect m_bounds[2];
    bool m_boundsKnown[2] = {false, false};
};

/// The node as a clip, or null.
inline Clip* asClip(Node* node)
{
    return node && node->kind() == NodeKind::Clip ? static_cast<Clip*>(node) : nullptr;
}

} // namespace flash::stage
