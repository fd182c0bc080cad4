#pragma once

#include "flash/stage/Node.h"

#include <unordered_map>

namespace flash::stage
{

/// A button of the timeline: shows the records of its present state; another set is what takes the pointer.
class Button final : public Node
{
public:
    enum class State : std::uint8_t { Up, Over, Down };

    /// @param definition belongs to `movie`
    Button(Stage& stage, MoviePtr movie, const swf::Button& definition);

    [[nodiscard]] const swf::Button& definition() const { return m_definition; }
    [[nodiscard]] State state() const { return m_state; }
    void setState(State state);
    /// Shows the up state; once, when the button is on its list.
    void begin() override;

    std::optional<bool> trackAsMenu;
    bool useHandCursor = true;

    [[nodiscard]] std::span<const NodePtr> children() const override { return m_children; }
    [[nodiscard]] swf::Rect bounds(Extent extent = Extent::WithStrokes) override;
    [[nodiscard]] bool hitsShape(swf::Point stagePoint) override;

    [[nodiscard]] bool isScriptable() const override { return true; }
    [[nodiscard]] bool isExchangeable() const override { return false; }
    [[nodiscard]] swf::Rect pointerBounds() override;
    [[nodiscard]] bool tracksAsMenu() const override
    {
        return trackAsMenu.value_or(m_definition.trackAsMenu);
    }
    [[nodiscard]] Cursor cursorAt(swf::Point stagePoint) override;
    void answerPointer(Event event) override;
    void runPointerActions(Event event) override;
    bool takeKeyPress(int keyPressCode) override;
    [[nodiscard]] bool listensToKeys() const override;
    [[nodiscard]] bool canTakeFocus() override { return true; }
    [[nodiscard]] bool isTabStop() override;
    [[nodiscard]] bool usesKeys() const override { return true; }
    [[nodiscard]] bool isClickedByKeys() const override { return true; }

protected:
    [[nodiscard]] std::vector<NodePtr> held() const override;
    void leave() override;
    NodePtr ownPointerTarget(swf::Point stagePoint) override;

private:
    [[nodiscard]] bool takesPointer(swf::Point stagePoint);
    NodePtr make(const swf::ButtonRecord& record);
    std::span<const NodePtr> hitNodes();
    const swf::Button& m_definition;
    State m_state = State::Up;
    std::vector<NodePtr> m_children;
    std::unordered_map<std::size_t, NodePtr> m_byRecord; ///< those shown, by index of their record
    std::vector<NodePtr> m_hitNodes;                     ///< never drawn; made when first asked for
    bool m_hitNodesMade = false;
};

} // namespace flash::stage
