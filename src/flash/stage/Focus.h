#pragma once

#include "flash/stage/Node.h"

#include <array>
#include <optional>

namespace flash::stage
{

/// Which instance the keys go to, and the frame around it.
class Focus
{
public:
    explicit Focus(Stage& stage) : m_stage(stage) {}
    Focus(const Focus&) = delete;
    Focus& operator=(const Focus&) = delete;

    [[nodiscard]] Node* node() const { return m_node.get(); }
    enum class By : std::uint8_t { User, Script };
    /// @param node null: nothing has the focus
    void set(Node* node, By by = By::User);
    /// As set(), but nothing is rolled over or out of.
    void move(Node* node, By by);
    /// As the Tab key does.
    void next(bool backwards);
    /// Nothing hidden keeps the focus.
    void dropWithin(const Node& node);

    // ---- the frame. A key or a script that moves the focus shows it, the mouse hides it. ----
    void show(bool on);
    [[nodiscard]] bool isShown() const { return m_shown; }
    /// Whether a frame is drawn around the focus, and with it the keyboard's click is possible.
    [[nodiscard]] bool isFramed() const { return m_shown && m_framed; }
    [[nodiscard]] bool hidesAtEveryMove() const;
    /// Where that frame is, upper left and lower right, device pixels; nothing where none is seen.
    [[nodiscard]] std::optional<std::array<swf::Point, 2>> frame(const swf::Matrix& view) const;
    void draw(render::Canvas& canvas, const swf::Matrix& view);

    /// A node leaves the stage.
    void forget(const Node& node);
    /// All nodes leave the stage.
    void forgetAll() { m_node.reset(); }

private:
    Stage& m_stage;
    NodePtr m_node;
    bool m_shown = false;
    bool m_framed = false; ///< _focusrect allowed it when the focus moved
};

} // namespace flash::stage
