#pragma once

#include "flash/stage/Node.h"

#include <algorithm>

namespace flash::stage
{

/// A text that scripts and users change.
class TextField final : public Node
{
public:
    TextField(Stage& stage, MoviePtr movie, const swf::EditText& definition);
    static NodePtr makeDynamic(Stage& stage, const MoviePtr& movie, const swf::Rect& boundsTwips);

    [[nodiscard]] const swf::EditText& definition() const { return m_definition; }
    [[nodiscard]] const std::u16string& text() const { return m_text; }
    void setText(std::u16string text);
    /// The variable it shows and sets; empty when none.
    [[nodiscard]] const std::string& variable() const { return m_variable; }
    void setVariable(std::string path);
    /// Takes the variable's value, or gives it the present text when it has none.
    void syncVariable();
    [[nodiscard]] bool isInput() const { return !readOnly; }

    bool readOnly = false, selectable = true, password = false;

    [[nodiscard]] swf::Rect bounds(Extent extent = Extent::WithStrokes) override;
    [[nodiscard]] bool hitsShape(swf::Point stagePoint) override;
    void draw(render::Canvas& canvas, const swf::Matrix& toDevice, const swf::ColorTransform& color) override;

    // ---- the selection: positions between characters ----
    [[nodiscard]] std::size_t selectionBegin() const { return std::min(m_anchor, m_caret); }
    [[nodiscard]] std::size_t selectionEnd() const { return std::max(m_anchor, m_caret); }
    [[nodiscard]] std::size_t caret() const { return m_caret; }
    void select(std::size_t begin, std::size_t end);

    // ---- the user at work ----
    void input(char32_t character);
    void press(swf::Point stagePoint);
    void drag(swf::Point stagePoint);

private:
    swf::EditText m_definition;
    std::u16string m_text;
    std::string m_variable;
    std::optional<std::string> m_lastValue; ///< of the variable, as last seen or set
    swf::Rect m_bounds;
    std::size_t m_anchor = 0, m_caret = 0;
};

} // namespace flash::stage
