#pragma once

#include "flash/stage/Clip.h"
#include "flash/stage/Node.h"

#include <map>
#include <memory>
#include <vector>

namespace flash::stage
{

/// The instances of a stage: its levels and their clips, how instances are made and how they leave.
class DisplayList
{
public:
    explicit DisplayList(Stage& stage) : m_stage(stage) {}
    DisplayList(const DisplayList&) = delete;
    DisplayList& operator=(const DisplayList&) = delete;

    // ---- levels ----
    using Levels = std::map<int, std::shared_ptr<Clip>>;
    [[nodiscard]] const Levels& levels() const { return m_levels; }
    [[nodiscard]] Clip* level(int number) const; ///< null when there is none
    void setLevel(int number, std::shared_ptr<Clip> root) { m_levels[number] = std::move(root); }
    /// Off the list, without any consequence.
    void eraseLevel(int number) { m_levels.erase(number); }
    [[nodiscard]] Levels takeLevels() { return std::exchange(m_levels, {}); }

    // ---- instances ----
    /// All clips that live, oldest first; for scripts' collectors. Entries may be removed ones.
    [[nodiscard]] const std::vector<std::shared_ptr<Clip>>& clips() const { return m_clips; }
    void enlist(std::shared_ptr<Clip> clip) { m_clips.push_back(std::move(clip)); }
    /// As one that has just come.
    void enlistAnew(Clip& clip);
    /// Each clip's share of a frame.
    void stepClips();
    [[nodiscard]] std::size_t instances() const { return *m_instances; }
    /// For nodes, which may outlive the stage.
    [[nodiscard]] const std::shared_ptr<std::size_t>& instanceCount() const { return m_instances; }
    /// Whether another instance may be put into `parent`; reported when not.
    [[nodiscard]] bool hasRoomIn(const Node& parent) const;
    /// Whether `node`, which a timeline or a button is about to show in `parent`, would contain itself
    /// without end.
    [[nodiscard]] static bool wouldContainItself(const Node& node, const Node& parent);
    /// An instance of a character, on no list yet. @returns null when there is nothing to show
    [[nodiscard]] NodePtr makeNode(const MoviePtr& movie, std::uint16_t characterId);
    /// Names a node that is on its list, and starts it.
    void begin(Node& node);
    /// It leaves for good, with all it contains.
    void retire(Node& node);
    /// @returns whether any script of the subtree is to run on its removal; those are queued.
    bool queueUnload(Node& node);
    [[nodiscard]] bool hasUnloading() const { return !m_unloading.empty(); }
    /// Takes off what waited for its unload handlers.
    void finishUnloading();
    [[nodiscard]] const std::shared_ptr<const swf::Timeline>& emptyTimeline() const
    {
        return m_emptyTimeline;
    }

    /// The field shows a variable from now on, which may change at any time.
    void noteBound(TextField& field);
    void syncTextFields();

    /// Takes everything down.
    void clear();
    /// Names of instances count from 1 again.
    void restartNames() { m_instanceCounter = 0; }

private:
    Stage& m_stage;
    Levels m_levels;
    std::vector<std::shared_ptr<Clip>> m_clips;                                  ///< in order of creation
    std::shared_ptr<std::size_t> m_instances = std::make_shared<std::size_t>(0); ///< the nodes share it
    std::vector<NodePtr> m_unloading;
    std::shared_ptr<const swf::Timeline> m_emptyTimeline = std::make_shared<swf::Timeline>();
    std::vector<std::weak_ptr<TextField>> m_boundFields; ///< those that show a variable
    int m_instanceCounter = 0;
};

} // namespace flash::stage
