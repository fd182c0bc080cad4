#pragma once

#include "flash/render/Paragraph.h"
#include "flash/stage/Clip.h"

namespace flash::stage
{

/// A line of text that a script has had laid out, with what lies in it: its own text lies below its children.
/// It takes the pointer wherever the line is.
class TextLine final : public Clip
{
public:
    explicit TextLine(Stage& stage);
    /// @param toNode of the line's system: a turned line is one that lies along another axis
    void setLine(std::shared_ptr<const render::ComposedLine> line, const swf::Matrix& toNode);
    void draw(render::Canvas& canvas, const swf::Matrix& toDevice, const swf::ColorTransform& color) override;

private:
    std::shared_ptr<const render::ComposedLine> m_line;
    swf::Matrix m_toNode;
};

} // namespace flash::stage
